// SPDX-License-Identifier: MIT
#include "FloatingPanelController.h"

#include "AppEnvironment.h"
#include "AppPreferences.h"
#include "FailingRepository.h"
#include "FakeApplicationFocus.h"
#include "FakeScreens.h"
#include "FileError.h"
#include "LauncherHitView.h"
#include "LauncherView.h"
#include "NoteStore.h"
#include "NoteTheme.h"
#include "NoteWorkspaceView.h"
#include "SystemAppearance.h"

#include <QApplication>
#include <QEnterEvent>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

namespace {

const Screen mainScreen{{0, 0, 1440, 900}, {0, 0, 1440, 875}};
const Screen bareScreen{{0, 0, 1440, 900}, {0, 0, 1440, 900}};
const Screen secondScreen{{1440, 0, 1280, 800}, {1440, 0, 1280, 800}};

const RunningApplication otherProgram{0x600001, 4711};

} // namespace

class FloatingPanelControllerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsNothingByItself();
    void startsNearTheTopRightCornerAndRemembersItAtOnce();
    void neitherReadsNorWritesThePlaceWhenItDoesNotRemember();
    void createsNoPlaceWhenItDoesNotRemember();
    void startsWhereItWasLeft();
    void bringsARememberedPlaceBackOntoTheScreen();
    void takesAnUnreadableHeightForZero();
    void takesAMissingHeightForZero();
    void startsAtItsFirstPlaceWhenOnlyTheHeightIsThere();
    void survivesARememberedPlaceThatIsNoNumber();
    void startsOnTheSecondScreenWhereItWasLeft();

    void movesTheLauncherWithTheDrag();
    void letsADragLeaveTheScreenUntilItEnds();
    void measuresADragFromWhereItBegan();

    void opensTheEditorInTheLaunchersPlace();
    void opensTheEditorOnAClick();
    void showsWhatAnotherProgramChangedMeanwhile();
    void bringsAnOpenEditorForwardAndKeepsItsScreen();
    void buildsAFreshWorkspaceAtEachOpening();
    void keepsNoWorkspaceBehindTheLauncher();
    void staysFoldedWhenThePointerOnlyPasses();

    void writesWhenItFolds();
    void foldsOnEscape();
    void foldsOnTheWishOfTheWorkspace();
    void staysOpenWhenTheWriteFails();
    void foldsAReadOnlyStoreWithoutWriting();
    void writesAgainWhenItIsFoldedAlready();
    void staysFoldedWhenThatWriteFails();

    void makesANoteOfWhatIsDropped();
    void keepsNothingThatIsRefused();
    void leavesTheCaptureAloneWhenADropCannotBeSaved();
    void foldsALostEditorWithoutActivatingAnybody();
    void bringsALostEditorBackWhenNothingCanBeSaved();
    void tellsTheWayOutWhenItCannotFold();

    void givesTheKeyboardBack();
    void givesTheKeyboardToTheWindowThatTheUserLastWorkedIn();
    void givesTheKeyboardBackToNobodyWhenNobodyHadIt();
    void doesNotActivateItself();
    void asksForTheFrontmostProgramAtEachOpening();

    void switchesTheProgramToDarkAtOnce();
    void followsTheSystemsScheme();
    void retitlesOnlyTheLauncher();
    void bringsBothPanelsToTheMainScreenWhenTheirsIsPulledOut();
    void returnsToTheChosenPlaceWithItsScreens();
    void startsAtTheChosenPlaceOfItsScreens();
    void startsWhereAnotherHandPutIt();
    void staysFoldedWhenTheScreensChange();
    void rehomesOnAFixedAreaWithoutAnyScreen();
    void asksToQuit();

