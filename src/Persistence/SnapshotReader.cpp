// SPDX-License-Identifier: MIT
#include "SnapshotReader.h"

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "RepositoryError.h"

SnapshotReader::SnapshotReader(std::filesystem::path path)
    : m_path(std::move(path))
    , m_fingerprint(m_path)
{
}

void SnapshotReader::read(const NoteFolder &folder)
{
    folder.visit([this](Section section, std::string_view name, std::string_view bytes) {
        const std::optional<QStringView> text = m_decoder.decode(bytes);
        if (!text)
            throw FileError(m_path / NoteFolder::sectionName(section) / name,
                            FileError::Reason::notUtf8);
        m_state.files.push_back(readFile(section, name, *text));
        m_fingerprint.add(section, name, bytes);
    });
    m_state.fingerprint = m_fingerprint.finish();
    m_state.files.shrink_to_fit();
    m_snapshot.notes.squeeze();
}

NoteFile SnapshotReader::readFile(Section section, std::string_view name, QStringView text)
{
    NoteFile file;
    switch (section) {
    case Section::marker:
        readMarker(text);
        file.note.body = text.toString();
        break;
    case Section::notes:
        readNote(file, name, text);
        break;
    case Section::drafts:
        file.note.body = text.toString();
        readDraft(name, file.note.body);
        break;
    }
    file.place = {section, NoteFileName(name)};
    return file;
}

void SnapshotReader::readMarker(QStringView text) const
{
    if (text.toUtf8().toStdString() != NoteFolder::marker)
        throw RepositoryError::invalidMarkdown();
}

void SnapshotReader::readNote(NoteFile &file, std::string_view name, QStringView text)
{
    std::optional<Note> exact = NoteMarkdownCodec::decodeExact(text);
    file.isExact = exact.has_value();
    file.note = exact ? std::move(*exact) : NoteMarkdownCodec::decode(text);
    const QUuid id = file.note.id;
    if (parseId(stem(name)) != id || m_ids.contains(id))
        throw RepositoryError::invalidMarkdown();
    m_ids.insert(id);
    m_snapshot.notes.append(file.note);
}

void SnapshotReader::readDraft(std::string_view name, const QString &text)
{
    if (stem(name) == stem(NoteFolder::captureName)) {
        m_snapshot.captureDraft = text;
        return;
    }
    const std::optional<QUuid> id = parseId(stem(name));
    if (!id || !m_ids.contains(*id))
        throw RepositoryError::invalidMarkdown();
    m_snapshot.editingDrafts.insert(canonicalText(*id), text);
}
