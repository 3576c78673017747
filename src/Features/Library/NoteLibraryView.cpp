// SPDX-License-Identifier: MIT
#include "NoteLibraryView.h"

#include "AccessibleRole.h"
#include "Announcement.h"
#include "AppPreferences.h"
#include "Keys.h"
#include "Layouts.h"
#include "Metrics.h"
#include "Named.h"
#include "NoteListModel.h"
#include "NoteListView.h"
#include "NoteStore.h"
#include "PlainButton.h"
#include "SearchField.h"
#include "SymbolView.h"
#include "TextLabel.h"
#include "TextLine.h"
#include "TintedFrame.h"

#include <QKeyEvent>
#include <initializer_list>

using namespace Qt::Literals::StringLiterals;

namespace {

TextLabel *makeCentredLabel(QWidget *parent, const TextStyle &style, const QString &name)
{
    TextLabel *const label = named(name, new TextLabel(style, parent));
    label->setAlignment(Qt::AlignCenter);
    return label;
}

/// How far the baseline of a line of text is above the bottom of its label.
int baselineHeight(const TextLabel &label)
{
    const QFontMetrics metrics = label.fontMetrics();
    return (TextLine::size(metrics, {}).height() - metrics.capHeight()) / 2;
}

} // namespace

NoteLibraryView::NoteLibraryView(NoteStore &store, const AppPreferences &preferences,
                                 QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_title(named(u"libraryTitle"_s, new TextLabel(TextStyles::screenTitle, this)))
    , m_count(named(u"libraryCount"_s, new TextLabel(TextStyles::noteCount, this)))
    , m_search(named(u"searchNotes"_s, new SearchField(preferences, this)))
    , m_clear(named(u"clearSearch"_s,
                    new PlainButton(TextStyles::clearSearch, u"xmark.circle.fill"_s, this)))
    , m_model(new NoteListModel(store, preferences, this))
    , m_list(named(u"noteList"_s, new NoteListView(m_model, this)))
    , m_empty(named(u"emptyState"_s, new QWidget(this)))
    , m_emptySymbol(
          named(u"emptySymbol"_s, new SymbolView(u"sparkle"_s, TextStyles::emptySymbol, m_empty)))
    , m_emptyHeading(makeCentredLabel(m_empty, TextStyles::emptyHeading, u"emptyHeading"_s))
    , m_emptyHint(makeCentredLabel(m_empty, TextStyles::emptyHint, u"emptyHint"_s))
    , m_announcement(new Announcement(this))
{
    m_search->installEventFilter(this);
    setFocusProxy(m_search);
    setAccessibleRole(this, QAccessible::Client);
    m_list->setSearchField(m_search);

    auto *field = new TintedFrame(Tone::primary, Metrics::searchFill, Metrics::searchRadius, this);
    auto *glass = new SymbolView(u"magnifyingglass"_s, TextStyles::searchSymbol, field);
    row(field, {glass, filling(m_search), m_clear},
        {Metrics::searchSpacing, Metrics::searchPadding});
    column(m_empty,
           {stretch(), aligned(Qt::AlignHCenter, m_emptySymbol), m_emptyHeading, m_emptyHint,
            stretch()},
           {Metrics::emptyStateSpacing, {}});
    column(this,
           {row({aligned(Qt::AlignBottom, m_title), stretch(), aligned(Qt::AlignBottom, m_count)}),
            gap(Metrics::belowLibraryTitle), field, gap(Metrics::belowSearch), filling(m_list),
            filling(m_empty)},
           {0, Metrics::libraryPadding});

    // Assistive tools read the children in their stacking order: as they are seen, top to bottom.
    for (QWidget *const part :
         std::initializer_list<QWidget *>{m_title, m_count, field, m_list, m_empty, m_announcement})
        part->raise();

    connect(&m_store, &NoteStore::notesChanged, this, &NoteLibraryView::renderCount);
    connect(&m_store, &NoteStore::notesChanged, this, &NoteLibraryView::renderResults);
    connect(&m_store, &NoteStore::editsChanged, m_model, &NoteListModel::refresh);
    connect(&m_store, &NoteStore::errorMessageChanged, this, &NoteLibraryView::renderEmptyState);
    connect(&m_preferences, &AppPreferences::languageChanged, this, &NoteLibraryView::renderTexts);
    connect(&m_preferences, &AppPreferences::languageChanged, m_model, &NoteListModel::refresh);
    connect(m_search, &QLineEdit::textChanged, this, &NoteLibraryView::search);
    connect(m_clear, &QAbstractButton::clicked, this, [this] {
        // First, since the button goes with the text.
        m_search->setFocus(Qt::OtherFocusReason);
        m_search->empty();
    });
    connect(m_list, &NoteListView::opened, this,
            [this](const QModelIndex &row) { Q_EMIT noteChosen(Note(m_model->note(row))); });
    connect(m_list, &NoteListView::deletionRequested, this, [this](const QModelIndex &row) {
        if (!m_store.isReadOnly())
            Q_EMIT deletionRequested(Note(m_model->note(row)));
    });
    connect(m_list, &NoteListView::leftUpwards, m_search,
            [this] { m_search->setFocus(Qt::BacktabFocusReason); });
    connect(m_list, &NoteListView::typed, this, [this](const QString &text) {
        m_search->setFocus(Qt::OtherFocusReason);
        m_search->insert(text);
    });

    levelCount();
    renderTexts();
    renderResults();
}

bool NoteLibraryView::select(const Note &note)
{
    const QModelIndex index = m_model->indexNear(note);
    if (!index.isValid())
        return false;
    m_list->setCurrentIndex(index);
    m_list->scrollTo(index);
    m_list->setFocus(Qt::OtherFocusReason);
    return true;
}

void NoteLibraryView::returnToList()
{
    QWidget *const there = m_model->rowCount() > 0 ? static_cast<QWidget *>(m_list) : m_search;
    there->setFocus(Qt::TabFocusReason);
}

void NoteLibraryView::beginSearch()
{
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void NoteLibraryView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LocaleChange)
        levelCount();
}

