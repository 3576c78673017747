// SPDX-License-Identifier: MIT
#include "LauncherInteraction.h"

#include <QList>
#include <QTest>

namespace {

struct Move {
    LauncherInteraction::Translation translation;
    bool ended;

    friend bool operator==(const Move &, const Move &) = default;
};

} // namespace

class LauncherInteractionTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void opensOnAClickAndOnlyOnRelease();
    void takesAPressThatMovedLessThanFivePointsForAClick();
    void dragsFromExactlyFivePointsOn();
    void measuresTheDistanceStraight();
    void staysADragWhenThePointerComesBack();
    void measuresEveryStepFromTheStartOfThePress();
    void countsDownwardsAsPositiveHeight();
    void forgetsADragWithTheNextPress();
    void opensOnAClickAfterADrag();
    void endsACancelledDragWhereItIs();
    void opensNothingForACancelledClick();

private:
    LauncherInteraction m_interaction;
    int m_opened = 0;
    QList<Move> m_moves;
};

void LauncherInteractionTest::init()
{
    m_opened = 0;
    m_moves.clear();
    m_interaction = {};
    m_interaction.onOpen = [this] { ++m_opened; };
    m_interaction.onMove = [this](LauncherInteraction::Translation translation, bool ended) {
        m_moves.append({translation, ended});
    };
}

void LauncherInteractionTest::opensOnAClickAndOnlyOnRelease()
{
    m_interaction.press({100, 100});
    QCOMPARE(m_opened, 0);

    m_interaction.release({100, 100});

    QCOMPARE(m_opened, 1);
    QVERIFY(m_moves.isEmpty());
}

void LauncherInteractionTest::takesAPressThatMovedLessThanFivePointsForAClick()
{
    m_interaction.press({100, 100});
    m_interaction.drag({104.9, 100});
    m_interaction.release({104.9, 100});

    QCOMPARE(m_opened, 1);
    QVERIFY(m_moves.isEmpty());
}

void LauncherInteractionTest::dragsFromExactlyFivePointsOn()
{
    m_interaction.press({100, 100});

    m_interaction.drag({105, 100});
    QCOMPARE(m_moves, (QList<Move>{{{5, 0}, false}}));

    m_interaction.release({105, 100});
    QCOMPARE(m_moves, (QList<Move>{{{5, 0}, false}, {{5, 0}, true}}));
    QCOMPARE(m_opened, 0);
}

void LauncherInteractionTest::measuresTheDistanceStraight()
{
    m_interaction.press({0, 0});
    m_interaction.drag({3, 3.9});
    QVERIFY(m_moves.isEmpty());

    m_interaction.drag({3, 4});
    QCOMPARE(m_moves, (QList<Move>{{{3, -4}, false}}));
}

void LauncherInteractionTest::staysADragWhenThePointerComesBack()
{
    m_interaction.press({100, 100});
    m_interaction.drag({130, 100});
    m_interaction.drag({101, 100});
    m_interaction.release({101, 100});

    QCOMPARE(m_moves, (QList<Move>{{{30, 0}, false}, {{1, 0}, false}, {{1, 0}, true}}));
    QCOMPARE(m_opened, 0);
}

void LauncherInteractionTest::measuresEveryStepFromTheStartOfThePress()
{
    m_interaction.press({10, 10});
    m_interaction.drag({20, 10});
    m_interaction.drag({30, 10});

    QCOMPARE(m_moves, (QList<Move>{{{10, 0}, false}, {{20, 0}, false}}));
}

void LauncherInteractionTest::countsDownwardsAsPositiveHeight()
{
    m_interaction.press({100, 100});
    m_interaction.drag({100, 90});

    QCOMPARE(m_moves, (QList<Move>{{{0, 10}, false}}));
}

void LauncherInteractionTest::forgetsADragWithTheNextPress()
{
    m_interaction.press({0, 0});
    m_interaction.drag({50, 0});
    m_interaction.press({200, 200});
    m_interaction.release({200, 200});

    QCOMPARE(m_opened, 1);
}

void LauncherInteractionTest::opensOnAClickAfterADrag()
{
    m_interaction.press({0, 0});
    m_interaction.drag({50, 0});
    m_interaction.release({50, 0});
    QCOMPARE(m_opened, 0);
    m_moves.clear();

    m_interaction.press({50, 0});
    m_interaction.release({50, 0});

    QCOMPARE(m_opened, 1);
    QVERIFY(m_moves.isEmpty());
}

void LauncherInteractionTest::endsACancelledDragWhereItIs()
{
    m_interaction.press({100, 100});
    m_interaction.drag({120, 90});

    m_interaction.cancel();
    m_interaction.cancel();

    const QList<Move> expected{{{20, 10}, false}, {{20, 10}, true}};
    QCOMPARE(m_moves, expected);
    QCOMPARE(m_opened, 0);
}

void LauncherInteractionTest::opensNothingForACancelledClick()
{
    m_interaction.press({100, 100});

    m_interaction.cancel();

    QVERIFY(m_moves.isEmpty());
    QCOMPARE(m_opened, 0);
}

QTEST_GUILESS_MAIN(LauncherInteractionTest)
#include "LauncherInteractionTest.moc"
