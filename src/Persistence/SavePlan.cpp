// SPDX-License-Identifier: MIT
#include "SavePlan.h"

#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "RepositoryError.h"
#include "Utf8.h"

#include <QSet>
#include <algorithm>
#include <span>
#include <utility>

namespace {

/// One file of the new content: a note, or else a text that is written as it is.
struct WantedFile {
    NoteFilePlace place;
    const Note *note;
    const QString *text;
};

NoteFileName fileName(const QString &stem)
{
    return NoteFileName(stem.toLatin1().toStdString() + ".md");
}

/// The notes by their file names. Whatever is written must be readable again, or the next start
/// would be locked out.
std::vector<WantedFile> noteFiles(const NoteSnapshot &snapshot)
{
    std::vector<WantedFile> files;
    files.reserve(static_cast<std::size_t>(snapshot.notes.size()));
    for (const Note &note : snapshot.notes) {
        if (!note.createdAt.hasTextForm() || !note.updatedAt.hasTextForm())
            throw RepositoryError::invalidMarkdown();
        files.push_back({{Section::notes, fileName(canonicalText(note.id))}, &note, nullptr});
    }
    std::ranges::sort(files, {}, &WantedFile::place);
    if (std::ranges::adjacent_find(files, {}, &WantedFile::place) != files.end())
        throw RepositoryError::invalidMarkdown();
    return files;
}

std::vector<WantedFile> draftFiles(const NoteSnapshot &snapshot,
                                   const std::vector<WantedFile> &notes)
{
    std::vector<WantedFile> files;
    files.push_back({{Section::drafts, NoteFileName(NoteFolder::captureName)},
                     nullptr,
                     &snapshot.captureDraft});
    QSet<QUuid> drafted;
    const auto &drafts = snapshot.editingDrafts;
    for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
        // Two keys of one note would be two files, of which a load keeps one only.
        const std::optional<QUuid> id = parseId(QStringView(draft.key()));
        if (!id || drafted.contains(*id))
            throw RepositoryError::invalidMarkdown();
        drafted.insert(*id);
        const NoteFilePlace note{Section::notes, fileName(canonicalText(*id))};
        if (!std::ranges::binary_search(notes, note, {}, &WantedFile::place))
            throw RepositoryError::invalidMarkdown();
        files.push_back({{Section::drafts, fileName(draft.key())}, nullptr, &draft.value()});
    }
    std::ranges::sort(files, {}, &WantedFile::place);
    return files;
}

/// Ordered by their places.
std::span<const NoteFile> knownFiles(const FolderState *known)
{
    return known ? std::span(known->files) : std::span<const NoteFile>();
}

const NoteFile *find(std::span<const NoteFile> files, const NoteFilePlace &place)
{
    const auto found = std::ranges::lower_bound(files, place, {}, &NoteFile::place);
    return found != files.end() && found->place == place ? &*found : nullptr;
}

} // namespace

SavePlan::SavePlan(const NoteSnapshot &snapshot, const FolderState *known,
                   std::filesystem::path path)
    : m_path(std::move(path))
    , m_fingerprint(m_path)
{
    const std::vector<WantedFile> notes = noteFiles(snapshot);
    const std::vector<WantedFile> drafts = draftFiles(snapshot, notes);
    m_state.files.reserve(notes.size() + drafts.size() + 1);

    add({Section::marker, NoteFileName(NoteFolder::markerName)}, NoteFolder::marker, known);
    std::string bytes;
    for (const WantedFile &file : notes) {
        toBytes(file.place, NoteMarkdownCodec::encode(*file.note), bytes);
        add(file.place, bytes, known);
    }
    for (const WantedFile &file : drafts) {
        toBytes(file.place, *file.text, bytes);
        add(file.place, bytes, known);
    }
    m_state.fingerprint = m_fingerprint.finish();

    for (const NoteFile &file : knownFiles(known)) {
        if (!find(m_state.files, file.place))
            m_removed.push_back(file);
    }
}

void SavePlan::toBytes(const NoteFilePlace &place, QStringView text, std::string &bytes) const
{
    if (!encodeUtf8(text, bytes))
        throw FileError(fullPath(place), FileError::Reason::notUnicode);
    if (bytes.size() > NoteFolder::largestFile)
        throw FileError(fullPath(place), FileError::Reason::tooLarge);
}

void SavePlan::add(const NoteFilePlace &place, std::string_view bytes, const FolderState *known)
{
    const ContentDigest content = contentDigest(m_sha256, bytes);
    m_fingerprint.add(place.section, place.name.c_str(), bytes);
    m_state.files.push_back({place, content});

    const NoteFile *before = find(knownFiles(known), place);
    if (before && before->content == content)
        return;
    m_writes.push_back({place, std::string(bytes)});
    if (before)
        m_rewritten.push_back(*before);
}

void SavePlan::apply(const std::filesystem::path &stage) const
{
    // Shown to the user as what it is about to be.
    Directory folder = Directory::open(stage);
    folder.showAs(m_path);
    write(folder, Section::marker);
    for (const Section section : {Section::notes, Section::drafts}) {
        const Directory files = folder.openOrMakeFolder(NoteFolder::sectionName(section));
        removeUnwanted(files, section);
        write(files, section);
    }
}

void SavePlan::removeUnwanted(const Directory &folder, Section section) const
{
    const DirectoryListing listing = NoteFolder::markdownFiles(folder);
    for (const DirectoryListing::Entry &entry : listing.entries()) {
        const char *name = listing.name(entry);
        if (!isWanted(section, name))
            folder.remove(name);
    }
}

bool SavePlan::isWanted(Section section, std::string_view name) const
{
    return NoteFileName::fits(name) && find(m_state.files, {section, NoteFileName(name)});
}

void SavePlan::write(const Directory &folder, Section section) const
{
    for (const Write &file : m_writes) {
        if (file.place.section == section)
            folder.replaceFile(file.place.name.c_str(), file.bytes);
    }
}

void SavePlan::checkReplaced(const std::filesystem::path &displaced) const
{
    Directory folder = Directory::open(displaced);
    folder.showAs(m_path);
    Sha256 sha256;
    std::string bytes;
    for (const auto *files : {&m_rewritten, &m_removed}) {
        for (const NoteFile &file : *files) {
            const char *section = NoteFolder::sectionName(file.place.section);
            folder.openFolder(section).readFile(file.place.name.c_str(), NoteFolder::largestFile,
                                                bytes);
            if (contentDigest(sha256, bytes) != file.content)
                throw RepositoryError::externalChange();
        }
    }
}

std::filesystem::path SavePlan::fullPath(const NoteFilePlace &place) const
{
    return m_path / NoteFolder::sectionName(place.section) / place.name.c_str();
}
