// SPDX-License-Identifier: MIT
// The calls of MemoryDisk, and what only tests and other programs do.
#include "MemoryDiskDetail.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

using namespace MemoryDiskDetail;

namespace {

constexpr int mostLinksFollowed = 40;

} // namespace

// -- Opening -----------------------------------------------------------------------------------

Result<MemoryDisk::Number> MemoryDisk::walk(const char *path) const
{
    std::string rest = path;
    if (rest.empty())
        return Failure::system(ENOENT);
    if (rest.size() >= PATH_MAX)
        return Failure::system(ENAMETOOLONG);
    int linksFollowed = 0;
    Number at = root;
    while (!rest.empty()) {
        if (inode(at).kind != FileKind::folder)
            return Failure::system(ENOTDIR);
        const std::size_t slash = rest.find('/');
        const std::string part = rest.substr(0, slash);
        rest = slash == std::string::npos ? std::string() : rest.substr(slash + 1);
        if (part.empty() || part == ".")
            continue;
        if (part == "..") {
            at = inode(at).parent;
            continue;
        }
        const Result<Number> found = search(at, part.c_str());
        if (!found)
            return found.failure();
        if (inode(*found).kind != FileKind::link) {
            at = *found;
            continue;
        }
        if (++linksFollowed > mostLinksFollowed)
            return Failure::system(ELOOP);
        const std::string &target = *inode(*found).bytes;
        rest = target + '/' + rest;
        if (target.starts_with('/'))
            at = root;
    }
    return at;
}

Result<Disk::Handle> MemoryDisk::openPath(const char *path) noexcept
{
    return perform({.kind = DiskCall::Kind::openPath, .name = path}, [&]() -> Result<Handle> {
        const Result<Number> found = walk(path);
        if (!found)
            return found.failure();
        if (inode(*found).kind != FileKind::folder)
            return Failure::system(ENOTDIR);
        if (!may(*found, mayRead))
            return Failure::system(EACCES);
        return open(*found, false);
    });
}

Result<Disk::Handle> MemoryDisk::openFolder(Handle folder, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::openFolder, .inode = in, .name = name},
                   [&]() -> Result<Handle> {
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       if (inode(*found).kind != FileKind::folder)
                           return Failure::system(ENOTDIR);
                       if (!may(*found, mayRead))
                           return Failure::system(EACCES);
                       return open(*found, false);
                   });
}

Result<Disk::Handle> MemoryDisk::openFile(Handle folder, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::openFile, .inode = in, .name = name},
                   [&]() -> Result<Handle> {
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       if (inode(*found).kind == FileKind::link)
                           return Failure::system(ELOOP);
                       if (!may(*found, mayRead))
                           return Failure::system(EACCES);
                       return open(*found, false);
                   });
}

Result<Disk::Handle> MemoryDisk::makeFile(Handle folder, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform(
        {.kind = DiskCall::Kind::makeFile, .inode = in, .name = name}, [&]() -> Result<Handle> {
            const Result<void> made = makeEntry(in, name, FileKind::file, 0600, sharedText(""));
            if (!made)
                return made.failure();
            return open(lookUp(in, name), true);
        });
}

Result<void> MemoryDisk::makeFolder(Handle folder, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::makeFolder, .inode = in, .name = name},
                   [&] { return makeEntry(in, name, FileKind::folder, 0700, nullptr); });
}

Result<void> MemoryDisk::close(Handle handle) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::close, .inode = number}, [&]() -> Result<void> {
        opened(handle).isOpen = false;
        release(number);
        return {};
    });
}

// -- Content -----------------------------------------------------------------------------------

Result<std::size_t> MemoryDisk::read(Handle file, char *bytes, std::size_t size) noexcept
{
    const Number number = opened(file).inode;
    if (opened(file).isWritable)
        misuse("a handle for writing is read from");
    const DiskCall call{.kind = DiskCall::Kind::read, .inode = number};
    return perform(call, [&]() -> Result<std::size_t> {
        if (inode(number).kind == FileKind::folder)
            return Failure::system(EISDIR);
        if (inode(number).kind == FileKind::other)
            return std::size_t{0};
        Open &open = opened(file);
        const std::string &content = *inode(number).bytes;
        const std::size_t left = content.size() - std::min(open.offset, content.size());
        std::size_t count = std::min(size, left);
        if (m_isShort && count > 1)
            count = (count + 1) / 2;
        std::copy_n(content.data() + std::min(open.offset, content.size()), count, bytes);
        open.offset += count;
        return count;
    });
}

