// SPDX-License-Identifier: MIT
// The part of a FolderTree that brings together what other programs did meanwhile in either of the
// two folders. Nothing here allocates: some of it happens while a transaction is taken back.
#include "FolderTree.h"
#include "Renames.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstring>

namespace {

/// The folder of that name in the other one of two folders; none where there is no other one.
Result<Descriptor> openTwin(Disk &disk, Disk::Handle other, const char *name) noexcept
{
    if (other < 0)
        return Descriptor(disk, -1);
    const auto opened = uninterrupted([&] { return disk.openFolder(other, name); });
    const bool isNone = !opened && (opened.failure().is(ENOENT) || opened.failure().is(ENOTDIR) ||
                                    opened.failure().is(ELOOP));
    if (!opened && !isNone)
        return opened.failure();
    return Descriptor(disk, opened.valueOr(-1));
}

} // namespace

/// Compares a folder, while it is listed, with what is remembered of it, and does in the other one
/// what was done in this one.
class FolderTree::Settling final : public ListingVisitor {
public:
    Settling(const FolderTree &tree, const Settlement &how, Disk::Handle here,
             Disk::Handle there) noexcept
        : m_tree(tree)
        , m_how(how)
        , m_disk(how.disk)
        , m_here(here)
        , m_there(there)
    {
    }

    void visit(ino_t inode, FileKind kind, const char *name) noexcept override
    {
        if (!m_isSettled || m_failure)
            return;
        const bool isGuarded = m_tree.guards(name);
        if (isGuarded && m_how.isForFree)
            return;
        if (isSame(inode, kind, name)) {
            ++m_sameCount;
            m_guardedCount += isGuarded ? 1U : 0U;
        } else if (!m_failure) {
            m_isSettled = !isGuarded && m_there >= 0 && carry(name);
        }
    }

    /// After the listing: what should have been in it, too.
    Result<bool> finish() noexcept
    {
        if (m_isSettled && !m_failure && m_how.missing != Missing::isNothing &&
            (m_hasCarried || m_how.isForFree || m_sameCount != expectedCount()))
            m_isSettled = settleMissing();
        if (m_failure)
            return *m_failure;
        return m_isSettled;
    }

    [[nodiscard]] bool hasCarried() const noexcept { return m_hasCarried; }
    [[nodiscard]] bool hasPassingInodes() const noexcept { return m_hasPassingInodes; }

private:
    [[nodiscard]] std::size_t expectedCount() const noexcept
    {
        if (m_how.isOriginal)
            return m_tree.m_listing.entries().size();
        const auto ownCount = std::ranges::count_if(
            m_tree.m_ownFiles, [](const OwnFile &file) { return file.copy.has_value(); });
        return m_tree.m_sharedCount + static_cast<std::size_t>(ownCount);
    }

    // -- What differs here -----------------------------------------------------------------------

    bool isSame(ino_t inode, FileKind kind, const char *name) noexcept
    {
        if (kind == FileKind::folder)
            return m_how.isOriginal ? isListed(name, kind) : m_tree.find(name) != nullptr;
        if (const OwnFile *file = m_tree.ownFile(name)) {
            const auto &status = m_how.isOriginal ? file->original : file->copy;
            return status && isStill(name, *status);
        }
        if (const FreeFile *file = m_tree.freeFile(name))
            return file->status.kind == kind &&
                   (inode == file->status.identity.inode || isTwin(name));
        const DirectoryListing::Entry *entry = m_tree.m_listing.find(name);
        if (!entry || entry->kind != kind)
            return false;
        // Where numbers pass, the twin told until the exchange; by now it may have changed itself.
        if (inode == entry->inode || (m_how.isOriginal && m_tree.m_hasPassingInodes))
            return true;
        // A symbolic link where there are no hard links, or a number that passes.
        if (kind == FileKind::link && m_tree.m_hasCopies)
            return true;
        const bool isSameFile = isTwin(name);
        m_hasPassingInodes |= isSameFile;
        return isSameFile;
    }

    [[nodiscard]] bool isListed(const char *name, FileKind kind) const noexcept
    {
        const DirectoryListing::Entry *entry = m_tree.m_listing.find(name);
        return entry && entry->kind == kind;
    }

    /// Nothing when there is none of that name.
    std::optional<FileStatus> status(Disk::Handle folder, const char *name) noexcept
    {
        const auto found = uninterrupted([&] { return m_disk.status(folder, name); });
        if (found)
            return *found;
        if (!found.failure().is(ENOENT))
            m_failure = found.failure();
        return std::nullopt;
    }

    bool isStill(const char *name, const FileStatus &before) noexcept
    {
        const std::optional<FileStatus> now = status(m_here, name);
        return now && isSameContent(*now, before);
    }

    /// Two links to one file are no change.
    bool isTwin(const char *name) noexcept
    {
        if (m_there < 0)
            return false;
        const std::optional<FileStatus> here = status(m_here, name);
        const std::optional<FileStatus> there = status(m_there, name);
        return here && there && here->identity == there->identity;
    }

    // -- What is done there ----------------------------------------------------------------------

