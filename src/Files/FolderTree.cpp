// SPDX-License-Identifier: MIT
#include "FolderTree.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <sys/stat.h>
#include <utility>

namespace {

/// With more files and folders one sync of the whole file system is faster than a sync of each:
/// 96 ms against 5.8 s for ten thousand files.
constexpr std::size_t mostSyncs = 20;

constexpr mode_t rightsOfOthers = S_ISUID | S_ISGID | S_ISVTX | S_IRWXG | S_IRWXO;

/// What a file system answers that has no hard links, or none for this file.
bool meansNoLinks(const Failure &failure)
{
    return failure.is(EPERM) || failure.is(EACCES) || failure.is(EMLINK) || failure.is(EXDEV) ||
           failure.is(EOPNOTSUPP) || failure.is(ENOSYS);
}

/// Closes a folder to others. What its owner may not do stays as it is.
void closeToOthers(const Directory &folder)
{
    const mode_t mode = folder.orThrow(folder.status()).mode;
    if ((mode & rightsOfOthers) != 0)
        folder.orThrow(folder.setMode(mode & S_IRWXU));
}

/// What belongs to somebody else stays theirs: nothing is replaced by something of another owner.
void refuseOtherOwner(const FileStatus &old, const FileStatus &fresh, const Directory &folder,
                      std::string_view name = {})
{
    if (old.owner != fresh.owner)
        throw folder.error(Failure::system(EPERM), name);
}

/// The changes of one folder, of changes that are ordered by folder.
std::span<const FileChange> changesOf(std::span<const FileChange> changes, std::string_view folder)
{
    const auto isOfFolder = [folder](const FileChange &change) { return change.folder == folder; };
    const auto first = std::ranges::find_if(changes, isOfFolder);
    const auto last = std::find_if_not(first, changes.end(), isOfFolder);
    return {first, last};
}

/// Removes one entry, also from a folder that is not writable: it is the user's own.
bool removeEntry(Disk &disk, Disk::Handle folder, const char *name, FileKind kind) noexcept
{
    const auto unlink = [&] { return disk.unlink(folder, name, kind); };
    const Result<void> removed = uninterrupted(unlink);
    if (removed || removed.failure().is(ENOENT))
        return true;
    return removed.failure().is(EACCES) && disk.setMode(folder, S_IRWXU) && uninterrupted(unlink);
}

/// Removes the files of a folder while it lists them, and finds one sub-folder.
class Sweeper final : public ListingVisitor {
public:
    Sweeper(Disk &disk, Disk::Handle folder) noexcept
        : m_disk(disk)
        , m_folder(folder)
    {
    }
    void visit(ino_t /*inode*/, FileKind kind, const char *name) noexcept override
    {
        if (kind != FileKind::folder)
            m_isAllGone &= removeEntry(m_disk, m_folder, name, kind);
        else if (m_subFolder[0] == '\0')
            std::strncpy(m_subFolder.data(), name, m_subFolder.size() - 1);
    }
    [[nodiscard]] const char *subFolder() const noexcept { return m_subFolder.data(); }
    [[nodiscard]] bool isAllGone() const noexcept { return m_isAllGone; }

private:
    Disk &m_disk;
    const Disk::Handle m_folder;
    std::array<char, NAME_MAX + 1> m_subFolder{};
    bool m_isAllGone = true;
};

bool removeOnce(Disk &disk, Disk::Handle parent, const char *name) noexcept
{
    const auto opened = uninterrupted([&] { return disk.openFolder(parent, name); });
    if (!opened)
        return opened.failure().is(ENOENT);
    const Descriptor folder(disk, *opened);
    for (;;) {
        Sweeper sweeper(disk, folder.get());
        if (!uninterrupted([&] { return disk.list(folder.get(), sweeper); }) ||
            !sweeper.isAllGone())
            return false;
        if (*sweeper.subFolder() == '\0')
            break;
        if (!removeOnce(disk, folder.get(), sweeper.subFolder()))
            return false;
    }
    return removeEntry(disk, parent, name, FileKind::folder);
}

/// Whether a folder that was just listed is none any more.
bool isGone(const Failure &failure) noexcept
{
    return failure.is(ENOENT) || failure == Failure::because(Reason::notFolder);
}

} // namespace

bool FolderTree::isSameContent(const FileStatus &a, const FileStatus &b) noexcept
{
    return a.kind == b.kind && a.size == b.size && a.modified == b.modified;
}

