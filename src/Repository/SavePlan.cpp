// SPDX-License-Identifier: MIT
#include "SavePlan.h"

#include "NoteId.h"
#include "RepositoryError.h"

#include <QSet>
#include <algorithm>

namespace {

NoteFile textFile(Section section, std::string_view name, const QString &text)
{
    return {{section, NoteFileName(name)},
            {.id = {}, .body = text, .createdAt = {}, .updatedAt = {}}};
}

/// The notes by their file names. Whatever is written must be readable again, or the next start
/// would be locked out.
std::vector<NoteFile> noteFiles(const QList<Note> &notes)
{
    std::vector<NoteFile> files;
    files.reserve(static_cast<std::size_t>(notes.size()));
    for (const Note &note : notes) {
        if (!note.createdAt.hasTextForm() || !note.updatedAt.hasTextForm())
            throw RepositoryError::invalidMarkdown();
        files.push_back({{Section::notes, NoteFileName::ofNote(note.id)}, note});
    }
    std::ranges::sort(files, {}, &NoteFile::place);
    if (std::ranges::adjacent_find(files, {}, &NoteFile::place) != files.end())
        throw RepositoryError::invalidMarkdown();
    return files;
}

std::vector<NoteFile> draftFiles(const NoteSnapshot &snapshot, const std::vector<NoteFile> &notes)
{
    std::vector<NoteFile> files{
        textFile(Section::drafts, NoteFolder::captureName, snapshot.captureDraft)};
    QSet<QUuid> drafted;
    const auto &drafts = snapshot.editingDrafts;
    for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
        // Two keys of one note would be two files, of which a load keeps one only.
        const std::optional<QUuid> id = parseId(QStringView(draft.key()));
        if (!id || drafted.contains(*id))
            throw RepositoryError::invalidMarkdown();
        drafted.insert(*id);
        const NoteFilePlace note{Section::notes, NoteFileName::ofNote(*id)};
        if (!std::ranges::binary_search(notes, note, {}, &NoteFile::place))
            throw RepositoryError::invalidMarkdown();
        files.push_back(
            textFile(Section::drafts, draft.key().toStdString() + ".md", draft.value()));
    }
    std::ranges::sort(files, {}, &NoteFile::place);
    return files;
}

/// The folder may come from a time or a program that let others look in. What its owner may not do
/// stays as it is.
void closeToOthers(const Directory &folder)
{
    const mode_t mode = folder.ownStatus().st_mode & ALLPERMS;
    if ((mode & ~mode_t{S_IRWXU}) != 0)
        folder.setMode(mode & S_IRWXU);
}

bool isUnchanged(const NoteFile &known, const NoteFile &wanted)
{
    return known.isExact && known.note == wanted.note;
}

} // namespace

SavePlan::SavePlan(const NoteSnapshot &snapshot, const FolderState *known,
                   std::filesystem::path path)
    : m_path(std::move(path))
    , m_fingerprint(m_path)
{
    const std::vector<NoteFile> notes = noteFiles(snapshot.notes);
    if (notes.size() > NoteFolder::mostNotes)
        throw FileError(m_path / NoteFolder::sectionName(Section::notes), Reason::tooManyNotes);
    const std::vector<NoteFile> drafts = draftFiles(snapshot, notes);
    m_state.files.reserve(1 + notes.size() + drafts.size());
    m_state.files.push_back(
        textFile(Section::marker, NoteFolder::markerName, QString::fromUtf8(NoteFolder::marker)));
    m_state.files.insert(m_state.files.end(), notes.begin(), notes.end());
    m_state.files.insert(m_state.files.end(), drafts.begin(), drafts.end());
    compare(known);
}

void SavePlan::compare(const FolderState *known)
{
    static const std::vector<NoteFile> none;
    const std::vector<NoteFile> &before = known ? known->files : none;
    auto old = before.begin();
    for (const NoteFile &file : m_state.files) {
        for (; old != before.end() && old->place < file.place; ++old)
            m_removals.push_back(old->place);
        const bool isKnown = old != before.end() && old->place == file.place;
        if (!isKnown || !isUnchanged(*old, file))
            m_writes.push_back({file.place, file.bytes(m_path)});
        if (isKnown)
            ++old;
    }
    for (; old != before.end(); ++old)
        m_removals.push_back(old->place);
}

void SavePlan::apply(const std::filesystem::path &stage) const
{
    // Shown to the user as what it is about to be.
    Directory folder = Directory::open(stage);
    folder.showAs(m_path);
    closeToOthers(folder);
    write(folder, Section::marker);
    for (const Section section : {Section::notes, Section::drafts}) {
        const Directory files = folder.openOrMakeFolder(NoteFolder::sectionName(section));
        closeToOthers(files);
        remove(files, section);
        write(files, section);
    }
}

void SavePlan::remove(const Directory &folder, Section section) const
{
    for (const NoteFilePlace &place : m_removals) {
        // One that has gone already is another program's change, and seen as such.
        if (place.section == section &&
            !folder.tryRemove(place.name.c_str(), DirectoryListing::Kind::file) && errno != ENOENT)
            throw folder.error(place.name.c_str());
    }
}

void SavePlan::write(const Directory &folder, Section section) const
{
    for (const Write &file : m_writes) {
        if (file.place.section == section)
            folder.replaceFile(file.place.name.c_str(), file.bytes);
    }
}

void SavePlan::see(Section section, std::string_view name, std::string_view bytes)
{
    if (!NoteFileName::fits(name))
        return;
    const NoteFilePlace place{section, NoteFileName(name)};
    addWritesBefore(place);
    const bool isRewritten = m_nextWrite < m_writes.size() && m_writes[m_nextWrite].place == place;
    if (isRewritten)
        addWrite();
    if (isRewritten || std::ranges::binary_search(m_removals, place))
        remember(place, bytes);
    else
        add(section, name, bytes);
}

void SavePlan::seeNoMore()
{
    while (m_nextWrite < m_writes.size())
        addWrite();
    if (m_size > NoteFolder::mostBytes)
        throw FileError(m_path, Reason::tooMuchText);
}

void SavePlan::addWritesBefore(const NoteFilePlace &place)
{
    while (m_nextWrite < m_writes.size() && m_writes[m_nextWrite].place < place)
        addWrite();
}

void SavePlan::addWrite()
{
    const Write &file = m_writes[m_nextWrite++];
    add(file.place.section, file.place.name.c_str(), file.bytes);
}

void SavePlan::add(Section section, std::string_view name, std::string_view bytes)
{
    m_fingerprint.add(section, name, bytes);
    m_size += section == Section::marker ? 0 : bytes.size();
}

void SavePlan::remember(const NoteFilePlace &place, std::string_view bytes)
{
    Sha256 sha256;
    sha256.add(bytes);
    m_replaced.push_back({place, sha256.finish()});
}

void SavePlan::checkReplaced(const std::filesystem::path &displaced) const
{
    Directory folder = Directory::open(displaced);
    folder.showAs(m_path);
    std::string bytes;
    for (const Replaced &file : m_replaced) {
        const char *name = file.place.name.c_str();
        if (file.place.section == Section::marker)
            folder.readFile(name, NoteFolder::largestFile, bytes);
        else
            folder.openFolder(NoteFolder::sectionName(file.place.section))
                .readFile(name, NoteFolder::largestFile, bytes);
        Sha256 sha256;
        sha256.add(bytes);
        if (sha256.finish() != file.content)
            throw RepositoryError::externalChange();
    }
}

FolderState SavePlan::takeState()
{
    m_state.fingerprint = m_fingerprint.finish();
    return std::move(m_state);
}
