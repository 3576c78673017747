// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "NoteFile.h"
#include "NoteFolder.h"
#include "Utf8.h"

#include <cstdint>
#include <utility>
#include <vector>

/// Builds the snapshot that a Markdown folder holds, and what is to be remembered of its files.
///
/// Throws RepositoryError::invalidMarkdown about a file, and FileErrors; the first file that is
/// wrong ends the whole reading.
class SnapshotReader final : private NoteFolder::Visitor {
public:
    /// May be called once.
    void read(const NoteFolder &folder);

    [[nodiscard]] NoteSnapshot takeSnapshot() { return std::move(m_snapshot); }

    /// Every file, ordered by its place.
    [[nodiscard]] std::vector<NoteFile> takeFiles() { return std::move(m_files); }

    /// Whether there are conflict copies of notes or drafts that are no Markdown files by their
    /// names, and so were passed over.
    [[nodiscard]] bool hasCopies() const noexcept { return m_hasCopies; }

private:
    void expect(std::size_t fileCount) override;
    void passOver(const char *name, FileKind kind) override;
    void see(const NoteFolder::File &found) override;
    void readFile(NoteFile &file, const NoteFolder::File &found, QStringView text);
    [[noreturn]] void refuse(const NoteFolder::File &file) const;
    void readMarker(const NoteFolder::File &found, QStringView text) const;
    void readNote(NoteFile &file, const NoteFolder::File &found, QStringView text);
    void rememberId(const QUuid &id, const NoteFolder::File &found);
    void collectNotes();
    void readDraft(const NoteFolder::File &found, const QString &text);

    NoteSnapshot m_snapshot;
    std::vector<NoteFile> m_files;
    /// Of the notes that were read, ascending.
    std::vector<QUuid> m_ids;
    Utf8Decoder m_decoder;
    bool m_hasCaptureDraft = false;
    bool m_hasCopies = false;

    /// The folder that is being read, since when, and whether its files tell of every change.
    const NoteFolder *m_folder = nullptr;
    std::int64_t m_begin = 0;
    bool m_hasReliableTimes = false;
};