FolderTree::FolderTree(const Directory &folder, IsGuarded isGuarded, std::string name, int depth)
    : m_isGuarded(isGuarded)
    , m_name(std::move(name))
    , m_depth(depth)
    , m_changed(folder.orThrow(folder.status()).changed)
    , m_listing(folder.orThrow(folder.list()))
{
    m_listing.sort();
    for (const DirectoryListing::Entry &entry : m_listing.entries()) {
        if (entry.kind == FileKind::folder)
            addFolder(m_listing.name(entry), subTree(folder, m_listing.name(entry)));
    }
}

/// What a sub-folder holds. Of one that has gone meanwhile nothing: it is missed when it is to be
/// copied.
FolderTree FolderTree::subTree(const Directory &folder, const char *name) const
{
    if (m_depth == mostFolders)
        throw folder.error(Failure::because(Reason::tooDeep), name);
    const Result<Disk::Attributes> attributes = folder.attributes(name);
    if (!attributes && isGone(attributes.failure()))
        return {};
    if (folder.orThrow(attributes, name).isMountPoint)
        throw folder.error(Failure::because(Reason::mountPoint), name);
    // What is immutable should stay as it is and where it is.
    if (attributes->isImmutable)
        throw folder.error(Failure::system(EPERM), name);
    const Result<Directory> inside = folder.openFolder(name);
    if (!inside && inside.failure().is(ENOENT))
        return {};
    if (!inside)
        throw folder.error(inside.failure(), name);
    return {*inside, m_isGuarded, m_depth == 0 ? name : std::string(), m_depth + 1};
}

void FolderTree::addFolder(const char *name, FolderTree tree)
{
    m_folderNames.reserve(m_folderNames.size() + 1);
    m_folders.reserve(m_folders.size() + 1);
    std::string ownName(name);
    m_folders.push_back(std::move(tree));
    m_folderNames.push_back(std::move(ownName));
}

void FolderTree::removeFolder(const char *name) noexcept
{
    const auto found = std::ranges::find(m_folderNames, std::string_view(name));
    if (found == m_folderNames.end())
        return;
    m_folders.erase(m_folders.begin() + (found - m_folderNames.begin()));
    m_folderNames.erase(found);
}

bool FolderTree::guards(const char *name) const noexcept
{
    constexpr int deepestGuarded = 1;
    return !m_isGuarded || (m_depth <= deepestGuarded && m_isGuarded(m_name, name));
}

const FolderTree *FolderTree::find(const char *name) const noexcept
{
    const auto found = std::ranges::find(m_folderNames, std::string_view(name));
    return found != m_folderNames.end()
               ? &m_folders[static_cast<std::size_t>(found - m_folderNames.begin())]
               : nullptr;
}

FolderTree *FolderTree::subFolder(const char *name) noexcept
{
    return const_cast<FolderTree *>(find(name));
}

bool FolderTree::copyTo(const Directory &copy, const Directory *original,
                        std::span<const FileChange> changes,
                        std::span<const char *const> ownFolders)
{
    if (original && !copyLevel(copy, *original, changes, true))
        return false;
    closeToOthers(copy);
    for (const char *name : ownFolders)
        makeOwnFolder(copy, name, changesOf(changes, name));
    write(copy, changesOf(changes, ""));
    return true;
}

void FolderTree::makeOwnFolder(const Directory &copy, const char *name,
                               std::span<const FileChange> changes)
{
    if (!subFolder(name)) {
        FolderTree empty;
        empty.m_isGuarded = m_isGuarded;
        empty.m_name = name;
        empty.m_depth = m_depth + 1;
        addFolder(name, std::move(empty));
        ++m_sharedCount;
        static_cast<void>(copy.orThrow(copy.makeFolder(name), name));
    }
    const Directory folder = copy.orThrow(copy.openFolder(name), name);
    closeToOthers(folder);
    subFolder(name)->write(folder, changes);
}

