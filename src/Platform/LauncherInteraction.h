// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry.h"

#include <QWidget>
#include <functional>

class AppPreferences;
class Screens;

/// Tells a click on the launcher from a drag and from a wish for its menu.
///
/// One press at a time; positions are global and y-up. A press that has once moved 5 points from
/// its start stays a drag until it ends.
class LauncherInteraction final
{
public:
    /// Since the start of the press: width to the right, height downwards.
    using Translation = Size;

    std::function<void()> onOpen = [] {};
    std::function<void(Translation, bool ended)> onMove = [](Translation, bool) {};
    std::function<void()> onQuit = [] {};

    void press(Point position);
    void drag(Point position);
    void release(Point position);

private:
    Point m_start;
    bool m_didDrag = false;
};
