// SPDX-License-Identifier: MIT
#include "Screens.h"

#include <QGuiApplication>
#include <QScreen>

namespace {

/// Qt's global position of the origin of y-up coordinates: the primary screen's bottom left corner.
QPointF origin()
{
    const QScreen *const primary = QGuiApplication::primaryScreen();
    return primary ? QRectF(primary->geometry()).bottomLeft() : QPointF();
}

} // namespace

DesktopScreens::DesktopScreens(QObject *parent)
    : Screens(parent)
{
    const auto follow = [this](const QScreen *screen) {
        connect(screen, &QScreen::geometryChanged, this, &DesktopScreens::announce);
        connect(screen, &QScreen::availableGeometryChanged, this, &DesktopScreens::announce);
    };
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        follow(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this, follow](const QScreen *screen) {
        follow(screen);
        announce();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &DesktopScreens::announce);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &DesktopScreens::announce);
}

QList<Screen> DesktopScreens::all() const
{
    QList<Screen> result;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        result.append({fromQt(screen->geometry()), fromQt(screen->availableGeometry())});
    }
    return result;
}

std::optional<Screen> DesktopScreens::main() const
{
    const QScreen *const primary = QGuiApplication::primaryScreen();
    if (!primary)
        return std::nullopt;
    return Screen{fromQt(primary->geometry()), fromQt(primary->availableGeometry())};
}

Rect DesktopScreens::fromQt(const QRect &rect) const
{
    const Point bottomLeft = fromQt(QRectF(rect).bottomLeft());
    return {bottomLeft.x, bottomLeft.y, static_cast<double>(rect.width()),
            static_cast<double>(rect.height())};
}

Point DesktopScreens::fromQt(QPointF point) const
{
    const QPointF zero = origin();
    return {point.x() - zero.x(), zero.y() - point.y()};
}

QRect DesktopScreens::toQt(const Rect &rect) const
{
    const QPointF zero = origin();
    return {qRound(zero.x() + rect.minX()), qRound(zero.y() - rect.maxY()), qRound(rect.width),
            qRound(rect.height)};
}

void DesktopScreens::announce()
{
    // One change of the arrangement arrives as several signals, and Qt moves the windows of a
    // screen that went only after it has said so.
    if (!m_isAnnounced) {
        m_isAnnounced = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_isAnnounced = false;
                Q_EMIT changed();
            },
            Qt::QueuedConnection);
    }
}
