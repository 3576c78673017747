// SPDX-License-Identifier: MIT
#include "SafeKeeping.h"

#include "FolderTree.h"
#include "Renames.h"
#include "RepositoryError.h"

namespace {

bool isSame(const FileStatus &a, const FileStatus &b) noexcept
{
    return a.identity == b.identity && a.kind == b.kind &&
           (a.kind != FileKind::file || (a.size == b.size && a.modified == b.modified));
}

[[noreturn]] void refuse(const Directory &folder, const char *name)
{
    throw RepositoryError::externalChange().about(folder.path() / name);
}

void copyEntry(const Directory &from, const char *name, FileKind kind, const Directory &to,
               int depth);

void copyFolder(const Directory &from, const Directory &to, int depth)
{
    if (depth == FolderTree::mostFolders)
        throw from.error(Failure::because(Reason::tooDeep));
    const DirectoryListing listing = from.orThrow(from.list());
    for (const DirectoryListing::Entry &entry : listing.entries())
        copyEntry(from, listing.name(entry), entry.kind, to, depth);
}

/// On return the copy is on the disk, but for its own name.
void copyEntry(const Directory &from, const char *name, FileKind kind, const Directory &to,
               int depth)
{
    switch (kind) {
    case FileKind::file:
        from.orThrow(from.copyFile(name, to), name);
        to.orThrow(to.syncFile(name), name);
        if (!from.orThrow(from.hasSameContent(name, to, name), name))
            refuse(from, name);
        return;
    case FileKind::link:
        from.orThrow(from.copySymbolicLink(name, to), name);
        return;
    case FileKind::folder: {
        const Directory source = from.orThrow(from.openFolder(name), name);
        const Directory copy = to.orThrow(to.makeFolder(name), name);
        copyFolder(source, copy, depth + 1);
        copy.orThrow(copy.sync());
        return;
    }
    case FileKind::other:
        throw from.error(Failure::because(Reason::notRegularFile), name);
    }
    Q_UNREACHABLE();
}

/// Removes what was copied, and nothing that came or changed since.
void removeCopied(const Directory &from, const char *name, FileKind kind, const Directory &copies)
{
    if (kind == FileKind::folder) {
        const Directory source = from.orThrow(from.openFolder(name), name);
        const Directory copy = copies.orThrow(copies.openFolder(name), name);
        const DirectoryListing listing = source.orThrow(source.list());
        for (const DirectoryListing::Entry &entry : listing.entries())
            removeCopied(source, listing.name(entry), entry.kind, copy);
    } else if (kind == FileKind::file &&
               !from.orThrow(from.hasSameContent(name, copies, name), name)) {
        refuse(from, name);
    }
    from.orThrow(from.unlink(name, kind), name);
}

} // namespace

Directory SafeKeeping::folderFor(const std::string &subFolder) const
{
    return Directory::openOrMake(m_target.disk(), m_target.path() / subFolder);
}

void SafeKeeping::take(const Directory &from, const char *name, const FileStatus &seen,
                       const std::string &subFolder)
{
    const Result<FileStatus> found = from.status(name);
    if (!found && found.failure().is(ENOENT))
        return;
    if (!isSame(from.orThrow(found, name), seen))
        refuse(from, name);
    if (seen.kind == FileKind::file)
        from.orThrow(from.syncFile(name), name);
    const Directory to = folderFor(subFolder);
    const Result<void> renamed =
        renameToFreeName(from.disk(), from.handle(), name, to.handle(), name);
    if (renamed) {
        // Another program may have put another file in its place just before.
        if (!isSame(to.orThrow(to.status(name), name), seen)) {
            static_cast<void>(
                renameToFreeName(from.disk(), to.handle(), name, from.handle(), name));
            refuse(from, name);
        }
    } else if (renamed.failure().is(EXDEV)) {
        copyEntry(from, name, seen.kind, to, 0);
        to.orThrow(to.sync());
        m_target.orThrow(m_target.sync());
        removeCopied(from, name, seen.kind, to);
    } else {
        throw from.error(renamed.failure(), name);
    }
    to.orThrow(to.sync());
    m_target.orThrow(m_target.sync());
    from.orThrow(from.sync());
}
