// SPDX-License-Identifier: MIT
#include "FolderTree.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <sys/stat.h>

namespace {

/// With more files and folders one sync of the whole file system is faster than a sync of each:
/// 96 ms against 5.8 s for ten thousand files.
constexpr std::size_t mostSyncs = 20;

/// Each folder on the way is held open. Deeper than anybody sorts files, and far from the number of
/// files that a process may open.
constexpr int mostFolders = 128;

constexpr mode_t rightsOfOthers = S_ISUID | S_ISGID | S_ISVTX | S_IRWXG | S_IRWXO;

/// What a file system answers that has no hard links, or none for this file.
bool meansNoLinks(const Failure &failure)
{
    return failure.is(EPERM) || failure.is(EMLINK) || failure.is(EXDEV) || failure.is(EOPNOTSUPP) ||
           failure.is(ENOSYS);
}

/// Closes a folder to others. What its owner may not do stays as it is.
void closeToOthers(const Directory &folder)
{
    const mode_t mode = folder.orThrow(folder.status()).mode;
    if ((mode & rightsOfOthers) != 0)
        folder.orThrow(folder.setMode(mode & S_IRWXU));
}

/// The changes of one folder, of changes that are ordered by folder.
std::span<const FileChange> changesOf(std::span<const FileChange> changes, std::string_view folder)
{
    const auto isOfFolder = [folder](const FileChange &change) { return change.folder == folder; };
    const auto first = std::ranges::find_if(changes, isOfFolder);
    const auto last = std::find_if_not(first, changes.end(), isOfFolder);
    return {first, last};
}

bool isSameContent(const FileStatus &a, const FileStatus &b) noexcept
{
    return a.kind == b.kind && a.size == b.size && a.modified == b.modified;
}

/// The folder of that name in the other one of two folders; none where there is no other one.
Result<Descriptor> openTwin(Disk &disk, Disk::Handle other, const char *name) noexcept
{
    if (other < 0)
        return Descriptor(disk, -1);
    const auto opened = uninterrupted([&] { return disk.openFolder(other, name); });
    if (!opened && !opened.failure().is(ENOENT))
        return opened.failure();
    return Descriptor(disk, opened.valueOr(-1));
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

} // namespace

FolderTree::FolderTree(const Directory &folder, int depth)
    : m_listing(folder.orThrow(folder.list()))
{
    m_listing.sort();
    for (const DirectoryListing::Entry &entry : m_listing.entries()) {
        if (entry.kind != FileKind::folder)
            continue;
        const char *name = m_listing.name(entry);
        if (depth == mostFolders)
            throw folder.error(Failure::because(Reason::tooDeep), name);
        m_folderNames.emplace_back(name);
        const Result<Disk::Attributes> attributes = folder.attributes(name);
        // One that has gone meanwhile is missed when it is to be copied.
        if (!attributes && attributes.failure().is(ENOENT)) {
            m_folders.emplace_back();
            continue;
        }
        if (folder.orThrow(attributes, name).isMountPoint)
            throw folder.error(Failure::because(Reason::mountPoint), name);
        // What is immutable should stay as it is and where it is.
        if (attributes->isImmutable)
            throw folder.error(Failure::system(EPERM), name);
        const Directory inside = folder.orThrow(folder.openFolder(name), name);
        m_folders.push_back(FolderTree(inside, depth + 1));
    }
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
        m_folderNames.reserve(m_folderNames.size() + 1);
        m_folders.emplace_back();
        m_folderNames.emplace_back(name);
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
    for (const DirectoryListing::Entry &entry : m_listing.entries()) {
        const char *name = m_listing.name(entry);
        while (!change.empty() && std::strcmp(change.front().name, name) < 0)
            change = change.subspan(1);
        const bool isChanged = !change.empty() && std::strcmp(change.front().name, name) == 0;
        bool isThere = false;
        if (entry.kind == FileKind::folder)
            isThere = copyFolder(copy, original, name,
                                 isTop ? changesOf(changes, name) : std::span<const FileChange>());
        else
            isThere = isChanged ? leaveOut(original, name) : copyEntry(copy, original, entry);
        if (!isThere)
            return false;
    }
    // Last, since it may close the folder and since its times would not stay.
    copy.orThrow(copy.resemble(original));
    return true;
}

bool FolderTree::copyFolder(const Directory &copy, const Directory &original, const char *name,
                            std::span<const FileChange> changes)
{
    const Result<Directory> source = original.openFolder(name);
    if (!source && source.failure().is(ENOENT))
        return false;
    if (!source)
        throw original.error(source.failure(), name);
    const Directory target = copy.orThrow(copy.makeFolder(name), name);
    ++m_sharedCount;
    return subFolder(name)->copyLevel(target, *source, changes, false);
}

bool FolderTree::copyEntry(const Directory &copy, const Directory &original,
                           const DirectoryListing::Entry &entry)
{
    const char *name = m_listing.name(entry);
    const Result<void> linked = original.link(name, copy);
    if (linked) {
        ++m_sharedCount;
        return true;
    }
    const Failure failure = linked.failure();
    if (failure.is(ENOENT))
        return false;
    const Result<Disk::Attributes> attributes = original.attributes(name);
    if (!attributes && attributes.failure().is(ENOENT))
        return false;
    if (!meansNoLinks(failure) || original.orThrow(attributes, name).isImmutable)
        throw original.error(failure, name);
    if (attributes->isMountPoint)
        throw original.error(Failure::because(Reason::mountPoint), name);
    return copyOver(copy, original, entry);
}

bool FolderTree::copyOver(const Directory &copy, const Directory &original,
                          const DirectoryListing::Entry &entry)
{
    const char *name = m_listing.name(entry);
    m_hasCopies = true;
    if (entry.kind == FileKind::link) {
        copy.orThrow(original.copySymbolicLink(name, copy), name);
        ++m_sharedCount;
        return true;
    }
    if (entry.kind != FileKind::file)
        throw original.error(Failure::because(Reason::notRegularFile), name);
    // Looked at before the copy, so that a change during the copy shows later.
    if (!leaveOut(original, name))
        return false;
    const Result<FileStatus> copied = original.copyFile(name, copy);
    if (!copied && copied.failure().is(ENOENT))
        return false;
    addOwnFile(name).copy = copy.orThrow(copied, name);
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
        if (change.bytes)
            addOwnFile(change.name).copy =
                copy.orThrow(copy.makeFile(change.name, *change.bytes), change.name);
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

/// Compares a folder, while it is listed, with what is remembered of it.
class FolderTree::Comparison final : public ListingVisitor {
public:
    /// The twin is the other one of the two folders, -1 where there is none.
    Comparison(const FolderTree &tree, Disk &disk, Disk::Handle folder, Disk::Handle twin,
               bool isOriginal) noexcept
        : m_tree(tree)
        , m_disk(disk)
        , m_folder(folder)
        , m_twin(twin)
        , m_isOriginal(isOriginal)
    {
    }

    void visit(ino_t inode, FileKind kind, const char *name) noexcept override
    {
        ++m_count;
        m_isSame = m_isSame && isSame(inode, kind, name);
    }

    Result<bool> isAtMostAll() const noexcept
    {
        if (m_failure)
            return *m_failure;
        return m_isSame;
    }

    Result<bool> isAll() const noexcept
    {
        const Result<bool> isAtMost = isAtMostAll();
        return isAtMost ? *isAtMost && m_count == expectedCount() : isAtMost;
    }

    [[nodiscard]] bool hasPassingInodes() const noexcept { return m_hasPassingInodes; }

private:
    [[nodiscard]] std::size_t expectedCount() const noexcept
    {
        if (m_isOriginal)
            return m_tree.m_listing.entries().size();
        const auto ownCount = std::ranges::count_if(
            m_tree.m_ownFiles, [](const OwnFile &file) { return file.copy.has_value(); });
        return m_tree.m_sharedCount + static_cast<std::size_t>(ownCount);
    }

    bool isSame(ino_t inode, FileKind kind, const char *name) noexcept
    {
        if (kind == FileKind::folder)
            return m_isOriginal ? isRemembered(name, kind) : m_tree.find(name) != nullptr;
        if (const OwnFile *file = m_tree.ownFile(name)) {
            const auto &status = m_isOriginal ? file->original : file->copy;
            return status && isStill(name, *status);
        }
        const DirectoryListing::Entry *entry = m_tree.m_listing.find(name);
        if (!entry || entry->kind != kind)
            return false;
        // Where numbers pass, the twin told until the exchange; by now it may have changed itself.
        if (inode == entry->inode || (m_isOriginal && m_tree.m_hasPassingInodes))
            return true;
        // A symbolic link where there are no hard links, or a number that passes.
        if (kind == FileKind::link && m_tree.m_hasCopies)
            return true;
        const bool isSameFile = isTwin(name);
        m_hasPassingInodes |= isSameFile;
        return isSameFile;
    }

    [[nodiscard]] bool isRemembered(const char *name, FileKind kind) const noexcept
    {
        const DirectoryListing::Entry *entry = m_tree.m_listing.find(name);
        return entry && entry->kind == kind;
    }

    bool isStill(const char *name, const FileStatus &status) noexcept
    {
        const auto now = uninterrupted([&] { return m_disk.status(m_folder, name); });
        if (!now && !now.failure().is(ENOENT))
            m_failure = now.failure();
        return now && isSameContent(*now, status);
    }

    /// Two links to one file are no change.
    bool isTwin(const char *name) noexcept
    {
        if (m_twin < 0)
            return false;
        const auto here = uninterrupted([&] { return m_disk.status(m_folder, name); });
        const auto there = uninterrupted([&] { return m_disk.status(m_twin, name); });
        for (const Result<FileStatus> *status : {&here, &there}) {
            if (!*status && !status->failure().is(ENOENT))
                m_failure = status->failure();
        }
        return here && there && here->identity == there->identity;
    }

    const FolderTree &m_tree;
    Disk &m_disk;
    const Disk::Handle m_folder;
    const Disk::Handle m_twin;
    const bool m_isOriginal;
    std::size_t m_count = 0;
    bool m_isSame = true;
    bool m_hasPassingInodes = false;
    std::optional<Failure> m_failure;
};

Result<bool> FolderTree::isOriginalStill(Disk &disk, Disk::Handle original,
                                         Disk::Handle copy) noexcept
{
    return compareOriginal(disk, original, copy, Extent::all);
}

Result<bool> FolderTree::hasNothingElse(Disk &disk, Disk::Handle original,
                                        Disk::Handle copy) noexcept
{
    return compareOriginal(disk, original, copy, Extent::atMostAll);
}

Result<bool> FolderTree::compareOriginal(Disk &disk, Disk::Handle original, Disk::Handle copy,
                                         Extent extent) noexcept
{
    const auto compared = uninterrupted([&]() -> Result<bool> {
        Comparison comparison(*this, disk, original, copy, true);
        if (const auto listed = disk.list(original, comparison); !listed)
            return listed.failure();
        m_hasPassingInodes |= comparison.hasPassingInodes();
        return extent == Extent::all ? comparison.isAll() : comparison.isAtMostAll();
    });
    if (!compared || !*compared)
        return compared;
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        const char *name = m_folderNames[i].c_str();
        if (!m_listing.find(name))
            continue;
        const auto inside = uninterrupted([&] { return disk.openFolder(original, name); });
        if (!inside && inside.failure().is(ENOENT) && extent == Extent::atMostAll)
            continue;
        if (!inside)
            return inside.failure();
        const Descriptor folder(disk, *inside);
        const Result<Descriptor> twin = openTwin(disk, copy, name);
        if (!twin)
            return twin.failure();
        const Result<bool> isSame =
            m_folders[i].compareOriginal(disk, folder.get(), twin->get(), extent);
        if (!isSame || !*isSame)
            return isSame;
    }
    return true;
}

Result<bool> FolderTree::isCopyStill(Disk &disk, Disk::Handle copy,
                                     Disk::Handle original) const noexcept
{
    const auto compared = uninterrupted([&]() -> Result<bool> {
        Comparison comparison(*this, disk, copy, original, false);
        if (const auto listed = disk.list(copy, comparison); !listed)
            return listed.failure();
        return comparison.isAll();
    });
    if (!compared || !*compared)
        return compared;
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        const char *name = m_folderNames[i].c_str();
        const auto inside = uninterrupted([&] { return disk.openFolder(copy, name); });
        if (!inside)
            return inside.failure();
        const Descriptor folder(disk, *inside);
        const Result<Descriptor> twin = openTwin(disk, original, name);
        if (!twin)
            return twin.failure();
        const Result<bool> isStill = m_folders[i].isCopyStill(disk, folder.get(), twin->get());
        if (!isStill || !*isStill)
            return isStill;
    }
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
    return true;
}

bool removeTree(Disk &disk, Disk::Handle parent, const char *name) noexcept
{
    // A failure may be a passing one, and nobody looks for what stays behind.
    return removeOnce(disk, parent, name) || removeOnce(disk, parent, name);
}
