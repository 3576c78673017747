// SPDX-License-Identifier: MIT
#include "ShadowHints.h"

#include "X11Session.h"

#include <QMargins>
#include <QWindow>
#include <array>
#include <string>

namespace {

/// Whether a click on a window that lets clicks through reaches a native window below it. With
/// Xwayland 24.1.6 it does, with 22.1.9 it did not; those between were not tried.
bool clicksPassThrough(const X11Session &session)
{
    constexpr uint32_t firstThatDoes = 1'24'01'000;
    return xcb_get_setup(session.connection())->release_number >= firstThatDoes;
}

} // namespace

ShadowHints::Way ShadowHints::way()
{
    X11Session *const session = X11Session::current();
    if (!session)
        return Way::none;
    const std::string windowManager = session->windowManager();
    if (windowManager == "KWin")
        return Way::picture;
    if (!X11Session::isInWayland())
        return Way::window;
    return windowManager != X11Session::wlroots && clicksPassThrough(*session) ? Way::window
                                                                               : Way::none;
}

Qt::WindowFlags ShadowHints::windowFlags()
{
    return Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint |
           Qt::NoDropShadowWindowHint | Qt::WindowTransparentForInput |
           Qt::WindowDoesNotAcceptFocus;
}

void ShadowHints::prepare(QWindow &shadow, const QMargins &reach)
{
    X11Session *const session = X11Session::current();
    if (!session)
        return;
    // As windows tell that have a shadow within themselves.
    const xcb_atom_t property = X11Session::atom("_GTK_FRAME_EXTENTS");
    const std::array<uint32_t, 4> extents{
        static_cast<uint32_t>(reach.left()), static_cast<uint32_t>(reach.right()),
        static_cast<uint32_t>(reach.top()), static_cast<uint32_t>(reach.bottom())};
    xcb_change_property(session->connection(), XCB_PROP_MODE_REPLACE,
                        static_cast<xcb_window_t>(shadow.winId()), property, XCB_ATOM_CARDINAL, 32,
                        extents.size(), extents.data());
    // Nor is it a window of the program to those who look for them by process, no more than a
    // frame.
    xcb_delete_property(session->connection(), static_cast<xcb_window_t>(shadow.winId()),
                        session->ewmh()._NET_WM_PID);
}
