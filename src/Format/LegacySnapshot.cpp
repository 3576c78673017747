// SPDX-License-Identifier: MIT
#include "LegacySnapshot.h"

#include "JsonError.h"
#include "JsonReader.h"
#include "NoteId.h"
#include "RepositoryError.h"
#include "Utf8.h"

#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

using Problem = JsonError::Problem;

/// Keeps a member's value, which may come only once.
template <typename T>
void keep(const JsonReader &json, std::optional<T> &member, T value)
{
    if (member)
        json.fail(Problem::comesTwice);
    member = std::move(value);
}

template <typename T>
T require(const JsonReader &json, std::optional<T> &member, const QString &name)
{
    if (!member)
        json.fail(Problem::lacks, name);
    return std::move(*member);
}

QUuid readId(JsonReader &json)
{
    const std::optional<QUuid> id = parseId(json.readString());
    if (!id)
        json.fail(Problem::notIdentifier);
    return *id;
}

Timestamp readTime(JsonReader &json)
{
    const Timestamp time{json.readNumber()};
    if (!time.hasTextForm())
        json.fail(Problem::notTime);
    return time;
}

Note readNote(JsonReader &json)
{
    std::optional<QUuid> id;
    std::optional<QString> body;
    std::optional<Timestamp> createdAt;
    std::optional<Timestamp> updatedAt;
    json.readObject([&](const QString &name) {
        if (name == "id"_L1)
            keep(json, id, readId(json));
        else if (name == "body"_L1)
            keep(json, body, json.readString());
        else if (name == "createdAt"_L1)
            keep(json, createdAt, readTime(json));
        else if (name == "updatedAt"_L1)
            keep(json, updatedAt, readTime(json));
        else
            json.skipValue();
    });
    return {.id = require(json, id, u"id"_s),
            .body = require(json, body, u"body"_s),
            .createdAt = require(json, createdAt, u"createdAt"_s),
            .updatedAt = require(json, updatedAt, u"updatedAt"_s)};
}

QList<Note> readNotes(JsonReader &json)
{
    QList<Note> notes;
    json.readArray([&] { notes.append(readNote(json)); });
    return notes;
}

/// A key that is an identifier gets its canonical text: a second key that differs only in case
/// would be a second draft of the same note.
QMap<QString, QString> readDrafts(JsonReader &json)
{
    QMap<QString, QString> drafts;
    json.readObject([&](const QString &name) {
        const std::optional<QUuid> id = parseId(name);
        const QString key = id ? canonicalText(*id) : name;
        if (drafts.contains(key))
            json.fail(Problem::comesTwice);
        drafts.insert(key, json.readString());
    });
    return drafts;
}

NoteSnapshot readSnapshot(JsonReader &json)
{
    std::optional<qint64> version;
    std::optional<QList<Note>> notes;
    std::optional<QString> captureDraft;
    std::optional<QMap<QString, QString>> editingDrafts;
    json.readObject([&](const QString &name) {
        if (name == "version"_L1)
            keep(json, version, json.readInteger());
        else if (name == "notes"_L1)
            keep(json, notes, readNotes(json));
        else if (name == "captureDraft"_L1)
            keep(json, captureDraft, json.readString());
        else if (name == "editingDrafts"_L1)
            keep(json, editingDrafts, readDrafts(json));
        else
            json.skipValue();
    });
    json.finish();
    return {.version = require(json, version, u"version"_s),
            .notes = require(json, notes, u"notes"_s),
            .captureDraft = require(json, captureDraft, u"captureDraft"_s),
            .editingDrafts = require(json, editingDrafts, u"editingDrafts"_s)};
}

} // namespace

NoteSnapshot decodeLegacySnapshot(const QByteArray &bytes)
{
    Utf8Decoder decoder;
    std::optional<QStringView> text =
        decoder.decode({bytes.data(), static_cast<std::size_t>(bytes.size())});
    if (!text)
        throw JsonError(Problem::notUtf8, {});
    if (text->startsWith(QChar::ByteOrderMark))
        text = text->sliced(1);
    JsonReader json(*text);
    NoteSnapshot snapshot = readSnapshot(json);
    if (snapshot.version != NoteSnapshot::currentVersion)
        throw RepositoryError::unsupportedVersion(snapshot.version);
    return snapshot;
}
