// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;
class QWidget;

/// The mark of the view that has the keyboard, for views that draw themselves.
namespace FocusRing {

/// The keyboard brought the focus here. False after a click, where the hand knows it already.
[[nodiscard]] bool isWanted(const QWidget *view);

/// Draws the ring just inside the rectangle when it is wanted: in the accent colour, or in one
/// that shows on the view.
void paint(QPainter &painter, const QWidget *view, const QRectF &rect, double radius,
           const QColor &color = {});

} // namespace FocusRing
