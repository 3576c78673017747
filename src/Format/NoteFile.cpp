// SPDX-License-Identifier: MIT
#include "NoteFile.h"

#include "FileError.h"
#include "NoteFolder.h"
#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "Utf8.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t idLength = 36;

constexpr unsigned char noDigit = 0xFF;

/// The value of every hexadecimal digit, at the place of its character.
constexpr auto digitValues = [] {
    std::array<unsigned char, 256> values{};
    values.fill(noDigit);
    for (unsigned char i = 0; i < 10; ++i)
        values['0' + i] = i;
    for (unsigned char i = 0; i < 6; ++i)
        values['A' + i] = values['a' + i] = static_cast<unsigned char>(10 + i);
    return values;
}();

/// Where the two digits of each byte of an identifier stand in its text.
constexpr std::array<std::size_t, 16> digitPlaces{0,  2,  4,  6,  9,  11, 14, 16,
                                                  19, 21, 24, 26, 28, 30, 32, 34};

} // namespace

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

std::optional<QUuid> parseId(std::string_view bytes)
{
    if (bytes.size() != idLength)
        return std::nullopt;
    if (bytes[8] != '-' || bytes[13] != '-' || bytes[18] != '-' || bytes[23] != '-')
        return std::nullopt;
    // Without a branch per digit: ten thousand names are read at every start.
    const auto digit = [&](std::size_t place) {
        return digitValues[static_cast<unsigned char>(bytes[place])];
    };
    std::array<char, 16> id;
    unsigned all = 0;
    for (std::size_t i = 0; i < id.size(); ++i) {
        const unsigned high = digit(digitPlaces[i]);
        const unsigned low = digit(digitPlaces[i] + 1);
        all |= high | low;
        id[i] = static_cast<char>(high << 4 | low);
    }
    // No digit has a value above 15, so that a bit above says that something was none.
    return all > 15 ? std::nullopt : std::optional(QUuid::fromRfc4122(QByteArrayView(id)));
}
