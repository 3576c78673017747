// SPDX-License-Identifier: MIT
#include "EditNoteView.h"
#include "AppPreferences.h"
#include "FailingRepository.h"
#include "FileError.h"
#include "NoteId.h"
#include "NoteStore.h"
#include "NoteTextEditor.h"
#include "PassingTime.h"
#include "QuietIconButton.h"
#include "Views.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

class EditNoteViewTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { qputenv("TZ", "UTC"); }

private Q_SLOTS:
    void showsTheNoteWithTheTimeOfItsCreation();
    void asksInTheLanguageOfTheUser();
    void showsTheUnsavedEditInPlaceOfTheNote();
    void keepsWhatIsTypedAsADraftAndLeavesTheNoteAsItIs();
    void savesWithTheButtonAndGoesBack();
    void savesWithTheKeysAndGoesBack();
    void staysWithTheDraftWhenTheSaveFails();
    void cannotSaveANoteEmptyButKeepsTheEmptyDraft_data();
    void cannotSaveANoteEmptyButKeepsTheEmptyDraft();
    void goesBackWithoutSaving();
    void copiesTheDraftAndNotTheSavedText();
    void showsThatItCopiedAsLongAsItIsOpen();
    void doesNotClaimToHaveCopiedWhenAnotherProgramTakesTheClipboard();
    void asksBeforeItDeletes();
    void keepsTheNoteWhenTheAnswerIsCancel_data();
    void keepsTheNoteWhenTheAnswerIsCancel();
    void deletesTheNoteAndGoesBack();
    void staysWhenTheDeletionFails();
    void keepsTheKeyboardInTheQuestion();
    void doesNotSaveWhileItAsks();
    void givesTheKeyboardBackAfterTheQuestion();
    void announcesTheQuestion();
    void canOnlyCopyAndLeaveWhileTheStoreIsReadOnly();
    void changesItsTextsWithTheLanguage();
};

namespace {

const QUuid noteId(u"3F2504E0-4F89-41D3-9A0C-0305E82C3301"_s);

Note milkNote()
{
    const Timestamp created = Timestamp::fromIso8601(u"2025-03-01T08:15:30.250Z").value();
    const Timestamp updated = Timestamp::fromIso8601(u"2025-03-02T09:00:00.000Z").value();
    return {noteId, u"milk"_s, created, updated};
}

NoteSnapshot withNote()
{
    NoteSnapshot snapshot;
    snapshot.notes.append(milkNote());
    return snapshot;
}

/// The screen over a store with one note and a repository that fails on demand.
struct Screen {
    explicit Screen(NoteSnapshot snapshot = withNote(), bool canLoad = true)
        : repository(new FailingRepository(std::move(snapshot)))
        , store([&] {
            if (!canLoad)
                fail();
            return std::unique_ptr<NoteRepository>(repository);
        }())
        , view(store, preferences, milkNote())
        , back(&view, &EditNoteView::backRequested)
    {
    }

    void fail() const { repository->failWith(FileError("/notes", EACCES)); }

    NoteTextEditor *editor() { return Views::find<NoteTextEditor>(view, "noteEditor"); }
    QAbstractButton *button(const char *name) { return Views::find<QAbstractButton>(view, name); }
    QWidget *alert() { return Views::find(view, "deleteAlert"); }
    QString copySymbol() { return Views::find<QuietIconButton>(view, "copyText")->symbol(); }

    FailingRepository *repository;
    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    NoteStore store;
    EditNoteView view;
    QSignalSpy back;
};

void selectAllAndType(QWidget *editor, const QString &text)
{
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, text);
}

} // namespace

