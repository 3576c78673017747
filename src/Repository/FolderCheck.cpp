// SPDX-License-Identifier: MIT
#include "FolderCheck.h"

#include "FileNames.h"
#include "FolderSurvey.h"
#include "Neighbour.h"
#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "RecoveryName.h"
#include "Utf8.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

using Finding = FolderCheck::Finding;
using Kind = Finding::Kind;

std::vector<std::string> namesIn(const Directory &folder)
{
    DirectoryListing listing = folder.orThrow(folder.list());
    listing.sort();
    std::vector<std::string> names;
    for (const DirectoryListing::Entry &entry : listing.entries())
        names.emplace_back(listing.name(entry));
    return names;
}

bool isHidden(std::string_view name)
{
    return name.starts_with(FileNames::stagePrefix) || name.starts_with(FileNames::recoveryPrefix);
}

/// Nothing for what is no ordinary file, or cannot be read.
std::optional<std::string> contentOf(const Directory &folder, const char *name)
{
    std::string bytes;
    if (!folder.readFile(name, NoteFolder::largestFile, bytes))
        return std::nullopt;
    return bytes;
}

std::optional<Note> noteFrom(const std::string &bytes)
{
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(bytes);
    return text ? NoteMarkdownCodec::parse(*text) : std::nullopt;
}

/// Of what Vim keeps beside a file; the others leave nothing but a lock.
bool isSwapFile(std::string_view name)
{
    return name.starts_with('.') && !name.starts_with(".~") && !FileNames::isEditorLock(name);
}

Message messageFor(Neighbour neighbour, std::string_view name)
{
    switch (neighbour) {
    case Neighbour::none:
        return {u"A file of another program. Quillmark leaves it alone."_s, {}};
    case Neighbour::editorLock:
        if (isSwapFile(name))
            return {
                u"The swap file of an editor that has a note open, or ended while it had. It may hold text that is not saved."_s,
                {}};
        return {u"The lock of an editor that has a note open, or ended while it had."_s, {}};
    case Neighbour::conflictCopy:
        return {
            u"A conflict copy: a program that synchronises folders found two versions of a file. “quillmark-notes check --repair” makes notes of copies of notes; compare others and move them away."_s,
            {}};
    case Neighbour::backup:
        return {u"A backup file, as editors make them."_s, {}};
    case Neighbour::syncMarker:
        return {
            u"A program that synchronises folders shares this one. Quillmark exchanges it with a new one: share “Penwick” instead."_s,
            {}};
    }
    Q_UNREACHABLE();
}

Kind kindOf(Neighbour neighbour)
{
    switch (neighbour) {
    case Neighbour::none:
        return Kind::other;
    case Neighbour::editorLock:
        return Kind::editorLock;
    case Neighbour::conflictCopy:
        return Kind::conflictCopy;
    case Neighbour::backup:
        return Kind::backup;
    case Neighbour::syncMarker:
        return Kind::syncMarker;
    }
    Q_UNREACHABLE();
}

bool isOfNotes(Section section, std::string_view name)
{
    if (section == Section::marker)
        return name == FileNames::marker || name == FileNames::ofSection(Section::notes) ||
               name == FileNames::ofSection(Section::drafts);
    const FileNames::Owner owner = FileNames::parse(name);
    return FileNames::isMarkdown(name) &&
           (owner.note || (section == Section::drafts && owner.isCapture));
}

} // namespace

bool FolderCheck::isWrong(Kind kind) noexcept
{
    return kind == Kind::refused || kind == Kind::recoveryCopy || kind == Kind::conflictCopy ||
           kind == Kind::syncMarker;
}

std::vector<std::string> FolderCheck::hiddenNames() const
{
    std::vector<std::string> names = namesIn(m_data);
    std::erase_if(names, [](const std::string &name) { return !isHidden(name); });
    return names;
}

std::vector<Finding> FolderCheck::hidden(const std::vector<std::string> &names) const
{
    std::vector<Finding> findings;
    for (const std::string &name : names) {
        const auto place = static_cast<std::ptrdiff_t>(findings.size()) + 1;
        describe(name, findings);
        if (std::ssize(findings) >= place && name.starts_with(FileNames::recoveryPrefix) &&
            RecoveryName::originOf(name, m_data.path()) == RecoveryName::Origin::elsewhere)
            findings.insert(findings.begin() + place,
                            {Kind::difference,
                             m_data.path() / name,
                             {u"Another computer made this recovery copy."_s, {}}});
    }
    return findings;
}

