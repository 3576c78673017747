# SPDX-License-Identifier: MIT
"""A Wayland session: mutter or GNOME Shell without a screen, Xwayland inside, and a native window in
front.

Mouse and keys come from mutter's interface for remote desktops, as from devices: unlike XTEST, which
ends inside Xwayland, they go to whatever window the compositor gives them to.
"""

import os
import pathlib
import shutil
import time
import unittest.mock

import gi
import Xlib.display
from Xlib import XK

from . import processes
from .desktop import Desktop
from .input import Mouse
from .waiting import until
from .windows import Windows

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_REMOTE = "org.gnome.Mutter.RemoteDesktop"
_BUTTONS = {Mouse.LEFT: 0x110, Mouse.RIGHT: 0x111, Mouse.MIDDLE: 0x112}
_MODIFIERS = {"ctrl": "Control_L", "shift": "Shift_L"}

# Between what is seen and what is done. The compositor finds out with the next picture what lies below
# the pointer, and a window has the keyboard for X before it has it for the compositor.
_REACTION = 0.2


class _Devices:
    """A session of mutter's for remote desktops."""

    def __init__(self, bus):
        self._bus = bus
        path = self._call("/org/gnome/Mutter/RemoteDesktop", _REMOTE, "CreateSession")
        self._path = path.unpack()[0]
        self.do("Start")

    def _call(self, path, interface, method, arguments=None):
        return self._bus.call_sync(_REMOTE, path, interface, method, arguments, None, 0, 10_000,
                                   None)

    def do(self, method, kinds=None, *values):
        arguments = GLib.Variant(kinds, values) if kinds else None
        self._call(self._path, _REMOTE + ".Session", method, arguments)


class RemoteMouse:
    def __init__(self, devices):
        self._devices = devices

    def _step(self, x, y):
        self._devices.do("NotifyPointerMotionRelative", "(dd)", x, y)

    def move(self, point):
        # From the corner, where every pointer ends that is moved far enough.
        self._step(-10_000, -10_000)
        self._step(*point)
        # Xwayland 22.1 applies a jump twice, but not what follows it.
        self._step(1, 0)
        self._step(-1, 0)
        time.sleep(_REACTION)

    def click(self, point, button=Mouse.LEFT):
        self.move(point)
        for is_down in (True, False):
            self._devices.do("NotifyPointerButton", "(ib)", _BUTTONS[button], is_down)


class RemoteKeyboard:
    def __init__(self, devices):
        self._devices = devices

    def _key(self, symbol, is_down):
        self._devices.do("NotifyKeyboardKeysym", "(ub)", symbol, is_down)

    def press(self, combination):
        *modifiers, name = combination.split("+")
        symbols = [XK.string_to_keysym(_MODIFIERS[modifier]) for modifier in modifiers]
        symbols.append(XK.string_to_keysym(name))
        time.sleep(_REACTION)
        for symbol in symbols:
            self._key(symbol, True)
        for symbol in reversed(symbols):
            self._key(symbol, False)

    def type(self, text):
        time.sleep(_REACTION)
        for letter in text:
            for is_down in (True, False):
                self._key(ord(letter), is_down)


class NativeWindow:
    """A terminal that speaks Wayland alone and keeps what is typed into it, letter by letter."""

    def __init__(self, desktop, folder):
        self._file = pathlib.Path(folder) / "typed"
        self._terminal = desktop.spawn(
            ["foot", "--window-size-pixels=700x500", "sh", "-c",
             'stty -icanon -echo; exec cat >"$0"', str(self._file)])
        until(self._file.exists, "the native window is open")

    def close(self):
        processes.stop(self._terminal)

    def text(self):
        return self._file.read_text(encoding="utf-8")


class WaylandDesktop(Desktop):
    """Its windows are those of Xwayland; native ones are seen by no X client."""

    compositor = "mutter"

    def __init__(self):
        super().__init__("mutter")

    @classmethod
    def is_available(cls):
        return all(map(shutil.which, (cls.compositor, "Xwayland", "foot")))

    def _spawn_compositor(self, *arguments):
        self.spawn([self.compositor, "--wayland", "--headless", "--wayland-display=native",
                    f"--virtual-monitor={self.width}x{self.height}", *arguments])

    def _start_compositor(self, *program):
        """Starts a program in its session."""
        self._spawn_compositor("--", *program)

    def _start(self):
        self._prepare()
        self._start_bus()
        self.bus = Gio.DBusConnection.new_for_address_sync(
            self.environment["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self._exits.callback(self.bus.close_sync, None)
        self.environment["XDG_SESSION_TYPE"] = "wayland"
        told = self.folder / "session"
        # What a program of the session is told, told further.
        self._start_compositor("sh", "-c", 'env >"$0.part"; mv "$0.part" "$0"; exec sleep infinity',
                               str(told))
        until(told.exists, "the compositor has started", 60)
        session = dict(line.split("=", 1) for line in told.read_text(encoding="utf-8").splitlines())
        names = ("WAYLAND_DISPLAY", "DISPLAY", "XAUTHORITY")
        self.environment |= {name: session[name] for name in names}
        with unittest.mock.patch.dict(os.environ, XAUTHORITY=session["XAUTHORITY"]):
            self.display = Xlib.display.Display(session["DISPLAY"])
        self._exits.callback(self.display.close)
        self.windows = Windows(self.display)
        devices = _Devices(self.bus)
        self.mouse = RemoteMouse(devices)
        self.keyboard = RemoteKeyboard(devices)


class GnomeShellDesktop(WaylandDesktop):
    """GNOME Shell with its panel, by itself: without the rest of a GNOME session."""

    compositor = "gnome-shell"

    def _start_compositor(self, *program):
        # Nobody answers for the system; the shell only wants a bus to ask on.
        self.environment |= {"XDG_CURRENT_DESKTOP": "GNOME", "GSETTINGS_BACKEND": "memory",
                             "DBUS_SYSTEM_BUS_ADDRESS":
                             self.environment["DBUS_SESSION_BUS_ADDRESS"]}
        self._spawn_compositor("--unsafe-mode")
        until(lambda: self._evaluate("Main.layoutManager._startingUp") == "false",
              "the shell has started", 60)
        # RemoteMouse goes through a corner.
        self._evaluate("new imports.gi.Gio.Settings({schema_id: 'org.gnome.desktop.interface'})"
                       ".set_boolean('enable-hot-corners', false)")
        self._evaluate("Main.overview.hide()")
        until(lambda: self._evaluate("Main.overview.visible") == "false",
              "its overview is gone")
        self._evaluate(f"imports.gi.GLib.spawn_async(null, {list(program)}, null, "
                       "imports.gi.GLib.SpawnFlags.SEARCH_PATH, null)")

    def _evaluate(self, script):
        """The result as JSON; None while nobody hears."""
        try:
            answer = self.bus.call_sync("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell",
                                        "Eval", GLib.Variant("(s)", (script,)), None, 0, 30_000,
                                        None)
        except GLib.Error:
            return None
        is_done, result = answer.unpack()
        return result if is_done else None
