// SPDX-License-Identifier: MIT
#include "EmojiFormats.h"

#include "NoteTheme.h"

#include <QFont>
#include <algorithm>
#include <unicode/uchar.h>

namespace {

constexpr char32_t joiner = 0x200D;
constexpr char32_t asText = 0xFE0E;
constexpr char32_t asEmoji = 0xFE0F;
constexpr char32_t keycap = 0x20E3;

/// Quick, and false for most texts without emoji.
bool mayHoldEmoji(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar unit) {
        constexpr char16_t firstSign = 0x231A;
        constexpr char16_t lastSign = 0x3299;
        const char16_t c = unit.unicode();
        return (c >= firstSign && c <= lastSign) || c == asEmoji || c == keycap ||
               unit.isHighSurrogate();
    });
}

char32_t codePointAt(QStringView text, qsizetype at)
{
    if (at >= text.size())
        return 0;
    if (text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(text[at], text[at + 1]);
    return text[at].unicode();
}

qsizetype behind(char32_t codePoint, qsizetype at)
{
    return at + (QChar::requiresSurrogates(codePoint) ? 2 : 1);
}

bool is(UProperty property, char32_t codePoint)
{
    return u_hasBinaryProperty(static_cast<UChar32>(codePoint), property) != 0;
}

/// The end of one picture with all that changes it; the position itself where none begins.
qsizetype endOfPicture(QStringView text, qsizetype at)
{
    const char32_t first = codePointAt(text, at);
    qsizetype end = behind(first, at);
    const char32_t next = codePointAt(text, end);
    if (next == asText)
        return at;
    const bool isKeycap =
        next == keycap || (next == asEmoji && codePointAt(text, end + 1) == keycap);
    const bool isPicture = is(UCHAR_EMOJI_PRESENTATION, first) || next == asEmoji || isKeycap ||
                           is(UCHAR_EMOJI_MODIFIER, next);
    if (!isPicture || !is(UCHAR_EMOJI, first))
        return at;
    for (char32_t more = next; more != 0; more = codePointAt(text, end)) {
        constexpr char32_t firstTag = 0xE0020;
        constexpr char32_t lastTag = 0xE007F;
        if (more != asEmoji && more != keycap && !is(UCHAR_EMOJI_MODIFIER, more) &&
            (more < firstTag || more > lastTag))
            break;
        end = behind(more, end);
    }
    return end;
}

/// The end of pictures that are one when joined, and of flags, which are two letters.
qsizetype endOfEmoji(QStringView text, qsizetype at)
{
    qsizetype end = endOfPicture(text, at);
    while (end > at && codePointAt(text, end) == joiner) {
        const char32_t next = codePointAt(text, end + 1);
        if (!is(UCHAR_EXTENDED_PICTOGRAPHIC, next))
            break;
        const qsizetype further = endOfPicture(text, end + 1);
        end = further > end + 1 ? further : behind(next, end + 1);
    }
    return end;
}

QTextCharFormat emojiFormat(const QFont &font, QStringView emoji)
{
    QTextCharFormat format;
    format.setFontFamilies(NoteTheme::emojiFamilies() + font.families());
    format.setFontWeight(QFont::Normal);
    // The sign that asks for a picture may stand inside, as between a digit and its key. Where the
    // font lacks it, another font would be asked for it, and the picture would fall apart.
    if (emoji.chopped(1).contains(QChar(asEmoji)))
        format.setFontStyleStrategy(QFont::NoFontMerging);
    return format;
}

} // namespace

QList<QTextLayout::FormatRange> emojiFormats(const QString &text, const QFont &font)
{
    QList<QTextLayout::FormatRange> ranges;
    if (!mayHoldEmoji(text))
        return ranges;
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype end = endOfEmoji(text, at);
        if (end == at) {
            at = behind(codePointAt(text, at), at);
            continue;
        }
        const QTextCharFormat format = emojiFormat(font, QStringView(text).sliced(at, end - at));
        // Emoji in a row are one range.
        if (!ranges.isEmpty() && ranges.last().start + ranges.last().length == at &&
            ranges.last().format == format) {
            ranges.last().length += static_cast<int>(end - at);
        } else {
            ranges.append({static_cast<int>(at), static_cast<int>(end - at), format});
        }
        at = end;
    }
    return ranges;
}
