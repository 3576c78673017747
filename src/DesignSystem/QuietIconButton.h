// SPDX-License-Identifier: MIT
#pragma once

#include "ThemedButton.h"

/// A symbol of 13 points in a 30 × 30 square that takes clicks everywhere; no bezel.
/// The label is its tooltip and its accessible name.
class QuietIconButton final : public ThemedButton {
    Q_OBJECT

public:
    explicit QuietIconButton(const QString &symbol, QWidget *parent = nullptr);
    QuietIconButton(const QString &symbol, int pixelSize, QWidget *parent = nullptr);

    void setSymbol(const QString &symbol);
    [[nodiscard]] const QString &symbol() const noexcept { return m_symbol; }

    /// Already translated.
    void setLabel(const QString &label);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
};
