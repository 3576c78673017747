# SPDX-License-Identifier: MIT
"""A Wayland session, Xwayland inside, and a native window in front.

mutter and GNOME Shell run without a screen. Mouse and keys come from their interface for remote
desktops, as from devices: unlike XTEST on the display of Xwayland, which ends there, they go to
whatever window the compositor gives them to. KWin and sway run in a window that fills a virtual X
display, whose pointer and keys they take for their own.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import time
import unittest.mock

import gi
import Xlib.display
import Xlib.protocol
from Xlib import XK

from . import processes
from .desktop import Desktop
from .input import Keyboard, Mouse
from .pictures import Picture
from .waiting import until
from .windows import Windows

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_REMOTE = "org.gnome.Mutter.RemoteDesktop"
_BUTTONS = {Mouse.LEFT: 0x110, Mouse.RIGHT: 0x111, Mouse.MIDDLE: 0x112}
_MODIFIERS = {"ctrl": "Control_L", "shift": "Shift_L"}

# Who runs a compositor that refuses to be run by root.
_NOBODY = 65534
_LET_IN_EVERYBODY = """
import sys
from Xlib import X, display
server = display.Display(sys.argv[1])
server.set_access_control(X.DisableAccess)
server.sync()
"""

# Between what is seen and what is done. The compositor finds out with the next picture what lies below
# the pointer, and a window has the keyboard for X before it has it for the compositor.
_REACTION = 0.2


def _connect(display):
    # Connections share a table of events, in which two servers number those of extensions differently.
    Xlib.protocol.display.Display.event_classes = Xlib.protocol.event.event_class.copy()
    return Xlib.display.Display(display)


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


class OuterMouse(Mouse):
    def move(self, point):
        # As with RemoteMouse, a jump is not the last step.
        super().move((point[0] - 1, point[1]))
        super().move(point)
        time.sleep(_REACTION)


class OuterKeyboard(Keyboard):
    def press(self, combination):
        time.sleep(_REACTION)
        super().press(combination)

    def type(self, text):
        time.sleep(_REACTION)
        for letter in text:
            super().press(letter)


class NativeWindow:
    """A window that speaks Wayland alone and keeps what is typed into it, letter by letter."""

    def __init__(self, desktop, folder):
        self._file = pathlib.Path(folder) / "typed"
        program = pathlib.Path(__file__).parent / "native_window.py"
        self._program = desktop.spawn(
            [sys.executable, "-B", str(program), str(self._file), "700", "500"])
        until(self._file.exists, "the native window is open")

    def close(self):
        processes.stop(self._program)

    def text(self):
        return self._file.read_text(encoding="utf-8")


class WaylandDesktop(Desktop):
    """Its windows are those of Xwayland; native ones are seen by no X client."""

    compositor = "mutter"

    def __init__(self):
        super().__init__("mutter")

    @classmethod
    def is_available(cls):
        return all(map(shutil.which, (cls.compositor, "Xwayland")))

    def _spawn_compositor(self, *arguments):
        self.spawn([self.compositor, "--wayland", "--headless", "--wayland-display=native",
                    f"--virtual-monitor={self.width}x{self.height}", *arguments])

    def _start_compositor(self, program):
        """Starts a program in its session."""
        self._spawn_compositor("--", program)

    def picture(self):
        """What the compositor shows; None where that is not seen."""
        return None

    def _make_input(self):
        devices = _Devices(self.bus)
        return RemoteMouse(devices), RemoteKeyboard(devices)

    def _start(self):
        self._prepare()
        self._start_bus()
        self.bus = Gio.DBusConnection.new_for_address_sync(
            self.environment["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self._exits.callback(self.bus.close_sync, None)
        self.environment["XDG_SESSION_TYPE"] = "wayland"
        session = self._start_session()
        names = ("WAYLAND_DISPLAY", "DISPLAY", "XAUTHORITY")
        self.environment |= {name: session[name] for name in names if session.get(name)}
        with unittest.mock.patch.dict(os.environ, XAUTHORITY=session.get("XAUTHORITY", "")):
            self.display = _connect(session["DISPLAY"])
        self._exits.callback(self.display.close)
        self.windows = Windows(self.display)
        self.mouse, self.keyboard = self._make_input()

    def _start_session(self):
        """The environment of a program of the session."""
        self._session_folder = self.folder / "session"
        self._session_folder.mkdir(mode=0o700)
        told = self._session_folder / "environment"
        teller = self._session_folder / "tell"
        teller.write_text(f"#!/bin/sh\nenv >{told}.part\nmv {told}.part {told}\n"
                          "exec sleep infinity\n", encoding="utf-8")
        teller.chmod(0o755)
        self._start_compositor(str(teller))
        until(told.exists, "the compositor has started", 60)
        lines = told.read_text(encoding="utf-8").splitlines()
        return dict(line.split("=", 1) for line in lines)


class GnomeShellDesktop(WaylandDesktop):
    """GNOME Shell with its panel, by itself: without the rest of a GNOME session."""

    compositor = "gnome-shell"

    def _start_compositor(self, program):
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
        self._evaluate(f"imports.gi.GLib.spawn_async(null, [{program!r}], null, "
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


class NestedDesktop(WaylandDesktop):
    """In a window of another display."""

    def _start_session(self):
        self._outer_name = self.start_display()
        self._outer = _connect(self._outer_name)
        self._exits.callback(self._outer.close)
        return super()._start_session()

    def _spawn_nested(self, command, **environment):
        settings = [f"{name}={value}" for name, value in environment.items()]
        self.spawn(["env", f"DISPLAY={self._outer_name}", *settings, *command])

    def picture(self):
        return Picture.of_screen(self._outer, 0, 0, self.width, self.height)

    def _make_input(self):
        return OuterMouse(self._outer), OuterKeyboard(self._outer)


class SwayDesktop(NestedDesktop):
    compositor = "sway"

    def _start_compositor(self, program):
        settings = self._session_folder / "settings"
        settings.write_text(f"output * resolution {self.width}x{self.height}\n"
                            f"xwayland force\nexec {program}\n", encoding="utf-8")
        command = ["sway", "--config", str(settings)]
        if os.geteuid() == 0:
            self.folder.chmod(0o711)
            os.chown(self._session_folder, _NOBODY, _NOBODY)
            command = ["setpriv", f"--reuid={_NOBODY}", f"--regid={_NOBODY}", "--clear-groups",
                       *command]
        self._spawn_nested(command, WLR_BACKENDS="x11", WLR_RENDERER="pixman",
                           XDG_RUNTIME_DIR=self._session_folder)

    def _start_session(self):
        session = super()._start_session()
        if os.geteuid() == 0:
            # Xwayland lets in its own user alone.
            subprocess.run([sys.executable, "-c", _LET_IN_EVERYBODY, session["DISPLAY"]],
                           user=_NOBODY, check=True)
        # Its runtime folder is not that of the programs.
        native = self._session_folder / session["WAYLAND_DISPLAY"]
        return session | {"WAYLAND_DISPLAY": str(native)}


class KWinDesktop(NestedDesktop):
    compositor = "kwin_wayland"

    def _start_compositor(self, program):
        # The installed one asks for a capability that a container has not to give. It finds its own
        # part of the toolkit by its name.
        own = shutil.copy(shutil.which(self.compositor), self._session_folder)
        self._spawn_nested([own, "--x11-display", self._outer_name, "--width", str(self.width),
                            "--height", str(self.height), "--xwayland", "--no-lockscreen",
                            "--socket", "native", program], KWIN_COMPOSE="Q")
