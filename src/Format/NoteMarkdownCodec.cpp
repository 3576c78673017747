// SPDX-License-Identifier: MIT
#include "NoteMarkdownCodec.h"

#include "NoteId.h"
#include "RepositoryError.h"

#include <QStringBuilder>
#include <QTextBoundaryFinder>
#include <QVarLengthArray>
#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QStringView openingFence = u"---\n";
constexpr QStringView closingFence = u"\n---\n";

struct Field {
    QStringView key;
    QStringView value;
};

using Fields = QVarLengthArray<Field, 8>;

/// A LF is a character of its own unless a CR precedes it.
bool isLineFeed(QStringView text, qsizetype place)
{
    return text[place] == u'\n' && (place == 0 || text[place - 1] != u'\r');
}

/// The place of the first occurrence at or after a place, -1 when there is none.
qsizetype findClosingFence(QStringView text, qsizetype from)
{
    qsizetype place = text.indexOf(closingFence, from);
    while (place >= 0 && !isLineFeed(text, place))
        place = text.indexOf(closingFence, place + 1);
    return place;
}

/// The end of the line that begins at a place.
qsizetype findLineEnd(QStringView text, qsizetype from)
{
    qsizetype place = text.indexOf(u'\n', from);
    while (place >= 0 && !isLineFeed(text, place))
        place = text.indexOf(u'\n', place + 1);
    return place < 0 ? text.size() : place;
}

/// Marks that join a colon are never ASCII, so the costly question is asked for others only.
bool isCharacterOfItsOwn(QStringView line, qsizetype place)
{
    const auto isPlain = [&](qsizetype at) {
        return at < 0 || at >= line.size() || line[at].unicode() < 0x80;
    };
    if (isPlain(place - 1) && isPlain(place + 1))
        return true;
    // Only its two neighbours can join a colon, so that a hostile line costs no more than its
    // length.
    const qsizetype before = std::min<qsizetype>(place, 2);
    const QStringView around =
        line.sliced(place - before)
            .first(std::min<qsizetype>(line.size() - place + before, before + 3));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, around);
    finder.setPosition(before);
    if (!finder.isAtBoundary())
        return false;
    finder.setPosition(before + 1);
    return finder.isAtBoundary();
}

qsizetype findColon(QStringView line)
{
    qsizetype place = line.indexOf(u':');
    while (place >= 0 && !isCharacterOfItsOwn(line, place))
        place = line.indexOf(u':', place + 1);
    return place;
}

/// White space within a line: tabs and space separators, no line ends.
bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

QStringView withoutBlanksAround(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

const Field *find(const Fields &fields, QStringView key)
{
    const auto found =
        std::ranges::find_if(fields, [&](const Field &field) { return field.key == key; });
    return found == fields.end() ? nullptr : &*found;
}

/// Nothing for a header that deviates from the format.
std::optional<Fields> readHeader(QStringView header)
{
    Fields fields;
    for (qsizetype from = 0; from < header.size();) {
        const qsizetype end = findLineEnd(header, from);
        const QStringView line = header.sliced(from, end - from);
        from = end + 1;
        if (line.isEmpty())
            continue;
        const qsizetype colon = findColon(line);
        if (colon < 0)
            return std::nullopt;
        fields.append({line.first(colon), withoutBlanksAround(line.sliced(colon + 1))});
    }
    std::ranges::sort(fields, {}, &Field::key);
    if (std::ranges::adjacent_find(fields, {}, &Field::key) != fields.end())
        return std::nullopt;
    return fields;
}

/// Null, which is no value of any key, when there is none of that name.
QStringView value(const Fields &fields, QStringView key)
{
    const Field *field = find(fields, key);
    return field ? field->value : QStringView();
}

} // namespace

QString NoteMarkdownCodec::encode(const Note &note)
{
    return "---\nquillmark: 1\nid: "_L1 % canonicalText(note.id) % "\ncreated: "_L1 %
           note.createdAt.toIso8601() % "\nupdated: "_L1 % note.updatedAt.toIso8601() %
           "\n---\n"_L1 % note.body;
}

std::optional<Note> NoteMarkdownCodec::decodeExact(QStringView text)
{
    constexpr qsizetype idLength = 36;
    constexpr qsizetype timeLength = 24;
    const auto take = [&text](qsizetype length) {
        const QStringView taken = text.first(std::min(length, text.size()));
        text = text.sliced(taken.size());
        return taken;
    };
    const auto takes = [&take](auto expected) { return take(expected.size()) == expected; };

    if (!takes(QStringView(u"---\nquillmark: 1\nid: ")))
        return std::nullopt;
    const QStringView idText = take(idLength);
    if (!takes(QStringView(u"\ncreated: ")))
        return std::nullopt;
    const QStringView created = take(timeLength);
    if (!takes(QStringView(u"\nupdated: ")))
        return std::nullopt;
    const QStringView updated = take(timeLength);
    if (!takes(closingFence))
        return std::nullopt;

    const std::optional<QUuid> id = parseId(idText);
    if (!id || !isCanonicalId(idText))
        return std::nullopt;
    // A time of this length has its fraction in three digits and ends with Z: there is no room for
    // a zone offset.
    const std::optional<Timestamp> createdAt = Timestamp::fromIso8601(created);
    const std::optional<Timestamp> updatedAt = Timestamp::fromIso8601(updated);
    if (!createdAt || !updatedAt)
        return std::nullopt;
    return Note{*id, text.toString(), *createdAt, *updatedAt};
}

Note NoteMarkdownCodec::decode(QStringView text)
{
    std::optional<Note> note = parse(text);
    if (!note)
        throw RepositoryError::invalidMarkdown();
    return *std::move(note);
}

std::optional<Note> NoteMarkdownCodec::parse(QStringView text)
{
    if (!text.startsWith(openingFence))
        return std::nullopt;
    const qsizetype headerEnd = findClosingFence(text, openingFence.size());
    if (headerEnd < 0)
        return std::nullopt;
    const QStringView body = text.sliced(headerEnd + closingFence.size());
    const auto fields = readHeader(text.first(headerEnd).sliced(openingFence.size()));
    if (!fields || value(*fields, u"quillmark") != u"1")
        return std::nullopt;
    const std::optional<QUuid> id = parseId(value(*fields, u"id"));
    const auto createdAt = Timestamp::fromIso8601(value(*fields, u"created"));
    const auto updatedAt = Timestamp::fromIso8601(value(*fields, u"updated"));
    if (!id || !createdAt || !updatedAt)
        return std::nullopt;
    return Note{*id, body.toString(), *createdAt, *updatedAt};
}
