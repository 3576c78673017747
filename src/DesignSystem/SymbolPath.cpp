// SPDX-License-Identifier: MIT
#include "SymbolPath.h"

#include <cmath>

namespace {

using Place = std::function<double(double)>;

QPointF placed(QPointF node, const Place &place)
{
    return {place(node.x()), place(node.y())};
}

double between(double handle, double from, double to, double itsNode, const Place &place)
{
    constexpr double tooShort = 1e-6;
    const double origin = place(0);
    const double scale = (place(24) - origin) / 24;
    if (std::abs(to - from) < tooShort)
        return place(itsNode) + (handle - itsNode) * scale;
    return place(from) + (handle - from) / (to - from) * (place(to) - place(from));
}

/// Where a handle goes when the curve between two nodes is stretched between their places; with no
/// length to stretch on an axis it moves with the node that it belongs to.
QPointF placedHandle(QPointF handle, QPointF from, QPointF to, QPointF itsNode, const Place &place)
{
    return {between(handle.x(), from.x(), to.x(), itsNode.x(), place),
            between(handle.y(), from.y(), to.y(), itsNode.y(), place)};
}

} // namespace

QPainterPath symbolPath(std::span<const QPainterPath::Element> elements, const Place &place)
{
    QPainterPath path;
    QPointF from;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        switch (elements[i].type) {
        case QPainterPath::MoveToElement:
            path.moveTo(placed(elements[i], place));
            break;
        case QPainterPath::LineToElement:
            path.lineTo(placed(elements[i], place));
            break;
        case QPainterPath::CurveToElement: {
            const QPointF first = elements[i];
            const QPointF second = elements[++i];
            const QPointF to = elements[++i];
            path.cubicTo(placedHandle(first, from, to, from, place),
                         placedHandle(second, from, to, to, place), placed(to, place));
            break;
        }
        case QPainterPath::CurveToDataElement: // Read with their curve.
            Q_UNREACHABLE();
        }
        from = elements[i];
    }
    return path;
}
