// SPDX-License-Identifier: MIT
#include "ApplicationFocus.h"

#include "X11Session.h"
#include "XcbReply.h"

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

} // namespace

std::optional<RunningApplication> X11ApplicationFocus::frontmost() const
{
    X11Session *const session = X11Session::current();
    if (!session)
        return std::nullopt;
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
        processId(*session, application.window) != application.processId)
        return;
    xcb_ewmh_request_change_active_window(&session->ewmh(), 0, application.window,
                                          XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER, session->userTime(),
                                          XCB_WINDOW_NONE);
    xcb_flush(session->connection());
}
