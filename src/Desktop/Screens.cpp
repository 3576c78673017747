// SPDX-License-Identifier: MIT
#include "Screens.h"

#include "Struts.h"
#include "X11Session.h"

#include <QGuiApplication>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Qt's global position of the origin of y-up coordinates: the primary screen's bottom left corner.
QPointF origin()
{
    const QScreen *const primary = QGuiApplication::primaryScreen();
    return primary ? QRectF(primary->geometry()).bottomLeft() : QPointF();
}

/// Raw X coordinates are device pixels; Qt scales about the top left corner of the screen.
QRect availablePart(const QScreen &screen, const QList<Strut> &struts)
{
    const QRect all = screen.geometry();
    const double scale = screen.devicePixelRatio();
    const QRect native(all.topLeft(), (QSizeF(all.size()) * scale).toSize());
    const QRect rest = Struts::remaining(native, Struts::wholeSize(), struts);
    if (rest == native)
        return screen.availableGeometry();
    const QRectF scaled((rest.topLeft() - native.topLeft()).toPointF() / scale,
                        rest.size().toSizeF() / scale);
    return scaled.translated(all.topLeft()).toAlignedRect() & screen.availableGeometry();
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
    if (X11Session::current())
        qGuiApp->installNativeEventFilter(this);
}

DesktopScreens::~DesktopScreens()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

QList<Screen> DesktopScreens::all() const
{
    return describe(QGuiApplication::screens());
}

std::optional<Screen> DesktopScreens::main() const
{
    QScreen *const primary = QGuiApplication::primaryScreen();
    if (!primary)
        return std::nullopt;
    return describe({primary}).first();
}

QString DesktopScreens::arrangement() const
{
    QStringList result;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *const screen : screens) {
        const QRect place = screen->geometry();
        QStringList facts{screen->name(), QString::number(screen->devicePixelRatio())};
        for (const int number : {place.x(), place.y(), place.width(), place.height()})
            facts.append(QString::number(number));
        result.append(facts.join(u' '));
    }
    result.sort();
    return result.join(u'\n');
}

QList<Screen> DesktopScreens::describe(const QList<QScreen *> &screens) const
{
    // Of several screens Qt takes all of each for available.
    const bool areSeveral = QGuiApplication::screens().size() > 1;
    const QList<Strut> struts = areSeveral ? Struts::all() : QList<Strut>();
    QList<Screen> result;
    for (const QScreen *const screen : screens)
        result.append({fromQt(screen->geometry()), fromQt(availablePart(*screen, struts))});
    return result;
}

bool DesktopScreens::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                       qintptr * /*result*/)
{
    X11Session *const session = X11Session::current();
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    if (session && X11Session::eventType(event) == XCB_PROPERTY_NOTIFY) {
        const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (change.window == session->root() && change.atom == session->ewmh()._NET_WORKAREA)
            announce();
    }
    return false;
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
