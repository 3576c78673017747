// SPDX-License-Identifier: MIT
#include "NoteLibraryView.h"
#include "AppPreferences.h"
#include "FailingRepository.h"
#include "Note.h"
#include "NoteListView.h"
#include "NoteStore.h"
#include "Pixels.h"
#include "SymbolView.h"
#include "Views.h"

#include <QAbstractItemModel>
#include <QAccessible>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class NoteLibraryViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsTheNotesLastUpdatedFirst();
    void countsAllNotesInTwoDigitsAlsoDuringASearch();
    void countsMoreThanNinetyNineNotesInFull();
    void searchesWithEachKey();
    void showsTheClearButtonWhileTheFieldHoldsAnything();
    void emptiesTheFieldWithTheButtonAndGoesOnTyping();
    void emptiesTheFieldWithTheKeyboard();
    void invitesToWriteWhenThereAreNoNotes();
    void saysNothingWhenTheNotesCouldNotBeRead();
    void saysThatNothingMatches();
    void hasAMenuInTheLanguageOfTheUser();
    void takesASpaceForASearch();
    void marksTheRowUnderThePointerAlone();
    void opensTheNoteThatIsClicked();
    void opensNothingBetweenTheRows();
    void opensWithTheKeyboard();
    void goesBackToTheSearchFromTheFirstRow();
    void goesToTheFirstAndLastNote();
    void goesAPageFurtherWithoutPassingANote();
    void showsEachRowWhereTheLastOneEnds();
    void searchesForWhatIsTypedInTheList();
    void searchesForWhatIsComposedInTheList();
    void startsAtTheTopWithEachSearch();
    void keepsThePlaceWhenNotesChange();
    void putsTheKeyboardOnANote();
    void leavesEscapeToThePanel();
    void isAListOfItemsForAReader();
    void readsTheBeginningOfAnEndlessTitleAndExcerpt();
    void opensTheNoteThatAReaderPresses();
    void changesItsTextsWithTheLanguage();
};

namespace {

Note noteOf(const QString &body, double updatedAt)
{
    return {QUuid::createUuid(), body, Timestamp{updatedAt}, Timestamp{updatedAt}};
}

NoteSnapshot withNotes(const QStringList &bodies)
{
    NoteSnapshot snapshot;
    double updatedAt = 1000;
    for (const QString &body : bodies)
        snapshot.notes.append(noteOf(body, updatedAt--));
    return snapshot;
}

NoteSnapshot withManyNotes(int count)
{
    QStringList bodies;
    for (int i = 0; i < count; ++i)
        bodies.append(i % 3 ? u"note %1\nwith more"_s.arg(i) : u"note %1"_s.arg(i));
    return withNotes(bodies);
}

struct Screen {
    explicit Screen(NoteSnapshot snapshot)
        : repository(new FailingRepository(std::move(snapshot)))
        , store(std::unique_ptr<NoteRepository>(repository))
        , view(store, preferences)
    {
        view.resize(424, 440);
        QObject::connect(&view, &NoteLibraryView::noteChosen, &view,
                         [this](const Note &note) { chosen.append(note.body); });
    }

    QLineEdit *search() { return Views::find<QLineEdit>(view, "searchNotes"); }
    NoteListView *list() { return Views::find<NoteListView>(view, "noteList"); }
    QAbstractItemModel *model() { return view.findChild<NoteListView *>()->model(); }

    QStringList titles()
    {
        QStringList titles;
        for (int row = 0; row < model()->rowCount(); ++row)
            titles.append(model()->index(row, 0).data().toString());
        return titles;
    }

    QPoint middleOf(int row) { return list()->visualRect(model()->index(row, 0)).center(); }
    QString currentTitle() { return list()->currentIndex().data().toString(); }
    QString emptySymbol() { return Views::find<SymbolView>(view, "emptySymbol")->symbol(); }

    FailingRepository *repository;
    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    NoteStore store;
    NoteLibraryView view;
    QStringList chosen;
};

} // namespace

