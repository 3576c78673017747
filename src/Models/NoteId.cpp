// SPDX-License-Identifier: MIT
#include "NoteId.h"

#include <algorithm>
#include <array>

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

constexpr unsigned digitValue(char c) noexcept
{
    return digitValues[static_cast<unsigned char>(c)];
}

constexpr unsigned digitValue(char16_t c) noexcept
{
    return c < digitValues.size() ? digitValues[c] : noDigit;
}

/// Where the two digits of each byte of an identifier stand in its text.
constexpr std::array<std::size_t, 16> digitPlaces{0,  2,  4,  6,  9,  11, 14, 16,
                                                  19, 21, 24, 26, 28, 30, 32, 34};

/// QUuid reads several other forms, and answers the null identifier for what it cannot read, which
/// is a valid identifier here.
template <typename Character>
std::optional<QUuid> parse(std::basic_string_view<Character> text) noexcept
{
    if (text.size() != idLength)
        return std::nullopt;
    if (text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-')
        return std::nullopt;
    // Without a branch per digit: ten thousand names are read at every start.
    std::array<char, 16> id;
    unsigned all = 0;
    for (std::size_t i = 0; i < id.size(); ++i) {
        const unsigned high = digitValue(text[digitPlaces[i]]);
        const unsigned low = digitValue(text[digitPlaces[i] + 1]);
        all |= high | low;
        id[i] = static_cast<char>(high << 4 | low);
    }
    // No digit has a value above 15, so that a bit above says that something was none.
    return all > 15 ? std::nullopt : std::optional(QUuid::fromRfc4122(QByteArrayView(id)));
}

} // namespace

QString canonicalText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> parseId(QStringView text) noexcept
{
    return parse(std::u16string_view(text.utf16(), static_cast<std::size_t>(text.size())));
}

std::optional<QUuid> parseId(std::string_view bytes) noexcept
{
    return parse(bytes);
}

bool isCanonicalId(QStringView text) noexcept
{
    return std::ranges::none_of(text, [](QChar digit) { return digit >= u'a' && digit <= u'f'; });
}
