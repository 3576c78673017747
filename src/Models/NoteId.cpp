// SPDX-License-Identifier: MIT
#include "NoteId.h"

namespace {

constexpr qsizetype canonicalLength = 36;

constexpr bool isHyphenPlace(qsizetype place)
{
    return place == 8 || place == 13 || place == 18 || place == 23;
}

constexpr bool isHexDigit(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

} // namespace

QString canonicalText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> parseId(QStringView text)
{
    // QUuid reads several other forms, and answers the null identifier for what it cannot read,
    // which is a valid identifier here.
    if (text.size() != canonicalLength)
        return std::nullopt;
    for (qsizetype i = 0; i < canonicalLength; ++i) {
        const char16_t c = text[i].unicode();
        if (isHyphenPlace(i) ? c != u'-' : !isHexDigit(c))
            return std::nullopt;
    }
    return QUuid::fromString(text);
}
