// SPDX-License-Identifier: MIT
#include "SelectionWatch.h"

#include "X11Session.h"
#include "XcbReply.h"

#include <QGuiApplication>
#include <xcb/xfixes.h>

namespace {

xcb_window_t ownerOf(const X11Session &session, xcb_atom_t selection)
{
    const auto request = xcb_get_selection_owner(session.connection(), selection);
    const auto reply = owned(xcb_get_selection_owner_reply(session.connection(), request, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

} // namespace

SelectionWatch::SelectionWatch(xcb_atom_t selection, QObject *parent)
    : QObject(parent)
    , m_selection(selection)
{
    const X11Session *const session = X11Session::current();
    if (!session || selection == XCB_ATOM_NONE)
        return;

    // Qt has agreed on a version of the extension with the server already.
    const auto *const xfixes = xcb_get_extension_data(session->connection(), &xcb_xfixes_id);
    if (xfixes && xfixes->present) {
        m_event = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        xcb_xfixes_select_selection_input(
            session->connection(), session->root(), selection,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        qGuiApp->installNativeEventFilter(this);
    }
    // Asked for last: who comes after this is announced.
    m_owner = ownerOf(*session, selection);
}

SelectionWatch::~SelectionWatch()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool SelectionWatch::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                       qintptr * /*result*/)
{
    const auto *const event = static_cast<xcb_generic_event_t *>(message);
    if (X11Session::eventType(*event) != m_event)
        return false;
    const auto *const change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event);
    if (change->selection == m_selection && change->owner != m_owner) {
        m_owner = change->owner;
        Q_EMIT changed();
    }
    return false;
}
