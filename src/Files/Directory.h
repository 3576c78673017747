// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "DirectoryListing.h"
#include "FileError.h"

#include <filesystem>
#include <string>
#include <string_view>

/// An open folder. Everything in it is reached by name from the open folder itself, so what it is
/// called, and what else takes its place on the disk meanwhile, does not matter.
///
/// No call follows a symbolic link: neither to read, nor to write, nor to descend. What is made is
/// for the user alone (folders 0700, files 0600). Failures are values; orThrow() makes them errors
/// that name the entry.
class Directory {
public:
    /// Opens a folder by its path. Here alone links count: the user may keep the folder elsewhere.
    static Result<Directory> open(Disk &disk, const std::filesystem::path &path);

    /// Opens a folder and makes it first where it is missing, with the folders above it. Throws a
    /// FileError that names the folder that could not be opened or made.
    [[nodiscard]] static Directory openOrMake(Disk &disk, const std::filesystem::path &path);

    /// The same, for who has another way out.
    static Result<Directory> tryToOpenOrMake(Disk &disk, const std::filesystem::path &path);

    /// Puts the names of the folder and of those above it on the disk, as far as they may be read.
    /// Throws a FileError.
    void syncPath() const;

    /// The same, for who can go on all the same.
    Result<void> tryToSyncPath() const;

    [[nodiscard]] Disk &disk() const noexcept { return m_descriptor.disk(); }
    [[nodiscard]] Disk::Handle handle() const noexcept { return m_descriptor.get(); }

    /// Where the folder was found. Only errors show it.
    [[nodiscard]] const std::filesystem::path &path() const noexcept { return m_path; }
    void showAs(std::filesystem::path path) { m_path = std::move(path); }

    Result<FileStatus> status() const noexcept;
    Result<FileStatus> status(const char *name) const noexcept;
    Result<Disk::Attributes> attributes(const char *name = "") const noexcept;

    /// Whether the entry is this very folder or file.
    Result<bool> isAt(const char *name, const FileIdentity &identity) const noexcept;

    Result<DirectoryListing> list() const;
    Result<Directory> openFolder(const char *name) const;
    Result<Directory> makeFolder(const char *name) const;

    /// Reads a whole regular file, and says what it was when it was opened. Anything else, and what
    /// is larger, is refused at once.
    Result<FileStatus> readFile(const char *name, std::size_t limit, std::string &bytes) const;

    /// Writes a new file, and says what it is then.
    Result<FileStatus> makeFile(const char *name, std::string_view bytes) const noexcept;

    Result<void> link(const char *name, const Directory &into) const noexcept;

    /// Copies a regular file: content, owner, permissions, attributes and times, as far as the user
    /// may set them.
    Result<FileStatus> copyFile(const char *name, const Directory &into) const noexcept;
    Result<void> copySymbolicLink(const char *name, const Directory &into) const noexcept;

    /// Whether two regular files hold the same bytes.
    Result<bool> hasSameContent(const char *name, const Directory &other,
                                const char *otherName) const noexcept;

    Result<void> unlink(const char *name, FileKind kind) const noexcept;

    /// Renames an entry, into another folder or within this one. Interrupted only when it is to
    /// exchange or not to replace: a repetition might undo or refuse what took place.
    Result<void> rename(const char *name, const Directory &to, const char *newName,
                        Disk::Rename how = Disk::Rename::replace) const noexcept;

    /// Puts the folder's own entries on the disk; not the content of its files.
    Result<void> sync() const noexcept;
    Result<void> syncFile(const char *name) const noexcept;

    /// Puts everything on the disk that was written to the whole file system.
    Result<void> syncFileSystem() const noexcept;

    Result<void> setMode(mode_t mode) const noexcept;

    /// Takes over another folder's owner, permissions, attributes and times, as far as the user may
    /// set them.
    Result<void> resemble(const Directory &model) const noexcept;

    /// A failure that concerns an entry, or the folder itself when the name is empty, as an error.
    [[nodiscard]] FileError error(Failure failure, std::string_view name = {}) const;

    /// What a call brought. Throws the error where it failed.
    template <typename T>
    T orThrow(Result<T> result, std::string_view name = {}) const
    {
        if (!result)
            throw error(result.failure(), name);
        if constexpr (!std::is_void_v<T>)
            return *std::move(result);
    }

private:
    static Result<Directory> openOrMake(Disk &disk, const std::filesystem::path &path,
                                        std::filesystem::path &failed);
    Result<void> syncPath(std::filesystem::path &failed) const;
    Directory(Descriptor descriptor, std::filesystem::path path)
        : m_descriptor(std::move(descriptor))
        , m_path(std::move(path))
    {
    }

    Descriptor m_descriptor;
    std::filesystem::path m_path;
};
