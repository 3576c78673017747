// SPDX-License-Identifier: MIT
#include "TextFolding.h"

#include <algorithm>
#include <unicode/coleitr.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/tblcoll.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/usetiter.h>
#include <utility>
#include <vector>

namespace {

constexpr char16_t widening = 0xFEE0;

bool isMark(char32_t codePoint)
{
    return (U_MASK(u_charType(static_cast<UChar32>(codePoint))) & U_GC_M_MASK) != 0;
}

char32_t takeCodePoint(std::u16string_view text, size_t &position)
{
    const char16_t unit = text[position++];
    if (QChar::isHighSurrogate(unit) && position < text.size() &&
        QChar::isLowSurrogate(text[position]))
        return QChar::surrogateToUcs4(unit, text[position++]);
    return unit;
}

/// The code point that ends before the position, which moves to its beginning.
char32_t takeCodePointBefore(std::u16string_view text, size_t &position)
{
    const char16_t unit = text[--position];
    if (QChar::isLowSurrogate(unit) && position > 0 && QChar::isHighSurrogate(text[position - 1]))
        return QChar::surrogateToUcs4(text[--position], unit);
    return unit;
}

size_t endOfMarks(std::u16string_view text, size_t position)
{
    while (position < text.size()) {
        size_t next = position;
        if (!isMark(takeCodePoint(text, next)))
            break;
        position = next;
    }
    return position;
}

icu::UnicodeString decomposed(char32_t codePoint)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *const canonical = icu::Normalizer2::getNFDInstance(status);
    icu::UnicodeString result;
    if (U_FAILURE(status) || !canonical->getDecomposition(static_cast<UChar32>(codePoint), result))
        result = static_cast<UChar32>(codePoint);
    return result;
}

} // namespace

/// ICU's collator of one locale, as far as it is needed here.
class TextFolding::Collation final {
public:
    explicit Collation(const QString &localeName)
    {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> collator(
            icu::Collator::createInstance(icu::Locale(localeName.toLatin1().constData()), status));
        if (U_FAILURE(status) || !dynamic_cast<icu::RuleBasedCollator *>(collator.get()))
            return;
        m_collator.reset(static_cast<icu::RuleBasedCollator *>(collator.release()));
        m_collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
        m_elements.reset(m_collator->createCollationElementIterator(icu::UnicodeString()));
    }

    [[nodiscard]] std::u32string weights(Units text) const
    {
        return read(icu::UnicodeString(false, text.data(), static_cast<int32_t>(text.size())));
    }

    [[nodiscard]] std::u32string weights(char32_t codePoint) const
    {
        return read(icu::UnicodeString(static_cast<UChar32>(codePoint)));
    }

    /// What does not have one weight per character.
    struct Oddities {
        std::vector<std::u16string> contractions; ///< Have other weights than one by one.
        bool ideographsExpand = false;            ///< As those of Korean, which are syllables.
    };

    [[nodiscard]] Oddities oddities() const
    {
        Oddities result;
        if (!m_collator)
            return result;
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeSet contractions;
        icu::UnicodeSet expanding;
        ucol_getContractionsAndExpansions(m_collator->toUCollator(), contractions.toUSet(),
                                          expanding.toUSet(), true, &status);
        result.ideographsExpand =
            expanding.containsSome(static_cast<UChar32>(Plain::firstIdeograph),
                                   static_cast<UChar32>(Plain::lastIdeograph));
        icu::UnicodeSetIterator each(contractions);
        each.skipToStrings();
        while (each.next()) {
            const icu::UnicodeString &text = each.getString();
            // Non-characters begin the marks of an alphabet's index.
            constexpr char16_t firstNonCharacter = 0xFDD0;
            constexpr char16_t lastNonCharacter = 0xFDEF;
            if (text[0] < firstNonCharacter || text[0] > lastNonCharacter)
                result.contractions.emplace_back(text.getBuffer(),
                                                 static_cast<size_t>(text.length()));
        }
        return result;
    }

private:
    // A name of its own: ICU 76 makes a UnicodeString of whatever Units is made of, too.
    [[nodiscard]] std::u32string read(const icu::UnicodeString &text) const
    {
        std::u32string weights;
        if (!m_elements) {
            // Without the data of ICU what is written the same is equal still.
            for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1))
                weights += static_cast<char32_t>(u_foldCase(text.char32At(i), U_FOLD_CASE_DEFAULT));
            return weights;
        }
        UErrorCode status = U_ZERO_ERROR;
        m_elements->setText(text, status);
        for (int32_t next = m_elements->next(status);
             U_SUCCESS(status) && next != icu::CollationElementIterator::NULLORDER;
             next = m_elements->next(status)) {
            // An element that continues the one before carries the lower half of its weight.
            constexpr uint32_t continuation = 0xC0;
            const auto element = static_cast<uint32_t>(next);
            const char32_t half = element & 0xFFFF0000;
            if ((element & continuation) != continuation)
                weights.push_back(half);
            else if (!weights.empty())
                weights.back() |= half >> 16;
        }
        std::erase(weights, U'\0');
        return weights;
    }

    std::unique_ptr<icu::RuleBasedCollator> m_collator;
    std::unique_ptr<icu::CollationElementIterator> m_elements;
};

