// SPDX-License-Identifier: MIT
#include "MemoryDisk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint32_t noInode = 0;
constexpr std::uint32_t root = 1;
constexpr dev_t device = 7;
constexpr uid_t user = 1000;
constexpr std::int64_t folderSize = 4096;
constexpr std::size_t longestName = 255;
constexpr int mostLinksFollowed = 40;

/// 2026-01-01, so that times look like times.
constexpr std::int64_t firstMoment = 1'767'225'600'000'000'000;

constexpr mode_t mayRead = 04;
constexpr mode_t mayWrite = 02;
constexpr mode_t maySearch = 01;

/// A handle tells which slot it is of, and for the how manieth time that slot is in use.
constexpr int slotCount = 4096;

std::uint32_t hashOf(const char *name) noexcept
{
    std::uint32_t hash = 2'166'136'261U;
    for (; *name != '\0'; ++name)
        hash = (hash ^ static_cast<unsigned char>(*name)) * 16'777'619U;
    return hash;
}

std::shared_ptr<const std::string> sharedText(const char *text)
{
    return std::make_shared<const std::string>(text);
}

[[noreturn]] void misuse(const char *what) noexcept
{
    std::fprintf(stderr, "MemoryDisk: %s\n", what);
    std::abort();
}

/// A name that no call can be made with is a mistake of the caller, whatever the disk would say.
void checkName(const char *name) noexcept
{
    if (std::strchr(name, '/') || std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
        misuse("a name of an entry is a path");
}

template <typename T>
constexpr bool isVoid = std::is_same_v<T, Result<void>>;

} // namespace

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
    uid_t owner = user;
    gid_t group = user;
    std::int64_t accessed = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;

    /// A file's content, or where a link leads.
    Bytes bytes;

    /// Of a folder, in the order in which they came, and the folder that it lies in.
    std::vector<Entry> entries;
    Number parent = noInode;
};

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
        return false;
    }
    return false;
}

const char *DiskCall::nameOf(Kind kind) noexcept
{
    constexpr std::array<const char *, kindCount> names{"openPath",   "openFolder",
                                                        "openFile",   "makeFile",
                                                        "makeFolder", "close",
                                                        "read",       "write",
                                                        "list",       "status",
                                                        "status",     "attributes",
                                                        "link",       "copySymbolicLink",
                                                        "rename",     "unlink",
                                                        "sync",       "syncFileSystem",
                                                        "setMode",    "copyMetadata"};
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
        if (isLost && !isVoid<Answer>)
            misuse("the answer that is to be lost is not only an answer");
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
             .isWritable = isWritable};
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

// -- What is on the disk and what is not yet ---------------------------------------------------

void MemoryDisk::remember(Change change)
{
    if (m_image.m_abilities.canLosePower)
        m_image.m_changes.push_back(std::move(change));
}

Result<void> MemoryDisk::sync(Handle handle) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::sync, .inode = number}, [&]() -> Result<void> {
        if (m_image.m_abilities.canLosePower)
            makeDurable(number);
        return {};
    });
}

Result<void> MemoryDisk::syncFileSystem(Handle handle) noexcept
{
    const Number number = opened(handle).inode;
    return perform({.kind = DiskCall::Kind::syncFileSystem, .inode = number},
                   [&]() -> Result<void> {
                       if (m_image.m_abilities.canLosePower) {
                           m_image.m_changes.clear();
                           m_image.m_durable = m_image.m_inodes;
                           sweep();
                       }
                       return {};
                   });
}

/// A file's content, or a folder's own changes with all that came before and that they build on.
void MemoryDisk::makeDurable(Number number)
{
    Table &durable = m_image.m_durable;
    durable.resize(m_image.m_inodes.size());
    if (inode(number).kind != FileKind::folder) {
        durable[number] = m_image.m_inodes[number];
        return;
    }
    std::vector<Change> &changes = m_image.m_changes;
    std::vector<bool> isNeeded(changes.size());
    std::vector<bool> needsInode(m_image.m_inodes.size());
    std::vector<bool> needsEmpty(m_image.m_inodes.size());
    std::vector<std::pair<Number, const std::string *>> needsName;
    const auto isNamed = [&](Number folder, const Bytes &name) {
        return std::ranges::any_of(needsName, [&](const auto &needed) {
            return needed.first == folder && *needed.second == *name;
        });
    };
    for (std::size_t i = changes.size(); i-- > 0;) {
        const Change &change = changes[i];
        const bool buildsOn = needsInode[change.inode] ||
                              (change.other != noInode && needsInode[change.other]) ||
                              needsEmpty[change.folder] || needsEmpty[change.toFolder] ||
                              isNamed(change.folder, change.name) ||
                              (change.newName && isNamed(change.toFolder, change.newName));
        if (change.folder != number && change.toFolder != number && !buildsOn)
            continue;
        isNeeded[i] = true;
        for (const Number needed : {change.inode, change.other, change.folder, change.toFolder})
            needsInode[needed] = true;
        if (change.kind == Change::Kind::leave)
            needsEmpty[change.inode] = true;
        if (change.kind == Change::Kind::move && change.other != noInode)
            needsEmpty[change.other] = true;
        needsName.emplace_back(change.folder, change.name.get());
        if (change.newName)
            needsName.emplace_back(change.toFolder, change.newName.get());
        // 0 stands for none.
        needsInode[noInode] = false;
    }
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (isNeeded[i] && !apply(durable, m_image.m_inodes, changes[i]))
            misuse("a change that was synced does not fit what is on the disk");
    }
    std::size_t i = 0;
    std::erase_if(changes, [&](const Change &) { return isNeeded[i++]; });
    if (durable[number]) {
        // Its own properties come along, and its entries are what the changes made of them.
        Inode &folder = edit(durable, number);
        const std::vector<Entry> entries = std::move(folder.entries);
        const Number parent = folder.parent;
        folder = inode(number);
        folder.entries = entries;
        folder.parent = parent;
    }
    sweep();
}

