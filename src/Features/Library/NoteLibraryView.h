// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppPreferences;
class Announcement;
class NoteListModel;
class NoteListView;
class NoteStore;
class PlainButton;
class SearchField;
class QKeyEvent;
class SymbolView;
class TextLabel;
struct Note;

/// The screen of earlier notes: a search field over the list of what matches.
///
/// Opens with the keyboard in the search field. Down goes to the list, Up from its first row back;
/// typing in the list goes on searching; Ctrl+U empties the field.
class NoteLibraryView final : public QWidget {
    Q_OBJECT

public:
    NoteLibraryView(NoteStore &store, const AppPreferences &preferences, QWidget *parent = nullptr);

    /// Puts the keyboard on the note, or where it would be if it is gone. False when no note is
    /// there.
    bool select(const Note &note);

    /// Puts the keyboard on the list where it was last, or into the search field over an empty one.
    void returnToList();

    /// Puts the keyboard into the search field, where the next letter begins another search.
    void beginSearch();

Q_SIGNALS:
    void noteChosen(const Note &note);
    void deletionRequested(const Note &note);

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool takeSearchKey(const QKeyEvent &event);
    void search();
    void enterList();
    void levelCount();
    void announceResults();
    void renderTexts();
    void renderCount();
    void renderResults();
    void renderEmptyState();

    NoteStore &m_store;
    const AppPreferences &m_preferences;

    TextLabel *const m_title;
    TextLabel *const m_count;
    SearchField *const m_search;
    PlainButton *const m_clear;
    NoteListModel *const m_model;
    NoteListView *const m_list;
    QWidget *const m_empty;
    SymbolView *const m_emptySymbol;
    TextLabel *const m_emptyHeading;
    TextLabel *const m_emptyHint;
    Announcement *const m_announcement;
};
