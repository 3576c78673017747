// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "FileNames.h"
#include "FileUrl.h"
#include "LegacySnapshot.h"
#include "MarkdownTransaction.h"
#include "RepositoryError.h"
#include "SnapshotDifference.h"
#include "SnapshotMerge.h"
#include "SnapshotReader.h"
#include "SystemDisk.h"
#include "TakeIn.h"
#include "UserFolders.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace {

/// The older file holds all notes at once.
constexpr std::size_t largestLegacyFile = 4 * NoteFolder::largestFile;

/// How often a save is begun anew because another program is at work in the folder on files of its
/// own.
constexpr int mostTries = 20;

using namespace std::chrono_literals;

/// After this time the files that a save has linked can be given stamps.
constexpr auto settlingTime = std::chrono::ceil<std::chrono::milliseconds>(
                                  std::chrono::nanoseconds(FileStamp::settlingTime)) +
                              10ms;

/// How often it is looked whether another program has let go of the folder.
constexpr auto claimInterval = 5ms;

SnapshotReader readWhole(const NoteFolder &folder, const Directory &data)
{
    SnapshotReader reader;
    reader.read(folder);
    // Another program may have put a whole new folder in its place and removed this one.
    if (!folder.isIn(data))
        throw RepositoryError::externalChange();
    return reader;
}

std::filesystem::path firstOf(const LocalNoteRepository::Folders &folders)
{
    return folders.empty() ? std::filesystem::path() : folders.front();
}

} // namespace

LocalNoteRepository::LocalNoteRepository(const std::filesystem::path &fileURL,
                                         Folders journalFolders)
    : m_systemDisk(std::make_unique<SystemDisk>())
    , m_disk(*m_systemDisk)
    , m_fileURL(std::filesystem::absolute(fileURL).lexically_normal())
    , m_stateFolder(firstOf(journalFolders))
    , m_typed(m_disk, std::move(journalFolders), dataURL())
{
}

LocalNoteRepository::LocalNoteRepository(const std::filesystem::path &fileURL, Disk &disk,
                                         Folders journalFolders)
    : m_disk(disk)
    , m_fileURL(fileURL)
    , m_stateFolder(firstOf(journalFolders))
    , m_typed(m_disk, std::move(journalFolders), dataURL())
{
}

LocalNoteRepository::~LocalNoteRepository()
{
    for (OldFolder &folder : m_oldFolders)
        static_cast<void>(folder.remove(KnownFolder::Deadline::max()));
}

std::filesystem::path LocalNoteRepository::defaultFileURL()
{
    return userDataFolder() / FileNames::dataFolder / FileNames::olderNotes;
}

LocalNoteRepository::Folders LocalNoteRepository::defaultJournalFolders()
{
    Folders folders{userStateFolder() / FileNames::dataFolder};
    if (const auto session = sessionFolder())
        folders.push_back(*session / FileNames::dataFolder);
    return folders;
}

std::optional<QUrl> LocalNoteRepository::notesFolderURL() const
{
    const std::filesystem::path folder = collectionURL() / FileNames::ofSection(Section::notes);
    return fileUrl(folder);
}

bool LocalNoteRepository::claim(std::chrono::milliseconds most)
{
    const auto deadline = std::chrono::steady_clock::now() + most;
    const Result<Directory> data = Directory::open(m_disk, dataURL());
    bool isFree = !data || m_lock.take(*data);
    while (!isFree && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(claimInterval);
        isFree = m_lock.take(*data);
    }
    return isFree;
}

/// For writing: makes the data folder when there is none.
Directory LocalNoteRepository::openClaimed()
{
    Directory data = Directory::openOrMake(m_disk, dataURL());
    if (!m_lock.take(data))
        throw data.error(Failure::because(Reason::inUse));
    return data;
}

NoteSnapshot LocalNoteRepository::load()
{
    loadNotes();
    NoteSnapshot snapshot = m_saved;
    m_typed.restore(snapshot);
    return snapshot;
}

/// Nothing when there is no data folder.
std::optional<Directory> LocalNoteRepository::openToRead() const
{
    Result<Directory> data = Directory::open(m_disk, dataURL());
    if (!data && data.failure().is(ENOENT))
        return std::nullopt;
    if (!data)
        throw FileError(dataURL(), data.failure());
    MarkdownTransaction::checkRecovery(*data);
    return *std::move(data);
}

NoteSnapshot LocalNoteRepository::read() const
{
    const std::optional<Directory> data = openToRead();
    if (const auto folder = data ? NoteFolder::openIfExists(*data) : std::nullopt)
        return readWhole(*folder, *data).takeSnapshot();
    const auto legacy = data ? readLegacySnapshot(*data) : std::nullopt;
    return legacy.value_or(NoteSnapshot());
}

NoteSnapshot LocalNoteRepository::reload(const NoteSnapshot &typed)
{
    const NoteSnapshot last = m_saved;
    loadNotes();
    return merged(last, typed, m_saved);
}

bool LocalNoteRepository::isChangedOutside()
{
    const std::optional<Directory> data = openToRead();
    const auto folder = data ? NoteFolder::openIfExists(*data) : std::nullopt;
    if (!folder || !m_known)
        return folder.has_value() != m_known.has_value();
    return !m_known->isStill(*folder) || m_known->sawCopies() != m_hasCopies;
}

TakeInPlan LocalNoteRepository::planTakeIn()
{
    const Result<Directory> data = Directory::open(m_disk, dataURL());
    if (!data && data.failure().is(ENOENT))
        return {};
    TakeInPlan plan = TakeIn(openClaimed()).plan();
    plan.originals = m_stateFolder;
    return plan;
}

