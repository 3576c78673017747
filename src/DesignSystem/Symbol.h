// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QSize>
#include <QString>

class QPainter;

/// The program's symbols, one drawing per name ("plus", "square.and.pencil"), in one grid and one
/// stroke, coloured where they are used.
///
/// The drawings are the files of resources/symbols. The build compiles their paths into the
/// program: rendering them as SVG documents at run time would cost the launcher, which is on the
/// screen all day, a third of a megabyte for one plus sign.
namespace Symbol {

/// The side of the square that a symbol beside text of that pixel size is drawn in.
[[nodiscard]] int extent(int pixelSize);

/// The room for a symbol in a row: as high as the square, and without its air to the left and
/// right, so that a wide symbol lines up with the text above and below.
[[nodiscard]] QSize size(int pixelSize);

/// Draws the symbol centred in the rectangle, as tall as a symbol beside text of that pixel size,
/// in strokes that suit text of that weight. Draws nothing for an unknown name.
void paint(QPainter &painter, const QRectF &rect, const QString &name, int pixelSize,
           const QColor &color, QFont::Weight weight = QFont::Normal);

} // namespace Symbol
