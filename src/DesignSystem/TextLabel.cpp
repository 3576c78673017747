// SPDX-License-Identifier: MIT
#include "TextLabel.h"

#include <QPainter>
#include <QStyle>
#include <QTextOption>

TextLabel::TextLabel(const TextStyle &style, QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setFont(style.font());
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

QSize TextLabel::minimumSizeHint() const
{
    const QSize hint = QLabel::minimumSizeHint();
    return m_elides ? QSize(0, hint.height()) : hint;
}

void TextLabel::paintEvent(QPaintEvent *event)
{
    if (!m_elides) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    QTextOption option(QStyle::visualAlignment(layoutDirection(), alignment()));
    option.setWrapMode(QTextOption::NoWrap);
    painter.drawText(contentsRect(),
                     fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()),
                     option);
}
