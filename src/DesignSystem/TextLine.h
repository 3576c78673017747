// SPDX-License-Identifier: MIT
#pragma once

#include "TextRange.h"

#include <QColor>
#include <QList>
#include <QRectF>
#include <QSize>
#include <QString>

class QFontMetrics;
class QPainter;

/// One line of text whose capitals stand in the middle of their rectangle.
///
/// Symbols and dots beside the line are then level with it, and another script, whose font has
/// other heights, moves nothing: a view in Chinese is laid out like one in English. A line stands
/// and runs in the direction of its own text, and emoji are drawn in colour.
namespace TextLine {

/// As wide as the text. The height is that of the font whatever the text is.
[[nodiscard]] QSize size(const QFontMetrics &metrics, const QString &text);

/// With the painter's font and pen. Only the horizontal part of the alignment counts.
void paint(QPainter &painter, const QRectF &rect, const QString &text,
           Qt::Alignment alignment = Qt::AlignLeading);

/// Parts of a text, in whole characters, and the colour of what is painted below them.
struct Marks {
    QList<TextRange> places;
    QColor color;
};

/// The same for a line that is cut, between characters, where the rectangle ends.
void paintElided(QPainter &painter, const QRectF &rect, const QString &text,
                 const Marks &marks = {});

} // namespace TextLine
