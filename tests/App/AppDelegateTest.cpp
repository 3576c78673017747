// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "AppPreferences.h"
#include "FloatingPanelController.h"
#include "LocalNoteRepository.h"
#include "NoteStore.h"
#include "QuitAlert.h"
#include "Views.h"

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;

/// Runs the delegate with data and settings folders of its own, and counts its questions.
class AppDelegateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void buildsNothingWhenItOnlyHostsOtherCode();
    void hasNothingToDoBeforeItIsLaunched();
    void showsTheLauncherAndNotTheEditor();
    void opensTheEditorWhenAskedTo();
    void readsTheStoredPreferences();
    void keepsTheStoredPreferencesWhateverTheArguments();
    void readsAndWritesTheNotesOnDisk();
    void leavesNothingBehindInInterfaceTests();
    void loadsTheNotesOnceTheLauncherIsPainted();
    void givesTheCodeOfTheStartBack();
    void loadsTheNotesBeforeItQuits();
    void showsTheLauncherAlthoughTheNotesCannotBeRead();
    void doesNotStartBesideAnotherProgramOnTheNotes();
    void startsInterfaceTestsBesideAnotherProgramOnTheNotes();

    void opensTheEditorWhenItIsStartedAgain();
    void opensNoEditorBehindAQuestionWhenItIsStartedAgain();
    void closesAnOpenMenuWhenItIsStartedAgain();
    void keepsRunningWithoutAWindow();
    void tellsThatTheUserWantsToQuit();

    void quitsAtOnceWhenTheLastWriteSucceeds();
    void writesAWaitingDraftBeforeItQuits();
    void quitsWithoutAQuestionOrAWriteWhenReadOnly();
    void quitsWithoutAQuestionWhenNothingTypedWouldBeLost();
    void staysWhenTheWriteFailsAndTheUserReturns();
    void quitsWithoutTheWriteWhenTheUserInsists();
    void asksInTheLanguageOfThePreferences();
    void asksNothingAtAnEndThatCannotWait();

private:
    [[nodiscard]] QString dataFolder() const { return m_dir->filePath(u"data/Penwick"_s); }
    [[nodiscard]] QString settingsFile() const
    {
        return m_dir->filePath(u"config/Penwick/Penwick.conf"_s);
    }

    [[nodiscard]] QString foreignNote() const
    {
        return dataFolder() + u"/Markdown/Notes/8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F.md"_s;
    }

    /// A note of another program: as long as it is there every write of the delegate's store fails.
    void changeTheNotesFromOutside() const;

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<AppDelegate> m_delegate;
    std::function<void()> m_whileAsked;
    bool m_quitsAnyway = false;
    int m_questions = 0;
};

namespace {

const LaunchOptions normal;
const LaunchOptions interfaceTest = [] {
    LaunchOptions options;
    options.mode = LaunchOptions::Mode::interfaceTest;
    options.language = AppLanguage::english;
    options.appearance = AppAppearance::light;
    return options;
}();

/// The answer to a question at the moment when a widget was first painted.
class AtPaint final : public QObject {
public:
    AtPaint(QWidget &widget, std::function<bool()> question)
        : m_question(std::move(question))
    {
        widget.installEventFilter(this);
    }

    [[nodiscard]] const std::optional<bool> &first() const noexcept { return m_first; }

protected:
    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_first)
            m_first = m_question();
        return QObject::eventFilter(receiver, event);
    }

private:
    std::function<bool()> m_question;
    std::optional<bool> m_first;
};

/// The code of this program that is mapped, in KiB.
int mappedCode()
{
    QFile mappings(u"/proc/self/smaps"_s);
    if (!mappings.open(QIODevice::ReadOnly))
        return -1;
    const QRegularExpression code(
        u" r-xp [^\\n]*/AppDelegateTest\\n(?:[^\\n]*\\n)*?Rss: +(\\d+) kB"_s);
    const QRegularExpressionMatch match = code.match(QString::fromUtf8(mappings.readAll()));
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

NoteSnapshot storedNotes()
{
    return LocalNoteRepository().load();
}

} // namespace

void AppDelegateTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    qputenv("XDG_DATA_HOME", m_dir->filePath(u"data"_s).toUtf8());
    qputenv("XDG_STATE_HOME", m_dir->filePath(u"state"_s).toUtf8());
    qputenv("XDG_CONFIG_HOME", m_dir->filePath(u"config"_s).toUtf8());
    m_questions = 0;
    m_whileAsked = [] {};
    m_delegate = std::make_unique<AppDelegate>([this](const AppPreferences *) {
        ++m_questions;
        m_whileAsked();
        return m_quitsAnyway;
    });
}

