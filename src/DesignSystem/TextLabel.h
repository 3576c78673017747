// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QLabel>

/// Plain text in one of the program's styles, in the colours of the palette above it.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    explicit TextLabel(const TextStyle &style, QWidget *parent = nullptr);
    TextLabel(const TextStyle &style, const QString &text, QWidget *parent = nullptr);

    /// Lines break where the space ends, and the label is as high as its lines.
    void setWraps(bool wraps);

    /// One line that may be narrower than its text, which then ends in an ellipsis.
    void setElides(bool elides);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_elides = false;
};
