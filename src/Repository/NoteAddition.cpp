// SPDX-License-Identifier: MIT
#include "NoteAddition.h"

#include "FileNames.h"
#include "FileTransaction.h"
#include "MarkdownTransaction.h"
#include "NoteFile.h"
#include "NoteFolder.h"
#include "RecoveryName.h"
#include "RepositoryError.h"

#include <algorithm>

namespace {

/// Listing and looking at so many files costs a millisecond.
constexpr std::size_t mostListed = 2'000;
constexpr std::size_t mostLookedAt = 500;

/// A longer text is worth a look at every file.
constexpr std::size_t shortText = 64 * 1024;

DirectoryListing markdownFiles(const Directory &notes)
{
    DirectoryListing listing = notes.orThrow(notes.list());
    listing.keepIf([&](const DirectoryListing::Entry &entry) {
        return FileNames::isMarkdown(listing.name(entry));
    });
    return listing;
}

/// More notes than there may be would all be refused by the next load.
void checkRoom(const NoteFolder &folder, std::size_t added)
{
    const Directory &notes = folder.directory(Section::notes);
    const std::optional<std::size_t> most = notes.disk().mostEntries(notes.handle());
    const bool isShort = added <= shortText;
    if (isShort && most && *most > mostListed && *most < NoteFolder::mostNotes)
        return;
    const DirectoryListing files = markdownFiles(notes);
    if (files.entries().size() >= NoteFolder::mostNotes)
        throw notes.error(Failure::because(Reason::tooManyNotes));
    if (isShort && files.entries().size() > mostLookedAt)
        return;
    std::size_t total = added;
    for (const DirectoryListing::Entry &file : files.entries()) {
        const Result<FileStatus> status = notes.status(files.name(file));
        total += status ? static_cast<std::size_t>(status->size) : 0;
    }
    if (total > NoteFolder::mostBytes)
        throw folder.directory().error(Failure::because(Reason::tooMuchText));
}

} // namespace

std::optional<std::filesystem::path> addNote(const Directory &data, const Note &note)
{
    MarkdownTransaction::checkRecovery(data);
    const std::optional<NoteFolder> folder = NoteFolder::openIfExists(data);
    if (!folder)
        return std::nullopt;
    folder->checkMarker();
    NoteFile file;
    file.place = {Section::notes, NoteFileName::ofNote(note.id)};
    file.note = note;
    const std::string bytes = encodedFile(file, folder->directory().path());
    checkRoom(*folder, bytes.size());

    const Directory &notes = folder->directory(Section::notes);
    const SwapPlace place{.parent = notes,
                          .hidden = data,
                          .live = file.place.name.c_str(),
                          .stage = FileNames::fresh(FileNames::stagePrefix),
                          .recovery = RecoveryName::fresh(data.path())};
    // A program that ended in the middle of a save may have left the folders to memory alone.
    data.orThrow(data.sync());
    folder->sync();
    FileTransaction transaction(place, bytes, std::nullopt);
    const bool isDone =
        transaction.commit([&] { return folder->isIn(data) && folder->holds(Section::notes); });
    if (!isDone)
        throw RepositoryError::externalChange();
    folder->closeToOthers();
    folder->announceChange();
    return notes.path() / place.live;
}
