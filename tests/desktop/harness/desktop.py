# SPDX-License-Identifier: MIT
"""One virtual desktop: X server, window manager, session bus and folders of its own."""

import contextlib
import functools
import os
import pathlib
import shutil
import subprocess
import tempfile

import Xlib.display
import Xlib.error

from . import assistive, processes, surroundings
from .input import Keyboard, Mouse
from .pictures import Picture
from .quillmark import Quillmark
from .text_window import TextWindow
from .waiting import until
from .windows import Windows

_I3_SETTINGS = """\
font pango:monospace 8
workspace 1 output primary
bindsym Mod4+F1 workspace 1
"""

# How each window manager is started. {settings} is a file with _I3_SETTINGS.
WINDOW_MANAGERS = {
    "openbox": ["openbox", "--sm-disable"],
    "i3": ["i3", "-c", "{settings}"],
    "xfwm4": ["xfwm4", "--compositor=on", "--vblank=off"],
    "metacity": ["metacity"],
    "mutter": ["mutter", "--x11"],
    "icewm": ["icewm"],
    "kwin_x11": ["kwin_x11"],
    "marco": ["marco"],
    "fluxbox": ["fluxbox"],
    "bspwm": ["bspwm", "-c", "/bin/true"],
    "awesome": ["awesome"],
    "dwm": ["dwm"],
}

# The services that may be started through the bus: assistive technology, and what window managers
# keep their settings in. Whatever else this computer offers to a session stays away.
_BUS_SERVICES = ["org.a11y.Bus", "org.xfce.Xfconf", "ca.desrt.dconf"]