bool FolderTree::copyLevel(const Directory &copy, const Directory &original,
                           std::span<const FileChange> changes, bool isTop)
{
    auto change = isTop ? changesOf(changes, "") : changes;
    std::vector<std::size_t> gone;
    for (const DirectoryListing::Entry &entry : m_listing.entries()) {
        const char *name = m_listing.name(entry);
        while (!change.empty() && std::strcmp(change.front().name, name) < 0)
            change = change.subspan(1);
        const bool isChanged = !change.empty() && std::strcmp(change.front().name, name) == 0;
        bool isThere = false;
        if (entry.kind == FileKind::folder)
            isThere = copyFolder(copy, original, name,
                                 isTop ? changesOf(changes, name) : std::span<const FileChange>());
        else if (isChanged)
            isThere = leaveOut(original, name);
        else if (guards(name))
            isThere = copyEntry(copy, original, name, entry.kind);
        else
            isThere = copyFree(copy, original, name, entry.kind);
        if (!isThere && guards(name))
            return false;
        if (!isThere)
            gone.push_back(entry.nameOffset);
    }
    leaveOutOfListing(std::move(gone));
    // Last, since it may close the folder and since its times would not stay.
    copy.orThrow(copy.resemble(original));
    refuseOtherOwner(original.orThrow(original.status()), copy.orThrow(copy.status()), original);
    return true;
}

/// Forgets what went while it was to be copied.
void FolderTree::leaveOutOfListing(std::vector<std::size_t> nameOffsets)
{
    if (nameOffsets.empty())
        return;
    std::ranges::sort(nameOffsets);
    m_listing.keepIf([&](const DirectoryListing::Entry &entry) {
        const bool isLeftOut = std::ranges::binary_search(nameOffsets, entry.nameOffset);
        if (isLeftOut && entry.kind == FileKind::folder)
            removeFolder(m_listing.name(entry));
        return !isLeftOut;
    });
}

bool FolderTree::copyFolder(const Directory &copy, const Directory &original, const char *name,
                            std::span<const FileChange> changes)
{
    const Result<Directory> source = original.openFolder(name);
    if (!source && isGone(source.failure()) && !(guards(name) && !source.failure().is(ENOENT)))
        return false;
    if (!source)
        throw original.error(source.failure(), name);
    const Directory target = copy.orThrow(copy.makeFolder(name), name);
    ++m_sharedCount;
    return subFolder(name)->copyLevel(target, *source, changes, false);
}

bool FolderTree::copyEntry(const Directory &copy, const Directory &original, const char *name,
                           FileKind kind)
{
    const Result<void> linked = original.link(name, copy);
    if (linked) {
        ++m_sharedCount;
        return true;
    }
    const Failure failure = linked.failure();
    if (failure.is(ENOENT))
        return false;
    // What is another kind of thing by now is carried over as that.
    const Result<FileStatus> now = original.status(name);
    if (!guards(name) && now && now->kind != kind)
        return false;
    const Result<Disk::Attributes> attributes = original.attributes(name);
    if (!attributes && attributes.failure().is(ENOENT))
        return false;
    if (!meansNoLinks(failure) || original.orThrow(attributes, name).isImmutable)
        throw original.error(failure, name);
    if (attributes->isMountPoint)
        throw original.error(Failure::because(Reason::mountPoint), name);
    return copyOver(copy, original, name, kind);
}

/// Copies what may be replaced at any time, and remembers which file it was.
bool FolderTree::copyFree(const Directory &copy, const Directory &original, const char *name,
                          FileKind kind)
{
    if (!copyEntry(copy, original, name, kind))
        return false;
    if (ownFile(name))
        return true;
    const FileStatus made = copy.orThrow(copy.status(name), name);
    if (made.kind != kind) {
        drop(copy, name, made.kind);
        return false;
    }
    // Where there are no hard links, a symbolic link is another one in each folder.
    if (kind == FileKind::link && m_hasCopies)
        return true;
    addFreeFile({name, made});
    return true;
}

bool FolderTree::copyOver(const Directory &copy, const Directory &original, const char *name,
                          FileKind kind)
{
    m_hasCopies = true;
    if (kind == FileKind::link) {
        copy.orThrow(original.copySymbolicLink(name, copy), name);
        ++m_sharedCount;
        return true;
    }
    if (kind != FileKind::file)
        throw original.error(Failure::because(Reason::notRegularFile), name);
    // Looked at before the copy, so that a change during the copy shows later.
    if (!leaveOut(original, name))
        return false;
    const Result<FileStatus> copied = original.copyFile(name, copy);
    if (!copied && copied.failure().is(ENOENT))
        return false;
    OwnFile &file = addOwnFile(name);
    file.copy = copy.orThrow(copied, name);
    refuseOtherOwner(*file.original, *file.copy, original, name);
    return true;
}

bool FolderTree::leaveOut(const Directory &original, const char *name)
{
    const Result<FileStatus> status = original.status(name);
    if (!status && status.failure().is(ENOENT))
        return false;
    addOwnFile(name).original = original.orThrow(status, name);
    return true;
}

