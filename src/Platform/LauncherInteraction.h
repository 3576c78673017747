// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry.h"

#include <functional>

/// Tells a click on the launcher from a drag.
///
/// One press at a time; positions are global and y-up. A press that has once moved 5 points from
/// its start stays a drag until it ends. How long it lasts does not matter.
class LauncherInteraction final {
public:
    static constexpr double dragThreshold = 5;

    /// Since the start of the press: width to the right, height downwards.
    using Translation = Size;

    std::function<void()> onOpen = [] {};
    std::function<void(Translation, bool ended)> onMove = [](Translation, bool) {};

    /// The press has moved far enough.
    [[nodiscard]] bool isDragging() const noexcept { return m_didDrag; }

    void press(Point position);
    void drag(Point position);
    void release(Point position);

    /// Ends the press where it is, for one whose end is never told: what was dragged stays there,
    /// and nothing opens.
    void cancel();

private:
    [[nodiscard]] Translation translation(Point position) const noexcept;

    Point m_start;
    Translation m_last;
    bool m_didDrag = false;
};
