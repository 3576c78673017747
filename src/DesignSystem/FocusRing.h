// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;
class QWidget;

/// The mark of the view that has the keyboard, for views that draw themselves.
namespace FocusRing {

/// Remembers from now on what brings the focus to the view. Call it once, when the view is made.
void watch(QWidget *view);

/// The view has the focus, and the keyboard brought it: after a click the hand knows it already.
/// Of a view that is not watched, the last change of focus in its window counts.
[[nodiscard]] bool isWanted(const QWidget *view);

/// Draws the ring just inside the rectangle when it is wanted: in the accent colour, or in one
/// that shows on the view.
void paint(QPainter &painter, const QWidget *view, const QRectF &rect, double radius,
           const QColor &color = {});

} // namespace FocusRing
