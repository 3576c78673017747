// SPDX-License-Identifier: MIT
#pragma once

#include "ForwardingDisk.h"

#include <cerrno>

/// Counts how often a file is opened to be read, and how often one is looked at.
class CountingDisk final : public ForwardingDisk {
public:
    Result<Handle> openFile(Handle folder, const char *name) noexcept override
    {
        ++m_reads;
        return ForwardingDisk::openFile(folder, name);
    }
    using ForwardingDisk::status;
    Result<FileStatus> status(Handle folder, const char *name) noexcept override
    {
        ++m_looks;
        if (m_isBroken)
            return Failure::system(EIO);
        return ForwardingDisk::status(folder, name);
    }

    /// Nothing can be looked at from now on.
    void breakDown() noexcept { m_isBroken = true; }

    /// False as on a network.
    void setReliableTimes(bool isReliable) noexcept { m_hasReliableTimes = isReliable; }
    [[nodiscard]] bool hasReliableTimes(Handle /*handle*/) noexcept override
    {
        return m_hasReliableTimes;
    }

    /// Since the last call.
    [[nodiscard]] int takeReads() noexcept { return std::exchange(m_reads, 0); }
    [[nodiscard]] int takeLooks() noexcept { return std::exchange(m_looks, 0); }

private:
    int m_reads = 0;
    int m_looks = 0;
    bool m_hasReliableTimes = true;
    bool m_isBroken = false;
};