void FolderTree::write(const Directory &copy, std::span<const FileChange> changes)
{
    for (const FileChange &change : changes) {
        if (!change.bytes)
            continue;
        OwnFile &file = addOwnFile(change.name);
        file.copy = copy.orThrow(copy.makeFile(change.name, *change.bytes), change.name);
        if (file.original)
            refuseOtherOwner(*file.original, *file.copy, copy, change.name);
    }
}

const FolderTree::OwnFile *FolderTree::ownFile(const char *name) const noexcept
{
    const std::string_view wanted(name);
    const auto found = std::ranges::lower_bound(m_ownFiles, wanted, {}, &OwnFile::name);
    return found != m_ownFiles.end() && found->name == wanted ? &*found : nullptr;
}

FolderTree::OwnFile &FolderTree::addOwnFile(const char *name)
{
    const std::string_view wanted(name);
    auto place = m_ownFiles.end();
    if (!m_ownFiles.empty() && m_ownFiles.back().name >= wanted)
        place = std::ranges::lower_bound(m_ownFiles, wanted, {}, &OwnFile::name);
    if (place == m_ownFiles.end() || place->name != wanted)
        place = m_ownFiles.insert(place, {std::string(wanted), {}, {}});
    return *place;
}

bool FolderTree::hasCopies() const noexcept
{
    return m_hasCopies || std::ranges::any_of(m_folders, &FolderTree::hasCopies);
}

void FolderTree::syncCopy(const Directory &copy) const
{
    if (syncCount() > mostSyncs)
        copy.orThrow(copy.syncFileSystem());
    else
        syncEach(copy);
}

std::size_t FolderTree::syncCount() const noexcept
{
    std::size_t count = 1 + m_ownFiles.size();
    for (const FolderTree &folder : m_folders)
        count += folder.syncCount();
    return count;
}

void FolderTree::syncEach(const Directory &copy) const
{
    for (const OwnFile &file : m_ownFiles) {
        if (file.copy)
            copy.orThrow(copy.syncFile(file.name.c_str()), file.name);
    }
    for (std::size_t i = 0; i < m_folders.size(); ++i)
        m_folders[i].syncEach(
            copy.orThrow(copy.openFolder(m_folderNames[i].c_str()), m_folderNames[i]));
    copy.orThrow(copy.sync());
}

const FolderTree::FreeFile *FolderTree::freeFile(const char *name) const noexcept
{
    const std::string_view wanted(name);
    const auto found = std::ranges::lower_bound(m_freeFiles, wanted, {}, &FreeFile::name);
    return found != m_freeFiles.end() && found->name == wanted ? &*found : nullptr;
}

void FolderTree::addFreeFile(FreeFile file)
{
    const auto place = std::ranges::lower_bound(m_freeFiles, file.name, {}, &FreeFile::name);
    m_freeFiles.insert(place, std::move(file));
}

void FolderTree::drop(const Directory &copy, const char *name, FileKind kind)
{
    const std::string_view wanted(name);
    if (kind == FileKind::folder) {
        static_cast<void>(removeTree(copy.disk(), copy.handle(), name));
        removeFolder(name);
        --m_sharedCount;
        return;
    }
    const Result<void> removed = copy.unlink(name, kind);
    if (!removed && !removed.failure().is(ENOENT))
        throw copy.error(removed.failure(), name);
    std::erase_if(m_freeFiles, [&](const FreeFile &file) { return file.name == wanted; });
    if (std::erase_if(m_ownFiles, [&](const OwnFile &file) { return file.name == wanted; }) == 0)
        --m_sharedCount;
}

bool FolderTree::catchUp(const Directory &copy, const Directory &original)
{
    bool hasCaughtUp =
        original.orThrow(original.status()).changed != m_changed && catchUpHere(copy, original);
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        const char *name = m_folderNames[i].c_str();
        const Result<Directory> inside = original.openFolder(name);
        // What came after the look at this folder is not in the copy either; it is carried later.
        if (!inside && isGone(inside.failure()))
            continue;
        if (!inside)
            throw original.error(inside.failure(), name);
        const Directory twin = copy.orThrow(copy.openFolder(name), name);
        hasCaughtUp |= m_folders[i].catchUp(twin, *inside);
    }
    return hasCaughtUp;
}

