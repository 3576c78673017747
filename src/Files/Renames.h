// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

#include <cerrno>

/// What a kernel or a file system answers that does not know the flags of a rename, and what some
/// sandboxes answer for it.
[[nodiscard]] constexpr bool meansNoFlags(const Failure &failure) noexcept
{
    return failure.is(EINVAL) || failure.is(ENOSYS) || failure.is(EOPNOTSUPP) || failure.is(EPERM);
}

/// Renames where nothing has the new name: EEXIST otherwise. Where the file system cannot promise
/// that, it is looked at just before. The answer to a rename that took place may be lost; EEXIST
/// follows then.
Result<void> renameToFreeName(Disk &disk, Disk::Handle from, const char *name, Disk::Handle to,
                              const char *newName) noexcept;

/// Moves an entry to another folder, where nothing has the new name: EEXIST otherwise. Moved is
/// also what has left already, by another hand or although its rename is reported as failed.
Result<void> carryToFreeName(Disk &disk, Disk::Handle from, const char *name, Disk::Handle to,
                             const char *newName) noexcept;
