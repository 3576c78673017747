// SPDX-License-Identifier: MIT
#pragma once

/// Screen geometry in points (Qt's device-independent pixels), global, origin at the bottom left
/// of the primary screen, y growing upwards. Screens.h converts from and to Qt's coordinates.
struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point &, const Point &) = default;
};

struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size &, const Size &) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] constexpr double minX() const noexcept { return x; }
    [[nodiscard]] constexpr double minY() const noexcept { return y; }
    [[nodiscard]] constexpr double maxX() const noexcept { return x + width; }
    [[nodiscard]] constexpr double maxY() const noexcept { return y + height; }
    [[nodiscard]] constexpr double midX() const noexcept { return x + width / 2; }
    [[nodiscard]] constexpr double midY() const noexcept { return y + height / 2; }

    /// The left and bottom edges belong to the rectangle, the right and top edges do not.
    [[nodiscard]] constexpr bool contains(Point p) const noexcept
    {
        return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }

    friend bool operator==(const Rect &, const Rect &) = default;
};
