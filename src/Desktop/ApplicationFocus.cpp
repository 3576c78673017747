// SPDX-License-Identifier: MIT
#include "ApplicationFocus.h"

#include "PanelHints.h"
#include "X11Session.h"
#include "XcbReply.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace {

qint64 processId(X11Session &session, xcb_window_t window)
{
    uint32_t id = 0;
    const auto request = xcb_ewmh_get_wm_pid(&session.ewmh(), window);
    const bool isKnown = xcb_ewmh_get_wm_pid_reply(&session.ewmh(), request, &id, nullptr) != 0;
    return isKnown ? id : 0;
}

bool exists(X11Session &session, xcb_window_t window)
{
    const auto request = xcb_get_window_attributes(session.connection(), window);
    return owned(xcb_get_window_attributes_reply(session.connection(), request, nullptr)) !=
           nullptr;
}

bool hasWindowManager(X11Session &session)
{
    return session.value(session.root(), session.ewmh()._NET_ACTIVE_WINDOW).has_value() ||
           session.value(session.root(), session.ewmh()._NET_SUPPORTING_WM_CHECK).has_value();
}

/// Who gets the keys from the server. The value 1 stands for whatever is under the pointer.
std::optional<RunningApplication> inputFocus(X11Session &session)
{
    const auto request = xcb_get_input_focus(session.connection());
    const auto reply = owned(xcb_get_input_focus_reply(session.connection(), request, nullptr));
    if (!reply || reply->focus <= XCB_INPUT_FOCUS_POINTER_ROOT || reply->focus == session.root())
        return std::nullopt;
    return RunningApplication{reply->focus, processId(session, reply->focus)};
}

/// Where to give it the keyboard changes nothing else.
bool isAtHand(X11Session &session, xcb_window_t window)
{
    const auto own = session.value(window, session.ewmh()._NET_WM_DESKTOP);
    const auto current = session.value(session.root(), session.ewmh()._NET_CURRENT_DESKTOP);
    return !session.isMinimised(window) &&
           (!own || !current || *own == PanelHints::onAllDesktops || own == current);
}

} // namespace

X11ApplicationFocus::X11ApplicationFocus()
{
    if (X11Session::current())
        qGuiApp->installNativeEventFilter(this);
}

X11ApplicationFocus::~X11ApplicationFocus()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

std::optional<RunningApplication> X11ApplicationFocus::lastWorkedIn() const
{
    return m_lastWorkedIn;
}

bool X11ApplicationFocus::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                            qintptr * /*result*/)
{
    X11Session *const session = X11Session::current();
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    if (!session || X11Session::eventType(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    if (change.window == session->root() && change.atom == session->ewmh()._NET_ACTIVE_WINDOW) {
        const std::optional<RunningApplication> now = frontmost();
        if (now && now->processId != QCoreApplication::applicationPid())
            m_lastWorkedIn = now;
    }
    return false;
}

std::optional<RunningApplication> X11ApplicationFocus::frontmost() const
{
    X11Session *const session = X11Session::current();
    if (!session)
        return std::nullopt;
    if (!hasWindowManager(*session))
        return inputFocus(*session);
    xcb_window_t window = XCB_WINDOW_NONE;
    const auto request = xcb_ewmh_get_active_window(&session->ewmh(), 0);
    if (!xcb_ewmh_get_active_window_reply(&session->ewmh(), request, &window, nullptr) ||
        window == XCB_WINDOW_NONE)
        return std::nullopt;
    return RunningApplication{window, processId(*session, window)};
}

void X11ApplicationFocus::activate(const RunningApplication &application)
{
    X11Session *const session = X11Session::current();
    // The server gives the numbers of closed windows to new ones: another process may have it now.
    if (!session || application.window == XCB_WINDOW_NONE ||
        !exists(*session, application.window) ||
        processId(*session, application.window) != application.processId ||
        !isAtHand(*session, application.window))
        return;
    if (!hasWindowManager(*session)) {
        xcb_set_input_focus(session->connection(), XCB_INPUT_FOCUS_POINTER_ROOT, application.window,
                            XCB_CURRENT_TIME);
        xcb_flush(session->connection());
        return;
    }
    xcb_ewmh_request_change_active_window(&session->ewmh(), 0, application.window,
                                          XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER, session->userTime(),
                                          XCB_WINDOW_NONE);
    xcb_flush(session->connection());
}
