// SPDX-License-Identifier: MIT
#include "Symbol.h"

#include "SymbolPath.h"
#include "SymbolTable.h"

#include <QPaintDevice>
#include <QPainter>
#include <QPixmapCache>
#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

using Place = std::function<double(double)>;

constexpr double gridUnits = 24;

/// The drawings leave two units free on each side, so that a symbol stands a little higher than
/// the capitals of the text beside it.
constexpr double extentPerTextSize = 1.44;
constexpr double freeUnits = 2;

/// In units of the grid.
double strokeWidth(QFont::Weight weight)
{
    if (weight <= QFont::Light)
        return 1.25;
    if (weight <= QFont::Normal)
        return 1.6;
    if (weight <= QFont::Medium)
        return 1.75;
    return 2.2;
}

const SymbolDrawing *drawing(const QString &name)
{
    const auto drawings = symbolDrawings();
    const auto found = std::find_if(drawings.begin(), drawings.end(), [&](const auto &candidate) {
        return QLatin1StringView(candidate.name) == name;
    });
    return found == drawings.end() ? nullptr : &*found;
}

/// How a symbol lies on the pixels of a display: a square of whole pixels in which the middle of
/// a centred stroke is the middle of the square, and every node is moved by less than a pixel so
/// that straight strokes share that raster and do not blur.
class PixelGrid {
public:
    PixelGrid(double extent, double strokeUnits)
        : m_pen(strokeUnits * extent / gridUnits)
    {
        // A stroke of an odd number of pixels is centred on a pixel, one of an even number
        // between two. The square has the same parity, so that its middle is such a place.
        const int parity = std::max(1, static_cast<int>(std::lround(m_pen))) % 2;
        m_side = 2 * static_cast<int>(std::lround((extent - parity) / 2)) + parity;
    }

    [[nodiscard]] int side() const { return m_side; }
    [[nodiscard]] double pen() const { return m_pen; }
    [[nodiscard]] double operator()(double units) const
    {
        const double fromMiddle = (units - gridUnits / 2) * m_side / gridUnits;
        return m_side / 2.0 + std::round(fromMiddle);
    }

private:
    double m_pen;
    int m_side = 0;
};

/// Strokes go where they are crisp. Fills are only scaled: a dot would lose its shape.
void draw(QPainter &painter, const SymbolDrawing &symbol, const Place &place, const Place &scale,
          double pen, const QColor &color)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(symbolPath(symbol.strokes, place),
                       QPen(color, pen, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(symbolPath(symbol.fills, scale), color);
}

QPixmap pixmap(const SymbolDrawing &symbol, int pixelSize, double ratio, const QColor &color,
               QFont::Weight weight)
{
    const QString key = u"symbol/%1/%2/%3/%4/%5"_s.arg(QLatin1StringView(symbol.name))
                            .arg(pixelSize)
                            .arg(ratio)
                            .arg(color.rgba(), 0, 16)
                            .arg(static_cast<int>(weight));
    QPixmap result;
    if (QPixmapCache::find(key, &result))
        return result;

    const PixelGrid grid(Symbol::extent(pixelSize) * ratio, strokeWidth(weight));
    result = QPixmap(grid.side(), grid.side());
    result.fill(Qt::transparent);
    QPainter painter(&result);
    draw(
        painter, symbol, grid, [&](double units) { return units * grid.side() / gridUnits; },
        grid.pen(), color);
    painter.end();
    result.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, result);
    return result;
}

} // namespace

int Symbol::extent(int pixelSize)
{
    return static_cast<int>(std::lround(extentPerTextSize * pixelSize));
}

QSize Symbol::size(int pixelSize)
{
    const int side = extent(pixelSize);
    const int freeSide = static_cast<int>(freeUnits / gridUnits * side);
    return {side - 2 * freeSide, side};
}

void Symbol::paint(QPainter &painter, const QRectF &rect, const QString &name, int pixelSize,
                   const QColor &color, QFont::Weight weight)
{
    const SymbolDrawing *symbol = drawing(name);
    if (!symbol)
        return;

    if (painter.worldTransform().type() > QTransform::TxTranslate) {
        // Inside an animation, where there are no pixels to keep to.
        const double scale = Symbol::extent(pixelSize) / gridUnits;
        painter.save();
        painter.translate(rect.center() - QPointF(gridUnits, gridUnits) * scale / 2);
        const auto place = [scale](double units) { return units * scale; };
        draw(painter, *symbol, place, place, strokeWidth(weight) * scale, color);
        painter.restore();
        return;
    }

    const double ratio = painter.device()->devicePixelRatio();
    const QPixmap image = pixmap(*symbol, pixelSize, ratio, color, weight);
    const QTransform toDevice = painter.deviceTransform();
    const QPointF middle = toDevice.map(rect.center());
    const QPointF corner(std::floor(middle.x() - image.width() / 2.0),
                         std::floor(middle.y() - image.height() / 2.0));
    painter.drawPixmap(toDevice.inverted().map(corner), image);
}
