// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>

/// Rounded rectangles whose curvature grows from the straight edges instead of jumping.
///
/// A corner is a quarter of the superellipse (x/e)ⁿ + (y/e)ⁿ = 1. Its extent e along both edges is
/// 1.5 times the radius, or half the shorter side where that is less. The exponent is the one with
/// which the corner passes through the middle of a circular corner of that radius:
///
///     e (1 − 2^(−1/n)) = r (1 − 2^(−1/2))
///
/// With n > 2 the curvature is nothing where the edges begin. With no room beside the radius e
/// is r, n is 2, and the shape is a disc.
namespace ContinuousCorners {

/// How far a corner reaches along the edges of the rectangle.
[[nodiscard]] double extent(const QSizeF &size, double radius);

[[nodiscard]] QPainterPath path(const QRectF &rect, double radius);

} // namespace ContinuousCorners
