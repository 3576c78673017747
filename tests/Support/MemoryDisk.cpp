// SPDX-License-Identifier: MIT
#include "MemoryDiskDetail.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

using namespace MemoryDiskDetail;

namespace {

constexpr dev_t device = 7;
constexpr std::int64_t folderSize = 4096;
constexpr std::size_t longestName = 255;

/// 2026-01-01, so that times look like times.
constexpr std::int64_t firstMoment = 1'767'225'600'000'000'000;

/// A handle tells which slot it is of, and for the how manieth time that slot is in use.
constexpr int slotCount = 4096;

std::uint32_t hashOf(const char *name) noexcept
{
    std::uint32_t hash = 2'166'136'261U;
    for (; *name != '\0'; ++name)
        hash = (hash ^ static_cast<unsigned char>(*name)) * 16'777'619U;
    return hash;
}

} // namespace

std::shared_ptr<const std::string> MemoryDiskDetail::sharedText(const char *text)
{
    return std::make_shared<const std::string>(text);
}

void MemoryDiskDetail::misuse(const char *what) noexcept
{
    std::fprintf(stderr, "MemoryDisk: %s\n", what);
    std::abort();
}

void MemoryDiskDetail::checkName(const char *name) noexcept
{
    if (std::strchr(name, '/') || std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
        misuse("a name of an entry is a path");
}

bool DiskCall::mayChangeDisk() const noexcept
{
    switch (kind) {
    case Kind::makeFile:
    case Kind::makeFolder:
    case Kind::write:
    case Kind::link:
    case Kind::copySymbolicLink:
    case Kind::rename:
    case Kind::unlink:
    case Kind::setMode:
    case Kind::copyMetadata:
        return true;
    case Kind::openPath:
    case Kind::openFolder:
    case Kind::openFile:
    case Kind::close:
    case Kind::read:
    case Kind::list:
    case Kind::status:
    case Kind::statusOfEntry:
    case Kind::attributes:
    case Kind::sync:
    case Kind::syncFileSystem:
    case Kind::lock:
        return false;
    }
    return false;
}

const char *DiskCall::nameOf(Kind kind) noexcept
{
    constexpr std::array<const char *, kindCount> names{"openPath",    "openFolder",
                                                        "openFile",    "makeFile",
                                                        "makeFolder",  "close",
                                                        "read",        "write",
                                                        "list",        "status",
                                                        "status",      "attributes",
                                                        "link",        "copySymbolicLink",
                                                        "rename",      "unlink",
                                                        "sync",        "syncFileSystem",
                                                        "setMode",     "lock",
                                                        "copyMetadata"};
    return names.at(static_cast<std::size_t>(kind));
}

MemoryDisk::Unwatched::Unwatched(MemoryDisk &disk) noexcept
    : m_disk(disk)
    , m_watcher(std::exchange(disk.m_watcher, nullptr))
    , m_wasOther(std::exchange(disk.m_isOther, true))
    , m_callCount(disk.m_callCount)
{
}

MemoryDisk::Unwatched::~Unwatched()
{
    m_disk.m_watcher = m_watcher;
    m_disk.m_isOther = m_wasOther;
    m_disk.m_callCount = m_callCount;
}

MemoryDisk::MemoryDisk()
    : MemoryDisk(Abilities{})
{
}

MemoryDisk::MemoryDisk(const Abilities &abilities)
{
    m_image.m_clock = firstMoment;
    m_image.m_abilities = abilities;
    m_image.m_inodes.resize(2);
    const Number made = make(FileKind::folder, 0700);
    if (made != root)
        misuse("the first folder is not the root");
    edit(root).links = 1;
    edit(root).parent = root;
    if (abilities.canLosePower)
        m_image.m_durable = m_image.m_inodes;
}

MemoryDisk::MemoryDisk(const Image &image)
{
    become(image);
}

MemoryDisk::~MemoryDisk() = default;

void MemoryDisk::become(const Image &image)
{
    if (openHandleCount() != 0)
        misuse("handles are open while the disk becomes another one");
    m_image = image;
    m_firstFree = root;
    sweep();
}

void MemoryDisk::closeAll()
{
    for (Open &open : m_handles) {
        if (open.isOpen) {
            open.isOpen = false;
            release(open.inode);
        }
    }
}

void MemoryDisk::setAbilities(const Abilities &abilities)
{
    const bool couldLosePower = m_image.m_abilities.canLosePower;
    m_image.m_abilities = abilities;
    if (abilities.canLosePower == couldLosePower)
        return;
    m_image.m_changes.clear();
    m_image.m_durable = abilities.canLosePower ? m_image.m_inodes : Table();
    sweep();
}

std::size_t MemoryDisk::openHandleCount() const noexcept
{
    return static_cast<std::size_t>(std::ranges::count(m_handles, true, &Open::isOpen));
}

// -- What every call has in common -------------------------------------------------------------

void MemoryDisk::writeLog(const DiskCall &call, const Failure *failure)
{
    std::string line =
        m_isOther ? std::string("    another program: ") : std::to_string(call.number) + ' ';
    line += DiskCall::nameOf(call.kind);
    if (call.inode != noInode)
        line += " #" + std::to_string(call.inode);
    if (*call.name != '\0')
        line += ' ' + std::string(call.name);
    if (call.other != noInode)
        line += " -> #" + std::to_string(call.other);
    if (*call.newName != '\0')
        line += ' ' + std::string(call.newName);
    if (failure)
        line += std::string(": ") + strerrorname_np(failure->systemError);
    m_log->push_back(std::move(line));
}

// -- Handles -----------------------------------------------------------------------------------

MemoryDisk::Open &MemoryDisk::opened(Handle handle)
{
    const auto slot = static_cast<std::size_t>(handle % slotCount);
    const auto generation = static_cast<std::uint32_t>(handle / slotCount);
    if (handle < 0 || slot >= m_handles.size() || !m_handles[slot].isOpen ||
        m_handles[slot].generation != generation)
        misuse("a handle is not open");
    return m_handles[slot];
}

MemoryDisk::Number MemoryDisk::folderOf(Handle handle)
{
    const Number number = opened(handle).inode;
    if (inode(number).kind != FileKind::folder)
        misuse("a handle is no folder's");
    return number;
}

Result<Disk::Handle> MemoryDisk::open(Number inode, bool isWritable)
{
    auto slot = std::ranges::find(m_handles, false, &Open::isOpen);
    if (slot == m_handles.end()) {
        if (m_handles.size() == slotCount)
            return Failure::system(EMFILE);
        slot = m_handles.insert(slot, Open{});
    }
    const std::uint32_t generation = (slot->generation + 1) % (INT_MAX / slotCount);
    *slot = {.inode = inode,
             .generation = generation,
             .offset = 0,
             .isOpen = true,
             .isWritable = isWritable,
             .lock = {}};
    return static_cast<Handle>(generation * slotCount) +
           static_cast<Handle>(slot - m_handles.begin());
}

bool MemoryDisk::isOpen(Number inode) const noexcept
{
    return std::ranges::any_of(
        m_handles, [&](const Open &open) { return open.isOpen && open.inode == inode; });
}

// -- Inodes ------------------------------------------------------------------------------------

MemoryDisk::Inode &MemoryDisk::edit(Table &table, Number number)
{
    std::shared_ptr<Inode> &inode = table[number];
    // An image shows it, too.
    if (inode.use_count() > 1)
        inode = std::make_shared<Inode>(*inode);
    return *inode;
}

MemoryDisk::Number MemoryDisk::make(FileKind kind, mode_t mode)
{
    Table &table = m_image.m_inodes;
    while (m_firstFree < table.size() && table[m_firstFree])
        ++m_firstFree;
    if (m_firstFree == table.size())
        table.emplace_back();
    const auto made = std::make_shared<Inode>();
    made->kind = kind;
    made->mode = mode;
    made->accessed = made->modified = made->changed = now();
    table[m_firstFree] = made;
    return m_firstFree;
}

void MemoryDisk::release(Number number)
{
    Table &table = m_image.m_inodes;
    // What a power cut may bring back keeps its number until that is over.
    if (!table[number] || table[number]->links != 0 || m_image.m_abilities.canLosePower ||
        isOpen(number))
        return;
    table[number].reset();
    m_firstFree = std::min(m_firstFree, number);
}

void MemoryDisk::sweep()
{
    if (!m_image.m_changes.empty())
        return;
    Table &table = m_image.m_inodes;
    for (Number number = root; number < table.size(); ++number) {
        if (table[number] && table[number]->links == 0 && !isOpen(number)) {
            table[number].reset();
            if (number < m_image.m_durable.size())
                m_image.m_durable[number].reset();
            m_firstFree = std::min(m_firstFree, number);
        }
    }
}

FileStatus MemoryDisk::statusOf(Number number) const noexcept
{
    const Inode &found = inode(number);
    const std::int64_t size =
        found.bytes ? static_cast<std::int64_t>(found.bytes->size()) : std::int64_t{0};
    return {.identity = {device, number},
            .kind = found.kind,
            .mode = found.mode,
            .owner = found.owner,
            .group = found.group,
            .size = found.kind == FileKind::folder ? folderSize : size,
            .accessed = found.accessed,
            .modified = found.modified,
            .changed = found.changed};
}

// -- Folders -----------------------------------------------------------------------------------

const MemoryDisk::Entry *MemoryDisk::find(const Inode &folder, const char *name) noexcept
{
    const std::uint32_t hash = hashOf(name);
    for (const Entry &entry : folder.entries) {
        if (entry.hash == hash && std::strcmp(entry.name->c_str(), name) == 0)
            return &entry;
    }
    return nullptr;
}

MemoryDisk::Number MemoryDisk::lookUp(Number folder, const char *name) const noexcept
{
    const Entry *entry = find(inode(folder), name);
    return entry ? entry->inode : noInode;
}

bool MemoryDisk::may(Number number, mode_t right) const noexcept
{
    const Inode &found = inode(number);
    const mode_t rights = found.owner == user ? found.mode >> 6U : found.mode;
    return m_image.m_abilities.isPrivileged || (rights & right) == right;
}

int MemoryDisk::refusalToSearch(Number folder) const noexcept
{
    return may(folder, maySearch) ? 0 : EACCES;
}

Result<MemoryDisk::Number> MemoryDisk::search(Number folder, const char *name) const noexcept
{
    if (const int refusal = refusalToSearch(folder))
        return Failure::system(refusal);
    if (std::strlen(name) > longestName)
        return Failure::system(ENAMETOOLONG);
    const Number found = lookUp(folder, name);
    if (found == noInode)
        return Failure::system(ENOENT);
    return found;
}

int MemoryDisk::refusalToEnter(Number folder, const char *name) const noexcept
{
    if (const int refusal = refusalToSearch(folder))
        return refusal;
    if (*name == '\0')
        return ENOENT;
    if (std::strlen(name) > longestName)
        return ENAMETOOLONG;
    if (lookUp(folder, name) != noInode)
        return EEXIST;
    if (inode(folder).links == 0)
        return ENOENT;
    if (inode(folder).attributes.isImmutable)
        return EPERM;
    return may(folder, mayWrite) ? 0 : EACCES;
}

int MemoryDisk::refusalToLeave(Number folder, Number number) const noexcept
{
    if (!may(folder, mayWrite))
        return EACCES;
    if (inode(folder).attributes.isImmutable || inode(number).attributes.isImmutable)
        return EPERM;
    return 0;
}

bool MemoryDisk::isBelow(Number number, Number folder) const noexcept
{
    for (;;) {
        if (number == folder)
            return true;
        const Number above = inode(number).parent;
        if (above == number || above == noInode)
            return false;
        number = above;
    }
}

void MemoryDisk::touchFolder(Number folder)
{
    Inode &touched = edit(folder);
    touched.modified = touched.changed = now();
}

void MemoryDisk::put(Inode &folder, const Bytes &name, Number inode)
{
    folder.entries.push_back({hashOf(name->c_str()), inode, name});
}

void MemoryDisk::takeOut(Inode &folder, const char *name)
{
    const auto at = find(folder, name) - folder.entries.data();
    folder.entries.erase(folder.entries.begin() + at);
}

void MemoryDisk::enter(Number folder, const Bytes &name, Number number)
{
    touchFolder(folder);
    put(edit(folder), name, number);
    Inode &entered = edit(number);
    ++entered.links;
    entered.changed = now();
    if (entered.kind == FileKind::folder)
        entered.parent = folder;
}

void MemoryDisk::leave(Number folder, const char *name)
{
    const Number number = lookUp(folder, name);
    touchFolder(folder);
    takeOut(edit(folder), name);
    Inode &left = edit(number);
    --left.links;
    left.changed = now();
}

Result<void> MemoryDisk::makeEntry(Number folder, const char *name, FileKind kind, mode_t mode,
                                   Bytes bytes)
{
    if (const int refusal = refusalToEnter(folder, name))
        return Failure::system(refusal);
    const Number made = make(kind, mode);
    edit(made).bytes = std::move(bytes);
    const Bytes shared = sharedText(name);
    enter(folder, shared, made);
    remember({Change::Kind::enter, folder, made, folder, noInode, shared, nullptr});
    return {};
}
