# SPDX-License-Identifier: MIT
"""Runs the command line in a home folder of its own, and knows what lies there."""

import argparse
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "desktop"))
# The package itself would ask for a display.
import importlib.util  # noqa: E402


def _load(name):
    file = pathlib.Path(__file__).resolve().parent.parent / f"desktop/harness/{name}.py"
    spec = importlib.util.spec_from_file_location(name, file)
    module = importlib.util.module_from_spec(spec)
    sys.modules[name] = module
    spec.loader.exec_module(module)
    return module


# The folder of notes as other means read it.
notes = _load("notes")
surroundings = _load("surroundings")

# What the manual page lists.
DONE, WRONG, USAGE, BLANK, NOT_UTF8, LIMITS, FOLDER, RECOVERY = range(8)
DISK_FULL, DISK, IN_USE, SILENT, UNKNOWN, AMBIGUOUS, FILE = range(8, 15)

_options = argparse.Namespace(program=None)


class CommandLineTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        self.data = notes.DataFolder(self.home / "data/Penwick")
        self.program = _options.program

    def environment(self, **variables):
        own = {"HOME": str(self.home), "LC_ALL": "C.UTF-8",
               "XDG_DATA_HOME": str(self.home / "data"), "XDG_STATE_HOME": str(self.home / "state"),
               "DBUS_SESSION_BUS_ADDRESS": "disabled:"}
        return {**surroundings.kept(), **own, **variables}

    def command(self, *arguments):
        return [self.program, *arguments]

    def run_it(self, *arguments, text=b"", **options):
        """What it ended with, printed and said, as bytes."""
        options.setdefault("env", self.environment())
        return subprocess.run(self.command(*arguments), input=text, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=120, check=False, **options)

    def ok(self, *arguments, **options):
        """What it printed, of a run in which nothing went wrong."""
        done = self.run_it(*arguments, **options)
        self.assertEqual((done.returncode, done.stderr), (DONE, b""))
        return done.stdout.decode()

    def refused(self, status, *arguments, **options):
        """The one sentence of a run that ends with that status and prints nothing."""
        done = self.run_it(*arguments, **options)
        self.assertEqual((done.returncode, done.stdout), (status, b""), done.stderr)
        sentence = done.stderr.decode()
        self.assertRegex(sentence, r"\Aquillmark-notes: .+\n\Z")
        return sentence

    def bodies(self):
        return sorted(note.body for note in self.data.read_notes())

    def hidden(self):
        return sorted(path.name for path in self.data.path.glob(".quillmark-*"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    options, others = parser.parse_known_args()
    _options.program = os.path.abspath(options.program)
    unittest.main(module="__main__", argv=[sys.argv[0], *others], verbosity=2)
