// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>
#include <QStringView>
#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

/// What a locale compares texts as: the primary weights of ICU's collator. They leave out case,
/// width, what cannot be seen, and accents where they make no letter of their own.
///
/// A weight rarely depends on what stands beside a character, so one lookup per character is
/// enough, in a table that is filled page by page when a page is first met. Two things do depend
/// on it: marks that make another letter ("й" is not "и"), which are looked up with their base;
/// and letters that are one together, as "aa" is "å" in Danish, or that change places, as Thai
/// vowels do. Such letters can be read in both ways, see joined().
///
/// Punctuation counts in every locale, and full-width forms count as narrow ones. For one thread.
/// Made for a locale when that is first searched in.
class TextFolding final {
public:
    using Units = std::u16string_view;
    using Weights = std::u32string_view;

    [[nodiscard]] static const TextFolding &of(const QLocale &locale);

    /// The weights of the character at the position, with the marks behind it that make another
    /// letter of it: none for what is looked through, several for a ligature. The position moves
    /// behind them. Weights that are in no table are put into the room.
    [[nodiscard]] Weights next(Units text, size_t &position, std::u32string &room) const;

    /// The weights of the letters at the position that are one together, with the position behind
    /// them; none and the same position where there are no such letters.
    [[nodiscard]] Weights joined(Units text, size_t &position) const;

    /// False where neither next() nor joined() give that weight at the position.
    [[nodiscard]] bool mayBegin(Units text, size_t position, char32_t weight) const;

    /// True where next() for an earlier position takes the mark at this one.
    [[nodiscard]] bool isTakenByTheLetterBefore(Units text, size_t position) const;

    /// Character by character, and with letters joined. The two are mostly the same.
    [[nodiscard]] std::u32string folded(Units text) const;
    [[nodiscard]] std::u32string foldedAsJoined(Units text) const;

    /// The weight of a plain unit.
    [[nodiscard]] char32_t plainWeight(char16_t unit) const { return weights(unit).front(); }

    /// All plain units of that weight.
    [[nodiscard]] std::u16string plainUnits(char32_t weight) const;

    /// True for a weight that plain letters have together and not one by one.
    [[nodiscard]] bool isOfJoinedPlainLetters(char32_t weight) const
    {
        return m_joinedPlainWeights.contains(weight);
    }

    /// The same for a plain letter with letters or marks behind it that are not all plain.
    [[nodiscard]] bool isOfPlainAndOddLetters(char32_t weight) const
    {
        return m_plainAndOddWeights.contains(weight);
    }

    /// Tells which units are plain: each has one weight, which no neighbour changes except for
    /// joined letters. Leaves out marks, ligatures, halves of surrogate pairs, and everything else
    /// that may be equal to what looks different.
    class Plain final {
    public:
        /// All of ASCII but the controls that are no white space.
        [[nodiscard]] static constexpr bool isAscii(char16_t unit) noexcept
        {
            return (static_cast<char16_t>(unit - 0x20) < 0x5F) |
                   (static_cast<char16_t>(unit - 0x09) < 5);
        }

        /// Without branches: asked of many units at once.
        [[nodiscard]] bool is(char16_t unit) const noexcept
        {
            // ASCII; CJK punctuation; CJK ideographs; full-width ASCII.
            return isAscii(unit) | (static_cast<char16_t>(unit - 0x3001) < 3) |
                   (static_cast<char16_t>(unit - 0x3008) < 0x19) |
                   (static_cast<char16_t>(unit - firstIdeograph) < m_ideographs) |
                   (static_cast<char16_t>(unit - firstWide) < m_wide);
        }

    private:
        friend class TextFolding;
        static constexpr char16_t firstIdeograph = 0x4E00;
        static constexpr char16_t lastIdeograph = 0x9FFF;
        static constexpr char16_t firstWide = 0xFF01;
        char16_t m_ideographs = lastIdeograph - firstIdeograph + 1;
        char16_t m_wide = 0x5E;
    };
    [[nodiscard]] const Plain &plain() const noexcept { return m_plain; }

    ~TextFolding();
    Q_DISABLE_COPY_MOVE(TextFolding)

private:
    class Collation;
    struct Page;

    explicit TextFolding(const QString &localeName);

    void readContractions(const std::vector<std::u16string> &contractions);
    /// A locale may have a plain letter of its own, as Turkish has a dotless I. Its full-width
    /// form, which ICU leaves as it is everywhere, can then be read in both ways.
    void readWideLetters();
    void addJoined(const std::u16string &text);
    void noteWeights(Units text, const std::u32string &together, const std::u32string &apart);
    void readPlainUnits();
    [[nodiscard]] Weights weights(char32_t codePoint) const;
    [[nodiscard]] const Page &pageOf(char32_t codePoint) const;
    [[nodiscard]] std::unique_ptr<Page> makePage(char32_t firstCodePoint) const;

    static constexpr size_t pageSize = 256;

    std::unique_ptr<Collation> m_collation;
    Plain m_plain;
    std::unordered_set<char32_t> m_takingMarks;
    std::map<std::u16string, std::u32string, std::less<>> m_joined;
    std::unordered_map<char32_t, size_t> m_longestJoined; ///< In units, by the first letter.
    std::unordered_set<char32_t> m_joinedPlainWeights;
    std::unordered_set<char32_t> m_plainAndOddWeights;
    std::unordered_map<char32_t, std::u16string> m_plainUnits;       ///< All but ideographs.
    mutable std::vector<std::pair<char32_t, char16_t>> m_ideographs; ///< In order, once needed.
    mutable std::array<std::unique_ptr<Page>, 0x110000 / pageSize> m_pages;
};