/// The weights of 256 code points in a row, one after the other.
struct TextFolding::Page {
    std::u32string weights;
    std::array<quint16, pageSize + 1> starts;
    std::array<bool, pageSize> takesMarks;
    std::array<bool, pageSize> joinsLetters;
};

TextFolding::TextFolding(const QString &localeName)
    : m_collation(std::make_unique<Collation>(localeName))
{
    const Collation::Oddities oddities = m_collation->oddities();
    if (oddities.ideographsExpand)
        m_plain.m_ideographs = 0;
    readContractions(oddities.contractions);
    readPlainUnits();
}

TextFolding::~TextFolding() = default;

const TextFolding &TextFolding::of(const QLocale &locale)
{
    static std::map<QString, std::unique_ptr<TextFolding>> foldings;
    std::unique_ptr<TextFolding> &folding = foldings[locale.name()];
    if (!folding)
        folding.reset(new TextFolding(locale.name()));
    return *folding;
}

void TextFolding::readContractions(const std::vector<std::u16string> &contractions)
{
    // What a contraction begins with comes first, since the pages, with which the contractions are
    // then compared, depend on it.
    std::vector<std::u16string> ofLetters;
    for (const std::u16string &text : contractions) {
        const Units units = text;
        size_t behindBase = 0;
        const char32_t base = takeCodePoint(units, behindBase);
        if (endOfMarks(units, behindBase) < units.size()) {
            size_t &longest = m_longestJoined[base];
            longest = std::max(longest, units.size());
            ofLetters.push_back(text);
        } else {
            const std::u32string together = m_collation->weights(units);
            const std::u32string apart = m_collation->weights(units.substr(0, behindBase)) +
                                         m_collation->weights(units.substr(behindBase));
            if (together != apart) {
                m_takingMarks.insert(base);
                noteWeights(units, together, apart);
            }
        }
    }
    readWideLetters();
    for (const std::u16string &text : ofLetters)
        addJoined(text);
}

void TextFolding::readWideLetters()
{
    bool isPlain = true;
    for (int i = 0; i < m_plain.m_wide; ++i) {
        const std::u16string wide(1, static_cast<char16_t>(Plain::firstWide + i));
        const std::u16string narrow(1, static_cast<char16_t>(wide.front() - widening));
        std::u32string asNarrow = m_collation->weights(narrow);
        if (asNarrow != m_collation->weights(wide)) {
            m_longestJoined[wide.front()] = 1;
            m_joined[wide] = std::move(asNarrow);
            isPlain = false;
        }
    }
    if (!isPlain)
        m_plain.m_wide = 0;
}

void TextFolding::addJoined(const std::u16string &text)
{
    const std::u32string together = m_collation->weights(text);
    const std::u32string apart = folded(text);
    if (together == apart)
        return;
    m_joined[text] = together;
    noteWeights(text, together, apart);
}

void TextFolding::noteWeights(Units text, const std::u32string &together,
                              const std::u32string &apart)
{
    if (!m_plain.is(text.front()))
        return;
    const bool areAllPlain =
        std::all_of(text.begin(), text.end(), [this](char16_t unit) { return m_plain.is(unit); });
    for (const char32_t weight : together) {
        if (apart.find(weight) == std::u32string::npos)
            (areAllPlain ? m_joinedPlainWeights : m_plainAndOddWeights).insert(weight);
    }
}

void TextFolding::readPlainUnits()
{
    for (int i = 0; i < 0x10000; ++i) {
        const auto unit = static_cast<char16_t>(i);
        const bool isIdeograph = unit >= Plain::firstIdeograph && unit <= Plain::lastIdeograph;
        if (!isIdeograph && m_plain.is(unit))
            m_plainUnits[plainWeight(unit)] += unit;
    }
}

