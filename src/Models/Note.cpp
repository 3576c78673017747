// SPDX-License-Identifier: MIT
#include "Note.h"

#include <QStringView>
#include <algorithm>
#include <cstddef>

namespace {

/// Without branches: asked of many units at once.
constexpr bool endsLine(char16_t unit)
{
    return (static_cast<char16_t>(unit - 0x000A) < 4) | (unit == 0x0085) |
           (static_cast<char16_t>(unit - 0x2028) < 2);
}

/// Where a line ends that begins there. A note of one line is read to its end to know that it is
/// one, and of every note in a list that has to be known.
const char16_t *endOfLine(const char16_t *begin, const char16_t *end)
{
    constexpr std::ptrdiff_t blockSize = 32;
    for (; end - begin >= blockSize; begin += blockSize) {
        // Of sixteen bits like the units, so that the compiler asks many in one instruction.
        char16_t ends = 0;
        for (std::ptrdiff_t i = 0; i < blockSize; ++i)
            ends = static_cast<char16_t>(ends | (endsLine(begin[i]) ? 0xFFFF : 0));
        if (ends != 0)
            break;
    }
    return std::find_if(begin, end, endsLine);
}

/// Takes the first non-empty line from the text; empty when there is none left. CR LF needs no
/// care: the empty line between the two is passed over like any other.
QStringView takeLine(QStringView &text)
{
    const char16_t *const all = text.utf16();
    const char16_t *const begin = std::find_if_not(all, all + text.size(), endsLine);
    const char16_t *const end = endOfLine(begin, all + text.size());
    text = QStringView(end, all + text.size());
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