_BUS_SETTINGS = """\
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Desktop:
    """Starts everything on entry, ends and removes everything on exit."""

    def __init__(self, window_manager, width=1440, height=900):
        self.window_manager = window_manager
        self.width = width
        self.height = height
        self._exits = contextlib.ExitStack()

    @staticmethod
    def is_available(window_manager):
        return shutil.which(WINDOW_MANAGERS[window_manager][0]) is not None

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self._exits.close()
            raise
        return self

    def __exit__(self, *exception):
        self._exits.close()

    def _start(self):
        self._prepare()
        self.environment["DISPLAY"] = self.start_display()
        self._start_bus()
        self.display = Xlib.display.Display(self.environment["DISPLAY"])
        self._exits.callback(self.display.close)
        self.windows = Windows(self.display)
        self.mouse = Mouse(self.display)
        self.keyboard = Keyboard(self.display)
        self._start_window_manager()

    def _prepare(self):
        processes.adopt_orphans()
        folder = tempfile.TemporaryDirectory(prefix="desktop-", ignore_cleanup_errors=True)
        self.folder = pathlib.Path(self._exits.enter_context(folder))
        self._exits.callback(processes.kill_adopted)
        self._log = self._exits.enter_context(open(self.folder / "services.log", "wb"))
        self.environment = self._make_environment(self.folder / "home")

    def _make_environment(self, home):
        environment = self.environment_for(home)
        runtime = self.folder / "runtime"
        runtime.mkdir(mode=0o700)
        environment["XDG_RUNTIME_DIR"] = str(runtime)
        return environment

    def environment_for(self, home):
        """The environment of a program that keeps everything below the given home folder."""
        home = pathlib.Path(home)
        environment = surroundings.kept() | getattr(self, "environment", {})
        folders = {"HOME": home, "XDG_DATA_HOME": home / ".local/share",
                   "XDG_CONFIG_HOME": home / ".config", "XDG_CACHE_HOME": home / ".cache"}
        for key, path in folders.items():
            path.mkdir(parents=True, exist_ok=True)
            environment[key] = str(path)
        environment.update({"LANG": "C.UTF-8", "LANGUAGE": "en", "XDG_SESSION_TYPE": "x11",
                            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                            "LIBGL_ALWAYS_SOFTWARE": "1"})
        return environment

    def spawn(self, arguments, **options):
        """Starts a service of the desktop; it ends with the desktop."""
        options = {"stdout": self._log, "stderr": self._log} | options
        process = processes.spawn(arguments, self.environment, **options)
        self._exits.callback(processes.stop, process)
        return process

    def start_display(self):
        """A virtual display, whose name is returned; it ends with the desktop."""
        read, write = os.pipe()
        self.spawn(["Xvfb", "-displayfd", str(write), "-screen", "0",
                    f"{self.width}x{self.height}x24", "-nolisten", "tcp", "-noreset"],
                   pass_fds=[write])
        os.close(write)
        with open(read, encoding="ascii") as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start:\n" + self.log())
        return f":{number}"

    def _start_bus(self):
        services = self.folder / "services"
        services.mkdir()
        for name in _BUS_SERVICES:
            source = pathlib.Path(f"/usr/share/dbus-1/services/{name}.service")
            if source.exists():
                lines = source.read_text(encoding="utf-8").splitlines()
                kept = [line for line in lines if not line.startswith("SystemdService")]
                (services / source.name).write_text("\n".join(kept) + "\n", encoding="utf-8")
        self.environment["DBUS_SESSION_BUS_ADDRESS"], _ = self.start_bus(self.folder)

    def start_bus(self, folder):
        """A session bus on a socket in this folder, which knows the desktop's services; its address
        and process."""
        settings = pathlib.Path(folder) / "bus.conf"
        settings.write_text(_BUS_SETTINGS.format(folder=folder, services=self.folder / "services"),
                            encoding="utf-8")
        bus = self.spawn(["dbus-daemon", f"--config-file={settings}", "--nofork",
                          "--print-address"], stdout=subprocess.PIPE)
        with bus.stdout as answer:
            address = answer.readline().decode().strip()
        if not address:
            raise RuntimeError("the session bus did not start:\n" + self.log())
        return address, bus

    def _start_window_manager(self):
        settings = self.folder / "i3.conf"
        settings.write_text(_I3_SETTINGS, encoding="utf-8")
        # Whatever it finds for setting a wallpaper may fail, and says so in a window in mid-screen.
        overlay = pathlib.Path(self.environment["HOME"]) / ".fluxbox/overlay"
        overlay.parent.mkdir(exist_ok=True)
        overlay.write_text("background: none\n", encoding="utf-8")
        command = [part.format(settings=settings)
                   for part in WINDOW_MANAGERS[self.window_manager]]
        self.spawn(command)
        until(self.windows.has_window_manager, f"{self.window_manager} has started")
        if self.window_manager == "bspwm":
            # By itself it has one workspace.
            self.run(["bspc", "monitor", "-d", "1", "2"])
        self._wait_until_windows_are_managed()

    def _wait_until_windows_are_managed(self):
        """Window managers announce themselves before they look at windows, and some sleep on events
        that came while they started until another one arrives."""
        probe = TextWindow(self.environment["DISPLAY"], "Probe")

        def is_managed():
            self.windows.ask_for_frame_extents(probe.id)
            window = self.windows.find(probe.id)
            return window.is_viewable() and window.property("WM_STATE") is not None

        until(is_managed, f"{self.window_manager} manages windows")
        probe.close()

    @functools.cached_property
    def assistive(self):
        """What a screen reader would ask."""
        bus = assistive.Bus(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self._exits.callback(bus.close)
        return bus

    def log(self):
        """What the services of the desktop have printed."""
        self._log.flush()
        return (self.folder / "services.log").read_text(encoding="utf-8", errors="replace")

    def picture(self, x=0, y=0, width=None, height=None):
        """What is on screen, as a person would see it."""
        return Picture.of_screen(self.display, x, y, width or self.width, height or self.height)

    def run(self, arguments):
        """Runs a command on this desktop and returns what it printed."""
        return subprocess.run(arguments, env=self.environment, check=True, text=True,
                              stdout=subprocess.PIPE, timeout=30).stdout

    def switch_workspace(self, number):
        """Shows the workspace with this number, counted from 0."""
        if self.window_manager == "i3":
            # i3 makes workspaces when they are first gone to, and only by its own command.
            self.run(["i3-msg", "workspace", str(number + 1)])
        else:
            self.windows.switch_workspace(number)
        until(lambda: self.windows.workspace() == number, f"workspace {number} is shown")

    def open_text_window(self, title="Another program", focused=True, **geometry):
        """Another program's window that takes text; focused when the call returns."""
        window = TextWindow(self.environment["DISPLAY"], title, **geometry)
        self._exits.callback(window.close)
        until(lambda: self.windows.find(window.id).is_viewable(), f"“{title}” is shown")
        if focused:
            self.windows.activate(window.id)
            until(lambda: self.windows.active() == window.id, f"“{title}” is active")
            until(lambda: self.windows.has_input(window.id), f"“{title}” has the keyboard")
        return window

    def open_terminal(self, file):
        """A terminal that shows a text file; its window's number, once it has the keyboard."""
        before = set(self.windows.managed())
        self.spawn(["xterm", "-geometry", "96x38+60+60", "-fa", "DejaVu Sans Mono", "-fs", "10",
                    "-bg", "#fbfaf7", "-fg", "#33383d", "+sb", "-T", file.name,
                    "-e", "sh", "-c", 'fold -s -w 94 "$0" | head -n 36; exec cat', str(file)])
        def opened():
            return set(self.windows.managed()) - before
        number = until(opened, "the terminal is open").pop()
        until(lambda: self.windows.has_input(number), "the terminal has the keyboard")
        return number

    def paint_wallpaper(self, colour):
        root = self.display.screen().root
        root.change_attributes(background_pixel=colour)
        root.clear_area()
        self.display.sync()

    def start_quillmark(self, program, home, *arguments, **variables):
        """Starts the program with data and settings below the home folder; does not wait."""
        return Quillmark(self, program, home, arguments, variables)
