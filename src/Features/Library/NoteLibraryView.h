// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppPreferences;
class NoteStore;
struct Note;

/// The screen of earlier notes: a search field over the list of what matches.
class NoteLibraryView final : public QWidget
{
    Q_OBJECT

public:
    NoteLibraryView(NoteStore &store, const AppPreferences &preferences, QWidget *parent = nullptr);

Q_SIGNALS:
    void noteChosen(const Note &note);
};
