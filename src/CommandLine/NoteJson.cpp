// SPDX-License-Identifier: MIT
#include "NoteJson.h"

#include "NoteId.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

QByteArray jsonOf(const Note &note)
{
    const QJsonObject object{{u"id"_s, canonicalText(note.id)},
                             {u"created"_s, note.createdAt.toIso8601()},
                             {u"updated"_s, note.updatedAt.toIso8601()},
                             {u"title"_s, note.title()},
                             {u"body"_s, note.body}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray jsonOf(const QList<Note> &notes)
{
    QByteArray bytes = "[";
    for (const Note &note : notes) {
        bytes += bytes.size() == 1 ? "\n" : ",\n";
        bytes += jsonOf(note);
    }
    return bytes + (notes.isEmpty() ? "]" : "\n]");
}
