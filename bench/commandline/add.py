# SPDX-License-Identifier: MIT
"""Times `quillmark-notes add` beside `cp` of one file, in turns, at 100 and at 10,000 notes.

The syncs are timed apart, by the same calls on the same folders: a limit is on what is beside them.
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
    return notes


def timed(command, environment):
    """Milliseconds from start to end, and of processor time."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    began = time.perf_counter()
    subprocess.run(command, env=environment, check=True, stdout=subprocess.DEVNULL)
    wall = time.perf_counter() - began
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall * 1e3, (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) * 1e3


def syncs(notes):
    """Milliseconds that the syncs of one addition take."""
    data = notes.parents[1]
    folders = [data, notes.parent, notes, notes.parent / "Drafts"]
    total = 0.0

    def sync(path):
        nonlocal total
        descriptor = os.open(path, os.O_RDONLY)
        began = time.perf_counter()
        os.fsync(descriptor)
        total += time.perf_counter() - began
        os.close(descriptor)

    for folder in folders:
        sync(folder)
    stage = data / ".quillmark-stage-bench"
    stage.write_bytes(b"x" * 600)
    sync(stage)
    final = notes / "bench.txt"
    stage.rename(final)
    sync(notes)
    sync(data)
    final.unlink()
    return total * 1e3


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--runs", type=int, default=41)
    options = parser.parse_args()
    program = str(pathlib.Path(options.build).resolve() / "bin/quillmark-notes")
    processor, missed = {}, False
    with tempfile.TemporaryDirectory(dir=options.build) as name:
        for count in (100, 10_000):
            home = pathlib.Path(name) / str(count)
            notes = fill(home, count)
            environment = {"PATH": os.environ["PATH"], "HOME": name, "XDG_DATA_HOME": str(home),
                           "DBUS_SESSION_BUS_ADDRESS": "disabled:"}
            source = home / "one"
            source.write_bytes(b"x" * 600)
            os.sync()
            adds, copies, synced = [], [], []
            for _ in range(options.runs):
                adds.append(timed([program, "add", "A note."], environment))
                copies.append(timed(["cp", str(source), str(home / "copy")], environment))
                synced.append(syncs(notes))
            wall = statistics.median(add[0] for add in adds)
            sync = statistics.median(synced)
            processor[count] = statistics.median(add[1] for add in adds)
            print(f"{count:6} notes: add {wall:.1f} ms, of which syncs {sync:.1f} ms; "
                  f"cp {statistics.median(copy[0] for copy in copies):.1f} ms; processor time "
                  f"{processor[count]:.1f} and {statistics.median(c[1] for c in copies):.1f} ms")
            if wall - sync > LONGEST:
                print(f"That is more than {LONGEST:.0f} ms beside the syncs.")
                missed = True
    more = processor[10_000] - processor[100]
    print(f"At 10,000 notes {more:.1f} ms more processor time than at 100.")
    if more > MOST_MORE:
        print(f"That is more than {MOST_MORE:.0f} ms.")
        missed = True
    return int(missed)


if __name__ == "__main__":
    sys.exit(main())
