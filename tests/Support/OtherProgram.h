// SPDX-License-Identifier: MIT
#pragma once

#include "MemoryDisk.h"

#include <string>

/// Another program that works on a disk in memory, by absolute paths. No watcher sees its calls.
///
/// What it does is on the disk at once: it syncs, as a careful program does. Each call answers
/// whether it did what was asked.
class OtherProgram {
public:
    explicit OtherProgram(MemoryDisk &disk) noexcept
        : m_disk(disk)
    {
    }

    /// Makes a folder and those above it.
    bool makeFolder(const std::string &path);

    /// Makes a file that is not there yet.
    bool make(const std::string &path, const std::string &bytes);

    /// Writes into the file that is there.
    bool overwrite(const std::string &path, const std::string &bytes);

    /// Writes another file and gives it the name.
    bool replace(const std::string &path, const std::string &bytes);
    bool remove(const std::string &path);

    /// Also a folder with all that it holds.
    bool removeAll(const std::string &path);
    bool rename(const std::string &path, const std::string &newPath);

    /// Puts on the disk what anybody has written.
    void syncAll();

private:
    class Place;

    MemoryDisk &m_disk;
};
