// SPDX-License-Identifier: MIT
#pragma once

#include "Disk.h"

/// The real disk: each call is the system's own. Holds nothing.
class SystemDisk final : public Disk {
public:
    Result<Handle> openPath(const char *path) noexcept override;
    Result<Handle> openFolder(Handle folder, const char *name) noexcept override;
    Result<Handle> openFile(Handle folder, const char *name) noexcept override;
    Result<Handle> makeFile(Handle folder, const char *name) noexcept override;
    Result<void> makeFolder(Handle folder, const char *name) noexcept override;
    Result<void> close(Handle handle) noexcept override;
    Result<std::size_t> read(Handle file, char *bytes, std::size_t size) noexcept override;
    Result<std::size_t> write(Handle file, const char *bytes, std::size_t size) noexcept override;
    Result<void> list(Handle folder, ListingVisitor &visitor) override;
    Result<FileStatus> status(Handle handle) noexcept override;
    Result<FileStatus> status(Handle folder, const char *name) noexcept override;
    Result<Attributes> attributes(Handle folder, const char *name) noexcept override;
    Result<void> link(Handle from, Handle into, const char *name) noexcept override;
    Result<void> copySymbolicLink(Handle from, Handle into, const char *name) noexcept override;
    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override;
    Result<void> unlink(Handle folder, const char *name, FileKind kind) noexcept override;
    Result<void> sync(Handle handle) noexcept override;
    Result<void> syncFileSystem(Handle handle) noexcept override;
    Result<void> setMode(Handle handle, mode_t mode) noexcept override;
    Result<void> lock(Handle folder, Lock how) noexcept override;
    Result<void> copyMetadata(Handle from, Handle to) noexcept override;
    [[nodiscard]] std::int64_t now() noexcept override;
    [[nodiscard]] bool hasReliableTimes(Handle handle) noexcept override;
    [[nodiscard]] std::optional<std::size_t> mostEntries(Handle folder) noexcept override;
};
