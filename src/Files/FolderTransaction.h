// SPDX-License-Identifier: MIT
#pragma once

#include "FolderTree.h"
#include "LiveSwap.h"
#include "OldFolder.h"

#include <functional>
#include <optional>
#include <span>

/// Changes files of a whole folder as one step, so that a crash, a failed write or a power cut
/// leaves either all of the old content or all of the new.
///
/// Begins by making the new folder in a hidden stage, in which files that do not change are hard
/// links. Then it commits once, or is taken back by its destructor, which neither throws nor
/// allocates.
class FolderTransaction {
public:
    /// Makes the stage and puts it on the disk. The original is what lies at the live place, null
    /// when nothing does, and the tree is what was read of it. For the changes and the own folders
    /// see FolderTree::copyTo(). Place and original must outlive this. Throws a FileError.
    FolderTransaction(const SwapPlace &place, const Directory *original, FolderTree tree,
                      std::span<const FileChange> changes, std::span<const char *const> ownFolders);

    /// True when files had to be copied: what another program writes into them is not in the new
    /// folder.
    [[nodiscard]] bool hasCopies() const noexcept { return m_stage.tree.hasCopies(); }

    /// Exchanges the two folders. Once that is done, and while it can still be taken back, the
    /// check says whether the old files that changed are what they were.
    ///
    /// What other programs did meanwhile to free entries of the original is carried over. False
    /// when something guarded changed in it; then that is as it was, and a new transaction may be
    /// tried. What somebody did while the new folder was live for a moment is then carried back,
    /// or, where it is guarded, stays with that as a recovery copy. Throws a FileError or
    /// RepositoryError::recoveryRequired. On success the new content is on the disk.
    [[nodiscard]] bool commit(const std::function<bool()> &areOldFilesSame);

    /// After a commit: what is left to be removed. Takes over the folders that the transaction was
    /// made of.
    [[nodiscard]] OldFolder takeOldFolder(Directory hidden, Directory original,
                                          std::string stageName, std::string recoveryName) noexcept;

private:
    /// The hidden folder. Gone with this, unless it was released or may be live.
    struct Stage {
        Stage(const SwapPlace &swapPlace, const Directory *originalFolder, FolderTree content);
        Stage(const Stage &) = delete;
        Stage &operator=(const Stage &) = delete;
        ~Stage();

        const SwapPlace &place;
        const Directory *const original;
        FolderTree tree;
        Directory folder;
        std::optional<FileIdentity> identity;
        bool isFinished = false;
        bool isReleased = false;
        bool mayBeFound = false; ///< As LiveSwap says.
    };

    void catchUp();

    Stage m_stage;
};