void EditNoteViewTest::showsTheNoteWithTheTimeOfItsCreation()
{
    Screen screen;

    QVERIFY(Views::show(screen.view));

    QCOMPARE(screen.editor()->noteText(), u"milk"_s);
    QCOMPARE(Views::text(screen.view, "noteDate").replace(u'\u202f', u' '),
             u"Mar 1, 2025, 8:15 AM"_s);
    QCOMPARE(Views::text(screen.view, "editStatus"), u"Saved on this Mac"_s);
    QTRY_VERIFY(screen.editor()->hasFocus());
}

void EditNoteViewTest::asksInTheLanguageOfTheUser()
{
    Screen screen;
    screen.preferences.setLanguage(AppLanguage::chinese);
    QVERIFY(Views::show(screen.view));

    Views::click(screen.view, "deleteNote");

    // It lies over the window, outside the views that have the locale from above.
    QCOMPARE(screen.alert()->locale().language(), QLocale::Chinese);
    for (const QWidget *part : screen.alert()->findChildren<QWidget *>())
        QCOMPARE(part->locale().language(), QLocale::Chinese);
}

void EditNoteViewTest::showsTheUnsavedEditInPlaceOfTheNote()
{
    NoteSnapshot snapshot = withNote();
    snapshot.editingDrafts[canonicalText(noteId)] = u"milk and bread"_s;

    Screen screen(snapshot);

    QCOMPARE(screen.editor()->noteText(), u"milk and bread"_s);
}

void EditNoteViewTest::keepsWhatIsTypedAsADraftAndLeavesTheNoteAsItIs()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));

    selectAllAndType(screen.editor(), u"bread"_s);

    QCOMPARE(screen.store.text(milkNote()), u"bread"_s);
    QCOMPARE(screen.store.snapshot().notes.first().body, u"milk"_s);
    QCOMPARE(Views::text(screen.view, "editStatus"), u"Saving draft…"_s);
}

void EditNoteViewTest::savesWithTheButtonAndGoesBack()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    selectAllAndType(screen.editor(), u" bread "_s);

    Views::click(screen.view, "saveEdit");

    QCOMPARE(screen.back.count(), 1);
    QCOMPARE(screen.repository->stored().notes.first().body, u"bread"_s);
    QVERIFY(screen.repository->stored().editingDrafts.isEmpty());
}

void EditNoteViewTest::savesWithTheKeysAndGoesBack()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    selectAllAndType(screen.editor(), u"bread"_s);

    QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);

    QCOMPARE(screen.back.count(), 1);
    QCOMPARE(screen.repository->stored().notes.first().body, u"bread"_s);
}

void EditNoteViewTest::staysWithTheDraftWhenTheSaveFails()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    selectAllAndType(screen.editor(), u"bread"_s);
    screen.fail();

    QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);

    QCOMPARE(screen.back.count(), 0);
    QCOMPARE(screen.editor()->noteText(), u"bread"_s);
    QCOMPARE(Views::text(screen.view, "editStatus"), u"Not saved · Retry"_s);
}

void EditNoteViewTest::cannotSaveANoteEmptyButKeepsTheEmptyDraft_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("draft");

    QTest::newRow("nothing") << QList<int>{Qt::Key_Delete} << u""_s;
    QTest::newRow("spaces and a line break")
        << QList<int>{Qt::Key_Space, Qt::Key_Space, Qt::Key_Return} << u"  \n"_s;
}

void EditNoteViewTest::cannotSaveANoteEmptyButKeepsTheEmptyDraft()
{
    QFETCH(const QList<int>, keys);
    QFETCH(const QString, draft);
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QVERIFY(screen.button("saveEdit")->isEnabled());

    QTest::keyClick(screen.editor(), Qt::Key_A, Qt::ControlModifier);
    for (const int key : keys)
        QTest::keyClick(screen.editor(), Qt::Key(key));
    QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);

    QVERIFY(!screen.button("saveEdit")->isEnabled());
    QCOMPARE(screen.back.count(), 0);
    QVERIFY(screen.store.hasDraft(milkNote()));
    QCOMPARE(screen.store.text(milkNote()), draft);
    QCOMPARE(screen.editor()->noteText(), draft);
    QCOMPARE(screen.store.snapshot().notes.first().body, u"milk"_s);
}

