// SPDX-License-Identifier: MIT
#pragma once

#include "FolderLock.h"
#include "KnownFolder.h"
#include "NoteRepository.h"
#include "OldFolder.h"
#include "TypingJournal.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

/// The notes as a folder of Markdown files; docs/FORMAT.md describes it whole.
///
/// Lives on one thread. Refuses to overwrite what another program changed since the last load or
/// save, and goes on refusing until load() or reload() is called.
class LocalNoteRepository final : public NoteRepository {
public:
    using Folders = std::vector<std::filesystem::path>;

    /// On the real disk. The folder that holds the file is the data folder. What was typed is kept
    /// in the first of the journal folders that takes it. Touches no file.
    explicit LocalNoteRepository(const std::filesystem::path &fileURL = defaultFileURL(),
                                 Folders journalFolders = defaultJournalFolders());

    /// The disk must outlive this.
    LocalNoteRepository(const std::filesystem::path &fileURL, Disk &disk,
                        Folders journalFolders = {});

    /// Finishes what tidy() would have done yet, but for reading.
    ~LocalNoteRepository() override;

    /// "Penwick/notes.json" in the user's data folder (XDG_DATA_HOME, when it is absolute).
    [[nodiscard]] static std::filesystem::path defaultFileURL();

    /// "Penwick" in the user's folder for the state of programs (XDG_STATE_HOME, when it is
    /// absolute), and in that for the time of the session (XDG_RUNTIME_DIR), where there is one.
    [[nodiscard]] static Folders defaultJournalFolders();

    /// Keeps the data folder, when there is one, for this program alone. False when another has it
    /// all that time: who adds a single note does so for some milliseconds. A save does so itself,
    /// and throws a FileError of Reason::inUse then; a load does not, since it needs no more than
    /// to read.
    [[nodiscard]] bool claim(std::chrono::milliseconds most = {});

    [[nodiscard]] std::optional<QUrl> notesFolderURL() const override;

    /// Reads the Markdown folder, or migrates the older JSON file, or finds nothing.
    [[nodiscard]] NoteSnapshot load() override;

    /// Looks at every file's stamp, and reads those that do not fit.
    [[nodiscard]] bool isChangedOutside() override;
    [[nodiscard]] NoteSnapshot reload(const NoteSnapshot &typed) override;
    void save(const NoteSnapshot &snapshot) override;
    [[nodiscard]] bool hasCopies() const override { return m_hasCopies; }

    /// The originals go to a dated folder in the first of the journal folders.
    [[nodiscard]] TakeInPlan planTakeIn() override;
    [[nodiscard]] std::filesystem::path takeIn(const TakeInPlan &shown) override;

    /// What load() would answer of stored notes, for who only looks: older notes are not moved,
    /// typed text is left where it is, and nothing is remembered. Beside another program that saves
    /// it may throw for a state that is over at once.
    [[nodiscard]] NoteSnapshot read() const;

    /// Removes the folder that a save replaced; then reads again the files whose times changed with
    /// their links, so that the next save need not.
    [[nodiscard]] std::optional<std::chrono::milliseconds>
    tidy(std::chrono::milliseconds most) override;
    void keepTyped(const NoteSnapshot &snapshot, const QUuid &captureId) override;
    void syncTyped() override { m_typed.sync(); }
    [[nodiscard]] bool hasRestored() const override { return m_typed.hasRestored(); }
    [[nodiscard]] std::optional<QUuid> captureId() const override { return m_typed.captureId(); }
    [[nodiscard]] std::optional<std::filesystem::path> typedPath() const override
    {
        return m_typed.path();
    }
    [[nodiscard]] std::optional<Message> leftAlone() const override;

private:
    [[nodiscard]] Directory openClaimed();
    [[nodiscard]] std::optional<Directory> openToRead() const;
    void loadNotes();
    [[nodiscard]] std::optional<NoteSnapshot> readLegacySnapshot(const Directory &data) const;
    void write(const NoteSnapshot &snapshot, const NoteSnapshot &last, KnownFolder *known);
    [[nodiscard]] bool tryToWrite(const NoteSnapshot &snapshot,
                                  const SnapshotDifference &difference, KnownFolder *known);
    void removeOldFolders(KnownFolder::Deadline deadline);
    void learnStamps(KnownFolder::Deadline deadline);
    [[nodiscard]] std::filesystem::path dataURL() const { return m_fileURL.parent_path(); }
    [[nodiscard]] std::filesystem::path collectionURL() const;

    const std::unique_ptr<Disk> m_systemDisk;
    Disk &m_disk;
    const std::filesystem::path m_fileURL;
    const std::filesystem::path m_stateFolder;
    FolderLock m_lock;
    bool m_isLoaded = false;

    /// As it was last loaded or saved; its texts are shared with what is known of the files.
    NoteSnapshot m_saved;
    TypingJournal m_typed;
    bool m_hasCopies = false;

    /// False as long as only memory may know of the folder that was loaded.
    bool m_isOnDisk = false;

    /// Absent while there is no Markdown folder.
    std::optional<KnownFolder> m_known;

    /// What saves have replaced and tidy() has not removed yet.
    std::vector<OldFolder> m_oldFolders;

    /// The place from which on files are to be read again; absent when all are known.
    std::optional<std::size_t> m_unread;
    bool m_hasSettled = false;
};
