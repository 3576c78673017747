// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "NoteId.h"
#include "NoteMarkdownCodec.h"

#include <QByteArray>
#include <QUuid>
#include <string>

/// An identifier that ends with the number, for tests that need to know the order of the files.
inline QUuid numberedId(int number)
{
    return QUuid(0x8C5B6F0E, 0x3C1D, 0x4E0A, 0x9C, 0x55, 0, 0, 0, 0,
                 static_cast<uchar>(number / 256), static_cast<uchar>(number % 256));
}

inline Note numberedNote(int number, const QString &body)
{
    const Timestamp created{760000000.25 + number};
    return {.id = numberedId(number), .body = body, .createdAt = created, .updatedAt = created};
}

inline NoteSnapshot snapshotOf(const QList<Note> &notes, const QString &captureDraft = {},
                               const QMap<QString, QString> &editingDrafts = {})
{
    return {.version = NoteSnapshot::currentVersion,
            .notes = notes,
            .captureDraft = captureDraft,
            .editingDrafts = editingDrafts};
}

/// Where the note's file lies in the data folder.
inline std::string noteFile(const QUuid &id)
{
    return "Markdown/Notes/" + canonicalText(id).toStdString() + ".md";
}

inline std::string draftFile(const QUuid &id)
{
    return "Markdown/Drafts/" + canonicalText(id).toStdString() + ".md";
}

inline QByteArray noteBytes(const Note &note)
{
    return NoteMarkdownCodec::encode(note).toUtf8();
}
