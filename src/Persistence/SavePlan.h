// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "NoteFolder.h"

#include <string>
#include <vector>

/// What has to be done to a Markdown folder so that it holds a snapshot.
///
/// A file whose bytes would be the ones last read or written is left alone: it keeps its inode and
/// its modification time.
class SavePlan {
public:
    /// Compares with what is known of the folder; null when there is none. The path names it in
    /// the fingerprint and in errors. Throws RepositoryError::invalidMarkdown for a snapshot that
    /// could not be read back, and a FileError for a text that no file can hold.
    SavePlan(const NoteSnapshot &snapshot, const FolderState *known, std::filesystem::path path);

    /// True when the folder holds the snapshot already.
    [[nodiscard]] bool isEmpty() const noexcept { return m_writes.empty() && m_removed.empty(); }

    /// Makes a stage, which holds the old files, hold the new ones.
    void apply(const std::filesystem::path &stage) const;

    /// Throws RepositoryError::externalChange when a file that was replaced or removed was not what
    /// it was known to be, so that another program's text would be lost with it.
    void checkReplaced(const std::filesystem::path &displaced) const;

    /// What will be known of the folder once the plan is carried out.
    [[nodiscard]] FolderState takeState() { return std::move(m_state); }

private:
    struct Write {
        NoteFilePlace place;
        std::string bytes;
    };

    void toBytes(const NoteFilePlace &place, QStringView text, std::string &bytes) const;
    void add(const NoteFilePlace &place, std::string_view bytes, const FolderState *known);
    void removeUnwanted(const Directory &folder, Section section) const;
    void write(const Directory &folder, Section section) const;
    [[nodiscard]] bool isWanted(Section section, std::string_view name) const;
    [[nodiscard]] std::filesystem::path fullPath(const NoteFilePlace &place) const;

    const std::filesystem::path m_path;
    FolderFingerprint m_fingerprint;
    Sha256 m_sha256;
    FolderState m_state;
    std::vector<Write> m_writes;

    /// As they were known: files that the snapshot has no more, and files that are rewritten.
    std::vector<NoteFile> m_removed;
    std::vector<NoteFile> m_rewritten;
};
