// SPDX-License-Identifier: MIT
#pragma once

#include "Sha256.h"

#include <QUuid>
#include <array>
#include <compare>
#include <cstdint>
#include <optional>
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

    /// False for what is longer than an identifier with its extension, and so none of the notes'.
    [[nodiscard]] static bool fits(std::string_view name) noexcept;

    [[nodiscard]] const char *c_str() const noexcept { return m_text.data(); }

    friend auto operator<=>(const NoteFileName &, const NoteFileName &) = default;

private:
    std::array<char, 40> m_text{};
};

/// Where a file lies in the Markdown folder.
struct NoteFilePlace {
    Section section;
    NoteFileName name;

    friend auto operator<=>(const NoteFilePlace &, const NoteFilePlace &) = default;
};

/// Half of a SHA-256, enough to tell one content from another.
using ContentDigest = std::array<unsigned char, 16>;

[[nodiscard]] ContentDigest contentDigest(Sha256 &sha256, std::string_view bytes);

/// A file as it was last read or written.
struct NoteFile {
    NoteFilePlace place;
    ContentDigest content;
};

/// True for "md" in either case after the last point, unless nothing stands before that point.
[[nodiscard]] bool isMarkdownName(std::string_view name) noexcept;

/// A Markdown file's name without its extension.
[[nodiscard]] std::string_view stem(std::string_view name) noexcept;

/// The identifier that the bytes spell, in either case.
[[nodiscard]] std::optional<QUuid> parseId(std::string_view bytes);
