// SPDX-License-Identifier: MIT
#include "NoteFile.h"

#include "FileError.h"
#include "NoteFolder.h"
#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "Utf8.h"

#include <algorithm>
#include <cstring>

NoteFileName::NoteFileName(std::string_view name)
{
    Q_ASSERT(fits(name));
    std::ranges::copy(name, m_text.begin());
}

NoteFileName NoteFileName::ofNote(const QUuid &id)
{
    return NoteFileName((canonicalText(id).toLatin1() + ".md").toStdString());
}

bool NoteFileName::fits(std::string_view name) noexcept
{
    return name.size() < sizeof(NoteFileName);
}

std::strong_ordering operator<=>(const NoteFileName &a, const NoteFileName &b) noexcept
{
    return std::memcmp(a.m_text.data(), b.m_text.data(), a.m_text.size()) <=> 0;
}

std::string NoteFile::bytes(const std::filesystem::path &folder) const
{
    const auto refuse = [&](Reason reason) {
        throw FileError(folder / NoteFolder::sectionName(place.section) / place.name.c_str(),
                        reason);
    };
    std::string bytes;
    const bool isNote = place.section == Section::notes;
    if (!encodeUtf8(isNote ? NoteMarkdownCodec::encode(note) : note.body, bytes))
        refuse(Reason::notUnicode);
    if (bytes.size() > NoteFolder::largestFile)
        refuse(Reason::tooLarge);
    return bytes;
}

bool isMarkdownName(std::string_view name) noexcept
{
    if (name.size() < 4)
        return false;
    const std::string_view end = name.substr(name.size() - 3);
    return end[0] == '.' && (end[1] == 'm' || end[1] == 'M') && (end[2] == 'd' || end[2] == 'D');
}

std::string_view stem(std::string_view name) noexcept
{
    return name.substr(0, name.rfind('.'));
}