private:
    void make(bool remembersPosition = true);
    void remember(const QVariant &x, const QVariant &y);
    [[nodiscard]] Rect launcherFrame() const;
    [[nodiscard]] Rect editorFrame() const;
    [[nodiscard]] QPointF remembered() const;
    [[nodiscard]] NoteWorkspaceView *workspace() const;
    void drag(QPoint translation, bool ended) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QSettings> m_defaults;
    std::unique_ptr<AppPreferences> m_preferences;
    FailingRepository *m_repository = nullptr;
    std::unique_ptr<NoteStore> m_store;
    std::unique_ptr<SystemAppearance> m_system;
    std::unique_ptr<FakeScreens> m_screens;
    std::unique_ptr<FakeApplicationFocus> m_focus;
    std::unique_ptr<FloatingPanelController> m_controller;
};

void FloatingPanelControllerTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_defaults =
        std::make_unique<QSettings>(m_folder->filePath(u"Penwick.conf"_s), QSettings::IniFormat);
    m_preferences =
        std::make_unique<AppPreferences>(nullptr, AppLanguage::english, AppAppearance::light);
    auto repository = std::make_unique<FailingRepository>();
    m_repository = repository.get();
    m_store = std::make_unique<NoteStore>(std::move(repository));
    m_system = std::make_unique<SystemAppearance>();
    m_screens = std::make_unique<FakeScreens>();
    m_screens->set({bareScreen});
    m_focus = std::make_unique<FakeApplicationFocus>();
}

void FloatingPanelControllerTest::cleanup()
{
    m_controller.reset();
}

void FloatingPanelControllerTest::make(bool remembersPosition)
{
    m_controller = std::make_unique<FloatingPanelController>(
        [this]() -> NoteStore & { return *m_store; }, *m_preferences, *m_defaults,
        remembersPosition, *m_system, *m_screens, *m_focus, m_folder->filePath(u"places"_s));
}

void FloatingPanelControllerTest::remember(const QVariant &x, const QVariant &y)
{
    m_defaults->setValue(u"launcher.x"_s, x);
    m_defaults->setValue(u"launcher.y"_s, y);
}

Rect FloatingPanelControllerTest::launcherFrame() const
{
    return m_screens->fromQt(m_controller->launcher().geometry());
}

Rect FloatingPanelControllerTest::editorFrame() const
{
    return m_screens->fromQt(m_controller->editor().geometry());
}

QPointF FloatingPanelControllerTest::remembered() const
{
    // Read from the file, as the next start does.
    const QSettings file(m_defaults->fileName(), QSettings::IniFormat);
    return {file.value(u"launcher.x"_s).toDouble(), file.value(u"launcher.y"_s).toDouble()};
}

NoteWorkspaceView *FloatingPanelControllerTest::workspace() const
{
    const auto found = m_controller->editor().findChildren<NoteWorkspaceView *>();
    for (NoteWorkspaceView *view : found) {
        if (view->isVisible())
            return view;
    }
    return nullptr;
}

void FloatingPanelControllerTest::drag(QPoint translation, bool ended) const
{
    auto *hitView = m_controller->launcher().findChild<LauncherHitView *>();
    Q_EMIT hitView->moved({double(translation.x()), double(translation.y())}, ended);
}

void FloatingPanelControllerTest::showsNothingByItself()
{
    make();

    QVERIFY(!m_controller->launcher().isVisible());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(!m_controller->isExpanded());
}

void FloatingPanelControllerTest::startsNearTheTopRightCornerAndRemembersItAtOnce()
{
    m_screens->set({mainScreen});

    make();

    QCOMPARE(launcherFrame(), (Rect{1352, 767, 64, 64}));
    QCOMPARE(remembered(), QPointF(1352, 767));
}

void FloatingPanelControllerTest::neitherReadsNorWritesThePlaceWhenItDoesNotRemember()
{
    remember(100.0, 100.0);

    make(false);
    QCOMPARE(launcherFrame(), (Rect{1352, 792, 64, 64}));

    drag({-200, 0}, true);
    m_screens->set({mainScreen});
    QCOMPARE(remembered(), QPointF(100, 100));
}

