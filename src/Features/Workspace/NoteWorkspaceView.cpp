// SPDX-License-Identifier: MIT
#include "NoteWorkspaceView.h"

#include "AppPreferences.h"
#include "CaptureView.h"
#include "Composition.h"
#include "DeleteAlert.h"
#include "Divider.h"
#include "Dot.h"
#include "EditNoteView.h"
#include "ErrorBanner.h"
#include "FileUrl.h"
#include "Keys.h"
#include "KeysCard.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "NoteLibraryView.h"
#include "NoteStore.h"
#include "PlainButton.h"
#include "PreferencesMenu.h"
#include "QuietIconButton.h"
#include "SymbolView.h"
#include "TakeInAlert.h"
#include "TextLabel.h"

#include <QKeyEvent>
#include <QLayout>
#include <algorithm>
#include <initializer_list>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Before translation.
QString titleOf(WorkspaceTab tab)
{
    return tab == WorkspaceTab::capture ? u"Capture"_s : u"Notes"_s;
}

} // namespace

NoteWorkspaceView::NoteWorkspaceView(NoteStore &store, AppPreferences &preferences, QWidget *parent)
    : GlassSurface(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_tabs{named(u"captureTab"_s, PlainButton::makeTab(this)),
             named(u"libraryTab"_s, PlainButton::makeTab(this))}
    , m_collapse(named(u"collapse"_s, new QuietIconButton(u"minus"_s, this)))
    , m_banner(new ErrorBanner(this))
    , m_content(new QWidget(this))
    , m_storage(named(u"storage"_s, new TextLabel(TextStyles::footer, this)))
    , m_count(named(u"noteCount"_s, new TextLabel(TextStyles::footer, this)))
    , m_tagline(named(u"tagline"_s, new TextLabel(TextStyles::footer, this)))
{
    setIdentifier(this, u"noteWorkspace"_s);
    setFixedWidth(Metrics::panelSize.width());
    // Lower on a screen that is. What is inside gives way.
    setMinimumHeight(0);
    setMaximumHeight(Metrics::panelSize.height());
    resize(Metrics::panelSize);

    auto *menu = new PreferencesMenu(
        m_preferences, [this] { return m_store.notesFolderURL(); }, this);
    auto *mark = new SymbolView(u"square.and.pencil"_s, TextStyles::productMark, this);
    auto *title = new TextLabel(TextStyles::productTitle, u"Quillmark"_s, this);
    auto *drive = new SymbolView(u"internaldrive"_s, TextStyles::footer, this);
    auto *divider = new Divider(this);
    auto *dot = new Dot(Metrics::footerDot, Tone::secondary, this);
    column(m_content, {});
    column(this, {row({mark, title, stretch(),
                       row({m_tabs[0], m_tabs[1]}, {Metrics::tabSpacing, {}}), menu, m_collapse},
                      {Metrics::headerSpacing, Metrics::headerPadding}),
                  m_banner, filling(m_content), row({divider}, {0, Metrics::dividerMargins}),
                  row({drive, m_storage, stretch(), m_count, dot, m_tagline},
                      {Metrics::footerSpacing, Metrics::footerPadding})});
    setTabOrder(m_tabs[1], menu);
    setTabOrder(menu, m_collapse);
    // Assistive tools read the children in their stacking order: as they are seen, top to bottom.
    for (QWidget *const part : std::initializer_list<QWidget *>{
             mark, title, m_tabs[0], m_tabs[1], menu, m_collapse, m_banner, m_content, divider,
             drive, m_storage, m_count, dot, m_tagline})
        part->raise();

    connect(&m_store, &NoteStore::notesChanged, this, &NoteWorkspaceView::renderCount);
    connect(&m_store, &NoteStore::errorMessageChanged, this, &NoteWorkspaceView::renderBanner);
    connect(&m_store, &NoteStore::errorPlaceChanged, this, &NoteWorkspaceView::renderBanner);
    connect(&m_store, &NoteStore::hasCopiesChanged, this, &NoteWorkspaceView::renderBanner);
    connect(&m_store, &NoteStore::errorContextChanged, this, &NoteWorkspaceView::renderBanner);
    connect(&m_preferences, &AppPreferences::languageChanged, this,
            &NoteWorkspaceView::renderTexts);
    for (const WorkspaceTab tab : allWorkspaceTabs) {
        const PlainButton *const button = m_tabs[static_cast<size_t>(tab)];
        connect(button, &QAbstractButton::clicked, this, [this, tab] { chooseTab(tab); });
    }
    connect(menu, &PreferencesMenu::showFolderRequested, this,
            &NoteWorkspaceView::showFolderRequested);
    connect(m_collapse, &QAbstractButton::clicked, this, &NoteWorkspaceView::collapseRequested);
    connect(m_banner, &ErrorBanner::retryRequested, this, &NoteWorkspaceView::retry);
    connect(m_banner, &ErrorBanner::showRequested, this, &NoteWorkspaceView::showFile);
    connect(m_banner, &ErrorBanner::reloadRequested, this, &NoteWorkspaceView::reload);
    connect(m_banner, &ErrorBanner::takeInRequested, this, &NoteWorkspaceView::askToTakeIn);

    showScreen();
    renderTabs();
    renderTexts();
}

NoteWorkspaceView::~NoteWorkspaceView()
{
    delete m_card;
}

void NoteWorkspaceView::showWayOut()
{
    m_showsWayOut = true;
    renderBanner();
}

void NoteWorkspaceView::showLibrary()
{
    chooseTab(WorkspaceTab::library);
}

void NoteWorkspaceView::chooseTab(WorkspaceTab tab)
{
    const bool isShown = tab == m_tab && !m_selectedNote;
    m_selectedNote.reset();
    m_tab = tab;
    if (!isShown)
        showScreen();
    renderTabs();
}

void NoteWorkspaceView::open(const Note &note)
{
    m_selectedNote = note;
    showScreen();
}

void NoteWorkspaceView::keyPressEvent(QKeyEvent *event)
{
    if (!takeKey(*event))
        GlassSurface::keyPressEvent(event);
}

bool NoteWorkspaceView::takeKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = Keys::modifiers(event);
    const bool isControl = modifiers == Qt::ControlModifier;
    const bool isControlShift = modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
    switch (event.key()) {
    case Qt::Key_F:
        if (isControl)
            search();
        return isControl;
    case Qt::Key_N:
        if (isControl)
            chooseTab(WorkspaceTab::capture);
        return isControl;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        // With two tabs the next one is the one before.
        if (isControl || isControlShift)
            chooseTab(m_tab == WorkspaceTab::capture ? WorkspaceTab::library
                                                     : WorkspaceTab::capture);
        return isControl || isControlShift;
    case Qt::Key_Left:
        if (modifiers != Qt::AltModifier || !m_selectedNote)
            return false;
        closeNote();
        return true;
    case Qt::Key_F1:
    case Qt::Key_Question:
        if (event.key() == Qt::Key_Question ? !(isControl || isControlShift) : modifiers != 0)
            return false;
        showKeys();
        return true;
    default:
        return false;
    }
}