Result<std::size_t> MemoryDisk::write(Handle file, const char *bytes, std::size_t size) noexcept
{
    const Number number = opened(file).inode;
    if (!opened(file).isWritable)
        misuse("a handle for reading is written to");
    const DiskCall call{.kind = DiskCall::Kind::write, .inode = number};
    return perform(call, [&]() -> Result<std::size_t> {
        const std::size_t count = m_isShort && size > 1 ? (size + 1) / 2 : size;
        Open &open = opened(file);
        Inode &written = edit(number);
        std::string content = *written.bytes;
        content.resize(std::max(content.size(), open.offset + count));
        content.replace(open.offset, count, bytes, count);
        open.offset += count;
        written.bytes = std::make_shared<const std::string>(std::move(content));
        written.modified = written.changed = now();
        return count;
    });
}

Result<void> MemoryDisk::list(Handle folder, ListingVisitor &visitor)
{
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::list, .inode = in}, [&]() -> Result<void> {
        if (inode(in).links == 0)
            return Failure::system(ENOENT);
        // The visitor may change the folder.
        const std::shared_ptr<const Inode> listed = m_image.m_inodes[in];
        const std::size_t count = listed->entries.size();
        for (std::size_t i = 0; i < count; ++i) {
            // Nobody may count on one order.
            const Entry &entry = listed->entries[in % 2 == 0 ? i : count - 1 - i];
            if (m_image.m_inodes[entry.inode])
                visitor.visit(entry.inode, inode(entry.inode).kind, entry.name->c_str());
        }
        return {};
    });
}

Result<FileStatus> MemoryDisk::status(Handle handle) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::status, .inode = number},
                   [&]() -> Result<FileStatus> { return statusOf(number); });
}

Result<FileStatus> MemoryDisk::status(Handle folder, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::statusOfEntry, .inode = in, .name = name},
                   [&]() -> Result<FileStatus> {
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       return statusOf(*found);
                   });
}

Result<Disk::Attributes> MemoryDisk::attributes(Handle folder, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::attributes, .inode = in, .name = name},
                   [&]() -> Result<Attributes> {
                       if (*name == '\0')
                           return inode(in).attributes;
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       return inode(*found).attributes;
                   });
}

// -- Names -------------------------------------------------------------------------------------

Result<void> MemoryDisk::link(Handle from, Handle into, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(from);
    const Number to = folderOf(into);
    const DiskCall call{
        .kind = DiskCall::Kind::link, .inode = in, .name = name, .other = to, .newName = name};
    return perform(call, [&]() -> Result<void> {
        const Result<Number> found = search(in, name);
        if (!found)
            return found.failure();
        if (const int refusal = refusalToEnter(to, name))
            return Failure::system(refusal);
        if (inode(*found).attributes.isImmutable || inode(*found).kind == FileKind::folder)
            return Failure::system(EPERM);
        if (m_image.m_abilities.linkError != 0)
            return Failure::system(m_image.m_abilities.linkError);
        const Bytes shared = find(inode(in), name)->name;
        enter(to, shared, *found);
        remember({Change::Kind::enter, to, *found, to, noInode, shared, nullptr});
        return {};
    });
}

Result<void> MemoryDisk::copySymbolicLink(Handle from, Handle into, const char *name) noexcept
{
    checkName(name);
    const Number in = folderOf(from);
    const Number to = folderOf(into);
    const DiskCall call{.kind = DiskCall::Kind::copySymbolicLink,
                        .inode = in,
                        .name = name,
                        .other = to,
                        .newName = name};
    return perform(call, [&]() -> Result<void> {
        const Result<Number> found = search(in, name);
        if (!found)
            return found.failure();
        if (inode(*found).kind != FileKind::link)
            return Failure::system(EINVAL);
        return makeEntry(to, name, FileKind::link, 0777, inode(*found).bytes);
    });
}

