# SPDX-License-Identifier: MIT
"""What a desktop calls when an entry is chosen that the session bus activates."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_MILLISECONDS = 5000


def choose_entry(desktop):
    _call(desktop, "Activate", GLib.Variant("(a{sv})", ({},)))


def choose_action(desktop, action):
    _call(desktop, "ActivateAction", GLib.Variant("(sava{sv})", (action, [], {})))


def _call(desktop, method, arguments):
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    bus = Gio.DBusConnection.new_for_address_sync(
        desktop.environment["DBUS_SESSION_BUS_ADDRESS"], flags, None, None)
    bus.call_sync("org.quillmark.Quillmark", "/org/quillmark/Quillmark",
                  "org.freedesktop.Application", method, arguments, None,
                  Gio.DBusCallFlags.NONE, _MILLISECONDS, None)
    bus.close_sync(None)
