// SPDX-License-Identifier: MIT
#include "TextExtent.h"

#include <algorithm>

namespace {

/// Quickly laid out.
constexpr qsizetype readablePart = 20'000;

bool endsParagraph(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar::ParagraphSeparator;
}

} // namespace

TextExtent TextExtent::of(QStringView text) noexcept
{
    constexpr qsizetype endless = 2000;
    constexpr char16_t firstOfEastAsia = 0x2e80;
    TextExtent extent;
    extent.characters = text.size();
    qsizetype paragraph = 0;
    qsizetype word = 0;
    for (const QChar c : text) {
        const bool isEnd = endsParagraph(c);
        extent.lineEnds += isEnd || c == QChar::LineSeparator ? 1 : 0;
        paragraph = isEnd ? 0 : paragraph + 1;
        extent.longestParagraph = std::max(extent.longestParagraph, paragraph);
        word = c.unicode() >= firstOfEastAsia || c.isSpace() ? 0 : word + 1;
        extent.hasEndlessWord = extent.hasEndlessWord || word == endless;
    }
    return extent;
}

bool TextExtent::hasRoom() const noexcept
{
    return characters <= mostCharacters && lineEnds <= mostLineEnds &&
           longestParagraph <= mostInParagraph;
}

QString readableBeginning(const QString &text)
{
    QString parts;
    parts.reserve(std::min(text.size(), TextExtent::mostCharacters));
    qsizetype lineEnds = 0;
    qsizetype paragraph = 0;
    for (const QChar c : text) {
        const bool isEnd = endsParagraph(c);
        lineEnds += isEnd || c == QChar::LineSeparator ? 1 : 0;
        if (lineEnds > TextExtent::mostLineEnds || parts.size() >= TextExtent::mostCharacters)
            break;
        paragraph = isEnd ? 0 : paragraph + 1;
        if (paragraph >= readablePart && !c.isLowSurrogate() && !c.isMark()) {
            parts += u'\n';
            paragraph = 1;
        }
        parts += c;
    }
    return parts;
}
