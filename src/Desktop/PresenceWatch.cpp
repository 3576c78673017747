// SPDX-License-Identifier: MIT
#include "PresenceWatch.h"

#include "PanelHints.h"
#include "X11Session.h"
#include "XcbReply.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

bool isViewable(const X11Session &session, xcb_window_t window)
{
    const auto request = xcb_get_window_attributes(session.connection(), window);
    const auto reply =
        owned(xcb_get_window_attributes_reply(session.connection(), request, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool isOnCurrentWorkspace(X11Session &session, xcb_window_t window)
{
    const auto own = session.value(window, session.ewmh()._NET_WM_DESKTOP);
    const auto current = session.value(session.root(), session.ewmh()._NET_CURRENT_DESKTOP);
    return !own || !current || *own == PanelHints::onAllDesktops || own == current;
}

/// In device pixels on the root window.
std::optional<QRect> frameOf(const X11Session &session, xcb_window_t window)
{
    const auto sizeRequest = xcb_get_geometry(session.connection(), window);
    const auto placeRequest =
        xcb_translate_coordinates(session.connection(), window, session.root(), 0, 0);
    const auto size = owned(xcb_get_geometry_reply(session.connection(), sizeRequest, nullptr));
    const auto place =
        owned(xcb_translate_coordinates_reply(session.connection(), placeRequest, nullptr));
    if (!size || !place)
        return std::nullopt;
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

/// Some window managers show other workspaces by moving windows far away.
bool isOnSomeScreen(const QRect &frame)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    return screens.isEmpty() || std::ranges::any_of(screens, [&frame](const QScreen *screen) {
               const QRect area = screen->geometry();
               return frame.intersects(
                   {area.topLeft(), (QSizeF(area.size()) * screen->devicePixelRatio()).toSize()});
           });
}

/// Whether it is a program's window or a frame around one, and not a bar, a notice or what a
/// compositing manager draws on.
bool holdsManagedWindow(const X11Session &session, xcb_window_t window)
{
    constexpr int mostFrames = 3;
    std::vector<xcb_window_t> level{window};
    for (int depth = 0; depth <= mostFrames; ++depth) {
        std::vector<xcb_window_t> next;
        for (const xcb_window_t one : level) {
            if (session.value(one, session.stateProperty()))
                return true;
            const std::vector<xcb_window_t> inner = session.children(one);
            next.insert(next.end(), inner.begin(), inner.end());
        }
        level = std::move(next);
    }
    return false;
}

/// Windows directly on the root are listed lowest first.
bool isCovered(const X11Session &session, xcb_window_t window, const QRect &frame)
{
    const std::vector<xcb_window_t> all = session.children(session.root());
    const auto own = std::ranges::find(all, X11Session::outermost(window));
    return own != all.end() && std::any_of(own + 1, all.end(), [&](xcb_window_t other) {
               const auto cover = frameOf(session, other);
               return cover && cover->contains(frame) && isViewable(session, other) &&
                      holdsManagedWindow(session, other);
           });
}

/// Has the server tell when other windows cover this one, or no longer do.
void listenToVisibility(const X11Session &session, xcb_window_t window)
{
    const auto request = xcb_get_window_attributes(session.connection(), window);
    const auto reply =
        owned(xcb_get_window_attributes_reply(session.connection(), request, nullptr));
    if (!reply)
        return;
    const uint32_t mask = reply->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(session.connection(), window, XCB_CW_EVENT_MASK, &mask);
}

bool tellsOfWindow(const xcb_generic_event_t &event, xcb_window_t window)
{
    switch (X11Session::eventType(event)) {
    case XCB_UNMAP_NOTIFY:
        return reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window == window;
    case XCB_MAP_NOTIFY:
        return reinterpret_cast<const xcb_map_notify_event_t &>(event).window == window;
    case XCB_CONFIGURE_NOTIFY:
        return reinterpret_cast<const xcb_configure_notify_event_t &>(event).window == window;
    case XCB_PROPERTY_NOTIFY:
        return reinterpret_cast<const xcb_property_notify_event_t &>(event).window == window;
    case XCB_VISIBILITY_NOTIFY:
        return reinterpret_cast<const xcb_visibility_notify_event_t &>(event).window == window;
    default:
        return false;
    }
}

bool tellsOfDesktop(X11Session &session, const xcb_generic_event_t &event)
{
    if (X11Session::eventType(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    const xcb_ewmh_connection_t &ewmh = session.ewmh();
    return change.window == session.root() &&
           (change.atom == ewmh._NET_ACTIVE_WINDOW || change.atom == ewmh._NET_CURRENT_DESKTOP ||
            change.atom == ewmh._NET_CLIENT_LIST_STACKING ||
            change.atom == ewmh._NET_SHOWING_DESKTOP ||
            change.atom == ewmh._NET_SUPPORTING_WM_CHECK);
}

} // namespace

PresenceWatch::PresenceWatch(QWidget &window, Care care)
    : QObject(&window)
    , m_window(window)
    , m_care(care)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] { check(true); });
    if (X11Session::current()) {
        window.installEventFilter(this);
        qGuiApp->installNativeEventFilter(this);
    }
}

PresenceWatch::~PresenceWatch()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool PresenceWatch::eventFilter(QObject *receiver, QEvent *event)
{
    if (receiver == &m_window && event->type() == QEvent::Show) {
        m_hadKeyboard = false;
        m_patience.stop();
        m_isAway = false;
        if (m_care == Care::managed)
            listenToVisibility(*X11Session::current(), X11Session::window(m_window));
        scheduleCheck();
    }
    return QObject::eventFilter(receiver, event);
}

bool PresenceWatch::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                      qintptr * /*result*/)
{
    X11Session *const session = X11Session::current();
    const xcb_window_t window = X11Session::window(m_window);
    if (!session || window == XCB_WINDOW_NONE)
        return false;
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    const uint8_t type = X11Session::eventType(event);
    if (type == XCB_DESTROY_NOTIFY) {
        if (reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window == window)
            // After Qt has made of it what it makes of it.
            QMetaObject::invokeMethod(this, &PresenceWatch::windowDestroyed, Qt::QueuedConnection);
        return false;
    }
    if (!m_window.isVisible())
        return false;
    if (type == XCB_FOCUS_IN) {
        const auto &focus = reinterpret_cast<const xcb_focus_in_event_t &>(event);
        m_hadKeyboard =
            m_hadKeyboard || (focus.event == window && focus.detail != XCB_NOTIFY_DETAIL_POINTER);
    }
    if (tellsOfWindow(event, window) ||
        (m_care == Care::managed && tellsOfDesktop(*session, event)))
        scheduleCheck();
    return false;
}