TextFolding::Weights TextFolding::next(Units text, size_t &position, std::u32string &room) const
{
    const size_t start = position;
    const char32_t base = takeCodePoint(text, position);
    const Page &page = pageOf(base);
    const size_t place = base % pageSize;
    if (page.takesMarks[place]) {
        const size_t end = endOfMarks(text, position);
        if (end > position) {
            position = end;
            room = m_collation->weights(text.substr(start, end - start));
            return room;
        }
    }
    return Weights(page.weights)
        .substr(page.starts[place], page.starts[place + 1] - page.starts[place]);
}

TextFolding::Weights TextFolding::joined(Units text, size_t &position) const
{
    size_t behind = position;
    const char32_t first = takeCodePoint(text, behind);
    if (!pageOf(first).joinsLetters[first % pageSize])
        return {};
    const size_t longest = m_longestJoined.find(first)->second;
    for (size_t length = std::min(longest, text.size() - position); length > 0; --length) {
        const auto known = m_joined.find(text.substr(position, length));
        if (known != m_joined.end()) {
            position += length;
            return known->second;
        }
    }
    return {};
}

bool TextFolding::mayBegin(Units text, size_t position, char32_t weight) const
{
    const char32_t codePoint = takeCodePoint(text, position);
    const Page &page = pageOf(codePoint);
    const size_t place = codePoint % pageSize;
    const char32_t *const weights = page.weights.data();
    return page.takesMarks[place] || page.joinsLetters[place] ||
           std::find(weights + page.starts[place], weights + page.starts[place + 1], weight) !=
               weights + page.starts[place + 1];
}

bool TextFolding::isTakenByTheLetterBefore(Units text, size_t position) const
{
    size_t behind = position;
    if (!isMark(takeCodePoint(text, behind)))
        return false;
    while (position > 0) {
        const char32_t before = takeCodePointBefore(text, position);
        if (!isMark(before) || position == 0)
            return pageOf(before).takesMarks[before % pageSize];
    }
    return false;
}

std::u32string TextFolding::folded(Units text) const
{
    std::u32string result;
    std::u32string room;
    for (size_t position = 0; position < text.size();)
        result += next(text, position, room);
    return result;
}

std::u32string TextFolding::foldedAsJoined(Units text) const
{
    std::u32string result;
    std::u32string room;
    for (size_t position = 0; position < text.size();) {
        const size_t start = position;
        result += joined(text, position);
        if (position == start)
            result += next(text, position, room);
    }
    return result;
}

std::u16string TextFolding::plainUnits(char32_t weight) const
{
    const auto known = m_plainUnits.find(weight);
    if (known != m_plainUnits.end())
        return known->second;
    if (m_ideographs.empty()) {
        m_ideographs.reserve(m_plain.m_ideographs);
        for (int i = 0; i < m_plain.m_ideographs; ++i) {
            const auto ideograph = static_cast<char16_t>(Plain::firstIdeograph + i);
            m_ideographs.emplace_back(plainWeight(ideograph), ideograph);
        }
        std::sort(m_ideographs.begin(), m_ideographs.end());
    }
    const auto ideograph =
        std::lower_bound(m_ideographs.begin(), m_ideographs.end(), std::pair(weight, u'\0'));
    if (ideograph == m_ideographs.end() || ideograph->first != weight)
        return {};
    return {ideograph->second};
}

TextFolding::Weights TextFolding::weights(char32_t codePoint) const
{
    const Page &page = pageOf(codePoint);
    const size_t place = codePoint % pageSize;
    return Weights(page.weights)
        .substr(page.starts[place], page.starts[place + 1] - page.starts[place]);
}

const TextFolding::Page &TextFolding::pageOf(char32_t codePoint) const
{
    std::unique_ptr<Page> &page = m_pages[codePoint / pageSize];
    if (!page)
        page = makePage(static_cast<char32_t>(codePoint - codePoint % pageSize));
    return *page;
}

std::unique_ptr<TextFolding::Page> TextFolding::makePage(char32_t firstCodePoint) const
{
    auto page = std::make_unique<Page>();
    for (size_t i = 0; i < pageSize; ++i) {
        const auto codePoint = static_cast<char32_t>(firstCodePoint + i);
        page->starts[i] = static_cast<quint16>(page->weights.size());
        page->weights += m_collation->weights(codePoint);

        const icu::UnicodeString parts = decomposed(codePoint);
        page->joinsLetters[i] = m_longestJoined.contains(codePoint);
        page->takesMarks[i] = false;
        for (int32_t k = 0; k < parts.length(); k = parts.moveIndex32(k, 1)) {
            if (m_takingMarks.contains(static_cast<char32_t>(parts.char32At(k))))
                page->takesMarks[i] = true;
        }
    }
    page->starts[pageSize] = static_cast<quint16>(page->weights.size());
    return page;
}
