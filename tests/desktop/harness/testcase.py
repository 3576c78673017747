# SPDX-License-Identifier: MIT
"""The base of the desktop tests, and how they are run."""

import argparse
import os
import pathlib
import sys
import tempfile
import unittest

from . import quillmark
from .desktop import Desktop, WINDOW_MANAGERS
from .input import Mouse
from .notes import DataFolder
from .waiting import until

_SKIPPED = 77  # What the test driver takes for "not run".

_options = argparse.Namespace(program=None, window_manager="openbox", pictures=None)


class DesktopTest(unittest.TestCase):
    """One virtual desktop for the tests of a class; a home folder of its own for each test.

    When a test fails, what the program printed is shown with the failure, and a picture of the
    screen is left where --pictures says.
    """

    size = (1440, 900)

    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(_options.window_manager, *cls.size))
        # Before any program starts, so that each tells from its start what it should.
        cls.desktop.assistive.listen().close()

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="home-", dir=self.desktop.folder)
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        self.data = DataFolder(self.home / ".local/share/Penwick")
        self.settings_file = self.home / ".config/Penwick/Penwick.conf"
        self.program = _options.program
        self._started = []
        self.addCleanup(self._report_failure)
        self.desktop.mouse.move((5, self.desktop.height - 5))

    @property
    def windows(self):
        return self.desktop.windows

    @property
    def mouse(self):
        return self.desktop.mouse

    @property
    def keyboard(self):
        return self.desktop.keyboard

    def start(self, *arguments, program=None, **variables):
        """Starts the program, or another one that turns into it, and ends it with the test."""
        program = self.desktop.start_quillmark(program or self.program, self.home, *arguments,
                                               **variables)
        self._started.append(program)
        self.addCleanup(program.stop)
        return program

    def adopt(self, process):
        """The program as somebody else has started it, with the home folder of the test."""
        program = quillmark.Quillmark.of_process(self.desktop, process, self.home)
        self._started.append(program)
        self.addCleanup(program.stop)
        return program

    def open_text_window(self, *arguments, **options):
        window = self.desktop.open_text_window(*arguments, **options)
        self.addCleanup(window.close)
        return window

    def write_settings(self, values):
        quillmark.write_settings(self.settings_file, values)

    def open_menu(self, quillmark):
        """The menu of the bubble."""
        self.mouse.click(quillmark.launcher().centre(), Mouse.RIGHT)
        return until(quillmark.popup, "the menu is open")

    def walk_menu(self, quillmark):
        """Goes down an open menu with the keyboard; what is read out, item by item."""
        until(quillmark.popup, "the menu is open")
        listener = self.desktop.assistive.listen()
        self.addCleanup(listener.close)
        while True:
            heard = len(listener.names())
            self.keyboard.press("Down")
            yield until(lambda: listener.names()[heard:], "the next item is read out")[-1]

    def choose(self, quillmark, *path):
        """Chooses an item of an open menu; what comes before the last name are menus inside it."""
        for depth, wanted in enumerate(path):
            if depth > 0:
                self.keyboard.press("Right")
            first = None
            for name in self.walk_menu(quillmark):
                if name == wanted:
                    break
                self.assertNotEqual(name, first, f"the menu has no item “{wanted}”")
                first = first or name
        self.keyboard.press("Return")
        until(lambda: quillmark.popup() is None, "the menu is closed")

    def read_menu(self, quillmark):
        """The names in an open menu, which is closed again."""
        names = []
        for name in self.walk_menu(quillmark):
            if names and name == names[0]:
                break
            names.append(name)
        self.keyboard.press("Escape")
        until(lambda: quillmark.popup() is None, "the menu is closed")
        return names

    def _report_failure(self):
        outcome = self._outcome.result
        failed = any(test is self for test, _ in outcome.failures + outcome.errors)
        # Failures of this very test are recorded only after the clean-up in some versions.
        failed = failed or not self._outcome.success
        if not failed:
            return
        for program in self._started:
            print(f"--- {self.id()}: output of process {program.process}:\n{program.output()}",
                  file=sys.stderr)
            print(f"--- its windows: {program.windows()}", file=sys.stderr)
        if _options.pictures:
            os.makedirs(_options.pictures, exist_ok=True)
            name = f"{self.id().removeprefix('__main__.')}.{_options.window_manager}.png"
            self.desktop.picture().save(os.path.join(_options.pictures, name))
            print(f"--- a picture of the screen: {name}", file=sys.stderr)


def main():
    """Runs the tests of the calling file: FILE --program PATH --window-manager NAME [test …]."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, help="the built or installed program")
    parser.add_argument("--window-manager", default="openbox", choices=WINDOW_MANAGERS)
    parser.add_argument("--pictures", help="a folder for pictures of failures")
    options, others = parser.parse_known_args()
    _options.__dict__.update(vars(options))
    _options.program = os.path.abspath(options.program)
    if not Desktop.is_available(options.window_manager):
        print(f"{options.window_manager} is not installed.")
        sys.exit(_SKIPPED)
    unittest.main(module="__main__", argv=[sys.argv[0], *others], verbosity=2)
