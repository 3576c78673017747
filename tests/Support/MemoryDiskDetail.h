// SPDX-License-Identifier: MIT
// What the source files of MemoryDisk share, and nobody else includes.
#pragma once

#include "MemoryDisk.h"

#include <cerrno>
#include <type_traits>

namespace MemoryDiskDetail {

constexpr std::uint32_t noInode = 0;
constexpr std::uint32_t root = 1;
constexpr uid_t user = 1000;

constexpr mode_t mayRead = 04;
constexpr mode_t mayWrite = 02;
constexpr mode_t maySearch = 01;

[[nodiscard]] std::shared_ptr<const std::string> sharedText(const char *text);
[[noreturn]] void misuse(const char *what) noexcept;

/// A name that no call can be made with is a mistake of the caller, whatever the disk would say.
void checkName(const char *name) noexcept;

} // namespace MemoryDiskDetail

struct MemoryDisk::Entry {
    std::uint32_t hash;
    Number inode;
    Bytes name;
};

struct MemoryDisk::Inode {
    FileKind kind = FileKind::file;
    Attributes attributes;
    mode_t mode = 0;
    std::uint32_t links = 0;
    uid_t owner = MemoryDiskDetail::user;
    gid_t group = MemoryDiskDetail::user;
    std::int64_t accessed = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;

    /// A file's content, or where a link leads.
    Bytes bytes;

    /// Of a folder, in the order in which they came, and the folder that it lies in.
    std::vector<Entry> entries;
    Number parent = MemoryDiskDetail::noInode;
};

template <typename Action>
auto MemoryDisk::perform(DiskCall call, Action action) -> decltype(action())
{
    using Answer = decltype(action());
    m_image.m_clock += callTime;
    call.number = m_callCount++;
    const DiskWatcher::Fate fate = m_watcher ? m_watcher->before(*this, call) : DiskWatcher::Fate{};
    const bool fails = fate.kind == DiskWatcher::Fate::Kind::fails;
    const bool isLost = fate.kind == DiskWatcher::Fate::Kind::answerIsLost;
    m_isShort = fate.kind == DiskWatcher::Fate::Kind::isShort;
    Answer answer = fails && call.kind != DiskCall::Kind::close
                        ? Answer(Failure::system(fate.error))
                        : action();
    if (fails || (isLost && answer)) {
        // Nobody would ever close the handle that such an answer takes along.
        if (isLost && !std::is_same_v<Answer, Result<void>>)
            MemoryDiskDetail::misuse("the answer that is to be lost is not only an answer");
        answer = Answer(Failure::system(fate.error));
    }
    if (m_log) {
        const Failure failure = answer ? Failure{} : answer.failure();
        writeLog(call, answer ? nullptr : &failure);
    }
    if (m_watcher)
        m_watcher->after(*this, call);
    return answer;
}