int MemoryDisk::refusalToRename(Number from, Number moved, Number to, Number replaced,
                                Rename how) const noexcept
{
    const bool isExchange = how == Rename::exchange;
    const bool isFolder = inode(moved).kind == FileKind::folder;
    if (how == Rename::noReplace && replaced != noInode)
        return EEXIST;
    if (isExchange && replaced == noInode)
        return ENOENT;
    if (isFolder && isBelow(to, moved))
        return EINVAL;
    const bool replacesFolder = replaced != noInode && inode(replaced).kind == FileKind::folder;
    if (replacesFolder && isBelow(from, replaced))
        return isExchange ? EINVAL : ENOTEMPTY;
    if (moved == replaced)
        return 0;
    if (const int refusal = refusalToLeave(from, moved))
        return refusal;
    if (replaced != noInode) {
        if (const int refusal = refusalToLeave(to, replaced))
            return refusal;
        if (!isExchange && isFolder && !replacesFolder)
            return ENOTDIR;
        if (!isExchange && !isFolder && replacesFolder)
            return EISDIR;
        if (inode(replaced).attributes.isMountPoint)
            return EBUSY;
    } else {
        if (inode(to).links == 0)
            return ENOENT;
        if (inode(to).attributes.isImmutable)
            return EPERM;
        if (!may(to, mayWrite))
            return EACCES;
    }
    if (inode(moved).attributes.isMountPoint)
        return EBUSY;
    if (from != to && isFolder && !may(moved, mayWrite))
        return EACCES;
    if (from != to && isExchange && replacesFolder && !may(replaced, mayWrite))
        return EACCES;
    if ((isExchange && !m_image.m_abilities.canExchange) ||
        (how == Rename::noReplace && !m_image.m_abilities.canKeepFromReplacing))
        return EINVAL;
    if (!isExchange && replacesFolder && !inode(replaced).entries.empty())
        return ENOTEMPTY;
    return 0;
}

Result<void> MemoryDisk::rename(Handle from, const char *name, Handle to, const char *newName,
                                Rename how) noexcept
{
    checkName(name);
    checkName(newName);
    const Number source = folderOf(from);
    const Number target = folderOf(to);
    const DiskCall call{.kind = DiskCall::Kind::rename,
                        .inode = source,
                        .name = name,
                        .other = target,
                        .newName = newName};
    return perform(call, [&]() -> Result<void> {
        const Result<Number> found = search(source, name);
        if (!found)
            return found.failure();
        const Number moved = *found;
        const Result<Number> there = search(target, newName);
        if (!there && (!there.failure().is(ENOENT) || *newName == '\0'))
            return there.failure();
        const Number replaced = there.valueOr(noInode);
        if (const int refusal = refusalToRename(source, moved, target, replaced, how))
            return Failure::system(refusal);
        // Both names of one file stay.
        if (moved == replaced)
            return {};
        const Bytes oldName = find(inode(source), name)->name;
        const Bytes sharedNew =
            replaced != noInode ? find(inode(target), newName)->name : sharedText(newName);
        const bool isExchange = how == Rename::exchange;
        remember({isExchange ? Change::Kind::exchange : Change::Kind::move, source, moved, target,
                  replaced, oldName, sharedNew});
        leave(source, name);
        if (replaced != noInode)
            leave(target, newName);
        enter(target, sharedNew, moved);
        if (isExchange)
            enter(source, oldName, replaced);
        else if (replaced != noInode)
            release(replaced);
        return {};
    });
}

Result<void> MemoryDisk::unlink(Handle folder, const char *name, FileKind kind) noexcept
{
    checkName(name);
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::unlink, .inode = in, .name = name},
                   [&]() -> Result<void> {
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       const Number number = *found;
                       if (const int refusal = refusalToLeave(in, number))
                           return Failure::system(refusal);
                       const bool isFolder = inode(number).kind == FileKind::folder;
                       if (isFolder != (kind == FileKind::folder))
                           return Failure::system(isFolder ? EISDIR : ENOTDIR);
                       if (inode(number).attributes.isMountPoint)
                           return Failure::system(EBUSY);
                       if (!inode(number).entries.empty())
                           return Failure::system(ENOTEMPTY);
                       remember({Change::Kind::leave, in, number, in, noInode,
                                 find(inode(in), name)->name, nullptr});
                       leave(in, name);
                       release(number);
                       return {};
                   });
}

// -- Properties --------------------------------------------------------------------------------

Result<void> MemoryDisk::setMode(Handle handle, mode_t mode) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::setMode, .inode = number}, [&]() -> Result<void> {
        if (inode(number).attributes.isImmutable)
            return Failure::system(EPERM);
        Inode &changed = edit(number);
        changed.mode = mode & 07777U;
        changed.changed = now();
        return {};
    });
}

