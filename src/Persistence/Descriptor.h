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

    /// A close that reports an interruption has closed all the same, so it is never repeated.
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    [[nodiscard]] bool isOpen() const noexcept { return m_fd >= 0; }
    [[nodiscard]] int get() const noexcept { return m_fd; }

private:
    int m_fd;
};

/// Repeats a system call for as long as a signal interrupts it.
template <typename Call>
auto uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}
