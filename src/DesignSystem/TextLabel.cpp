// SPDX-License-Identifier: MIT
#include "TextLabel.h"

#include "Metrics.h"
#include "TextLine.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <cmath>

namespace {

/// Breaks the text into lines of that width; gives the height of them all.
double layOut(QTextLayout &layout, double width)
{
    double height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (line.lineNumber() > 0)
            height += Metrics::paragraphLineSpacing;
        line.setPosition({0, height});
        height += line.height();
    }
    layout.endLayout();
    return height;
}

QString withLineSeparators(QString text)
{
    return text.replace(u'\n', QChar(QChar::LineSeparator));
}

QTextOption wrapping(Qt::Alignment alignment = {})
{
    QTextOption option(alignment);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

} // namespace

TextLabel::TextLabel(const TextStyle &style, QWidget *parent)
    : QLabel(parent)
    , m_style(style)
{
    setTextFormat(Qt::PlainText);
    setFont(style.font(locale()));
    setForegroundRole(NoteTheme::role(style.tone));
}

TextLabel::TextLabel(const TextStyle &style, const QString &text, QWidget *parent)
    : TextLabel(style, parent)
{
    setText(text);
}

void TextLabel::setWraps(bool wraps)
{
    setWordWrap(wraps);
}

bool TextLabel::isOneLine() const
{
    return !wordWrap() && !text().contains(QChar(u'\n'));
}

QSize TextLabel::sizeHint() const
{
    return isOneLine() ? TextLine::size(fontMetrics(), text()).grownBy(contentsMargins())
                       : QLabel::sizeHint();
}

QSize TextLabel::minimumSizeHint() const
{
    if (wordWrap())
        return {0, fontMetrics().height()};
    return isOneLine() ? sizeHint() : QLabel::minimumSizeHint();
}

int TextLabel::heightForWidth(int width) const
{
    if (!wordWrap())
        return QLabel::heightForWidth(width);
    const QMargins around = contentsMargins();
    QTextLayout layout(withLineSeparators(text()), font());
    layout.setTextOption(wrapping());
    const double height = layOut(layout, width - around.left() - around.right());
    return static_cast<int>(std::ceil(height)) + around.top() + around.bottom();
}

void TextLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LocaleChange)
        setFont(m_style.font(locale()));
    QLabel::changeEvent(event);
}

void TextLabel::paintEvent(QPaintEvent *event)
{
    if (!isOneLine() && !wordWrap()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    if (wordWrap()) {
        paintParagraph(painter);
        return;
    }
    TextLine::paint(painter, contentsRect(), text(), alignment());
}

void TextLabel::paintParagraph(QPainter &painter) const
{
    const Qt::Alignment across = alignment() & Qt::AlignHorizontal_Mask;
    QTextLayout layout(withLineSeparators(text()), font());
    layout.setTextOption(wrapping(QStyle::visualAlignment(layoutDirection(), across)));
    layOut(layout, contentsRect().width());
    layout.draw(&painter, contentsRect().topLeft());
}
