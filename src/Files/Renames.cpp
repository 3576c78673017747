// SPDX-License-Identifier: MIT
#include "Renames.h"

#include "Descriptor.h"

Result<void> renameToFreeName(Disk &disk, Disk::Handle from, const char *name, Disk::Handle to,
                              const char *newName) noexcept
{
    const Result<void> moved = disk.rename(from, name, to, newName, Disk::Rename::noReplace);
    if (moved || !(meansNoFlags(moved.failure()) || moved.failure().is(EINTR)))
        return moved;
    const auto there = uninterrupted([&] { return disk.status(to, newName); });
    if (there)
        return Failure::system(EEXIST);
    if (!there.failure().is(ENOENT))
        return there.failure();
    return uninterrupted(
        [&] { return disk.rename(from, name, to, newName, Disk::Rename::replace); });
}

Result<void> carryToFreeName(Disk &disk, Disk::Handle from, const char *name, Disk::Handle to,
                             const char *newName) noexcept
{
    const Result<void> moved = renameToFreeName(disk, from, name, to, newName);
    if (moved || moved.failure().is(EEXIST))
        return moved;
    const auto here = uninterrupted([&] { return disk.status(from, name); });
    return !here && here.failure().is(ENOENT) ? Result<void>() : moved;
}