void NoteLibraryViewTest::listsTheNotesLastUpdatedFirst()
{
    NoteSnapshot snapshot;
    snapshot.notes = {noteOf(u"old"_s, 1), noteOf(u"new"_s, 3), noteOf(u"newer in the file"_s, 3)};

    Screen screen(snapshot);
    QVERIFY(Views::show(screen.view));

    QCOMPARE(screen.titles(), (QStringList{u"new"_s, u"newer in the file"_s, u"old"_s}));
    QVERIFY(screen.list());
    QVERIFY(!Views::find(screen.view, "emptyState"));
}

void NoteLibraryViewTest::countsAllNotesInTwoDigitsAlsoDuringASearch()
{
    Screen screen(withNotes({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s}));
    QVERIFY(Views::show(screen.view));
    QCOMPARE(Views::text(screen.view, "libraryCount"), u"05"_s);

    QTest::keyClicks(screen.search(), u"b"_s);

    QCOMPARE(screen.titles(), QStringList{u"b"_s});
    QCOMPARE(Views::text(screen.view, "libraryCount"), u"05"_s);
}

void NoteLibraryViewTest::countsMoreThanNinetyNineNotesInFull()
{
    Screen screen(withManyNotes(120));

    QCOMPARE(Views::text(screen.view, "libraryCount"), u"120"_s);
}

void NoteLibraryViewTest::searchesWithEachKey()
{
    Screen screen(withNotes({u"Café au lait"_s, u"cafeteria"_s, u"tea"_s}));
    QVERIFY(Views::show(screen.view));
    QTRY_VERIFY(screen.search()->hasFocus());

    QTest::keyClicks(screen.search(), u"CAFE"_s);
    QCOMPARE(screen.titles(), (QStringList{u"Café au lait"_s, u"cafeteria"_s}));

    QTest::keyClicks(screen.search(), u"t"_s);
    QCOMPARE(screen.titles(), QStringList{u"cafeteria"_s});

    QTest::keyClick(screen.search(), Qt::Key_Backspace);
    QCOMPARE(screen.titles().size(), 2);
}

void NoteLibraryViewTest::showsTheClearButtonWhileTheFieldHoldsAnything()
{
    Screen screen(withNotes({u"milk"_s}));
    QVERIFY(Views::show(screen.view));
    QVERIFY(!Views::find(screen.view, "clearSearch"));

    QTest::keyClick(screen.search(), Qt::Key_Space);
    QVERIFY(Views::find(screen.view, "clearSearch"));
    QCOMPARE(Views::find(screen.view, "clearSearch")->accessibleName(), u"Clear search"_s);

    QTest::keyClick(screen.search(), Qt::Key_Backspace);
    QVERIFY(!Views::find(screen.view, "clearSearch"));
}

void NoteLibraryViewTest::emptiesTheFieldWithTheButtonAndGoesOnTyping()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    QTest::keyClicks(screen.search(), u"milk"_s);

    Views::click(screen.view, "clearSearch");

    QCOMPARE(screen.search()->text(), QString());
    QCOMPARE(screen.titles().size(), 2);
    QVERIFY(screen.search()->hasFocus());
}

void NoteLibraryViewTest::emptiesTheFieldWithTheKeyboard()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    QTest::keyClicks(screen.search(), u"milk"_s);

    QTest::keyClick(screen.search(), Qt::Key_U, Qt::ControlModifier);

    QCOMPARE(screen.search()->text(), QString());
    QCOMPARE(screen.titles().size(), 2);
}

void NoteLibraryViewTest::invitesToWriteWhenThereAreNoNotes()
{
    Screen screen({});
    QVERIFY(Views::show(screen.view));

    QVERIFY(!screen.list());
    QCOMPARE(screen.emptySymbol(), u"sparkle"_s);
    QCOMPARE(Views::text(screen.view, "emptyHeading"),
             u"Every good idea starts\nwith a quick note."_s);
    QCOMPARE(Views::text(screen.view, "emptyHint"), u"Open Capture to write your first one."_s);
    QCOMPARE(Views::text(screen.view, "libraryCount"), u"00"_s);
}

