// SPDX-License-Identifier: MIT
#include "UserText.h"

#include <QTextBoundaryFinder>
#include <algorithm>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/utext.h>

namespace {

/// True for code units that, side by side, are always two characters: Latin letters, digits and
/// signs, LF, Chinese ideographs, kana and wide punctuation. None of them combines with anything,
/// nor lets a later one combine with it unless that one is not in this set.
constexpr bool standsAlone(QChar c)
{
    const char16_t unit = c.unicode();
    return (unit >= 0x0020 && unit <= 0x007E) || unit == 0x000A ||
           (unit >= 0x00C0 && unit <= 0x02FF) || (unit >= 0x4E00 && unit <= 0x9FFF) ||
           (unit >= 0x3041 && unit <= 0x3096) || (unit >= 0x30A1 && unit <= 0x30FA) ||
           (unit >= 0x3001 && unit <= 0x3029) || (unit >= 0xFF01 && unit <= 0xFF5E);
}

qsizetype countByRules(QStringView text)
{
    // Making one costs more than most texts; the interface lives on one thread.
    static const std::unique_ptr<icu::BreakIterator> boundaries = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }();
    if (!boundaries) // ICU came without its data.
        return text.size();

    UErrorCode status = U_ZERO_ERROR;
    UText units = UTEXT_INITIALIZER;
    utext_openUChars(&units, text.utf16(), text.size(), &status);
    boundaries->setText(&units, status);
    qsizetype count = 0;
    while (boundaries->next() != icu::BreakIterator::DONE)
        ++count;
    utext_close(&units);
    return count;
}

} // namespace

qsizetype characterCount(QStringView text)
{
    // Most text is counted unit by unit; only the stretches where characters may combine need the
    // rules, each from one certain boundary to the next.
    qsizetype count = 0;
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype begin = at++;
        while (at < text.size() && !(standsAlone(text[at - 1]) && standsAlone(text[at])))
            ++at;
        count += at - begin == 1 ? 1 : countByRules(text.sliced(begin, at - begin));
    }
    return count;
}

qsizetype characterCountChange(QStringView text, const TextChange &change)
{
    // A LF ends a character whatever follows.
    const auto isEnd = [text](qsizetype at) {
        return text[at - 1] == u'\n' || (standsAlone(text[at - 1]) && standsAlone(text[at]));
    };
    qsizetype begin = change.position;
    while (begin > 0 && (begin == change.position || !isEnd(begin)))
        --begin;
    const qsizetype endOfAdded = change.position + change.added.size();
    qsizetype end = std::min(endOfAdded + 1, text.size());
    while (end < text.size() && !isEnd(end))
        ++end;
    const QStringView before = text.sliced(begin, change.position - begin);
    const QStringView after = text.sliced(endOfAdded, end - endOfAdded);
    const auto countWith = [&](const QString &between) {
        return characterCount(before.toString() + between + after.toString());
    };
    return countWith(change.added) - countWith(change.removed);
}

QString beginning(const QString &text, qsizetype mostCodePoints)
{
    qsizetype end = 0;
    for (qsizetype count = 0; count < mostCodePoints && end < text.size(); ++count)
        end +=
            text[end].isHighSurrogate() && end + 1 < text.size() && text[end + 1].isLowSurrogate()
                ? 2
                : 1;
    if (end == text.size())
        return text;
    // What follows decides whether a character ends there.
    constexpr qsizetype following = 2;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text.left(end + following));
    characters.setPosition(end);
    if (!characters.isAtBoundary())
        end = characters.toPreviousBoundary();
    return text.left(end);
}

bool isBlank(QStringView text) noexcept
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}
