// SPDX-License-Identifier: MIT
#include "FolderSwap.h"

#include "RepositoryError.h"

#include <cstdio>
#include <utility>

namespace {

/// What a kernel or a file system answers that does not know the flags of a rename.
bool meansNoFlags(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

} // namespace

FolderSwap::FolderSwap(const Directory &parent, Names names, bool hasLiveFolder)
    : m_parent(parent)
    , m_names(std::move(names))
    , m_hasLiveFolder(hasLiveFolder)
    , m_old(m_names.live)
    , m_new(m_names.stage)
{
}

FolderSwap::~FolderSwap()
{
    if (!m_isKept)
        undo();
}

void FolderSwap::swap()
{
    if (m_hasLiveFolder) {
        exchange();
    } else if (m_parent.tryRename(m_new.c_str(), m_names.live.c_str(), RENAME_NOREPLACE)) {
        m_new = m_names.live;
    } else if (errno == EEXIST) {
        throw RepositoryError::externalChange();
    } else if (meansNoFlags(errno)) {
        move(m_new, m_names.live);
    } else {
        throw m_parent.error(m_names.live.c_str());
    }
}

void FolderSwap::exchange()
{
    // Renamed before the exchange and not after it: at no time is the old folder under a name that
    // nobody looks for while it might still be needed.
    move(m_new, m_names.recovery);
    if (m_parent.tryRename(m_new.c_str(), m_old.c_str(), RENAME_EXCHANGE)) {
        std::swap(m_new, m_old);
        return;
    }
    if (!meansNoFlags(errno))
        throw m_parent.error(m_names.live.c_str());
    m_canExchange = false;
    move(m_new, m_names.stage);
    moveInTwoSteps();
}

void FolderSwap::moveInTwoSteps()
{
    move(m_old, m_names.recovery);
    m_parent.sync();
    move(m_new, m_names.live);
}

void FolderSwap::keep()
{
    if (m_hasLiveFolder) {
        if (!m_canExchange)
            m_parent.sync();
        move(m_old, m_names.stage);
    }
    m_parent.sync();
    m_isKept = true;
}

void FolderSwap::undo() noexcept
{
    const bool hasMoved = m_new != m_names.stage || m_old != m_names.live;
    if (m_new == m_names.live && m_hasLiveFolder && m_canExchange) {
        if (m_parent.tryRename(m_old.c_str(), m_new.c_str(), RENAME_EXCHANGE))
            std::swap(m_new, m_old);
    } else if (m_new == m_names.live) {
        static_cast<void>(tryMove(m_new, m_names.stage));
    }
    if (m_hasLiveFolder && m_new != m_names.live && m_old != m_names.live)
        static_cast<void>(tryMove(m_old, m_names.live));
    if (m_new == m_names.recovery)
        static_cast<void>(tryMove(m_new, m_names.stage));
    if (hasMoved)
        static_cast<void>(m_parent.trySync());
}

bool FolderSwap::tryMove(std::string &name, const std::string &to) noexcept
{
    if (!m_parent.tryRename(name.c_str(), to.c_str()))
        return false;
    name = to;
    return true;
}

void FolderSwap::move(std::string &name, const std::string &to)
{
    if (!tryMove(name, to))
        throw m_parent.error(m_names.live.c_str());
}
