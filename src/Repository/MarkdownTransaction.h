// SPDX-License-Identifier: MIT
#pragma once

#include "FileTransaction.h"
#include "FolderTransaction.h"
#include "KnownFolder.h"
#include "SnapshotDifference.h"

#include <optional>

/// Brings a Markdown folder from what is known of it to a new state, as one step.
///
/// Begins by making sure that the folder is what is known, and by making the new content in a
/// hidden stage beside it: of one file, of the drafts, or of the whole folder, whichever is the
/// smallest that holds every change. Then it commits once, or is taken back by its destructor,
/// which neither throws nor allocates.
class MarkdownTransaction {
public:
    /// Throws RepositoryError::recoveryRequired about a recovery copy that lies in the data folder.
    static void checkRecovery(const Directory &data);

    /// Known is null while there is no Markdown folder; it learns new stamps. All arguments must
    /// outlive this. Throws RepositoryError::externalChange when the folder is not what is known,
    /// recoveryRequired, or a FileError; nothing has changed then.
    MarkdownTransaction(Directory data, KnownFolder *known, const SnapshotDifference &difference);
    MarkdownTransaction(const MarkdownTransaction &) = delete;
    MarkdownTransaction &operator=(const MarkdownTransaction &) = delete;

    /// Puts the folder on the disk as it was loaded: a program that ended before it could do so may
    /// have written it.
    void syncLoaded() const;

    /// False when another program did something in the folder meanwhile; then our own change is
    /// taken back, and a new transaction finds out what it was. Throws a FileError or
    /// RepositoryError::recoveryRequired. On success the new state is on the disk.
    [[nodiscard]] bool commit();

    /// After a commit: what is left to be removed.
    [[nodiscard]] std::optional<OldFolder> takeOldFolder() noexcept;

private:
    void begin();
    void beginFile();
    void beginDrafts();
    void beginFolder();
    void placeAt(const Directory &parent, const char *name);
    void check(Section section);
    void check(Section section, const FolderTree *tree);
    [[nodiscard]] bool areOldFilesSame();
    [[nodiscard]] bool areDraftedNotesThere() const;
    [[nodiscard]] bool isOldFileSame(const NoteFilePlace &place, const Directory &folder,
                                     const char *name) const;

    Directory m_data;
    KnownFolder *const m_known;
    const SnapshotDifference &m_difference;
    std::optional<NoteFolder> m_folder;
    std::optional<SwapPlace> m_place;

    /// Of the drafts alone, as changes of their folder.
    std::vector<FileChange> m_draftChanges;
    std::optional<FileTransaction> m_fileChange;
    std::optional<FolderTransaction> m_folderChange;
};
