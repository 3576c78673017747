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
from .notes import DataFolder
from .quillmark import Quillmark

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

    def start(self, *arguments, **variables):
        """Starts the program and ends it with the test."""
        program = self.desktop.start_quillmark(self.program, self.home, *arguments, **variables)
        self._started.append(program)
        self.addCleanup(program.stop)
        return program

    def open_text_window(self, *arguments, **options):
        window = self.desktop.open_text_window(*arguments, **options)
        self.addCleanup(window.close)
        return window

    def write_settings(self, values):
        quillmark.write_settings(self.settings_file, values)

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
