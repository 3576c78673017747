// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"
#include "FileChange.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What a folder held at some time, and a second folder over the same files.
///
/// In the second one sub-folders are made anew and every file that does not change is a hard link,
/// so that nothing is copied and nothing is lost of what other programs keep there. Where the file
/// system has no hard links, files and symbolic links are copied.
class FolderTree {
public:
    /// What a missing folder held.
    FolderTree() = default;

    /// Remembers the names and inodes of all that a folder holds. Throws a FileError for other file
    /// systems mounted inside, for immutable folders, and for folders that lie too deep.
    explicit FolderTree(const Directory &folder)
        : FolderTree(folder, 0)
    {
    }

    /// Of the folder itself, by ascending name.
    [[nodiscard]] const DirectoryListing &listing() const noexcept { return m_listing; }

    /// Of a sub-folder; null when there was none of that name.
    [[nodiscard]] const FolderTree *find(const char *name) const noexcept;

    /// Fills an empty folder with what is remembered, but for the files that change, which get
    /// their new content. The original is null when there is none. Changes are ordered by folder,
    /// then by name. The own folders are the sub-folders that there must be; they and the folder
    /// itself are closed to others.
    ///
    /// May be called once. False when another program took something away meanwhile. Throws a
    /// FileError for what can be neither linked, copied nor written.
    [[nodiscard]] bool copyTo(const Directory &copy, const Directory *original,
                              std::span<const FileChange> changes,
                              std::span<const char *const> ownFolders);

    /// Puts the second folder on the disk: its folders, and the files of its own. Throws.
    void syncCopy(const Directory &copy) const;

    /// True when files had to be copied, so that what another program writes into the original
    /// is not in the second folder.
    [[nodiscard]] bool hasCopies() const noexcept;

    /// Whether the original still holds what is remembered, judged by names and identity, and for
    /// files that are not in both folders by size and time. What another program writes into a file
    /// that is in both is no change.
    Result<bool> isOriginalStill(Disk &disk, Disk::Handle original, Disk::Handle copy) noexcept;

    /// The same of the second folder. The original is -1 where there is none.
    Result<bool> isCopyStill(Disk &disk, Disk::Handle copy, Disk::Handle original) const noexcept;

    /// Whether the original holds nothing else than what is remembered, or a part of that.
    Result<bool> hasNothingElse(Disk &disk, Disk::Handle original, Disk::Handle copy) noexcept;

    /// Removes from the original what is remembered and still the same. Ends early at the deadline:
    /// false then, and the next call goes on. To be asked after hasNothingElse().
    using Deadline = std::chrono::steady_clock::time_point;
    [[nodiscard]] bool removeFrom(Disk &disk, Disk::Handle original, Deadline deadline) noexcept;

private:
    /// A file that only one of the two folders has, or each its own.
    struct OwnFile {
        std::string name;
        std::optional<FileStatus> original;
        std::optional<FileStatus> copy;
    };

    class Comparison;
    enum class Extent : std::uint8_t { all, atMostAll };

    FolderTree(const Directory &folder, int depth);

    [[nodiscard]] bool copyLevel(const Directory &copy, const Directory &original,
                                 std::span<const FileChange> changes, bool isTop);
    [[nodiscard]] bool copyFolder(const Directory &copy, const Directory &original,
                                  const char *name, std::span<const FileChange> changes);
    [[nodiscard]] bool copyEntry(const Directory &copy, const Directory &original,
                                 const DirectoryListing::Entry &entry);
    [[nodiscard]] bool copyOver(const Directory &copy, const Directory &original,
                                const DirectoryListing::Entry &entry);
    [[nodiscard]] bool leaveOut(const Directory &original, const char *name);
    void makeOwnFolder(const Directory &copy, const char *name,
                       std::span<const FileChange> changes);
    void write(const Directory &copy, std::span<const FileChange> changes);
    Result<bool> compareOriginal(Disk &disk, Disk::Handle original, Disk::Handle copy,
                                 Extent extent) noexcept;
    [[nodiscard]] bool isStillThere(Disk &disk, Disk::Handle original,
                                    const DirectoryListing::Entry &entry) const noexcept;
    [[nodiscard]] const OwnFile *ownFile(const char *name) const noexcept;
    [[nodiscard]] OwnFile &addOwnFile(const char *name);
    [[nodiscard]] FolderTree *subFolder(const char *name) noexcept;
    [[nodiscard]] std::size_t syncCount() const noexcept;
    void syncEach(const Directory &copy) const;

    DirectoryListing m_listing;
    std::vector<std::string> m_folderNames;
    std::vector<FolderTree> m_folders;

    /// By ascending name.
    std::vector<OwnFile> m_ownFiles;

    /// Entries of the second folder that are no own files.
    std::size_t m_sharedCount = 0;
    bool m_hasCopies = false;

    /// Some file systems give a listing passing numbers, which tell nothing later.
    bool m_hasPassingInodes = false;

    /// How many entries removeFrom() is through with.
    std::size_t m_removedCount = 0;
};

/// Removes a whole tree as far as it can be removed, without allocating. Symbolic links are
/// removed, not followed. False when something stays.
bool removeTree(Disk &disk, Disk::Handle parent, const char *name) noexcept;
