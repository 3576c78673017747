// SPDX-License-Identifier: MIT
#include "NoteWorkspaceView.h"
#include "AppPreferences.h"
#include "Divider.h"
#include "Dot.h"
#include "FailingRepository.h"
#include "FileError.h"
#include "FileUrl.h"
#include "NoteStore.h"
#include "NoteTextEditor.h"
#include "QuietIconButton.h"
#include "RepositoryError.h"
#include "ScrolledText.h"
#include "TextLabel.h"
#include "Views.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;

class NoteWorkspaceViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opensOnTheCaptureScreen();
    void namesTheTabsInTheirOrder();
    void showsTheScreenOfTheTab();
    void opensANoteFromTheLibrary();
    void returnsToTheLibraryWithTheKeyboardOnTheNote();
    void forgetsTheOpenNoteWhenATabIsChosen();
    void endsACompositionBeforeItShowsAnotherScreen();
    void goesToTheListOfNotesFromEveryScreen();
    void forgetsThatTheNoteWasCopiedWhenItIsReopened();
    void reopensTheLibraryWithAnEmptySearch();
    void countsTheNotesInTheFooter_data();
    void countsTheNotesInTheFooter();
    void drawsALineAboveTheFooterWithinTheMargins();
    void separatesTheFootersTextsByADot();
    void asksToCollapseWithItsButton();
    void asksToCollapseAfterASave();
    void hasNoBannerWhileAllIsWell();
    void saysWhatFailedAndWhy();
    void saysWhichVersionItCannotRead();
    void showsTheFileThatAFailureIsAbout();
    void namesAFileOnceOnly();
    void loadsTheNotesAnew();
    void returnsTheKeyboardToTheTextOnceLoadedAnew();
    void offersToLoadNotesThatCouldNotBeRead();
    void takesInCopiesWhenThatIsConfirmed();
    void tellsOfCopiesThatKeepNothingFromBeingRead();
    void takesInNothingWhereThereIsNothing();
    void offersToTakeInOnlyWhereTheFolderIsRefused();
    void leavesANoteThatAnotherProgramRemoved();
    void triesAgain();
    void triesNothingWhileTheStoreIsReadOnly();
    void isAnAlertForAReader();
    void keepsEveryWordOfALongFailureOnScreen();
    void leavesEscapeToThePanelFromEveryScreen();
    void keepsEscapeWhileItAsksBeforeADeletion();
    void reachesEveryControlWithTab();
    void changesItsTextsAndKeepsTheNoteWhenTheLanguageChanges();
};

namespace {

NoteSnapshot withNotes(int count)
{
    NoteSnapshot snapshot;
    for (int i = 0; i < count; ++i)
        snapshot.notes.append({QUuid::createUuid(), u"note %1"_s.arg(i), {}, Timestamp{100.0 - i}});
    return snapshot;
}

/// Stands for the floating panel: takes the Escapes that its content leaves.
struct Panel final : QWidget {
    int escapes = 0;
    void keyPressEvent(QKeyEvent *event) override { escapes += event->key() == Qt::Key_Escape; }
};

struct Workspace {
    explicit Workspace(int notes = 0)
        : Workspace(std::make_unique<FailingRepository>(withNotes(notes)))
    {
    }

    explicit Workspace(std::unique_ptr<FailingRepository> given)
        : repository(given.get())
        , store(std::move(given))
        , view(new NoteWorkspaceView(store, preferences, &panel))
        , collapse(view, &NoteWorkspaceView::collapseRequested)
    {
        panel.resize(view->size());
    }

    template <class Error>
    static std::unique_ptr<FailingRepository> unreadable(const Error &error)
    {
        auto repository = std::make_unique<FailingRepository>(withNotes(2));
        repository->failWith(error);
        return repository;
    }

    NoteTextEditor *editor() { return Views::find<NoteTextEditor>(*view, "noteEditor"); }
    QAbstractItemView *list() { return Views::find<QAbstractItemView>(*view, "noteList"); }
    QString text(const char *name) { return Views::text(*view, name); }
    void click(const char *name) { Views::click(*view, name); }
    bool has(const char *name) { return Views::find(*view, name); }

