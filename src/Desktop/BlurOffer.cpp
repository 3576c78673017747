// SPDX-License-Identifier: MIT
#include "BlurOffer.h"

#include "X11Session.h"
#include "XcbReply.h"

#include <QGuiApplication>
#include <utility>

namespace {

bool hasProperty(const X11Session &session, xcb_atom_t property)
{
    const auto request = xcb_get_property(session.connection(), 0, session.root(), property,
                                          XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
    const auto reply = owned(xcb_get_property_reply(session.connection(), request, nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

} // namespace

BlurOffer::BlurOffer(QObject *parent)
    : QObject(parent)
    , m_property(X11Session::atom(propertyName))
{
    if (const X11Session *const session = X11Session::current()) {
        // Qt has asked for the events of the root window's properties.
        qGuiApp->installNativeEventFilter(this);
        m_isMade = hasProperty(*session, m_property);
    }
}

BlurOffer::~BlurOffer()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool BlurOffer::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                  qintptr * /*result*/)
{
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    if (X11Session::eventType(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    if (change.atom != m_property || change.window != X11Session::current()->root())
        return false;
    const bool isMade = change.state == XCB_PROPERTY_NEW_VALUE;
    if (isMade != std::exchange(m_isMade, isMade))
        Q_EMIT changed();
    return false;
}