void AppDelegateTest::cleanup()
{
    m_delegate.reset();
}

void AppDelegateTest::changeTheNotesFromOutside() const
{
    QFile file(foreignNote());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("by another program") > 0);
}

void AppDelegateTest::buildsNothingWhenItOnlyHostsOtherCode()
{
    LaunchOptions options;
    options.mode = LaunchOptions::Mode::hostOnly;
    options.showsEditor = true;

    m_delegate->applicationDidFinishLaunching(options);

    QVERIFY(!m_delegate->preferences());
    QVERIFY(!m_delegate->store());
    QVERIFY(!m_delegate->panels());
    QVERIFY(QDir(m_dir->path()).isEmpty());
    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);
}

void AppDelegateTest::hasNothingToDoBeforeItIsLaunched()
{
    QVERIFY(!m_delegate->applicationShouldHandleReopen(false));
    m_delegate->applicationWillTerminate();

    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);
    QCOMPARE(m_questions, 0);
}

void AppDelegateTest::showsTheLauncherAndNotTheEditor()
{
    m_delegate->applicationDidFinishLaunching(normal);

    QVERIFY(m_delegate->panels()->launcher().isVisible());
    QVERIFY(!m_delegate->panels()->isExpanded());
    QVERIFY(!m_delegate->panels()->editor().isVisible());
}

void AppDelegateTest::opensTheEditorWhenAskedTo()
{
    LaunchOptions options;
    options.showsEditor = true;

    m_delegate->applicationDidFinishLaunching(options);

    QVERIFY(m_delegate->panels()->isExpanded());
    QVERIFY(m_delegate->panels()->editor().isVisible());
}

void AppDelegateTest::readsTheStoredPreferences()
{
    QSettings(settingsFile(), QSettings::IniFormat).setValue(u"ui.language"_s, u"zh-Hans"_s);

    m_delegate->applicationDidFinishLaunching(normal);

    QCOMPARE(m_delegate->preferences()->language(), AppLanguage::chinese);
    QCOMPARE(m_delegate->preferences()->appearance(), AppAppearance::system);
    m_delegate->preferences()->setAppearance(AppAppearance::dark);
    m_delegate.reset();
    QCOMPARE(QSettings(settingsFile(), QSettings::IniFormat).value(u"ui.appearance"_s), u"dark"_s);
}

void AppDelegateTest::keepsTheStoredPreferencesWhateverTheArguments()
{
    QSettings stored(settingsFile(), QSettings::IniFormat);
    stored.setValue(u"ui.language"_s, u"en"_s);
    stored.setValue(u"ui.appearance"_s, u"light"_s);
    stored.sync();

    m_delegate->applicationDidFinishLaunching(LaunchOptions::from(
        {u"quillmark"_s, u"--language=zh-Hans"_s, u"--appearance=dark"_s}, {}, false));

    QCOMPARE(m_delegate->preferences()->language(), AppLanguage::english);
    QCOMPARE(m_delegate->preferences()->appearance(), AppAppearance::light);
    QCOMPARE(m_delegate->preferences()->text(u"New note"_s), u"New note"_s);
}

void AppDelegateTest::readsAndWritesTheNotesOnDisk()
{
    m_delegate->applicationDidFinishLaunching(normal);
    QVERIFY(!QFile::exists(dataFolder()));

    m_delegate->store()->setDraft(u"milk"_s);
    QVERIFY(m_delegate->store()->saveCapture());

    QCOMPARE(storedNotes(), m_delegate->store()->snapshot());
}

void AppDelegateTest::leavesNothingBehindInInterfaceTests()
{
    m_delegate->applicationDidFinishLaunching(interfaceTest);
    m_delegate->preferences()->setAppearance(AppAppearance::dark);
    m_delegate->store()->setDraft(u"milk"_s);
    QVERIFY(m_delegate->store()->saveCapture());
    m_delegate->panels()->expand();
    m_delegate->panels()->collapse();
    m_delegate.reset();

    QVERIFY(QDir(m_dir->path()).isEmpty());
}

void AppDelegateTest::loadsTheNotesOnceTheLauncherIsPainted()
{
    m_delegate->applicationDidFinishLaunching(normal);
    const AtPaint hadLoaded(m_delegate->panels()->launcher(),
                            [this] { return m_delegate->hasLoaded(); });

    QTRY_VERIFY(m_delegate->hasLoaded());
    QVERIFY(!hadLoaded.first().value_or(true));
}

