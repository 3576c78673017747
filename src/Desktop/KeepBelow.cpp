// SPDX-License-Identifier: MIT
#include "KeepBelow.h"

#include "X11Session.h"

#include <QGuiApplication>
#include <QWidget>
#include <algorithm>
#include <chrono>

namespace {

using namespace std::chrono_literals;

/// Window managers restack in several steps: the order is looked at once more when they are done.
constexpr auto quietTime = 200ms;

/// Of one change of the others: who insists on another order has it in the end.
constexpr int mostCorrections = 5;

bool isRightBelow(const X11Session &session, xcb_window_t lower, xcb_window_t upper)
{
    const std::vector<xcb_window_t> all = session.children(session.root());
    const auto found = std::ranges::find(all, lower);
    return found != all.end() && found + 1 != all.end() &&
           *(found + 1) == X11Session::outermost(upper);
}

} // namespace

KeepBelow::KeepBelow(QWindow &lower, const QWidget &upper)
    : QObject(&lower)
    , m_lower(lower)
    , m_upper(upper)
    , m_correctionsLeft(mostCorrections)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(quietTime);
    connect(&m_quiet, &QTimer::timeout, this, &KeepBelow::restack);
    if (X11Session::current()) {
        qGuiApp->installNativeEventFilter(this);
        restack();
    }
}

KeepBelow::~KeepBelow()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool KeepBelow::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                  qintptr * /*result*/)
{
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    if (!m_lower.isVisible())
        return false;
    if (X11Session::current()->tellsOfOtherWindows(event)) {
        m_correctionsLeft = mostCorrections;
        m_quiet.start();
        restack();
    } else if (X11Session::eventType(event) == XCB_CONFIGURE_NOTIFY &&
               reinterpret_cast<const xcb_configure_notify_event_t &>(event).window ==
                   m_lower.winId()) {
        restack();
    }
    return false;
}

void KeepBelow::restack()
{
    const X11Session &session = *X11Session::current();
    const auto lower = static_cast<xcb_window_t>(m_lower.winId());
    const xcb_window_t upper = X11Session::window(m_upper);
    if (m_correctionsLeft == 0 || upper == XCB_WINDOW_NONE || isRightBelow(session, lower, upper))
        return;
    --m_correctionsLeft;
    session.putBelow(lower, upper);
}
