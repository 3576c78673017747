// SPDX-License-Identifier: MIT
#include "Directory.h"

#include <array>
#include <span>

namespace {

constexpr std::size_t bufferSize = 64UL * 1024;

Result<void> writeAll(const Descriptor &file, std::string_view bytes) noexcept
{
    while (!bytes.empty()) {
        const auto count = uninterrupted(
            [&] { return file.disk().write(file.get(), bytes.data(), bytes.size()); });
        if (!count)
            return count.failure();
        if (*count == 0)
            return Failure::system(EIO);
        bytes.remove_prefix(*count);
    }
    return {};
}

struct OpenFile {
    Descriptor descriptor;
    FileStatus status;
};

Result<OpenFile> openRegularFile(const Directory &folder, const char *name) noexcept
{
    Disk &disk = folder.disk();
    const auto handle = uninterrupted([&] { return disk.openFile(folder.handle(), name); });
    if (!handle) {
        const Failure failure = handle.failure();
        const bool isSpecial = failure.is(ELOOP) || failure.is(ENXIO) || failure.is(ENODEV);
        return isSpecial ? Failure::because(Reason::notRegularFile) : failure;
    }
    Descriptor file(disk, *handle);
    const auto status = disk.status(file.get());
    if (!status)
        return status.failure();
    if (status->kind != FileKind::file)
        return Failure::because(Reason::notRegularFile);
    return OpenFile{std::move(file), *status};
}

Result<Descriptor> openSubFolder(const Directory &folder, const char *name) noexcept
{
    Disk &disk = folder.disk();
    const auto handle = uninterrupted([&] { return disk.openFolder(folder.handle(), name); });
    if (!handle) {
        const Failure failure = handle.failure();
        const bool isOther = failure.is(ENOTDIR) || failure.is(ELOOP);
        return isOther ? Failure::because(Reason::notFolder) : failure;
    }
    return Descriptor(disk, *handle);
}

Result<Descriptor> makeEmptyFile(const Directory &folder, const char *name) noexcept
{
    Disk &disk = folder.disk();
    const auto handle = uninterrupted([&] { return disk.makeFile(folder.handle(), name); });
    if (!handle)
        return handle.failure();
    return Descriptor(disk, *handle);
}

Result<void> copyContent(const Descriptor &from, const Descriptor &to) noexcept
{
    std::array<char, bufferSize> buffer;
    for (;;) {
        const auto count = uninterrupted(
            [&] { return from.disk().read(from.get(), buffer.data(), buffer.size()); });
        if (!count)
            return count.failure();
        if (*count == 0)
            return {};
        if (const auto written = writeAll(to, {buffer.data(), *count}); !written)
            return written;
    }
}

/// Fills the buffer, unless the file ends before.
Result<std::size_t> readFull(const Descriptor &file, std::span<char> buffer) noexcept
{
    std::size_t size = 0;
    while (size < buffer.size()) {
        const auto count = uninterrupted([&] {
            return file.disk().read(file.get(), buffer.data() + size, buffer.size() - size);
        });
        if (!count)
            return count.failure();
        if (*count == 0)
            break;
        size += *count;
    }
    return size;
}

class Collector final : public ListingVisitor {
public:
    explicit Collector(DirectoryListing &listing)
        : m_listing(listing)
    {
    }
    void visit(ino_t inode, FileKind kind, const char *name) override
    {
        m_listing.add(inode, kind, name);
    }

private:
    DirectoryListing &m_listing;
};

} // namespace

Result<Directory> Directory::open(Disk &disk, const std::filesystem::path &path)
{
    const auto handle = uninterrupted([&] { return disk.openPath(path.c_str()); });
    if (!handle) {
        const Failure failure = handle.failure();
        return failure.is(ENOTDIR) ? Failure::because(Reason::notFolder) : failure;
    }
    // First the one that closes it: the path needs memory.
    Descriptor descriptor(disk, *handle);
    return Directory(std::move(descriptor), path);
}

Directory Directory::openOrMake(Disk &disk, const std::filesystem::path &path)
{
    std::filesystem::path failed;
    Result<Directory> folder = openOrMake(disk, path, failed);
    if (!folder)
        throw FileError(std::move(failed), folder.failure());
    return *std::move(folder);
}

Result<Directory> Directory::tryToOpenOrMake(Disk &disk, const std::filesystem::path &path)
{
    std::filesystem::path failed;
    return openOrMake(disk, path, failed);
}

