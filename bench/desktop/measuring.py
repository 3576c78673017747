# SPDX-License-Identifier: MIT
"""What the measurements of the whole program have in common."""

import argparse
import pathlib
import statistics
import sys
import tempfile

ROOT = pathlib.Path(__file__).parents[2]
sys.path.insert(0, str(ROOT / "tests/desktop"))

from harness import Desktop, processes, until  # noqa: E402
from harness.notes import DataFolder  # noqa: E402

MANY = 10_000
NOTE = "A thought of five hundred bytes, as people write them. ".ljust(499, "x") + "\n"


class Results:
    """Prints figures as they come, and remembers whether each was within its limit."""

    def __init__(self):
        self.missed = []

    def figure(self, what, value, unit):
        print(f"  {what:<58}{value:>10.2f} {unit}", flush=True)

    def limit(self, what, value, limit, unit=""):
        kept = value <= limit
        verdict = "kept" if kept else "MISSED"
        print(f"  {what:<58}{value:>10.2f} {unit:<4} limit {limit:g}: {verdict}", flush=True)
        if not kept:
            self.missed.append(what)

    def exit_status(self):
        return 1 if self.missed else 0


class Bench:
    """A desktop as users have it: without the assistive interface that tests switch on."""

    def __init__(self, desktop, build, folder):
        self.desktop = desktop
        self.build = build
        self.folder = folder
        self.quillmark = str(build / "bin/quillmark")
        self.bare_window = str(build / "bin/BareWindow")
        self.plain_read = str(build / "bin/PlainRead")
        self.start_bench = str(build / "bin/StartBench")
        self.results = Results()

    def home(self, name, notes=0):
        """A home folder whose program has run once, with this many notes."""
        home = self.folder / name
        if not home.exists():
            home.mkdir()
            if notes:
                data = DataFolder(home / ".local/share/Penwick")
                data.create()
                for number in range(notes):
                    data.add_note(NOTE, number=number + 1)
            program = self.start(home)
            program.launcher()
            program.stop()
        return home

    def start(self, home, **environment):
        return self.desktop.start_quillmark(
            self.quillmark, home, **{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": None} | environment)


def run(measure, window_manager="openbox"):
    """Calls measure(bench) on a fresh desktop and ends with its verdict."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/release")
    parser.add_argument("--window-manager", default=window_manager)
    options = parser.parse_args()
    # On the disk of the build, not in a folder that may live in memory.
    with (Desktop(options.window_manager) as desktop,
          tempfile.TemporaryDirectory(dir=options.build.resolve()) as folder):
        del desktop.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"]
        bench = Bench(desktop, options.build.resolve(), pathlib.Path(folder))
        measure(bench)
    sys.exit(bench.results.exit_status())


median = statistics.median
__all__ = ["MANY", "Bench", "median", "processes", "run", "until"]
