// SPDX-License-Identifier: MIT
#pragma once

#include "NoteStore.h"

#include <QTimer>
#include <QWidget>

class AppPreferences;
class Dot;
class NotePrimaryButton;
class NoteTextEditor;
class SaveKeys;
class SymbolView;
class TextLabel;

/// The screen for a new thought. Its text lives in the store as the capture draft.
class CaptureView final : public QWidget {
    Q_OBJECT

public:
    /// The clock gives the date on screen, which changes at midnight.
    CaptureView(NoteStore &store, const AppPreferences &preferences, QWidget *parent = nullptr,
                NoteStore::Clock clock = &Timestamp::now);

Q_SIGNALS:
    /// The thought is a note on the disk.
    void saved();

private:
    [[nodiscard]] bool canSave() const;
    void save();
    void takeChange(const TextChange &change);
    void renderTexts();
    void renderDate();
    void renderDraft();
    void renderCount();
    void renderStatus();
    void renderSaving();

    NoteStore &m_store;
    const AppPreferences &m_preferences;
    NoteStore::Clock m_clock;
    QTimer m_midnight;

    /// In the draft.
    qsizetype m_characters = 0;

    /// The draft is being changed to what the editor has.
    bool m_isTyped = false;

    // In the order in which they are seen, which is that in which assistive tools read them.
    Dot *const m_dot;
    TextLabel *const m_date;
    TextLabel *const m_title;
    TextLabel *const m_subtitle;
    NoteTextEditor *const m_editor;
    SymbolView *const m_statusSymbol;
    TextLabel *const m_status;
    TextLabel *const m_count;
    TextLabel *const m_hint;
    NotePrimaryButton *const m_save;
    SaveKeys *const m_saveKeys;
};
