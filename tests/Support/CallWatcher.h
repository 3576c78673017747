// SPDX-License-Identifier: MIT
#pragma once

#include "MemoryDisk.h"

#include <functional>
#include <utility>

/// Is told of every call before it happens, and decides what comes of it.
class CallWatcher final : public DiskWatcher {
public:
    using Decision = std::function<Fate(MemoryDisk &, const DiskCall &)>;

    CallWatcher(MemoryDisk &disk, Decision decision)
        : m_disk(disk)
        , m_decision(std::move(decision))
    {
        disk.setCallCount(0);
        disk.setWatcher(this);
    }
    CallWatcher(const CallWatcher &) = delete;
    CallWatcher &operator=(const CallWatcher &) = delete;
    ~CallWatcher() { m_disk.setWatcher(nullptr); }

    Fate before(MemoryDisk &disk, const DiskCall &call) noexcept override
    {
        return m_decision(disk, call);
    }
    void after(MemoryDisk & /*disk*/, const DiskCall & /*call*/) noexcept override {}

private:
    MemoryDisk &m_disk;
    const Decision m_decision;
};