void NoteWorkspaceView::search()
{
    if (m_tab != WorkspaceTab::library || m_selectedNote)
        chooseTab(WorkspaceTab::library);
    if (auto *library = qobject_cast<NoteLibraryView *>(m_screen))
        library->beginSearch();
}

void NoteWorkspaceView::confirmDeletion(const Note &note)
{
    auto *alert = new DeleteAlert(m_preferences, window());
    m_card = alert;
    connect(alert, &DeleteAlert::confirmed, this, [this, note] { deleteNote(note); });
}

void NoteWorkspaceView::deleteNote(const Note &note)
{
    auto *const library = qobject_cast<NoteLibraryView *>(m_screen);
    if (m_store.deleteNote(note) && library)
        library->returnToList();
}

void NoteWorkspaceView::showKeys()
{
    Composition::endIn(*this);
    m_card = new KeysCard(m_preferences, window());
}

void NoteWorkspaceView::closeNote()
{
    const std::optional<Note> note = std::exchange(m_selectedNote, std::nullopt);
    showScreen(note);
}

void NoteWorkspaceView::retry()
{
    if (!m_store.isReadOnly())
        m_store.flush();
}

void NoteWorkspaceView::reload()
{
    if (m_store.reload())
        showReloaded();
}

void NoteWorkspaceView::askToTakeIn()
{
    const std::optional<TakeInPlan> plan = m_store.planTakeIn();
    if (!plan)
        return;
    auto *alert = new TakeInAlert(m_preferences, *plan, window());
    m_card = alert;
    connect(alert, &TakeInAlert::confirmed, this, [this, plan] { takeIn(*plan); });
}

void NoteWorkspaceView::takeIn(const TakeInPlan &plan)
{
    if (m_store.takeIn(plan))
        showReloaded();
}

void NoteWorkspaceView::showReloaded()
{
    if (m_selectedNote) {
        const QList<Note> &notes = m_store.snapshot().notes;
        const auto note = std::ranges::find(notes, m_selectedNote->id, &Note::id);
        if (note == notes.end())
            closeNote();
        else
            open(*note);
    }
    // The button that asked is gone with the banner.
    m_screen->setFocus(Qt::OtherFocusReason);
}

