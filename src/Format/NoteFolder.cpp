// SPDX-License-Identifier: MIT
#include "NoteFolder.h"

namespace {

/// There may be a draft for every note, and that of the capture screen.
constexpr std::size_t mostFiles(Section section)
{
    return section == Section::notes ? NoteFolder::mostNotes : NoteFolder::mostNotes + 1;
}

/// By ascending name.
DirectoryListing markdownFiles(const Directory &section)
{
    DirectoryListing listing = section.list();
    listing.keepIf([&](const DirectoryListing::Entry &entry) {
        if (!isMarkdownName(listing.name(entry)))
            return false;
        if (entry.kind != DirectoryListing::Kind::file)
            throw section.error(listing.name(entry), Reason::notRegularFile);
        return true;
    });
    listing.sort();
    return listing;
}

} // namespace

std::optional<NoteFolder> NoteFolder::openIfExists(const std::filesystem::path &data)
{
    std::optional<Directory> parent = Directory::openIfExists(data);
    if (!parent || !parent->status(folderName))
        return std::nullopt;
    Directory directory = parent->openFolder(folderName);
    return NoteFolder(std::move(*parent), std::move(directory));
}

bool NoteFolder::isInPlace() const
{
    return m_data.tryIsAt(folderName, m_directory.identity()).value_or(true);
}

const char *NoteFolder::sectionName(Section section) noexcept
{
    switch (section) {
    case Section::marker:
        return "";
    case Section::notes:
        return "Notes";
    case Section::drafts:
        return "Drafts";
    }
    Q_UNREACHABLE();
}

void NoteFolder::visit(const Visitor &visitor,
                       const std::function<void(std::size_t fileCount)> &expect) const
{
    std::string bytes;
    std::size_t total = 0;
    m_directory.readFile(markerName, largestFile, bytes);
    visitor(Section::marker, markerName, bytes);
    for (const Section section : {Section::notes, Section::drafts}) {
        const Directory folder = m_directory.openFolder(sectionName(section));
        const DirectoryListing files = markdownFiles(folder);
        if (files.entries().size() > mostFiles(section))
            throw FileError(folder.path(), Reason::tooManyNotes);
        if (expect)
            expect(files.entries().size());
        for (const DirectoryListing::Entry &file : files.entries()) {
            folder.readFile(files.name(file), largestFile, bytes);
            total += bytes.size();
            if (total > mostBytes)
                throw FileError(m_directory.path(), Reason::tooMuchText);
            visitor(section, files.name(file), bytes);
        }
    }
}

FolderFingerprint::FolderFingerprint(const std::filesystem::path &folder)
    : m_prefixes{folder / "", folder / "Notes" / "", folder / "Drafts" / ""}
{
}

void FolderFingerprint::add(Section section, std::string_view name, std::string_view bytes)
{
    m_path = m_prefixes[static_cast<std::size_t>(section)];
    m_path += name;
    m_sha256.add(m_path);
    m_sha256.add(bytes);
}
