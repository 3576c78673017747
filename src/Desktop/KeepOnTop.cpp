// SPDX-License-Identifier: MIT
#include "KeepOnTop.h"

#include "X11Session.h"

#include <QApplication>
#include <QWidget>

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
        tellsOfOtherWindows(*session, *static_cast<xcb_generic_event_t *>(message)))
        m_window.raise();
    return false;
}
