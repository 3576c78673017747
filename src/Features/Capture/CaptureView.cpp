// SPDX-License-Identifier: MIT
#include "CaptureView.h"

#include "AccessibleRole.h"
#include "AppPreferences.h"
#include "DateText.h"
#include "Dot.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "NotePrimaryButton.h"
#include "NoteTextEditor.h"
#include "SaveKeys.h"
#include "SymbolView.h"
#include "TextLabel.h"
#include "UserText.h"

#include <QDateTime>
#include <chrono>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How long the date on screen may be wrong after the clock was set or the machine slept.
constexpr std::chrono::milliseconds longestDateWait = 1min;

std::chrono::milliseconds untilTomorrow(Timestamp time)
{
    const auto now =
        QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(time.millisecondsSince1970()));
    return std::chrono::milliseconds(now.msecsTo(now.date().addDays(1).startOfDay()));
}

} // namespace

CaptureView::CaptureView(NoteStore &store, const AppPreferences &preferences, QWidget *parent,
                         NoteStore::Clock clock)
    : QWidget(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_clock(std::move(clock))
    , m_dot(new Dot(Metrics::captureDot, Tone::accent, this))
    , m_date(named(u"captureDate"_s, new TextLabel(TextStyles::captureDate, this)))
    , m_title(named(u"captureTitle"_s, new TextLabel(TextStyles::screenTitle, this)))
    , m_subtitle(named(u"captureSubtitle"_s, new TextLabel(TextStyles::subtitle, this)))
    , m_editor(new NoteTextEditor(preferences,
                                  u"A sentence. A thought.\nGet it down before it goes."_s, this))
    , m_statusSymbol(named(u"captureStatusSymbol"_s,
                           new SymbolView(u"checkmark.circle"_s, TextStyles::status, this)))
    , m_status(named(u"captureStatus"_s, new TextLabel(TextStyles::status, this)))
    , m_count(named(u"characterCount"_s, new TextLabel(TextStyles::status, this)))
    , m_hint(named(u"saveHint"_s, new TextLabel(TextStyles::shortcutHint, this)))
    , m_save(named(u"saveNote"_s, new NotePrimaryButton(u"arrow.up.right"_s, this)))
    , m_saveKeys(new SaveKeys(this))
{
    m_midnight.setSingleShot(true);

    column(this,
           {row({m_dot, m_date, stretch()}, {Metrics::captureDateSpacing, {}}),
            gap(Metrics::belowCaptureDate), m_title, gap(Metrics::aboveSubtitle), m_subtitle,
            gap(Metrics::belowSubtitle), filling(m_editor), gap(Metrics::aboveStatus),
            row({m_statusSymbol, m_status, stretch(), m_count}, {Metrics::statusSpacing, {}}),
            gap(Metrics::aboveActions),
            row({m_hint, stretch(), m_save}, {Metrics::actionSpacing, {}})},
           {0, Metrics::screenPadding});

    setFocusProxy(m_editor);
    setAccessibleRole(this, QAccessible::Client);

    connect(&m_store, &NoteStore::draftChanged, this, &CaptureView::renderDraft);
    connect(&m_store, &NoteStore::errorMessageChanged, this, &CaptureView::renderStatus);
    connect(&m_store, &NoteStore::hasPendingChangesChanged, this, &CaptureView::renderStatus);
    connect(&m_preferences, &AppPreferences::languageChanged, this, &CaptureView::renderTexts);
    connect(m_editor, &NoteTextEditor::textEdited, this, &CaptureView::takeChange);
    connect(m_editor, &NoteTextEditor::compositionChanged, this, &CaptureView::renderSaving);
    connect(m_save, &QAbstractButton::clicked, this, &CaptureView::save);
    connect(m_saveKeys, &SaveKeys::pressed, this, &CaptureView::save);
    connect(&m_midnight, &QTimer::timeout, this, &CaptureView::renderDate);

    renderDraft();
    renderTexts();
}

bool CaptureView::canSave() const
{
    return !m_store.isReadOnly() && !m_editor->isBlank();
}

void CaptureView::save()
{
    m_editor->commitComposition();
    if (m_store.saveCapture())
        Q_EMIT saved();
}

void CaptureView::renderTexts()
{
    renderDate();
    m_title->setText(m_preferences.text(u"What’s on your mind?"_s));
    m_subtitle->setText(m_preferences.text(u"Catch the idea. Keep your flow."_s));
    renderCount();
    renderStatus();
    m_hint->setText(m_preferences.text(u"⌘ ↵ Save & close"_s));
    m_save->setText(m_preferences.text(u"Save this thought"_s));
}

/// The editor has it already.
void CaptureView::takeChange(const TextChange &change)
{
    m_isTyped = true;
    const bool isTaken = m_store.changeDraft(change);
    m_isTyped = false;
    if (!isTaken) {
        m_store.setDraft(m_editor->noteText());
        return;
    }
    m_characters += characterCountChange(m_store.draft(), change);
    renderCount();
}

void CaptureView::renderDraft()
{
    if (!m_isTyped) {
        m_editor->setNoteText(m_store.draft());
        m_characters = characterCount(m_store.draft());
        renderCount();
    }
    renderSaving();
}

void CaptureView::renderCount()
{
    m_count->setText(m_characters == 1
                         ? m_preferences.text(u"1 character"_s)
                         : m_preferences.format(u"%d characters"_s, {qint64(m_characters)}));
}

void CaptureView::renderStatus()
{
    m_editor->setEnabled(!m_store.isReadOnly());
    m_statusSymbol->setSymbol(m_store.failure() ? u"exclamationmark.circle"_s
                                                : u"checkmark.circle"_s);
    m_status->setText(m_preferences.text(m_store.status()));
    renderSaving();
}

void CaptureView::renderSaving()
{
    m_save->setEnabled(canSave());
    m_saveKeys->setEnabled(canSave());
}

void CaptureView::renderDate()
{
    const Timestamp now = m_clock();
    m_date->setText(dateText(now, DateStyle::monthAndDay, m_preferences.resolvedLanguage()) + u' ' +
                    m_preferences.text(u"· NOW"_s));
    m_midnight.start(std::min(untilTomorrow(now), longestDateWait));
}
