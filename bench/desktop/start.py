# SPDX-License-Identifier: MIT
"""From exec to the painted bubble, beside a bare window of the same size and kind and, with notes,
the plain reading of every file."""

import subprocess

from measuring import MANY, median, run

RUNS = 21
RATIO_LIMIT = 1.5
RATIO_LIMIT_WITH_MANY_NOTES = 1.35


def times(bench, home):
    """Milliseconds until painted: of the bare window, and of the program."""
    environment = bench.desktop.environment_for(home)
    environment.pop("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", None)
    output = subprocess.run([bench.start_bench, str(RUNS), bench.bare_window, bench.quillmark],
                            env=environment, stdout=subprocess.PIPE, text=True, check=True).stdout
    rows = [line.split() for line in output.splitlines()]
    return [median([float(row[2]) for row in rows if row[0] == program]) for program in "01"]


def plain_reading(bench, home):
    """Milliseconds."""
    return float(subprocess.run([bench.plain_read, home / ".local/share/Penwick"],
                                stdout=subprocess.PIPE, text=True, check=True).stdout)


def measure(bench):
    for notes, limit in ((0, RATIO_LIMIT), (MANY, RATIO_LIMIT_WITH_MANY_NOTES)):
        print(f"Start to the painted bubble, {notes} notes, median of {RUNS}")
        home = bench.home(f"with {notes} notes", notes)
        bare, quillmark = times(bench, home)
        reading = plain_reading(bench, home) if notes else 0
        bench.results.figure("bare window", bare, "ms")
        if notes:
            bench.results.figure("listing and reading every file plainly", reading, "ms")
        bench.results.figure("Quillmark", quillmark, "ms")
        bench.results.limit("ratio", quillmark / (bare + reading), limit)


if __name__ == "__main__":
    run(measure)
