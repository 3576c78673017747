# SPDX-License-Identifier: MIT
"""What a desktop calls when an entry is chosen that the session bus activates."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_MILLISECONDS = 5000
_NAME = "org.quillmark.Quillmark"


def choose_entry(desktop):
    _call(desktop, "Activate", GLib.Variant("(a{sv})", ({},)))


def choose_action(desktop, action):
    _call(desktop, "ActivateAction", GLib.Variant("(sava{sv})", (action, [], {})))


def open_addresses(desktop, addresses):
    _call(desktop, "Open", GLib.Variant("(asa{sv})", (addresses, {})))


def ping(desktop):
    """Means nothing, and yet has the bus start the program."""
    _call(desktop, "Ping", None, "org.freedesktop.DBus.Peer")


def owner(desktop):
    """The number of the process that has the program's name; 0 when there is none."""
    try:
        answer = _send(desktop, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                       "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                       GLib.Variant("(s)", (_NAME,)))
    except GLib.Error:
        return 0
    return answer.unpack()[0]


def _call(desktop, method, arguments, interface="org.freedesktop.Application"):
    _send(desktop, _NAME, "/org/quillmark/Quillmark", interface, method, arguments)


def _send(desktop, name, path, interface, method, arguments):
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    bus = Gio.DBusConnection.new_for_address_sync(
        desktop.environment["DBUS_SESSION_BUS_ADDRESS"], flags, None, None)
    try:
        return bus.call_sync(name, path, interface, method, arguments, None,
                             Gio.DBusCallFlags.NONE, _MILLISECONDS, None)
    finally:
        bus.close_sync(None)