void NoteWorkspaceView::showFile()
{
    if (const auto &place = m_store.errorPlace())
        Q_EMIT showFileRequested(fileUrl(*place));
}

QWidget *NoteWorkspaceView::makeScreen()
{
    if (m_selectedNote) {
        auto *edit = new EditNoteView(m_store, m_preferences, *m_selectedNote, m_content);
        connect(edit, &EditNoteView::backRequested, this, &NoteWorkspaceView::closeNote);
        return edit;
    }
    switch (m_tab) {
    case WorkspaceTab::capture: {
        auto *capture = new CaptureView(m_store, m_preferences, m_content);
        connect(capture, &CaptureView::saved, this, &NoteWorkspaceView::collapseRequested);
        return capture;
    }
    case WorkspaceTab::library: {
        auto *library = new NoteLibraryView(m_store, m_preferences, m_content);
        connect(library, &NoteLibraryView::noteChosen, this, &NoteWorkspaceView::open);
        connect(library, &NoteLibraryView::deletionRequested, this,
                &NoteWorkspaceView::confirmDeletion);
        return library;
    }
    }
    Q_UNREACHABLE();
}

void NoteWorkspaceView::showScreen(const std::optional<Note> &returningFrom)
{
    // It belongs to the field in which it began, and later events would bring it to another one.
    Composition::endIn(*this);
    QWidget *const earlier = std::exchange(m_screen, makeScreen());
    // The keyboard goes where it is to be before the earlier screen is gone, or it would come by a
    // tab on its way, which readers would tell of.
    replace(m_content->layout(), earlier, m_screen, [&] {
        m_screen->show();
        auto *const library = qobject_cast<NoteLibraryView *>(m_screen);
        if (!library || !returningFrom || !library->select(*returningFrom))
            m_screen->setFocus(Qt::OtherFocusReason);
    });
}

QString NoteWorkspaceView::failureText() const
{
    const auto &failure = m_store.failure();
    if (!failure && m_store.hasCopies())
        return m_preferences.text(
            u"A synchronising program left copies of notes here. They are not among your notes yet."_s);
    if (!failure)
        return {};
    QString text = m_preferences.text(*failure);
    if (const auto &context = m_store.errorContext())
        text.prepend(m_preferences.text(*context) + u'\n');
    const QString place = m_store.errorPlace() ? shownPath(*m_store.errorPlace()) : QString();
    // Some sentences name it themselves.
    if (!place.isEmpty() && !text.contains(place))
        text += u'\n' + place;
    if (m_showsWayOut)
        text += u'\n' + m_preferences.text(u"To quit all the same, press Ctrl+Q."_s);
    return text;
}

void NoteWorkspaceView::renderTexts()
{
    for (const WorkspaceTab tab : allWorkspaceTabs)
        m_tabs[static_cast<size_t>(tab)]->setText(m_preferences.text(titleOf(tab)));
    m_collapse->setLabel(m_preferences.text(u"Close · Esc"_s));
    m_banner->setRetryText(m_preferences.text(u"Retry"_s));
    m_banner->setShowText(m_preferences.text(u"Show file"_s));
    m_banner->setReloadText(m_preferences.text(u"Reload"_s));
    m_banner->setTakeInText(m_preferences.text(u"Take in copies…"_s));
    renderBanner();
    m_storage->setText(m_preferences.text(u"Markdown · local"_s));
    renderCount();
    m_tagline->setText(m_preferences.text(u"Capture now. Think later."_s));
}

void NoteWorkspaceView::renderTabs()
{
    for (const WorkspaceTab tab : allWorkspaceTabs)
        m_tabs[static_cast<size_t>(tab)]->setChecked(tab == m_tab);
}

void NoteWorkspaceView::renderBanner()
{
    m_showsWayOut = m_showsWayOut && m_store.failure();
    const QString failure = failureText();
    if (failure.isEmpty() && m_screen && m_banner->isAncestorOf(focusWidget()))
        m_screen->setFocus(Qt::OtherFocusReason);
    m_banner->setMessage(failure);
    m_banner->setRetryVisible(m_store.failure().has_value());
    m_banner->setRetryEnabled(!m_store.isReadOnly());
    m_banner->setShowVisible(m_store.errorPlace().has_value());
    m_banner->setReloadVisible(m_store.canReload());
    m_banner->setTakeInVisible(m_store.canTakeIn());
}

void NoteWorkspaceView::renderCount()
{
    const qsizetype count = m_store.snapshot().notes.size();
    m_count->setText(count == 1 ? m_preferences.text(u"1 note"_s)
                                : m_preferences.format(u"%d notes"_s, {qint64(count)}));
}