void EditNoteViewTest::goesBackWithoutSaving()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    selectAllAndType(screen.editor(), u"bread"_s);

    Views::click(screen.view, "allNotes");

    QCOMPARE(screen.back.count(), 1);
    QCOMPARE(screen.store.snapshot().notes.first().body, u"milk"_s);
    QCOMPARE(screen.store.text(milkNote()), u"bread"_s);
}

void EditNoteViewTest::copiesTheDraftAndNotTheSavedText()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    selectAllAndType(screen.editor(), u"bread"_s);

    Views::click(screen.view, "copyText");

    QCOMPARE(QGuiApplication::clipboard()->text(), u"bread"_s);
}

void EditNoteViewTest::showsThatItCopiedAsLongAsItIsOpen()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QCOMPARE(screen.copySymbol(), u"doc.on.doc"_s);

    Views::click(screen.view, "copyText");
    QTest::keyClicks(screen.editor(), u" and bread"_s);
    QCOMPARE(screen.copySymbol(), u"checkmark"_s);
    PassingTime::pass(1min);

    QCOMPARE(screen.copySymbol(), u"checkmark"_s);
}

void EditNoteViewTest::doesNotClaimToHaveCopiedWhenAnotherProgramTakesTheClipboard()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QClipboard *const clipboard = QGuiApplication::clipboard();
    const auto thief = connect(
        clipboard, &QClipboard::dataChanged, clipboard,
        [clipboard] { clipboard->setText(u"someone else's"_s); }, Qt::SingleShotConnection);

    Views::click(screen.view, "copyText");

    disconnect(thief);
    QCOMPARE(screen.copySymbol(), u"doc.on.doc"_s);
}

void EditNoteViewTest::asksBeforeItDeletes()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));

    Views::click(screen.view, "deleteNote");

    QVERIFY(screen.alert());
    QCOMPARE(screen.alert()->accessibleName(), u"Delete this note?"_s);
    QCOMPARE(
        screen.alert()->accessibleDescription(),
        u"This removes the note and its editing draft from this Mac. You cannot undo this in the app."_s);
    QCOMPARE(screen.button("cancelDelete")->text(), u"Cancel"_s);
    QCOMPARE(screen.button("confirmDelete")->text(), u"Delete"_s);
    QVERIFY(screen.button("cancelDelete")->x() < screen.button("confirmDelete")->x());
    QVERIFY(screen.button("cancelDelete")->hasFocus());
    QCOMPARE(screen.store.snapshot().notes.size(), 1);
}

void EditNoteViewTest::keepsTheNoteWhenTheAnswerIsCancel_data()
{
    QTest::addColumn<int>("key");

    QTest::newRow("a click") << 0;
    QTest::newRow("Escape") << int(Qt::Key_Escape);
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Space") << int(Qt::Key_Space);
}

void EditNoteViewTest::keepsTheNoteWhenTheAnswerIsCancel()
{
    QFETCH(int, key);
    Screen screen;
    QVERIFY(Views::show(screen.view));
    Views::click(screen.view, "deleteNote");

    if (key == 0)
        Views::click(screen.view, "cancelDelete");
    else
        QTest::keyClick(screen.view.focusWidget(), Qt::Key(key));

    QVERIFY(!screen.alert());
    QCOMPARE(screen.back.count(), 0);
    QCOMPARE(screen.repository->saves(), 0);
    QCOMPARE(screen.store.snapshot().notes.size(), 1);
}

void EditNoteViewTest::deletesTheNoteAndGoesBack()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QTest::keyClicks(screen.editor(), u" and bread"_s);
    Views::click(screen.view, "deleteNote");

    Views::click(screen.view, "confirmDelete");

    QVERIFY(!screen.alert());
    QCOMPARE(screen.back.count(), 1);
    QVERIFY(screen.repository->stored().notes.isEmpty());
    QVERIFY(screen.repository->stored().editingDrafts.isEmpty());
}