    void openFirstNote()
    {
        click("libraryTab");
        const QPoint row = list()->visualRect(list()->model()->index(0, 0)).center();
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, row);
    }

    Panel panel;
    FailingRepository *repository;
    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    NoteStore store;
    NoteWorkspaceView *view;
    QSignalSpy collapse;
};

const FileError noSpace("/home/ada/.local/share/Penwick/Markdown", ENOSPC);

} // namespace

void NoteWorkspaceViewTest::opensOnTheCaptureScreen()
{
    Workspace workspace(3);

    QVERIFY(Views::show(workspace.panel));

    QCOMPARE(workspace.view->size(), QSize(424, 560));
    QVERIFY(workspace.has("saveNote"));
    QTRY_VERIFY(workspace.editor()->hasFocus());
}

void NoteWorkspaceViewTest::namesTheTabsInTheirOrder()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));

    QCOMPARE(workspace.text("captureTab"), u"Capture"_s);
    QCOMPARE(workspace.text("libraryTab"), u"Notes"_s);
    QVERIFY(Views::find(*workspace.view, "captureTab")->x() <
            Views::find(*workspace.view, "libraryTab")->x());
}

void NoteWorkspaceViewTest::showsTheScreenOfTheTab()
{
    Workspace workspace(1);
    QVERIFY(Views::show(workspace.panel));

    workspace.click("libraryTab");
    QVERIFY(workspace.has("searchNotes"));
    QVERIFY(!workspace.has("saveNote"));
    QVERIFY(Views::find<QAbstractButton>(*workspace.view, "libraryTab")->isChecked());

    workspace.click("captureTab");
    QVERIFY(workspace.has("saveNote"));
    QVERIFY(!workspace.has("searchNotes"));
    QTRY_VERIFY(workspace.editor()->hasFocus());
}

void NoteWorkspaceViewTest::opensANoteFromTheLibrary()
{
    Workspace workspace(3);
    QVERIFY(Views::show(workspace.panel));

    workspace.openFirstNote();

    QVERIFY(workspace.has("saveEdit"));
    QCOMPARE(workspace.editor()->noteText(), u"note 0"_s);
    QTRY_VERIFY(workspace.editor()->hasFocus());
}

void NoteWorkspaceViewTest::returnsToTheLibraryWithTheKeyboardOnTheNote()
{
    Workspace workspace(3);
    QVERIFY(Views::show(workspace.panel));
    workspace.click("libraryTab");
    QTest::keyClick(Views::find(*workspace.view, "searchNotes"), Qt::Key_Down);
    QTest::keyClick(workspace.list(), Qt::Key_Down);
    QTest::keyClick(workspace.list(), Qt::Key_Return);
    QCOMPARE(workspace.editor()->noteText(), u"note 1"_s);

    workspace.click("allNotes");

    QVERIFY(workspace.list());
    QCOMPARE(workspace.list()->currentIndex().data().toString(), u"note 1"_s);
    QVERIFY(workspace.list()->hasFocus());
}

void NoteWorkspaceViewTest::forgetsTheOpenNoteWhenATabIsChosen()
{
    Workspace workspace(3);
    QVERIFY(Views::show(workspace.panel));
    workspace.openFirstNote();

    workspace.click("captureTab");
    QVERIFY(workspace.has("saveNote"));
    workspace.click("libraryTab");
    QVERIFY(workspace.has("searchNotes"));

    workspace.openFirstNote();
    workspace.click("libraryTab");
    QVERIFY(workspace.has("searchNotes"));
    QVERIFY(!workspace.has("saveEdit"));
}

void NoteWorkspaceViewTest::endsACompositionBeforeItShowsAnotherScreen()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    QInputMethodEvent composing(u"xiang"_s, {});
    QCoreApplication::sendEvent(workspace.editor(), &composing);

    workspace.click("libraryTab");

    QCOMPARE(workspace.store.draft(), u"xiang"_s);
    QCOMPARE(Views::find<QLineEdit>(*workspace.view, "searchNotes")->text(), QString());
}