void FloatingPanelControllerTest::createsNoPlaceWhenItDoesNotRemember()
{
    make(false);

    drag({-200, 0}, true);
    m_screens->set({mainScreen});
    m_controller->expand();
    m_controller->collapse();

    m_defaults->sync();
    QCOMPARE(m_defaults->allKeys(), QStringList());
    QVERIFY(!QFile::exists(m_defaults->fileName()));
}

void FloatingPanelControllerTest::startsWhereItWasLeft()
{
    remember(321.0, 123.0);

    make();

    QCOMPARE(launcherFrame(), (Rect{321, 123, 64, 64}));
}

void FloatingPanelControllerTest::bringsARememberedPlaceBackOntoTheScreen()
{
    remember(5000.0, 5000.0);

    make();

    QCOMPARE(launcherFrame(), (Rect{1364, 824, 64, 64}));
    QCOMPARE(remembered(), QPointF(1364, 824));
}

void FloatingPanelControllerTest::takesAnUnreadableHeightForZero()
{
    remember(300.0, u"high"_s);

    make();

    QCOMPARE(launcherFrame(), (Rect{300, 12, 64, 64}));
}

void FloatingPanelControllerTest::takesAMissingHeightForZero()
{
    // A screen on which the launcher may lie at zero.
    m_screens->set({{{0, -400, 1440, 900}, {0, -400, 1440, 900}}});
    m_defaults->setValue(u"launcher.x"_s, 300.0);

    make();

    QCOMPARE(launcherFrame(), (Rect{300, 0, 64, 64}));
    QCOMPARE(remembered(), QPointF(300, 0));
}

void FloatingPanelControllerTest::startsAtItsFirstPlaceWhenOnlyTheHeightIsThere()
{
    m_defaults->setValue(u"launcher.y"_s, 123.0);

    make();

    QCOMPARE(launcherFrame(), (Rect{1352, 792, 64, 64}));
    QCOMPARE(remembered(), QPointF(1352, 792));
}

void FloatingPanelControllerTest::survivesARememberedPlaceThatIsNoNumber()
{
    remember(u"nan"_s, u"-inf"_s);
    make();
    QCOMPARE(launcherFrame(), (Rect{12, 12, 64, 64}));

    remember(1e300, -1e300);
    make();
    QCOMPARE(launcherFrame(), (Rect{1364, 12, 64, 64}));
}

void FloatingPanelControllerTest::startsOnTheSecondScreenWhereItWasLeft()
{
    m_screens->set({bareScreen, secondScreen});
    remember(1500.0, 300.0);

    make();

    QCOMPARE(launcherFrame(), (Rect{1500, 300, 64, 64}));
}

void FloatingPanelControllerTest::movesTheLauncherWithTheDrag()
{
    remember(500.0, 500.0);
    make();

    drag({100, 50}, true);

    QCOMPARE(launcherFrame(), (Rect{600, 450, 64, 64}));
    QCOMPARE(remembered(), QPointF(600, 450));
}

void FloatingPanelControllerTest::letsADragLeaveTheScreenUntilItEnds()
{
    remember(500.0, 500.0);
    make();

    drag({-530, 0}, false);
    QCOMPARE(launcherFrame(), (Rect{-30, 500, 64, 64}));
    QCOMPARE(remembered(), QPointF(500, 500));

    drag({-530, 0}, true);
    QCOMPARE(launcherFrame(), (Rect{12, 500, 64, 64}));
    QCOMPARE(remembered(), QPointF(12, 500));
}

void FloatingPanelControllerTest::measuresADragFromWhereItBegan()
{
    remember(500.0, 500.0);
    make();

    drag({10, 0}, false);
    drag({20, 0}, false);
    drag({30, 0}, true);
    QCOMPARE(launcherFrame(), (Rect{530, 500, 64, 64}));

    drag({10, 0}, true);
    QCOMPARE(launcherFrame(), (Rect{540, 500, 64, 64}));
}

