# SPDX-License-Identifier: MIT
"""Which folder is to be shared: how soon notes come to the other computer when Syncthing is given
the data folder, or one inside it.

    sharing.py --program PATH [--short]

Each round imports two notes, which exchanges the folder Markdown, then adds one, which is one new
file, and then puts one there as an editor of another make does. Syncthing hears of all this from the
system alone; it never looks through the folder by itself here.
"""

import argparse
import contextlib
import os
import pathlib
import statistics
import sys
import tempfile
import time

import syncthing
from computer import Computer
from texts import Texts

_SKIPPED = 77
_ROUNDS = 5
_CHANGES = ("import", "add", "another program")
_PATIENCE = 15.0


def _arrival(receiver, count):
    """The seconds until so many notes are there; None when they do not come."""
    began = time.monotonic()
    while time.monotonic() - began < _PATIENCE:
        if len(receiver.data.note_files()) == count:
            return time.monotonic() - began
        time.sleep(0.02)
    return None


def _try(program, folder, shared, changes):
    """The seconds of each arrival, with what it was."""
    texts = Texts()
    computers = [Computer(name, program, folder / name, texts) for name in "AB"]
    computers[0].add()
    paths = [computer.data.path / shared for computer in computers]
    for path in paths:
        path.mkdir(parents=True, exist_ok=True)
        (path / ".stignore").write_text("/.quillmark-*\n/Markdown/Drafts\n/Drafts\n")
    syncers = [syncthing.Syncthing(folder / f"syncthing-{computer.name}", path)
               for computer, path in zip(computers, paths)]
    arrivals = []
    with contextlib.ExitStack() as exits:
        for one, two in (syncers, reversed(syncers)):
            one.share_with(two)
        for syncer in syncers:
            exits.callback(syncer.stop)
            syncer.start()
        syncthing.until_settled(*syncers)
        count = 1
        for _ in range(_ROUNDS):
            for kind in changes:
                count += 2 if kind == "import" else 1
                if kind == "import":
                    files = [folder / "one.txt", folder / "two.txt"]
                    for file in files:
                        file.write_text(texts.new("i", "A"))
                    assert computers[0].command("import", *map(str, files))[0] == 0
                elif kind == "add":
                    computers[0].add()
                else:
                    computers[0].data.add_note(texts.new("o", "A"))
                arrivals.append((kind, _arrival(computers[1], count)))
        for syncer in syncers:
            assert syncer.connections_elsewhere() == []
    return arrivals


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, help="the built or installed program")
    parser.add_argument("--short", action="store_true",
                        help="only what has to come, and the folder that is to be shared")
    options = parser.parse_args()
    if not syncthing.is_installed():
        print("syncthing is not installed.")
        sys.exit(_SKIPPED)
    print(syncthing.version())
    failed = False
    changes = _CHANGES[:2] if options.short else _CHANGES
    for shared in (".",) if options.short else (".", "Markdown", "Markdown/Notes"):
        with tempfile.TemporaryDirectory(prefix="sync-") as folder:
            arrivals = _try(os.path.abspath(options.program), pathlib.Path(folder), shared, changes)
        print(f"shared: Penwick/{shared}".removesuffix("/."))
        for kind in changes:
            took = [seconds for one, seconds in arrivals if one == kind]
            came = [seconds for seconds in took if seconds is not None]
            median = f", median {statistics.median(came):.1f} s" if came else ""
            print(f"    {kind}: {len(came)} of {len(took)} came within {_PATIENCE:g} s{median}",
                  flush=True)
            if shared == "." and kind != "another program" and len(came) < len(took):
                failed = True
    sys.exit(failed)


if __name__ == "__main__":
    main()