void AppDelegateTest::givesTheCodeOfTheStartBack()
{
    m_delegate->applicationDidFinishLaunching(normal);
    const int atStart = mappedCode();
    QVERIFY(atStart > 0);

    QTRY_VERIFY(m_delegate->hasLoaded());

    const int atRest = mappedCode();
    QVERIFY2(atRest >= 0 && atRest < atStart, qPrintable(u"%1, %2"_s.arg(atStart).arg(atRest)));
}

void AppDelegateTest::loadsTheNotesBeforeItQuits()
{
    {
        NoteSnapshot typed;
        typed.captureDraft = u"typed before"_s;
        LocalNoteRepository().save(typed);
    }
    m_delegate->applicationDidFinishLaunching(normal);
    QVERIFY(!m_delegate->hasLoaded());

    QVERIFY(m_delegate->applicationWillTerminate());
    m_delegate.reset();

    QCOMPARE(storedNotes().captureDraft, u"typed before"_s);
}

void AppDelegateTest::showsTheLauncherAlthoughTheNotesCannotBeRead()
{
    QVERIFY(QDir().mkpath(dataFolder()));
    QFile legacy(dataFolder() + u"/notes.json"_s);
    QVERIFY(legacy.open(QIODevice::WriteOnly));
    legacy.close();

    m_delegate->applicationDidFinishLaunching(normal);

    QVERIFY(m_delegate->store()->isReadOnly());
    QVERIFY(m_delegate->panels()->launcher().isVisible());
}

void AppDelegateTest::doesNotStartBesideAnotherProgramOnTheNotes()
{
    LocalNoteRepository other;
    other.save(NoteSnapshot());

    const std::optional<Message> refusal = m_delegate->applicationDidFinishLaunching(normal);

    QVERIFY(refusal.has_value());
    QCOMPARE(refusal->english(), u"“%1” is in use by another Quillmark: go on there, or quit that "
                                 "one first."_s.arg(dataFolder()));
    QVERIFY(m_delegate->preferences());
    QVERIFY(!m_delegate->store());
    QVERIFY(!m_delegate->panels());
}

void AppDelegateTest::startsInterfaceTestsBesideAnotherProgramOnTheNotes()
{
    {
        LocalNoteRepository other;
        other.save(NoteSnapshot());
        QVERIFY(!m_delegate->applicationDidFinishLaunching(interfaceTest));
    }

    QVERIFY(m_delegate->panels()->launcher().isVisible());
    QVERIFY(LocalNoteRepository().claim());
}

void AppDelegateTest::opensTheEditorWhenItIsStartedAgain()
{
    m_delegate->applicationDidFinishLaunching(interfaceTest);

    QVERIFY(!m_delegate->applicationShouldHandleReopen(true));

    QVERIFY(m_delegate->panels()->isExpanded());
}

void AppDelegateTest::opensNoEditorBehindAQuestionWhenItIsStartedAgain()
{
    m_delegate->applicationDidFinishLaunching(normal);
    QMessageBox question;
    question.setModal(true);
    question.show();
    QTRY_VERIFY(QApplication::activeModalWidget());

    m_delegate->applicationShouldHandleReopen(true);

    QVERIFY(!m_delegate->panels()->isExpanded());
    QVERIFY(question.isVisible());
}

void AppDelegateTest::closesAnOpenMenuWhenItIsStartedAgain()
{
    m_delegate->applicationDidFinishLaunching(normal);
    QMenu menu;
    menu.addAction(u"Item"_s);
    menu.popup({});
    QTRY_VERIFY(QApplication::activePopupWidget());

    m_delegate->applicationShouldHandleReopen(true);

    QVERIFY(!menu.isVisible());
    QVERIFY(m_delegate->panels()->isExpanded());
}

void AppDelegateTest::keepsRunningWithoutAWindow()
{
    QVERIFY(!m_delegate->applicationShouldTerminateAfterLastWindowClosed());
}

void AppDelegateTest::tellsThatTheUserWantsToQuit()
{
    m_delegate->applicationDidFinishLaunching(interfaceTest);
    const QSignalSpy requested(m_delegate.get(), &AppDelegate::quitRequested);

    Q_EMIT m_delegate->panels()->quitRequested();

    QCOMPARE(requested.count(), 1);
}

void AppDelegateTest::quitsAtOnceWhenTheLastWriteSucceeds()
{
    m_delegate->applicationDidFinishLaunching(normal);

    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);

    // The write happens at every quit, whether or not something waits for it.
    QVERIFY(QFile::exists(dataFolder() + u"/Markdown"_s));
    QCOMPARE(m_questions, 0);
}

