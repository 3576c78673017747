// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

/// Both texts, an empty line between them; the other one alone where one is blank.
[[nodiscard]] QString joined(const QString &first, const QString &second);

/// What another program stored, with what was typed here and is not stored put into it. Given are
/// the notes as they were last read or written here, as they are on the screen, and as the other
/// program left them. Nothing that either of the two typed is missing from the result:
///
/// - a draft that only one of them changed is that one's; of two, ours stands above theirs;
/// - an edit of a note that they changed stays the note's draft;
/// - an edit of a note that they removed stands below the text of the capture screen.
[[nodiscard]] NoteSnapshot merged(const NoteSnapshot &last, const NoteSnapshot &ours,
                                  const NoteSnapshot &theirs);