Result<Directory> Directory::openOrMake(Disk &disk, const std::filesystem::path &path,
                                        std::filesystem::path &failed)
{
    failed = path;
    Result<Directory> found = open(disk, path);
    if (found || !found.failure().is(ENOENT))
        return found;
    const Result<Directory> parent = openOrMake(disk, path.parent_path(), failed);
    if (!parent) {
        if (parent.failure().reason == Reason::outOfReach)
            failed = path; // It is this one that cannot be made.
        return parent.failure();
    }
    if (!path.has_filename())
        return open(disk, path.parent_path());
    failed = path;
    const std::filesystem::path name = path.filename();
    const auto made =
        uninterrupted([&] { return disk.makeFolder(parent->handle(), name.c_str()); });
    if (!made && !made.failure().is(EEXIST))
        return made.failure();
    return parent->openFolder(name.c_str());
}

void Directory::syncPath() const
{
    std::filesystem::path failed;
    if (const Result<void> synced = syncPath(failed); !synced)
        throw FileError(std::move(failed), synced.failure());
}

Result<void> Directory::tryToSyncPath() const
{
    std::filesystem::path failed;
    return syncPath(failed);
}

Result<void> Directory::syncPath(std::filesystem::path &failed) const
{
    failed = m_path;
    const Result<FileStatus> own = status();
    if (!own)
        return own.failure();
    while (failed.has_relative_path()) {
        failed = failed.parent_path();
        // The user may have no right to list a folder, such as that of all home folders. Somebody
        // else made it then.
        const Result<Directory> folder = open(disk(), failed);
        if (!folder)
            continue;
        const Result<FileStatus> found = folder->status();
        if (!found)
            return found.failure();
        if (found->identity.device != own->identity.device)
            return {};
        if (const Result<void> synced = folder->sync(); !synced)
            return synced;
    }
    return {};
}

Result<FileStatus> Directory::status() const noexcept
{
    return disk().status(handle());
}

Result<FileStatus> Directory::status(const char *name) const noexcept
{
    return uninterrupted([&] { return disk().status(handle(), name); });
}

Result<Disk::Attributes> Directory::attributes(const char *name) const noexcept
{
    return uninterrupted([&] { return disk().attributes(handle(), name); });
}

Result<bool> Directory::isAt(const char *name, const FileIdentity &identity) const noexcept
{
    const Result<FileStatus> found = status(name);
    if (found)
        return found->identity == identity;
    if (found.failure().is(ENOENT))
        return false;
    return found.failure();
}

Result<DirectoryListing> Directory::list() const
{
    return uninterrupted([&]() -> Result<DirectoryListing> {
        DirectoryListing listing;
        Collector collector(listing);
        if (const auto listed = disk().list(handle(), collector); !listed)
            return listed.failure();
        return listing;
    });
}

Result<Directory> Directory::openFolder(const char *name) const
{
    Result<Descriptor> opened = openSubFolder(*this, name);
    if (!opened)
        return opened.failure();
    return Directory(*std::move(opened), m_path / name);
}

Result<Directory> Directory::makeFolder(const char *name) const
{
    // All that needs memory comes first: nobody would know of a folder that is made without it.
    std::filesystem::path path = m_path / name;
    if (const auto made = uninterrupted([&] { return disk().makeFolder(handle(), name); }); !made)
        return made.failure();
    Result<Descriptor> opened = openSubFolder(*this, name);
    if (!opened) {
        static_cast<void>(unlink(name, FileKind::folder));
        return opened.failure();
    }
    return Directory(*std::move(opened), std::move(path));
}

Result<FileStatus> Directory::readFile(const char *name, std::size_t limit,
                                       std::string &bytes) const
{
    const Result<OpenFile> file = openRegularFile(*this, name);
    if (!file)
        return file.failure();
    const auto expected = static_cast<std::size_t>(file->status.size);
    if (expected > limit)
        return Failure::because(Reason::tooLarge);

    // One byte more than expected tells the end of the file without a second call.
    bytes.resize(expected + 1);
    std::size_t size = 0;
    for (;;) {
        const std::size_t wanted = bytes.size() - size;
        const auto count = uninterrupted(
            [&] { return disk().read(file->descriptor.get(), bytes.data() + size, wanted); });
        if (!count)
            return count.failure();
        size += *count;
        // It may grow while it is read.
        if (size > limit)
            return Failure::because(Reason::tooLarge);
        const bool isShort = *count < wanted;
        if (*count == 0 || (isShort && size >= expected))
            break;
        if (!isShort)
            bytes.resize(2 * bytes.size());
    }
    bytes.resize(size);
    return file->status;
}

