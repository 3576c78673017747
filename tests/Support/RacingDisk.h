// SPDX-License-Identifier: MIT
#pragma once

#include "ForwardingDisk.h"

#include <functional>

/// A disk on which another program does something at the worst of all moments: right before or
/// right after a file or folder takes the place of the live one, or that goes. Must not throw.
class RacingDisk : public ForwardingDisk {
public:
    using Action = std::function<void()>;

    /// Once.
    void beforeNextSwap(Action action) { m_before = std::move(action); }
    void afterNextSwap(Action action) { m_after = std::move(action); }

    /// Each time, also when the swap is taken back.
    void beforeEverySwap(Action action) { m_beforeEvery = std::move(action); }

    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        // All that is hidden begins with a point.
        if (*name == '.' && *newName == '.')
            return ForwardingDisk::rename(from, name, to, newName, how);
        run(std::exchange(m_before, nullptr));
        run(m_beforeEvery);
        const Result<void> renamed = ForwardingDisk::rename(from, name, to, newName, how);
        run(std::exchange(m_after, nullptr));
        return renamed;
    }

private:
    static void run(const Action &action)
    {
        if (action)
            action();
    }

    Action m_before;
    Action m_after;
    Action m_beforeEvery;
};