void EditNoteViewTest::staysWhenTheDeletionFails()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    screen.fail();
    Views::click(screen.view, "deleteNote");

    Views::click(screen.view, "confirmDelete");

    QVERIFY(!screen.alert());
    QCOMPARE(screen.back.count(), 0);
    QCOMPARE(screen.store.snapshot().notes.size(), 1);
    QCOMPARE(screen.editor()->noteText(), u"milk"_s);
}

void EditNoteViewTest::keepsTheKeyboardInTheQuestion()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    Views::click(screen.view, "deleteNote");

    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Tab);
    QVERIFY(screen.button("confirmDelete")->hasFocus());
    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Tab);
    QVERIFY(screen.button("cancelDelete")->hasFocus());
    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
    QVERIFY(screen.button("confirmDelete")->hasFocus());

    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Return);
    QCOMPARE(screen.back.count(), 1);
    QVERIFY(screen.store.snapshot().notes.isEmpty());
}

void EditNoteViewTest::doesNotSaveWhileItAsks()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    selectAllAndType(screen.editor(), u"bread"_s);
    Views::click(screen.view, "deleteNote");

    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(screen.back.count(), 0);

    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Escape);
    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(screen.back.count(), 1);
    QCOMPARE(screen.repository->stored().notes.first().body, u"bread"_s);
}

void EditNoteViewTest::givesTheKeyboardBackAfterTheQuestion()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QTRY_VERIFY(screen.editor()->hasFocus());
    Views::click(screen.view, "deleteNote");

    QTest::keyClick(screen.view.focusWidget(), Qt::Key_Escape);

    QVERIFY(screen.editor()->hasFocus());
}

void EditNoteViewTest::announcesTheQuestion()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    Views::click(screen.view, "deleteNote");

    QAccessibleInterface *const alert = QAccessible::queryAccessibleInterface(screen.alert());

    QVERIFY(alert);
    QCOMPARE(alert->role(), QAccessible::AlertMessage);
    QCOMPARE(alert->text(QAccessible::Name), u"Delete this note?"_s);
    QVERIFY(!alert->text(QAccessible::Description).isEmpty());
}

void EditNoteViewTest::canOnlyCopyAndLeaveWhileTheStoreIsReadOnly()
{
    Screen screen(withNote(), false);
    QVERIFY(Views::show(screen.view));

    QVERIFY(!screen.editor()->isEnabled());
    QVERIFY(!screen.button("deleteNote")->isEnabled());
    QVERIFY(!screen.button("saveEdit")->isEnabled());
    Views::click(screen.view, "copyText");
    QCOMPARE(QGuiApplication::clipboard()->text(), u"milk"_s);
    QCOMPARE(screen.copySymbol(), u"checkmark"_s);
    Views::click(screen.view, "allNotes");
    QCOMPARE(screen.back.count(), 1);
    QCOMPARE(screen.repository->saves(), 0);
}

void EditNoteViewTest::changesItsTextsWithTheLanguage()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    Views::click(screen.view, "deleteNote");

    screen.preferences.setLanguage(AppLanguage::chinese);

    QCOMPARE(Views::text(screen.view, "noteDate"), u"2025年3月1日 08:15"_s);
    for (const char *name : {"allNotes", "editStatus", "saveEdit", "cancelDelete", "confirmDelete"})
        QVERIFY2(Views::isChinese(Views::text(screen.view, name)), name);
    for (const char *name : {"copyText", "deleteNote", "deleteAlert"})
        QVERIFY2(Views::isChinese(Views::find(screen.view, name)->accessibleName()), name);
}

QTEST_MAIN(EditNoteViewTest)

#include "EditNoteViewTest.moc"
