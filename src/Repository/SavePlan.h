// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "NoteFolder.h"

#include <string>
#include <utility>
#include <vector>

/// What has to be done to a Markdown folder so that it holds a snapshot.
///
/// A file whose bytes would be the ones last read or written is left alone: it keeps its inode and
/// its modification time.
class SavePlan {
public:
    /// Compares with what is known of the folder; null when there is none. The path names it in
    /// the fingerprint and in errors. Throws RepositoryError::invalidMarkdown for a snapshot that
    /// could not be read back, and a FileError for a text that no file can hold and for more notes
    /// than the folder may have.
    SavePlan(const NoteSnapshot &snapshot, const FolderState *known, std::filesystem::path path);

    /// True when the folder holds the snapshot already.
    [[nodiscard]] bool isEmpty() const noexcept { return m_writes.empty() && m_removals.empty(); }

    /// Makes a stage, which holds the old files, hold the new ones.
    void apply(const std::filesystem::path &stage) const;

    /// Takes in one file of the live folder. All have to be taken in, in the order of
    /// NoteFolder::visit().
    void see(Section section, std::string_view name, std::string_view bytes);

    /// To be called after the last of them and before the two calls below. Throws a FileError when
    /// the folder would hold more than it may.
    void seeNoMore();

    /// Throws RepositoryError::externalChange when a file that was replaced or removed is no longer
    /// what was seen, so that another program's text would be lost with it.
    void checkReplaced(const std::filesystem::path &displaced) const;

    /// What will be known of the folder once the plan is carried out.
    [[nodiscard]] FolderState takeState();

private:
    struct Write {
        NoteFilePlace place;
        std::string bytes;
    };

    struct Replaced {
        NoteFilePlace place;
        Sha256::Digest content;
    };

    void compare(const FolderState *known);
    void write(const Directory &folder, Section section) const;
    void remove(const Directory &folder, Section section) const;
    void addWritesBefore(const NoteFilePlace &place);
    void addWrite();
    void add(Section section, std::string_view name, std::string_view bytes);
    void remember(const NoteFilePlace &place, std::string_view bytes);

    const std::filesystem::path m_path;
    FolderState m_state;

    /// Both ordered by their places.
    std::vector<Write> m_writes;
    std::vector<NoteFilePlace> m_removals;

    /// The fingerprint that the folder will have, and the first write that is not in it yet.
    FolderFingerprint m_fingerprint;
    std::size_t m_nextWrite = 0;
    /// Of all files that are in it.
    std::size_t m_size = 0;
    std::vector<Replaced> m_replaced;
};
