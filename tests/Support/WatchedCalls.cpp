// SPDX-License-Identifier: MIT
#include "WatchedCalls.h"

#include <QtGlobal>
#include <cstdio>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

WatchedCalls *current = nullptr;

int syncWatched(long number, int file)
{
    if (current && current->beforeSync)
        current->beforeSync(file);
    return static_cast<int>(::syscall(number, file));
}

int renameWatched(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags)
{
    const auto rename = [&] {
        return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    };
    return current && current->onRename ? current->onRename(from, to, flags, rename) : rename();
}

} // namespace

WatchedCalls::WatchedCalls()
{
    current = this;
}

WatchedCalls::~WatchedCalls()
{
    current = nullptr;
}

// Exported, since the libraries are to call these.

extern "C" Q_DECL_EXPORT ssize_t read(int file, void *buffer, size_t size)
{
    if (current && current->beforeRead)
        current->beforeRead(file);
    return ::syscall(SYS_read, file, buffer, size);
}

extern "C" Q_DECL_EXPORT int fsync(int file)
{
    return syncWatched(SYS_fsync, file);
}

extern "C" Q_DECL_EXPORT int syncfs(int file) noexcept
{
    return syncWatched(SYS_syncfs, file);
}

extern "C" Q_DECL_EXPORT int renameat(int fromFolder, const char *from, int toFolder,
                                      const char *to) noexcept
{
    return renameWatched(fromFolder, from, toFolder, to, 0);
}

extern "C" Q_DECL_EXPORT int renameat2(int fromFolder, const char *from, int toFolder,
                                       const char *to, unsigned flags) noexcept
{
    return renameWatched(fromFolder, from, toFolder, to, flags);
}
