// SPDX-License-Identifier: MIT
#include "TextFolding.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace {

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

} // namespace

TextFolding &TextFolding::shared()
{
    static TextFolding folding;
    return folding;
}

std::u16string_view TextFolding::next(std::u16string_view text, size_t &position)
{
    char32_t codePoint = text[position++];
    if (QChar::isHighSurrogate(codePoint) && position < text.size() &&
        QChar::isLowSurrogate(text[position])) {
        codePoint = QChar::surrogateToUcs4(static_cast<char16_t>(codePoint), text[position++]);
    }

    std::unique_ptr<Page> &page = m_pages[codePoint / pageSize];
    if (!page) {
        page = std::make_unique<Page>();
        for (size_t i = 0; i < pageSize; ++i) {
            page->starts[i] = static_cast<quint16>(page->units.size());
            const icu::UnicodeString folded =
                foldedByIcu(static_cast<UChar32>(codePoint - codePoint % pageSize + i));
            page->units.append(folded.getBuffer(), static_cast<size_t>(folded.length()));
        }
        page->starts[pageSize] = static_cast<quint16>(page->units.size());
    }
    const size_t start = page->starts[codePoint % pageSize];
    const size_t end = page->starts[codePoint % pageSize + 1];
    return std::u16string_view(page->units).substr(start, end - start);
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
