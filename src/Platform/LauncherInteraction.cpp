// SPDX-License-Identifier: MIT
#include "LauncherInteraction.h"

#include <cmath>
#include <utility>

void LauncherInteraction::press(Point position)
{
    m_start = position;
    m_didDrag = false;
}

void LauncherInteraction::drag(Point position)
{
    const Translation moved = translation(position);
    m_didDrag = m_didDrag || std::hypot(moved.width, moved.height) >= dragThreshold;
    if (m_didDrag) {
        m_last = moved;
        onMove(moved, false);
    }
}

void LauncherInteraction::release(Point position)
{
    if (std::exchange(m_didDrag, false)) {
        onMove(translation(position), true);
    } else {
        onOpen();
    }
}

void LauncherInteraction::cancel()
{
    if (std::exchange(m_didDrag, false))
        onMove(m_last, true);
}

LauncherInteraction::Translation LauncherInteraction::translation(Point position) const noexcept
{
    return {position.x - m_start.x, m_start.y - position.y};
}