bool NoteLibraryView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_search && event->type() == QEvent::KeyPress &&
        takeSearchKey(*static_cast<QKeyEvent *>(event)))
        return true;
    return QWidget::eventFilter(watched, event);
}

bool NoteLibraryView::takeSearchKey(const QKeyEvent &event)
{
    if (event.key() == Qt::Key_Down && !Keys::modifiers(event)) {
        enterList();
        return true;
    }
    if (event.key() == Qt::Key_U && event.modifiers() == Qt::ControlModifier) {
        m_search->empty();
        return true;
    }
    return false;
}

void NoteLibraryView::search()
{
    m_list->setCurrentIndex({});
    m_list->scrollToTop();
    renderResults();
    announceResults();
}

/// The search field keeps the keyboard, so that a reader would say nothing of what it finds.
void NoteLibraryView::announceResults()
{
    const int found = m_model->rowCount();
    if (m_search->text().isEmpty())
        m_announcement->forget();
    else if (found == 0)
        m_announcement->sayNews(m_emptyHeading->text());
    else
        m_announcement->sayNews(found == 1 ? m_preferences.text(u"1 note"_s)
                                           : m_preferences.format(u"%d notes"_s, {qint64(found)}));
}

void NoteLibraryView::enterList()
{
    if (m_model->rowCount() > 0)
        m_list->setFocus(Qt::TabFocusReason);
}

/// Puts the count on the title's baseline; both stand at the bottom of their row.
void NoteLibraryView::levelCount()
{
    m_count->setContentsMargins(0, 0, 0, baselineHeight(*m_title) - baselineHeight(*m_count));
}

void NoteLibraryView::renderTexts()
{
    m_title->setText(m_preferences.text(u"Thoughts, kept."_s));
    renderCount();
    m_search->setPlaceholderText(m_preferences.text(u"Find a thought…"_s));
    setAccessibleText(m_search, m_search->placeholderText());
    setAccessibleText(m_clear, m_preferences.text(u"Clear search"_s));
    m_clear->setToolTip(m_clear->accessibleName());
    setAccessibleText(m_list, m_preferences.text(u"Notes"_s));
    renderEmptyState();
}

void NoteLibraryView::renderCount()
{
    m_count->setText(m_preferences.format(u"%02d"_s, {qint64(m_store.snapshot().notes.size())}));
}

void NoteLibraryView::renderResults()
{
    m_clear->setVisible(!m_search->text().isEmpty());
    m_model->show(m_store.matching(m_search->text()), m_search->text());
    // It goes when it is empty, and the keyboard would go to whatever comes next.
    if (m_model->rowCount() == 0 && m_list->hasFocus())
        m_search->setFocus(Qt::OtherFocusReason);
    m_list->setVisible(m_model->rowCount() > 0);
    renderEmptyState();
}

void NoteLibraryView::renderEmptyState()
{
    m_empty->setVisible(m_model->rowCount() == 0);
    if (m_model->rowCount() > 0)
        return;
    // An empty store invites to write; one that could not be read has its say in the banner alone.
    const bool isSearching = !m_search->text().isEmpty();
    const bool isUnread = m_store.isReadOnly() && !isSearching;
    for (QWidget *const part :
         std::initializer_list<QWidget *>{m_emptySymbol, m_emptyHeading, m_emptyHint})
        part->setVisible(!isUnread);
    m_emptySymbol->setSymbol(isSearching ? u"magnifyingglass"_s : u"sparkle"_s);
    m_emptyHeading->setText(
        m_preferences.text(isSearching ? u"No matching thoughts yet."_s
                                       : u"Every good idea starts\nwith a quick note."_s));
    m_emptyHint->setText(m_preferences.text(
        isSearching ? u"Try another keyword."_s : u"Open Capture to write your first one."_s));
}
