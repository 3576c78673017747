// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QMap>
#include <QString>
#include <optional>
#include <string>
#include <vector>

/// What a load has to bring, as the simulation knows it: the notes as they were saved, and what was
/// kept of the typing since.
struct StoredState {
    struct Kept {
        QString base; ///< The text from which the typing went on.
        QString text;

        friend bool operator==(const Kept &, const Kept &) = default;
    };

    /// The notes ordered by their identifiers.
    NoteSnapshot saved;

    /// By the key of the draft.
    QMap<QString, Kept> kept;

    /// The saved notes with what was kept, as a load shows them.
    [[nodiscard]] NoteSnapshot shown() const;

    /// Does to what is kept what NoteRepository::keepTyped() does in a program that knows of these
    /// notes.
    void keep(const NoteSnapshot &typed, const NoteSnapshot &known);

    /// The same for what a save does before the notes change.
    void prepareSave(const NoteSnapshot &next, const NoteSnapshot &known, const QUuid &captureId);
};

/// Two texts with an empty line between them, as a load shows what was typed above what another
/// program wrote.
[[nodiscard]] QString bothTexts(const QString &first, const QString &second);

/// By its identifier.
[[nodiscard]] NoteSnapshot inOrder(NoteSnapshot snapshot);

/// The key of the draft of the capture screen, beside the identifiers of notes.
[[nodiscard]] const QString &captureKey();

/// The text of a draft as it was saved, of a note without a draft its body; nothing without a note.
[[nodiscard]] std::optional<QString> savedText(const NoteSnapshot &saved, const QString &key);

void setText(NoteSnapshot &snapshot, const QString &key, const QString &text);

/// The files, by their paths in the Markdown folder, that the two states have differently.
[[nodiscard]] std::vector<std::string> filesThatDiffer(const NoteSnapshot &a,
                                                       const NoteSnapshot &b);

/// One line for each note and draft.
[[nodiscard]] std::string describe(const NoteSnapshot &snapshot);
