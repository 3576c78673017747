// SPDX-License-Identifier: MIT
#include "LiveSwap.h"

#include "Renames.h"
#include "RepositoryError.h"

#include <utility>

LiveSwap::LiveSwap(const SwapPlace &place, std::optional<FileIdentity> oldOne,
                   std::optional<FileIdentity> newOne, bool &mayBeFound) noexcept
    : m_place(place)
    , m_oldOne(oldOne)
    , m_newOne(newOne)
    , m_old(oldOne ? Spot::live : Spot::nowhere)
    , m_new(newOne ? Spot::stage : Spot::nowhere)
    , m_mayBeFound(mayBeFound)
{
}

LiveSwap::~LiveSwap()
{
    if (!m_isDone)
        undo();
}

bool LiveSwap::perform()
{
    Result<void> swapped;
    if (!m_oldOne) {
        const Result<bool> published = publish();
        if (published && !*published)
            return false;
        if (!published)
            swapped = published.failure();
    } else {
        swapped = m_newOne ? exchange() : moveOld(Spot::recovery);
    }
    // What is not there any more was taken by another program.
    if (!swapped && swapped.failure().is(ENOENT) && !isOld(m_old).valueOr(true)) {
        undo();
        refuseLeftRecoveryCopy();
        return false;
    }
    if (!swapped)
        fail(swapped.failure());

    const Result<bool> isNewLive = m_newOne ? isNew(Spot::live) : true;
    const Result<bool> isOldAside = m_oldOne ? isOld(m_old) : true;
    if (!isNewLive || !isOldAside)
        fail(isNewLive ? isOldAside.failure() : isNewLive.failure());
    if (*isNewLive && *isOldAside)
        return true;
    undo();
    refuseLeftRecoveryCopy();
    return false;
}

Result<bool> LiveSwap::publish()
{
    const Result<void> moved = moveNew(Spot::live);
    if (moved)
        return true;
    if (moved.failure().is(EEXIST))
        return false;
    return moved.failure();
}

Result<void> LiveSwap::exchange() noexcept
{
    // Renamed before the exchange and not after it: at no time is the old one under a name that
    // nobody looks for while it might still be needed.
    if (const auto moved = moveNew(Spot::recovery); !moved)
        return moved;
    const Result<void> exchanged = tryExchange();
    if (exchanged || !meansNoFlags(exchanged.failure()))
        return exchanged;
    m_canExchange = false;
    if (const auto moved = moveNew(Spot::stage); !moved)
        return moved;
    return moveInTwoSteps();
}

Result<void> LiveSwap::moveInTwoSteps() noexcept
{
    if (const auto moved = moveOld(Spot::recovery); !moved)
        return moved;
    if (const auto synced = sync(); !synced)
        return synced;
    return moveNew(Spot::live);
}

void LiveSwap::keep()
{
    // While the old one still has the recovery name: should the disk refuse this and all else, it
    // is found.
    if (const auto synced = sync(); !synced)
        fail(synced.failure());
    if (m_oldOne) {
        if (const auto moved = moveOld(Spot::stage); !moved)
            fail(moved.failure());
    }
    // Without this a power cut may bring the recovery name back. On a disk that now refuses even to
    // rename there is nothing more to be done, and the new one is safe.
    if (m_oldOne) {
        const Result<void> synced = m_place.hidden.sync();
        if (!synced && moveOld(Spot::recovery))
            fail(synced.failure());
    }
    m_isDone = true;
}

void LiveSwap::fail(Failure failure)
{
    undo();
    refuseLeftRecoveryCopy();
    // All names are in one file system. One of layers still cannot move a folder of a lower one.
    const Result<FileStatus> live = m_place.parent.status(m_place.live.c_str());
    if (failure.is(EXDEV) && live && live->kind == FileKind::folder)
        failure = Failure::because(Reason::lowerLayer);
    throw m_place.parent.error(failure, m_place.live);
}

