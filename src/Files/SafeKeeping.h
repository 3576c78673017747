// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <string>

/// Puts files and folders away into a folder elsewhere, perhaps on another disk, so that at every
/// moment each is whole in at least one of the two places.
///
/// On the same disk an entry is renamed. To another one it is copied, synced and compared before
/// the original goes. Afterwards it is on the disk at its new place.
class SafeKeeping {
public:
    explicit SafeKeeping(Directory target)
        : m_target(std::move(target))
    {
    }

    [[nodiscard]] const Directory &target() const noexcept { return m_target; }

    /// Puts an entry away into a sub-folder of the target, which is made where it is missing; an
    /// empty name is the target itself. Nothing is done when the entry is gone by now. Throws
    /// RepositoryError::externalChange about one that is no longer what it was, and a FileError.
    void take(const Directory &from, const char *name, const FileStatus &seen,
              const std::string &subFolder);

private:
    [[nodiscard]] Directory folderFor(const std::string &subFolder) const;

    Directory m_target;
};
