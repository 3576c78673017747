// SPDX-License-Identifier: MIT
#pragma once

#include "FileChange.h"
#include "KnownFolder.h"

#include <filesystem>
#include <string>
#include <vector>

/// Which files of a Markdown folder have to be written and removed so that it holds a snapshot.
///
/// A file whose text would be the one last read or written is left alone, however it is written or
/// called: it keeps its bytes and its inode.
class SnapshotDifference {
public:
    /// Compares with what is known of the folder, null when there is none; the last snapshot is
    /// what is known, as a snapshot. The path names the folder in errors. Throws
    /// RepositoryError::invalidMarkdown for a snapshot that could not be read back, and a FileError
    /// for a text that no file can hold and for more notes or bytes than the folder may have.
    SnapshotDifference(const NoteSnapshot &snapshot, const NoteSnapshot &last,
                       const KnownFolder *known, const std::filesystem::path &path);

    /// True when the folder holds the snapshot already.
    [[nodiscard]] bool isEmpty() const noexcept { return m_writes.empty() && m_removals.empty(); }

    /// Both by ascending place.
    [[nodiscard]] const std::vector<NoteFile> &writes() const noexcept { return m_writes; }
    [[nodiscard]] const std::vector<NoteFilePlace> &removals() const noexcept { return m_removals; }

    /// All of it, by ascending place. Valid as long as this.
    [[nodiscard]] const std::vector<FileChange> &changes() const noexcept { return m_changes; }

    /// The place of each change.
    [[nodiscard]] const std::vector<NoteFilePlace> &places() const noexcept { return m_places; }

    [[nodiscard]] std::vector<NoteFile> takeWrites() noexcept { return std::move(m_writes); }

private:
    void compareNotes(const NoteSnapshot &snapshot, const KnownFolder *known);
    void compareDrafts(const NoteSnapshot &snapshot, const KnownFolder *known);
    void compareText(const NoteFilePlace &place, const QString &text, const NoteFile *old);
    void write(NoteFile file, const NoteFile *old);
    void encode(const std::filesystem::path &path);
    void checkSize(const KnownFolder *known, const std::filesystem::path &path) const;
    void list();

    std::vector<NoteFile> m_writes;

    /// The content of each write.
    std::vector<std::string> m_bytes;
    std::vector<NoteFilePlace> m_removals;
    std::vector<NoteFilePlace> m_places;
    std::vector<FileChange> m_changes;
};
