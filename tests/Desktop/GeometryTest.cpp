// SPDX-License-Identifier: MIT
#include "Geometry.h"

#include <QTest>

class GeometryTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void holdsItsLeftAndBottomEdges();
    void leavesItsRightAndTopEdgesToItsNeighbours();
    void knowsItsEdgesAndItsCentre();
};

void GeometryTest::holdsItsLeftAndBottomEdges()
{
    constexpr Rect rect{10, 20, 30, 40};

    QVERIFY(rect.contains({10, 20}));
    QVERIFY(!rect.contains({9.5, 20}));
    QVERIFY(!rect.contains({10, 19.5}));
}

void GeometryTest::leavesItsRightAndTopEdgesToItsNeighbours()
{
    constexpr Rect rect{10, 20, 30, 40};

    QVERIFY(rect.contains({39.5, 59.5}));
    QVERIFY(!rect.contains({40, 30}));
    QVERIFY(!rect.contains({20, 60}));
}

void GeometryTest::knowsItsEdgesAndItsCentre()
{
    constexpr Rect rect{10, 20, 30, 40};

    QCOMPARE(rect.maxX(), 40.0);
    QCOMPARE(rect.maxY(), 60.0);
    QCOMPARE(rect.midX(), 25.0);
    QCOMPARE(rect.midY(), 40.0);
}

QTEST_GUILESS_MAIN(GeometryTest)
#include "GeometryTest.moc"
