// SPDX-License-Identifier: MIT
#include "Directory.h"

#include <array>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <linux/limits.h>
#include <sys/xattr.h>

namespace {

constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
constexpr std::size_t bufferSize = 64UL * 1024;

DirectoryListing::Kind kindOfMode(mode_t mode)
{
    if (S_ISREG(mode))
        return DirectoryListing::Kind::file;
    if (S_ISDIR(mode))
        return DirectoryListing::Kind::folder;
    return S_ISLNK(mode) ? DirectoryListing::Kind::link : DirectoryListing::Kind::other;
}

/// Extended attributes, access control lists included. What one of the two file systems does not
/// know or allow is left out.
void copyAttributes(int from, int to)
{
    std::string names(XATTR_LIST_MAX, '\0');
    const ssize_t size = ::flistxattr(from, names.data(), names.size());
    std::string value;
    for (const char *name = names.data(); name < names.data() + size;
         name += std::strlen(name) + 1) {
        value.resize(XATTR_SIZE_MAX);
        const ssize_t length = ::fgetxattr(from, name, value.data(), value.size());
        if (length >= 0)
            static_cast<void>(
                ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(length), 0));
    }
}

bool writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count =
            uninterrupted([&] { return ::write(fd, bytes.data(), bytes.size()); });
        if (count < 0)
            return false;
        if (count == 0) {
            errno = EIO;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// A folder or file that is a copy of another one gets what the other has beside its content. An
/// owner or group that the user may not give away is left, and with it the rights of the group,
/// which would be rights of another one.
bool copyMetadata(int from, const struct stat &status, int to)
{
    struct stat own;
    if (::fstat(to, &own) != 0)
        return false;
    mode_t mode = status.st_mode & ALLPERMS;
    if (own.st_uid != status.st_uid && ::fchown(to, status.st_uid, static_cast<gid_t>(-1)) != 0)
        mode &= ~mode_t{S_ISUID};
    if (own.st_gid != status.st_gid && ::fchown(to, static_cast<uid_t>(-1), status.st_gid) != 0)
        mode &= ~mode_t{S_ISGID | S_IRWXG};
    copyAttributes(from, to);
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    return uninterrupted([&] { return ::fchmod(to, mode); }) == 0 &&
           ::futimens(to, times.data()) == 0;
}

} // namespace

std::optional<Directory> Directory::tryOpen(const std::filesystem::path &path)
{
    Descriptor descriptor(
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!descriptor.isOpen())
        return std::nullopt;
    return Directory(std::move(descriptor), path);
}

std::optional<Directory> Directory::openIfExists(const std::filesystem::path &path)
{
    std::optional<Directory> directory = tryOpen(path);
    if (!directory && errno == ENOTDIR)
        throw FileError(path, Reason::notFolder);
    if (!directory && errno != ENOENT)
        throw FileError(path, errno);
    return directory;
}

Directory Directory::open(const std::filesystem::path &path)
{
    std::optional<Directory> directory = openIfExists(path);
    if (!directory)
        throw FileError(path, ENOENT);
    return std::move(*directory);
}

Directory Directory::openOrMake(const std::filesystem::path &path)
{
    if (std::optional<Directory> directory = openIfExists(path))
        return std::move(*directory);
    if (!path.has_filename())
        return openOrMake(path.parent_path());
    return openOrMake(path.parent_path()).openOrMakeFolder(path.filename().c_str());
}

void Directory::syncPath(const std::filesystem::path &path)
{
    const dev_t device = open(path).identity().device;
    for (std::filesystem::path above = path; above.has_relative_path();) {
        above = above.parent_path();
        // The user may have no right to list a folder, such as that of all home folders. Somebody
        // else made it then.
        const std::optional<Directory> folder = tryOpen(above);
        if (!folder)
            continue;
        if (folder->identity().device != device)
            return;
        folder->sync();
    }
}

DirectoryListing Directory::list() const
{
    std::optional<DirectoryListing> listing = tryList();
    if (!listing)
        throw FileError(m_path, errno);
    return std::move(*listing);
}

std::optional<DirectoryListing> Directory::tryList() const
{
    DirectoryListing listing;
    alignas(dirent64) std::array<char, bufferSize> buffer;
    if (::lseek(m_descriptor.get(), 0, SEEK_SET) < 0)
        return std::nullopt;
    for (;;) {
        const ssize_t size = uninterrupted(
            [&] { return ::getdents64(m_descriptor.get(), buffer.data(), buffer.size()); });
        if (size < 0)
            return std::nullopt;
        if (size == 0)
            return listing;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const auto *entry = reinterpret_cast<const dirent64 *>(buffer.data() + at);
            at += entry->d_reclen;
            const std::string_view name(entry->d_name);
            if (name != "." && name != "..")
                listing.add(entry->d_ino, kind(*entry), name);
        }
    }
}

