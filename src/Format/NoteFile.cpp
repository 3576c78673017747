// SPDX-License-Identifier: MIT
#include "NoteFile.h"

#include "FileError.h"
#include "NoteFolder.h"
#include "NoteMarkdownCodec.h"
#include "Utf8.h"

namespace {

/// False for a text that is not Unicode.
bool encode(const NoteFile &file, std::string &bytes)
{
    const bool isNote = file.place.section == Section::notes;
    return encodeUtf8(isNote ? NoteMarkdownCodec::encode(file.note) : file.note.body, bytes);
}

} // namespace

bool NoteFile::isWrittenAs(std::string_view bytes) const
{
    if (bytes.size() != size)
        return false;
    if (foreignBytes)
        return sha256(bytes) == *foreignBytes;
    std::string own;
    return encode(*this, own) && own == bytes;
}

std::string encodedFile(const NoteFile &file, const std::filesystem::path &folder)
{
    const NoteFilePlace &place = file.place;
    const auto refuse = [&](Reason reason) {
        throw FileError(folder / FileNames::ofSection(place.section) / place.name.c_str(), reason);
    };
    std::string bytes;
    if (!encode(file, bytes))
        refuse(Reason::notUnicode);
    if (bytes.size() > NoteFolder::largestFile)
        refuse(Reason::tooLarge);
    return bytes;
}
