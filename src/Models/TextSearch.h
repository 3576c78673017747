// SPDX-License-Identifier: MIT
#pragma once

#include "TextFolding.h"
#include "TextRange.h"

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringView>
#include <array>
#include <string>
#include <vector>

/// Finds one text in many, as a reader of the locale would: equal is what ICU's collator finds
/// equal at primary strength, see TextFolding.
///
/// So "strasse" finds "Straße" and "cafe" finds "CAFÉ", while "กน" does not find "กิน", and "å" is
/// no "a" in Swedish. Parts of ligatures and of Hangul syllables are found too, and full-width
/// forms by narrow ones. The query is one text: inner spaces must match. A query of which nothing
/// would be left, as a lone mark, is looked for as it is written.
///
/// Built once for a query and then asked of each text. The scan skips, many units at a time, what
/// cannot begin a match, and folds only where one may begin. For one thread.
class TextSearch {
public:
    /// The letters that a text is made of. Searches that speakTheSame() see the same in it.
    enum class Letters : char {
        unknown,
        ascii,
        plain, ///< See TextFolding::Plain.
        odd,
    };

    /// The locale is that in which the user's system sorts, unless another one is given.
    explicit TextSearch(QStringView query,
                        const QLocale &locale = QLocale(QLocale::system().collation()));

    /// True as well for every text when the query is empty.
    [[nodiscard]] bool isFoundIn(QStringView text) const;

    /// Where in the text it is found, from the beginning on and without overlaps; nowhere when the
    /// query is empty. A place is made of whole characters as they are seen: with their accents, of
    /// ligatures and joined emoji all. For texts of the length of a line, since it skips nothing.
    [[nodiscard]] QList<TextRange> placesIn(QStringView text) const;

    /// The same of a text that is asked for again and again, which is faster where its letters are
    /// known already. They become known where they have to be.
    [[nodiscard]] bool isFoundIn(QStringView text, Letters &letters) const;

    [[nodiscard]] bool speakTheSame(const TextSearch &other) const noexcept
    {
        return &m_folding == &other.m_folding;
    }

    /// True only where every text in which this is found is one in which the other is found, so
    /// that nobody need look at more than those. Compares what the two are folded to and not what
    /// was typed: a mark, the second half of a pair, or a letter that is one with the letter before
    /// it makes something else of what it follows.
    [[nodiscard]] bool narrows(const TextSearch &other) const;

private:
    /// All plain units of one weight, those of ASCII first; the last is repeated where there are
    /// less.
    using PlainUnits = std::array<char16_t, 4>;

    /// The weights of the query, read in one of two ways.
    struct Spelling {
        std::u32string weights;
        PlainUnits first{};
        PlainUnits second{}; ///< Of one weight the first again.
        PlainUnits last{};
        size_t unitCount = 1;          ///< How many of these have to be asked for.
        size_t asciiCount = 1;         ///< And how many in ASCII.
        bool isFoundAmongPlain = true; ///< False where a weight is no plain unit's.
        bool mayBeginBeforeOdd = false;
        bool mayBeginAnywhere = false; ///< Joined letters or too many units: nothing is skipped.
    };

    class Scan;

    [[nodiscard]] Spelling spelling(const std::u32string &weights) const;
    [[nodiscard]] QList<TextRange> rawPlacesIn(QStringView text) const;
    [[nodiscard]] QList<TextRange> writtenPlacesIn(QStringView text) const;

    const TextFolding &m_folding;
    std::vector<Spelling> m_spellings; ///< One by one and, where that differs, with letters joined.
    QString m_asWritten;               ///< A query without weight, canonically decomposed.
};
