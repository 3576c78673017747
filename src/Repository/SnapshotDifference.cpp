// SPDX-License-Identifier: MIT
#include "SnapshotDifference.h"

#include "FileError.h"
#include "NoteId.h"
#include "RepositoryError.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

namespace {

// No QHash and no QSet in this file: where they find no memory for one more, they end the program.

using FilesById = std::map<QUuid, const NoteFile *>;

/// Which of the files is that of a note.
struct PlaceOfId {
    QUuid id;
    std::size_t place;
};

/// By ascending identifier.
std::vector<PlaceOfId> placesOf(std::span<const NoteFile> files)
{
    std::vector<PlaceOfId> places;
    places.reserve(files.size());
    for (std::size_t i = 0; i < files.size(); ++i)
        places.push_back({files[i].note.id, i});
    std::ranges::sort(places, {}, &PlaceOfId::id);
    return places;
}

std::span<const NoteFile> filesOf(const KnownFolder *known, Section section) noexcept
{
    return known ? known->files(section) : std::span<const NoteFile>();
}

NoteFile textFile(const NoteFilePlace &place, const QString &text)
{
    NoteFile file;
    file.place = place;
    file.note.body = text;
    return file;
}

/// Whatever is written must be readable again, or the next start would be locked out.
void refuseUnless(bool isReadable)
{
    if (!isReadable)
        throw RepositoryError::invalidMarkdown();
}

} // namespace

SnapshotDifference::SnapshotDifference(const NoteSnapshot &snapshot, const NoteSnapshot &last,
                                       const KnownFolder *known, const std::filesystem::path &path)
{
    if (static_cast<std::size_t>(snapshot.notes.size()) > NoteFolder::mostNotes)
        throw FileError(path / FileNames::ofSection(Section::notes), Reason::tooManyNotes);
    if (!known)
        write(textFile({Section::marker, NoteFileName(FileNames::marker)},
                       QString::fromUtf8(FileNames::markerContent)),
              nullptr);
    if (!known || !snapshot.notes.isSharedWith(last.notes))
        compareNotes(snapshot, known);
    compareDrafts(snapshot, known);
    std::ranges::sort(m_writes, {}, &NoteFile::place);
    std::ranges::sort(m_removals);
    encode(path);
    checkSize(known, path);
    list();
}

void SnapshotDifference::compareNotes(const NoteSnapshot &snapshot, const KnownFolder *known)
{
    const std::span<const NoteFile> files = filesOf(known, Section::notes);
    const std::vector<PlaceOfId> places = placesOf(files);
    std::vector<bool> isKept(files.size());
    std::set<QUuid> added;
    for (const Note &note : snapshot.notes) {
        const auto found = std::ranges::lower_bound(places, note.id, {}, &PlaceOfId::id);
        const bool isKnown = found != places.end() && found->id == note.id;
        const NoteFile *old = isKnown ? &files[found->place] : nullptr;
        refuseUnless(old ? !isKept[found->place] : added.insert(note.id).second);
        if (old)
            isKept[found->place] = true;
        if (old && old->note == note)
            continue;
        refuseUnless(note.createdAt.hasTextForm() && note.updatedAt.hasTextForm());
        NoteFile fresh;
        fresh.place = {Section::notes, NoteFileName::ofNote(note.id)};
        fresh.note = note;
        write(std::move(fresh), old);
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!isKept[i])
            m_removals.push_back(files[i].place);
    }
}

void SnapshotDifference::compareDrafts(const NoteSnapshot &snapshot, const KnownFolder *known)
{
    const NoteFile *capture = nullptr;
    FilesById left;
    for (const NoteFile &file : filesOf(known, Section::drafts)) {
        const FileNames::Owner owner = FileNames::parse(file.place.name.c_str());
        if (owner.isCapture)
            capture = &file;
        else if (owner.note)
            left.insert_or_assign(*owner.note, &file);
    }
    compareText({Section::drafts, NoteFileName(FileNames::capture)}, snapshot.captureDraft,
                capture);

    std::set<QUuid> withoutNote;
    const auto &drafts = snapshot.editingDrafts;
    for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
        // Two keys of one note would be two files, of which a load keeps one only.
        const std::optional<QUuid> id = parseId(QStringView(draft.key()));
        refuseUnless(id && withoutNote.insert(*id).second);
        const auto old = left.extract(*id);
        compareText({Section::drafts, NoteFileName(draft.key().toStdString() + ".md")},
                    draft.value(), old ? old.mapped() : nullptr);
    }
    for (auto note = snapshot.notes.begin(); !withoutNote.empty() && note != snapshot.notes.end();
         ++note)
        withoutNote.erase(note->id);
    refuseUnless(withoutNote.empty());
    for (const auto &[id, file] : left)
        m_removals.push_back(file->place);
}

void SnapshotDifference::compareText(const NoteFilePlace &place, const QString &text,
                                     const NoteFile *old)
{
    if (!old || old->note.body != text)
        write(textFile(place, text), old);
}

void SnapshotDifference::write(NoteFile file, const NoteFile *old)
{
    if (old && old->place != file.place)
        m_removals.push_back(old->place);
    m_writes.push_back(std::move(file));
}

void SnapshotDifference::encode(const std::filesystem::path &path)
{
    m_bytes.reserve(m_writes.size());
    for (NoteFile &file : m_writes)
        file.size = m_bytes.emplace_back(encodedFile(file, path)).size();
}

void SnapshotDifference::checkSize(const KnownFolder *known,
                                   const std::filesystem::path &path) const
{
    std::size_t size = known ? known->textSize() : 0;
    const auto lessOld = [&](const NoteFilePlace &place) {
        const NoteFile *old = known ? known->find(place) : nullptr;
        size -= old ? old->size : 0;
    };
    for (const NoteFilePlace &place : m_removals)
        lessOld(place);
    for (const NoteFile &file : m_writes) {
        lessOld(file.place);
        size += file.place.section == Section::marker ? 0 : file.size;
    }
    if (size > NoteFolder::mostBytes)
        throw FileError(path, Reason::tooMuchText);
}

void SnapshotDifference::list()
{
    m_places.reserve(m_writes.size() + m_removals.size());
    std::ranges::transform(m_writes, std::back_inserter(m_places), &NoteFile::place);
    m_places.insert(m_places.end(), m_removals.begin(), m_removals.end());
    std::ranges::sort(m_places);
    // From here on no place moves, so that its name may be pointed at.
    m_changes.reserve(m_places.size());
    for (const NoteFilePlace &place : m_places) {
        const auto write = std::ranges::lower_bound(m_writes, place, {}, &NoteFile::place);
        const bool isWritten = write != m_writes.end() && write->place == place;
        m_changes.push_back(
            {.folder = FileNames::ofSection(place.section),
             .name = place.name.c_str(),
             .bytes = isWritten ? std::optional<std::string_view>(
                                      m_bytes[static_cast<std::size_t>(write - m_writes.begin())])
                                : std::nullopt});
    }
}
