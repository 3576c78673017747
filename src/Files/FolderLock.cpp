// SPDX-License-Identifier: MIT
#include "FolderLock.h"

bool FolderLock::take(const Directory &folder, Disk::Lock how)
{
    const Result<FileStatus> status = folder.status();
    if (!status || (m_held && m_held->identity == status->identity))
        return true;
    // One of its own: the folder is open no longer than a save.
    Disk &disk = folder.disk();
    const auto handle = uninterrupted([&] { return disk.openPath(folder.path().c_str()); });
    if (!handle)
        return true;
    Held taken{Descriptor(disk, *handle), status->identity};
    const Result<FileStatus> opened = disk.status(taken.folder.get());
    if (!opened || opened->identity != status->identity)
        return true;
    const Result<void> locked = uninterrupted([&] { return disk.lock(taken.folder.get(), how); });
    if (!locked)
        return !locked.failure().is(EWOULDBLOCK);
    m_held.emplace(std::move(taken));
    return true;
}
