// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"
#include "NoteFile.h"
#include "Sha256.h"

#include <functional>
#include <vector>

/// The Markdown folder on the disk, open for reading.
class NoteFolder {
public:
    static constexpr const char *folderName = "Markdown";
    static constexpr const char *markerName = ".format";
    static constexpr std::string_view marker = "Quillmark Markdown 1\n";
    static constexpr std::string_view captureName = "capture.md";

    /// A larger file is refused, when it is read and when it would be written.
    static constexpr std::size_t largestFile = 64UL * 1024 * 1024;

    /// More notes are refused likewise: a save of so many takes seconds, and nobody should wait.
    static constexpr std::size_t mostNotes = 100'000;

    /// And so are more bytes in all files together, since all of them are held in memory.
    static constexpr std::size_t mostBytes = 256UL * 1024 * 1024;

    /// Nothing when the data folder or its Markdown folder does not exist.
    [[nodiscard]] static std::optional<NoteFolder> openIfExists(const std::filesystem::path &data);

    /// The sub-folder of a section; empty for the marker, which lies in the folder itself.
    [[nodiscard]] static const char *sectionName(Section section) noexcept;

    using Visitor =
        std::function<void(Section section, std::string_view name, std::string_view bytes)>;

    /// Reads the marker, then each Markdown file of "Notes", then of "Drafts", by ascending name:
    /// each once, and each in whole before the next. Both views live as long as one visit. Throws a
    /// FileError that names the first file that is not a regular one or cannot be read, or the
    /// folder that holds more than it may. When given, expect is told the number of each section's
    /// files before they are read.
    void visit(const Visitor &visitor,
               const std::function<void(std::size_t fileCount)> &expect = nullptr) const;

    /// False when another folder has taken its place since it was opened.
    [[nodiscard]] bool isInPlace() const;

private:
    NoteFolder(Directory data, Directory directory)
        : m_data(std::move(data))
        , m_directory(std::move(directory))
    {
    }

    Directory m_data;
    Directory m_directory;
};

/// The SHA-256 over the full path and the content of every file that NoteFolder::visit() names, in
/// its order. Tells whether the folder is still what it was.
class FolderFingerprint {
public:
    explicit FolderFingerprint(const std::filesystem::path &folder);

    void add(Section section, std::string_view name, std::string_view bytes);
    [[nodiscard]] Sha256::Digest finish() { return m_sha256.finish(); }

private:
    std::array<std::string, 3> m_prefixes;
    std::string m_path;
    Sha256 m_sha256;
};

/// What a repository remembers of the folder as it last read or wrote it.
struct FolderState {
    Sha256::Digest fingerprint;

    /// Ordered by their places. The texts are shared with the snapshot that they belong to.
    std::vector<NoteFile> files;
};
