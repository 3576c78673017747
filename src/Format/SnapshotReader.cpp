// SPDX-License-Identifier: MIT
#include "SnapshotReader.h"

#include "Neighbour.h"
#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "RepositoryError.h"

#include <algorithm>
#include <utility>

namespace {

QLatin1StringView latin1(std::string_view text)
{
    return QLatin1StringView(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

void SnapshotReader::read(const NoteFolder &folder)
{
    m_folder = &folder;
    const Directory &markdown = folder.directory();
    Disk &disk = markdown.disk();
    m_hasReliableTimes = disk.hasReliableTimes(markdown.handle());
    m_begin = disk.now();
    folder.visit(*this);
    collectNotes();
}

void SnapshotReader::expect(std::size_t fileCount)
{
    m_files.reserve(m_files.size() + fileCount);
    m_ids.reserve(m_ids.size() + fileCount);
}

void SnapshotReader::passOver(const char *name, FileKind kind)
{
    m_hasCopies = m_hasCopies || (kind == FileKind::file && isCopyOfNote(name));
}

void SnapshotReader::see(const NoteFolder::File &found)
{
    const std::optional<QStringView> text = m_decoder.decode(found.bytes);
    if (!text)
        throw m_folder->directory(found.section)
            .error(Failure::because(Reason::notUtf8), found.name);
    // Longer than an identifier, and so no name of a note or a draft.
    if (!NoteFileName::fits(found.name))
        refuse(found);
    NoteFile &file = m_files.emplace_back();
    file.place = {found.section, NoteFileName(found.name)};
    file.size = found.bytes.size();
    if (m_hasReliableTimes)
        file.stamp = FileStamp(found.status, m_begin);
    readFile(file, found, *text);
}

void SnapshotReader::readFile(NoteFile &file, const NoteFolder::File &found, QStringView text)
{
    switch (found.section) {
    case Section::marker:
        readMarker(found, text);
        file.note.body = text.toString();
        break;
    case Section::notes:
        readNote(file, found, text);
        break;
    case Section::drafts:
        file.note.body = text.toString();
        readDraft(found, file.note.body);
        break;
    }
}

void SnapshotReader::refuse(const NoteFolder::File &file) const
{
    throw RepositoryError::invalidMarkdown().about(m_folder->directory(file.section).path() /
                                                   file.name);
}

void SnapshotReader::readMarker(const NoteFolder::File &found, QStringView text) const
{
    const std::string_view expected = FileNames::markerContent;
    if (text != latin1(expected))
        refuse(found);
}

void SnapshotReader::readNote(NoteFile &file, const NoteFolder::File &found, QStringView text)
{
    if (std::optional<Note> exact = NoteMarkdownCodec::decodeExact(text)) {
        file.note = *std::move(exact);
    } else {
        std::optional<Note> parsed = NoteMarkdownCodec::parse(text);
        if (!parsed)
            refuse(found);
        file.note = *std::move(parsed);
        file.foreignBytes = sha256(found.bytes);
    }
    if (file.note.id != parseId(FileNames::stem(found.name)))
        refuse(found);
    rememberId(file.note.id, found);
}

void SnapshotReader::rememberId(const QUuid &id, const NoteFolder::File &found)
{
    // Names ascend, and so do the identifiers that they spell, unless one is of lower case.
    auto place = m_ids.end();
    if (!m_ids.empty() && !(m_ids.back() < id)) {
        place = std::ranges::lower_bound(m_ids, id);
        if (*place == id)
            refuse(found);
    }
    m_ids.insert(place, id);
}

void SnapshotReader::collectNotes()
{
    m_snapshot.notes.reserve(static_cast<qsizetype>(m_ids.size()));
    for (const NoteFile &file : m_files) {
        if (file.place.section == Section::notes)
            m_snapshot.notes.append(file.note);
    }
}

void SnapshotReader::readDraft(const NoteFolder::File &found, const QString &text)
{
    // A load keeps one text of a draft only, and the next save would remove the other's file.
    const auto refuseSecond = [&](bool isSecond) {
        if (isSecond)
            throw m_folder->directory(Section::drafts)
                .error(Failure::because(Reason::secondDraft), found.name);
    };
    const FileNames::Owner owner = FileNames::parse(found.name);
    if (owner.isCapture) {
        refuseSecond(std::exchange(m_hasCaptureDraft, true));
        m_snapshot.captureDraft = text;
        return;
    }
    if (!owner.note || !std::ranges::binary_search(m_ids, *owner.note))
        refuse(found);
    const QString key = canonicalText(*owner.note);
    refuseSecond(m_snapshot.editingDrafts.contains(key));
    m_snapshot.editingDrafts.insert(key, text);
}
