// SPDX-License-Identifier: MIT
#include "TextSearch.h"

#include <QTextBoundaryFinder>
#include <algorithm>
#include <bit>
#include <cstddef>
#include <string_view>

namespace {

using Units = TextFolding::Units;
using Weights = TextFolding::Weights;

constexpr size_t blockSize = 32;

// Masks of sixteen bits and no branches: the compiler asks them of many units in one instruction.
using Mask = quint16;
constexpr Mask no = 0;
constexpr Mask yes = 0xFFFF;
using Block = std::array<Mask, blockSize>;

template <size_t count>
Mask isOneOf(const std::array<char16_t, 4> &units, char16_t unit) noexcept
{
    Mask is = no;
    for (size_t i = 0; i < count; ++i)
        is = static_cast<Mask>(is | (unit == units[i] ? yes : no));
    return is;
}

Mask isOdd(const TextFolding::Plain &plain, char16_t unit) noexcept
{
    return plain.is(unit) ? no : yes;
}

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

/// What a match ends at when there is none.
constexpr size_t nowhere = 0;

using Letters = TextSearch::Letters;

Letters lettersOf(Units text, const TextFolding::Plain &given)
{
    // A copy, so that the compiler need not fear that it changes.
    const TextFolding::Plain plain = given;
    constexpr char16_t firstBeyondAscii = 0x80;
    bool isAscii = true;
    size_t i = 0;
    for (; i + blockSize <= text.size(); i += blockSize) {
        // Most blocks are printable ASCII, which is the cheaper question.
        char16_t bits = 0;
        for (size_t k = 0; k < blockSize; ++k)
            bits = static_cast<char16_t>(bits | (text[i + k] - u' ') | (text[i + k] + 1));
        if (bits < firstBeyondAscii)
            continue;
        Mask odd = no;
        bits = 0;
        for (size_t k = 0; k < blockSize; ++k)
            odd = static_cast<Mask>(odd | isOdd(plain, text[i + k]));
        if (odd != no)
            return Letters::odd;
        for (size_t k = 0; k < blockSize; ++k)
            bits = static_cast<char16_t>(bits | text[i + k]);
        isAscii = isAscii && bits < firstBeyondAscii;
    }
    for (; i < text.size(); ++i) {
        if (!plain.is(text[i]))
            return Letters::odd;
        isAscii = isAscii && text[i] < firstBeyondAscii;
    }
    return isAscii ? Letters::ascii : Letters::plain;
}

} // namespace

/// The search for one spelling in one text.
class TextSearch::Scan final {
public:
    Scan(const TextFolding &folding, const Spelling &spelling, Units text)
        : m_folding(folding)
        , m_spelling(spelling)
        , m_text(text)
    {
    }

    /// In plain text a match is as long as the query. Its two ends are looked for, since
    /// neighbouring letters keep each other's company too often to tell much.
    template <size_t unitCount>
    [[nodiscard]] bool findsAmongPlain() const
    {
        const Weights query = m_spelling.weights;
        if (!m_spelling.isFoundAmongPlain || m_text.size() < query.size())
            return false;
        const auto isFoundAt = [&](size_t position) {
            return std::equal(query.begin(), query.end(),
                              m_text.begin() + static_cast<std::ptrdiff_t>(position),
                              [this](char32_t wanted, char16_t unit) {
                                  return m_folding.plainWeight(unit) == wanted;
                              });
        };
        const PlainUnits first = m_spelling.first;
        const PlainUnits last = m_spelling.last;
        const size_t distance = query.size() - 1;
        const size_t end = m_text.size() - distance;
        size_t i = 0;
        for (; i + blockSize <= end; i += blockSize) {
            Block block;
            for (size_t k = 0; k < blockSize; ++k)
                block[k] = isOneOf<unitCount>(first, m_text[i + k]) &
                           isOneOf<unitCount>(last, m_text[i + k + distance]);
            if (anyOf(block, [&](size_t k) { return isFoundAt(i + k); }))
                return true;
        }
        for (; i < end; ++i) {
            if (isFoundAt(i))
                return true;
        }
        return false;
    }

    template <size_t unitCount>
    [[nodiscard]] bool finds() const
    {
        size_t i = 0;
        for (; i + blockSize < m_text.size(); i += blockSize) {
            if (anyOf(mayBeginIn<unitCount>(&m_text[i]),
                      [&](size_t k) { return isFoundAt(i + k); }))
                return true;
        }
        for (; i < m_text.size(); ++i) {
            if (isFoundAt(i))
                return true;
        }
        return false;
    }

