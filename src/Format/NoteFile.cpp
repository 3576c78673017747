// SPDX-License-Identifier: MIT
#include "NoteFile.h"

#include "FileError.h"
#include "NoteFolder.h"
#include "NoteMarkdownCodec.h"
#include "Utf8.h"

std::string encodedFile(const NoteFile &file, const std::filesystem::path &folder)
{
    const NoteFilePlace &place = file.place;
    const auto refuse = [&](Reason reason) {
        throw FileError(folder / FileNames::ofSection(place.section) / place.name.c_str(), reason);
    };
    std::string bytes;
    const bool isNote = place.section == Section::notes;
    if (!encodeUtf8(isNote ? NoteMarkdownCodec::encode(file.note) : file.note.body, bytes))
        refuse(Reason::notUnicode);
    if (bytes.size() > NoteFolder::largestFile)
        refuse(Reason::tooLarge);
    return bytes;
}
