// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <ctime>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What a folder held at some time, and a second folder over the same files.
///
/// In the second one sub-folders are made anew and every file is a hard link, so that nothing is
/// copied and nothing is lost of what other programs keep there. Where the file system has no hard
/// links, files and symbolic links are copied.
class LinkedTree {
public:
    /// What a missing folder held.
    LinkedTree() = default;

    /// Fills an empty folder with everything that the original holds, and remembers the original.
    /// Throws a FileError for what can be neither linked nor copied, for other file systems mounted
    /// inside, and for folders that lie too deep.
    LinkedTree(const Directory &original, const Directory &copy)
        : LinkedTree(original, copy, 0)
    {
    }

    /// Remembers a folder that has most of its files in common with another one.
    [[nodiscard]] static LinkedTree beside(const LinkedTree &other, const Directory &folder);

    /// Puts a folder on the disk that is as remembered: its folders, and the files of its own.
    void sync(const Directory &folder) const;

    /// From now on the files that the other folder does not have count by size and time, too.
    void watchOwnFiles(const Directory &folder, const LinkedTree &other);

    /// Whether the folder still holds what is remembered, judged by names and identity, and for
    /// files of its own by size and time. What another program writes into a file that both folders
    /// have is in both, and is no change. The twin is the other folder, or null where there is
    /// none. Nothing, with errno set, when the folder cannot be read.
    [[nodiscard]] std::optional<bool> tryIsStill(const Directory &folder,
                                                 const Directory *twin) const noexcept;

    /// Removes from the folder what is remembered, and nothing that came later.
    void removeFrom(const Directory &folder) const noexcept;

private:
    struct OwnFile {
        off_t size;
        timespec modified;
    };

    /// Ascending.
    using Inodes = std::vector<ino_t>;

    LinkedTree(const Directory &original, const Directory &copy, int depth);
    LinkedTree(const Directory &folder, const Inodes &common);

    /// False when the entry has gone meanwhile.
    bool carry(const Directory &original, const Directory &copy, const char *name,
               DirectoryListing::Kind kind, int depth);
    void carryFolder(const Directory &original, const Directory &copy, const char *name, int depth);
    void carryCopy(const Directory &original, const Directory &copy, const char *name,
                   DirectoryListing::Kind kind);

    void watchOwnFiles(const Directory &folder, const Inodes &common);
    void watch(const Directory &folder, const char *name);

    [[nodiscard]] bool isSameEntry(const Directory &folder, const Directory *twin,
                                   const DirectoryListing &listing,
                                   const DirectoryListing::Entry &now,
                                   const DirectoryListing::Entry &before) const noexcept;

    [[nodiscard]] Inodes inodes() const;
    void collectInodes(Inodes &inodes) const;
    [[nodiscard]] std::size_t syncCount() const noexcept;
    void syncEach(const Directory &folder) const;

    DirectoryListing m_listing;
    std::map<std::string, OwnFile, std::less<>> m_ownFiles;
    std::vector<std::string> m_folderNames;
    std::vector<LinkedTree> m_folders;
};

/// Removes a whole tree as far as it can be removed. Symbolic links are removed, not followed.
void removeTree(const Directory &parent, const char *name) noexcept;
