// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Numbers that look random and that the seed decides, the same on every machine.
class Dice {
public:
    explicit Dice(std::uint64_t seed) noexcept
        : m_state(seed)
    {
    }

    /// SplitMix64: seeds that lie side by side give sequences that have nothing in common.
    [[nodiscard]] std::uint64_t roll() noexcept
    {
        m_state += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    /// From 0 to one less than the bound, which must not be 0.
    [[nodiscard]] std::uint32_t below(std::uint64_t bound) noexcept
    {
        return static_cast<std::uint32_t>((roll() >> 32U) * bound >> 32U);
    }

    [[nodiscard]] bool hasChance(std::uint32_t percent) noexcept { return below(100) < percent; }

private:
    std::uint64_t m_state;
};
