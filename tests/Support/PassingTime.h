// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

/// Lets time pass at once, for what must not happen however long a test would wait.
///
/// Its source file replaces the C library's clock for the whole test program, so that every timer
/// and every clock takes part, wherever it is kept.
namespace PassingTime {

/// Afterwards every timer that was to end within this time has run.
void pass(std::chrono::milliseconds time);

/// While it lives no time passes by itself, so that a slow computer makes no difference.
struct Standstill {
    Standstill();
    Standstill(const Standstill &) = delete;
    Standstill &operator=(const Standstill &) = delete;
    ~Standstill();
};

} // namespace PassingTime