void LiveSwap::refuseLeftRecoveryCopy() const
{
    if (m_old == Spot::recovery || m_new == Spot::recovery)
        throw RepositoryError::recoveryRequired().about(m_place.hidden.path() / m_place.recovery);
}

void LiveSwap::undo() noexcept
{
    if (std::exchange(m_isDone, true))
        return;
    // Should anything below fail, it must not be under a name that nobody looks for.
    if (m_old == Spot::stage)
        static_cast<void>(moveOld(Spot::recovery));
    if (m_new == Spot::live && isNew(Spot::live).valueOr(true))
        static_cast<void>(m_oldOne && m_canExchange ? tryExchange() : moveNew(Spot::stage));
    if (m_oldOne && m_new != Spot::live && m_old != Spot::live)
        static_cast<void>(moveOld(Spot::live));
    if (m_new == Spot::recovery)
        static_cast<void>(moveNew(Spot::stage));
    if (m_hasRenamed && !sync())
        m_mayBeFound = true;
}

Result<void> LiveSwap::tryExchange() noexcept
{
    // Never simply repeated: a network file system may report an interruption of an exchange that
    // took place, and a second one would take it back.
    constexpr int mostTries = 100;
    m_hasRenamed = true;
    // The system tells those who watch the folders of two renames, that of what is named first
    // before the other. So the live name goes and comes, and is not the one that has gone last.
    const auto [live, aside] =
        m_old == Spot::live ? std::pair(m_old, m_new) : std::pair(m_new, m_old);
    Result<void> exchanged;
    for (int i = 0; i < mostTries; ++i) {
        exchanged =
            folder(live).rename(name(live), folder(aside), name(aside), Disk::Rename::exchange);
        if (exchanged || isNew(m_old).valueOr(false)) {
            std::swap(m_new, m_old);
            return {};
        }
        if (!exchanged.failure().is(EINTR))
            break;
    }
    return exchanged;
}

Result<void> LiveSwap::moveOld(Spot to) noexcept
{
    const Result<void> moved = move(m_old, to);
    // The answer to a rename that took place may have been lost on its way.
    if (!moved && !isOld(to).valueOr(false))
        return moved;
    m_old = to;
    return {};
}

Result<void> LiveSwap::moveNew(Spot to) noexcept
{
    const Result<void> moved = move(m_new, to);
    if (!moved && !isNew(to).valueOr(false))
        return moved;
    m_new = to;
    return {};
}

Result<void> LiveSwap::move(Spot from, Spot to) noexcept
{
    m_hasRenamed = true;
    // Hidden names are nobody else's. What has the live name by now would be lost without a word.
    if (to != Spot::live)
        return folder(from).rename(name(from), folder(to), name(to));
    return renameToFreeName(folder(to).disk(), folder(from).handle(), name(from),
                            folder(to).handle(), name(to));
}

Result<void> LiveSwap::sync() noexcept
{
    if (&m_place.parent != &m_place.hidden) {
        if (const auto synced = m_place.parent.sync(); !synced)
            return synced;
    }
    return m_place.hidden.sync();
}

const Directory &LiveSwap::folder(Spot spot) const noexcept
{
    return spot == Spot::live ? m_place.parent : m_place.hidden;
}

const char *LiveSwap::name(Spot spot) const noexcept
{
    switch (spot) {
    case Spot::live:
        return m_place.live.c_str();
    case Spot::recovery:
        return m_place.recovery.c_str();
    case Spot::stage:
    case Spot::nowhere:
        break;
    }
    return m_place.stage.c_str();
}

Result<bool> LiveSwap::isOld(Spot spot) const noexcept
{
    return isAt(spot, m_oldOne);
}

Result<bool> LiveSwap::isNew(Spot spot) const noexcept
{
    return isAt(spot, m_newOne);
}

Result<bool> LiveSwap::isAt(Spot spot, const std::optional<FileIdentity> &one) const noexcept
{
    return one ? folder(spot).isAt(name(spot), *one) : Result<bool>(false);
}