void FloatingPanelControllerTest::opensTheEditorInTheLaunchersPlace()
{
    m_screens->set({mainScreen});
    make();
    m_controller->launcher().show();

    m_controller->expand();

    QVERIFY(m_controller->isExpanded());
    QVERIFY(!m_controller->launcher().isVisible());
    QVERIFY(m_controller->editor().isVisible());
    QCOMPARE(editorFrame(), (Rect{992, 271, 424, 560}));
    QVERIFY(QTest::qWaitForWindowActive(&m_controller->editor()));
}

void FloatingPanelControllerTest::showsWhatAnotherProgramChangedMeanwhile()
{
    make();
    m_repository->changeOutside({1, {}, u"theirs"_s, {}});

    m_controller->expand();

    QCOMPARE(m_store->draft(), u"theirs"_s);
    m_repository->changeOutside({1, {}, u"theirs again"_s, {}});
    m_controller->collapse();
    QVERIFY(m_controller->launcher().isVisible());
    QCOMPARE(m_store->draft(), u"theirs again"_s);
}

void FloatingPanelControllerTest::opensTheEditorOnAClick()
{
    make();
    m_controller->launcher().show();

    QTest::mouseClick(m_controller->launcher().findChild<LauncherHitView *>(), Qt::LeftButton);

    QVERIFY(m_controller->isExpanded());
    QVERIFY(m_controller->editor().isVisible());
}

void FloatingPanelControllerTest::bringsAnOpenEditorForwardAndKeepsItsScreen()
{
    make();
    m_controller->expand();
    const NoteWorkspaceView *open = workspace();
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));

    m_controller->expand();

    QVERIFY(QTest::qWaitForWindowActive(&m_controller->editor()));
    QCOMPARE(workspace(), open);
}

void FloatingPanelControllerTest::buildsAFreshWorkspaceAtEachOpening()
{
    make();
    m_controller->expand();
    const QPointer<NoteWorkspaceView> first = workspace();

    m_controller->collapse();
    m_controller->expand();

    QVERIFY(workspace());
    QVERIFY(workspace() != first);
}

void FloatingPanelControllerTest::keepsNoWorkspaceBehindTheLauncher()
{
    make();
    m_controller->expand();
    const QPointer<NoteWorkspaceView> open = workspace();
    QVERIFY(open);

    m_controller->collapse();

    QTRY_VERIFY(open.isNull());
}

void FloatingPanelControllerTest::staysFoldedWhenThePointerOnlyPasses()
{
    make();
    m_controller->launcher().show();
    auto *view = m_controller->launcher().findChild<LauncherView *>();
    const QSignalSpy approached(view, &LauncherView::approached);

    QEnterEvent enter({32, 32}, {32, 32}, {32, 32});
    QCoreApplication::sendEvent(view, &enter);
    QCOMPARE(approached.size(), 1);
    QCoreApplication::processEvents();

    QVERIFY(!m_controller->isExpanded());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(m_controller->launcher().isVisible());
    QCOMPARE(m_repository->saves(), 0);
}

void FloatingPanelControllerTest::writesWhenItFolds()
{
    make();
    m_controller->expand();
    m_store->setDraft(u"buy milk"_s);

    m_controller->collapse();

    QCOMPARE(m_repository->stored().captureDraft, u"buy milk"_s);
    QVERIFY(!m_controller->isExpanded());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(m_controller->launcher().isVisible());
}

void FloatingPanelControllerTest::foldsOnEscape()
{
    make();
    m_controller->expand();

    QTest::keyClick(&m_controller->editor(), Qt::Key_Escape);

    QVERIFY(!m_controller->isExpanded());
}

void FloatingPanelControllerTest::foldsOnTheWishOfTheWorkspace()
{
    make();
    m_controller->expand();

    Q_EMIT workspace()->collapseRequested();

    QVERIFY(!m_controller->isExpanded());
    QVERIFY(m_controller->launcher().isVisible());
}

