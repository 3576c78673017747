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
    /// So deep may folders lie in folders. Each on the way is held open: deeper than anybody sorts
    /// files, and far from the number of files that a process may open.
    static constexpr int mostFolders = 128;

    /// Says which entries may not change unseen, by the sub-folder that they lie in, empty for the
    /// folder itself, and by their names. What lies deeper is free.
    using IsGuarded = bool (*)(std::string_view folder, std::string_view name) noexcept;

    /// What a missing folder held.
    FolderTree() = default;

    /// Remembers the names and inodes of all that a folder holds. Without an answer to what is
    /// guarded all of it is. Throws a FileError for other file systems mounted inside, for
    /// immutable folders, and for folders that lie too deep.
    explicit FolderTree(const Directory &folder, IsGuarded isGuarded = nullptr)
        : FolderTree(folder, isGuarded, {}, 0)
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
    /// May be called once. False when another program took something guarded away meanwhile. Throws
    /// a FileError for what can be neither linked, copied nor written.
    [[nodiscard]] bool copyTo(const Directory &copy, const Directory *original,
                              std::span<const FileChange> changes,
                              std::span<const char *const> ownFolders);

    /// Puts the second folder on the disk: its folders, and the files of its own. Throws.
    void syncCopy(const Directory &copy) const;

    /// True when files had to be copied, so that what another program writes into the original
    /// is not in the second folder.
    [[nodiscard]] bool hasCopies() const noexcept;

    /// Does in the second folder, which nobody sees yet, what other programs did in the original to
    /// free entries since it was read, and puts that on the disk. False when there was nothing.
    /// Throws like copyTo().
    [[nodiscard]] bool catchUp(const Directory &copy, const Directory &original);

    /// True when the original holds what is remembered, judged by names and identity, and for files
    /// that are not in both folders by size and time. What another program writes into a file that
    /// is in both is no change.
    ///
    /// What is free need not be the same: the copy, which is live, gets what came into the
    /// original, and loses what left it. False when something guarded differs, or when something
    /// free cannot be carried over.
    Result<bool> settleOriginal(Disk &disk, Disk::Handle original, Disk::Handle copy) noexcept;

    /// The same of the second folder, when the original is live again. The original is -1 where
    /// there is none; then all is guarded.
    Result<bool> settleCopy(Disk &disk, Disk::Handle copy, Disk::Handle original) noexcept;

    /// The same of the original, of which guarded files may be missing and, once its removal has
    /// begun, all others, too.
    Result<bool> settleRest(Disk &disk, Disk::Handle original, Disk::Handle copy,
                            bool isBeingRemoved) noexcept;

    /// Removes from the original what is remembered and still the same. Ends early at the deadline:
    /// false then, and the next call goes on; after true it begins anew. To be called after
    /// settleRest().
    using Deadline = std::chrono::steady_clock::time_point;
    [[nodiscard]] bool removeFrom(Disk &disk, Disk::Handle original, Deadline deadline) noexcept;

private:
    /// A file that only one of the two folders has, or each its own.
    struct OwnFile {
        std::string name;
        std::optional<FileStatus> original;
        std::optional<FileStatus> copy;
    };

    /// A free file, or anything else but a folder, that is in both folders.
    struct FreeFile {
        std::string name;
        FileStatus status;
    };

    /// What becomes of entries that are missing.
    enum class Missing : std::uint8_t {
        isCarried,        ///< Guarded ones are a difference.
        isCarriedOrTaken, ///< Guarded ones may be missing.
        isNothing,
    };

    /// One of the two folders, "here", is looked through; the other one, "there", is live.
    struct Settlement {
        Disk &disk;
        bool isOriginal; ///< Whether the original is here.
        Missing missing = Missing::isCarried;

        /// Guarded entries are passed over, for the sake of haste.
        bool isForFree = false;
    };
    class Settling;

    FolderTree(const Directory &folder, IsGuarded isGuarded, std::string name, int depth);

    [[nodiscard]] bool guards(const char *name) const noexcept;
    [[nodiscard]] FolderTree subTree(const Directory &folder, const char *name) const;
    void addFolder(const char *name, FolderTree tree);
    void removeFolder(const char *name) noexcept;
    void leaveOutOfListing(std::vector<std::size_t> nameOffsets);

    [[nodiscard]] bool copyLevel(const Directory &copy, const Directory &original,
                                 std::span<const FileChange> changes, bool isTop);
    [[nodiscard]] bool copyFolder(const Directory &copy, const Directory &original,
                                  const char *name, std::span<const FileChange> changes);
    [[nodiscard]] bool copyEntry(const Directory &copy, const Directory &original, const char *name,
                                 FileKind kind);
    [[nodiscard]] bool copyOver(const Directory &copy, const Directory &original, const char *name,
                                FileKind kind);
    [[nodiscard]] bool leaveOut(const Directory &original, const char *name);
    void makeOwnFolder(const Directory &copy, const char *name,
                       std::span<const FileChange> changes);
    void write(const Directory &copy, std::span<const FileChange> changes);
    [[nodiscard]] bool copyFree(const Directory &copy, const Directory &original, const char *name,
                                FileKind kind);
    [[nodiscard]] bool copyLate(const Directory &copy, const Directory &original, const char *name,
                                FileKind kind);
    void drop(const Directory &copy, const char *name, FileKind kind);
    [[nodiscard]] bool catchUpHere(const Directory &copy, const Directory &original);
    [[nodiscard]] const FreeFile *freeFile(const char *name) const noexcept;
    void addFreeFile(FreeFile file);
    [[nodiscard]] bool hasChanged(Disk &disk, Disk::Handle original) const noexcept;
    Result<bool> settle(const Settlement &how, Disk::Handle here, Disk::Handle there) noexcept;
    Result<bool> settleFolder(const Settlement &how, Disk::Handle here, Disk::Handle there,
                              const char *name, FolderTree &tree, bool &hasCarried) noexcept;
    [[nodiscard]] bool isStillThere(Disk &disk, Disk::Handle original,
                                    const DirectoryListing::Entry &entry) const noexcept;
    [[nodiscard]] static bool isSameContent(const FileStatus &a, const FileStatus &b) noexcept;
    [[nodiscard]] const OwnFile *ownFile(const char *name) const noexcept;
    [[nodiscard]] OwnFile &addOwnFile(const char *name);
    [[nodiscard]] FolderTree *subFolder(const char *name) noexcept;
    [[nodiscard]] std::size_t syncCount() const noexcept;
    void syncEach(const Directory &copy) const;

    IsGuarded m_isGuarded = nullptr;

    /// Of the folder itself, below the one that the answer is asked for.
    std::string m_name;
    int m_depth = 0;

    /// When the folder had changed last before it was listed.
    std::int64_t m_changed = 0;
    DirectoryListing m_listing;
    std::vector<std::string> m_folderNames;
    std::vector<FolderTree> m_folders;

    /// By ascending name.
    std::vector<OwnFile> m_ownFiles;

    /// By ascending name.
    std::vector<FreeFile> m_freeFiles;

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