    /// Whether an entry, in either folder by now and by whatever name, is the file that was there
    /// by this name, unchanged since. A program may have made it anew in the same file.
    bool isAsThere(Disk::Handle folder, const char *name, const char *formerName) noexcept
    {
        const std::optional<FileStatus> now = status(folder, name);
        const FileStatus *before = statusThere(formerName);
        return now && before && isSameFile(*now, *before);
    }

    /// As it was remembered.
    [[nodiscard]] const FileStatus *statusThere(const char *name) const noexcept
    {
        if (const OwnFile *own = m_tree.ownFile(name)) {
            const auto &there = m_how.isOriginal ? own->copy : own->original;
            return there ? &*there : nullptr;
        }
        const FreeFile *file = m_tree.freeFile(name);
        return file ? &file->status : nullptr;
    }

    static bool isSameFile(const FileStatus &a, const FileStatus &b) noexcept
    {
        return a.identity == b.identity && isSameContent(a, b);
    }

    /// What has the name there, if what has it here took its place: it is unchanged since, or was
    /// written, by either name, before it was replaced here.
    std::optional<FileStatus> replaced(const char *name) noexcept
    {
        const std::optional<FileStatus> here = status(m_here, name);
        const std::optional<FileStatus> there = status(m_there, name);
        const FileStatus *before = statusThere(name);
        if (!here || !there || !before || there->identity != before->identity)
            return std::nullopt;
        const bool isOlder = there->modified < here->changed && there->changed <= here->changed;
        return isOlder || isSameContent(*there, *before) ? there : std::nullopt;
    }

    /// An entry that came here or took the place of one.
    bool carry(const char *name) noexcept
    {
        m_hasCarried = true;
        // There the program may already have gone on, with the one that was replaced here.
        Finder finder(*this, name);
        const FreeFile *before = m_tree.freeFile(name);
        if (before && !status(m_there, name) && !m_failure && m_disk.list(m_there, finder) &&
            finder.hasFound() && exchange(name, finder.found(), before->status))
            return true;
        const Result<void> moved = carryToFreeName(m_disk, m_here, name, m_there, name);
        if (moved || !moved.failure().is(EEXIST))
            return bool(moved);
        const std::optional<FileStatus> older = replaced(name);
        return (older && exchange(name, name, *older)) || (!m_failure && carryBeside(name));
    }

    bool exchange(const char *name, const char *nameThere, const FileStatus &statusThere) noexcept
    {
        const auto rename = [&](Disk::Rename how) {
            return m_disk.rename(m_here, name, m_there, nameThere, how);
        };
        const Result<void> exchanged = rename(Disk::Rename::exchange);
        if (!exchanged && meansNoFlags(exchanged.failure()))
            return bool(uninterrupted([&] { return rename(Disk::Rename::replace); }));
        if (const auto now = status(m_here, name); now && isSameFile(*now, statusThere))
            return true;
        // A newer one took the place meanwhile.
        if (exchanged)
            static_cast<void>(rename(Disk::Rename::exchange));
        return false;
    }

    /// The one that is there came later. Both are kept.
    bool carryBeside(const char *name) noexcept
    {
        constexpr int mostNames = 9;
        std::array<char, NAME_MAX + 1> other{};
        for (int i = 1; i <= mostNames; ++i) {
            const int size = std::snprintf(other.data(), other.size(), "%s.~%d~", name, i);
            if (size < 0 || static_cast<std::size_t>(size) >= other.size())
                return false;
            const Result<void> moved = carryToFreeName(m_disk, m_here, name, m_there, other.data());
            if (moved || !moved.failure().is(EEXIST))
                return bool(moved);
        }
        return false;
    }

    // -- What is missing here --------------------------------------------------------------------

    bool settleMissing() noexcept
    {
        std::size_t freeCount = 0;
        for (const DirectoryListing::Entry &entry : m_tree.m_listing.entries()) {
            const char *name = m_tree.m_listing.name(entry);
            if (m_tree.guards(name))
                continue;
            ++freeCount;
            if (m_there >= 0 && !settleMissing(name, entry.kind))
                return false;
        }
        return m_how.isForFree || m_how.missing == Missing::isCarriedOrTaken ||
               (m_guardedCount == expectedCount() - freeCount &&
                (m_there >= 0 || m_sameCount == expectedCount()));
    }

    bool settleMissing(const char *name, FileKind kind) noexcept
    {
        if (status(m_here, name) || m_failure)
            return !m_failure;
        if (kind == FileKind::folder ? !isFolderAsThere(name) : !isAsThere(m_there, name, name))
            return !m_failure;
        m_hasCarried = true;
        const Result<void> moved = carryToFreeName(m_disk, m_there, name, m_here, name);
        if (!moved)
            return moved.failure().is(EEXIST);
        if (kind != FileKind::folder && !isAsThere(m_here, name, name))
            static_cast<void>(renameToFreeName(m_disk, m_here, name, m_there, name));
        return true;
    }

