// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "NoteFolder.h"
#include "Utf8.h"

#include <utility>

/// Builds the snapshot that a Markdown folder holds, and what is to be remembered of its files.
///
/// Throws RepositoryError::invalidMarkdown and FileErrors; the first file that is wrong ends the
/// whole reading.
class SnapshotReader {
public:
    /// The path names the folder in the fingerprint and in errors.
    explicit SnapshotReader(std::filesystem::path path);

    /// May be called once.
    void read(const NoteFolder &folder);

    [[nodiscard]] NoteSnapshot takeSnapshot() { return std::move(m_snapshot); }
    [[nodiscard]] FolderState takeState() { return std::move(m_state); }

private:
    [[nodiscard]] NoteFile readFile(Section section, std::string_view name, QStringView text);
    void readMarker(QStringView text) const;
    void readNote(NoteFile &file, std::string_view name, QStringView text);
    void rememberId(const QUuid &id);
    void collectNotes();
    void readDraft(std::string_view name, const QString &text);

    const std::filesystem::path m_path;
    NoteSnapshot m_snapshot;
    FolderState m_state;
    /// Of the notes that were read, ascending.
    std::vector<QUuid> m_ids;
    FolderFingerprint m_fingerprint;
    Utf8Decoder m_decoder;
    bool m_hasCaptureDraft = false;
};
