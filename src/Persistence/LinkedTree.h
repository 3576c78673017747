// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// A second folder tree over the files of a first one: sub-folders are made anew, every file is a
/// hard link, so that nothing is copied and nothing is lost of what other programs keep there.
///
/// Remembers what the first tree held, and can tell later whether that is still so. Where the file
/// system has no hard links, files and symbolic links are copied.
class LinkedTree {
public:
    /// Fills an empty folder with everything that the original holds. Throws a FileError for what
    /// can be neither linked nor copied, and for other file systems mounted inside.
    LinkedTree(const Directory &original, const Directory &copy);

    /// A tree over nothing.
    LinkedTree() = default;

    /// Puts the copy on the disk: its folders, and every file that is not one of the links.
    void sync(const Directory &copy) const;

    /// Whether the original holds what it held when it was linked, judged by names and identity,
    /// and for copied files by size and time. A link shares its content with the original, so what
    /// another program writes into such a file is in the copy too, and is no change here.
    /// The copy may be null where it no longer has this folder.
    [[nodiscard]] bool isAsLinked(const Directory &original, const Directory *copy) const;

    /// Removes from the original what it held when it was linked, and nothing that came later.
    void removeFrom(const Directory &original) const noexcept;

private:
    struct CopiedFile {
        off_t size;
        timespec modified;
    };

    /// False when the entry has gone meanwhile.
    bool carry(const Directory &original, const Directory &copy, const char *name,
               DirectoryListing::Kind kind);
    void carryFolder(const Directory &original, const Directory &copy, const char *name);

    [[nodiscard]] bool isSameEntry(const Directory &original, const Directory *copy,
                                   const DirectoryListing &listing,
                                   const DirectoryListing::Entry &now,
                                   const DirectoryListing::Entry &linked) const;
    void collectLinks(std::vector<ino_t> &inodes) const;

    DirectoryListing m_listing;
    std::map<std::string, CopiedFile, std::less<>> m_copied;
    std::vector<std::string> m_folderNames;
    std::vector<LinkedTree> m_folders;
};

/// Removes a whole tree as far as it can be removed. Symbolic links are removed, not followed.
void removeTree(const Directory &parent, const char *name) noexcept;
