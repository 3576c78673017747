// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"
#include "FileNames.h"

#include <optional>

/// The Markdown folder on the disk, held open with its sections.
class NoteFolder {
public:
    /// A larger file is refused, when it is read and when it would be written.
    static constexpr std::size_t largestFile = 64UL * 1024 * 1024;

    /// More notes are refused likewise: a save of so many takes seconds, and nobody should wait.
    static constexpr std::size_t mostNotes = 100'000;

    /// And so are more bytes in all files together, since all of them are held in memory.
    static constexpr std::size_t mostBytes = 256UL * 1024 * 1024;

    /// Nothing when the data folder has no folder of that name. Throws a FileError for one that is
    /// another disk, is no folder, or lacks "Notes". Without "Drafts" there are no drafts: who
    /// carries notes from one computer to another may leave them out.
    [[nodiscard]] static std::optional<NoteFolder>
    openIfExists(const Directory &data, const char *name = FileNames::markdownFolder);

    /// The same, but nothing instead of a FileError.
    [[nodiscard]] static std::optional<NoteFolder> openIfUsable(const Directory &data);

    [[nodiscard]] const Directory &directory() const noexcept { return m_markdown; }

    /// Of a section that there is.
    [[nodiscard]] const Directory &directory(Section section) const noexcept;
    [[nodiscard]] bool has(Section section) const noexcept;

    /// Makes the folder of the drafts where there is none. Throws a FileError.
    void makeDrafts();

    /// Throws RepositoryError::invalidMarkdown about the marker of another format, or a FileError.
    void checkMarker() const;

    /// A file of one section as it was found, and its bytes. All of it lives as long as one visit.
    struct File {
        Section section;
        const char *name;
        FileStatus status;
        std::string_view bytes;
    };

    /// Is told what a visit finds.
    class Visitor {
    public:
        /// In advance, how many Markdown files a section has.
        virtual void expect(std::size_t fileCount) = 0;

        /// An entry of a section that has not the name of a Markdown file.
        virtual void passOver(const char *name, FileKind kind) = 0;
        virtual void see(const File &file) = 0;

    protected:
        ~Visitor() = default;
    };

    /// Why an entry is refused that has the name of a Markdown file and is no regular one.
    [[nodiscard]] static Failure refusal(const char *name, FileKind kind) noexcept;

    /// Reads the marker, then each Markdown file of "Notes", then of "Drafts", by ascending name:
    /// each once, and each in whole before the next. Throws a FileError that names the first file
    /// that is not a regular one or cannot be read, or the folder that holds more than it may.
    void visit(Visitor &visitor) const;

    /// False when another folder has taken its place in the data folder since it was opened.
    [[nodiscard]] bool isIn(const Directory &data) const;

    /// False when another folder has taken the place of a section since it was opened.
    [[nodiscard]] bool holds(Section section) const;

    /// Closes its folders to all but their owner. Folders of somebody else stay as they are.
    void closeToOthers() const noexcept;

    /// Has those who watch the data folder hear of a change inside. Programs that watch every
    /// folder by itself go on watching the old ones, wherever they are, after others took their
    /// places.
    void announceChange() const noexcept;

    /// Puts what its folders hold on the disk, not the content of the files. Throws a FileError.
    void sync() const;

    /// Gives up one of its folders.
    [[nodiscard]] Directory takeDirectory(Section section) noexcept
    {
        return std::move(const_cast<Directory &>(directory(section)));
    }

private:
    NoteFolder(Directory markdown, Directory notes, std::optional<Directory> drafts) noexcept
        : m_markdown(std::move(markdown))
        , m_notes(std::move(notes))
        , m_drafts(std::move(drafts))
    {
    }

    Directory m_markdown;
    Directory m_notes;
    std::optional<Directory> m_drafts;
};