void FolderCheck::describe(const std::string &name, std::vector<Finding> &findings) const
{
    const Kind kind =
        name.starts_with(FileNames::recoveryPrefix) ? Kind::recoveryCopy : Kind::stage;
    const Result<FileStatus> status = m_data.status(name.c_str());
    if (!status || status->kind != FileKind::folder) {
        describeFile(name, kind, findings);
        return;
    }
    const Result<Directory> copy = m_data.openFolder(name.c_str());
    const Result<Directory> markdown = m_data.openFolder(FileNames::markdownFolder);
    if (!copy)
        return;
    const bool isWhole = bool(copy->status(FileNames::ofSection(Section::notes)));
    findings.push_back({kind, m_data.path() / name,
                        isWhole ? Message{u"A copy of the folder “Markdown”."_s, {}}
                                : Message{u"A copy of the folder “Drafts”."_s, {}}});
    if (!markdown)
        return;
    if (isWhole)
        compareFolders(*copy, *markdown, findings);
    for (const Section section : {Section::notes, Section::drafts}) {
        const Result<Directory> live = markdown->openFolder(FileNames::ofSection(section));
        const Result<Directory> own = copy->openFolder(FileNames::ofSection(section));
        if (live && own)
            compareFolders(*own, *live, findings);
        else if (live && !isWhole && section == Section::drafts)
            compareFolders(*copy, *live, findings);
    }
}

void FolderCheck::compareFolders(const Directory &copy, const Directory &live,
                                 std::vector<Finding> &findings) const
{
    const auto isFile = [](const Directory &folder, const std::string &name) {
        const Result<FileStatus> status = folder.status(name.c_str());
        return status && status->kind == FileKind::file;
    };
    for (const std::string &name : namesIn(copy)) {
        if (!isFile(copy, name))
            continue;
        if (!isFile(live, name)) {
            findings.push_back(
                {Kind::difference, copy.path() / name, {u"Only in the copy."_s, {}}});
        } else if (contentOf(copy, name.c_str()) != contentOf(live, name.c_str())) {
            findings.push_back({Kind::difference,
                                copy.path() / name,
                                {u"Different from that in the notes."_s, {}}});
        }
    }
    for (const std::string &name : namesIn(live)) {
        if (isFile(live, name) && !isFile(copy, name))
            findings.push_back({Kind::difference, live.path() / name, {u"Not in the copy."_s, {}}});
    }
}

void FolderCheck::describeFile(const std::string &name, Kind kind,
                               std::vector<Finding> &findings) const
{
    const std::optional<std::string> bytes = contentOf(m_data, name.c_str());
    if (!bytes) {
        findings.push_back({kind, m_data.path() / name, {u"It cannot be read."_s, {}}});
        return;
    }
    const std::filesystem::path markdown(FileNames::markdownFolder);
    const std::optional<Note> note = noteFrom(*bytes);
    const Section section = note ? Section::notes : Section::drafts;
    const std::string belongsTo =
        note ? NoteFileName::ofNote(note->id).c_str() : std::string(FileNames::capture);
    findings.push_back({kind, m_data.path() / name,
                        note ? Message{u"A copy of one note."_s, {}}
                             : Message{u"A copy of a draft, most often “capture.md”."_s, {}}});
    const Result<Directory> folder = m_data.openFolder(FileNames::markdownFolder);
    const auto live = folder ? folder->openFolder(FileNames::ofSection(section))
                             : Result<Directory>(folder.failure());
    const std::optional<std::string> other =
        live ? contentOf(*live, belongsTo.c_str()) : std::nullopt;
    const Message message = !other             ? Message{u"Not in the notes."_s, {}}
                            : *other == *bytes ? Message{u"The same as the copy."_s, {}}
                                               : Message{u"Different from the copy."_s, {}};
    findings.push_back({Kind::difference,
                        m_data.path() / markdown / FileNames::ofSection(section) / belongsTo,
                        message});
}

std::vector<Finding> FolderCheck::refused() const
{
    std::vector<Finding> findings;
    const std::optional<NoteFolder> folder = NoteFolder::openIfUsable(m_data);
    if (!folder)
        return findings;
    const auto format = contentOf(folder->directory(), FileNames::marker);
    if (format && *format != FileNames::markerContent)
        findings.push_back({Kind::refused,
                            folder->directory().path() / FileNames::marker,
                            {u"It names another format."_s, {}}});
    const FolderSurvey survey(*folder);
    for (const FolderSurvey::Stray &stray : survey.strays()) {
        if (stray.refusal)
            findings.push_back({Kind::refused, folder->directory(stray.section).path() / stray.name,
                                *stray.refusal});
    }
    return findings;
}

std::vector<Finding> FolderCheck::neighbours() const
{
    std::vector<Finding> findings;
    const Result<Directory> markdown = m_data.openFolder(FileNames::markdownFolder);
    if (!markdown)
        return findings;
    findNeighbours(*markdown, Section::marker, findings);
    for (const Section section : {Section::notes, Section::drafts}) {
        const Result<Directory> folder = markdown->openFolder(FileNames::ofSection(section));
        if (folder)
            findNeighbours(*folder, section, findings);
    }
    return findings;
}

void FolderCheck::findNeighbours(const Directory &folder, Section section,
                                 std::vector<Finding> &findings) const
{
    DirectoryListing listing = folder.orThrow(folder.list());
    listing.sort();
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const char *name = listing.name(entry);
        if (isOfNotes(section, name))
            continue;
        const Neighbour neighbour = neighbourOf(name, entry.kind);
        // Refused, and named as such.
        if (neighbour == Neighbour::none && section != Section::marker &&
            FileNames::isMarkdown(name))
            continue;
        findings.push_back({kindOf(neighbour), folder.path() / name, messageFor(neighbour, name)});
    }
}
