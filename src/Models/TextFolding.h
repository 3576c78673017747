// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>
#include <string_view>

/// What each character is compared as: decomposed (NFKD), marks dropped, case folded.
///
/// Folding does not depend on what stands beside a character: canonical reordering moves marks
/// only, and marks are dropped. So one lookup per character is enough, in a table that is filled
/// page by page when a page is first met, which keeps the memory of a program that never searches
/// at nothing. For one thread.
namespace TextFolding {

/// The folded form of the character that begins at the position, which moves behind it: empty
/// for a mark, several units for a ligature. Stays valid.
[[nodiscard]] std::u16string_view next(std::u16string_view text, size_t &position);

[[nodiscard]] QString folded(QStringView text);

/// True for units whose folded form is one unit that is told without a table: themselves, or
/// for ASCII and its full-width forms the small ASCII letter or sign. Leaves out marks,
/// ligatures, halves of a surrogate pair, and everything else that may fold to what looks
/// different.
[[nodiscard]] constexpr bool isPlain(char16_t unit) noexcept
{
    // ASCII; CJK punctuation without the tone marks; CJK ideographs; full-width forms of ASCII.
    // Without branches: asked of many units at once.
    return (unit < 0x80) | (static_cast<char16_t>(unit - 0x3001) < 0x29) |
           (static_cast<char16_t>(unit - 0x4E00) < 0x5200) |
           (static_cast<char16_t>(unit - 0xFF01) < 0x5E);
}

/// The folded form of a plain unit.
[[nodiscard]] constexpr char16_t plainlyFolded(char16_t unit) noexcept
{
    constexpr char16_t widening = 0xFEE0;
    const auto narrow = static_cast<char16_t>(unit >= 0xFF01 ? unit - widening : unit);
    return narrow >= u'A' && narrow <= u'Z' ? static_cast<char16_t>(narrow + (u'a' - u'A'))
                                            : narrow;
}

} // namespace TextFolding
