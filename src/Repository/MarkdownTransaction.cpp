// SPDX-License-Identifier: MIT
#include "MarkdownTransaction.h"

#include "RecoveryName.h"
#include "RepositoryError.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::array<const char *, 2> sectionFolders{"Notes", "Drafts"};

/// All that the notes consist of.
bool isOfNotes(std::string_view folder, std::string_view name) noexcept
{
    if (folder.empty())
        return name == FileNames::marker || std::ranges::count(sectionFolders, name) != 0;
    return std::ranges::count(sectionFolders, folder) != 0 && FileNames::isMarkdown(name);
}

bool isOfDrafts(std::string_view folder, std::string_view name) noexcept
{
    return folder.empty() && FileNames::isMarkdown(name);
}

class RecoveryCopyFinder final : public ListingVisitor {
public:
    void visit(ino_t /*inode*/, FileKind /*kind*/, const char *name) override
    {
        if (std::string_view(name).starts_with(FileNames::recoveryPrefix) &&
            (m_name.empty() || name < m_name))
            m_name = name;
    }

    /// The first one's name; empty when there is none.
    [[nodiscard]] const std::string &name() const noexcept { return m_name; }

private:
    std::string m_name;
};

void refuseUnlessSame(bool isSame)
{
    if (!isSame)
        throw RepositoryError::externalChange();
}

} // namespace

void MarkdownTransaction::checkRecovery(const Directory &data)
{
    RecoveryCopyFinder finder;
    data.orThrow(uninterrupted([&] { return data.disk().list(data.handle(), finder); }));
    if (!finder.name().empty())
        throw RepositoryError::recoveryRequired().about(data.path() / finder.name());
}

MarkdownTransaction::MarkdownTransaction(Directory data, KnownFolder *known,
                                         const SnapshotDifference &difference)
    : m_data(std::move(data))
    , m_known(known)
    , m_difference(difference)
{
    checkRecovery(m_data);
    m_folder = NoteFolder::openIfExists(m_data);
    refuseUnlessSame(m_folder.has_value() == (known != nullptr));
    if (m_folder)
        refuseUnlessSame(known->isMarkerStill(*m_folder));
    if (m_folder && !difference.places().empty())
        m_folder->makeDrafts();
    begin();
}

void MarkdownTransaction::begin()
{
    const std::vector<NoteFilePlace> &places = m_difference.places();
    const bool isDraftsAlone = std::ranges::all_of(
        places, [](Section section) { return section == Section::drafts; },
        &NoteFilePlace::section);
    if (!m_folder || (places.size() > 1 && !isDraftsAlone)) {
        beginFolder();
        return;
    }
    check(Section::notes);
    if (places.size() > 1) {
        beginDrafts();
        return;
    }
    check(Section::drafts);
    if (!places.empty())
        beginFile();
}

void MarkdownTransaction::check(Section section)
{
    refuseUnlessSame(m_known->isStill(*m_folder, section));
}

void MarkdownTransaction::check(Section section, const FolderTree *tree)
{
    refuseUnlessSame(tree && m_known->isStill(*m_folder, section, tree->listing()));
}

void MarkdownTransaction::placeAt(const Directory &parent, const char *name)
{
    m_place.emplace(SwapPlace{.parent = parent,
                              .hidden = m_data,
                              .live = name,
                              .stage = FileNames::fresh(FileNames::stagePrefix),
                              .recovery = RecoveryName::fresh(m_data.path())});
}

void MarkdownTransaction::beginFile()
{
    const NoteFilePlace &place = m_difference.places().front();
    const FileChange &change = m_difference.changes().front();
    const Directory &folder = m_folder->directory(place.section);
    std::optional<FileStatus> old;
    if (m_known->find(place)) {
        const Result<FileStatus> status = folder.status(change.name);
        refuseUnlessSame(status || !status.failure().is(ENOENT));
        old = folder.orThrow(status, change.name);
    }
    placeAt(folder, change.name);
    m_fileChange.emplace(*m_place, change.bytes, old);
}

