// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>
#include <functional>
#include <string_view>

/// Makes a path of SVG path data with the absolute commands M, L, H, V, C and Z.
///
/// The nodes, which are the points that the commands end in, go through `place` for each axis: to
/// scale them, and to move them where strokes are crisp. Handles follow the nodes between which
/// they lie. Both axes are placed alike.
[[nodiscard]] QPainterPath symbolPath(std::string_view data,
                                      const std::function<double(double)> &place);
