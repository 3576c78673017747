// SPDX-License-Identifier: MIT
#include "FocusWatch.h"

#include "X11Session.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

FocusWatch::FocusWatch(QWidget &window)
    : QObject(&window)
    , m_window(window)
{
    if (X11Session::current())
        qApp->installNativeEventFilter(this);
}

FocusWatch::~FocusWatch()
{
    if (qApp)
        qApp->removeNativeEventFilter(this);
}

bool FocusWatch::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                   qintptr * /*result*/)
{
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    if (X11Session::eventType(event) != XCB_FOCUS_IN || !m_window.isVisible())
        return false;
    const auto &focus = reinterpret_cast<const xcb_focus_in_event_t &>(event);
    if (focus.event == X11Session::window(m_window) && focus.detail != XCB_NOTIFY_DETAIL_POINTER)
        // After Qt has made of it what it makes of it.
        QMetaObject::invokeMethod(this, &FocusWatch::activateUnnoticed, Qt::QueuedConnection);
    return false;
}

void FocusWatch::activateUnnoticed()
{
    const bool isNoticed =
        m_window.isActiveWindow() || QGuiApplication::focusWindow() != m_window.windowHandle();
    if (isNoticed || !m_window.isVisible())
        return;
    // The one call that tells the widgets only; asking for the keyboard would change nothing.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setActiveWindow(&m_window);
    QT_WARNING_POP
}
