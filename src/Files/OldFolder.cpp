// SPDX-License-Identifier: MIT
#include "OldFolder.h"

#include <utility>

OldFolder::OldFolder(Directory parent, Directory folder, Directory twin, FolderTree tree,
                     std::string name, std::string recoveryName) noexcept
    : m_parent(std::move(parent))
    , m_folder(std::move(folder))
    , m_twin(std::move(twin))
    , m_tree(std::move(tree))
    , m_name(std::move(name))
    , m_recoveryName(std::move(recoveryName))
{
}

OldFolder::Outcome OldFolder::remove(FolderTree::Deadline deadline) noexcept
{
    if (!isInPlace())
        return Outcome::gone;
    if (!m_isChecked && hasSomethingElse())
        return keep();
    m_isChecked = true;
    if (!m_tree.removeFrom(m_folder.disk(), m_folder.handle(), deadline))
        return Outcome::more;
    const auto unlink = [&] { return m_parent.unlink(m_name.c_str(), FileKind::folder); };
    // What a failing disk would not give up may stay, unless there is more.
    if (!unlink()) {
        if (hasSomethingElse())
            return keep();
        // What went to the twin may have left in its place what that had.
        static_cast<void>(
            m_tree.removeFrom(m_folder.disk(), m_folder.handle(), FolderTree::Deadline::max()));
        static_cast<void>(unlink());
    }
    static_cast<void>(m_parent.sync());
    return Outcome::gone;
}

bool OldFolder::isInPlace() const noexcept
{
    const Result<FileStatus> own = m_folder.status();
    return own && m_parent.isAt(m_name.c_str(), own->identity).valueOr(false);
}

bool OldFolder::hasSomethingElse() noexcept
{
    return !m_tree.settleRest(m_folder.disk(), m_folder.handle(), m_twin.handle(), m_isChecked)
                .valueOr(true);
}

OldFolder::Outcome OldFolder::keep() const noexcept
{
    if (m_parent.rename(m_name.c_str(), m_parent, m_recoveryName.c_str()))
        static_cast<void>(m_parent.sync());
    return Outcome::needsAttention;
}
