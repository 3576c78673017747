// SPDX-License-Identifier: MIT
#include "Struts.h"

#include <QTest>

namespace {

constexpr QSize whole(1920, 900);
constexpr QRect leftScreen(0, 0, 960, 900);
constexpr QRect rightScreen(960, 0, 960, 900);

Strut top(uint32_t height, uint32_t first, uint32_t last)
{
    return {{0, 0, height, 0, 0, 0, 0, 0, first, last, 0, 0}};
}

} // namespace

class StrutsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leavesAScreenWithoutPanelsWhole();
    void takesAPanelFromTheScreenThatItLiesOn();
    void takesTheHigherOfTwoPanels();
    void takesNothingFromTheNeighbourOfAnInnerEdge();
    void takesNothingBesideItsRange();
    void measuresFromTheFarEdges();
};

void StrutsTest::leavesAScreenWithoutPanelsWhole()
{
    QCOMPARE(Struts::remaining(leftScreen, whole, {}), leftScreen);
}

void StrutsTest::takesAPanelFromTheScreenThatItLiesOn()
{
    QCOMPARE(Struts::remaining(leftScreen, whole, {top(30, 0, 959)}), QRect(0, 30, 960, 870));
    QCOMPARE(Struts::remaining(rightScreen, whole, {top(30, 0, 959)}), rightScreen);
}

void StrutsTest::takesTheHigherOfTwoPanels()
{
    QCOMPARE(Struts::remaining(leftScreen, whole, {top(40, 0, 959), top(30, 0, 1919)}),
             QRect(0, 40, 960, 860));
}

void StrutsTest::takesNothingFromTheNeighbourOfAnInnerEdge()
{
    const Strut atLeftOfTheRightScreen{{960 + 50, 0, 0, 0, 0, 899, 0, 0, 0, 0, 0, 0}};

    QCOMPARE(Struts::remaining(leftScreen, whole, {atLeftOfTheRightScreen}), leftScreen);
    QCOMPARE(Struts::remaining(rightScreen, whole, {atLeftOfTheRightScreen}),
             QRect(1010, 0, 910, 900));
}

void StrutsTest::takesNothingBesideItsRange()
{
    constexpr QRect lower(0, 900, 960, 600);
    const Strut besideTheUpper{{50, 0, 0, 0, 0, 899, 0, 0, 0, 0, 0, 0}};

    QCOMPARE(Struts::remaining(lower, {960, 1500}, {besideTheUpper}), lower);
}

void StrutsTest::measuresFromTheFarEdges()
{
    const Strut corner{{0, 60, 0, 40, 0, 0, 0, 899, 0, 0, 960, 1919}};

    QCOMPARE(Struts::remaining(rightScreen, whole, {corner}), QRect(960, 0, 900, 860));
    QCOMPARE(Struts::remaining(leftScreen, whole, {corner}), leftScreen);
}

QTEST_APPLESS_MAIN(StrutsTest)
#include "StrutsTest.moc"
