// SPDX-License-Identifier: MIT
#include "TextLine.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <cmath>

namespace {

double baseLine(const QFontMetricsF &metrics, double middle)
{
    return middle + metrics.capHeight() / 2;
}

/// As high as the font, or a little higher where centred capitals would push descenders out.
int height(const QFontMetricsF &metrics)
{
    constexpr double invisible = 0.25;
    const int descent = static_cast<int>(std::ceil(metrics.descent() - invisible));
    int height = static_cast<int>(std::ceil(metrics.height()));
    while (std::lround(baseLine(metrics, height / 2.0)) + descent > height)
        ++height;
    return height;
}

} // namespace

QSize TextLine::size(const QFontMetrics &metrics, const QString &text)
{
    return {metrics.horizontalAdvance(text), height(QFontMetricsF(metrics))};
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
    painter.drawText(QPointF(left, baseLine(metrics, rect.center().y())), text);
}