void NoteWorkspaceViewTest::goesToTheListOfNotesFromEveryScreen()
{
    Workspace workspace(2);
    QVERIFY(Views::show(workspace.panel));
    workspace.view->showLibrary();
    QVERIFY(workspace.has("searchNotes"));
    QVERIFY(Views::find<QAbstractButton>(*workspace.view, "libraryTab")->isChecked());

    workspace.openFirstNote();
    QTest::keyClicks(workspace.editor(), u"more"_s);
    workspace.click("deleteNote");
    workspace.view->showLibrary();
    QVERIFY(workspace.has("searchNotes"));
    QTRY_VERIFY(!Views::find(workspace.panel, "deleteAlert"));
    QCOMPARE(workspace.store.snapshot().notes.size(), 2);

    workspace.openFirstNote();
    QVERIFY(workspace.editor()->toPlainText().contains(u"more"_s));
}

void NoteWorkspaceViewTest::forgetsThatTheNoteWasCopiedWhenItIsReopened()
{
    Workspace workspace(3);
    QVERIFY(Views::show(workspace.panel));
    const auto copySymbol = [&workspace] {
        return Views::find<QuietIconButton>(*workspace.view, "copyText")->symbol();
    };
    workspace.openFirstNote();
    workspace.click("copyText");
    QCOMPARE(copySymbol(), u"checkmark"_s);

    workspace.click("allNotes");
    workspace.openFirstNote();

    QCOMPARE(copySymbol(), u"doc.on.doc"_s);
}

void NoteWorkspaceViewTest::reopensTheLibraryWithAnEmptySearch()
{
    Workspace workspace(3);
    QVERIFY(Views::show(workspace.panel));
    workspace.click("libraryTab");
    QTest::keyClicks(Views::find(*workspace.view, "searchNotes"), u"note 2"_s);
    QCOMPARE(workspace.list()->model()->rowCount(), 1);

    workspace.click("captureTab");
    workspace.click("libraryTab");

    QCOMPARE(Views::find<QLineEdit>(*workspace.view, "searchNotes")->text(), QString());
    QCOMPARE(workspace.list()->model()->rowCount(), 3);
}

void NoteWorkspaceViewTest::countsTheNotesInTheFooter_data()
{
    QTest::addColumn<int>("notes");
    QTest::addColumn<QString>("text");

    QTest::newRow("none") << 0 << u"0 notes"_s;
    QTest::newRow("one") << 1 << u"1 note"_s;
    QTest::newRow("two") << 2 << u"2 notes"_s;
}

void NoteWorkspaceViewTest::countsTheNotesInTheFooter()
{
    QFETCH(int, notes);
    QFETCH(QString, text);

    Workspace workspace(notes);

    QCOMPARE(workspace.text("noteCount"), text);
    QCOMPARE(workspace.text("storage"), u"Markdown · local"_s);
    QCOMPARE(workspace.text("tagline"), u"Capture now. Think later."_s);
}

void NoteWorkspaceViewTest::drawsALineAboveTheFooterWithinTheMargins()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));

    const auto *line = workspace.view->findChild<Divider *>();

    QVERIFY(line);
    QCOMPARE(line->x(), 26);
    QCOMPARE(line->width(), 424 - 2 * 26);
    QCOMPARE(line->height(), 1);
    QVERIFY(line->y() < Views::find(*workspace.view, "storage")->y());
    QVERIFY(line->y() > workspace.editor()->mapTo(workspace.view, QPoint()).y());
}

void NoteWorkspaceViewTest::separatesTheFootersTextsByADot()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));

    const auto *dot = workspace.view->findChild<Dot *>({}, Qt::FindDirectChildrenOnly);

    QVERIFY(dot);
    QCOMPARE(dot->size(), QSize(3, 3));
    QVERIFY(dot->x() > Views::find(*workspace.view, "noteCount")->geometry().right());
    QVERIFY(dot->geometry().right() < Views::find(*workspace.view, "tagline")->x());
}

