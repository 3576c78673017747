#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The storage under faults.

Every check runs one operation of StorageDriver on a folder of its own and then looks at what is on
the disk. What must hold, whatever happened:

  - the live folder is exactly the old state or exactly the new one, or a recovery copy lies beside
    it and the next load says so;
  - "ok" means new, with no recovery copy beside it;
  - "failed" means old with nothing left beside it, or a recovery copy that the sentence speaks of;
  - the next save works, unless a recovery copy asks for attention.

A broken promise ends its regime; the others still run.
"""

import argparse
import os
import subprocess
import sys
import tempfile

from calls import every_call, order_of_syncs, poor_file_systems
from disks import can_mount, full_disks, power_cuts, read_only_disk, strange_disks
from editors import racing_editors
from hostile import hostile_folders
from storage import Broken, Faults

ERRORS = ["ENOSPC", "EIO", "EACCES", "EMFILE", "EDQUOT", "EROFS", "EINTR"]
SHORT_ERRORS = ["ENOSPC", "EIO", "EINTR"]
STOPS = 10_000_000


def simulation(faults, driver):
    """The same promises on a disk in memory, stopped far more often than a real one can be."""
    program = os.path.join(os.path.dirname(driver), "StorageSimulation")
    if subprocess.run([program, "--stops", str(STOPS), "--jobs", str(os.cpu_count())],
                      check=False).returncode != 0:
        raise Broken("the simulation found a stop that breaks a promise; it is shown above")
    faults.tried += STOPS


def regimes(faults, driver, short):
    """Names and what to run."""
    if not short:
        yield "simulation", lambda: simulation(faults, driver)
    errors = SHORT_ERRORS if short else ERRORS
    yield "order of syncs", lambda: order_of_syncs(faults)
    yield "errors", lambda: every_call(faults, "error", errors, 5 if short else 1)
    yield "lasting errors", lambda: every_call(faults, "error", errors[:2] if short else errors,
                                               9 if short else 1, lasting=True)
    yield "kills", lambda: every_call(faults, "signal", ["KILL"], 3 if short else 1)
    yield "poor file systems", lambda: poor_file_systems(faults, errors[1:2] if short else errors,
                                                         12 if short else 1)
    yield "hostile folders", lambda: hostile_folders(faults, 3 if short else 1)
    yield "racing editors", lambda: racing_editors(faults, 99 if short else 10_000)
    if not can_mount():
        print("full, read-only and strange disks and power cuts: left out, no mounting here")
        return
    yield "full disks", lambda: full_disks(faults)
    yield "read-only disk", lambda: read_only_disk(faults)
    if not short:
        yield "strange disks", lambda: strange_disks(faults, ["ENOSPC", "EIO"], 1)
    yield "power cuts", lambda: power_cuts(faults, ["ext4"] if short else ["ext4", "xfs", "btrfs"],
                                           6 if short else 1)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--driver", required=True, help="the StorageDriver program")
    parser.add_argument("--short", action="store_true", help="a part of it, for every run")
    parser.add_argument("regime", nargs="*", help="the names of those to run; all when none is given")
    arguments = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="quillmark-faults-") as scratch:
        driver = os.path.abspath(arguments.driver)
        faults = Faults(driver, scratch)
        broken = 0
        for name, regime in regimes(faults, driver, arguments.short):
            if arguments.regime and name not in arguments.regime:
                continue
            before = faults.tried
            try:
                regime()
                print(f"{name}: {faults.tried - before} faults, every promise held", flush=True)
            except Broken as failure:
                broken += 1
                print(f"{name}: BROKEN after {faults.tried - before} faults\n  {failure}", flush=True)
        print(f"{faults.tried} faults tried, {broken} regimes broken")
        sys.exit(1 if broken else 0)


if __name__ == "__main__":
    main()
