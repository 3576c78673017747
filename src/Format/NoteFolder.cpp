// SPDX-License-Identifier: MIT
#include "NoteFolder.h"

#include "RepositoryError.h"

#include <sys/stat.h>

namespace {

/// There may be a draft for every note, and that of the capture screen.
constexpr std::size_t mostFiles(Section section)
{
    return section == Section::notes ? NoteFolder::mostNotes : NoteFolder::mostNotes + 1;
}

Directory openHere(const Directory &parent, const char *name)
{
    Directory folder = parent.orThrow(parent.openFolder(name), name);
    if (folder.orThrow(folder.attributes()).isMountPoint)
        throw parent.error(Failure::because(Reason::mountPoint), name);
    return folder;
}

/// By ascending name.
DirectoryListing markdownFiles(const Directory &section, NoteFolder::Visitor &visitor)
{
    DirectoryListing listing = section.orThrow(section.list());
    listing.keepIf([&](const DirectoryListing::Entry &entry) {
        const char *name = listing.name(entry);
        if (!FileNames::isMarkdown(name)) {
            visitor.passOver(name, entry.kind);
            return false;
        }
        if (entry.kind != FileKind::file)
            throw section.error(NoteFolder::refusal(name, entry.kind), name);
        return true;
    });
    listing.sort();
    return listing;
}

} // namespace

std::optional<NoteFolder> NoteFolder::openIfExists(const Directory &data, const char *name)
{
    const Result<FileStatus> found = data.status(name);
    if (!found && found.failure().is(ENOENT))
        return std::nullopt;
    data.orThrow(found, name);
    Directory markdown = openHere(data, name);
    Directory notes = openHere(markdown, FileNames::ofSection(Section::notes));
    const char *const draftsName = FileNames::ofSection(Section::drafts);
    const Result<FileStatus> foundDrafts = markdown.status(draftsName);
    std::optional<Directory> drafts;
    if (foundDrafts || !foundDrafts.failure().is(ENOENT))
        drafts.emplace(openHere(markdown, draftsName));
    return NoteFolder(std::move(markdown), std::move(notes), std::move(drafts));
}

std::optional<NoteFolder> NoteFolder::openIfUsable(const Directory &data)
{
    Result<Directory> markdown = data.openFolder(FileNames::markdownFolder);
    if (!markdown)
        return std::nullopt;
    Result<Directory> notes = markdown->openFolder(FileNames::ofSection(Section::notes));
    Result<Directory> drafts = markdown->openFolder(FileNames::ofSection(Section::drafts));
    if (!notes || (!drafts && !drafts.failure().is(ENOENT)))
        return std::nullopt;
    return NoteFolder(*std::move(markdown), *std::move(notes),
                      drafts ? std::optional(*std::move(drafts)) : std::nullopt);
}

Failure NoteFolder::refusal(const char *name, FileKind kind) noexcept
{
    const bool isLock = kind == FileKind::link && FileNames::isEditorLock(name);
    return Failure::because(isLock ? Reason::editorLock : Reason::notRegularFile);
}

const Directory &NoteFolder::directory(Section section) const noexcept
{
    switch (section) {
    case Section::marker:
        return m_markdown;
    case Section::notes:
        return m_notes;
    case Section::drafts:
        return *m_drafts;
    }
    Q_UNREACHABLE();
}

bool NoteFolder::has(Section section) const noexcept
{
    return section != Section::drafts || m_drafts.has_value();
}

void NoteFolder::makeDrafts()
{
    if (m_drafts)
        return;
    const char *const name = FileNames::ofSection(Section::drafts);
    m_drafts.emplace(m_markdown.orThrow(m_markdown.makeFolder(name), name));
    m_markdown.orThrow(m_markdown.sync());
}

void NoteFolder::checkMarker() const
{
    std::string bytes;
    m_markdown.orThrow(m_markdown.readFile(FileNames::marker, largestFile, bytes),
                       FileNames::marker);
    if (bytes != FileNames::markerContent)
        throw RepositoryError::invalidMarkdown().about(m_markdown.path() / FileNames::marker);
}

bool NoteFolder::isIn(const Directory &data) const
{
    const FileIdentity own = m_markdown.orThrow(m_markdown.status()).identity;
    return data.isAt(FileNames::markdownFolder, own).valueOr(true);
}

bool NoteFolder::holds(Section section) const
{
    const FileIdentity own = directory(section).orThrow(directory(section).status()).identity;
    return m_markdown.isAt(FileNames::ofSection(section), own).valueOr(true);
}

void NoteFolder::closeToOthers() const noexcept
{
    for (const Section section : {Section::marker, Section::notes, Section::drafts}) {
        if (!has(section))
            continue;
        const Result<FileStatus> status = directory(section).status();
        if (status && (status->mode & ~mode_t{S_IRWXU}) != 0)
            static_cast<void>(directory(section).setMode(status->mode & S_IRWXU));
    }
}

void NoteFolder::announceChange() const noexcept
{
    // The mode that it has already: nothing changes, and yet the system tells of it.
    if (const Result<FileStatus> status = m_markdown.status())
        static_cast<void>(m_markdown.setMode(status->mode));
}

void NoteFolder::sync() const
{
    for (const Section section : {Section::marker, Section::notes, Section::drafts}) {
        if (has(section))
            directory(section).orThrow(directory(section).sync());
    }
}

void NoteFolder::visit(Visitor &visitor) const
{
    std::string bytes;
    std::size_t total = 0;
    const auto read = [&](Section section, const char *name) {
        const Directory &folder = directory(section);
        const FileStatus status = folder.orThrow(folder.readFile(name, largestFile, bytes), name);
        visitor.see({section, name, status, bytes});
    };
    read(Section::marker, FileNames::marker);
    for (const Section section : {Section::notes, Section::drafts}) {
        if (!has(section))
            continue;
        const DirectoryListing files = markdownFiles(directory(section), visitor);
        if (files.entries().size() > mostFiles(section))
            throw directory(section).error(Failure::because(Reason::tooManyNotes));
        visitor.expect(files.entries().size());
        for (const DirectoryListing::Entry &file : files.entries()) {
            read(section, files.name(file));
            total += bytes.size();
            if (total > mostBytes)
                throw m_markdown.error(Failure::because(Reason::tooMuchText));
        }
    }
}
