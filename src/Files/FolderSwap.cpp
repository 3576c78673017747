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

std::optional<FileIdentity> identityOf(const Directory *folder)
{
    return folder ? std::optional(folder->identity()) : std::nullopt;
}

} // namespace

FolderSwap::FolderSwap(const Directory &parent, Names names, const Directory *live,
                       const Directory &stage)
    : m_parent(parent)
    , m_names(std::move(names))
    , m_oldFolder(identityOf(live))
    , m_newFolder(stage.identity())
    , m_old(m_names.live)
    , m_new(m_names.stage)
{
}

FolderSwap::~FolderSwap()
{
    if (!m_isDone)
        undo();
}

void FolderSwap::swap()
{
    if (m_oldFolder)
        exchange();
    else
        publish();
    const std::optional<bool> isNewLive = isNew(m_names.live);
    const std::optional<bool> isOldAside = m_oldFolder ? isOld(m_old) : true;
    if (!isNewLive || !isOldAside)
        fail();
    if (!*isNewLive || !*isOldAside)
        throw RepositoryError::externalChange();
}

void FolderSwap::publish()
{
    const bool isMoved = m_parent.tryRename(m_new.c_str(), m_names.live.c_str(), RENAME_NOREPLACE);
    const int reason = errno;
    if (isMoved || isNew(m_names.live).value_or(false)) {
        m_new = m_names.live;
    } else if (reason == EEXIST) {
        throw RepositoryError::externalChange();
    } else if (meansNoFlags(reason) || reason == EINTR) {
        move(m_new, m_names.live);
    } else {
        errno = reason;
        fail();
    }
}

void FolderSwap::exchange()
{
    // Renamed before the exchange and not after it: at no time is the old folder under a name that
    // nobody looks for while it might still be needed.
    move(m_new, m_names.recovery);
    if (tryExchange())
        return;
    if (!meansNoFlags(errno))
        fail();
    m_canExchange = false;
    move(m_new, m_names.stage);
    moveInTwoSteps();
}

void FolderSwap::moveInTwoSteps()
{
    move(m_old, m_names.recovery);
    sync();
    move(m_new, m_names.live);
}

void FolderSwap::keep()
{
    if (m_oldFolder) {
        if (!m_canExchange)
            sync();
        move(m_old, m_names.stage);
    }
    sync();
    m_isDone = true;
}

void FolderSwap::keepOldFolder()
{
    if (isOld(m_old).value_or(true) && tryMove(m_old, m_names.recovery))
        static_cast<void>(m_parent.trySync());
    throw RepositoryError::recoveryRequired();
}

void FolderSwap::removeOldFolder(const LinkedTree &content, const Directory &folder) noexcept
{
    // Whoever moved it meanwhile wants it.
    if (!isOld(m_old).value_or(false))
        return;
    content.removeFrom(folder);
    static_cast<void>(m_parent.tryRemove(m_old.c_str(), DirectoryListing::Kind::folder));
    static_cast<void>(m_parent.trySync());
}

void FolderSwap::fail()
{
    const FileError error = m_parent.error(m_names.live.c_str());
    undo();
    if (m_old == m_names.recovery || m_new == m_names.recovery)
        throw RepositoryError::recoveryRequired();
    throw error;
}

void FolderSwap::undo() noexcept
{
    m_isDone = true;
    const bool hasMoved = m_new != m_names.stage || m_old != m_names.live;
    // Should anything below fail, it must not be under a name that nobody looks for.
    if (m_old == m_names.stage)
        static_cast<void>(tryMove(m_old, m_names.recovery));
    if (m_new == m_names.live && isNew(m_new).value_or(true)) {
        if (m_oldFolder && m_canExchange)
            static_cast<void>(tryExchange());
        else
            static_cast<void>(tryMove(m_new, m_names.stage));
    }
    if (m_oldFolder && m_new != m_names.live && m_old != m_names.live)
        static_cast<void>(tryMove(m_old, m_names.live));
    if (m_new == m_names.recovery)
        static_cast<void>(tryMove(m_new, m_names.stage));
    if (hasMoved)
        static_cast<void>(m_parent.trySync());
}

bool FolderSwap::tryExchange() noexcept
{
    // Never simply repeated: a network file system may report an interruption of an exchange that
    // took place, and a second one would take it back.
    constexpr int mostTries = 100;
    for (int i = 0; i < mostTries; ++i) {
        const bool isDone = m_parent.tryRename(m_new.c_str(), m_old.c_str(), RENAME_EXCHANGE);
        const int reason = errno;
        if (isDone || isNew(m_old).value_or(false)) {
            std::swap(m_new, m_old);
            return true;
        }
        errno = reason;
        if (reason != EINTR)
            break;
    }
    return false;
}

bool FolderSwap::tryMove(std::string &name, const std::string &to) noexcept
{
    // The answer to a rename that took place may have been lost on its way.
    const bool isNewFolder = &name == &m_new;
    if (!m_parent.tryRename(name.c_str(), to.c_str())) {
        const int reason = errno;
        if (!(isNewFolder ? isNew(to) : isOld(to)).value_or(false)) {
            errno = reason;
            return false;
        }
    }
    name = to;
    return true;
}

void FolderSwap::move(std::string &name, const std::string &to)
{
    if (!tryMove(name, to))
        fail();
}

void FolderSwap::sync()
{
    if (!m_parent.trySync())
        fail();
}

std::optional<bool> FolderSwap::isNew(const std::string &name) const noexcept
{
    return m_parent.tryIsAt(name.c_str(), m_newFolder);
}

std::optional<bool> FolderSwap::isOld(const std::string &name) const noexcept
{
    return m_oldFolder ? m_parent.tryIsAt(name.c_str(), *m_oldFolder) : false;
}
