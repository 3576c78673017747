// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

/// Owns one open file descriptor and closes it.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) noexcept
        : m_fd(fd)
    {
    }
    Descriptor(Descriptor &&other) noexcept
        : m_fd(std::exchange(other.m_fd, -1))
    {
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }

    ~Descriptor() { static_cast<void>(close()); }

    /// False, with errno set, when something written was lost on its way. A close that reports an
    /// interruption has closed all the same, so it is never repeated.
    [[nodiscard]] bool close() noexcept
    {
        const int fd = std::exchange(m_fd, -1);
        return fd < 0 || ::close(fd) == 0 || errno == EINTR;
    }

    [[nodiscard]] bool isOpen() const noexcept { return m_fd >= 0; }
    [[nodiscard]] int get() const noexcept { return m_fd; }

private:
    int m_fd;
};

/// Repeats a system call that a signal interrupts. More interruptions than any signals explain are
/// an error like others.
template <typename Call>
auto uninterrupted(Call call)
{
    constexpr int mostTries = 100;
    auto result = call();
    for (int i = 1; i < mostTries && result < 0 && errno == EINTR; ++i)
        result = call();
    return result;
}
