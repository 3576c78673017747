// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry.h"

#include <QList>
#include <optional>

struct Screen;

/// Where the two panels go: arithmetic on rectangles, without windows.
namespace PanelPlacement {

/// Kept between a panel and the edge of its screen's visible area.
inline constexpr double screenInset = 12;

/// The visible area taken when there is no screen.
inline constexpr Rect fallbackArea{0, 0, 1440, 900};

/// The rectangle moved, not resized, into the bounds shrunk by the inset. One that is too large
/// is pinned to the left and bottom edges.
[[nodiscard]] Rect clamped(const Rect &rect, const Rect &bounds, double inset);

/// What is free on the main screen.
[[nodiscard]] Rect visibleArea(const std::optional<Screen> &main);

/// What is free on the first screen that holds the launcher's centre, else on the main screen.
[[nodiscard]] Rect visibleArea(const Rect &launcher, const QList<Screen> &screens,
                               const std::optional<Screen> &main);

/// The launcher's first place: near the top right corner of the main screen's visible area.
[[nodiscard]] Point defaultLauncherOrigin(const Rect &visibleArea);

/// The editor over the launcher, their top right corners together, clamped into the area. Lower
/// than usual where the area is, so that its head can be reached.
[[nodiscard]] Rect editorFrame(const Rect &launcher, const Rect &visibleArea);

} // namespace PanelPlacement
