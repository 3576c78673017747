// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "LegacySnapshot.h"
#include "MarkdownTransaction.h"
#include "RepositoryError.h"
#include "SavePlan.h"
#include "SnapshotReader.h"

#include <QDir>
#include <QFile>
#include <cstdlib>
#include <utility>

namespace {

/// The older file holds all notes at once.
constexpr std::size_t largestLegacyFile = 4 * NoteFolder::largestFile;

std::filesystem::path userDataFolder()
{
    // By the XDG rules a relative path is no path at all.
    const char *given = std::getenv("XDG_DATA_HOME");
    if (given && std::filesystem::path(given).is_absolute())
        return given;
    // Qt's own answer is a text, which not every path is.
    const char *home = std::getenv("HOME");
    if (home && std::filesystem::path(home).is_absolute())
        return std::filesystem::path(home) / ".local/share";
    return std::filesystem::path(QFile::encodeName(QDir::homePath()).toStdString()) /
           ".local/share";
}

} // namespace

LocalNoteRepository::LocalNoteRepository(const std::filesystem::path &fileURL)
    : m_fileURL(std::filesystem::absolute(fileURL).lexically_normal())
    , m_typed(m_fileURL.parent_path())
{
}

std::filesystem::path LocalNoteRepository::defaultFileURL()
{
    return userDataFolder() / "Penwick" / "notes.json";
}

std::optional<QUrl> LocalNoteRepository::notesFolderURL() const
{
    const std::filesystem::path folder = collectionURL() / NoteFolder::sectionName(Section::notes);
    return QUrl::fromLocalFile(QFile::decodeName(folder.c_str()));
}

NoteSnapshot LocalNoteRepository::load()
{
    loadNotes();
    NoteSnapshot snapshot = m_saved;
    m_typed.restore(snapshot);
    return snapshot;
}

void LocalNoteRepository::loadNotes()
{
    MarkdownTransaction::checkRecovery(m_fileURL.parent_path());
    m_isOnDisk = false;
    if (const auto folder = NoteFolder::openIfExists(m_fileURL.parent_path())) {
        SnapshotReader reader(collectionURL());
        reader.read(*folder);
        // Another program may have put a whole new folder in its place and removed this one.
        if (!folder->isInPlace())
            throw RepositoryError::externalChange();
        m_saved = reader.takeSnapshot();
        m_state = reader.takeState();
    } else if (std::optional<NoteSnapshot> legacy = readLegacySnapshot()) {
        write(*legacy);
    } else {
        m_saved = {};
        m_state.reset();
    }
    m_isLoaded = true;
}

void LocalNoteRepository::save(const NoteSnapshot &snapshot)
{
    if (snapshot.version != NoteSnapshot::currentVersion)
        throw RepositoryError::unsupportedVersion(snapshot.version);
    if (!m_isLoaded)
        loadNotes();
    write(snapshot);
    m_typed.forget();
}

void LocalNoteRepository::keepTyped(const NoteSnapshot &snapshot)
{
    m_typed.keep(snapshot, m_saved);
}

std::optional<NoteSnapshot> LocalNoteRepository::readLegacySnapshot() const
{
    const auto folder = Directory::openIfExists(m_fileURL.parent_path());
    if (!folder || !folder->status(m_fileURL.filename().c_str()))
        return std::nullopt;
    std::string bytes;
    folder->readFile(m_fileURL.filename().c_str(), largestLegacyFile, bytes);
    return decodeLegacySnapshot(
        QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

void LocalNoteRepository::write(const NoteSnapshot &snapshot)
{
    SavePlan plan(snapshot, m_state ? &*m_state : nullptr, collectionURL());
    if (m_state && plan.isEmpty()) {
        // The folder that the exchange would put in place is the one that is there.
        MarkdownTransaction::checkRecovery(m_fileURL.parent_path());
        refuseExternalChange(plan);
        // What was loaded may be of a program that ended before it could sync its last step.
        if (!std::exchange(m_isOnDisk, true))
            Directory::open(m_fileURL.parent_path()).sync();
        return;
    }
    MarkdownTransaction::replace(
        collectionURL(), [&](const std::filesystem::path &stage) { plan.apply(stage); },
        [&] { refuseExternalChange(plan); },
        [&](const std::filesystem::path &displaced) { plan.checkReplaced(displaced); });
    m_state = plan.takeState();
    m_saved = snapshot;
    m_isOnDisk = true;
}

void LocalNoteRepository::refuseExternalChange(SavePlan &plan) const
{
    const std::optional<Sha256::Digest> known =
        m_state ? std::optional(m_state->fingerprint) : std::nullopt;
    if (fingerprint(plan) != known)
        throw RepositoryError::externalChange();
    plan.seeNoMore();
}

std::optional<Sha256::Digest> LocalNoteRepository::fingerprint(SavePlan &plan) const
{
    const std::optional<NoteFolder> folder = NoteFolder::openIfExists(m_fileURL.parent_path());
    if (!folder)
        return std::nullopt;
    FolderFingerprint sum(collectionURL());
    folder->visit([&](Section section, std::string_view name, std::string_view bytes) {
        sum.add(section, name, bytes);
        plan.see(section, name, bytes);
    });
    return sum.finish();
}

std::filesystem::path LocalNoteRepository::collectionURL() const
{
    return m_fileURL.parent_path() / NoteFolder::folderName;
}
