// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <string>

/// Puts a finished stage in the place of a live folder beside it, and takes that back unless told
/// to keep it.
///
/// From the swap on the old folder has the recovery name, so that an interruption leaves it behind
/// under a name that asks for attention. Where the file system can exchange two folders in one
/// step, the live folder is never missing.
class FolderSwap {
public:
    struct Names {
        std::string live;
        std::string stage;
        std::string recovery;
    };

    /// Does nothing yet. The parent must outlive this.
    FolderSwap(const Directory &parent, Names names, bool hasLiveFolder);
    FolderSwap(const FolderSwap &) = delete;
    FolderSwap &operator=(const FolderSwap &) = delete;

    /// Undoes what keep() did not make final. Never throws; what cannot be moved back stays where
    /// it is, and the old folder then keeps the recovery name.
    ~FolderSwap();

    void swap();

    /// Makes the swap durable. The old folder then has the stage's name, which nobody looks for.
    void keep();

private:
    void exchange();
    void moveInTwoSteps();
    void undo() noexcept;
    [[nodiscard]] bool tryMove(std::string &name, const std::string &to) noexcept;
    void move(std::string &name, const std::string &to);

    const Directory &m_parent;
    const Names m_names;
    const bool m_hasLiveFolder;

    /// What the two folders are called now.
    std::string m_old;
    std::string m_new;
    bool m_canExchange = true;
    bool m_isKept = false;
};
