// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

class TextLabel;

/// A text that wraps, as high as it is but no higher than so many lines: the rest can be scrolled,
/// also with the keyboard, which stops here only then.
class ScrolledText final : public QScrollArea {
    Q_OBJECT

public:
    ScrolledText(TextLabel *text, int mostLines, QWidget *parent = nullptr);

    /// To be called when the text has changed. Begins at its top.
    void showFromTop();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] int heightOf(int lines) const;

    TextLabel *const m_text;
    const int m_mostLines;
};
