# SPDX-License-Identifier: MIT
"""The parts of a desktop that say how programs are to look, with what a test has them say."""

import struct
import subprocess

import Xlib.display
from Xlib import X

_PORTAL = """\
import sys
import gi
gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib
INTERFACE = Gio.DBusNodeInfo.new_for_xml('''
<node><interface name="org.freedesktop.portal.Settings">
<method name="ReadAll"><arg direction="in" type="as"/><arg direction="out" type="a{sa{sv}}"/></method>
<signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>''').interfaces[0]
PATH = "/org/freedesktop/portal/desktop"
settings = {}
bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)

def answer(_bus, _sender, _path, _interface, _method, _arguments, invocation):
    values = {key: GLib.Variant("u", value) for key, value in settings.items()}
    invocation.return_value(GLib.Variant("(a{sa{sv}})", ({"org.freedesktop.appearance": values},)))

def hear(source, _condition):
    key, value = sys.stdin.readline().split()
    settings[key] = int(value)
    change = ("org.freedesktop.appearance", key, GLib.Variant("u", int(value)))
    bus.emit_signal(None, PATH, INTERFACE.name, "SettingChanged", GLib.Variant("(ssv)", change))
    print("said", flush=True)
    return True

bus.register_object(PATH, INTERFACE, answer, None, None)
bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
              "RequestName", GLib.Variant("(su)", ("org.freedesktop.portal.Desktop", 0)), None,
              Gio.DBusCallFlags.NONE, -1, None)
GLib.io_add_watch(sys.stdin, GLib.IO_IN, hear)
print("ready", flush=True)
GLib.MainLoop().run()
"""

NO_PREFERENCE, DARK, LIGHT = range(3)


class Portal:
    """The settings portal, on the desktop's session bus."""

    def __init__(self, desktop):
        self._process = desktop.spawn(["/usr/bin/python3", "-B", "-c", _PORTAL], text=True,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._expect("ready")

    def say(self, key, value):
        """Changes one of the settings that are common to all desktops."""
        self._process.stdin.write(f"{key} {value}\n")
        self._process.stdin.flush()
        self._expect("said")

    def close(self):
        self._process.kill()
        self._process.wait()
        self._process.stdin.close()
        self._process.stdout.close()

    def _expect(self, word):
        if self._process.stdout.readline().strip() != word:
            raise RuntimeError("the portal has ended")


class SettingsManager:
    """The program of a GTK desktop that keeps its settings on the X server (XSETTINGS)."""

    def __init__(self, desktop, **settings):
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        screen = self._display.screen()
        self._window = screen.root.create_window(-1, -1, 1, 1, 0, screen.root_depth)
        self._property = self._display.intern_atom("_XSETTINGS_SETTINGS")
        self.write(**settings)
        self._window.set_selection_owner(self._display.intern_atom("_XSETTINGS_S0"), X.CurrentTime)
        self._display.sync()

    def write(self, theme=None, animations=None):
        entries = []
        if theme is not None:
            name = theme.encode()
            entries.append(self._entry(1, b"Net/ThemeName")
                           + struct.pack("<I", len(name)) + self._padded(name))
        if animations is not None:
            entries.append(self._entry(0, b"Gtk/EnableAnimations")
                           + struct.pack("<i", animations))
        head = struct.pack("<B3xII", 0, 1, len(entries))
        self._window.change_property(self._property, self._property, 8, head + b"".join(entries))
        self._display.sync()

    def close(self):
        self._display.close()

    @staticmethod
    def _padded(text):
        return text + b"\0" * (-len(text) % 4)

    @classmethod
    def _entry(cls, kind, name):
        return struct.pack("<BxH", kind, len(name)) + cls._padded(name) + struct.pack("<I", 1)


class BlurOffer:
    """A compositing manager's offer to blur what lies behind windows, as KWin makes it."""

    NAME = "_KDE_NET_WM_BLUR_BEHIND_REGION"

    def __init__(self, desktop):
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        self._property = self._display.intern_atom(self.NAME)
        self._root = self._display.screen().root
        self._root.change_property(self._property, self._property, 8, b"\0")
        self._display.sync()

    def close(self):
        self._root.delete_property(self._property)
        self._display.sync()
        self._display.close()