    bool isFolderAsThere(const char *name) noexcept
    {
        const auto opened = uninterrupted([&] { return m_disk.openFolder(m_there, name); });
        if (!opened)
            return false;
        const Descriptor folder(m_disk, *opened);
        // Without another folder to carry anything to, it is only compared.
        const Settlement how{.disk = m_disk, .isOriginal = !m_how.isOriginal};
        auto *tree = const_cast<FolderTree *>(m_tree.find(name));
        return tree && tree->settle(how, folder.get(), -1).valueOr(false);
    }

    /// Finds by what other name a file stands there that had a name here.
    class Finder final : public ListingVisitor {
    public:
        Finder(Settling &settling, const char *formerName) noexcept
            : m_settling(settling)
            , m_formerName(formerName)
        {
        }
        void visit(ino_t inode, FileKind /*kind*/, const char *name) noexcept override
        {
            const FreeFile *file = m_settling.m_tree.freeFile(m_formerName);
            if (file->status.identity.inode == inode && !m_settling.m_tree.guards(name) &&
                m_settling.isAsThere(m_settling.m_there, name, m_formerName))
                std::strncpy(m_found.data(), name, m_found.size() - 1);
        }
        [[nodiscard]] bool hasFound() const noexcept { return m_found[0] != '\0'; }
        [[nodiscard]] const char *found() const noexcept { return m_found.data(); }

    private:
        Settling &m_settling;
        const char *const m_formerName;
        std::array<char, NAME_MAX + 1> m_found{};
    };

    const FolderTree &m_tree;
    const Settlement m_how;
    Disk &m_disk;
    const Disk::Handle m_here;
    const Disk::Handle m_there;
    std::size_t m_sameCount = 0;
    std::size_t m_guardedCount = 0;
    bool m_isSettled = true;
    bool m_hasCarried = false;
    bool m_hasPassingInodes = false;
    std::optional<Failure> m_failure;
};

Result<bool> FolderTree::settleOriginal(Disk &disk, Disk::Handle original,
                                        Disk::Handle copy) noexcept
{
    // First what other programs wait for. It need not be all of it.
    static_cast<void>(
        settle({.disk = disk, .isOriginal = true, .isForFree = true}, original, copy));
    return settle({.disk = disk, .isOriginal = true}, original, copy);
}

Result<bool> FolderTree::settleCopy(Disk &disk, Disk::Handle copy, Disk::Handle original) noexcept
{
    return settle({.disk = disk, .isOriginal = false}, copy, original);
}

Result<bool> FolderTree::settleRest(Disk &disk, Disk::Handle original, Disk::Handle copy,
                                    bool isBeingRemoved) noexcept
{
    const Missing missing = isBeingRemoved ? Missing::isNothing : Missing::isCarriedOrTaken;
    return settle({.disk = disk, .isOriginal = true, .missing = missing}, original, copy);
}

/// Whether entries came or went since the folder was listed; not if that was at the same moment.
bool FolderTree::hasChanged(Disk &disk, Disk::Handle original) const noexcept
{
    const auto status = uninterrupted([&] { return disk.status(original); });
    return status && status->changed != m_changed;
}

Result<bool> FolderTree::settle(const Settlement &how, Disk::Handle here,
                                Disk::Handle there) noexcept
{
    bool hasCarried = false;
    const auto settled = uninterrupted([&]() -> Result<bool> {
        if (how.isForFree && !hasChanged(how.disk, here))
            return true;
        Settling settling(*this, how, here, there);
        const Result<void> listed = how.disk.list(here, settling);
        const Result<bool> answer = listed ? settling.finish() : listed.failure();
        m_hasPassingInodes |= settling.hasPassingInodes();
        hasCarried |= settling.hasCarried();
        return answer;
    });
    if (!settled || !*settled)
        return settled;
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        const char *name = m_folderNames[i].c_str();
        if (how.isOriginal && !m_listing.find(name))
            continue;
        const Result<bool> isSettled =
            settleFolder(how, here, there, name, m_folders[i], hasCarried);
        if (!isSettled || !*isSettled)
            return isSettled;
    }
    // It had been on the disk here, perhaps.
    if (hasCarried && there >= 0) {
        const auto synced = uninterrupted([&] { return how.disk.sync(there); });
        if (!synced && !synced.failure().is(EINVAL))
            return synced.failure();
    }
    return true;
}

Result<bool> FolderTree::settleFolder(const Settlement &how, Disk::Handle here, Disk::Handle there,
                                      const char *name, FolderTree &tree, bool &hasCarried) noexcept
{
    const auto inside = uninterrupted([&] { return how.disk.openFolder(here, name); });
    if (!inside && inside.failure().is(ENOENT))
        return how.missing != Missing::isCarried || !guards(name);
    if (!inside)
        return inside.failure();
    const Descriptor folder(how.disk, *inside);
    const Result<Descriptor> twin = openTwin(how.disk, there, name);
    if (!twin)
        return twin.failure();
    const Result<bool> isSettled = tree.settle(how, folder.get(), twin->get());
    if (!isSettled || *isSettled || guards(name) || there < 0 || twin->get() >= 0)
        return isSettled;
    // It went there and was used here.
    hasCarried = true;
    return bool(carryToFreeName(how.disk, here, name, there, name));
}
