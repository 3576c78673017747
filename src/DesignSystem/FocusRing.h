// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>

class QPainter;
class QWidget;

/// The mark of the view that has the keyboard, for views that draw themselves.
namespace FocusRing {

/// The keyboard brought the focus here. False after a click, where the hand knows it already.
[[nodiscard]] bool isWanted(const QWidget *view);

/// Draws the ring just inside the rectangle, when it is wanted.
void paint(QPainter &painter, const QWidget *view, const QRectF &rect, double radius);

} // namespace FocusRing
