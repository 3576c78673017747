// SPDX-License-Identifier: MIT
#include "JournalFile.h"

#include "NoteId.h"
#include "Utf8.h"
#include "WellFormed.h"

#include <QByteArray>
#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::string_view marker = "Quillmark journal 1\n";
constexpr std::string_view olderMarker = "Quillmark typed 1\n";
constexpr std::string_view noText = "none";

/// Where no save was begun.
constexpr std::string_view noSuccessor = "-";

QByteArray utf8(const QString &text)
{
    return wellFormed(text).toUtf8();
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

std::optional<QString> textOf(std::string_view bytes)
{
    Utf8Decoder decoder;
    const std::optional<QStringView> text = decoder.decode(bytes);
    return text ? std::optional(text->toString()) : std::nullopt;
}

std::string hexadecimal(const Sha256Digest &digest)
{
    return QByteArrayView(digest).toByteArray().toHex().toStdString();
}

std::optional<Sha256Digest> digestOf(std::string_view digits)
{
    const QByteArray bytes =
        QByteArray::fromHex(QByteArray(digits.data(), static_cast<qsizetype>(digits.size())));
    Sha256Digest digest;
    if (bytes.size() != static_cast<qsizetype>(digest.size()))
        return std::nullopt;
    std::ranges::copy(bytes, reinterpret_cast<char *>(digest.data()));
    // Only what toText() writes: fromHex() skips whatever is no digit.
    return hexadecimal(digest) == digits ? std::optional(digest) : std::nullopt;
}

template <typename Number>
std::optional<Number> numberOf(std::string_view digits)
{
    Number number{};
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
    return error == std::errc() && end == digits.end() ? std::optional(number) : std::nullopt;
}

/// What stands before a sign, which is taken off with it; nothing when there is no such sign.
std::optional<std::string_view> takeUntil(std::string_view &text, char sign)
{
    const std::size_t end = text.find(sign);
    if (end == std::string_view::npos)
        return std::nullopt;
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end + 1);
    return taken;
}

/// The fields of a draft's line but the last, which is the digest of these and the text.
std::string fieldsOf(const JournalFile &file, const TypedDraft &draft, std::size_t size)
{
    return std::to_string(file.number) + ' ' + canonicalText(file.captureId).toStdString() + ' ' +
           draft.key.toStdString() + ' ' + draft.base.toText() + ' ' +
           (draft.successor ? draft.successor->toText() : std::string(noSuccessor)) + ' ' +
           std::to_string(size) + ' ';
}

/// Takes a draft off the front of a file; false when there is none, or none that is whole.
bool takeDraft(std::string_view &bytes, JournalFile &file)
{
    std::string_view rest = bytes;
    std::array<std::string_view, 6> fields;
    for (std::string_view &field : fields) {
        const auto taken = takeUntil(rest, ' ');
        if (!taken)
            return false;
        field = *taken;
    }
    const std::string_view head(bytes.data(), static_cast<std::size_t>(rest.data() - bytes.data()));
    const auto digest = takeUntil(rest, '\n');
    const auto number = numberOf<std::uint64_t>(fields[0]);
    const auto captureId = parseId(fields[1]);
    const auto base = TextMark::fromText(fields[3]);
    const bool isBegun = fields[4] != noSuccessor;
    const auto successor = isBegun ? TextMark::fromText(fields[4]) : std::nullopt;
    const auto size = numberOf<std::size_t>(fields[5]);
    if (!digest || !number || !captureId || !base || (isBegun && !successor) || !size ||
        rest.size() <= *size || rest[*size] != '\n')
        return false;
    const std::string_view content = rest.substr(0, *size);
    const std::optional<QString> text = textOf(content);
    if (!text || *digest != hexadecimal(sha256(head, content)))
        return false;
    file.number = *number;
    file.captureId = *captureId;
    file.drafts.push_back({.key = QString::fromUtf8(fields[2]),
                           .text = *text,
                           .base = *base,
                           .successor = successor});
    bytes = rest.substr(*size + 1);
    return true;
}

} // namespace

TextMark::TextMark(const QString &text)
    : m_digest(sha256(viewOf(utf8(text))))
{
}

TextMark::TextMark(const std::optional<QString> &text)
{
    if (text)
        *this = TextMark(*text);
}

std::string TextMark::toText() const
{
    return m_digest ? hexadecimal(*m_digest) : std::string(noText);
}

std::optional<TextMark> TextMark::fromText(std::string_view text)
{
    TextMark mark;
    if (text == noText)
        return mark;
    mark.m_digest = digestOf(text);
    return mark.m_digest ? std::optional(mark) : std::nullopt;
}

std::string JournalFile::encoded() const
{
    std::string bytes(marker);
    for (const TypedDraft &draft : drafts) {
        // A text may have many megabytes, and is not to be copied more often than it must.
        const QByteArray encodedText = utf8(draft.text);
        const std::string_view text = viewOf(encodedText);
        const std::string fields = fieldsOf(*this, draft, text.size());
        const std::string digest = hexadecimal(sha256(fields, text));
        bytes.reserve(bytes.size() + fields.size() + digest.size() + text.size() + 2);
        bytes.append(fields).append(digest).append("\n").append(text).append("\n");
    }
    return bytes;
}

std::optional<JournalFile> JournalFile::decoded(std::string_view bytes)
{
    if (!bytes.starts_with(marker))
        return std::nullopt;
    bytes.remove_prefix(marker.size());
    JournalFile file;
    while (takeDraft(bytes, file)) {
    }
    return file;
}

std::optional<TypedDraft> JournalFile::decodedOlder(const QString &key, std::string_view bytes)
{
    if (!bytes.starts_with(olderMarker))
        return std::nullopt;
    bytes.remove_prefix(olderMarker.size());
    const auto base = takeUntil(bytes, '\n');
    const auto digest = takeUntil(bytes, '\n');
    const auto mark = base ? TextMark::fromText(*base) : std::nullopt;
    if (!mark || !digest || *digest != hexadecimal(sha256(bytes)))
        return std::nullopt;
    const std::optional<QString> text = textOf(bytes);
    return text ? std::optional(TypedDraft{key, *text, *mark, {}}) : std::nullopt;
}
