// SPDX-License-Identifier: MIT
#pragma once

#include "ForwardingDisk.h"

#include <cerrno>
#include <optional>

/// Knows whether there was a sync after the last rename.
class SyncedDisk : public ForwardingDisk {
public:
    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        m_isSynced = false;
        return ForwardingDisk::rename(from, name, to, newName, how);
    }
    Result<void> sync(Handle handle) noexcept override
    {
        if (m_syncsLeft && (*m_syncsLeft)-- <= 0)
            return Failure::system(EDQUOT);
        m_isSynced = true;
        return ForwardingDisk::sync(handle);
    }

    [[nodiscard]] bool isSynced() const noexcept { return m_isSynced; }

    /// From then on every one fails.
    void failSyncsAfter(int count) noexcept { m_syncsLeft = count; }

private:
    std::optional<int> m_syncsLeft;
    bool m_isSynced = true;
};
