// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "DirectoryListing.h"
#include "FileError.h"

#include <dirent.h>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

/// Tells a file or folder from every other, whatever it is called, as long as it is held open.
struct FileIdentity {
    dev_t device;
    ino_t inode;

    friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
};

/// An open folder. Everything in it is reached by name from the open folder itself, so what it is
/// called, and what else takes its place on the disk meanwhile, does not matter.
///
/// No call follows a symbolic link: neither to read, nor to write, nor to descend. What is made is
/// for the user alone (folders 0700, files 0600). Calls throw a FileError that names the entry.
class Directory {
public:
    /// Opens a folder by its path. Here alone links count: the user may keep the folder elsewhere.
    [[nodiscard]] static Directory open(const std::filesystem::path &path);
    [[nodiscard]] static std::optional<Directory> openIfExists(const std::filesystem::path &path);

    /// Nothing, with errno set, when it cannot be opened.
    [[nodiscard]] static std::optional<Directory> tryOpen(const std::filesystem::path &path);

    /// Opens a folder and makes it first where it is missing, with the folders above it.
    [[nodiscard]] static Directory openOrMake(const std::filesystem::path &path);

    /// Puts the names of the folder and of those above it on the disk, as far as they may be read.
    static void syncPath(const std::filesystem::path &path);

    /// Where the folder was found. Only errors show it.
    [[nodiscard]] const std::filesystem::path &path() const noexcept { return m_path; }
    void showAs(std::filesystem::path path) { m_path = std::move(path); }

    [[nodiscard]] DirectoryListing list() const;

    /// Nothing, with errno set, when the folder cannot be read.
    [[nodiscard]] std::optional<DirectoryListing> tryList() const;

    /// Nothing when there is no such entry.
    [[nodiscard]] std::optional<struct stat> status(const char *name) const;
    [[nodiscard]] bool tryStatus(const char *name, struct stat &found) const noexcept;
    [[nodiscard]] struct stat ownStatus() const;
    [[nodiscard]] FileIdentity identity() const;
    [[nodiscard]] std::optional<FileIdentity> tryIdentity() const noexcept;

    /// Whether the entry is this very folder or file. Nothing, with errno set, when that cannot be
    /// told.
    [[nodiscard]] std::optional<bool> tryIsAt(const char *name,
                                              const FileIdentity &identity) const noexcept;

    [[nodiscard]] Directory openFolder(const char *name) const;
    [[nodiscard]] Directory makeFolder(const char *name) const;

    /// Makes a folder that errors call by another path, also the error that it cannot be made.
    [[nodiscard]] Directory makeFolder(const char *name,
                                       const std::filesystem::path &shownAs) const;
    [[nodiscard]] Directory openOrMakeFolder(const char *name) const;

    /// Reads a whole regular file; anything else is refused at once, without waiting on it.
    void readFile(const char *name, std::size_t limit, std::string &bytes) const;

    /// Writes a new file under the name. What the name stood for before is only unlinked: its
    /// content stays as it is under its other names.
    void replaceFile(const char *name, std::string_view bytes) const;

    /// False, with errno set, when the file system refuses the link.
    [[nodiscard]] bool tryLink(const char *name, const Directory &into) const noexcept;

    /// Copies a regular file: content, owner, permissions, attributes and times, as far as the user
    /// may set them.
    void copyFile(const char *name, const Directory &into) const;
    void copySymbolicLink(const char *name, const Directory &into) const;

    [[nodiscard]] bool tryRemove(const char *name, DirectoryListing::Kind kind) const noexcept;

    /// Renames within the folder, with the flags of renameat2. False, with errno set, on failure;
    /// with flags an interruption is such a failure too.
    [[nodiscard]] bool tryRename(const char *from, const char *to,
                                 unsigned flags = 0) const noexcept;

    /// Puts the folder's own entries on the disk; not the content of its files.
    void sync() const;
    [[nodiscard]] bool trySync() const noexcept;
    void syncFile(const char *name) const;

    /// Puts everything on the disk that was written to the whole file system.
    void syncFileSystem() const;

    /// True when another file system, or another part of this one, is mounted here.
    [[nodiscard]] bool isMountPoint() const;
    [[nodiscard]] bool isMountPoint(const char *name) const;

    /// True for a file that may not be changed, or only be added to, not even by its owner.
    [[nodiscard]] bool isImmutable(const char *name) const;

    void setMode(mode_t mode) const;

    /// Takes over another folder's owner, permissions, attributes and times, as far as the user may
    /// set them.
    void resemble(const Directory &model) const;
    [[nodiscard]] bool trySetMode(mode_t mode) const noexcept;

    /// What errno says about an entry, ready to be thrown.
    [[nodiscard]] FileError error(const char *name) const;
    [[nodiscard]] FileError error(const char *name, Reason reason) const;

    /// Like openFolder(), but nothing where that would throw.
    [[nodiscard]] std::optional<Directory> tryOpenFolder(const char *name) const;

private:
    Directory(Descriptor descriptor, std::filesystem::path path)
        : m_descriptor(std::move(descriptor))
        , m_path(std::move(path))
    {
    }

    [[nodiscard]] DirectoryListing::Kind kind(const dirent64 &entry) const noexcept;
    /// The STATX_ATTR_ bits of an entry, or of the folder itself for an empty name.
    [[nodiscard]] std::uint64_t attributes(const char *name) const;
    [[nodiscard]] Descriptor openEntry(const char *name, int flags) const noexcept;
    [[nodiscard]] Descriptor openRegularFile(const char *name, struct stat &status) const;
    [[nodiscard]] Descriptor makeFile(const char *name) const;

    Descriptor m_descriptor;
    std::filesystem::path m_path;
};
