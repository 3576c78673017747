// SPDX-License-Identifier: MIT
#include "KeepOnTop.h"

#include "X11Session.h"

#include <QApplication>
#include <QWidget>
#include <array>

namespace {

bool tellsOfOtherWindows(X11Session &session, const xcb_generic_event_t &event)
{
    if (X11Session::eventType(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    return change.window == session.root() &&
           (change.atom == session.ewmh()._NET_ACTIVE_WINDOW ||
            change.atom == session.ewmh()._NET_CLIENT_LIST_STACKING);
}

void putBelow(const X11Session &session, const QWidget &window, const QWidget &other)
{
    const std::array<uint32_t, 2> values{X11Session::outermost(X11Session::window(other)),
                                         XCB_STACK_MODE_BELOW};
    xcb_configure_window(session.connection(), X11Session::window(window),
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
    xcb_flush(session.connection());
}

} // namespace

KeepOnTop::KeepOnTop(QWidget &window)
    : QObject(&window)
    , m_window(window)
{
    if (X11Session::current())
        qApp->installNativeEventFilter(this);
}

KeepOnTop::~KeepOnTop()
{
    if (qApp)
        qApp->removeNativeEventFilter(this);
}

bool KeepOnTop::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                  qintptr * /*result*/)
{
    X11Session *const session = X11Session::current();
    // A menu or tooltip of the program itself lies above the window and stays there.
    if (session && m_window.isVisible() && !QApplication::activePopupWidget() &&
        tellsOfOtherWindows(*session, *static_cast<xcb_generic_event_t *>(message))) {
        const QWidget *const question = QApplication::activeModalWidget();
        if (question && question != &m_window)
            putBelow(*session, m_window, *question);
        else
            m_window.raise();
    }
    return false;
}
