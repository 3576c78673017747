// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

/// Holds back what asks the program to end (SIGINT, SIGTERM, SIGHUP) while it lives: what is under
/// way is brought to its end, and then the signal takes its course.
class SignalDelay {
public:
    SignalDelay() noexcept;
    SignalDelay(const SignalDelay &) = delete;
    SignalDelay &operator=(const SignalDelay &) = delete;
    ~SignalDelay();

    /// Whether one of them waits, for who has a good place to stop.
    [[nodiscard]] static bool isAsked() noexcept;

private:
    sigset_t m_before{};
};
