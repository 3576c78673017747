// SPDX-License-Identifier: MIT
#include "KeepOnTop.h"

#include "X11Session.h"

#include <QApplication>
#include <QWidget>

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
    const X11Session *const session = X11Session::current();
    // A menu or tooltip of the program itself lies above the window and stays there.
    if (session && m_window.isVisible() && !QApplication::activePopupWidget() &&
        session->tellsOfOtherWindows(*static_cast<xcb_generic_event_t *>(message))) {
        const QWidget *const question = QApplication::activeModalWidget();
        if (question && question != &m_window)
            session->putBelow(X11Session::window(m_window), X11Session::window(*question));
        else
            m_window.raise();
    }
    return false;
}