bool FolderTree::catchUpHere(const Directory &copy, const Directory &original)
{
    m_changed = original.orThrow(original.status()).changed;
    DirectoryListing now = original.orThrow(original.list());
    now.keepIf([&](const DirectoryListing::Entry &entry) { return !guards(now.name(entry)); });
    now.sort();
    const auto isFile = [&](const char *name, const DirectoryListing::Entry &entry) {
        const FreeFile *file = freeFile(name);
        return file ? file->status.identity.inode == entry.inode : ownFile(name) != nullptr;
    };
    const auto isSame = [&](const char *name, const DirectoryListing::Entry *a,
                            const DirectoryListing::Entry *b) {
        return a && b && a->kind == b->kind &&
               (a->kind == FileKind::folder ? subFolder(name) != nullptr : isFile(name, *b));
    };
    // What left, or is another one by now.
    std::vector<std::size_t> gone;
    for (const DirectoryListing::Entry &entry : m_listing.entries()) {
        const char *name = m_listing.name(entry);
        if (guards(name) || isSame(name, &entry, now.find(name)))
            continue;
        drop(copy, name, entry.kind);
        gone.push_back(entry.nameOffset);
    }
    bool hasCaughtUp = !gone.empty();
    leaveOutOfListing(std::move(gone));
    // What came.
    DirectoryListing late;
    for (const DirectoryListing::Entry &entry : now.entries()) {
        const char *name = now.name(entry);
        if (!m_listing.find(name) && copyLate(copy, original, name, entry.kind))
            late.add(entry.inode, entry.kind, name);
    }
    for (const DirectoryListing::Entry &entry : late.entries())
        m_listing.add(entry.inode, entry.kind, late.name(entry));
    if (!late.entries().empty())
        m_listing.sort();
    hasCaughtUp |= !late.entries().empty();
    if (hasCaughtUp)
        copy.orThrow(copy.sync());
    return hasCaughtUp;
}

bool FolderTree::copyLate(const Directory &copy, const Directory &original, const char *name,
                          FileKind kind)
{
    if (kind == FileKind::folder) {
        addFolder(name, subTree(original, name));
        const bool isThere = copyFolder(copy, original, name, {});
        if (!isThere)
            removeFolder(name);
        else
            subFolder(name)->syncCopy(copy.orThrow(copy.openFolder(name), name));
        return isThere;
    }
    if (!copyFree(copy, original, name, kind))
        return false;
    if (ownFile(name))
        copy.orThrow(copy.syncFile(name), name);
    return true;
}

bool FolderTree::isStillThere(Disk &disk, Disk::Handle original,
                              const DirectoryListing::Entry &entry) const noexcept
{
    const char *name = m_listing.name(entry);
    const auto now = uninterrupted([&] { return disk.status(original, name); });
    if (!now)
        return false;
    if (const OwnFile *file = ownFile(name))
        return file->original && isSameContent(*now, *file->original);
    if (const FreeFile *file = freeFile(name))
        return now->identity == file->status.identity;
    return m_hasPassingInodes || now->identity.inode == entry.inode;
}

bool FolderTree::removeFrom(Disk &disk, Disk::Handle original, Deadline deadline) noexcept
{
    constexpr std::size_t filesBetweenLooks = 16;
    const std::vector<DirectoryListing::Entry> &entries = m_listing.entries();
    while (m_removedCount < entries.size()) {
        const DirectoryListing::Entry &entry = entries[m_removedCount];
        const char *name = m_listing.name(entry);
        const bool isFolder = entry.kind == FileKind::folder;
        if (isFolder) {
            const auto inside = uninterrupted([&] { return disk.openFolder(original, name); });
            if (inside) {
                const Descriptor folder(disk, *inside);
                if (!subFolder(name)->removeFrom(disk, folder.get(), deadline))
                    return false;
            }
            removeEntry(disk, original, name, FileKind::folder);
        } else if (isStillThere(disk, original, entry)) {
            removeEntry(disk, original, name, entry.kind);
        }
        ++m_removedCount;
        // After the work, so that each call gets on.
        if ((isFolder || m_removedCount % filesBetweenLooks == 0) &&
            std::chrono::steady_clock::now() >= deadline)
            return false;
    }
    m_removedCount = 0;
    return true;
}

bool removeTree(Disk &disk, Disk::Handle parent, const char *name) noexcept
{
    // A failure may be a passing one, and nobody looks for what stays behind.
    return removeOnce(disk, parent, name) || removeOnce(disk, parent, name);
}
