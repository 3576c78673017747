// SPDX-License-Identifier: MIT
#include "FileTransaction.h"

#include "RepositoryError.h"

namespace {

std::optional<FileIdentity> identityOf(const std::optional<FileStatus> &status) noexcept
{
    return status ? std::optional(status->identity) : std::nullopt;
}

bool isSameContent(const FileStatus &a, const FileStatus &b) noexcept
{
    return a.identity == b.identity && a.size == b.size && a.modified == b.modified;
}

/// Whether a hidden file is what it was. One that cannot be looked at counts as such.
bool isStill(const Directory &folder, const char *name, const FileStatus &before) noexcept
{
    const Result<FileStatus> now = folder.status(name);
    return !now || isSameContent(*now, before);
}

/// Gives a hidden file with something in it that nobody has read the name that asks for attention.
void keepForAttention(const SwapPlace &place) noexcept
{
    if (place.hidden.rename(place.stage.c_str(), place.hidden, place.recovery.c_str()))
        static_cast<void>(place.hidden.sync());
}

} // namespace

FileTransaction::Stage::Stage(const SwapPlace &swapPlace, std::optional<std::string_view> bytes)
    : place(swapPlace)
{
    if (!bytes)
        return;
    const char *name = place.stage.c_str();
    Result<FileStatus> made = place.hidden.makeFile(name, *bytes);
    if (made) {
        if (const auto synced = place.hidden.syncFile(name); !synced)
            made = synced.failure();
    }
    if (made) {
        status = *made;
        return;
    }
    // A name that was there before is somebody else's.
    if (!made.failure().is(EEXIST))
        static_cast<void>(place.hidden.unlink(name, FileKind::file));
    throw place.parent.error(made.failure(), place.live);
}

FileTransaction::Stage::~Stage()
{
    const char *name = place.stage.c_str();
    if (isReleased || !status || !place.hidden.isAt(name, status->identity).valueOr(false))
        return;
    // While it was live for a moment, another program may have written into it.
    if (!isStill(place.hidden, name, *status))
        keepForAttention(place);
    else if (!mayBeFound)
        static_cast<void>(place.hidden.unlink(name, FileKind::file));
}

FileTransaction::FileTransaction(const SwapPlace &place, std::optional<std::string_view> bytes,
                                 std::optional<FileStatus> oldStatus)
    : m_stage(place, bytes)
    , m_oldStatus(oldStatus)
{
    // A file of somebody else stays theirs.
    if (m_oldStatus && m_stage.status && m_oldStatus->owner != m_stage.status->owner)
        throw place.parent.error(Failure::system(EPERM), place.live);
}

bool FileTransaction::commit(const std::function<bool()> &isAllSame)
{
    LiveSwap swap(m_stage.place, identityOf(m_oldStatus), identityOf(m_stage.status),
                  m_stage.mayBeFound);
    if (!swap.perform() || !isAllSame())
        return false;
    swap.keep();
    m_stage.isReleased = true;
    if (m_oldStatus)
        removeOldFile();
    return true;
}

void FileTransaction::removeOldFile()
{
    const Directory &hidden = m_stage.place.hidden;
    const char *name = m_stage.place.stage.c_str();
    if (!isStill(hidden, name, *m_oldStatus)) {
        keepForAttention(m_stage.place);
        throw RepositoryError::recoveryRequired().about(hidden.path() / m_stage.place.recovery);
    }
    static_cast<void>(hidden.unlink(name, FileKind::file));
    static_cast<void>(hidden.sync());
}
