// SPDX-License-Identifier: MIT
#pragma once

#include "ThemedButton.h"

/// The one important button of a screen: white text in a capsule of the accent colour, 72 % while
/// pressed, 45 % as a whole while disabled.
class NotePrimaryButton final : public ThemedButton {
    Q_OBJECT

public:
    /// The symbol follows the text; none when empty.
    explicit NotePrimaryButton(const QString &symbol = {}, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawCapsule(QPainter &painter) const;

    QString m_symbol;
};
