// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"

#include <QPointer>
#include <QWidget>

class Announcement;
class AppPreferences;
class DeleteAlert;
class NotePrimaryButton;
class NoteStore;
class NoteTextEditor;
class PlainButton;
class QuietIconButton;
class SaveKeys;
class TextLabel;
struct TextChange;

/// The screen for one existing note. What is typed is the store's editing draft until it is saved.
class EditNoteView final : public QWidget {
    Q_OBJECT

public:
    EditNoteView(NoteStore &store, const AppPreferences &preferences, Note note,
                 QWidget *parent = nullptr);
    ~EditNoteView() override;

Q_SIGNALS:
    /// Back to the library: by the button, or after the note was saved or deleted.
    void backRequested();

private:
    [[nodiscard]] bool canSave() const;
    void copy();
    void confirmDelete();
    void deleteNote();
    void save();
    void takeChange(const TextChange &change);
    void renderTexts();
    void renderCopied();
    void renderText();
    void renderStatus();
    void renderSaving();

    NoteStore &m_store;
    const AppPreferences &m_preferences;
    const Note m_note;
    bool m_isCopied = false;

    /// The edit is being changed to what the editor has.
    bool m_isTyped = false;

    PlainButton *const m_back;
    QuietIconButton *const m_copy;
    QuietIconButton *const m_delete;
    TextLabel *const m_date;
    NoteTextEditor *const m_editor;
    TextLabel *const m_status;
    NotePrimaryButton *const m_save;
    Announcement *const m_announcement;
    SaveKeys *const m_saveKeys;

    /// Lies over the whole window while it asks.
    QPointer<DeleteAlert> m_alert;
};