Result<FileStatus> Directory::makeFile(const char *name, std::string_view bytes) const noexcept
{
    Result<Descriptor> file = makeEmptyFile(*this, name);
    if (!file)
        return file.failure();
    if (const auto written = writeAll(*file, bytes); !written)
        return written.failure();
    const auto status = disk().status(file->get());
    if (const auto closed = file->close(); !closed)
        return closed.failure();
    return status;
}

Result<void> Directory::link(const char *name, const Directory &into) const noexcept
{
    return uninterrupted([&] { return disk().link(handle(), into.handle(), name); });
}

Result<FileStatus> Directory::copyFile(const char *name, const Directory &into) const noexcept
{
    const Result<OpenFile> source = openRegularFile(*this, name);
    if (!source)
        return source.failure();
    Result<Descriptor> copy = makeEmptyFile(into, name);
    if (!copy)
        return copy.failure();
    if (const auto copied = copyContent(source->descriptor, *copy); !copied)
        return copied.failure();
    const auto resembles =
        uninterrupted([&] { return disk().copyMetadata(source->descriptor.get(), copy->get()); });
    if (!resembles)
        return resembles.failure();
    const auto status = disk().status(copy->get());
    if (const auto closed = copy->close(); !closed)
        return closed.failure();
    return status;
}

Result<void> Directory::copySymbolicLink(const char *name, const Directory &into) const noexcept
{
    return uninterrupted([&] { return disk().copySymbolicLink(handle(), into.handle(), name); });
}

Result<bool> Directory::hasSameContent(const char *name, const Directory &other,
                                       const char *otherName) const noexcept
{
    const Result<OpenFile> first = openRegularFile(*this, name);
    if (!first)
        return first.failure();
    const Result<OpenFile> second = openRegularFile(other, otherName);
    if (!second)
        return second.failure();
    std::array<char, bufferSize> firstBytes;
    std::array<char, bufferSize> secondBytes;
    for (;;) {
        const auto firstSize = readFull(first->descriptor, firstBytes);
        if (!firstSize)
            return firstSize.failure();
        const auto secondSize = readFull(second->descriptor, secondBytes);
        if (!secondSize)
            return secondSize.failure();
        if (std::string_view(firstBytes.data(), *firstSize) !=
            std::string_view(secondBytes.data(), *secondSize))
            return false;
        if (*firstSize < firstBytes.size())
            return true;
    }
}

Result<void> Directory::unlink(const char *name, FileKind kind) const noexcept
{
    return uninterrupted([&] { return disk().unlink(handle(), name, kind); });
}

Result<void> Directory::rename(const char *name, const Directory &to, const char *newName,
                               Disk::Rename how) const noexcept
{
    const auto call = [&] { return disk().rename(handle(), name, to.handle(), newName, how); };
    return how == Disk::Rename::replace ? uninterrupted(call) : call();
}

Result<void> Directory::sync() const noexcept
{
    const auto synced = uninterrupted([&] { return disk().sync(handle()); });
    // The answer of file systems that have nothing to sync for a folder.
    return !synced && synced.failure().is(EINVAL) ? Result<void>() : synced;
}

Result<void> Directory::syncFile(const char *name) const noexcept
{
    const Result<OpenFile> file = openRegularFile(*this, name);
    if (!file)
        return file.failure();
    return uninterrupted([&] { return disk().sync(file->descriptor.get()); });
}

Result<void> Directory::syncFileSystem() const noexcept
{
    return uninterrupted([&] { return disk().syncFileSystem(handle()); });
}

Result<void> Directory::setMode(mode_t mode) const noexcept
{
    return uninterrupted([&] { return disk().setMode(handle(), mode); });
}

Result<void> Directory::resemble(const Directory &model) const noexcept
{
    return uninterrupted([&] { return disk().copyMetadata(model.handle(), handle()); });
}

FileError Directory::error(Failure failure, std::string_view name) const
{
    return {name.empty() ? m_path : m_path / name, failure};
}
