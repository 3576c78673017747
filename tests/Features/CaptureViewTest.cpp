// SPDX-License-Identifier: MIT
#include "CaptureView.h"
#include "AppPreferences.h"
#include "FailingRepository.h"
#include "FileError.h"
#include "MemoryNoteRepository.h"
#include "NoteTextEditor.h"
#include "SymbolView.h"
#include "Views.h"

#include <QInputMethodEvent>
#include <QSignalSpy>
#include <QTest>
#include <cerrno>

using namespace Qt::Literals::StringLiterals;

class CaptureViewTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { qputenv("TZ", "UTC"); }

private Q_SLOTS:
    void showsTheDraftOfTheStoreAndTakesTheKeyboard();
    void handsEachKeyToTheStore();
    void cannotSaveOnlySpacesAndLineBreaksButCountsThem();
    void countsAnEmojiOfSeveralCodePointsAsOneCharacter();
    void countsAnEmptyDraftInThePlural();
    void cannotBeTypedInOrSavedWhileTheStoreIsReadOnly();
    void savesWithTheButton();
    void savesWithTheKeys_data();
    void savesWithTheKeys();
    void savesWhatAnInputMethodIsComposing();
    void keepsTheTextOnScreenWhenTheSaveFails();
    void showsHowSafeTheDraftIs();
    void writesTheDateOfTodayInTheChosenLanguage();
    void changesTheDateAtMidnight();
    void changesItsTextsWithTheLanguage();
};

namespace {

NoteSnapshot withDraft(const QString &draft)
{
    NoteSnapshot snapshot;
    snapshot.captureDraft = draft;
    return snapshot;
}

/// The screen over a store with a repository that fails on demand.
struct Screen {
    explicit Screen(const QString &draft = {}, bool canLoad = true)
        : repository(new FailingRepository(withDraft(draft)))
        , store([&] {
            if (!canLoad)
                fail();
            return std::unique_ptr<NoteRepository>(repository);
        }())
        , view(store, preferences)
        , saved(&view, &CaptureView::saved)
    {
    }

    void fail() const { repository->failWith(FileError("/notes", ENOSPC)); }

    NoteTextEditor *editor() { return Views::find<NoteTextEditor>(view, "noteEditor"); }
    QAbstractButton *saveButton() { return Views::find<QAbstractButton>(view, "saveNote"); }
    QString symbol() { return Views::find<SymbolView>(view, "captureStatusSymbol")->symbol(); }

    FailingRepository *repository;
    AppPreferences preferences{nullptr, AppLanguage::english, AppAppearance::light};
    NoteStore store;
    CaptureView view;
    QSignalSpy saved;
};

} // namespace

void CaptureViewTest::showsTheDraftOfTheStoreAndTakesTheKeyboard()
{
    Screen screen(u"half a thought"_s);

    QVERIFY(Views::show(screen.view));

    QCOMPARE(screen.editor()->noteText(), u"half a thought"_s);
    QTRY_VERIFY(screen.editor()->hasFocus());
    QCOMPARE(Views::text(screen.view, "captureTitle"), u"What’s on your mind?"_s);
}

void CaptureViewTest::handsEachKeyToTheStore()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));

    QTest::keyClicks(screen.editor(), u"milk"_s);

    QCOMPARE(screen.store.draft(), u"milk"_s);
    QCOMPARE(Views::text(screen.view, "characterCount"), u"4 characters"_s);
    QVERIFY(screen.saveButton()->isEnabled());
}

void CaptureViewTest::cannotSaveOnlySpacesAndLineBreaksButCountsThem()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));

    QTest::keyClicks(screen.editor(), u"  "_s);
    QTest::keyClick(screen.editor(), Qt::Key_Return);
    QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);

    QVERIFY(!screen.saveButton()->isEnabled());
    QCOMPARE(screen.saved.count(), 0);
    QCOMPARE(screen.store.draft(), u"  \n"_s);
    QCOMPARE(Views::text(screen.view, "characterCount"), u"3 characters"_s);
}

void CaptureViewTest::countsAnEmojiOfSeveralCodePointsAsOneCharacter()
{
    Screen screen(u"👩‍👩‍👧‍👦"_s);

    QCOMPARE(Views::text(screen.view, "characterCount"), u"1 character"_s);
}

void CaptureViewTest::countsAnEmptyDraftInThePlural()
{
    Screen screen;

    QCOMPARE(Views::text(screen.view, "characterCount"), u"0 characters"_s);
}

void CaptureViewTest::cannotBeTypedInOrSavedWhileTheStoreIsReadOnly()
{
    Screen screen(u"text on the disk"_s, false);
    QVERIFY(Views::show(screen.view));

    QTest::keyClicks(screen.editor(), u"milk"_s);
    // The draft of such a store is empty; what is being composed would be there to save.
    QInputMethodEvent composing(u"面包"_s, {});
    QCoreApplication::sendEvent(screen.editor(), &composing);
    QVERIFY(screen.editor()->isComposing());
    QVERIFY(!screen.saveButton()->isEnabled());
    QTest::keyClick(&screen.view, Qt::Key_Return, Qt::ControlModifier);
    Views::click(screen.view, "saveNote");

    QVERIFY(!screen.editor()->isEnabled());
    QCOMPARE(screen.saved.count(), 0);
    QCOMPARE(screen.repository->saves(), 0);
    QCOMPARE(screen.symbol(), u"exclamationmark.circle"_s);
}

