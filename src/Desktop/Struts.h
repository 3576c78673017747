// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>
#include <QSize>
#include <array>
#include <cstdint>

/// What a panel or a dock keeps free of other windows: EWMH, _NET_WM_STRUT_PARTIAL. In device
/// pixels, measured from the edges of all screens together, and so also for a panel between two
/// screens.
struct Strut {
    /// Left, right, top, bottom; then the first and the last pixel along each of these edges.
    std::array<uint32_t, 12> values{};

    friend bool operator==(const Strut &, const Strut &) = default;
};

namespace Struts {

/// The struts of all windows of the X server; none on another platform.
[[nodiscard]] QList<Strut> all();

/// The size of all screens together.
[[nodiscard]] QSize wholeSize();

/// What is left of a screen. A strut counts for the screen that its inner edge lies on, and beside
/// its range for none: what a panel on a screen's inner edge spans beyond is its neighbour.
[[nodiscard]] QRect remaining(const QRect &screen, QSize whole, const QList<Strut> &struts);

} // namespace Struts