void NoteWorkspaceViewTest::asksToCollapseWithItsButton()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    QCOMPARE(Views::find(*workspace.view, "collapse")->toolTip(), u"Close · Esc"_s);

    workspace.click("collapse");

    QCOMPARE(workspace.collapse.count(), 1);
}

void NoteWorkspaceViewTest::asksToCollapseAfterASave()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    QTest::keyClicks(workspace.editor(), u"milk"_s);

    QTest::keyClick(workspace.editor(), Qt::Key_Return, Qt::ControlModifier);

    QCOMPARE(workspace.collapse.count(), 1);
    QCOMPARE(workspace.text("noteCount"), u"1 note"_s);
}

void NoteWorkspaceViewTest::hasNoBannerWhileAllIsWell()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));

    QVERIFY(!workspace.has("errorBanner"));
}

void NoteWorkspaceViewTest::saysWhatFailedAndWhy()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    QTest::keyClicks(workspace.editor(), u"milk"_s);
    workspace.repository->failWith(RepositoryError::externalChange());

    QTest::keyClick(workspace.editor(), Qt::Key_Return, Qt::ControlModifier);

    QCOMPARE(workspace.collapse.count(), 0);
    QCOMPARE(workspace.text("errorMessage"),
             u"Could not save. Your text is still in this window.\n"_s +
                 RepositoryError::externalChange().description());
    QCOMPARE(workspace.editor()->noteText(), u"milk"_s);
}

void NoteWorkspaceViewTest::saysWhichVersionItCannotRead()
{
    Workspace workspace(Workspace::unreadable(RepositoryError::unsupportedVersion(3)));
    QVERIFY(Views::show(workspace.panel));

    QCOMPARE(workspace.text("errorMessage"),
             u"Could not read your notes. Original files were protected.\n"
             "Unsupported note version: 3. Original files were left untouched."_s);

    workspace.preferences.setLanguage(AppLanguage::chinese);
    QVERIFY(Views::isChinese(workspace.text("errorMessage")));
    QVERIFY(workspace.text("errorMessage").contains(u'3'));
}

void NoteWorkspaceViewTest::showsTheFileThatAFailureIsAbout()
{
    Workspace workspace(
        Workspace::unreadable(RepositoryError::invalidMarkdown().about("/notes/\xff plan.md")));
    QVERIFY(Views::show(workspace.panel));
    const QSignalSpy wishes(workspace.view, &NoteWorkspaceView::showFileRequested);

    const QString said = workspace.text("errorMessage");
    QCOMPARE(said, u"Could not read your notes. Original files were protected.\n"
                   "A Markdown file has invalid metadata. Original files were left untouched.\n"
                   "/notes/\uFFFD plan.md"_s);
    QCOMPARE(Views::find(*workspace.view, "errorBanner")->accessibleName(), said);
    QCOMPARE(workspace.text("showFile"), u"Show file"_s);
    workspace.click("showFile");
    QCOMPARE(wishes.count(), 1);
    QCOMPARE(wishes.first().first().toUrl(), fileUrl("/notes/\xff plan.md"));

    workspace.preferences.setLanguage(AppLanguage::chinese);
    QCOMPARE(workspace.text("showFile"), u"显示文件"_s);
    QVERIFY(workspace.text("errorMessage").endsWith(u"\n/notes/\uFFFD plan.md"_s));
}

void NoteWorkspaceViewTest::namesAFileOnceOnly()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    QVERIFY(!Views::find(*workspace.view, "showFile"));

    workspace.repository->failWith(FileError("/notes/one.md", Reason::notUtf8));
    workspace.store.flush();

    QCOMPARE(workspace.text("errorMessage").count(u"/notes/one.md"_s), 1);
    QVERIFY(Views::find(*workspace.view, "showFile"));
    workspace.repository->failWith(FileError("/notes/one.md", ENOSPC));
    workspace.store.flush();
    QVERIFY(!Views::find(*workspace.view, "showFile"));
}

