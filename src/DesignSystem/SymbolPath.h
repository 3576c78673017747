// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>
#include <functional>
#include <span>

/// The path with these elements in other places.
///
/// The nodes, which are the points that lines and curves end in, go through `place` for each axis:
/// to scale them, and to move them where strokes are crisp. Handles follow the nodes between which
/// they lie. Both axes are placed alike.
[[nodiscard]] QPainterPath symbolPath(std::span<const QPainterPath::Element> elements,
                                      const std::function<double(double)> &place);
