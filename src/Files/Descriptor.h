// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

#include <cerrno>
#include <utility>

/// Owns one open file or folder of a disk and closes it.
class Descriptor {
public:
    Descriptor(Disk &disk, Disk::Handle handle) noexcept
        : m_disk(&disk)
        , m_handle(handle)
    {
    }
    Descriptor(Descriptor &&other) noexcept
        : m_disk(other.m_disk)
        , m_handle(std::exchange(other.m_handle, -1))
    {
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(m_disk, other.m_disk);
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    ~Descriptor() { static_cast<void>(close()); }

    /// Fails when something written was lost on its way. A close that reports an interruption has
    /// closed all the same, so it is never repeated.
    Result<void> close() noexcept
    {
        const Disk::Handle handle = std::exchange(m_handle, -1);
        if (handle < 0)
            return {};
        const Result<void> closed = m_disk->close(handle);
        return !closed && closed.failure().is(EINTR) ? Result<void>() : closed;
    }

    [[nodiscard]] Disk &disk() const noexcept { return *m_disk; }
    [[nodiscard]] Disk::Handle get() const noexcept { return m_handle; }

private:
    Disk *m_disk;
    Disk::Handle m_handle;
};

/// Repeats a call that a signal interrupts. More interruptions than any signals explain are a
/// failure like others.
template <typename Call>
auto uninterrupted(Call call)
{
    constexpr int mostTries = 100;
    auto result = call();
    for (int i = 1; i < mostTries && !result && result.failure().is(EINTR); ++i)
        result = call();
    return result;
}