void NoteWorkspaceViewTest::loadsTheNotesAnew()
{
    Workspace workspace(1);
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->failWith(noSpace);
    workspace.store.setDraft(u"ours"_s);
    QVERIFY(!workspace.store.flush());
    QVERIFY(!workspace.has("reload"));
    workspace.repository->recover();
    NoteSnapshot theirs = workspace.store.snapshot();
    theirs.captureDraft = u"theirs"_s;
    workspace.repository->changeOutside(theirs);
    QVERIFY(!workspace.store.flush());

    QCOMPARE(workspace.text("reload"), u"Reload"_s);
    workspace.preferences.setLanguage(AppLanguage::chinese);
    QCOMPARE(workspace.text("reload"), u"重新加载"_s);
    workspace.click("reload");

    QVERIFY(!workspace.has("errorBanner"));
    QCOMPARE(workspace.editor()->noteText(), u"ours\n\ntheirs"_s);
}

void NoteWorkspaceViewTest::returnsTheKeyboardToTheTextOnceLoadedAnew()
{
    Workspace workspace(1);
    QVERIFY(Views::show(workspace.panel));
    workspace.store.setDraft(u"ours"_s);
    NoteSnapshot theirs = workspace.store.snapshot();
    theirs.captureDraft = u"theirs"_s;
    workspace.repository->changeOutside(theirs);
    QVERIFY(!workspace.store.flush());
    auto *const reload = Views::find(*workspace.view, "reload");
    reload->setFocus(Qt::TabFocusReason);
    QVERIFY(reload->hasFocus());

    QTest::keyClick(reload, Qt::Key_Space);

    QVERIFY(!workspace.has("reload"));
    QVERIFY(workspace.editor()->hasFocus());
}

void NoteWorkspaceViewTest::offersToLoadNotesThatCouldNotBeRead()
{
    Workspace workspace(Workspace::unreadable(RepositoryError::recoveryRequired()));
    QVERIFY(Views::show(workspace.panel));
    QVERIFY(!workspace.editor()->isEnabled());
    workspace.repository->recover();

    workspace.click("reload");

    QVERIFY(!workspace.has("errorBanner"));
    QVERIFY(workspace.editor()->isEnabled());
}

void NoteWorkspaceViewTest::takesInCopiesWhenThatIsConfirmed()
{
    Workspace workspace(1);
    QVERIFY(Views::show(workspace.panel));
    NoteSnapshot then = workspace.store.snapshot();
    then.notes.append(Note{QUuid::createUuid(), u"elsewhere"_s, {}, {}});
    const TakeInPlan::Step step{.outcome = TakeInPlan::Step::Outcome::note,
                                .file = "/notes/a.sync-conflict-20250301-081530-ABCDEFG.md",
                                .title = u"elsewhere"_s,
                                .what = {u"A conflict copy of a note, by %@."_s, {u"Syncthing"_s}},
                                .becomes = {u"It becomes a note of its own."_s, {}}};
    workspace.repository->putBeside({.steps = {step}, .originals = "/state", .noteCount = 1}, then);
    workspace.repository->failToRead(RepositoryError::invalidMarkdown().about("/notes/a.md"));
    QVERIFY(!workspace.store.reload());

    workspace.click("takeIn");
    const QWidget *const card = Views::find(*workspace.view->window(), "takeInAlert");
    QVERIFY(card);
    const QString text = card->findChild<ScrolledText *>()->findChild<TextLabel *>()->text();
    QVERIFY2(text.contains(u"elsewhere") && text.contains(u"Syncthing") && text.contains(u"/state"),
             qPrintable(text));
    Views::click(*workspace.view->window(), "cancelTakeIn");
    QCOMPARE(workspace.store.snapshot().notes.size(), 1);
    workspace.click("takeIn");
    Views::click(*workspace.view->window(), "confirmTakeIn");

    QCOMPARE(workspace.store.snapshot().notes.size(), 2);
    QVERIFY(!workspace.has("errorBanner"));
}

