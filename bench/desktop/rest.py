# SPDX-License-Identifier: MIT
"""What the bubble does while nobody touches it: nothing.

Counted over all threads: how often one of them gave up or lost the processor, and the clock ticks
of processor time. At rest every thread sleeps, so neither changes.
"""

import os
import pathlib
import time

from measuring import run

SECONDS = 30
# Qt looks through its cache of pictures once, half a minute after the last one was drawn.
SETTLED = 35.0
DEADLINE = 120.0


def activity(process):
    """Each thread's switches, and the ticks of the whole process."""
    switches = {}
    for task in pathlib.Path(f"/proc/{process}/task").iterdir():
        lines = (task / "status").read_text().splitlines()
        switches[task.name] = sum(int(line.split()[1]) for line in lines
                                  if "ctxt_switches" in line)
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
    return switches, int(fields[11]) + int(fields[12])


def wait_until_settled(process):
    """Until nothing has happened for a while: starting is not rest yet."""
    end = time.monotonic() + DEADLINE
    last, since = activity(process), time.monotonic()
    while time.monotonic() - since < SETTLED:
        if time.monotonic() > end:
            raise AssertionError(f"the program is still busy after {DEADLINE:g} s")
        time.sleep(0.1)
        now = activity(process)
        if now != last:
            last, since = now, time.monotonic()


def measure(bench):
    print(f"{SECONDS} seconds at rest")
    quillmark = bench.start(bench.home("empty"))
    quillmark.launcher()
    wait_until_settled(quillmark.process)

    switches_before, ticks_before = activity(quillmark.process)
    time.sleep(SECONDS)
    switches, ticks = activity(quillmark.process)
    quillmark.stop()

    wakeups = sum(count - switches_before.get(task, 0) for task, count in switches.items())
    bench.results.figure("threads", len(switches), "")
    bench.results.limit("wake-ups", wakeups, 0)
    bench.results.limit("threads that ended", len(switches_before.keys() - switches.keys()), 0)
    bench.results.limit("processor time",
                        1000 * (ticks - ticks_before) / os.sysconf("SC_CLK_TCK"), 0, "ms")


if __name__ == "__main__":
    run(measure)