    /// Behind the match that begins within the character at the position, or within letters that
    /// are one with it.
    [[nodiscard]] size_t endOfMatch(size_t position) const
    {
        if (!m_folding.mayBegin(m_text, position, m_spelling.weights.front()))
            return nowhere;
        std::u32string room;
        size_t behind = position;
        const Weights character = m_folding.next(m_text, behind, room);
        if (const size_t end = endWithin(character, behind);
            end != nowhere && !m_folding.isTakenByTheLetterBefore(m_text, position))
            return end;
        behind = position;
        const Weights letters = m_folding.joined(m_text, behind);
        return endWithin(letters, behind);
    }

private:
    /// Where a match may begin: at a unit that is not plain, at a plain one that is the query's
    /// first before one that may be its second, and at any plain one before an odd one where that
    /// changes it into the first. Reads one unit past the block.
    template <size_t unitCount>
    [[nodiscard]] Block mayBeginIn(const char16_t *units) const noexcept
    {
        const TextFolding::Plain plain = m_folding.plain();
        const PlainUnits first = m_spelling.first;
        const PlainUnits second = m_spelling.second;
        const Mask asksNoSecond = m_spelling.weights.size() == 1 ? yes : no;
        const Mask asksNothing = m_spelling.mayBeginAnywhere ? yes : no;
        const Mask asksNoFirst = m_spelling.mayBeginBeforeOdd ? yes : no;
        std::array<Mask, blockSize + 1> odd;
        for (size_t k = 0; k <= blockSize; ++k)
            odd[k] = isOdd(plain, units[k]);
        Block block;
        for (size_t k = 0; k < blockSize; ++k) {
            const Mask isFirst = isOneOf<unitCount>(first, units[k]);
            const Mask isSecond = isOneOf<unitCount>(second, units[k + 1]);
            block[k] = static_cast<Mask>(asksNothing | odd[k] | (odd[k + 1] & asksNoFirst) |
                                         (isFirst & (isSecond | odd[k + 1] | asksNoSecond)));
        }
        return block;
    }

    [[nodiscard]] bool isFoundAt(size_t position) const { return endOfMatch(position) != nowhere; }

    [[nodiscard]] size_t endWithin(Weights character, size_t behind) const
    {
        const Weights query = m_spelling.weights;
        for (size_t i = 0; i < character.size(); ++i) {
            if (character[i] != query.front())
                continue;
            if (const size_t end = endOf(character.substr(i), behind, query); end != nowhere)
                return end;
        }
        return nowhere;
    }

    /// Behind the match, where a part of the text and what stands from the position on begin with
    /// the query.
    [[nodiscard]] size_t endOf(Weights part, size_t position, Weights query) const
    {
        std::u32string room;
        for (;;) {
            const size_t common = std::min(part.size(), query.size());
            if (part.substr(0, common) != query.substr(0, common))
                return nowhere;
            query.remove_prefix(common);
            if (query.empty())
                return position;
            if (position >= m_text.size())
                return nowhere;
            size_t behindJoined = position;
            const Weights joined = m_folding.joined(m_text, behindJoined);
            if (behindJoined > position) {
                if (const size_t end = endOf(joined, behindJoined, query); end != nowhere)
                    return end;
            }
            part = m_folding.next(m_text, position, room);
        }
    }

    const TextFolding &m_folding;
    const Spelling &m_spelling;
    const Units m_text;
};

TextSearch::TextSearch(QStringView query, const QLocale &locale)
    : m_folding(TextFolding::of(locale))
{
    const Units units(query.utf16(), static_cast<size_t>(query.size()));
    const std::u32string oneByOne = m_folding.folded(units);
    const std::u32string joined = m_folding.foldedAsJoined(units);
    if (!oneByOne.empty())
        m_spellings.push_back(spelling(oneByOne));
    if (!joined.empty() && joined != oneByOne)
        m_spellings.push_back(spelling(joined));
    if (m_spellings.empty())
        m_asWritten = query.toString().normalized(QString::NormalizationForm_D);
}

TextSearch::Spelling TextSearch::spelling(const std::u32string &weights) const
{
    Spelling spelling{.weights = weights};
    const auto setUnits = [&](PlainUnits &place, char32_t weight) {
        const std::u16string units = m_folding.plainUnits(weight);
        if (units.size() > place.size())
            spelling.mayBeginAnywhere = true;
        const auto ascii = static_cast<size_t>(
            std::count_if(units.begin(), units.end(), TextFolding::Plain::isAscii));
        spelling.unitCount = std::max(spelling.unitCount, units.size());
        spelling.asciiCount = std::max(spelling.asciiCount, ascii);
        for (size_t i = 0; i < place.size() && !units.empty(); ++i)
            place[i] = units[std::min(i, units.size() - 1)];
    };
    setUnits(spelling.first, weights.front());
    setUnits(spelling.second, weights[weights.size() > 1 ? 1 : 0]);
    setUnits(spelling.last, weights.back());
    spelling.mayBeginBeforeOdd = m_folding.isOfPlainAndOddLetters(weights.front());
    for (const char32_t weight : weights) {
        if (m_folding.plainUnits(weight).empty())
            spelling.isFoundAmongPlain = false;
        if (m_folding.isOfJoinedPlainLetters(weight))
            spelling.mayBeginAnywhere = true;
    }
    return spelling;
}

