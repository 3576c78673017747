// SPDX-License-Identifier: MIT
#include "FileStamp.h"

namespace {

constexpr std::int64_t second = 1'000'000'000;

/// Some file systems keep whole seconds only, or pairs of them.
constexpr std::int64_t settlingTimeOf(std::int64_t changed) noexcept
{
    return changed % second == 0 ? 3 * second : FileStamp::settlingTime;
}

} // namespace

FileStamp::FileStamp(const FileStatus &status, std::int64_t readNotBefore) noexcept
{
    if (status.changed + settlingTimeOf(status.changed) >= readNotBefore)
        return;
    m_identity = status.identity;
    m_size = status.size;
    m_modified = status.modified;
    m_changed = status.changed;
}

bool FileStamp::isOf(const FileStatus &status) const noexcept
{
    return m_changed == status.changed && m_modified == status.modified && m_size == status.size &&
           m_identity == status.identity;
}