void NoteWorkspaceViewTest::tellsOfCopiesThatKeepNothingFromBeingRead()
{
    Workspace workspace(1);
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->putBeside({.steps = {{}}, .originals = "/state", .noteCount = 0},
                                    workspace.store.snapshot());

    QVERIFY(workspace.store.reload());

    QVERIFY(workspace.has("errorBanner"));
    QVERIFY(workspace.text("errorMessage").contains(u"copies of notes"));
    QVERIFY(!workspace.has("retry"));
    QVERIFY(!workspace.has("reload"));
    workspace.click("takeIn");
    Views::click(*workspace.view->window(), "confirmTakeIn");
    QVERIFY(!workspace.has("errorBanner"));
    QVERIFY(workspace.editor()->hasFocus());
}

void NoteWorkspaceViewTest::takesInNothingWhereThereIsNothing()
{
    Workspace workspace(Workspace::unreadable(RepositoryError::invalidMarkdown()));
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->recover();

    workspace.click("takeIn");

    QVERIFY(!Views::find(*workspace.view->window(), "confirmTakeIn"));
    QVERIFY(Views::find(*workspace.view->window(), "cancelTakeIn"));
}

void NoteWorkspaceViewTest::offersToTakeInOnlyWhereTheFolderIsRefused()
{
    Workspace workspace(1);
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->failWith(noSpace);
    workspace.store.setDraft(u"ours"_s);

    QVERIFY(!workspace.store.flush());
    QVERIFY(!workspace.has("takeIn"));
    workspace.repository->failWith(RepositoryError::externalChange());
    QVERIFY(!workspace.store.flush());
    QVERIFY(!workspace.has("takeIn"));
    workspace.repository->failWith(RepositoryError::recoveryRequired());
    QVERIFY(!workspace.store.flush());
    QVERIFY(workspace.has("takeIn"));
}

void NoteWorkspaceViewTest::leavesANoteThatAnotherProgramRemoved()
{
    Workspace workspace(2);
    QVERIFY(Views::show(workspace.panel));
    const Note note = workspace.store.notes().first();
    workspace.openFirstNote();
    workspace.store.updateDraft(note, u"our edit"_s);
    NoteSnapshot theirs = workspace.repository->stored();
    theirs.notes.removeIf([&](const Note &other) { return other.id == note.id; });
    workspace.repository->changeOutside(theirs);
    QVERIFY(!workspace.store.flush());

    workspace.click("reload");

    QVERIFY(!workspace.has("errorBanner"));
    QVERIFY(!workspace.has("saveEdit"));
    QCOMPARE(workspace.store.draft(), u"our edit"_s);
    QVERIFY(!workspace.store.hasDraft(note));
}

void NoteWorkspaceViewTest::triesAgain()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->failWith(noSpace);
    workspace.store.setDraft(u"milk"_s);
    QVERIFY(!workspace.store.flush());
    const int saves = workspace.repository->saves();

    workspace.click("retry");
    QCOMPARE(workspace.repository->saves(), saves + 1);
    QVERIFY(workspace.has("errorBanner"));

    workspace.repository->recover();
    workspace.click("retry");
    QVERIFY(!workspace.has("errorBanner"));
    QCOMPARE(workspace.repository->stored().captureDraft, u"milk"_s);
}

void NoteWorkspaceViewTest::triesNothingWhileTheStoreIsReadOnly()
{
    Workspace workspace(Workspace::unreadable(RepositoryError::recoveryRequired()));
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->recover();

    workspace.click("retry");

    QVERIFY(workspace.has("errorBanner"));
    QCOMPARE(workspace.repository->saves(), 0);
}

void NoteWorkspaceViewTest::isAnAlertForAReader()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->failWith(noSpace);

    workspace.store.flush();

    QAccessibleInterface *const banner =
        QAccessible::queryAccessibleInterface(Views::find(*workspace.view, "errorBanner"));
    QCOMPARE(banner->role(), QAccessible::AlertMessage);
    QCOMPARE(banner->text(QAccessible::Name), workspace.text("errorMessage"));
}

