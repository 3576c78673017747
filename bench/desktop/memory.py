# SPDX-License-Identifier: MIT
"""Memory at rest that no other process shares, beside a bare window.

Counted is the unique set size: Private_Clean + Private_Dirty of /proc/PID/smaps_rollup. Both
programs run at the same time, so that what both have loaded counts as shared for both; what only
one of them uses of a library counts for that one.
"""

import pathlib
import time

from measuring import MANY, processes, run, until

RATIO_LIMIT = 1.4
MEBIBYTES_LIMIT_OF_MANY_NOTES = 25
SETTLED = 3.0


def unique_kibibytes(process):
    lines = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text().splitlines()
    return sum(int(line.split()[1]) for line in lines if line.startswith("Private_"))


def settled(numbers):
    """What each holds once none of them has changed for a while."""
    last, since = None, time.monotonic()
    while time.monotonic() - since < SETTLED:
        now = [unique_kibibytes(process) for process in numbers]
        if now != last:
            last, since = now, time.monotonic()
        time.sleep(0.1)
    return last


def sizes(bench, home):
    """KiB of the bare window and of the program."""
    bare = processes.spawn([bench.bare_window], bench.desktop.environment_for(home))
    until(lambda: bench.desktop.windows.of_process(bare.pid), "the bare window is there")
    quillmark = bench.start(home)
    quillmark.launcher()
    try:
        return settled([bare.pid, quillmark.process])
    finally:
        quillmark.stop()
        processes.stop(bare)


def measure(bench):
    print("Memory at rest that is not shared, both programs running")
    bare, quillmark = sizes(bench, bench.home("empty"))
    bench.results.figure("bare window", bare / 1024, "MiB")
    bench.results.figure("Quillmark", quillmark / 1024, "MiB")
    bench.results.limit("ratio", quillmark / bare, RATIO_LIMIT)

    _, with_many = sizes(bench, bench.home("many", MANY))
    bench.results.figure(f"Quillmark with {MANY} notes", with_many / 1024, "MiB")
    bench.results.limit("more than without notes", (with_many - quillmark) / 1024,
                        MEBIBYTES_LIMIT_OF_MANY_NOTES, "MiB")


if __name__ == "__main__":
    run(measure)
