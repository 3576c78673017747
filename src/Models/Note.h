// SPDX-License-Identifier: MIT
#pragma once

#include "Timestamp.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QUuid>

/// One finished note. The body is kept verbatim: nothing trims it or changes its line ends.
struct Note {
    QUuid id;
    QString body;
    Timestamp createdAt;
    Timestamp updatedAt;

    /// The first non-empty line of the body, exactly as written; empty when there is none.
    /// Lines end at LF, VT, FF, CR, CR LF, NEL, U+2028 or U+2029.
    [[nodiscard]] QString title() const;

    /// The non-empty lines after the title, joined with single spaces, or with another character
    /// where it counts that lines end there.
    [[nodiscard]] QString excerpt(QChar joint = u' ') const;

    /// Whether excerpt() is not empty, without making it.
    [[nodiscard]] bool hasExcerpt() const noexcept;

    friend bool operator==(const Note &, const Note &) = default;
};

/// The whole persisted state; always loaded and saved as one.
struct NoteSnapshot {
    /// The only format version there is.
    static constexpr qint64 currentVersion = 1;

    qint64 version = currentVersion;

    /// In the order in which they are kept, which is not the order of display.
    QList<Note> notes;

    /// The unsent text of the capture screen; empty when there is none.
    QString captureDraft;

    /// Unsaved edits: the canonical text of a note's identifier to the unsaved body.
    QMap<QString, QString> editingDrafts;

    friend bool operator==(const NoteSnapshot &, const NoteSnapshot &) = default;
};
