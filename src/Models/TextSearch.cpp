// SPDX-License-Identifier: MIT
#include "TextSearch.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace {

QString folded(QStringView text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *compatibility = icu::Normalizer2::getNFKDInstance(status);
    const icu::UnicodeString source(false, text.utf16(), static_cast<int32_t>(text.size()));
    const icu::UnicodeString decomposed = compatibility->normalize(source, status);
    icu::UnicodeString bare;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 c = decomposed.char32At(i);
        if ((U_GET_GC_MASK(c) & U_GC_M_MASK) == 0)
            bare.append(c);
    }
    bare.foldCase();
    return QString::fromUtf16(bare.getBuffer(), bare.length());
}

} // namespace

TextSearch::TextSearch(QStringView query)
    : m_folded(folded(query))
{
}

bool TextSearch::isFoundIn(QStringView text) const
{
    return folded(text).contains(m_folded);
}
