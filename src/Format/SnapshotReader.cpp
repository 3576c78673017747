// SPDX-License-Identifier: MIT
#include "SnapshotReader.h"

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

SnapshotReader::SnapshotReader(std::filesystem::path path)
    : m_path(std::move(path))
    , m_fingerprint(m_path)
{
}

void SnapshotReader::read(const NoteFolder &folder)
{
    const auto expect = [this](std::size_t fileCount) {
        m_state.files.reserve(m_state.files.size() + fileCount);
        m_ids.reserve(m_ids.size() + fileCount);
    };
    const auto see = [this](Section section, std::string_view name, std::string_view bytes) {
        const std::optional<QStringView> text = m_decoder.decode(bytes);
        if (!text)
            throw FileError(m_path / NoteFolder::sectionName(section) / name, Reason::notUtf8);
        m_fingerprint.add(section, name, bytes);
        m_state.files.push_back(readFile(section, name, *text));
    };
    folder.visit(see, expect);
    m_state.fingerprint = m_fingerprint.finish();
    collectNotes();
}

NoteFile SnapshotReader::readFile(Section section, std::string_view name, QStringView text)
{
    // Longer than an identifier, and so no name of a note or a draft.
    if (!NoteFileName::fits(name))
        throw RepositoryError::invalidMarkdown();
    NoteFile file;
    file.place = {section, NoteFileName(name)};
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
    return file;
}

void SnapshotReader::readMarker(QStringView text) const
{
    if (text.toUtf8().toStdString() != NoteFolder::marker)
        throw RepositoryError::invalidMarkdown();
}

void SnapshotReader::readNote(NoteFile &file, std::string_view name, QStringView text)
{
    // A name of lower case may pass for exact: a save does not keep such a file anyway.
    const std::optional<QUuid> id = parseId(stem(name));
    if (auto exact =
            id ? NoteMarkdownCodec::decodeExact(text, *id, latin1(stem(name))) : std::nullopt) {
        file.note = std::move(*exact);
    } else {
        file.note = NoteMarkdownCodec::decode(text);
        file.isExact = false;
    }
    if (file.note.id != id)
        throw RepositoryError::invalidMarkdown();
    rememberId(*id);
}

void SnapshotReader::rememberId(const QUuid &id)
{
    // Names ascend, and so do the identifiers that they spell, unless one is of lower case.
    auto place = m_ids.end();
    if (!m_ids.empty() && !(m_ids.back() < id)) {
        place = std::ranges::lower_bound(m_ids, id);
        if (*place == id)
            throw RepositoryError::invalidMarkdown();
    }
    m_ids.insert(place, id);
}

void SnapshotReader::collectNotes()
{
    m_snapshot.notes.reserve(static_cast<qsizetype>(m_ids.size()));
    for (const NoteFile &file : m_state.files) {
        if (file.place.section == Section::notes)
            m_snapshot.notes.append(file.note);
    }
}

void SnapshotReader::readDraft(std::string_view name, const QString &text)
{
    // A load keeps one text of a draft only, and the next save would remove the other's file.
    const auto refuseSecond = [&](bool isSecond) {
        if (isSecond)
            throw FileError(m_path / NoteFolder::sectionName(Section::drafts) / name,
                            Reason::secondDraft);
    };
    if (stem(name) == stem(NoteFolder::captureName)) {
        refuseSecond(std::exchange(m_hasCaptureDraft, true));
        m_snapshot.captureDraft = text;
        return;
    }
    const std::optional<QUuid> id = parseId(stem(name));
    if (!id || !std::ranges::binary_search(m_ids, *id))
        throw RepositoryError::invalidMarkdown();
    const QString key = canonicalText(*id);
    refuseSecond(m_snapshot.editingDrafts.contains(key));
    m_snapshot.editingDrafts.insert(key, text);
}
