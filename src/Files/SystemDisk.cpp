// SPDX-License-Identifier: MIT
#include "SystemDisk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <linux/limits.h>
#include <linux/magic.h>
#include <span>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
constexpr std::size_t bufferSize = 64UL * 1024;

/// Of what a call of the system answers: 0 or more is success.
Result<void> done(int answer) noexcept
{
    return answer >= 0 ? Result<void>() : Failure::system(errno);
}

Result<Disk::Handle> opened(int descriptor) noexcept
{
    if (descriptor < 0)
        return Failure::system(errno);
    return descriptor;
}

Result<std::size_t> counted(ssize_t count) noexcept
{
    if (count < 0)
        return Failure::system(errno);
    return static_cast<std::size_t>(count);
}

FileKind kindOf(mode_t mode) noexcept
{
    if (S_ISREG(mode))
        return FileKind::file;
    if (S_ISDIR(mode))
        return FileKind::folder;
    return S_ISLNK(mode) ? FileKind::link : FileKind::other;
}

constexpr std::int64_t nanoseconds(const timespec &time) noexcept
{
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

FileStatus statusOf(const struct stat &found) noexcept
{
    return {.identity = {found.st_dev, found.st_ino},
            .kind = kindOf(found.st_mode),
            .mode = found.st_mode & ALLPERMS,
            .owner = found.st_uid,
            .group = found.st_gid,
            .size = found.st_size,
            .accessed = nanoseconds(found.st_atim),
            .modified = nanoseconds(found.st_mtim),
            .changed = nanoseconds(found.st_ctim)};
}

/// Not every file system tells the kind in a listing; what cannot be told is treated with most
/// suspicion.
FileKind kindOf(int folder, const dirent64 &entry) noexcept
{
    if (entry.d_type != DT_UNKNOWN)
        return kindOf(static_cast<mode_t>(DTTOIF(entry.d_type)));
    struct stat found;
    return ::fstatat(folder, entry.d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 ? kindOf(found.st_mode)
                                                                             : FileKind::other;
}

/// Extended attributes, access control lists included. What one of the two file systems does not
/// know or allow is left out.
void copyAttributes(int from, int to) noexcept
{
    std::array<char, XATTR_LIST_MAX> names;
    std::array<char, XATTR_SIZE_MAX> value;
    const ssize_t size = ::flistxattr(from, names.data(), names.size());
    for (const char *name = names.data(); name < names.data() + size;
         name += std::strlen(name) + 1) {
        const ssize_t length = ::fgetxattr(from, name, value.data(), value.size());
        if (length >= 0)
            static_cast<void>(
                ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(length), 0));
    }
}

using FileSystemType = decltype(std::declval<struct statfs>().f_type);

bool isOneOf(int file, std::span<const FileSystemType> types) noexcept
{
    struct statfs found {};
    return ::fstatfs(file, &found) == 0 && std::ranges::count(types, found.f_type) != 0;
}

} // namespace

Result<Disk::Handle> SystemDisk::openPath(const char *path) noexcept
{
    const int descriptor = ::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // What keeps a confined process out is not told by the permissions, which are asked here.
    if (descriptor < 0 && errno == EACCES && ::faccessat(AT_FDCWD, path, R_OK, AT_EACCESS) == 0)
        return Failure::because(Reason::outOfReach);
    return opened(descriptor);
}

