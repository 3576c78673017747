// SPDX-License-Identifier: MIT
#pragma once

#include "TextStyle.h"

#include <QLabel>

class QPainter;

/// Plain text in one of the program's styles, in the colours of the palette above it.
///
/// A single line is a TextLine: its height is that of the style's font whatever is written in it.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    explicit TextLabel(const TextStyle &style, QWidget *parent = nullptr);
    TextLabel(const TextStyle &style, const QString &text, QWidget *parent = nullptr);

    /// Lines break where the space ends, within a word only where it is longer than a line, and the
    /// label is as high as its lines.
    void setWraps(bool wraps);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] bool isOneLine() const;
    void paintParagraph(QPainter &painter) const;

    TextStyle m_style;
};