void FloatingPanelControllerTest::staysOpenWhenTheWriteFails()
{
    make();
    m_focus->current = otherProgram;
    m_controller->expand();
    m_repository->failWith(FileError("/notes", ENOSPC));

    m_controller->collapse();

    QVERIFY(m_controller->isExpanded());
    QVERIFY(m_controller->editor().isVisible());
    QVERIFY(!m_controller->launcher().isVisible());
    QVERIFY(m_store->errorMessage().has_value());
    QVERIFY(m_focus->activated.isEmpty());
}

void FloatingPanelControllerTest::foldsAReadOnlyStoreWithoutWriting()
{
    auto repository = std::make_unique<FailingRepository>();
    m_repository = repository.get();
    m_repository->failWith(FileError("/notes", EACCES));
    m_store = std::make_unique<NoteStore>(std::move(repository));
    QVERIFY(m_store->isReadOnly());
    make();
    m_controller->expand();

    QTest::keyClick(&m_controller->editor(), Qt::Key_Escape);

    QVERIFY(!m_controller->isExpanded());
    QCOMPARE(m_repository->saves(), 0);
}

void FloatingPanelControllerTest::writesAgainWhenItIsFoldedAlready()
{
    make();
    m_controller->expand();
    m_controller->collapse();
    m_store->setDraft(u"buy milk"_s);
    const int saves = m_repository->saves();

    m_controller->collapse();

    QCOMPARE(m_repository->saves(), saves + 1);
    QCOMPARE(m_repository->stored().captureDraft, u"buy milk"_s);
    QVERIFY(!m_controller->isExpanded());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(m_controller->launcher().isVisible());
    m_controller->expand();
    QVERIFY(workspace());
}

void FloatingPanelControllerTest::staysFoldedWhenThatWriteFails()
{
    make();
    m_controller->launcher().show();
    m_repository->failWith(FileError("/notes", ENOSPC));

    m_controller->collapse();

    QCOMPARE(m_repository->saves(), 1);
    QVERIFY(!m_controller->isExpanded());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(m_controller->launcher().isVisible());
}

void FloatingPanelControllerTest::makesANoteOfWhatIsDropped()
{
    make();
    m_store->setDraft(u"unfinished"_s);
    auto *const view = m_controller->launcher().findChild<LauncherView *>();

    m_controller->take({u"dropped\ntext"_s, std::nullopt});

    QCOMPARE(m_repository->stored().notes.size(), 1);
    QCOMPARE(m_repository->stored().notes.first().body, u"dropped\ntext"_s);
    QCOMPARE(m_store->draft(), u"unfinished"_s);
    QCOMPARE(view->symbol(), u"checkmark"_s);
    QTRY_COMPARE(view->symbol(), u"plus"_s);
}

void FloatingPanelControllerTest::keepsNothingThatIsRefused()
{
    make();
    m_controller->launcher().show();

    m_controller->take({{}, Message{u"Not kept: there is no text in what was dropped."_s, {}}});

    QCOMPARE(m_repository->saves(), 0);
    QTRY_COMPARE(QToolTip::text(), u"Not kept: there is no text in what was dropped."_s);
}

void FloatingPanelControllerTest::leavesTheCaptureAloneWhenADropCannotBeSaved()
{
    make();
    m_controller->launcher().show();
    m_store->setDraft(u"unfinished"_s);
    m_repository->failWith(FileError("/notes", Reason::inUse));

    m_controller->take({u"dropped"_s, std::nullopt});

    QVERIFY(m_store->snapshot().notes.isEmpty());
    QCOMPARE(m_store->draft(), u"unfinished"_s);
    QTRY_COMPARE(QToolTip::text(), m_store->errorMessage().value_or(QString()));
}

