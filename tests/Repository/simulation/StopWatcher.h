// SPDX-License-Identifier: MIT
#pragma once

#include "MemoryDisk.h"

#include <functional>
#include <optional>
#include <vector>

/// What comes between an operation and its end.
enum class StopKind : std::uint8_t {
    nothing,
    kill,           ///< The program ends after any of its calls.
    powerCut,       ///< So does the whole computer.
    failure,        ///< One call fails.
    lastingFailure, ///< All calls fail from one on, or all of one kind.
    lostAnswer,     ///< A rename takes place and reports a failure.
    shortTransfer,  ///< Calls read or write less than they were asked to.
    otherProgram,   ///< Another program acts between two calls.
};
inline constexpr int stopKindCount = 8;

[[nodiscard]] const char *nameOf(StopKind kind) noexcept;

/// Which calls of an operation are met, and how.
struct StopPlan {
    StopKind kind = StopKind::nothing;

    /// The number of the call, or of the first.
    std::uint32_t call = 0;
    int error = 0;

    /// After how many calls another program acts again; 0 when it does not.
    std::uint32_t every = 0;

    /// Only calls of this kind count.
    std::optional<DiskCall::Kind> only;
};

/// Carries out a plan while an operation runs, and keeps what the disk would have held after each
/// stop.
class StopWatcher final : public DiskWatcher {
public:
    explicit StopWatcher(std::uint64_t seed)
        : m_dice(seed)
    {
    }

    void begin(const StopPlan &plan, std::function<bool()> act);

    [[nodiscard]] const std::vector<MemoryDisk::Image> &images() const noexcept { return m_images; }

    /// Whether a call failed, was answered otherwise or met another program.
    [[nodiscard]] bool hasMet() const noexcept { return m_hasMet; }

    Fate before(MemoryDisk &disk, const DiskCall &call) noexcept override;
    void after(MemoryDisk &disk, const DiskCall &call) noexcept override;

private:
    [[nodiscard]] Fate met(Fate::Kind kind, const DiskCall &call) noexcept;

    Dice m_dice;
    StopPlan m_plan;
    std::function<bool()> m_act;
    std::vector<MemoryDisk::Image> m_images;
    std::uint32_t m_count = 0;
    bool m_hasMet = false;
};
