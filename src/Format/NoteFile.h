// SPDX-License-Identifier: MIT
#pragma once

#include "FileNames.h"
#include "FileStamp.h"
#include "Note.h"
#include "Sha256.h"

#include <filesystem>
#include <string>

/// A file of the notes as it was last read or written. Texts are shared with the snapshot that they
/// belong to.
struct NoteFile {
    NoteFilePlace place;

    /// For any other section than the notes only the body counts: it is the file's whole text.
    Note note;

    /// Of its bytes, which need not be the ones that Quillmark would write.
    Sha256::Digest digest{};
    std::size_t size = 0;
    FileStamp stamp;
};

/// The bytes of a note or, in the other sections, of a text. Throws a FileError for what no file
/// can hold; the path of the Markdown folder is for the error.
[[nodiscard]] std::string encodedFile(const NoteFile &file, const std::filesystem::path &folder);
