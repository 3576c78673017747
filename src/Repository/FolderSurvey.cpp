// SPDX-License-Identifier: MIT
#include "FolderSurvey.h"

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "Utf8.h"

using namespace Qt::Literals::StringLiterals;

FolderSurvey::FolderSurvey(const NoteFolder &folder)
    : m_folder(folder)
{
    for (const Section section : {Section::notes, Section::drafts}) {
        if (folder.has(section))
            look(section);
    }
}

void FolderSurvey::look(Section section)
{
    const Directory &folder = m_folder.directory(section);
    DirectoryListing listing = folder.orThrow(folder.list());
    listing.sort();
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const char *name = listing.name(entry);
        if (FileNames::isMarkdown(name))
            lookAt(section, name, entry.kind);
        else if (entry.kind == FileKind::file && isCopyOfNote(name))
            m_strays.push_back(
                {section, name, entry.kind, std::nullopt, std::nullopt, std::nullopt});
    }
}

void FolderSurvey::lookAt(Section section, const char *name, FileKind kind)
{
    const Directory &folder = m_folder.directory(section);
    const auto refuse = [&](Message why) -> Stray & {
        return m_strays.emplace_back(
            Stray{section, name, kind, std::move(why), std::nullopt, std::nullopt});
    };
    if (kind != FileKind::file) {
        refuse(folder.error(NoteFolder::refusal(name, kind), name).message());
        return;
    }
    const Result<FileStatus> found = folder.readFile(name, NoteFolder::largestFile, m_bytes);
    if (!found) {
        if (!found.failure().is(ENOENT))
            refuse(folder.error(found.failure(), name).message()).failure = found.failure();
        return;
    }
    m_total += m_bytes.size();
    if (m_total > NoteFolder::mostBytes)
        throw m_folder.directory().error(Failure::because(Reason::tooMuchText));
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(m_bytes);
    if (!text) {
        refuse(folder.error(Failure::because(Reason::notUtf8), name).message());
        return;
    }
    auto why = section == Section::notes ? takeNote(name, *text) : takeDraft(name, *text);
    if (!why)
        return;
    const std::optional<QUuid> owner = FileNames::parse(name).note;
    const bool isOrphan = section == Section::drafts && owner && !m_notes.contains(*owner);
    refuse(*std::move(why)).orphanOf = isOrphan ? owner : std::nullopt;
}

std::optional<Message> FolderSurvey::takeNote(const char *name, QStringView text)
{
    std::optional<Note> note = NoteMarkdownCodec::decodeExact(text);
    if (!note)
        note = NoteMarkdownCodec::parse(text);
    if (!note)
        return Message{u"Its header is not that of a note."_s, {}};
    if (FileNames::parse(name).note != note->id)
        return Message{u"Its name is not the identifier in its header."_s, {}};
    if (m_notes.contains(note->id))
        return Message{u"Another file is the same note."_s, {}};
    const QUuid id = note->id;
    m_notes.insert(id, *std::move(note));
    return std::nullopt;
}

std::optional<Message> FolderSurvey::takeDraft(const char *name, QStringView text)
{
    const FileNames::Owner owner = FileNames::parse(name);
    if (!owner.isCapture && !owner.note)
        return Message{u"Its name is that of no draft."_s, {}};
    if (owner.note && !m_notes.contains(*owner.note))
        return Message{u"It is a draft of a note that is not there."_s, {}};
    const QUuid key = owner.note.value_or(QUuid());
    if (m_drafts.contains(key))
        return m_folder.directory(Section::drafts)
            .error(Failure::because(Reason::secondDraft), name)
            .message();
    m_drafts.insert(key, text.toString());
    return std::nullopt;
}
