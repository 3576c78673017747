// SPDX-License-Identifier: MIT
#include "StopWatcher.h"

#include <array>
#include <cerrno>
#include <utility>

const char *nameOf(StopKind kind) noexcept
{
    constexpr std::array<const char *, stopKindCount> names{
        "nothing",         "kill",        "power cut",      "failure",
        "lasting failure", "lost answer", "short transfer", "other program"};
    return names.at(static_cast<std::size_t>(kind));
}

void StopWatcher::begin(const StopPlan &plan, std::function<bool()> act)
{
    m_plan = plan;
    m_act = std::move(act);
    m_images.clear();
    m_count = 0;
    m_hasMet = false;
}

DiskWatcher::Fate StopWatcher::met(Fate::Kind kind, const DiskCall &call) noexcept
{
    m_hasMet = true;
    // It would say that there are no hard links, which is for the abilities of the disk.
    const bool meansNoLinks = call.kind == DiskCall::Kind::link && m_plan.error == EACCES;
    return {kind, meansNoLinks ? EIO : m_plan.error};
}

DiskWatcher::Fate StopWatcher::before(MemoryDisk & /*disk*/, const DiskCall &call) noexcept
{
    if (m_plan.only && call.kind != *m_plan.only)
        return {};
    const std::uint32_t number = m_count++;
    if (number < m_plan.call)
        return {};
    const bool isFirst = number == m_plan.call;
    switch (m_plan.kind) {
    case StopKind::nothing:
    case StopKind::kill:
    case StopKind::powerCut:
        break;
    case StopKind::failure:
        return isFirst ? met(Fate::Kind::fails, call) : Fate{};
    case StopKind::lastingFailure:
        return met(Fate::Kind::fails, call);
    case StopKind::lostAnswer:
        return isFirst ? met(Fate::Kind::answerIsLost, call) : Fate{};
    case StopKind::shortTransfer:
        return met(Fate::Kind::isShort, call);
    case StopKind::otherProgram:
        if (isFirst || (m_plan.every != 0 && (number - m_plan.call) % m_plan.every == 0))
            m_hasMet |= m_act();
        break;
    }
    return {};
}

void StopWatcher::after(MemoryDisk &disk, const DiskCall &call) noexcept
{
    const bool isSync =
        call.kind == DiskCall::Kind::sync || call.kind == DiskCall::Kind::syncFileSystem;
    if (m_plan.kind == StopKind::kill && call.mayChangeDisk())
        m_images.push_back(disk.image());
    else if (m_plan.kind == StopKind::powerCut && (call.mayChangeDisk() || isSync))
        m_images.push_back(disk.afterPowerCut(m_dice));
}