void NoteLibraryViewTest::saysNothingWhenTheNotesCouldNotBeRead()
{
    auto repository = std::make_unique<FailingRepository>();
    repository->failWith(std::runtime_error("unreadable"));
    NoteStore store(std::move(repository));
    AppPreferences preferences(nullptr, AppLanguage::english);
    NoteLibraryView view(store, preferences);
    view.resize(424, 440);
    QVERIFY(Views::show(view));

    QVERIFY(store.isReadOnly());
    for (const char *part : {"emptySymbol", "emptyHeading", "emptyHint"})
        QVERIFY(!Views::find(view, part));

    QTest::keyClicks(Views::find<QLineEdit>(view, "searchNotes"), u"milk"_s);
    QCOMPARE(Views::text(view, "emptyHeading"), u"No matching thoughts yet."_s);
}

void NoteLibraryViewTest::saysThatNothingMatches()
{
    Screen screen({});
    QVERIFY(Views::show(screen.view));

    QTest::keyClicks(screen.search(), u"milk"_s);

    QCOMPARE(screen.emptySymbol(), u"magnifyingglass"_s);
    QCOMPARE(Views::text(screen.view, "emptyHeading"), u"No matching thoughts yet."_s);
    QCOMPARE(Views::text(screen.view, "emptyHint"), u"Try another keyword."_s);
}

void NoteLibraryViewTest::takesASpaceForASearch()
{
    Screen empty({});
    QVERIFY(Views::show(empty.view));
    QTest::keyClick(empty.search(), Qt::Key_Space);
    QCOMPARE(Views::text(empty.view, "emptyHeading"), u"No matching thoughts yet."_s);

    Screen full(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(full.view));
    QTest::keyClick(full.search(), Qt::Key_Space);
    QCOMPARE(full.titles().size(), 2);
}

void NoteLibraryViewTest::marksTheRowUnderThePointerAlone()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    QWidget *viewport = screen.list()->viewport();
    const auto fill = [&](int row) {
        const QRect item = screen.list()->visualRect(screen.model()->index(row, 0));
        return Pixels::draw(*viewport).pixelColor(item.center().x(), item.top() + 4).alpha();
    };
    const int usual = fill(0);
    QCOMPARE(fill(1), usual);

    QTest::mouseMove(viewport, screen.middleOf(1));
    QTRY_VERIFY(fill(1) > usual);
    QCOMPARE(fill(0), usual);

    QTest::mouseMove(screen.search());
    QTRY_COMPARE(fill(1), usual);
}

void NoteLibraryViewTest::opensTheNoteThatIsClicked()
{
    Screen screen(withNotes({u"milk"_s, u"bread\nand butter"_s, u"eggs"_s}));
    QVERIFY(Views::show(screen.view));

    QTest::mouseClick(screen.list()->viewport(), Qt::LeftButton, {}, screen.middleOf(1));

    QCOMPARE(screen.chosen, QStringList{u"bread\nand butter"_s});
}

void NoteLibraryViewTest::opensNothingBetweenTheRows()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    const QRect first = screen.list()->visualRect(screen.model()->index(0, 0));

    QTest::mouseClick(screen.list()->viewport(), Qt::LeftButton, {},
                      QPoint(first.center().x(), first.bottom()));

    QVERIFY(screen.chosen.isEmpty());
}

void NoteLibraryViewTest::opensWithTheKeyboard()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s, u"eggs"_s}));
    QVERIFY(Views::show(screen.view));

    QTest::keyClick(screen.search(), Qt::Key_Down);
    QVERIFY(screen.list()->hasFocus());
    QCOMPARE(screen.currentTitle(), u"milk"_s);
    QTest::keyClick(screen.list(), Qt::Key_Down);
    QTest::keyClick(screen.list(), Qt::Key_Return);

    QCOMPARE(screen.chosen, QStringList{u"bread"_s});
}

