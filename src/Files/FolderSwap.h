// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"
#include "LinkedTree.h"

#include <optional>
#include <string>

/// Puts a finished stage in the place of a live folder beside it, and takes that back unless told
/// to keep it.
///
/// From the swap on the old folder has the recovery name, so that an interruption leaves it behind
/// under a name that asks for attention. Where the file system can exchange two folders in one
/// step, the live folder is never missing.
///
/// Folders are told apart by what they are and not by what they are called: another program may
/// move one at any time, and then nothing of its is touched.
class FolderSwap {
public:
    struct Names {
        std::string live;
        std::string stage;
        std::string recovery;
    };

    /// Does nothing yet. The live folder is null when there is none. The directories must outlive
    /// this.
    FolderSwap(const Directory &parent, Names names, const Directory *live, const Directory &stage);
    FolderSwap(const FolderSwap &) = delete;
    FolderSwap &operator=(const FolderSwap &) = delete;

    /// Undoes what keep() did not make final. Never throws; what cannot be moved back stays where
    /// it is, and the old folder then keeps the recovery name.
    ~FolderSwap();

    /// Throws RepositoryError::externalChange when another folder was in the place of the live one,
    /// and RepositoryError::recoveryRequired for a failure that could not be undone.
    void swap();

    /// Makes the swap durable. The old folder then has the stage's name, which nobody looks for.
    /// Throws like swap().
    void keep();

    /// Gives the old folder the recovery name again, because there is something in it that nobody
    /// has read, and throws RepositoryError::recoveryRequired.
    [[noreturn]] void keepOldFolder();

    /// Removes the old folder as far as it is what the tree remembers.
    void removeOldFolder(const LinkedTree &content, const Directory &folder) noexcept;

private:
    void publish();
    void exchange();
    void moveInTwoSteps();
    [[nodiscard]] bool tryExchange() noexcept;
    [[nodiscard]] bool tryMove(std::string &name, const std::string &to) noexcept;
    void move(std::string &name, const std::string &to);
    void sync();

    /// Takes everything back, and throws what errno says.
    [[noreturn]] void fail();
    void undo() noexcept;

    /// Nothing, with errno set, when it cannot be told.
    [[nodiscard]] std::optional<bool> isNew(const std::string &name) const noexcept;
    [[nodiscard]] std::optional<bool> isOld(const std::string &name) const noexcept;

    const Directory &m_parent;
    const Names m_names;
    const std::optional<FileIdentity> m_oldFolder;
    const FileIdentity m_newFolder;

    /// What the two folders are called now.
    std::string m_old;
    std::string m_new;
    bool m_canExchange = true;
    bool m_isDone = false;
};