void PresenceWatch::scheduleCheck()
{
    // Window managers restack in several steps: how things are is asked once more when it is quiet.
    if (m_care == Care::managed && !m_patience.isActive())
        m_patience.start();
    // One change of the desktop arrives as many events.
    if (!std::exchange(m_isCheckScheduled, true))
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_isCheckScheduled = false;
                check(false);
            },
            Qt::QueuedConnection);
}

void PresenceWatch::check(bool isPatienceOver)
{
    if (!m_window.isVisible() || !m_window.internalWinId())
        return;
    const Presence now = presence();
    if (now == Presence::here) {
        m_isAway = false;
    } else if (now == Presence::minimised || m_care == Care::unmanaged ||
               (m_isAway && isPatienceOver)) {
        m_isAway = false;
        m_patience.stop();
        Q_EMIT lost();
    } else if (!m_isAway) {
        // The answers of the server have just arrived: its time begins now.
        m_isAway = true;
        m_patience.start();
        m_window.raise();
    }
}

PresenceWatch::Presence PresenceWatch::presence() const
{
    X11Session &session = *X11Session::current();
    const xcb_window_t window = X11Session::window(m_window);
    if (m_care == Care::unmanaged)
        return isViewable(session, window) ? Presence::here : Presence::away;
    if (session.isMinimised(window))
        return Presence::minimised;
    if (!isViewable(session, window) || !isOnCurrentWorkspace(session, window))
        return Presence::away;
    const std::optional<QRect> frame = frameOf(session, window);
    if (!frame || !isOnSomeScreen(*frame) || isCovered(session, window, *frame))
        return Presence::away;
    // Under a native window of a Wayland compositor none of the above tells.
    return m_hadKeyboard || !PanelHints::menusMissEvents() ? Presence::here : Presence::away;
}
