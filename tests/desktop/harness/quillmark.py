# SPDX-License-Identifier: MIT
"""The program under test, from outside."""

import configparser
import os
import pathlib
import signal
import subprocess

from . import processes
from .notes import DataFolder
from .waiting import until

LAUNCHER_SIZE = (64, 64)
EDITOR_SIZE = (424, 560)


class Quillmark:
    """One process of the program, with data and settings below a home folder of its own."""

    def __init__(self, desktop, program, home, arguments=(), variables=None):
        self.desktop = desktop
        self.home = pathlib.Path(home)
        environment = desktop.environment_for(self.home) | (variables or {})
        environment = {key: value for key, value in environment.items() if value is not None}
        self.data = DataFolder(pathlib.Path(environment["XDG_DATA_HOME"]) / "Penwick")
        self.settings_file = pathlib.Path(environment["XDG_CONFIG_HOME"]) / "Penwick/Penwick.conf"
        self._output_path = self.home / "output.log"
        with open(self._output_path, "ab") as output:
            self._process = processes.spawn([program, *arguments], environment,
                                            stdout=output, stderr=subprocess.STDOUT)

    @classmethod
    def of_process(cls, desktop, process, home):
        """One that somebody else has started, with everything below the home folder."""
        self = cls.__new__(cls)
        self.desktop = desktop
        self.home = pathlib.Path(home)
        self.data = DataFolder(self.home / ".local/share/Penwick")
        self.settings_file = self.home / ".config/Penwick/Penwick.conf"
        self._output_path = os.devnull
        self._process = processes.Foreign(process)
        return self

    # What it is doing

    @property
    def process(self):
        return self._process.pid

    def output(self):
        """Everything that it has printed."""
        return pathlib.Path(self._output_path).read_text(encoding="utf-8", errors="replace")

    def is_running(self):
        return self._process.poll() is None

    def wait_until_ended(self, seconds=10.0):
        """The exit status; a signal's number, negative, when a signal ended it."""
        until(lambda: not self.is_running(), "the program has ended", seconds)
        return self._process.returncode

    def stop(self):
        """Ends it, however it is."""
        processes.stop(self._process)

    def send(self, number):
        os.kill(self._process.pid, number)

    def kill(self):
        """Ends it as a power cut would, without a chance to write."""
        self.send(signal.SIGKILL)
        self.wait_until_ended()

    # Its windows

    def windows(self):
        return self.desktop.windows.of_process(self._process.pid)

    def _shown(self, size, unmanaged):
        for window in self.windows():
            rectangle = window.rectangle()
            if (rectangle is not None and rectangle[2:] == size and window.is_viewable()
                    and window.bypasses_window_manager() == unmanaged):
                return window
        return None

    def shows_launcher(self):
        """The bubble's window while it is on screen."""
        return self._shown(LAUNCHER_SIZE, True)

    def shows_editor(self):
        """The editor's window while it is on screen."""
        return self._shown(EDITOR_SIZE, False)

    def _until_shown(self, shown, what):
        def shown_or_ended():
            if not self.is_running():
                raise AssertionError(f"the program ended with {self._process.returncode}, "
                                     f"awaited: {what}")
            return shown()
        return until(shown_or_ended, what)

    def launcher(self):
        return self._until_shown(self.shows_launcher, "the bubble is on screen")

    def editor(self):
        """The editor's window once it is on screen and has the keyboard."""
        window = self._until_shown(self.shows_editor, "the editor is on screen")
        until(lambda: self.desktop.windows.has_input(window.id), "the editor has the keyboard")
        return window

    def open_editor(self):
        """Clicks the bubble and waits for the editor."""
        self.desktop.mouse.click(self.launcher().centre())
        return self.editor()

    def popup(self):
        """The window of an open menu, or None."""
        for window in self.windows():
            rectangle = window.rectangle()
            if (window.is_viewable() and rectangle is not None
                    and rectangle[2:] not in (LAUNCHER_SIZE, EDITOR_SIZE)
                    and "_NET_WM_WINDOW_TYPE_TOOLTIP" not in window.types()):
                return window
        return None

    # What it says to a screen reader

    def accessible(self):
        return until(lambda: self.desktop.assistive.program(self._process.pid),
                     "the program is on the accessibility bus")

    def element(self, role=None, name=None, seconds=10.0):
        """The first showing element with this role and name, once there is one."""
        def found():
            root = self.desktop.assistive.program(self._process.pid)
            return root and root.find(role, name)
        return until(found, f"there is a “{name or role}” ({role or 'any role'})", seconds)

    def has_element(self, role=None, name=None):
        root = self.desktop.assistive.program(self._process.pid)
        return root is not None and root.find(role, name) is not None

    def texts(self):
        return self.accessible().texts()

    # What it remembers

    def settings(self):
        """The keys of the settings file, with dots where the file groups them."""
        parser = configparser.ConfigParser(interpolation=None, delimiters=("=",), strict=False)
        parser.optionxform = str
        if not self.settings_file.exists():
            return {}
        parser.read(self.settings_file, encoding="utf-8")
        return {key: value for section in parser.sections()
                for key, value in parser.items(section)}

    def write_settings(self, **values):
        write_settings(self.settings_file, values)


def write_settings(path, values):
    """As another run would have left them; dots in keys are written as underscores here."""
    path.parent.mkdir(parents=True, exist_ok=True)
    lines = ["[General]"] + [f"{key}={value}" for key, value in values.items()]
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")