bool TextSearch::narrows(const TextSearch &other) const
{
    if (!speakTheSame(other))
        return false;
    if (other.m_spellings.empty())
        return other.m_asWritten.isEmpty() ||
               (m_spellings.empty() && m_asWritten.contains(other.m_asWritten));
    // A match of a spelling is a match of what the spelling begins with, at the same place and read
    // in the same way. Of what stands further behind that is not so: a match does not begin with a
    // mark that the letter before it takes.
    return !m_spellings.empty() &&
           std::ranges::all_of(m_spellings, [&other](const Spelling &spelling) {
               return std::ranges::any_of(other.m_spellings, [&spelling](const Spelling &shorter) {
                   return spelling.weights.starts_with(shorter.weights);
               });
           });
}

bool TextSearch::isFoundIn(QStringView text) const
{
    auto letters = Letters::unknown;
    return isFoundIn(text, letters);
}

bool TextSearch::isFoundIn(QStringView view, Letters &letters) const
{
    if (m_spellings.empty())
        return view.toString().normalized(QString::NormalizationForm_D).contains(m_asWritten);

    const Units text(view.utf16(), static_cast<size_t>(view.size()));
    if (letters == Letters::unknown)
        letters = lettersOf(text, m_folding.plain());
    return std::any_of(m_spellings.begin(), m_spellings.end(), [&](const Spelling &spelling) {
        const Scan scan(m_folding, spelling, text);
        const bool isPlain = letters != Letters::odd && !spelling.mayBeginAnywhere;
        switch (letters == Letters::ascii ? spelling.asciiCount : spelling.unitCount) {
        case 1:
            return isPlain ? scan.findsAmongPlain<1>() : scan.finds<1>();
        case 2:
            return isPlain ? scan.findsAmongPlain<2>() : scan.finds<2>();
        default:
            return isPlain ? scan.findsAmongPlain<4>() : scan.finds<4>();
        }
    });
}

/// Where a query of weights is found.
QList<TextRange> TextSearch::rawPlacesIn(QStringView view) const
{
    const Units text(view.utf16(), static_cast<size_t>(view.size()));
    QList<TextRange> places;
    for (size_t position = 0; position < text.size();) {
        size_t end = nowhere;
        for (const Spelling &spelling : m_spellings)
            end = std::max(end, Scan(m_folding, spelling, text).endOfMatch(position));
        if (end != nowhere)
            places.append({qsizetype(position), qsizetype(end - position)});
        position = std::max(end, position + 1);
    }
    return places;
}

/// Where a query without weight is found: character by character, since accents that are written
/// apart are found in letters that bring them along.
QList<TextRange> TextSearch::writtenPlacesIn(QStringView text) const
{
    QString written;
    QList<TextRange>
        characters; ///< Of each unit that is written, the character that it comes from.
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0, end = 0; start < text.size(); start = end) {
        end = finder.toNextBoundary();
        written +=
            text.sliced(start, end - start).toString().normalized(QString::NormalizationForm_D);
        characters.resize(written.size(), {start, end - start});
    }
    QList<TextRange> places;
    for (qsizetype at = written.indexOf(m_asWritten); at >= 0;
         at = written.indexOf(m_asWritten, at + m_asWritten.size())) {
        const TextRange first = characters[at];
        const TextRange last = characters[at + m_asWritten.size() - 1];
        places.append({first.start, last.end() - first.start});
    }
    return places;
}

QList<TextRange> TextSearch::placesIn(QStringView text) const
{
    if (m_spellings.empty() && m_asWritten.isEmpty())
        return {};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    QList<TextRange> whole;
    for (TextRange place : m_spellings.empty() ? writtenPlacesIn(text) : rawPlacesIn(text)) {
        qsizetype end = place.end();
        finder.setPosition(place.start);
        if (!finder.isAtBoundary())
            place.start = finder.toPreviousBoundary();
        finder.setPosition(end);
        if (!finder.isAtBoundary())
            end = finder.toNextBoundary();
        // Two of one character are one.
        if (!whole.isEmpty() && place.start < whole.last().end())
            whole.last().length = std::max(end, whole.last().end()) - whole.last().start;
        else
            whole.append({place.start, end - place.start});
    }
    return whole;
}