std::filesystem::path LocalNoteRepository::takeIn(const TakeInPlan &shown)
{
    const Directory data = openClaimed();
    TakeIn intake(data);
    if (intake.plan().steps != shown.steps)
        throw RepositoryError::externalChange();
    return intake.perform(m_stateFolder);
}

void LocalNoteRepository::loadNotes()
{
    const std::optional<Directory> data = openToRead();
    m_isOnDisk = false;
    m_hasCopies = false;
    m_unread.reset();
    if (const auto folder = data ? NoteFolder::openIfExists(*data) : std::nullopt) {
        SnapshotReader reader = readWhole(*folder, *data);
        m_saved = reader.takeSnapshot();
        m_known.emplace(reader.takeFiles());
        m_hasCopies = reader.hasCopies();
    } else {
        const auto legacy = data ? readLegacySnapshot(*data) : std::nullopt;
        if (legacy)
            write(*legacy, {}, nullptr);
        else
            m_known.reset();
        m_saved = legacy.value_or(NoteSnapshot());
    }
    m_isLoaded = true;
}

void LocalNoteRepository::save(const NoteSnapshot &snapshot)
{
    if (snapshot.version != NoteSnapshot::currentVersion)
        throw RepositoryError::unsupportedVersion(snapshot.version);
    if (!m_isLoaded)
        loadNotes();
    write(snapshot, m_saved, m_known ? &*m_known : nullptr);
    m_typed.forget();
}

void LocalNoteRepository::keepTyped(const NoteSnapshot &snapshot, const QUuid &captureId)
{
    // It is kept whatever becomes of the data folder, but not in the file of a program that has it.
    if (!claim())
        m_typed.separate();
    m_typed.keep(snapshot, m_saved, captureId);
}

std::optional<Message> LocalNoteRepository::leftAlone() const
{
    const std::optional<FileError> &error = m_typed.leftAlone();
    return error ? std::optional(error->message()) : std::nullopt;
}

std::optional<NoteSnapshot> LocalNoteRepository::readLegacySnapshot(const Directory &data) const
{
    const std::filesystem::path name = m_fileURL.filename();
    const Result<FileStatus> status = data.status(name.c_str());
    if (!status && status.failure().is(ENOENT))
        return std::nullopt;
    std::string bytes;
    data.orThrow(data.readFile(name.c_str(), largestLegacyFile, bytes), name.native());
    return decodeLegacySnapshot(
        QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())), m_fileURL);
}

void LocalNoteRepository::write(const NoteSnapshot &snapshot, const NoteSnapshot &last,
                                KnownFolder *known)
{
    SnapshotDifference difference(snapshot, last, known, collectionURL());
    // Whatever may fail for want of memory comes before the folder changes.
    KnownFolder first;
    KnownFolder &next = known ? *known : first;
    next.reserve(difference);
    m_oldFolders.reserve(m_oldFolders.size() + 1);
    bool isWritten = false;
    for (int i = 0; i < mostTries && !isWritten; ++i)
        isWritten = tryToWrite(snapshot, difference, known);
    if (!isWritten)
        throw FileError(collectionURL(), Reason::busy);

    next.apply(std::move(difference));
    if (!known)
        m_known = std::move(first);
    m_saved = snapshot;
    m_isOnDisk = true;
}

bool LocalNoteRepository::tryToWrite(const NoteSnapshot &snapshot,
                                     const SnapshotDifference &difference, KnownFolder *known)
{
    MarkdownTransaction transaction(openClaimed(), known, difference);
    if (known && !m_isOnDisk)
        transaction.syncLoaded();
    m_typed.prepareSave(snapshot, m_saved);
    if (!transaction.commit())
        return false;
    if (std::optional<OldFolder> old = transaction.takeOldFolder()) {
        m_oldFolders.push_back(std::move(*old));
        m_unread = 0;
        m_hasSettled = false;
    }
    return true;
}

std::optional<std::chrono::milliseconds> LocalNoteRepository::tidy(std::chrono::milliseconds most)
{
    const auto deadline = std::chrono::steady_clock::now() + most;
    if (!m_oldFolders.empty()) {
        removeOldFolders(deadline);
        return 0ms;
    }
    if (!m_unread)
        return std::nullopt;
    if (!std::exchange(m_hasSettled, true))
        return settlingTime;
    learnStamps(deadline);
    return m_unread ? std::optional(0ms) : std::nullopt;
}

void LocalNoteRepository::removeOldFolders(KnownFolder::Deadline deadline)
{
    // The oldest first: what replaced it may be the next.
    const OldFolder::Outcome outcome = m_oldFolders.front().remove(deadline);
    if (outcome == OldFolder::Outcome::more)
        return;
    const OldFolder folder = std::move(m_oldFolders.front());
    m_oldFolders.erase(m_oldFolders.begin());
    if (outcome == OldFolder::Outcome::needsAttention)
        throw RepositoryError::recoveryRequired().about(folder.recoveryCopy());
}

void LocalNoteRepository::learnStamps(KnownFolder::Deadline deadline)
{
    const std::size_t from = *std::exchange(m_unread, std::nullopt);
    const Result<Directory> data = Directory::open(m_disk, dataURL());
    const auto folder = data ? NoteFolder::openIfUsable(*data) : std::nullopt;
    if (folder && m_known)
        m_unread = m_known->learnStamps(*folder, from, deadline);
}

std::filesystem::path LocalNoteRepository::collectionURL() const
{
    return dataURL() / FileNames::markdownFolder;
}