void NoteLibraryViewTest::goesBackToTheSearchFromTheFirstRow()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    QTest::keyClick(screen.search(), Qt::Key_Down);
    QTest::keyClick(screen.list(), Qt::Key_Down);

    QTest::keyClick(screen.list(), Qt::Key_Up);
    QVERIFY(screen.list()->hasFocus());
    QTest::keyClick(screen.list(), Qt::Key_Up);

    QVERIFY(screen.search()->hasFocus());
}

void NoteLibraryViewTest::goesToTheFirstAndLastNote()
{
    Screen screen(withManyNotes(120));
    QVERIFY(Views::show(screen.view));
    QTest::keyClick(screen.search(), Qt::Key_Down);

    QTest::keyClick(screen.list(), Qt::Key_End);
    QCOMPARE(screen.currentTitle(), u"note 119"_s);
    QCOMPARE(screen.list()->verticalScrollBar()->value(),
             screen.list()->verticalScrollBar()->maximum());

    QTest::keyClick(screen.list(), Qt::Key_Home);
    QCOMPARE(screen.currentTitle(), u"note 0"_s);
    QCOMPARE(screen.list()->verticalScrollBar()->value(), 0);
}

void NoteLibraryViewTest::goesAPageFurtherWithoutPassingANote()
{
    Screen screen(withManyNotes(120));
    QVERIFY(Views::show(screen.view));
    QTest::keyClick(screen.search(), Qt::Key_Down);
    NoteListView *const list = screen.list();
    const auto isSeen = [&](int row) {
        return list->viewport()->rect().contains(list->visualRect(screen.model()->index(row, 0)));
    };

    int pages = 0;
    for (int row = 0; row < 119; ++pages) {
        QTest::keyClick(list, Qt::Key_PageDown);
        const int next = list->currentIndex().row();
        QVERIFY(next > row);
        for (int between = row + 1; between <= next; ++between)
            QVERIFY(isSeen(between));
        row = next;
    }
    QVERIFY(pages <= 60);

    for (int row = 119; row > 0; --pages) {
        QTest::keyClick(list, Qt::Key_PageUp);
        const int next = list->currentIndex().row();
        QVERIFY(next < row);
        for (int between = next; between < row; ++between)
            QVERIFY(isSeen(between));
        row = next;
    }
    QVERIFY(std::abs(pages) < 2);
    QTest::keyClick(list, Qt::Key_PageUp);
    QCOMPARE(list->currentIndex().row(), 0);
    QVERIFY(list->hasFocus());
}

void NoteLibraryViewTest::showsEachRowWhereTheLastOneEnds()
{
    Screen screen(withManyNotes(120));
    QVERIFY(Views::show(screen.view));
    NoteListView *const list = screen.list();
    const auto rect = [&](int row) { return list->visualRect(screen.model()->index(row, 0)); };
    list->verticalScrollBar()->setValue(500);

    QVERIFY(rect(0).height() < rect(1).height());
    QCOMPARE(rect(0).top(), -500);
    for (int row = 0; row < 120; ++row) {
        QCOMPARE(rect(row).height(), rect(row % 3 ? 1 : 0).height());
        QCOMPARE(rect(row).width(), list->viewport()->width());
        if (row > 0)
            QCOMPARE(rect(row).top(), rect(row - 1).bottom() + 1);
        QCOMPARE(list->indexAt(rect(row).topLeft()).row(), row);
    }
    QCOMPARE(list->verticalScrollBar()->maximum(),
             rect(119).bottom() + 1 + 500 - list->viewport()->height());
    QVERIFY(!list->indexAt({1, rect(119).bottom() + 1}).isValid());
}

void NoteLibraryViewTest::searchesForWhatIsTypedInTheList()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    QTest::keyClick(screen.search(), Qt::Key_Down);

    QTest::keyClick(screen.list(), Qt::Key_B);
    QTest::keyClicks(screen.view.focusWidget(), u"re"_s);

    QCOMPARE(screen.search()->text(), u"bre"_s);
    QCOMPARE(screen.titles(), QStringList{u"bread"_s});
}

