// SPDX-License-Identifier: MIT
#pragma once

#include <QUuid>
#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The parts of the Markdown folder, in the order in which they are read and fingerprinted.
enum class Section : std::uint8_t { marker, notes, drafts };

/// What everything in the data folder is called, and what the marker files say: made and parsed
/// here and nowhere else. docs/FORMAT.md shows it as a picture.
namespace FileNames {

/// The data folder, in the folder for the data of all programs.
inline constexpr const char *dataFolder = "Penwick";

/// In the data folder.
inline constexpr const char *olderNotes = "notes.json";
inline constexpr const char *markdownFolder = "Markdown";

/// What begins with these in the data folder is of passing use.
inline constexpr std::string_view stagePrefix = ".quillmark-stage-";
inline constexpr std::string_view recoveryPrefix = ".quillmark-recovery-";

/// Where older versions kept what was typed: one file for each draft.
inline constexpr std::string_view olderTypedPrefix = ".quillmark-typed-";

/// In the program's folder for its state: what was typed, for one data folder.
inline constexpr std::string_view journalPrefix = "typed-";

/// There, too: folders of what was taken out of a data folder.
inline constexpr std::string_view takenInPrefix = "taken-in-";

/// In the Markdown folder, with all that it holds.
inline constexpr const char *marker = ".format";
inline constexpr std::string_view markerContent = "Quillmark Markdown 1\n";

/// The draft of the capture screen, and its name without the extension.
inline constexpr std::string_view capture = "capture.md";
inline constexpr std::string_view captureStem = "capture";

/// The sub-folder of a section; empty for the marker, which lies in the Markdown folder itself.
[[nodiscard]] const char *ofSection(Section section) noexcept;

/// A name that nothing has yet: the prefix and a new random identifier.
[[nodiscard]] std::string fresh(std::string_view prefix);

/// True for "md" in either case after the last point, unless nothing stands before that point.
[[nodiscard]] bool isMarkdown(std::string_view name) noexcept;

/// True for what some editors call the link that says that they have changes for a file: ".#" and
/// the file's name.
[[nodiscard]] bool isEditorLock(std::string_view name) noexcept;

/// A Markdown file's name without its extension.
[[nodiscard]] std::string_view stem(std::string_view name) noexcept;

/// Whose text a Markdown file holds, by its name. With neither it is none of ours.
struct Owner {
    bool isCapture = false;
    std::optional<QUuid> note;
};

/// Extension and identifier may be of either case, "capture" may not.
[[nodiscard]] Owner parse(std::string_view name) noexcept;

} // namespace FileNames

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
