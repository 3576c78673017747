// SPDX-License-Identifier: MIT
#include "Note.h"

#include <QStringView>

namespace {

constexpr bool endsLine(QChar c)
{
    const char16_t unit = c.unicode();
    return (unit >= 0x000A && unit <= 0x000D) || unit == 0x0085 || unit == 0x2028 || unit == 0x2029;
}

/// Takes the first non-empty line from the text; empty when there is none left. CR LF needs no
/// care: the empty line between the two is passed over like any other.
QStringView takeLine(QStringView &text)
{
    const auto *begin = text.begin();
    while (begin != text.end() && endsLine(*begin))
        ++begin;
    const auto *end = begin;
    while (end != text.end() && !endsLine(*end))
        ++end;
    text = QStringView(end, text.end());
    return QStringView(begin, end);
}

} // namespace

QString Note::title() const
{
    QStringView rest(body);
    return takeLine(rest).toString();
}

QString Note::excerpt(QChar joint) const
{
    QStringView rest(body);
    takeLine(rest);
    QString excerpt;
    excerpt.reserve(rest.size());
    for (QStringView line = takeLine(rest); !line.isEmpty(); line = takeLine(rest)) {
        if (!excerpt.isEmpty())
            excerpt += joint;
        excerpt += line;
    }
    return excerpt;
}

bool Note::hasExcerpt() const noexcept
{
    QStringView rest(body);
    takeLine(rest);
    return !takeLine(rest).isEmpty();
}