void AppDelegateTest::writesAWaitingDraftBeforeItQuits()
{
    m_delegate->applicationDidFinishLaunching(normal);
    m_delegate->store()->setDraft(u"just typed"_s);
    QVERIFY(m_delegate->store()->hasPendingChanges());

    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);

    QVERIFY(!m_delegate->store()->hasPendingChanges());
    QCOMPARE(storedNotes().captureDraft, u"just typed"_s);
    QCOMPARE(m_questions, 0);
}

void AppDelegateTest::quitsWithoutAQuestionOrAWriteWhenReadOnly()
{
    QVERIFY(QDir().mkpath(dataFolder()));
    QFile legacy(dataFolder() + u"/notes.json"_s);
    QVERIFY(legacy.open(QIODevice::WriteOnly));
    legacy.close();
    m_delegate->applicationDidFinishLaunching(normal);

    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);
    m_delegate->applicationWillTerminate();

    QCOMPARE(QDir(dataFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{u"notes.json"_s});
    QCOMPARE(m_questions, 0);
}

void AppDelegateTest::quitsWithoutAQuestionWhenNothingTypedWouldBeLost()
{
    m_delegate->applicationDidFinishLaunching(normal);
    m_delegate->store()->setDraft(u"safe"_s);
    QVERIFY(m_delegate->store()->flush());
    changeTheNotesFromOutside();

    QVERIFY(m_delegate->applicationWillTerminate());
    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);

    QCOMPARE(m_questions, 0);
    QVERIFY(QFile::exists(foreignNote()));
}

void AppDelegateTest::staysWhenTheWriteFailsAndTheUserReturns()
{
    m_delegate->applicationDidFinishLaunching(normal);
    QVERIFY(m_delegate->store()->flush());
    changeTheNotesFromOutside();
    m_delegate->store()->setDraft(u"not safe yet"_s);
    m_quitsAnyway = false;

    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::cancel);

    QCOMPARE(m_questions, 1);
    QCOMPARE(m_delegate->store()->status(), u"Not saved · Retry"_s);
    QCOMPARE(m_delegate->store()->draft(), u"not safe yet"_s);
    QVERIFY(m_delegate->panels()->launcher().isVisible());
    QVERIFY(!m_delegate->panels()->isExpanded());
}

void AppDelegateTest::quitsWithoutTheWriteWhenTheUserInsists()
{
    m_delegate->applicationDidFinishLaunching(normal);
    QVERIFY(m_delegate->store()->flush());
    changeTheNotesFromOutside();
    m_delegate->store()->setDraft(u"given up"_s);
    m_quitsAnyway = true;
    // From the question on a write would succeed.
    m_whileAsked = [this] { QVERIFY(QFile::remove(foreignNote())); };

    QCOMPARE(m_delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::now);

    QCOMPARE(m_questions, 1);
    // Nothing is saved that was not, and what was kept stays.
    LocalNoteRepository next;
    QCOMPARE(next.load().captureDraft, u"given up"_s);
    QVERIFY(next.hasRestored());
    QVERIFY(m_delegate->store()->flush());
    QCOMPARE(storedNotes().captureDraft, u"given up"_s);
}

void AppDelegateTest::asksInTheLanguageOfThePreferences()
{
    QSettings(settingsFile(), QSettings::IniFormat).setValue(u"ui.language"_s, u"zh-Hans"_s);
    AppDelegate delegate(&QuitAlert::isConfirmed);
    delegate.applicationDidFinishLaunching(normal);
    QVERIFY(delegate.store()->flush());
    changeTheNotesFromOutside();
    delegate.store()->setDraft(u"not safe yet"_s);
    QStringList texts;
    const auto answer = [&texts] {
        auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        QVERIFY(alert);
        texts = {alert->text(), alert->informativeText()};
        for (const QAbstractButton *button : alert->buttons())
            texts.append(button->text());
        alert->reject();
    };
    QMetaObject::invokeMethod(&delegate, answer, Qt::QueuedConnection);

    QCOMPARE(delegate.applicationShouldTerminate(), AppDelegate::TerminateReply::cancel);

    QCOMPARE(texts.size(), 4);
    for (const QString &text : texts)
        QVERIFY2(Views::isChinese(text), qPrintable(text));
}

void AppDelegateTest::asksNothingAtAnEndThatCannotWait()
{
    m_delegate->applicationDidFinishLaunching(normal);
    m_delegate->store()->setDraft(u"typed before the power button"_s);
    m_delegate->applicationWillTerminate();
    QCOMPARE(storedNotes().captureDraft, u"typed before the power button"_s);

    changeTheNotesFromOutside();
    m_delegate->applicationWillTerminate();

    QCOMPARE(m_questions, 0);
}

QTEST_MAIN(AppDelegateTest)
#include "AppDelegateTest.moc"
