// SPDX-License-Identifier: MIT
#include "KnownFolder.h"

#include "Neighbour.h"
#include "SnapshotDifference.h"

#include <algorithm>
#include <cstring>

namespace {

bool hasReliableTimes(const Directory &folder) noexcept
{
    return folder.disk().hasReliableTimes(folder.handle());
}

} // namespace

std::span<NoteFile> KnownFolder::filesOf(Section section) noexcept
{
    const auto place = [](const NoteFile &file) { return file.place.section; };
    const auto first = std::ranges::lower_bound(m_files, section, {}, place);
    const auto last = std::ranges::upper_bound(first, m_files.end(), section, {}, place);
    return {first, last};
}

std::span<const NoteFile> KnownFolder::files(Section section) const noexcept
{
    return const_cast<KnownFolder *>(this)->filesOf(section);
}

const NoteFile *KnownFolder::find(const NoteFilePlace &place) const noexcept
{
    const auto found = std::ranges::lower_bound(m_files, place, {}, &NoteFile::place);
    return found != m_files.end() && found->place == place ? &*found : nullptr;
}

bool KnownFolder::isStill(const NoteFolder &folder)
{
    m_sawCopies = false;
    return isMarkerStill(folder) && isStill(folder, Section::notes) &&
           isStill(folder, Section::drafts);
}

bool KnownFolder::isStill(const NoteFolder &folder, Section section)
{
    if (!folder.has(section))
        return files(section).empty();
    const Directory &directory = folder.directory(section);
    DirectoryListing listing = directory.orThrow(directory.list());
    listing.sort();
    return isStill(folder, section, listing);
}

bool KnownFolder::isMarkerStill(const NoteFolder &folder)
{
    const Directory &markdown = folder.directory();
    for (NoteFile &file : filesOf(Section::marker)) {
        const char *name = file.place.name.c_str();
        const FileStatus status = markdown.orThrow(markdown.status(name), name);
        if (!file.stamp.isOf(status) && !readAgain(file, markdown, hasReliableTimes(markdown)))
            return false;
    }
    return true;
}

bool KnownFolder::isStill(const NoteFolder &folder, Section section,
                          const DirectoryListing &listing)
{
    const Directory &directory = folder.directory(section);
    const bool isReliable = hasReliableTimes(directory);
    const std::span<NoteFile> files = filesOf(section);
    auto file = files.begin();
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const char *name = listing.name(entry);
        if (!FileNames::isMarkdown(name)) {
            m_sawCopies = m_sawCopies || (entry.kind == FileKind::file && isCopyOfNote(name));
            continue;
        }
        if (entry.kind != FileKind::file)
            throw directory.error(NoteFolder::refusal(name, entry.kind), name);
        if (file == files.end() || std::strcmp(file->place.name.c_str(), name) != 0)
            return false;
        const Result<FileStatus> status = directory.status(name);
        if (!status && status.failure().is(ENOENT))
            return false;
        if (!file->stamp.isOf(directory.orThrow(status, name)) &&
            !readAgain(*file, directory, isReliable))
            return false;
        ++file;
    }
    return file == files.end();
}

bool KnownFolder::readAgain(NoteFile &file, const Directory &folder, bool hasReliableTimes)
{
    const char *name = file.place.name.c_str();
    const std::int64_t begin = folder.disk().now();
    std::string bytes;
    const Result<FileStatus> status = folder.readFile(name, NoteFolder::largestFile, bytes);
    if (!status && status.failure().is(ENOENT))
        return false;
    const FileStatus found = folder.orThrow(status, name);
    if (!file.isWrittenAs(bytes))
        return false;
    if (hasReliableTimes)
        file.stamp = FileStamp(found, begin);
    return true;
}

bool KnownFolder::isContentStill(const NoteFile &file, const Directory &folder, const char *name)
{
    std::string bytes;
    const Result<FileStatus> status = folder.readFile(name, NoteFolder::largestFile, bytes);
    if (!status && status.failure().is(ENOENT))
        return false;
    folder.orThrow(status, file.place.name.c_str());
    return file.isWrittenAs(bytes);
}

std::optional<std::size_t> KnownFolder::learnStamps(const NoteFolder &folder, std::size_t from,
                                                    Deadline deadline)
{
    constexpr std::size_t filesBetweenLooks = 8;
    if (!hasReliableTimes(folder.directory()))
        return std::nullopt;
    std::string bytes;
    for (std::size_t i = from; i < m_files.size(); ++i) {
        const std::size_t done = i - from;
        if (done != 0 && done % filesBetweenLooks == 0 &&
            std::chrono::steady_clock::now() >= deadline)
            return i;
        NoteFile &file = m_files[i];
        if (!folder.has(file.place.section))
            continue;
        const Directory &directory = folder.directory(file.place.section);
        const char *name = file.place.name.c_str();
        const Result<FileStatus> now = directory.status(name);
        if (!now || file.stamp.isOf(*now))
            continue;
        const std::int64_t begin = directory.disk().now();
        const Result<FileStatus> status = directory.readFile(name, NoteFolder::largestFile, bytes);
        if (status && file.isWrittenAs(bytes))
            file.stamp = FileStamp(*status, begin);
    }
    return std::nullopt;
}

void KnownFolder::reserve(const SnapshotDifference &difference)
{
    m_files.reserve(m_files.size() + difference.writes().size());
}

void KnownFolder::apply(SnapshotDifference &&difference) noexcept
{
    const std::vector<NoteFilePlace> &removals = difference.removals();
    if (!removals.empty())
        std::erase_if(m_files, [&](const NoteFile &file) {
            return std::ranges::binary_search(removals, file.place);
        });
    const auto known = static_cast<std::ptrdiff_t>(m_files.size());
    for (NoteFile &file : difference.takeWrites()) {
        const auto end = m_files.begin() + known;
        const auto old =
            std::ranges::lower_bound(m_files.begin(), end, file.place, {}, &NoteFile::place);
        if (old != end && old->place == file.place)
            *old = std::move(file);
        else
            m_files.push_back(std::move(file));
    }
    std::ranges::inplace_merge(m_files, m_files.begin() + known, {}, &NoteFile::place);
}

std::size_t KnownFolder::textSize() const noexcept
{
    std::size_t size = 0;
    for (const NoteFile &file : m_files)
        size += file.place.section == Section::marker ? 0 : file.size;
    return size;
}
