// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QUuid>
#include <array>
#include <compare>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/// The parts of the Markdown folder, in the order in which they are read and fingerprinted.
enum class Section : std::uint8_t { marker, notes, drafts };

/// The name of a file that belongs to the notes. All of them are short and ASCII: an identifier or
/// "capture", and an extension, or the marker's name. Ordered byte for byte.
class NoteFileName {
public:
    NoteFileName() = default;

    /// The name must fit.
    explicit NoteFileName(std::string_view name);

    [[nodiscard]] static NoteFileName ofNote(const QUuid &id);

    /// False for what is longer than an identifier with its extension, and so none of the notes'.
    [[nodiscard]] static bool fits(std::string_view name) noexcept;

    [[nodiscard]] const char *c_str() const noexcept { return m_text.data(); }

    friend std::strong_ordering operator<=>(const NoteFileName &a, const NoteFileName &b) noexcept;
    friend bool operator==(const NoteFileName &a, const NoteFileName &b) noexcept = default;

private:
    std::array<char, 40> m_text{};
};

/// Where a file lies in the Markdown folder.
struct NoteFilePlace {
    Section section;
    NoteFileName name;

    friend auto operator<=>(const NoteFilePlace &, const NoteFilePlace &) = default;
};

/// A file as it was last read, was last written, or is to be written.
struct NoteFile {
    NoteFilePlace place;

    /// For any other section than the notes only the body counts: it is the file's whole text.
    Note note;

    /// Whether bytes() gives the file's bytes. A note that somebody wrote by hand may have its
    /// header in another order.
    bool isExact = true;

    /// Throws a FileError for a text that no file can hold; the folder's path is for the error.
    [[nodiscard]] std::string bytes(const std::filesystem::path &folder) const;
};

/// True for "md" in either case after the last point, unless nothing stands before that point.
[[nodiscard]] bool isMarkdownName(std::string_view name) noexcept;

/// A Markdown file's name without its extension.
[[nodiscard]] std::string_view stem(std::string_view name) noexcept;