void CaptureViewTest::savesWithTheButton()
{
    Screen screen(u"  milk\n"_s);
    QVERIFY(Views::show(screen.view));

    Views::click(screen.view, "saveNote");

    QCOMPARE(screen.saved.count(), 1);
    QCOMPARE(screen.repository->stored().notes.size(), 1);
    QCOMPARE(screen.repository->stored().notes.first().body, u"milk"_s);
    QCOMPARE(screen.editor()->noteText(), QString());
}

void CaptureViewTest::savesWithTheKeys_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");

    using Modifiers = Qt::KeyboardModifiers;
    QTest::newRow("Ctrl+Return") << Qt::Key_Return << Modifiers(Qt::ControlModifier);
    QTest::newRow("Ctrl+Enter") << Qt::Key_Enter << (Qt::ControlModifier | Qt::KeypadModifier);
    QTest::newRow("Super+Return") << Qt::Key_Return << Modifiers(Qt::MetaModifier);
    QTest::newRow("Super+Enter") << Qt::Key_Enter << (Qt::MetaModifier | Qt::KeypadModifier);
}

void CaptureViewTest::savesWithTheKeys()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QTest::keyClicks(screen.editor(), u"milk"_s);

    QTest::keyClick(screen.editor(), key, modifiers);

    QCOMPARE(screen.saved.count(), 1);
    QCOMPARE(screen.repository->stored().notes.size(), 1);
    QCOMPARE(screen.repository->stored().notes.first().body, u"milk"_s);
}

void CaptureViewTest::savesWhatAnInputMethodIsComposing()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QTest::keyClicks(screen.editor(), u"milk "_s);
    QInputMethodEvent composing(u"面包"_s, {});
    QCoreApplication::sendEvent(screen.editor(), &composing);

    QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);

    QCOMPARE(screen.saved.count(), 1);
    QCOMPARE(screen.repository->stored().notes.first().body, u"milk 面包"_s);
}

void CaptureViewTest::keepsTheTextOnScreenWhenTheSaveFails()
{
    Screen screen(u"milk"_s);
    QVERIFY(Views::show(screen.view));
    screen.fail();

    QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);

    QCOMPARE(screen.saved.count(), 0);
    QCOMPARE(screen.editor()->noteText(), u"milk"_s);
    QCOMPARE(Views::text(screen.view, "captureStatus"), u"Not saved · Retry"_s);
    QCOMPARE(screen.symbol(), u"exclamationmark.circle"_s);
    QVERIFY(screen.saveButton()->isEnabled());
}

void CaptureViewTest::showsHowSafeTheDraftIs()
{
    Screen screen;
    QVERIFY(Views::show(screen.view));
    QCOMPARE(Views::text(screen.view, "captureStatus"), u"Saved on this Mac"_s);
    QCOMPARE(screen.symbol(), u"checkmark.circle"_s);

    QTest::keyClicks(screen.editor(), u"m"_s);

    QCOMPARE(Views::text(screen.view, "captureStatus"), u"Saving draft…"_s);
    QTRY_COMPARE(Views::text(screen.view, "captureStatus"), u"Saved on this Mac"_s);
    QCOMPARE(screen.repository->stored().captureDraft, u"m"_s);
}

void CaptureViewTest::writesTheDateOfTodayInTheChosenLanguage()
{
    NoteStore store(std::make_unique<MemoryNoteRepository>());
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::light);
    const Timestamp noon = Timestamp::fromIso8601(u"2025-03-01T12:00:00.000Z").value();
    CaptureView view(store, preferences, nullptr, [noon] { return noon; });
    QCOMPARE(Views::text(view, "captureDate"), u"March 1 · NOW"_s);

    preferences.setLanguage(AppLanguage::chinese);

    QVERIFY2(Views::text(view, "captureDate").startsWith(u"3月1日 · "_s),
             qPrintable(Views::text(view, "captureDate")));
}

void CaptureViewTest::changesTheDateAtMidnight()
{
    NoteStore store(std::make_unique<MemoryNoteRepository>());
    AppPreferences preferences(nullptr, AppLanguage::english, AppAppearance::light);
    const Timestamp start = Timestamp::now();
    const Timestamp beforeMidnight = Timestamp::fromIso8601(u"2025-03-01T23:59:59.950Z").value();
    CaptureView view(store, preferences, nullptr, [start, beforeMidnight] {
        const double elapsed = Timestamp::now().secondsSince2001 - start.secondsSince2001;
        return Timestamp{beforeMidnight.secondsSince2001 + elapsed};
    });
    QCOMPARE(Views::text(view, "captureDate"), u"March 1 · NOW"_s);

    QTRY_COMPARE(Views::text(view, "captureDate"), u"March 2 · NOW"_s);
}

void CaptureViewTest::changesItsTextsWithTheLanguage()
{
    Screen screen(u"milk"_s);
    QVERIFY(Views::show(screen.view));

    screen.preferences.setLanguage(AppLanguage::chinese);

    for (const char *name : {"captureTitle", "captureSubtitle", "captureStatus", "characterCount",
                             "saveHint", "saveNote"})
        QVERIFY2(Views::isChinese(Views::text(screen.view, name)), name);
    QCOMPARE(screen.editor()->noteText(), u"milk"_s);
}

QTEST_MAIN(CaptureViewTest)

#include "CaptureViewTest.moc"
