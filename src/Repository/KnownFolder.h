// SPDX-License-Identifier: MIT
#pragma once

#include "DirectoryListing.h"
#include "NoteFile.h"
#include "NoteFolder.h"

#include <chrono>
#include <optional>
#include <span>
#include <vector>

class SnapshotDifference;

/// What a repository remembers of the Markdown folder as it last read or wrote it, and the answer
/// to whether the folder is still that.
///
/// A file whose stamp fits is not read again; any other is, and compared with what it was.
class KnownFolder {
public:
    KnownFolder() = default;

    /// The files are ordered by their places.
    explicit KnownFolder(std::vector<NoteFile> files) noexcept
        : m_files(std::move(files))
    {
    }

    /// Those of one section, by ascending name.
    [[nodiscard]] std::span<const NoteFile> files(Section section) const noexcept;

    /// Null when there is none at that place.
    [[nodiscard]] const NoteFile *find(const NoteFilePlace &place) const noexcept;

    /// Whether the whole folder is what is known. Learns new stamps on the way. Throws a FileError
    /// for what cannot be read.
    [[nodiscard]] bool isStill(const NoteFolder &folder);

    /// The same of one section.
    [[nodiscard]] bool isStill(const NoteFolder &folder, Section section);

    /// Whether the last isStill() of a whole folder that still is what is known came across copies
    /// of notes that are no Markdown files by their names.
    [[nodiscard]] bool sawCopies() const noexcept { return m_sawCopies; }

    /// Whether the marker is what is known.
    [[nodiscard]] bool isMarkerStill(const NoteFolder &folder);

    /// Whether a section holds the Markdown files that are known, and each is what it was. The
    /// listing is the section's, by ascending name. Learns new stamps on the way. Throws a
    /// FileError for what cannot be read.
    [[nodiscard]] bool isStill(const NoteFolder &folder, Section section,
                               const DirectoryListing &listing);

    /// Whether one file holds what is known of it, wherever it lies by now. Reads it. Throws.
    [[nodiscard]] static bool isContentStill(const NoteFile &file, const Directory &folder,
                                             const char *name);

    /// Reads the files again whose stamps do not fit, from one place on, to learn new stamps. Goes
    /// on until the deadline; the place to go on from, or nothing when that was all. What cannot be
    /// read or is not what it was just gets no stamp: the next save will see to it.
    using Deadline = std::chrono::steady_clock::time_point;
    [[nodiscard]] std::optional<std::size_t> learnStamps(const NoteFolder &folder, std::size_t from,
                                                         Deadline deadline);

    /// Makes room, so that apply() need not.
    void reserve(const SnapshotDifference &difference);

    /// Takes over what the difference wrote and removed. Room must have been made.
    void apply(SnapshotDifference &&difference) noexcept;

    /// Of all notes and drafts together, in bytes.
    [[nodiscard]] std::size_t textSize() const noexcept;

private:
    [[nodiscard]] std::span<NoteFile> filesOf(Section section) noexcept;
    static bool readAgain(NoteFile &file, const Directory &folder, bool hasReliableTimes);

    std::vector<NoteFile> m_files;
    bool m_sawCopies = false;
};