void MarkdownTransaction::beginDrafts()
{
    const Directory &drafts = m_folder->directory(Section::drafts);
    FolderTree tree(drafts, &isOfDrafts);
    check(Section::drafts, &tree);
    m_draftChanges = m_difference.changes();
    for (FileChange &change : m_draftChanges)
        change.folder = "";
    placeAt(m_folder->directory(), FileNames::ofSection(Section::drafts));
    m_folderChange.emplace(*m_place, &drafts, std::move(tree), m_draftChanges,
                           std::span<const char *const>());
}

void MarkdownTransaction::beginFolder()
{
    const Directory *original = m_folder ? &m_folder->directory() : nullptr;
    FolderTree tree;
    if (original) {
        tree = FolderTree(*original, &isOfNotes);
        for (const Section section : {Section::notes, Section::drafts})
            check(section, tree.find(FileNames::ofSection(section)));
    } else {
        // An earlier try may have made the data folder and failed before that was on the disk.
        m_data.syncPath();
    }
    placeAt(m_data, FileNames::markdownFolder);
    m_folderChange.emplace(*m_place, original, std::move(tree), m_difference.changes(),
                           sectionFolders);
}

void MarkdownTransaction::syncLoaded() const
{
    m_data.orThrow(m_data.sync());
    m_folder->sync();
}

bool MarkdownTransaction::commit()
{
    bool isDone = true;
    if (m_fileChange) {
        isDone = m_fileChange->commit([this] {
            const NoteFilePlace &place = m_difference.places().front();
            return m_folder->isIn(m_data) && m_folder->holds(place.section) &&
                   areDraftedNotesThere() &&
                   isOldFileSame(place, m_data, m_place->recovery.c_str());
        });
    } else if (m_folderChange) {
        isDone = m_folderChange->commit([this] { return areOldFilesSame(); });
    }
    // What a whole new folder is made of was closed while it was made.
    if (isDone && m_place && &m_place->parent != &m_data)
        m_folder->closeToOthers();
    // A whole folder is heard of as it comes, and half thoughts concern this computer alone.
    if (isDone && m_fileChange && &m_place->parent == &m_folder->directory(Section::notes))
        m_folder->announceChange();
    return isDone;
}

bool MarkdownTransaction::areOldFilesSame()
{
    // Where the drafts alone are exchanged, the notes beside them are not, and another folder may
    // be in the place of the one that holds both.
    if (&m_place->parent != &m_data && !(m_folder->isIn(m_data) && areDraftedNotesThere()))
        return false;
    // The open folders are the old ones, whatever they are called by now.
    if (m_folderChange->hasCopies()) {
        for (const Section section : {Section::notes, Section::drafts})
            check(section);
    }
    return std::ranges::all_of(m_difference.places(), [this](const NoteFilePlace &place) {
        return isOldFileSame(place, m_folder->directory(place.section), place.name.c_str());
    });
}

bool MarkdownTransaction::areDraftedNotesThere() const
{
    // A draft without its note would lock out all notes.
    return std::ranges::all_of(m_difference.writes(), [this](const NoteFile &file) {
        const std::optional<QUuid> id = FileNames::parse(file.place.name.c_str()).note;
        if (file.place.section != Section::drafts || !id)
            return true;
        const std::span<const NoteFile> notes = m_known->files(Section::notes);
        const auto note =
            std::ranges::find(notes, *id, [](const NoteFile &known) { return known.note.id; });
        const Directory &folder = m_folder->directory(Section::notes);
        return note != notes.end() && bool(folder.status(note->place.name.c_str()));
    });
}

bool MarkdownTransaction::isOldFileSame(const NoteFilePlace &place, const Directory &folder,
                                        const char *name) const
{
    const NoteFile *file = m_known->find(place);
    return !file || KnownFolder::isContentStill(*file, folder, name);
}

std::optional<OldFolder> MarkdownTransaction::takeOldFolder() noexcept
{
    if (!m_folderChange || !m_folder)
        return std::nullopt;
    const Section section = &m_place->parent == &m_data ? Section::marker : Section::drafts;
    return m_folderChange->takeOldFolder(std::move(m_data), m_folder->takeDirectory(section),
                                         std::move(m_place->stage), std::move(m_place->recovery));
}
