// SPDX-License-Identifier: MIT
#include "ContinuousCorners.h"

#include <QTest>
#include <cmath>
#include <numbers>

class ContinuousCornersTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fillsItsRectangle();
    void isTheSameInEveryCorner();
    void passesThroughTheMiddleOfACircularCorner();
    void bendsGraduallyOutOfTheEdges();
    void becomesADiscWhereThereIsNoRoom();
    void staysARectangleWithoutRadius();
};

namespace {

constexpr double radius = 26;

/// How far the shape lies from the top left corner of its bounds along the diagonal.
double cutAtDiagonal(const QPainterPath &path)
{
    const QPointF corner = path.boundingRect().topLeft();
    double distance = 0;
    while (!path.contains(corner + QPointF(distance, distance)))
        distance += 0.001;
    return distance * std::numbers::sqrt2;
}

/// The curvature along the top left corner, from edge to edge.
QList<double> curvatures(const QPainterPath &path, double extent)
{
    constexpr int samples = 4000;
    QList<QPointF> points;
    for (int i = 0; i <= samples; ++i) {
        const QPointF point = path.pointAtPercent(static_cast<double>(i) / samples);
        if (point.x() < extent && point.y() < extent)
            points.append(point);
    }
    QList<double> result;
    for (qsizetype i = 1; i + 1 < points.size(); ++i) {
        const QLineF before(points[i - 1], points[i]);
        const QLineF after(points[i], points[i + 1]);
        const double turn = std::remainder(before.angleTo(after), 360) * std::numbers::pi / 180;
        result.append(std::abs(turn) / ((before.length() + after.length()) / 2));
    }
    return result;
}

} // namespace

void ContinuousCornersTest::fillsItsRectangle()
{
    const QRectF rect(10, 20, 424, 560);

    const QRectF bounds = ContinuousCorners::path(rect, radius).boundingRect();

    QVERIFY(rect.adjusted(-0.001, -0.001, 0.001, 0.001).contains(bounds));
    QVERIFY(bounds.adjusted(-0.001, -0.001, 0.001, 0.001).contains(rect));
}

void ContinuousCornersTest::isTheSameInEveryCorner()
{
    const QRectF rect(0, 0, 100, 80);
    const QPainterPath path = ContinuousCorners::path(rect, radius);
    const auto mirrored = [&](double x, double y) {
        QTransform mirror;
        mirror.translate(x < 0 ? rect.width() : 0, y < 0 ? rect.height() : 0);
        mirror.scale(x, y);
        return mirror.map(path);
    };

    for (const QPainterPath &other : {mirrored(-1, 1), mirrored(1, -1), mirrored(-1, -1)}) {
        const QPainterPath difference = path.subtracted(other).united(other.subtracted(path));
        double area = 0;
        for (const QPolygonF &polygon : difference.toFillPolygons()) {
            const QRectF bounds = polygon.boundingRect();
            area += bounds.width() * bounds.height();
        }
        QVERIFY2(area < 0.01, qPrintable(QString::number(area)));
    }
}

void ContinuousCornersTest::passesThroughTheMiddleOfACircularCorner()
{
    const double circular = radius * (std::numbers::sqrt2 - 1);

    for (const QSizeF size : {QSizeF(424, 560), QSizeF(100, 80), QSizeF(54, 54)}) {
        const double cut = cutAtDiagonal(ContinuousCorners::path(QRectF({}, size), radius));
        QVERIFY2(std::abs(cut - circular) < 0.05, qPrintable(QString::number(cut)));
    }
}

void ContinuousCornersTest::bendsGraduallyOutOfTheEdges()
{
    const QRectF rect(0, 0, 424, 560);
    const double extent = ContinuousCorners::extent(rect.size(), radius);
    QCOMPARE(extent, 1.5 * radius);

    const QList<double> bends = curvatures(ContinuousCorners::path(rect, radius), extent);

    QVERIFY(bends.size() > 20);
    // A circular corner would begin with its full curvature. This one begins with next to none
    // and is nowhere bent much more than a circle.
    QVERIFY(bends.first() < 0.35 / radius);
    QVERIFY(bends.last() < 0.35 / radius);
    QVERIFY(*std::max_element(bends.begin(), bends.end()) < 1.8 / radius);
}

void ContinuousCornersTest::becomesADiscWhereThereIsNoRoom()
{
    const QRectF rect(0, 0, 52, 52);
    const QPainterPath path = ContinuousCorners::path(rect, radius);

    for (int degrees = 0; degrees < 360; ++degrees) {
        const double angle = degrees * std::numbers::pi / 180;
        const QPointF direction(std::cos(angle), std::sin(angle));
        QVERIFY(path.contains(rect.center() + (radius - 0.05) * direction));
        QVERIFY(!path.contains(rect.center() + (radius + 0.05) * direction));
    }
}

void ContinuousCornersTest::staysARectangleWithoutRadius()
{
    const QRectF rect(0, 0, 20, 10);

    QVERIFY(ContinuousCorners::path(rect, 0).contains(QPointF(0.01, 0.01)));
}

QTEST_GUILESS_MAIN(ContinuousCornersTest)
#include "ContinuousCornersTest.moc"
