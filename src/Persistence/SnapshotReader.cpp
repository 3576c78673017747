// SPDX-License-Identifier: MIT
#include "SnapshotReader.h"

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "RepositoryError.h"

#include <utility>

SnapshotReader::SnapshotReader(std::filesystem::path path)
    : m_path(std::move(path))
    , m_fingerprint(m_path)
{
}

void SnapshotReader::read(const NoteFolder &folder)
{
    folder.visit([this](Section section, std::string_view name, std::string_view bytes) {
        readFile(section, name, bytes);
        m_fingerprint.add(section, name, bytes);
        m_state.files.push_back({{section, NoteFileName(name)}, contentDigest(m_sha256, bytes)});
    });
    m_state.fingerprint = m_fingerprint.finish();
    m_snapshot.notes.squeeze();
    m_state.files.shrink_to_fit();
}

void SnapshotReader::readFile(Section section, std::string_view name, std::string_view bytes)
{
    const auto text = m_decoder.decode(bytes);
    if (!text)
        throw FileError(m_path / NoteFolder::sectionName(section) / name,
                        FileError::Reason::notUtf8);
    switch (section) {
    case Section::marker:
        if (bytes != NoteFolder::marker)
            throw RepositoryError::invalidMarkdown();
        return;
    case Section::notes:
        readNote(name, *text);
        return;
    case Section::drafts:
        readDraft(name, *text);
        return;
    }
}

void SnapshotReader::readNote(std::string_view name, QStringView text)
{
    Note note = NoteMarkdownCodec::decode(text);
    if (parseId(stem(name)) != note.id || m_ids.contains(note.id))
        throw RepositoryError::invalidMarkdown();
    m_ids.insert(note.id);
    m_snapshot.notes.append(std::move(note));
}

void SnapshotReader::readDraft(std::string_view name, QStringView text)
{
    if (stem(name) == NoteFolder::captureStem) {
        m_snapshot.captureDraft = text.toString();
        return;
    }
    const std::optional<QUuid> id = parseId(stem(name));
    if (!id || !m_ids.contains(*id))
        throw RepositoryError::invalidMarkdown();
    m_snapshot.editingDrafts.insert(canonicalText(*id), text.toString());
}
