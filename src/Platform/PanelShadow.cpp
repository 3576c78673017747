// SPDX-License-Identifier: MIT
#include "PanelShadow.h"

#include "GlassSurface.h"
#include "KeepBelow.h"
#include "ShadowHints.h"
#include "ShadowPicture.h"

#include <QEvent>
#include <QGradient>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRasterWindow>
#include <QtMath>

namespace {

constexpr int drop = 8;
constexpr float strength = 0.34F;

/// It fades from the centre of a corner's round outwards, and is half as dense at the edge.
constexpr int softness = static_cast<int>(GlassSurface::cornerRadius);
constexpr int span = 2 * softness;

/// So far from its ends a side is not uniform: continuous corners begin before the round.
constexpr int cornerLength = softness + drop + span;

/// What lies below the softened rim of the panel is part of the shadow.
constexpr double rim = 0.5;

/// Like the blurred edge of a shape, which is dense inside and has no beginning and no end.
QGradientStops makeFade()
{
    constexpr int steps = 12;
    QGradientStops stops;
    for (int step = 0; step <= steps; ++step) {
        const float left = 1 - static_cast<float>(step) / steps;
        const float density = left * left * (3 - 2 * left);
        stops.append(
            {1 - static_cast<double>(left), QColor::fromRgbF(0, 0, 0, strength * density)});
    }
    return stops;
}

void fill(QPainter &painter, const QRectF &rect, QGradient &&gradient)
{
    static const QGradientStops fade = makeFade();
    gradient.setStops(fade);
    painter.fillRect(rect, gradient);
}

class ShadowWindow final : public QRasterWindow {
public:
    ShadowWindow()
    {
        setFlags(ShadowHints::windowFlags());
        QSurfaceFormat translucent = format();
        translucent.setAlphaBufferSize(8);
        setFormat(translucent);
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        const QRect whole(QPoint(), size());
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(whole, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        PanelShadow::paint(painter, whole.marginsRemoved(PanelShadow::margins()));
    }
};

} // namespace

PanelShadow::PanelShadow(QWidget &panel)
    : QObject(&panel)
    , m_panel(panel)
{
    panel.installEventFilter(this);
}

PanelShadow::~PanelShadow() = default;

void PanelShadow::setComposited(bool isComposited)
{
    m_isComposited = isComposited;
    follow();
}

QMargins PanelShadow::margins()
{
    return {softness, softness - drop, softness, softness + drop};
}

void PanelShadow::paint(QPainter &painter, const QRect &panel)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    // One piece for each corner and each side, from the inside out.
    const QRectF reach = QRectF(panel).marginsAdded(margins());
    const QRectF inside = reach.marginsRemoved({span, span, span, span});
    for (const QPointF &centre :
         {inside.topLeft(), inside.topRight(), inside.bottomLeft(), inside.bottomRight()}) {
        const QPointF piece(centre.x() == inside.left() ? reach.left() : inside.right(),
                            centre.y() == inside.top() ? reach.top() : inside.bottom());
        fill(painter, {piece, QSizeF(span, span)}, QRadialGradient(centre, span));
    }
    fill(painter, {inside.left(), reach.top(), inside.width(), span},
         QLinearGradient(0, inside.top(), 0, reach.top()));
    fill(painter, {inside.left(), inside.bottom(), inside.width(), span},
         QLinearGradient(0, inside.bottom(), 0, reach.bottom()));
    fill(painter, {reach.left(), inside.top(), span, inside.height()},
         QLinearGradient(inside.left(), 0, reach.left(), 0));
    fill(painter, {inside.right(), inside.top(), span, inside.height()},
         QLinearGradient(inside.right(), 0, reach.right(), 0));
    // The panel is translucent, and what is behind it lies in no shadow.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(GlassSurface::outline(QRectF(panel).marginsRemoved({rim, rim, rim, rim}),
                                           GlassSurface::cornerRadius - rim),
                     Qt::black);
    painter.restore();
}

bool PanelShadow::eventFilter(QObject *receiver, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
        // Its window hears when it is on the screen. After a loss it is a new one.
        m_panel.windowHandle()->installEventFilter(this);
        break;
    case QEvent::Expose:
        // The panel is painted first.
        QMetaObject::invokeMethod(this, &PanelShadow::follow, Qt::QueuedConnection);
        break;
    case QEvent::Hide:
        follow();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (m_window)
            m_window->setGeometry(m_panel.geometry().marginsAdded(margins()));
        break;
    default:
        break;
    }
    return QObject::eventFilter(receiver, event);
}

void PanelShadow::follow()
{
    using Way = ShadowHints::Way;
    const QWindow *const window = m_panel.windowHandle();
    const bool isOnScreen = m_panel.isVisible() && window && window->isExposed();
    const Way way = isOnScreen && m_isComposited ? ShadowHints::way() : Way::none;
    if (way == Way::picture)
        handOverPicture();
    if (way != Way::window) {
        m_window.reset();
        return;
    }
    if (m_window)
        return;
    m_window = std::make_unique<ShadowWindow>();
    m_window->setGeometry(m_panel.geometry().marginsAdded(margins()));
    m_window->create();
    ShadowHints::prepare(*m_window, margins() * m_panel.devicePixelRatioF());
    new KeepBelow(*m_window, m_panel);
    m_window->show();
}

void PanelShadow::handOverPicture()
{
    const double scale = m_panel.devicePixelRatioF();
    const WId owner = m_panel.winId();
    if (m_pictureScale == scale && m_pictureOwner == owner)
        return;
    m_pictureScale = scale;
    m_pictureOwner = owner;
    QImage picture(m_panel.size().grownBy(margins()) * scale, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(painter, {QPoint(margins().left(), margins().top()), m_panel.size()});
    painter.end();
    m_picture = std::make_unique<ShadowPicture>(m_panel, picture, margins() * scale,
                                                qCeil(cornerLength * scale));
}
