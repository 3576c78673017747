// SPDX-License-Identifier: MIT
#pragma once

#include "Result.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <sys/types.h>

/// What an entry of a folder is.
enum class FileKind : std::uint8_t { file, folder, link, other };

/// Tells a file or folder from every other, whatever it is called, as long as it is held open.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
};

/// What the disk says of a file or folder. Times are nanoseconds since 1970.
struct FileStatus {
    FileIdentity identity;
    FileKind kind = FileKind::other;
    mode_t mode = 0; ///< The permissions alone.
    uid_t owner = 0;
    gid_t group = 0;
    std::int64_t size = 0;
    std::int64_t accessed = 0;
    std::int64_t modified = 0;

    /// When content or properties changed last. No program can set it.
    std::int64_t changed = 0;

    friend bool operator==(const FileStatus &, const FileStatus &) = default;
};

/// Receives the entries of a folder, without "." and "..", in the disk's own order. The number is
/// the inode's as the listing tells it, which some file systems make up; the name ends with a NUL
/// and lives as long as the call.
class ListingVisitor {
public:
    virtual void visit(ino_t inode, FileKind kind, const char *name) = 0;

protected:
    ~ListingVisitor() = default;
};

/// The narrow seam between the storage and the system: every call that it makes on files is one of
/// these, and each is one call of the system or a fixed group of them.
///
/// No call throws or allocates but what a ListingVisitor does. None follows a symbolic link but
/// openPath(). An interruption (EINTR) is a failure like others: whoever calls decides whether to
/// repeat. New folders have the mode 0700 and new files 0600. Handles are file descriptors; each is
/// closed once.
class Disk {
public:
    using Handle = int;

    enum class Rename : std::uint8_t {
        replace,   ///< What had the new name is gone.
        noReplace, ///< EEXIST when there is something of the new name.
        exchange,  ///< Both entries, which must exist, change their names.
    };

    enum class Lock : std::uint8_t { alone, together };

    /// What else is to be known of an entry before it is moved or replaced.
    struct Attributes {
        bool isMountPoint = false; ///< Another file system, or another part of this one.
        bool isImmutable = false;  ///< May not be changed, or only be added to, by anybody.
    };

    Disk() = default;
    Disk(const Disk &) = delete;
    Disk &operator=(const Disk &) = delete;
    virtual ~Disk() = default;

    /// Opens a folder by its path; symbolic links on the way count.
    virtual Result<Handle> openPath(const char *path) noexcept = 0;

    /// ENOTDIR or ELOOP when the entry is no folder.
    virtual Result<Handle> openFolder(Handle folder, const char *name) noexcept = 0;

    /// For reading, and without waiting for the other end of a pipe. Any kind of entry but a
    /// symbolic link (ELOOP) may come back: look at its status before reading.
    virtual Result<Handle> openFile(Handle folder, const char *name) noexcept = 0;

    /// For writing. EEXIST when there is an entry of that name, whatever it is.
    virtual Result<Handle> makeFile(Handle folder, const char *name) noexcept = 0;
    virtual Result<void> makeFolder(Handle folder, const char *name) noexcept = 0;
    virtual Result<void> close(Handle handle) noexcept = 0;

    /// 0 at the end.
    virtual Result<std::size_t> read(Handle file, char *bytes, std::size_t size) noexcept = 0;
    virtual Result<std::size_t> write(Handle file, const char *bytes,
                                      std::size_t size) noexcept = 0;

    /// From the beginning. Throws only what the visitor throws.
    virtual Result<void> list(Handle folder, ListingVisitor &visitor) = 0;
    virtual Result<FileStatus> status(Handle handle) noexcept = 0;

    /// Of the entry itself, also when it is a symbolic link.
    virtual Result<FileStatus> status(Handle folder, const char *name) noexcept = 0;

    /// Of the folder itself when the name is empty.
    virtual Result<Attributes> attributes(Handle folder, const char *name) noexcept = 0;

    /// The same name in both folders.
    virtual Result<void> link(Handle from, Handle into, const char *name) noexcept = 0;
    virtual Result<void> copySymbolicLink(Handle from, Handle into, const char *name) noexcept = 0;
    virtual Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                                Rename how) noexcept = 0;

    /// A folder must be empty.
    virtual Result<void> unlink(Handle folder, const char *name, FileKind kind) noexcept = 0;

    /// Puts a file's content, or a folder's own entries, on the disk.
    virtual Result<void> sync(Handle handle) noexcept = 0;

    /// Puts everything on the disk that was written to the file system.
    virtual Result<void> syncFileSystem(Handle handle) noexcept = 0;

    virtual Result<void> setMode(Handle handle, mode_t mode) noexcept = 0;

    /// Keeps a folder for the one handle until that is closed, also by the end of the program, or
    /// keeps it together with others from one that wants it alone. EWOULDBLOCK, at once, when
    /// another handle has it otherwise, in this program or in another. Nothing in the folder
    /// changes, and who does not ask for the lock is not kept from anything.
    virtual Result<void> lock(Handle folder, Lock how) noexcept = 0;

    /// Gives a copy what the original has beside its content: owner, group, permissions, extended
    /// attributes and times, as far as the user may set them. An owner or group that the user may
    /// not give away is left, and with it the rights of the group, which would be rights of another
    /// one.
    virtual Result<void> copyMetadata(Handle from, Handle to) noexcept = 0;

    /// The time that a change made now would get.
    [[nodiscard]] virtual std::int64_t now() noexcept = 0;

    /// False where the times of a file may lag behind its changes or be made up, as on network file
    /// systems; its content alone tells then whether it changed.
    [[nodiscard]] virtual bool hasReliableTimes(Handle handle) noexcept = 0;

    /// How many entries a folder has at most, as its size tells without a listing; nothing where
    /// it does not tell.
    [[nodiscard]] virtual std::optional<std::size_t> mostEntries(Handle folder) noexcept = 0;
};
