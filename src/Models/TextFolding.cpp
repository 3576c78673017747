// SPDX-License-Identifier: MIT
#include "TextFolding.h"

#include <array>
#include <memory>
#include <string>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace {

constexpr size_t pageSize = 256;

/// The folded forms of 256 code points in a row, one after the other.
struct Page {
    std::u16string units;
    std::array<quint16, pageSize + 1> starts;
};

bool isMark(UChar32 codePoint)
{
    return u_charType(codePoint) == U_NON_SPACING_MARK || u_getCombiningClass(codePoint) != 0;
}

icu::UnicodeString foldedByIcu(UChar32 codePoint)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *const compatibility = icu::Normalizer2::getNFKDInstance(status);
    icu::UnicodeString decomposed;
    if (U_FAILURE(status) || !compatibility->getDecomposition(codePoint, decomposed)) {
        decomposed = codePoint;
    }
    icu::UnicodeString bases;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 part = decomposed.char32At(i);
        if (!isMark(part)) {
            bases.append(part);
        }
    }
    return bases.foldCase(U_FOLD_CASE_DEFAULT);
}

std::unique_ptr<Page> makePage(UChar32 firstCodePoint)
{
    auto page = std::make_unique<Page>();
    for (size_t i = 0; i < pageSize; ++i) {
        page->starts[i] = static_cast<quint16>(page->units.size());
        const icu::UnicodeString folded = foldedByIcu(firstCodePoint + static_cast<UChar32>(i));
        page->units.append(folded.getBuffer(), static_cast<size_t>(folded.length()));
    }
    page->starts[pageSize] = static_cast<quint16>(page->units.size());
    return page;
}

/// The page of a code point. The forms are the same for ever, so each page is made once.
const Page &pageOf(char32_t codePoint)
{
    static constinit std::array<std::unique_ptr<Page>, 0x110000 / pageSize> pages;
    std::unique_ptr<Page> &page = pages[codePoint / pageSize];
    if (!page)
        page = makePage(static_cast<UChar32>(codePoint - codePoint % pageSize));
    return *page;
}

} // namespace

std::u16string_view TextFolding::next(std::u16string_view text, size_t &position)
{
    char32_t codePoint = text[position++];
    if (QChar::isHighSurrogate(codePoint) && position < text.size() &&
        QChar::isLowSurrogate(text[position])) {
        codePoint = QChar::surrogateToUcs4(static_cast<char16_t>(codePoint), text[position++]);
    }

    const Page &page = pageOf(codePoint);
    const size_t start = page.starts[codePoint % pageSize];
    const size_t end = page.starts[codePoint % pageSize + 1];
    return std::u16string_view(page.units).substr(start, end - start);
}

QString TextFolding::folded(QStringView text)
{
    const std::u16string_view units(text.utf16(), static_cast<size_t>(text.size()));
    QString result;
    result.reserve(text.size());
    for (size_t position = 0; position < units.size();) {
        const std::u16string_view character = next(units, position);
        result.append(QStringView(character.data(), static_cast<qsizetype>(character.size())));
    }
    return result;
}