Result<Disk::Handle> SystemDisk::openFolder(Handle folder, const char *name) noexcept
{
    return opened(::openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Result<Disk::Handle> SystemDisk::openFile(Handle folder, const char *name) noexcept
{
    // Without O_NONBLOCK a pipe would wait for a writer that never comes.
    return opened(
        ::openat(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
}

Result<Disk::Handle> SystemDisk::makeFile(Handle folder, const char *name) noexcept
{
    return opened(
        ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode));
}

Result<void> SystemDisk::makeFolder(Handle folder, const char *name) noexcept
{
    return done(::mkdirat(folder, name, folderMode));
}

Result<void> SystemDisk::close(Handle handle) noexcept
{
    return done(::close(handle));
}

Result<std::size_t> SystemDisk::read(Handle file, char *bytes, std::size_t size) noexcept
{
    return counted(::read(file, bytes, size));
}

Result<std::size_t> SystemDisk::write(Handle file, const char *bytes, std::size_t size) noexcept
{
    return counted(::write(file, bytes, size));
}

Result<void> SystemDisk::list(Handle folder, ListingVisitor &visitor)
{
    alignas(dirent64) std::array<char, bufferSize> buffer;
    if (::lseek(folder, 0, SEEK_SET) < 0)
        return Failure::system(errno);
    for (;;) {
        const ssize_t size = ::getdents64(folder, buffer.data(), buffer.size());
        if (size <= 0)
            return size == 0 ? Result<void>() : Failure::system(errno);
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const auto *entry = reinterpret_cast<const dirent64 *>(buffer.data() + at);
            at += entry->d_reclen;
            const std::string_view name(entry->d_name);
            if (name != "." && name != "..")
                visitor.visit(entry->d_ino, kindOf(folder, *entry), entry->d_name);
        }
    }
}

Result<FileStatus> SystemDisk::status(Handle handle) noexcept
{
    struct stat found;
    if (::fstat(handle, &found) != 0)
        return Failure::system(errno);
    return statusOf(found);
}

Result<FileStatus> SystemDisk::status(Handle folder, const char *name) noexcept
{
    struct stat found;
    if (::fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) != 0)
        return Failure::system(errno);
    return statusOf(found);
}

Result<Disk::Attributes> SystemDisk::attributes(Handle folder, const char *name) noexcept
{
    struct statx found {};
    if (::statx(folder, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &found) != 0)
        return Failure::system(errno);
    return Attributes{.isMountPoint = (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0,
                      .isImmutable =
                          (found.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0};
}

Result<void> SystemDisk::link(Handle from, Handle into, const char *name) noexcept
{
    return done(::linkat(from, name, into, name, 0));
}

Result<void> SystemDisk::copySymbolicLink(Handle from, Handle into, const char *name) noexcept
{
    std::array<char, PATH_MAX + 1> target{};
    if (::readlinkat(from, name, target.data(), target.size() - 1) < 0)
        return Failure::system(errno);
    return done(::symlinkat(target.data(), into, name));
}

Result<void> SystemDisk::rename(Handle from, const char *name, Handle to, const char *newName,
                                Rename how) noexcept
{
    switch (how) {
    case Rename::replace:
        return done(::renameat(from, name, to, newName));
    case Rename::noReplace:
        return done(::renameat2(from, name, to, newName, RENAME_NOREPLACE));
    case Rename::exchange:
        return done(::renameat2(from, name, to, newName, RENAME_EXCHANGE));
    }
    return Failure::system(EINVAL);
}

Result<void> SystemDisk::unlink(Handle folder, const char *name, FileKind kind) noexcept
{
    return done(::unlinkat(folder, name, kind == FileKind::folder ? AT_REMOVEDIR : 0));
}

Result<void> SystemDisk::sync(Handle handle) noexcept
{
    return done(::fsync(handle));
}

Result<void> SystemDisk::syncFileSystem(Handle handle) noexcept
{
    return done(::syncfs(handle));
}

Result<void> SystemDisk::setMode(Handle handle, mode_t mode) noexcept
{
    return done(::fchmod(handle, mode & ALLPERMS));
}

Result<void> SystemDisk::lock(Handle folder, Lock how) noexcept
{
    return done(::flock(folder, (how == Lock::alone ? LOCK_EX : LOCK_SH) | LOCK_NB));
}

Result<void> SystemDisk::copyMetadata(Handle from, Handle to) noexcept
{
    struct stat status;
    struct stat own;
    if (::fstat(from, &status) != 0 || ::fstat(to, &own) != 0)
        return Failure::system(errno);
    mode_t mode = status.st_mode & ALLPERMS;
    if (own.st_uid != status.st_uid && ::fchown(to, status.st_uid, static_cast<gid_t>(-1)) != 0)
        mode &= ~mode_t{S_ISUID};
    if (own.st_gid != status.st_gid && ::fchown(to, static_cast<uid_t>(-1), status.st_gid) != 0)
        mode &= ~mode_t{S_ISGID | S_IRWXG};
    copyAttributes(from, to);
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    if (::fchmod(to, mode) != 0 || ::futimens(to, times.data()) != 0)
        return Failure::system(errno);
    return {};
}

std::int64_t SystemDisk::now() noexcept
{
    timespec time{};
    static_cast<void>(::clock_gettime(CLOCK_REALTIME_COARSE, &time));
    return nanoseconds(time);
}

bool SystemDisk::hasReliableTimes(Handle handle) noexcept
{
    // Those that keep the times of a file in the kernel that also sees its changes.
    constexpr std::array<FileSystemType, 7> reliable{
        EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC,       BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,
        TMPFS_MAGIC,      OVERLAYFS_SUPER_MAGIC, 0x2fc12fc1 /* ZFS */};
    return isOneOf(handle, reliable);
}

std::optional<std::size_t> SystemDisk::mostEntries(Handle folder) noexcept
{
    // Here the size of a folder counts its entries: tmpfs takes 20 bytes for each, btrfs twice the
    // name's length, the others a record with the name. Names of notes have 39 bytes; only a folder
    // with names of a few letters could have more entries than this.
    constexpr std::array<FileSystemType, 5> telling{
        EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, TMPFS_MAGIC};
    constexpr std::size_t leastBytes = 20;
    struct stat found;
    if (!isOneOf(folder, telling) || ::fstat(folder, &found) != 0)
        return std::nullopt;
    return static_cast<std::size_t>(found.st_size) / leastBytes;
}
