// SPDX-License-Identifier: MIT
#include "PanelPlacement.h"

#include "Metrics.h"
#include "Screens.h"

#include <QTest>

namespace {

constexpr Rect area{0, 0, 1440, 900};
constexpr double inset = 12;

const Screen firstScreen{{0, 0, 1440, 900}, {0, 0, 1440, 875}};
const Screen secondScreen{{1440, 100, 1280, 800}, {1440, 160, 1280, 740}};

Rect launcherAt(double x, double y)
{
    return {x, y, Metrics::launcherSize.width(), Metrics::launcherSize.height()};
}

} // namespace

class PanelPlacementTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsTheOriginOfARectangleInside();
    void pushesBackWhatSticksOutAtTheRightAndTheTop();
    void pushesBackWhatSticksOutAtTheLeftAndTheBottom();
    void pinsWhatIsTooLargeToTheLeftAndTheBottom();
    void clampsIntoBoundsThatDoNotStartAtZero();
    void leavesARectangleThatJustTouchesTheMarginsAlone();

    void startsNearTheTopRightCornerOfTheVisibleArea();
    void leavesTheFirstPlaceUnchangedByClamping();

    void opensTheEditorOverTheLauncherGrowingLeftAndDown();
    void keepsTheEditorOnTheScreenForALauncherAtTheLeftEdge();
    void keepsTheEditorOnTheScreenForALauncherAtTheBottom();

    void makesTheEditorLowerOnALowScreen();
    void takesTheScreenThatHoldsTheLaunchersCentre();
    void takesTheFirstOfScreensThatOverlap();
    void fallsBackToTheMainScreenInAGapBetweenScreens();
    void fallsBackToAFixedAreaWithoutAnyScreen();
};

void PanelPlacementTest::keepsTheOriginOfARectangleInside()
{
    QCOMPARE(PanelPlacement::clamped({100, 100, 64, 64}, area, inset), (Rect{100, 100, 64, 64}));
}

void PanelPlacementTest::pushesBackWhatSticksOutAtTheRightAndTheTop()
{
    QCOMPARE(PanelPlacement::clamped({1400, 880, 64, 64}, area, inset), (Rect{1364, 824, 64, 64}));
}

void PanelPlacementTest::pushesBackWhatSticksOutAtTheLeftAndTheBottom()
{
    QCOMPARE(PanelPlacement::clamped({-50, -50, 64, 64}, area, inset), (Rect{12, 12, 64, 64}));
}

void PanelPlacementTest::pinsWhatIsTooLargeToTheLeftAndTheBottom()
{
    QCOMPARE(PanelPlacement::clamped({10, 10, 500, 500}, {0, 0, 300, 300}, inset),
             (Rect{12, 12, 500, 500}));
}

void PanelPlacementTest::clampsIntoBoundsThatDoNotStartAtZero()
{
    QCOMPARE(PanelPlacement::clamped({0, 0, 64, 64}, {-1000, 200, 800, 600}, inset),
             (Rect{-276, 212, 64, 64}));
}

void PanelPlacementTest::leavesARectangleThatJustTouchesTheMarginsAlone()
{
    const Rect touching{1364, 824, 64, 64};
    QCOMPARE(PanelPlacement::clamped(touching, area, inset), touching);
}

void PanelPlacementTest::startsNearTheTopRightCornerOfTheVisibleArea()
{
    QCOMPARE(PanelPlacement::defaultLauncherOrigin(firstScreen.visibleFrame), (Point{1352, 767}));
}

void PanelPlacementTest::leavesTheFirstPlaceUnchangedByClamping()
{
    const Rect first = launcherAt(1352, 767);
    QCOMPARE(PanelPlacement::clamped(first, firstScreen.visibleFrame, inset), first);
}

void PanelPlacementTest::opensTheEditorOverTheLauncherGrowingLeftAndDown()
{
    QCOMPARE(PanelPlacement::editorFrame(launcherAt(1352, 767), firstScreen.visibleFrame),
             (Rect{992, 271, 424, 560}));
}

void PanelPlacementTest::keepsTheEditorOnTheScreenForALauncherAtTheLeftEdge()
{
    QCOMPARE(PanelPlacement::editorFrame(launcherAt(20, 700), area), (Rect{12, 204, 424, 560}));
}

void PanelPlacementTest::keepsTheEditorOnTheScreenForALauncherAtTheBottom()
{
    QCOMPARE(PanelPlacement::editorFrame(launcherAt(1300, 12), area), (Rect{940, 12, 424, 560}));
}

void PanelPlacementTest::makesTheEditorLowerOnALowScreen()
{
    const Rect low{0, 40, 960, 500};

    QCOMPARE(PanelPlacement::editorFrame(launcherAt(872, 432), low), (Rect{512, 52, 424, 476}));
    QCOMPARE(PanelPlacement::editorFrame(launcherAt(872, 432), (Rect{0, 0, 960, 584})),
             (Rect{512, 12, 424, 560}));
}

void PanelPlacementTest::takesTheScreenThatHoldsTheLaunchersCentre()
{
    // A part of the launcher still lies on the first screen.
    const Rect launcher = launcherAt(1410, 500);
    const QList<Screen> screens{firstScreen, secondScreen};

    const Rect chosen = PanelPlacement::visibleArea(launcher, screens, firstScreen);

    QCOMPARE(chosen, secondScreen.visibleFrame);
    const Rect editor = PanelPlacement::editorFrame(launcher, chosen);
    QCOMPARE(editor, (Rect{1452, 172, 424, 560}));
}

void PanelPlacementTest::takesTheFirstOfScreensThatOverlap()
{
    const Screen mirror{{0, 0, 1024, 768}, {0, 0, 1024, 700}};
    const QList<Screen> screens{mirror, firstScreen};

    QCOMPARE(PanelPlacement::visibleArea(launcherAt(100, 100), screens, firstScreen),
             mirror.visibleFrame);
}

void PanelPlacementTest::fallsBackToTheMainScreenInAGapBetweenScreens()
{
    // Below the second screen, which starts at y = 100.
    const QList<Screen> screens{firstScreen, secondScreen};

    QCOMPARE(PanelPlacement::visibleArea(launcherAt(2000, 10), screens, firstScreen),
             firstScreen.visibleFrame);
}

void PanelPlacementTest::fallsBackToAFixedAreaWithoutAnyScreen()
{
    QCOMPARE(PanelPlacement::visibleArea(launcherAt(0, 0), {}, std::nullopt),
             (Rect{0, 0, 1440, 900}));
}

QTEST_GUILESS_MAIN(PanelPlacementTest)
#include "PanelPlacementTest.moc"