void FloatingPanelControllerTest::foldsALostEditorWithoutActivatingAnybody()
{
    make();
    m_focus->current = otherProgram;
    m_controller->expand();
    m_store->setDraft(u"typed"_s);

    Q_EMIT m_controller->editor().lost();

    QVERIFY(!m_controller->isExpanded());
    QVERIFY(m_controller->launcher().isVisible());
    QVERIFY(m_focus->activated.isEmpty());
    QCOMPARE(m_repository->stored().captureDraft, u"typed"_s);
}

void FloatingPanelControllerTest::bringsALostEditorBackWhenNothingCanBeSaved()
{
    make();
    m_controller->expand();
    QTRY_VERIFY(m_controller->editor().wasActive());
    m_repository->failWith(FileError("/notes", Reason::inUse));
    m_controller->editor().hide();

    Q_EMIT m_controller->editor().lost();

    QVERIFY(m_controller->isExpanded());
    QVERIFY(m_controller->editor().isVisible());
}

void FloatingPanelControllerTest::tellsTheWayOutWhenItCannotFold()
{
    make();
    m_controller->expand();
    m_repository->failWith(FileError("/notes", Reason::inUse));
    const auto saysIt = [this] {
        const auto *banner = workspace()->findChild<QWidget *>(u"errorBanner"_s);
        return banner->accessibleName().contains(u"Ctrl+Q"_s);
    };
    m_store->flush();
    QVERIFY(!saysIt());

    m_controller->collapse();
    QVERIFY(saysIt());

    m_repository->recover();
    m_store->flush();
    QVERIFY(!saysIt());
}

void FloatingPanelControllerTest::givesTheKeyboardBack()
{
    make();
    m_focus->current = otherProgram;
    m_controller->expand();
    QVERIFY(m_focus->activated.isEmpty());

    m_controller->collapse();

    QCOMPARE(m_focus->activated, QList{otherProgram});
}

void FloatingPanelControllerTest::givesTheKeyboardToTheWindowThatTheUserLastWorkedIn()
{
    constexpr RunningApplication later{0x700001, 4712};
    make();
    m_focus->current = otherProgram;
    m_controller->expand();
    m_focus->last = later;

    m_controller->collapse();

    QCOMPARE(m_focus->activated, QList{later});
}

void FloatingPanelControllerTest::givesTheKeyboardBackToNobodyWhenNobodyHadIt()
{
    make();
    m_focus->current.reset();
    m_controller->expand();

    m_controller->collapse();

    QVERIFY(m_focus->activated.isEmpty());
}

void FloatingPanelControllerTest::doesNotActivateItself()
{
    make();
    m_focus->current = RunningApplication{0x600001, QCoreApplication::applicationPid()};
    m_controller->expand();

    m_controller->collapse();

    QVERIFY(m_focus->activated.isEmpty());
}

void FloatingPanelControllerTest::asksForTheFrontmostProgramAtEachOpening()
{
    const RunningApplication second{0x700001, 4712};
    make();
    m_focus->current = otherProgram;
    m_controller->expand();
    m_focus->current = second;
    m_controller->expand();
    m_controller->collapse();
    QCOMPARE(m_focus->activated, QList{otherProgram});

    m_controller->expand();
    m_controller->collapse();

    QCOMPARE(m_focus->activated, (QList{otherProgram, second}));
}

void FloatingPanelControllerTest::switchesTheProgramToDarkAtOnce()
{
    make();
    m_controller->expand();

    m_preferences->setAppearance(AppAppearance::dark);

    QCOMPARE(NoteTheme::colorScheme(QApplication::palette()), ColorScheme::dark);
    for (const FloatingPanel *panel : {&m_controller->launcher(), &m_controller->editor()}) {
        const auto *environment = panel->findChild<AppEnvironment *>();
        QVERIFY(environment);
        QCOMPARE(environment->colorScheme(), ColorScheme::dark);
    }
}

void FloatingPanelControllerTest::followsTheSystemsScheme()
{
    m_preferences->setAppearance(AppAppearance::system);
    make();
    QCOMPARE(NoteTheme::colorScheme(QApplication::palette()), ColorScheme::light);

    m_system->setValues({.colorScheme = ColorScheme::dark});

    QCOMPARE(NoteTheme::colorScheme(QApplication::palette()), ColorScheme::dark);
}