void NoteWorkspaceViewTest::keepsEveryWordOfALongFailureOnScreen()
{
    Workspace workspace;
    QVERIFY(Views::show(workspace.panel));
    const QString folder =
        u"/home/ada/a folder with a long name/"_s.repeated(3) +
        u"andOneNameThatIsFarTooLongForALineOfTheBannerAndHasNoPlaceToBreakItAtAll"_s;
    workspace.repository->failWith(FileError(folder.toStdString(), ENOSPC));

    workspace.store.flush();

    auto *message = Views::find<QLabel>(*workspace.view, "errorMessage");
    QTRY_VERIFY(message->height() >= message->heightForWidth(message->width()));
    const QWidget *const tagline = Views::find(*workspace.view, "tagline");
    for (const char *name : {"errorBanner", "noteEditor", "saveNote", "tagline"}) {
        const QWidget *widget = Views::find(*workspace.view, name);
        const QRect place(widget->mapTo(workspace.view, QPoint()), widget->size());
        QVERIFY2(workspace.view->rect().contains(place), name);
        QVERIFY2(widget->height() >= 2 * widget->fontMetrics().height() || widget == tagline, name);
    }
}

void NoteWorkspaceViewTest::leavesEscapeToThePanelFromEveryScreen()
{
    Workspace workspace(2);
    QVERIFY(Views::show(workspace.panel));

    QTest::keyClick(workspace.editor(), Qt::Key_Escape);
    QCOMPARE(workspace.panel.escapes, 1);

    workspace.click("libraryTab");
    QTest::keyClick(workspace.panel.focusWidget(), Qt::Key_Escape);
    QCOMPARE(workspace.panel.escapes, 2);

    workspace.openFirstNote();
    QTest::keyClick(workspace.editor(), Qt::Key_Escape);
    QCOMPARE(workspace.panel.escapes, 3);
}

void NoteWorkspaceViewTest::keepsEscapeWhileItAsksBeforeADeletion()
{
    Workspace workspace(2);
    QVERIFY(Views::show(workspace.panel));
    workspace.openFirstNote();
    workspace.click("deleteNote");
    auto *alert = Views::find(workspace.panel, "deleteAlert");
    QVERIFY(alert);
    QCOMPARE(alert->size(), workspace.panel.size());

    QTest::keyClick(workspace.panel.focusWidget(), Qt::Key_Escape);
    QCOMPARE(workspace.panel.escapes, 0);
    QVERIFY(!Views::find(workspace.panel, "deleteAlert"));

    QTest::keyClick(workspace.panel.focusWidget(), Qt::Key_Escape);
    QCOMPARE(workspace.panel.escapes, 1);
}

void NoteWorkspaceViewTest::reachesEveryControlWithTab()
{
    Workspace workspace(2);
    QVERIFY(Views::show(workspace.panel));
    workspace.repository->failWith(noSpace);
    workspace.store.setDraft(u"milk"_s);
    workspace.store.flush();
    QTRY_VERIFY(workspace.editor()->hasFocus());

    QStringList names;
    for (int i = 0; i < 8; ++i) {
        names.append(workspace.panel.focusWidget()->objectName());
        QTest::keyClick(workspace.panel.focusWidget(), Qt::Key_Tab);
    }

    QCOMPARE(names,
             (QStringList{u"noteEditor"_s, u"saveNote"_s, u"captureTab"_s, u"libraryTab"_s,
                          u"preferencesMenu"_s, u"collapse"_s, u"retry"_s, u"noteEditor"_s}));
}

void NoteWorkspaceViewTest::changesItsTextsAndKeepsTheNoteWhenTheLanguageChanges()
{
    Workspace workspace(2);
    QVERIFY(Views::show(workspace.panel));
    workspace.openFirstNote();
    QTest::keyClicks(workspace.editor(), u" and more"_s);
    NoteTextEditor *const editor = workspace.editor();

    workspace.preferences.setLanguage(AppLanguage::chinese);

    QCOMPARE(workspace.editor(), editor);
    QCOMPARE(editor->noteText(), u"note 0 and more"_s);
    for (const char *name : {"captureTab", "libraryTab", "noteCount", "storage", "tagline"})
        QVERIFY2(Views::isChinese(workspace.text(name)), name);
    QVERIFY(Views::isChinese(Views::find(*workspace.view, "collapse")->accessibleName()));
}

QTEST_MAIN(NoteWorkspaceViewTest)

#include "NoteWorkspaceViewTest.moc"
