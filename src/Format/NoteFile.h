// SPDX-License-Identifier: MIT
#pragma once

#include "FileNames.h"
#include "FileStamp.h"
#include "Note.h"
#include "Sha256.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// A file of the notes as it was last read or written. Texts are shared with the snapshot that they
/// belong to, and stand for the file's bytes, too, where these are what Quillmark would write.
struct NoteFile {
    NoteFilePlace place;

    /// For any other section than the notes only the body counts: it is the file's whole text.
    Note note;

    /// In bytes.
    std::size_t size = 0;
    FileStamp stamp;

    /// Of a note that another program wrote in its own way, as the format allows.
    std::optional<Sha256Digest> foreignBytes;

    /// Whether a file with these bytes is still the one that was read or written.
    [[nodiscard]] bool isWrittenAs(std::string_view bytes) const;
};

/// The bytes of a note or, in the other sections, of a text. Throws a FileError for what no file
/// can hold; the path of the Markdown folder is for the error.
[[nodiscard]] std::string encodedFile(const NoteFile &file, const std::filesystem::path &folder);
