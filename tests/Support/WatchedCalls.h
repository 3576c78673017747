// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/// Stands between the storage and the kernel while it lives, for what another program or the file
/// system does in the middle of a load or a save.
///
/// Its source file replaces the C library's functions for the whole test program.
struct WatchedCalls {
    WatchedCalls();
    WatchedCalls(const WatchedCalls &) = delete;
    WatchedCalls &operator=(const WatchedCalls &) = delete;
    ~WatchedCalls();

    /// Told of a read, before it takes place.
    std::function<void(int file)> beforeRead;

    /// Told of each fsync and syncfs, before it takes place.
    std::function<void(int file)> beforeSync;

    /// Asked instead of a rename; calling the last one is the rename itself. With an answer other
    /// than 0 it sets errno.
    std::function<int(const char *from, const char *to, unsigned flags,
                      const std::function<int()> &rename)>
        onRename;
};
