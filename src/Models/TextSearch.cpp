// SPDX-License-Identifier: MIT
#include "TextSearch.h"

#include "TextFolding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <string_view>

namespace {

using Units = std::u16string_view;

constexpr size_t blockSize = 32;

// Masks of sixteen bits and no branches: the compiler asks them of many units in one instruction.
using Mask = quint16;
constexpr Mask no = 0;
constexpr Mask yes = 0xFFFF;
using Block = std::array<Mask, blockSize>;

/// The plain units that stand for one unit of the query: small, capital and their full-width forms.
class Wanted {
public:
    explicit Wanted(char16_t unit)
        : m_unit(unit)
        , m_wide(unit)
        , m_wideCapital(unit)
    {
        constexpr char16_t widening = 0xFEE0;
        if (unit > u' ' && unit < 0x7F) {
            m_wide = static_cast<char16_t>(unit + widening);
            m_wideCapital = m_wide;
        }
        if (unit >= u'a' && unit <= u'z') {
            m_caseBit = u'a' - u'A';
            m_wideCapital = static_cast<char16_t>(m_wide - m_caseBit);
        }
    }

    [[nodiscard]] Mask is(char16_t unit) const noexcept
    {
        return static_cast<Mask>(((unit | m_caseBit) == m_unit ? yes : no) |
                                 (unit == m_wide ? yes : no) | (unit == m_wideCapital ? yes : no));
    }

private:
    char16_t m_unit;
    char16_t m_wide;
    char16_t m_wideCapital;
    char16_t m_caseBit = 0;
};

Mask isOdd(char16_t unit) noexcept
{
    return TextFolding::isPlain(unit) ? no : yes;
}

/// Where a match may begin: where two plain units are the first two of the query, or at, or just
/// before, a unit that folds in no plain way. A query of one unit asks nothing of the second.
class Beginning {
public:
    explicit Beginning(Units query)
        : m_first(query.front())
        , m_second(query[query.size() > 1 ? 1 : 0])
        , m_asksNoSecond(query.size() == 1 ? yes : no)
    {
    }

    /// True where the two units are the query's, and where the first is odd.
    [[nodiscard]] Mask mayBe(char16_t unit, char16_t next) const noexcept
    {
        return static_cast<Mask>(isOdd(unit) |
                                 (m_first.is(unit) & (m_second.is(next) | m_asksNoSecond)));
    }

    /// Asks mayBe() for each unit of a block. Reads one unit past it.
    [[nodiscard]] Block mayBeIn(const char16_t *units) const noexcept
    {
        // A copy, so that the compiler need not fear that it changes while the result is written.
        const Beginning self = *this;
        Block block;
        for (size_t i = 0; i < blockSize; ++i) {
            block[i] = self.mayBe(units[i], units[i + 1]);
        }
        return block;
    }

private:
    Wanted m_first;
    Wanted m_second;
    Mask m_asksNoSecond;
};

/// Asks for each marked unit of a block, in order, until one is what is looked for.
template <class Question>
bool anyOf(const Block &block, const Question &isFoundAt)
{
    // Four at a time, since most are none.
    const auto fours = std::bit_cast<std::array<quint64, blockSize / 4>>(block);
    for (size_t k = 0; k < blockSize; ++k) {
        if (k % 4 == 0 && fours[k / 4] == 0)
            k += 3;
        else if (block[k] != no && isFoundAt(k))
            return true;
    }
    return false;
}

bool isPlain(Units text)
{
    size_t i = 0;
    for (; i + blockSize <= text.size(); i += blockSize) {
        // Most blocks are ASCII, which is the cheaper question.
        char16_t bits = 0;
        for (size_t k = 0; k < blockSize; ++k)
            bits = static_cast<char16_t>(bits | text[i + k]);
        if (bits < 0x80)
            continue;
        Mask odd = no;
        for (size_t k = 0; k < blockSize; ++k)
            odd = static_cast<Mask>(odd | isOdd(text[i + k]));
        if (odd != no)
            return false;
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                       &TextFolding::isPlain);
}

/// In plain text a match is as long as the query. Its two ends are looked for, since neighbouring
/// letters keep each other's company too often to tell much.
bool isFoundInPlain(Units text, Units query)
{
    if (text.size() < query.size())
        return false;
    const auto isFoundAt = [&](size_t position) {
        return std::equal(query.begin(), query.end(),
                          text.begin() + static_cast<std::ptrdiff_t>(position),
                          [](char16_t wanted, char16_t unit) {
                              return TextFolding::plainlyFolded(unit) == wanted;
                          });
    };
    const Wanted first(query.front());
    const Wanted last(query.back());
    const size_t distance = query.size() - 1;
    const size_t end = text.size() - distance;
    size_t i = 0;
    for (; i + blockSize <= end; i += blockSize) {
        Block block;
        for (size_t k = 0; k < blockSize; ++k)
            block[k] = first.is(text[i + k]) & last.is(text[i + k + distance]);
        if (anyOf(block, [&](size_t k) { return isFoundAt(i + k); }))
            return true;
    }
    for (; i < end; ++i) {
        if (isFoundAt(i))
            return true;
    }
    return false;
}

/// True when a part of a folded character and the folded text behind it begin with the query.
bool continues(Units part, Units text, size_t position, Units query)
{
    for (;;) {
        const size_t common = std::min(part.size(), query.size());
        if (part.substr(0, common) != query.substr(0, common)) {
            return false;
        }
        query.remove_prefix(common);
        if (query.empty()) {
            return true;
        }
        if (position >= text.size()) {
            return false;
        }
        part = TextFolding::next(text, position);
    }
}

/// True when a match begins within the folded form of the character at the position.
bool matches(Units text, size_t position, Units query)
{
    const Units character = TextFolding::next(text, position);
    for (size_t i = 0; i < character.size(); ++i) {
        if (character[i] == query[0] && continues(character.substr(i), text, position, query)) {
            return true;
        }
    }
    return false;
}

/// True when a match begins at the position, or just before it and the position is odd.
bool matchesAround(Units text, size_t position, Units query)
{
    return (isOdd(text[position]) != no && position > 0 && matches(text, position - 1, query)) ||
           matches(text, position, query);
}

} // namespace

TextSearch::TextSearch(QStringView query)
    : m_folded(TextFolding::folded(query))
{
}

bool TextSearch::isFoundIn(QStringView view) const
{
    const QStringView folded = m_folded;
    const Units query(folded.utf16(), static_cast<size_t>(folded.size()));
    const Units text(view.utf16(), static_cast<size_t>(view.size()));
    if (query.empty()) {
        return true;
    }

    if (isPlain(text))
        return isFoundInPlain(text, query);

    const Beginning beginning(query);
    size_t i = 0;
    for (; i + blockSize < text.size(); i += blockSize) {
        const Block block = beginning.mayBeIn(&text[i]);
        if (anyOf(block, [&](size_t k) { return matchesAround(text, i + k, query); }))
            return true;
    }
    for (; i < text.size(); ++i) {
        const char16_t next = i + 1 < text.size() ? text[i + 1] : u'\0';
        if (beginning.mayBe(text[i], next) != no && matchesAround(text, i, query)) {
            return true;
        }
    }
    return false;
}
