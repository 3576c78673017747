// SPDX-License-Identifier: MIT
#include "PanelPlacement.h"

#include "Metrics.h"
#include "Screens.h"

#include <algorithm>

namespace {

/// From the top right corner of the visible area to the launcher's bottom left corner.
constexpr Size defaultLauncherOffset{88, 108};

} // namespace

Rect PanelPlacement::clamped(const Rect &rect, const Rect &bounds, double inset)
{
    const double left = bounds.minX() + inset;
    const double bottom = bounds.minY() + inset;
    const double right = bounds.maxX() - inset;
    const double top = bounds.maxY() - inset;

    const double x = std::min(std::max(left, right - rect.width), std::max(rect.minX(), left));
    const double y = std::min(std::max(bottom, top - rect.height), std::max(rect.minY(), bottom));
    return {x, y, rect.width, rect.height};
}

Rect PanelPlacement::visibleArea(const std::optional<Screen> &main)
{
    return main ? main->visibleFrame : fallbackArea;
}

Rect PanelPlacement::visibleArea(const Rect &launcher, const QList<Screen> &screens,
                                 const std::optional<Screen> &main)
{
    const Point centre{launcher.midX(), launcher.midY()};
    const auto holder = std::ranges::find_if(
        screens, [centre](const Screen &screen) { return screen.frame.contains(centre); });
    return holder != screens.end() ? holder->visibleFrame : visibleArea(main);
}

Point PanelPlacement::defaultLauncherOrigin(const Rect &visibleArea)
{
    return {visibleArea.maxX() - defaultLauncherOffset.width,
            visibleArea.maxY() - defaultLauncherOffset.height};
}

Rect PanelPlacement::editorFrame(const Rect &launcher, const Rect &visibleArea)
{
    constexpr double width = Metrics::panelSize.width();
    const double height =
        std::min<double>(Metrics::panelSize.height(), visibleArea.height - 2 * screenInset);
    const Rect over{launcher.maxX() - width, launcher.maxY() - height, width, height};
    return clamped(over, visibleArea, screenInset);
}
