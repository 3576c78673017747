// SPDX-License-Identifier: MIT
#include "TextLine.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>

QSize TextLine::size(const QFontMetrics &metrics, const QString &text)
{
    return {metrics.horizontalAdvance(text), metrics.height()};
}

void TextLine::paint(QPainter &painter, const QRectF &rect, const QString &text,
                     Qt::Alignment alignment)
{
    const QFontMetricsF metrics(painter.font(), painter.device());
    const Qt::Alignment visual = QStyle::visualAlignment(painter.layoutDirection(), alignment);
    const double free = rect.width() - metrics.horizontalAdvance(text);
    double left = rect.left();
    if (visual & Qt::AlignRight)
        left += free;
    else if (visual & Qt::AlignHCenter)
        left += free / 2;
    painter.drawText(QPointF(left, rect.center().y() + metrics.capHeight() / 2), text);
}
