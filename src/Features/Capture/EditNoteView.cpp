// SPDX-License-Identifier: MIT
#include "EditNoteView.h"

#include "AccessibleRole.h"
#include "Announcement.h"
#include "AppPreferences.h"
#include "ClipboardReader.h"
#include "DateText.h"
#include "DeleteAlert.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "NotePrimaryButton.h"
#include "NoteStore.h"
#include "NoteTextEditor.h"
#include "PlainButton.h"
#include "QuietIconButton.h"
#include "SaveKeys.h"
#include "TextLabel.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::Literals::StringLiterals;

EditNoteView::EditNoteView(NoteStore &store, const AppPreferences &preferences, Note note,
                           QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_note(std::move(note))
    , m_back(named(u"allNotes"_s, PlainButton::makeBack(this)))
    , m_copy(named(u"copyText"_s,
                   new QuietIconButton(u"doc.on.doc"_s, TextStyles::copyIcon.pixelSize, this)))
    , m_delete(named(u"deleteNote"_s, new QuietIconButton(u"trash"_s, this)))
    , m_date(named(u"noteDate"_s, new TextLabel(TextStyles::noteDate, this)))
    , m_editor(new NoteTextEditor(preferences,
                                  u"A sentence. A thought.\nGet it down before it goes."_s, this))
    , m_status(named(u"editStatus"_s, new TextLabel(TextStyles::status, this)))
    , m_save(named(u"saveEdit"_s, new NotePrimaryButton({}, this)))
    , m_announcement(new Announcement(this))
    , m_saveKeys(new SaveKeys(this))
{
    column(this,
           {row({m_back, stretch(), m_copy, m_delete}),
            row({filling(m_date)}, {0, Metrics::editContentPadding}),
            filling(row({filling(m_editor)}, {0, Metrics::editContentPadding})),
            row({m_status, stretch(), m_save}, {0, Metrics::editContentPadding})},
           {Metrics::editSpacing, Metrics::editPadding});

    setFocusProxy(m_editor);
    setAccessibleRole(this, QAccessible::Client);

    connect(&m_store, &NoteStore::notesChanged, this, &EditNoteView::renderText);
    connect(&m_store, &NoteStore::editsChanged, this, &EditNoteView::renderText);
    connect(&m_store, &NoteStore::errorMessageChanged, this, &EditNoteView::renderStatus);
    connect(&m_store, &NoteStore::hasPendingChangesChanged, this, &EditNoteView::renderStatus);
    connect(&m_preferences, &AppPreferences::languageChanged, this, &EditNoteView::renderTexts);
    connect(m_back, &QAbstractButton::clicked, this, &EditNoteView::backRequested);
    connect(m_copy, &QAbstractButton::clicked, this, &EditNoteView::copy);
    connect(m_delete, &QAbstractButton::clicked, this, &EditNoteView::confirmDelete);
    connect(m_editor, &NoteTextEditor::textEdited, this, &EditNoteView::takeChange);
    connect(m_editor, &NoteTextEditor::compositionChanged, this, &EditNoteView::renderSaving);
    connect(m_save, &QAbstractButton::clicked, this, &EditNoteView::save);
    connect(m_saveKeys, &SaveKeys::pressed, this, &EditNoteView::save);

    renderText();
    renderTexts();
}

EditNoteView::~EditNoteView()
{
    delete m_alert;
}

bool EditNoteView::canSave() const
{
    return !m_store.isReadOnly() && !m_editor->isBlank();
}

void EditNoteView::copy()
{
    m_editor->commitComposition();
    const QString text = m_store.text(m_note);
    QGuiApplication::clipboard()->setText(text);
    // Another program may hold on to the clipboard, and Qt does not say so.
    m_isCopied = ClipboardReader::holdsOwn(text);
    renderCopied();
    if (m_isCopied)
        m_announcement->say(m_preferences.text(u"Copied"_s));
}

void EditNoteView::confirmDelete()
{
    if (m_alert)
        return;
    m_alert = new DeleteAlert(m_preferences, window());
    connect(m_alert, &DeleteAlert::dismissed, this, [this] {
        m_alert = nullptr;
        renderSaving();
    });
    connect(m_alert, &DeleteAlert::confirmed, this, &EditNoteView::deleteNote);
    // From outside the list of notes may be asked for meanwhile.
    connect(this, &QObject::destroyed, m_alert, &QObject::deleteLater);
    renderSaving();
}

void EditNoteView::deleteNote()
{
    if (m_store.deleteNote(m_note))
        Q_EMIT backRequested();
}

void EditNoteView::save()
{
    m_editor->commitComposition();
    if (m_store.saveEdit(m_note))
        Q_EMIT backRequested();
}

void EditNoteView::renderTexts()
{
    m_back->setText(m_preferences.text(u"All notes"_s));
    renderCopied();
    m_copy->setLabel(m_preferences.text(u"Copy text"_s));
    m_delete->setLabel(m_preferences.text(u"Delete note"_s));
    m_date->setText(dateText(m_note.createdAt, DateStyle::yearMonthDayAndTime,
                             m_preferences.resolvedLanguage()));
    renderStatus();
    m_save->setText(m_preferences.text(u"Save changes"_s));
}

void EditNoteView::renderCopied()
{
    m_copy->setSymbol(m_isCopied ? u"checkmark"_s : u"doc.on.doc"_s);
}

/// The editor has it already.
void EditNoteView::takeChange(const TextChange &change)
{
    m_isTyped = true;
    const bool isTaken = m_store.changeDraft(m_note, change);
    m_isTyped = false;
    if (!isTaken)
        m_store.updateDraft(m_note, m_editor->noteText());
}

void EditNoteView::renderText()
{
    if (!m_isTyped)
        m_editor->setNoteText(m_store.text(m_note));
    renderSaving();
}

void EditNoteView::renderStatus()
{
    m_delete->setEnabled(!m_store.isReadOnly());
    m_editor->setEnabled(!m_store.isReadOnly());
    m_status->setText(m_preferences.text(m_store.status()));
    renderSaving();
}

void EditNoteView::renderSaving()
{
    m_save->setEnabled(canSave());
    // The save button lies under the alert, but its keys reach everywhere.
    m_saveKeys->setEnabled(canSave() && !m_alert);
}
