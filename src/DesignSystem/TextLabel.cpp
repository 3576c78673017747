// SPDX-License-Identifier: MIT
#include "TextLabel.h"

#include "TextLine.h"

#include <QEvent>
#include <QPainter>

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

void TextLabel::setElides(bool elides)
{
    m_elides = elides;
    updateGeometry();
}

bool TextLabel::isOneLine() const
{
    return !wordWrap() && !text().contains(QChar(u'\n'));
}

QSize TextLabel::sizeHint() const
{
    return isOneLine() ? TextLine::size(fontMetrics(), text()) : QLabel::sizeHint();
}

QSize TextLabel::minimumSizeHint() const
{
    if (!isOneLine())
        return QLabel::minimumSizeHint();
    const QSize whole = sizeHint();
    return m_elides ? QSize(0, whole.height()) : whole;
}

void TextLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LocaleChange)
        setFont(m_style.font(locale()));
    QLabel::changeEvent(event);
}

void TextLabel::paintEvent(QPaintEvent *event)
{
    if (!isOneLine()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QString shown =
        m_elides ? fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width())
                 : text();
    TextLine::paint(painter, contentsRect(), shown, alignment());
}