void NoteLibraryViewTest::searchesForWhatIsComposedInTheList()
{
    Screen screen(withNotes({u"想到就记"_s, u"buy milk"_s}));
    QVERIFY(Views::show(screen.view));
    screen.list()->setFocus();
    QVERIFY(screen.list()->testAttribute(Qt::WA_InputMethodEnabled));

    QInputMethodEvent composing(u"xiang"_s, {});
    QCoreApplication::sendEvent(screen.list(), &composing);
    QVERIFY(screen.list()->hasFocus());
    QCOMPARE(screen.search()->text(), QString());
    QInputMethodEvent committing;
    committing.setCommitString(u"想"_s);
    QCoreApplication::sendEvent(screen.list(), &committing);

    QVERIFY(screen.search()->hasFocus());
    QCOMPARE(screen.search()->text(), u"想"_s);
    QCOMPARE(screen.titles(), QStringList(u"想到就记"_s));
}

void NoteLibraryViewTest::startsAtTheTopWithEachSearch()
{
    Screen screen(withManyNotes(120));
    QVERIFY(Views::show(screen.view));
    screen.list()->scrollToBottom();
    QVERIFY(screen.list()->verticalScrollBar()->value() > 0);

    QTest::keyClicks(screen.search(), u"note"_s);

    QCOMPARE(screen.list()->verticalScrollBar()->value(), 0);
    QVERIFY(!screen.list()->currentIndex().isValid());
}

void NoteLibraryViewTest::keepsThePlaceWhenNotesChange()
{
    const NoteSnapshot snapshot = withManyNotes(120);
    Screen screen(snapshot);
    QVERIFY(Views::show(screen.view));
    screen.view.select(snapshot.notes[60]);
    const QRect before = screen.list()->visualRect(screen.list()->currentIndex());

    screen.store.setDraft(u"a new one"_s);
    QVERIFY(screen.store.saveCapture());
    QVERIFY(screen.store.deleteNote(snapshot.notes[10]));

    QCOMPARE(screen.model()->rowCount(), 120);
    QCOMPARE(screen.currentTitle(), u"note 60"_s);
    QCOMPARE(screen.list()->visualRect(screen.list()->currentIndex()), before);
}

void NoteLibraryViewTest::putsTheKeyboardOnANote()
{
    const NoteSnapshot snapshot = withManyNotes(120);
    Screen screen(snapshot);
    QVERIFY(Views::show(screen.view));

    screen.view.select(snapshot.notes[100]);

    QVERIFY(screen.list()->hasFocus());
    QCOMPARE(screen.currentTitle(), u"note 100"_s);
    QVERIFY(screen.list()->viewport()->rect().contains(
        screen.list()->visualRect(screen.list()->currentIndex())));
}

void NoteLibraryViewTest::leavesEscapeToThePanel()
{
    struct Panel final : QWidget {
        int escapes = 0;
        void keyPressEvent(QKeyEvent *event) override { escapes += event->key() == Qt::Key_Escape; }
    } panel;
    Screen screen(withNotes({u"milk"_s}));
    screen.view.setParent(&panel);
    QVERIFY(Views::show(panel));
    QTest::keyClicks(screen.search(), u"milk"_s);

    QTest::keyClick(screen.search(), Qt::Key_Escape);
    QTest::keyClick(screen.search(), Qt::Key_Down);
    QTest::keyClick(screen.list(), Qt::Key_Escape);

    QCOMPARE(panel.escapes, 2);
    QCOMPARE(screen.search()->text(), u"milk"_s);
    screen.view.setParent(nullptr);
}

