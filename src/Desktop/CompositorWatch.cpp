// SPDX-License-Identifier: MIT
#include "CompositorWatch.h"

#include "X11Session.h"
#include "XcbReply.h"

#include <QGuiApplication>
#include <xcb/xfixes.h>

namespace {

bool hasOwner(const X11Session &session, xcb_atom_t selection)
{
    const auto request = xcb_get_selection_owner(session.connection(), selection);
    const auto reply = owned(xcb_get_selection_owner_reply(session.connection(), request, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

} // namespace

CompositorWatch::CompositorWatch(QObject *parent)
    : QObject(parent)
{
    const X11Session *const session = X11Session::current();
    if (!session)
        return;
    m_isComposited = hasOwner(*session, session->compositorSelection());

    // Qt has agreed on a version of the extension with the server already.
    const auto *const xfixes = xcb_get_extension_data(session->connection(), &xcb_xfixes_id);
    if (xfixes && xfixes->present) {
        m_selectionEvent = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        xcb_xfixes_select_selection_input(
            session->connection(), session->root(), session->compositorSelection(),
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        qGuiApp->installNativeEventFilter(this);
    }
}

CompositorWatch::~CompositorWatch()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool CompositorWatch::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                        qintptr * /*result*/)
{
    const auto *const event = static_cast<xcb_generic_event_t *>(message);
    if (X11Session::eventType(*event) != m_selectionEvent)
        return false;
    const auto *const selection =
        reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event);
    if (const X11Session *const session = X11Session::current();
        session && selection->selection == session->compositorSelection()) {
        const bool isComposited = selection->owner != XCB_WINDOW_NONE;
        if (isComposited != m_isComposited) {
            m_isComposited = isComposited;
            Q_EMIT changed();
        }
    }
    return false;
}
