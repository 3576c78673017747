// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QWidget>

class AppPreferences;
class NoteStore;

/// The screen for one existing note. What is typed is the store's editing draft until it is saved.
class EditNoteView final : public QWidget
{
    Q_OBJECT

public:
    EditNoteView(NoteStore &store, const AppPreferences &preferences, Note note,
                 QWidget *parent = nullptr);

Q_SIGNALS:
    /// Back to the library: by the button, or after the note was saved or deleted.
    void backRequested();
};
