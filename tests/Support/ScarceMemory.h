// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// Has allocations of the thread that made it fail while it lives: the first one, or all from it
/// on, after a number of others that succeed. Of one and the same process there is one at a time.
///
/// Its source file replaces malloc() and its kin for the whole test program, and with them operator
/// new and what libraries allocate.
class ScarceMemory {
public:
    enum class Lack : bool { passing, lasting };

    ScarceMemory(std::size_t successes, Lack lack) noexcept;
    ScarceMemory(const ScarceMemory &) = delete;
    ScarceMemory &operator=(const ScarceMemory &) = delete;
    ~ScarceMemory();

    /// How many allocations failed so far, of all that there were.
    [[nodiscard]] static std::size_t failures() noexcept;
};
