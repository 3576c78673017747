// SPDX-License-Identifier: MIT
#include "ContinuousCorners.h"

#include <QLineF>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

constexpr double reachOfCorner = 1.5;
constexpr int segmentsPerCorner = 8;

struct CurvePoint {
    QPointF position;
    QPointF direction;
};

/// The quarter in the positive quadrant of the curve of extent 1, from (1, 0) to (0, 1).
CurvePoint pointOnCurve(double angle, double exponent)
{
    const double x = std::cos(angle);
    const double y = std::sin(angle);
    const double scale = std::pow(std::pow(x, exponent) + std::pow(y, exponent), -1 / exponent);
    // The tangent is the gradient of xⁿ + yⁿ turned by a quarter.
    const QLineF tangent(0, 0, -std::pow(y, exponent - 1), std::pow(x, exponent - 1));
    return {{x * scale, y * scale}, tangent.unitVector().p2()};
}

/// Appends one segment with the directions given, with handles as long as those of a circular arc
/// that turns as much.
void appendSegment(QPainterPath &path, const CurvePoint &from, const CurvePoint &to)
{
    const double cosine = std::clamp(QPointF::dotProduct(from.direction, to.direction), -1.0, 1.0);
    const double quarterTurn = std::acos(cosine) / 4;
    const double chord = QLineF(from.position, to.position).length();
    const double handle = chord / (3 * std::cos(quarterTurn) * std::cos(quarterTurn));
    path.cubicTo(from.position + handle * from.direction, to.position - handle * to.direction,
                 to.position);
}

} // namespace

double ContinuousCorners::extent(const QSizeF &size, double radius)
{
    return std::min(reachOfCorner * radius, std::min(size.width(), size.height()) / 2);
}

QPainterPath ContinuousCorners::path(const QRectF &rect, double radius)
{
    const double reach = extent(rect.size(), radius);
    const double usedRadius = std::min(radius, reach);
    QPainterPath path;
    if (usedRadius <= 0) {
        path.addRect(rect);
        return path;
    }
    const double exponent =
        -std::numbers::ln2 / std::log1p(-usedRadius / reach * (1 - std::numbers::sqrt2 / 2));

    std::array<CurvePoint, segmentsPerCorner + 1> curve;
    for (std::size_t step = 0; step < curve.size(); ++step)
        curve[step] = pointOnCurve(
            std::numbers::pi / 2 * static_cast<double>(step) / segmentsPerCorner, exponent);

    // Clockwise from the right end of the right edge: each corner is the same curve, turned.
    const std::array centres{QPointF(rect.right() - reach, rect.bottom() - reach),
                             QPointF(rect.left() + reach, rect.bottom() - reach),
                             QPointF(rect.left() + reach, rect.top() + reach),
                             QPointF(rect.right() - reach, rect.top() + reach)};
    for (std::size_t corner = 0; corner < centres.size(); ++corner) {
        QTransform turn;
        turn.rotate(90.0 * static_cast<double>(corner));
        const auto turned = [&](const CurvePoint &point) {
            return CurvePoint{centres[corner] + turn.map(point.position * reach),
                              turn.map(point.direction)};
        };
        CurvePoint from = turned(curve.front());
        if (corner == 0)
            path.moveTo(from.position);
        else
            path.lineTo(from.position);
        for (std::size_t step = 1; step < curve.size(); ++step) {
            const CurvePoint to = turned(curve[step]);
            appendSegment(path, from, to);
            from = to;
        }
    }
    path.closeSubpath();
    return path;
}
