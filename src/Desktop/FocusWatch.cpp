// SPDX-License-Identifier: MIT
#include "FocusWatch.h"

#include "X11Session.h"
#include "XcbReply.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

namespace {

using namespace std::chrono_literals;

/// For the window manager to give it the keyboard.
constexpr auto givingTime = 200ms;

/// In a Wayland session a native window may have it, which no X server knows.
bool hasNobodyTheKeyboard(const X11Session &session)
{
    const auto request = xcb_get_input_focus(session.connection());
    const auto reply = owned(xcb_get_input_focus_reply(session.connection(), request, nullptr));
    return reply && !X11Session::isInWayland() &&
           (reply->focus <= XCB_INPUT_FOCUS_POINTER_ROOT || reply->focus == session.root());
}

} // namespace

FocusWatch::FocusWatch(QWidget &window)
    : QObject(&window)
    , m_window(window)
{
    m_mapped.setSingleShot(true);
    m_mapped.setInterval(givingTime);
    connect(&m_mapped, &QTimer::timeout, this, &FocusWatch::takeUnclaimed);
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
    if (!m_window.isVisible())
        return false;
    if (X11Session::eventType(event) == XCB_MAP_NOTIFY) {
        const auto &mapped = reinterpret_cast<const xcb_map_notify_event_t &>(event);
        if (mapped.window == X11Session::window(m_window))
            m_mapped.start();
        return false;
    }
    if (X11Session::eventType(event) != XCB_FOCUS_IN)
        return false;
    const auto &focus = reinterpret_cast<const xcb_focus_in_event_t &>(event);
    if (focus.event == X11Session::window(m_window) && focus.detail != XCB_NOTIFY_DETAIL_POINTER)
        // After Qt has made of it what it makes of it.
        QMetaObject::invokeMethod(this, &FocusWatch::activateUnnoticed, Qt::QueuedConnection);
    return false;
}

void FocusWatch::takeUnclaimed()
{
    const X11Session *const session = X11Session::current();
    if (!session || !m_window.isVisible() || !hasNobodyTheKeyboard(*session))
        return;
    xcb_set_input_focus(session->connection(), XCB_INPUT_FOCUS_PARENT, X11Session::window(m_window),
                        XCB_CURRENT_TIME);
    xcb_flush(session->connection());
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