/// False when what it builds on is not there.
bool MemoryDisk::apply(Table &table, const Table &now, const Change &change)
{
    if (!table[change.folder] || !table[change.toFolder])
        return false;
    const auto numberAt = [&](Number folder, const Bytes &name) {
        const Entry *entry = find(*table[folder], name->c_str());
        return entry ? entry->inode : noInode;
    };
    const auto isEmpty = [&](Number number) {
        return !table[number] || table[number]->entries.empty();
    };
    const auto setParent = [&](Number number, Number parent) {
        if (table[number]->kind == FileKind::folder)
            edit(table, number).parent = parent;
    };
    const Number first = numberAt(change.folder, change.name);
    switch (change.kind) {
    case Change::Kind::enter:
        if (first != noInode)
            return false;
        if (!table[change.inode]) {
            // Its name is there and nothing of what it holds.
            const auto made = std::make_shared<Inode>(*now[change.inode]);
            made->entries.clear();
            if (made->kind == FileKind::file)
                made->bytes = sharedText("");
            table[change.inode] = made;
        }
        put(edit(table, change.folder), change.name, change.inode);
        setParent(change.inode, change.folder);
        return true;
    case Change::Kind::leave:
        if (first != change.inode || !isEmpty(change.inode))
            return false;
        takeOut(edit(table, change.folder), change.name->c_str());
        return true;
    case Change::Kind::move:
    case Change::Kind::exchange:
        break;
    }
    const Number second = numberAt(change.toFolder, change.newName);
    const bool isExchange = change.kind == Change::Kind::exchange;
    if (first != change.inode || second != change.other ||
        isAncestor(table, change.inode, change.toFolder) ||
        (isExchange && isAncestor(table, change.other, change.folder)) ||
        (!isExchange && second != noInode && !isEmpty(second)))
        return false;
    takeOut(edit(table, change.folder), change.name->c_str());
    if (second != noInode)
        takeOut(edit(table, change.toFolder), change.newName->c_str());
    put(edit(table, change.toFolder), change.newName, change.inode);
    setParent(change.inode, change.toFolder);
    if (isExchange) {
        put(edit(table, change.folder), change.name, change.other);
        setParent(change.other, change.folder);
    }
    return true;
}

/// Whether a move of the folder to below the inode would cut both off from the rest.
bool MemoryDisk::isAncestor(const Table &table, Number folder, Number inode)
{
    for (;;) {
        if (inode == folder)
            return true;
        const Number above = table[inode]->parent;
        if (above == inode || above == noInode || !table[above])
            return false;
        inode = above;
    }
}

MemoryDisk::Image MemoryDisk::afterPowerCut(Dice &dice) const
{
    if (!m_image.m_abilities.canLosePower)
        misuse("the disk does not know what is on it");
    const Table &now = m_image.m_inodes;
    Table table = m_image.m_durable;
    table.resize(now.size());

    const std::vector<Change> &changes = m_image.m_changes;
    if (dice.hasChance(40)) {
        const std::size_t count = dice.below(changes.size() + 1);
        for (std::size_t i = 0; i < count; ++i)
            apply(table, now, changes[i]);
    } else {
        constexpr std::array<std::uint32_t, 4> chances{0, 15, 50, 90};
        const std::uint32_t chance = chances.at(dice.below(chances.size()));
        for (const Change &change : changes) {
            if (dice.hasChance(chance))
                apply(table, now, change);
        }
    }

    // What is found from the root stays, with as many links as are found.
    std::vector<std::uint32_t> links(table.size());
    std::vector<Number> reached{root};
    links[root] = 1;
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const Entry &entry : table[reached[i]]->entries) {
            if (++links[entry.inode] == 1)
                reached.push_back(entry.inode);
        }
    }
    for (Number number = root; number < table.size(); ++number) {
        if (links[number] == 0) {
            table[number].reset();
            continue;
        }
        if (table[number]->links != links[number])
            edit(table, number).links = links[number];
        if (table[number]->kind != FileKind::file || table[number]->bytes == now[number]->bytes)
            continue;
        const std::string &before = *table[number]->bytes;
        std::string content = *now[number]->bytes;
        switch (dice.below(5)) {
        case 0:
            content = before;
            break;
        case 1:
            content.clear();
            break;
        case 2:
            content.resize(dice.below(content.size() + 1));
            break;
        case 3: {
            // The length is there, and not all of the blocks.
            const std::size_t kept = dice.below(content.size() + 1);
            std::fill(content.begin() + static_cast<std::ptrdiff_t>(kept), content.end(), '\0');
            break;
        }
        default:
            break;
        }
        edit(table, number).bytes = std::make_shared<const std::string>(std::move(content));
    }

    Image image;
    image.m_inodes = table;
    image.m_durable = std::move(table);
    image.m_clock = m_image.m_clock;
    image.m_abilities = m_image.m_abilities;
    return image;
}
