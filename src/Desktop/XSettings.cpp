// SPDX-License-Identifier: MIT
#include "XSettings.h"

#include "X11Session.h"
#include "XSettingsFormat.h"
#include "XcbReply.h"

#include <QGuiApplication>
#include <utility>

namespace {

/// In units of four bytes: a quarter of a mebibyte, where managers need a few kibibytes.
constexpr uint32_t longestProperty = 65536;

} // namespace

XSettings::XSettings(QObject *parent)
    : QObject(parent)
    , m_property(X11Session::atom("_XSETTINGS_SETTINGS"))
    , m_manager(X11Session::atom("_XSETTINGS_S0"))
{
    if (!X11Session::current())
        return;
    qGuiApp->installNativeEventFilter(this);
    connect(&m_manager, &SelectionWatch::changed, this, &XSettings::follow);
    follow();
}

XSettings::~XSettings()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool XSettings::nativeEventFilter(const QByteArray & /*eventType*/, void *message,
                                  qintptr * /*result*/)
{
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    if (X11Session::eventType(event) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    if (change.window == m_manager.owner() && change.atom == m_property)
        read();
    return false;
}

void XSettings::follow()
{
    if (m_manager.owner() != XCB_WINDOW_NONE) {
        // What Qt asks for on the same connection: the latest request counts for both.
        const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(X11Session::current()->connection(), m_manager.owner(),
                                     XCB_CW_EVENT_MASK, &events);
    }
    read();
}

void XSettings::read()
{
    const X11Session *const session = X11Session::current();
    ToolkitSettings settings;
    if (session && m_manager.owner() != XCB_WINDOW_NONE) {
        const auto request = xcb_get_property(session->connection(), 0, m_manager.owner(),
                                              m_property, m_property, 0, longestProperty);
        if (const auto reply =
                owned(xcb_get_property_reply(session->connection(), request, nullptr)))
            settings = XSettingsFormat::reading(
                {static_cast<const char *>(xcb_get_property_value(reply.get())),
                 xcb_get_property_value_length(reply.get())});
    }
    if (settings != std::exchange(m_settings, settings))
        Q_EMIT changed();
}
