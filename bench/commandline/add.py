# SPDX-License-Identifier: MIT
"""Times `quillmark-notes add` beside `cp` of one file, in turns, at 100 and at 10,000 notes.

On a disk, and in memory, where a sync takes no time: the limits are on what is beside the syncs.
"""

import argparse
import os
import pathlib
import resource
import statistics
import subprocess
import sys
import tempfile
import time
import uuid

LONGEST = 15.0  # milliseconds from start to end, beside the syncs
MOST_MORE = 2.0  # milliseconds of processor time at 10,000 notes beyond that at 100
MEMORY = "/dev/shm"


def fill(home, count):
    notes = home / "Penwick/Markdown/Notes"
    notes.mkdir(parents=True)
    drafts = home / "Penwick/Markdown/Drafts"
    drafts.mkdir()
    (home / "Penwick/Markdown/.format").write_bytes(b"Quillmark Markdown 1\n")
    (drafts / "capture.md").touch()
    for folder in (home / "Penwick", home / "Penwick/Markdown", notes, drafts):
        folder.chmod(0o700)
    for _ in range(count):
        name = str(uuid.uuid4()).upper()
        (notes / f"{name}.md").write_text(
            f"---\nquillmark: 1\nid: {name}\ncreated: 2025-03-01T08:15:30.250Z\n"
            f"updated: 2025-03-01T08:15:30.250Z\n---\n" + "A note. " * 60)


def timed(command, environment):
    """Milliseconds from start to end, and of processor time."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    began = time.perf_counter()
    subprocess.run(command, env=environment, check=True, stdout=subprocess.DEVNULL)
    wall = time.perf_counter() - began
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall * 1e3, (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) * 1e3


def measure(program, home, runs):
    """Medians: the addition's two times, and those of the copy."""
    environment = {"PATH": os.environ["PATH"], "HOME": str(home), "XDG_DATA_HOME": str(home),
                   "DBUS_SESSION_BUS_ADDRESS": "disabled:"}
    source = home / "one"
    source.write_bytes(b"x" * 600)
    os.sync()
    adds, copies = [], []
    for _ in range(runs):
        adds.append(timed([program, "add", "A note."], environment))
        copies.append(timed(["cp", str(source), str(home / "copy")], environment))
    return [statistics.median(column) for column in (*zip(*adds), *zip(*copies))]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--runs", type=int, default=41)
    options = parser.parse_args()
    program = str(pathlib.Path(options.build).resolve() / "bin/quillmark-notes")
    missed = False
    for place, what in ((options.build, "on a disk"), (MEMORY, "in memory")):
        processor = []
        for count in (100, 10_000):
            with tempfile.TemporaryDirectory(dir=place) as name:
                fill(pathlib.Path(name), count)
                wall, used, copied, copy_used = measure(program, pathlib.Path(name), options.runs)
            processor.append(used)
            print(f"{what}, {count:6} notes: add {wall:.1f} ms, cp {copied:.1f} ms; "
                  f"processor time {used:.1f} and {copy_used:.1f} ms")
            if place == MEMORY and wall > LONGEST:
                print(f"That is more than {LONGEST:.0f} ms.")
                missed = True
        more = processor[1] - processor[0]
        print(f"{what}, at 10,000 notes {more:.1f} ms more processor time than at 100")
        if more > MOST_MORE:
            print(f"That is more than {MOST_MORE:.0f} ms.")
            missed = True
    return int(missed)


if __name__ == "__main__":
    sys.exit(main())