Result<void> MemoryDisk::lock(Handle folder, Lock how) noexcept
{
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::lock, .inode = in}, [&]() -> Result<void> {
        if (m_image.m_abilities.lockError != 0)
            return Failure::system(m_image.m_abilities.lockError);
        Open &own = opened(folder);
        const bool isTaken = std::ranges::any_of(m_handles, [&](const Open &open) {
            return &open != &own && open.isOpen && open.lock && open.inode == in &&
                   (how == Lock::alone || *open.lock == Lock::alone);
        });
        if (isTaken)
            return Failure::system(EWOULDBLOCK);
        own.lock = how;
        return {};
    });
}

Result<void> MemoryDisk::copyMetadata(Handle from, Handle to) noexcept
{
    const Number source = opened(from).inode;
    const Number target = opened(to).inode;
    const DiskCall call{.kind = DiskCall::Kind::copyMetadata, .inode = source, .other = target};
    return perform(call, [&]() -> Result<void> {
        if (inode(target).attributes.isImmutable)
            return Failure::system(EPERM);
        const std::shared_ptr<const Inode> model = m_image.m_inodes[source];
        Inode &copy = edit(target);
        copy.mode = model->mode;
        copy.accessed = model->accessed;
        copy.modified = model->modified;
        copy.changed = now();
        return {};
    });
}

std::int64_t MemoryDisk::now() noexcept
{
    return m_image.m_clock - m_image.m_clock % tick;
}

std::optional<std::size_t> MemoryDisk::mostEntries(Handle folder) noexcept
{
    return inode(folderOf(folder)).entries.size();
}

bool MemoryDisk::hasReliableTimes(Handle handle) noexcept
{
    static_cast<void>(opened(handle));
    return m_image.m_abilities.hasReliableTimes;
}

// -- Tests -------------------------------------------------------------------------------------

std::optional<FileStatus> MemoryDisk::statusAt(const char *path) const
{
    const Result<Number> found = walk(path);
    return found ? std::optional(statusOf(*found)) : std::nullopt;
}

const std::string *MemoryDisk::contentAt(const char *path) const
{
    const Result<Number> found = walk(path);
    return found && inode(*found).kind == FileKind::file ? inode(*found).bytes.get() : nullptr;
}

std::vector<std::string> MemoryDisk::namesAt(const char *path) const
{
    std::vector<std::string> names;
    if (const Result<Number> found = walk(path)) {
        for (const Entry &entry : inode(*found).entries)
            names.push_back(*entry.name);
    }
    return names;
}

// -- Other programs ----------------------------------------------------------------------------

Result<void> MemoryDisk::overwrite(Handle folder, const char *name,
                                   const std::string &bytes) noexcept
{
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::write, .inode = in, .name = name},
                   [&]() -> Result<void> {
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       if (inode(*found).kind == FileKind::folder)
                           return Failure::system(EISDIR);
                       if (inode(*found).attributes.isImmutable)
                           return Failure::system(EPERM);
                       if (!may(*found, mayWrite))
                           return Failure::system(EACCES);
                       Inode &written = edit(*found);
                       written.bytes = std::make_shared<const std::string>(bytes);
                       if (m_image.m_abilities.hasReliableTimes)
                           written.modified = written.changed = now();
                       return {};
                   });
}

Result<void> MemoryDisk::makeSymbolicLink(Handle folder, const char *name,
                                          const char *target) noexcept
{
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::copySymbolicLink, .inode = in, .name = name},
                   [&] { return makeEntry(in, name, FileKind::link, 0777, sharedText(target)); });
}

Result<void> MemoryDisk::makePipe(Handle folder, const char *name) noexcept
{
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::makeFile, .inode = in, .name = name},
                   [&] { return makeEntry(in, name, FileKind::other, 0600, nullptr); });
}

Result<void> MemoryDisk::setAttributes(Handle folder, const char *name,
                                       Attributes attributes) noexcept
{
    const Number in = folderOf(folder);
    return perform({.kind = DiskCall::Kind::setMode, .inode = in, .name = name},
                   [&]() -> Result<void> {
                       const Result<Number> found = search(in, name);
                       if (!found)
                           return found.failure();
                       edit(*found).attributes = attributes;
                       edit(*found).changed = now();
                       return {};
                   });
}
