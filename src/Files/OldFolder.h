// SPDX-License-Identifier: MIT
#pragma once

#include "FolderTree.h"

/// A folder that another one has replaced, and what it held. It lies under a hidden name, and is
/// removed bit by bit, only as far as it is still what it was.
class OldFolder {
public:
    enum class Outcome : std::uint8_t {
        more,           ///< To be called again.
        gone,           ///< Removed, or moved by another program: whoever did that wants it.
        needsAttention, ///< It holds something that nobody has read, and has the recovery name.
    };

    /// The tree is what the folder held; the twin is the folder that replaced it.
    OldFolder(Directory parent, Directory folder, Directory twin, FolderTree tree, std::string name,
              std::string recoveryName) noexcept;

    /// Goes on until the deadline. What another program put into it, by a folder that it held open,
    /// is not removed: what is free goes to the twin, and the rest keeps the folder.
    [[nodiscard]] Outcome remove(FolderTree::Deadline deadline) noexcept;

    /// Where it lies once it needs attention.
    [[nodiscard]] std::filesystem::path recoveryCopy() const
    {
        return m_parent.path() / m_recoveryName;
    }

private:
    [[nodiscard]] bool isInPlace() const noexcept;
    [[nodiscard]] bool hasSomethingElse() noexcept;
    [[nodiscard]] Outcome keep() const noexcept;

    Directory m_parent;
    Directory m_folder;
    Directory m_twin;
    FolderTree m_tree;
    std::string m_name;
    std::string m_recoveryName;
    bool m_isChecked = false;
};