void NoteLibraryViewTest::isAListOfItemsForAReader()
{
    Screen screen(withManyNotes(120));
    QVERIFY(Views::show(screen.view));
    QTest::keyClick(screen.search(), Qt::Key_Down);
    QTest::keyClick(screen.list(), Qt::Key_Down);

    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(screen.list());

    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->childCount(), 120);
    QAccessibleInterface *const row = list->child(1);
    QCOMPARE(row->role(), QAccessible::ListItem);
    QCOMPARE(row->text(QAccessible::Name), u"Open note: note 1"_s);
    QVERIFY(row->text(QAccessible::Description).startsWith(u"with more\n"_s));
    QCOMPARE(row->parent(), list);
    QCOMPARE(list->indexOfChild(row), 1);
    QCOMPARE(list->focusChild(), row);
    QVERIFY(row->state().focused);
    QVERIFY(!list->state().focused);
    QVERIFY(!row->state().offscreen);
    QVERIFY(list->child(119)->state().offscreen);
    const QPoint centre = row->rect().center();
    QCOMPARE(list->childAt(centre.x(), centre.y()), row);
    QVERIFY(!list->child(120));
}

void NoteLibraryViewTest::readsTheBeginningOfAnEndlessTitleAndExcerpt()
{
    const QString thousand(1000, u'x');
    Screen screen(withNotes({thousand, thousand + u"y\n"_s + thousand + u'y',
                             QString(u"\U0001F600"_s).repeated(1001), u"e\u0301"_s.repeated(501)}));
    const auto *const model = screen.model();
    const auto name = [model](int row) {
        return model->index(row, 0).data(Qt::AccessibleTextRole).toString();
    };
    const auto description = [model](int row) {
        return model->index(row, 0).data(Qt::AccessibleDescriptionRole).toString();
    };

    QCOMPARE(name(0), u"Open note: "_s + thousand);
    QCOMPARE(name(1), u"Open note: "_s + thousand);
    QVERIFY(description(1).startsWith(thousand + u'\n'));
    // No character is cut in two.
    QCOMPARE(name(2), u"Open note: "_s + QString(u"\U0001F600"_s).repeated(1000));
    QCOMPARE(name(3), u"Open note: "_s + u"e\u0301"_s.repeated(500));
}

void NoteLibraryViewTest::opensTheNoteThatAReaderPresses()
{
    Screen screen(withNotes({u"milk"_s, u"bread"_s}));
    QVERIFY(Views::show(screen.view));
    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(screen.list());

    list->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());

    QCOMPARE(screen.chosen, QStringList{u"bread"_s});
}

void NoteLibraryViewTest::changesItsTextsWithTheLanguage()
{
    Screen screen(withNotes({u"milk"_s}));
    QVERIFY(Views::show(screen.view));
    QTest::keyClicks(screen.search(), u"bread"_s);

    screen.preferences.setLanguage(AppLanguage::chinese);

    for (const char *name : {"libraryTitle", "emptyHeading", "emptyHint"})
        QVERIFY2(Views::isChinese(Views::text(screen.view, name)), name);
    QVERIFY(Views::isChinese(screen.search()->placeholderText()));
    QCOMPARE(screen.search()->text(), u"bread"_s);
}

void NoteLibraryViewTest::hasAMenuInTheLanguageOfTheUser()
{
    Screen screen({});
    QVERIFY(Views::show(screen.view));
    screen.preferences.setLanguage(AppLanguage::chinese);
    QTest::keyClicks(screen.search(), u"milk"_s);

    QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(screen.search(), &event);

    auto *const menu = screen.search()->findChild<QMenu *>();
    QVERIFY(menu && menu->isVisible());
    QStringList texts;
    for (const QAction *action : menu->actions()) {
        if (!action->isSeparator())
            texts.append(action->text().section(u'\t', 0, 0));
    }
    QCOMPARE(texts,
             (QStringList{u"撤销"_s, u"重做"_s, u"剪切"_s, u"复制"_s, u"粘贴"_s, u"全选"_s}));
    menu->findChild<QAction *>(u"Select all"_s)->trigger();
    QCOMPARE(screen.search()->selectedText(), u"milk"_s);
    menu->close();
}

QTEST_MAIN(NoteLibraryViewTest)

#include "NoteLibraryViewTest.moc"
