// SPDX-License-Identifier: MIT
#include "GlassSurface.h"

#include "ContinuousCorners.h"
#include "Metrics.h"
#include "NoteTheme.h"
#include "ViewEnvironment.h"

#include <QPaintEvent>
#include <QPainter>
#include <cmath>

namespace {

constexpr double borderWidth = 1;
constexpr double borderMiterLimit = 10;

/// Colours with an opacity, as floats, so that layers do not round one after the other.
struct Layer {
    float red;
    float green;
    float blue;
    float opacity;
};

constexpr Layer backdrop(ColorScheme scheme)
{
    return scheme == ColorScheme::dark ? Layer{0.13F, 0.125F, 0.12F, 0.90F}
                                       : Layer{0.885F, 0.875F, 0.86F, 0.88F};
}

constexpr Layer tint(ColorScheme scheme)
{
    return scheme == ColorScheme::dark ? Layer{0.0F, 0.0F, 0.0F, 0.2F}
                                       : Layer{1.0F, 0.97F, 0.91F, 0.4F};
}

QColor composed(const Layer &over, const Layer &under)
{
    const float rest = under.opacity * (1 - over.opacity);
    const float opacity = over.opacity + rest;
    const auto channel = [&](float upper, float lower) {
        return (upper * over.opacity + lower * rest) / opacity;
    };
    return QColor::fromRgbF(channel(over.red, under.red), channel(over.green, under.green),
                            channel(over.blue, under.blue), opacity);
}

bool isOpaque(const QWidget *view)
{
    const ViewEnvironment *environment = ViewEnvironment::of(view);
    return environment && environment->reduceTransparency();
}

/// Nothing but the fill lies there.
bool isInside(const QRect &part, const QRect &surface)
{
    const int corner = static_cast<int>(
        std::ceil(ContinuousCorners::extent(surface.size(), GlassSurface::cornerRadius)));
    const int edge = static_cast<int>(std::ceil(borderWidth));
    return surface.adjusted(edge, corner, -edge, -corner).contains(part) ||
           surface.adjusted(corner, edge, -corner, -edge).contains(part);
}

} // namespace

GlassSurface::GlassSurface(QWidget *parent)
    : QWidget(parent)
{
}

QPainterPath GlassSurface::outline(const QRectF &rect, double radius)
{
    return ContinuousCorners::path(rect, radius);
}

QColor GlassSurface::fill(ColorScheme scheme, bool isOpaque)
{
    return fill(NoteTheme::palette(scheme), isOpaque);
}

QColor GlassSurface::fill(const QPalette &palette, bool isOpaque)
{
    const ColorScheme scheme = NoteTheme::colorScheme(palette);
    return isOpaque ? palette.color(QPalette::Window) : composed(tint(scheme), backdrop(scheme));
}

QColor GlassSurface::border(ColorScheme scheme)
{
    return QColor::fromRgbF(1, 1, 1, scheme == ColorScheme::dark ? 0.13F : 0.65F);
}

void GlassSurface::paint(QPainter &painter, const QRectF &rect, const QPalette &palette,
                         bool isOpaque)
{
    constexpr double inset = borderWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(rect), fill(palette, isOpaque));
    QPen pen(border(NoteTheme::colorScheme(palette)), borderWidth, Qt::SolidLine, Qt::FlatCap,
             Qt::MiterJoin);
    pen.setMiterLimit(borderMiterLimit);
    painter.strokePath(outline(rect.adjusted(inset, inset, -inset, -inset), cornerRadius - inset),
                       pen);
    painter.restore();
}

void GlassSurface::paint(QPainter &painter, const QRectF &rect, const QWidget *view)
{
    paint(painter, rect, view->palette(), isOpaque(view));
}

void GlassSurface::paintPanel(QPainter &painter, const QRect &rect, double radius,
                              const QPalette &palette, QPalette::ColorRole fill)
{
    constexpr double inset = borderWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(palette.brush(fill));
    painter.setPen(NoteTheme::color(palette, Tone::primary, Metrics::menuBorder));
    painter.drawPath(outline(QRectF(rect).adjusted(inset, inset, -inset, -inset), radius));
    painter.restore();
}

QRegion GlassSurface::windowMask(const QRect &rect, double radius, const QWidget *view)
{
    const ViewEnvironment *const environment = ViewEnvironment::of(view);
    if (environment && !environment->reduceTransparency())
        return {};
    return QRegion(outline(rect, radius).toFillPolygon().toPolygon());
}

void GlassSurface::paintCard(QWidget *cover, const QRect &card)
{
    QPainter painter(cover);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor dim(Qt::black);
    dim.setAlphaF(static_cast<float>(Metrics::alertDim));
    painter.fillPath(outline(cover->rect()), dim);

    painter.setPen(NoteTheme::color(cover->palette(), Tone::primary, Metrics::alertBorder));
    painter.setBrush(cover->palette().window());
    painter.drawPath(outline(card, Metrics::alertRadius));
}

void GlassSurface::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    if (isInside(event->rect(), rect()))
        painter.fillRect(event->rect(), fill(palette(), isOpaque(this)));
    else
        paint(painter, rect(), this);
}