DirectoryListing::Kind Directory::kind(const dirent64 &entry) const noexcept
{
    if (entry.d_type != DT_UNKNOWN)
        return kindOfMode(static_cast<mode_t>(DTTOIF(entry.d_type)));
    // Not every file system tells the kind; what cannot be told is treated with most suspicion.
    struct stat found;
    return tryStatus(entry.d_name, found) ? kindOfMode(found.st_mode)
                                          : DirectoryListing::Kind::other;
}

std::optional<struct stat> Directory::status(const char *name) const
{
    struct stat found;
    if (tryStatus(name, found))
        return found;
    if (errno == ENOENT)
        return std::nullopt;
    throw error(name);
}

bool Directory::tryStatus(const char *name, struct stat &found) const noexcept
{
    return uninterrupted([&] {
               return ::fstatat(m_descriptor.get(), name, &found, AT_SYMLINK_NOFOLLOW);
           }) == 0;
}

struct stat Directory::ownStatus() const
{
    struct stat found;
    if (::fstat(m_descriptor.get(), &found) != 0)
        throw FileError(m_path, errno);
    return found;
}

FileIdentity Directory::identity() const
{
    const struct stat status = ownStatus();
    return {status.st_dev, status.st_ino};
}

std::optional<FileIdentity> Directory::tryIdentity() const noexcept
{
    struct stat status;
    if (::fstat(m_descriptor.get(), &status) != 0)
        return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

std::optional<bool> Directory::tryIsAt(const char *name,
                                       const FileIdentity &identity) const noexcept
{
    struct stat found;
    if (tryStatus(name, found))
        return FileIdentity{found.st_dev, found.st_ino} == identity;
    return errno == ENOENT ? std::optional(false) : std::nullopt;
}

std::optional<Directory> Directory::tryOpenFolder(const char *name) const
{
    Descriptor descriptor = openEntry(name, O_RDONLY | O_DIRECTORY);
    if (!descriptor.isOpen())
        return std::nullopt;
    return Directory(std::move(descriptor), m_path / name);
}

Directory Directory::openFolder(const char *name) const
{
    std::optional<Directory> folder = tryOpenFolder(name);
    if (folder)
        return std::move(*folder);
    if (errno == ENOTDIR || errno == ELOOP)
        throw error(name, Reason::notFolder);
    throw error(name);
}

Directory Directory::makeFolder(const char *name) const
{
    return makeFolder(name, m_path / name);
}

Directory Directory::makeFolder(const char *name, const std::filesystem::path &shownAs) const
{
    if (uninterrupted([&] { return ::mkdirat(m_descriptor.get(), name, folderMode); }) != 0)
        throw FileError(shownAs, errno);
    if (std::optional<Directory> folder = tryOpenFolder(name)) {
        folder->showAs(shownAs);
        return std::move(*folder);
    }
    const FileError failure(shownAs, errno);
    static_cast<void>(tryRemove(name, DirectoryListing::Kind::folder));
    throw failure;
}

Directory Directory::openOrMakeFolder(const char *name) const
{
    if (uninterrupted([&] { return ::mkdirat(m_descriptor.get(), name, folderMode); }) != 0 &&
        errno != EEXIST)
        throw error(name);
    return openFolder(name);
}

void Directory::readFile(const char *name, std::size_t limit, std::string &bytes) const
{
    struct stat status;
    const Descriptor file = openRegularFile(name, status);
    const auto expected = static_cast<std::size_t>(status.st_size);
    if (expected > limit)
        throw error(name, Reason::tooLarge);

    // One byte more than expected tells the end of the file without a second call.
    bytes.resize(expected + 1);
    std::size_t size = 0;
    for (;;) {
        const std::size_t wanted = bytes.size() - size;
        const ssize_t count =
            uninterrupted([&] { return ::read(file.get(), bytes.data() + size, wanted); });
        if (count < 0)
            throw error(name);
        size += static_cast<std::size_t>(count);
        // It may grow while it is read.
        if (size > limit)
            throw error(name, Reason::tooLarge);
        const bool isShort = static_cast<std::size_t>(count) < wanted;
        if (count == 0 || (isShort && size >= expected))
            break;
        if (!isShort)
            bytes.resize(2 * bytes.size());
    }
    bytes.resize(size);
}

void Directory::replaceFile(const char *name, std::string_view bytes) const
{
    if (!tryRemove(name, DirectoryListing::Kind::file) && errno != ENOENT)
        throw error(name);
    Descriptor file = makeFile(name);
    if (!writeAll(file.get(), bytes) || !file.close())
        throw error(name);
}

bool Directory::tryLink(const char *name, const Directory &into) const noexcept
{
    return uninterrupted([&] {
               return ::linkat(m_descriptor.get(), name, into.m_descriptor.get(), name, 0);
           }) == 0;
}

void Directory::copyFile(const char *name, const Directory &into) const
{
    struct stat status;
    const Descriptor source = openRegularFile(name, status);
    Descriptor copy = into.makeFile(name);
    std::array<char, bufferSize> buffer;
    for (;;) {
        const ssize_t count =
            uninterrupted([&] { return ::read(source.get(), buffer.data(), buffer.size()); });
        if (count < 0)
            throw error(name);
        if (count == 0)
            break;
        if (!writeAll(copy.get(), {buffer.data(), static_cast<std::size_t>(count)}))
            throw into.error(name);
    }
    if (!copyMetadata(source.get(), status, copy.get()) || !copy.close())
        throw into.error(name);
}

void Directory::copySymbolicLink(const char *name, const Directory &into) const
{
    std::array<char, PATH_MAX + 1> target{};
    if (uninterrupted([&] {
            return ::readlinkat(m_descriptor.get(), name, target.data(), target.size() - 1);
        }) < 0)
        throw error(name);
    if (uninterrupted([&] { return ::symlinkat(target.data(), into.m_descriptor.get(), name); }) !=
        0)
        throw into.error(name);
}

bool Directory::tryRemove(const char *name, DirectoryListing::Kind kind) const noexcept
{
    const int flags = kind == DirectoryListing::Kind::folder ? AT_REMOVEDIR : 0;
    return uninterrupted([&] { return ::unlinkat(m_descriptor.get(), name, flags); }) == 0;
}

bool Directory::tryRename(const char *from, const char *to, unsigned flags) const noexcept
{
    const int fd = m_descriptor.get();
    if (flags == 0)
        return uninterrupted([&] { return ::renameat(fd, from, fd, to); }) == 0;
    return ::renameat2(fd, from, fd, to, flags) == 0;
}

void Directory::sync() const
{
    if (!trySync())
        throw FileError(m_path, errno);
}

bool Directory::trySync() const noexcept
{
    // EINVAL is the answer of file systems that have nothing to sync for a folder.
    return uninterrupted([&] { return ::fsync(m_descriptor.get()); }) == 0 || errno == EINVAL;
}

void Directory::syncFile(const char *name) const
{
    struct stat status;
    const Descriptor file = openRegularFile(name, status);
    if (uninterrupted([&] { return ::fsync(file.get()); }) != 0)
        throw error(name);
}

void Directory::syncFileSystem() const
{
    if (uninterrupted([&] { return ::syncfs(m_descriptor.get()); }) != 0)
        throw FileError(m_path, errno);
}

bool Directory::isMountPoint() const
{
    return isMountPoint("");
}

bool Directory::isMountPoint(const char *name) const
{
    return (attributes(name) & STATX_ATTR_MOUNT_ROOT) != 0;
}

bool Directory::isImmutable(const char *name) const
{
    return (attributes(name) & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0;
}

std::uint64_t Directory::attributes(const char *name) const
{
    struct statx found {};
    if (uninterrupted([&] {
            return ::statx(m_descriptor.get(), name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW,
                           STATX_BASIC_STATS, &found);
        }) != 0)
        throw *name != '\0' ? error(name) : FileError(m_path, errno);
    return found.stx_attributes;
}

void Directory::resemble(const Directory &model) const
{
    if (!copyMetadata(model.m_descriptor.get(), model.ownStatus(), m_descriptor.get()))
        throw FileError(m_path, errno);
}

void Directory::setMode(mode_t mode) const
{
    if (!trySetMode(mode))
        throw FileError(m_path, errno);
}

bool Directory::trySetMode(mode_t mode) const noexcept
{
    return uninterrupted([&] { return ::fchmod(m_descriptor.get(), mode & ALLPERMS); }) == 0;
}

FileError Directory::error(const char *name) const
{
    const int reason = errno;
    return FileError(m_path / name, reason);
}

FileError Directory::error(const char *name, Reason reason) const
{
    return FileError(m_path / name, reason);
}

Descriptor Directory::openEntry(const char *name, int flags) const noexcept
{
    return Descriptor(uninterrupted([&] {
        return ::openat(m_descriptor.get(), name, flags | O_NOFOLLOW | O_CLOEXEC, fileMode);
    }));
}

Descriptor Directory::openRegularFile(const char *name, struct stat &status) const
{
    // Without O_NONBLOCK a pipe would wait for a writer that never comes.
    Descriptor file = openEntry(name, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen()) {
        const bool isSpecial = errno == ELOOP || errno == ENXIO || errno == ENODEV;
        throw isSpecial ? error(name, Reason::notRegularFile) : error(name);
    }
    if (::fstat(file.get(), &status) != 0)
        throw error(name);
    if (!S_ISREG(status.st_mode))
        throw error(name, Reason::notRegularFile);
    return file;
}

Descriptor Directory::makeFile(const char *name) const
{
    Descriptor file = openEntry(name, O_WRONLY | O_CREAT | O_EXCL);
    if (!file.isOpen())
        throw error(name);
    return file;
}
