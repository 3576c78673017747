// SPDX-License-Identifier: MIT
#pragma once

#include "SystemDisk.h"

/// The real disk, for tests that look at some of the calls or have something happen in between.
class ForwardingDisk : public Disk {
public:
    Result<Handle> openPath(const char *path) noexcept override { return m_disk.openPath(path); }
    Result<Handle> openFolder(Handle folder, const char *name) noexcept override
    {
        return m_disk.openFolder(folder, name);
    }
    Result<Handle> openFile(Handle folder, const char *name) noexcept override
    {
        return m_disk.openFile(folder, name);
    }
    Result<Handle> makeFile(Handle folder, const char *name) noexcept override
    {
        return m_disk.makeFile(folder, name);
    }
    Result<void> makeFolder(Handle folder, const char *name) noexcept override
    {
        return m_disk.makeFolder(folder, name);
    }
    Result<void> close(Handle handle) noexcept override { return m_disk.close(handle); }
    Result<std::size_t> read(Handle file, char *bytes, std::size_t size) noexcept override
    {
        return m_disk.read(file, bytes, size);
    }
    Result<std::size_t> write(Handle file, const char *bytes, std::size_t size) noexcept override
    {
        return m_disk.write(file, bytes, size);
    }
    Result<void> list(Handle folder, ListingVisitor &visitor) override
    {
        return m_disk.list(folder, visitor);
    }
    Result<FileStatus> status(Handle handle) noexcept override { return m_disk.status(handle); }
    Result<FileStatus> status(Handle folder, const char *name) noexcept override
    {
        return m_disk.status(folder, name);
    }
    Result<Attributes> attributes(Handle folder, const char *name) noexcept override
    {
        return m_disk.attributes(folder, name);
    }
    Result<void> link(Handle from, Handle into, const char *name) noexcept override
    {
        return m_disk.link(from, into, name);
    }
    Result<void> copySymbolicLink(Handle from, Handle into, const char *name) noexcept override
    {
        return m_disk.copySymbolicLink(from, into, name);
    }
    Result<void> rename(Handle from, const char *name, Handle to, const char *newName,
                        Rename how) noexcept override
    {
        return m_disk.rename(from, name, to, newName, how);
    }
    Result<void> unlink(Handle folder, const char *name, FileKind kind) noexcept override
    {
        return m_disk.unlink(folder, name, kind);
    }
    Result<void> sync(Handle handle) noexcept override { return m_disk.sync(handle); }
    Result<void> syncFileSystem(Handle handle) noexcept override
    {
        return m_disk.syncFileSystem(handle);
    }
    Result<void> setMode(Handle handle, mode_t mode) noexcept override
    {
        return m_disk.setMode(handle, mode);
    }
    Result<void> lock(Handle folder, Lock how) noexcept override
    {
        return m_disk.lock(folder, how);
    }
    Result<void> copyMetadata(Handle from, Handle to) noexcept override
    {
        return m_disk.copyMetadata(from, to);
    }
    [[nodiscard]] std::int64_t now() noexcept override { return m_disk.now(); }
    [[nodiscard]] bool hasReliableTimes(Handle handle) noexcept override
    {
        return m_disk.hasReliableTimes(handle);
    }
    [[nodiscard]] std::optional<std::size_t> mostEntries(Handle folder) noexcept override
    {
        return m_disk.mostEntries(folder);
    }

private:
    SystemDisk m_disk;
};