void FloatingPanelControllerTest::retitlesOnlyTheLauncher()
{
    make();
    QCOMPARE(m_controller->launcher().windowTitle(), u"Quillmark · Quick capture"_s);

    m_preferences->setLanguage(AppLanguage::chinese);

    QCOMPARE(m_controller->launcher().windowTitle(),
             m_preferences->text(u"Quillmark · Quick capture"_s));
    QVERIFY(m_controller->launcher().windowTitle() != u"Quillmark · Quick capture"_s);
    QCOMPARE(m_controller->editor().windowTitle(), u"Quillmark"_s);
}

void FloatingPanelControllerTest::bringsBothPanelsToTheMainScreenWhenTheirsIsPulledOut()
{
    m_screens->set({bareScreen, secondScreen});
    remember(2000.0, 300.0);
    make();
    m_controller->expand();
    QCOMPARE(editorFrame(), (Rect{1640, 12, 424, 560}));

    m_screens->set({bareScreen});

    QCOMPARE(launcherFrame(), (Rect{1364, 300, 64, 64}));
    QCOMPARE(editorFrame(), (Rect{1004, 12, 424, 560}));
    QCOMPARE(remembered(), QPointF(1364, 300));
}

void FloatingPanelControllerTest::returnsToTheChosenPlaceWithItsScreens()
{
    m_screens->set({bareScreen, secondScreen});
    make();
    drag({400, 100}, true);
    const Rect chosen = launcherFrame();

    m_screens->set({bareScreen});
    QVERIFY(launcherFrame() != chosen);
    m_screens->set({bareScreen, secondScreen});

    QCOMPARE(launcherFrame(), chosen);
    QCOMPARE(remembered(), QPointF(chosen.x, chosen.y));
}

void FloatingPanelControllerTest::startsAtTheChosenPlaceOfItsScreens()
{
    m_screens->set({bareScreen, secondScreen});
    make();
    drag({400, 100}, true);
    const Rect chosen = launcherFrame();
    m_screens->set({bareScreen});
    m_controller.reset();
    m_screens->set({bareScreen, secondScreen});

    make();

    QCOMPARE(launcherFrame(), chosen);
}

void FloatingPanelControllerTest::startsWhereAnotherHandPutIt()
{
    make();
    drag({-400, 100}, true);
    m_controller.reset();
    remember(300.0, 200.0);

    make();

    QCOMPARE(launcherFrame(), (Rect{300, 200, 64, 64}));
}

void FloatingPanelControllerTest::staysFoldedWhenTheScreensChange()
{
    m_screens->set({bareScreen, secondScreen});
    remember(2000.0, 300.0);
    make();
    m_controller->launcher().show();

    m_screens->set({bareScreen});
    QVERIFY(!m_controller->isExpanded());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(m_controller->launcher().isVisible());

    m_controller->expand();
    m_controller->collapse();
    m_screens->set({secondScreen});
    QVERIFY(!m_controller->isExpanded());
    QVERIFY(!m_controller->editor().isVisible());
    QVERIFY(m_controller->launcher().isVisible());
}

void FloatingPanelControllerTest::rehomesOnAFixedAreaWithoutAnyScreen()
{
    m_screens->set({});

    make();

    QCOMPARE(launcherFrame(), (Rect{1352, 792, 64, 64}));
}

void FloatingPanelControllerTest::asksToQuit()
{
    make();
    const QSignalSpy quit(m_controller.get(), &FloatingPanelController::quitRequested);

    Q_EMIT m_controller->launcher().findChild<LauncherHitView *>()->quitRequested();

    QCOMPARE(quit.size(), 1);
}

QTEST_MAIN(FloatingPanelControllerTest)
#include "FloatingPanelControllerTest.moc"
