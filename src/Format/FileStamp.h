// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

/// By what a file is known again without being read: a program can write into a file and set its
/// time of modification back, but not its time of change.
///
/// Two changes within one tick of the clock have the same time. So a file that changed just before
/// it was looked at has no stamp, which is unlike every file.
struct FileStamp {
    FileStamp() = default;

    /// Of a file that was read after it had this status, and not before this time. The status must
    /// be of a disk with reliable times.
    FileStamp(const FileStatus &status, std::int64_t readNotBefore) noexcept;

    [[nodiscard]] bool isOf(const FileStatus &status) const noexcept;

    /// For how long after a change a file gets no stamp, on a disk whose times have fractions of a
    /// second. The kernel's clock ticks at least every 10 ms.
    static constexpr std::int64_t settlingTime = 30'000'000;

private:
    FileIdentity m_identity;
    std::int64_t m_size = -1;
    std::int64_t m_modified = 0;
    std::int64_t m_changed = 0;
};
