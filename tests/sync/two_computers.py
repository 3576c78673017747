# SPDX-License-Identifier: MIT
"""Two computers whose notes an engine keeps equal: nothing that was written is lost, whatever
happens at once, and both end with the same notes.

    two_computers.py --program PATH [--engine NAME] [--captures COUNT] [--seed NUMBER]

The same seed does the same things on the same sides. When they happen beside each other is left to
the computers, so that a failure may need several runs to be seen again. What was done is printed
with it.
"""

import argparse
import contextlib
import os
import pathlib
import random
import sys
import tempfile
import time

import exchanges
import syncthing
from computer import Computer
from life import Life
from pair import SyncthingPair
from places import Desktop
from texts import Texts

_SKIPPED = 77

_ENGINES = {"syncthing": SyncthingPair, "git": exchanges.GitPair, "rclone": exchanges.RclonePair}


def _options():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, help="the built or installed program")
    parser.add_argument("--engine", choices=_ENGINES, default="syncthing")
    parser.add_argument("--captures", type=int, default=200)
    parser.add_argument("--seed", type=int, default=time.time_ns() % 1_000_000)
    parser.add_argument("--without", nargs="*", default=[], metavar="ACT",
                        help="what is not done, such as “edit”")
    parser.add_argument("--no-windows", action="store_true", help="the command line alone")
    parser.add_argument("--shared-drafts", action="store_true", help="what is not recommended")
    parser.add_argument("--only", nargs="*", metavar="ACT", help="what alone is done")
    parser.add_argument("--verbose", action="store_true", help="tell what is done as it is done")
    return parser.parse_args()


def _tell(line):
    print(f"{time.monotonic():.1f} {line}", flush=True)


def _live(options, exits):
    folder = pathlib.Path(exits.enter_context(tempfile.TemporaryDirectory(prefix="sync-")))
    texts = Texts()
    computers = []
    for name in "AB":
        desktop = None
        if not options.no_windows:
            desktop = exits.enter_context(Desktop("openbox"))
            # Before any program starts, so that each tells from its start what it should.
            desktop.assistive.listen().close()
        computers.append(Computer(name, os.path.abspath(options.program), folder / name, texts,
                                  desktop))
    # Some engines refuse to begin with nothing.
    computers[0].add()
    if options.shared_drafts:
        engine = SyncthingPair(folder, computers, ignored="/.quillmark-*\n")
    else:
        engine = _ENGINES[options.engine](folder, computers)
    exits.callback(engine.close)
    engine.start()
    life = Life(computers, engine, random.Random(options.seed), windows=not options.no_windows,
                without=options.without, only=options.only, tell=_tell if options.verbose else None)
    try:
        life.live(options.captures)
        life.settle()
        _judge(life, computers, texts)
    except BaseException:
        print("\n".join(life.log[-60:]))
        for computer in computers:
            print(f"--- {computer.name}:", *computer.report(), sep="\n")
        raise


def _judge(life, computers, texts):
    one, two = computers
    found = [*one.notes().values(), *one.drafts(), *two.drafts()]
    missing = texts.missing(found)
    assert one.files() == two.files(), "the folders are not equal"
    assert not missing, f"lost: {missing}"
    conflicts = one.conflicts | two.conflicts
    for act, count in sorted(life.counts.items()):
        print(f"{count:5} {act}")
    print(f"{len(conflicts):5} conflict copies\n{one.repairs + two.repairs:5} repairs\n"
          f"{len(one.notes()):5} notes on both, in which all {len(texts)} texts are that must be")


def main():
    options = _options()
    if not exchanges.is_installed(options.engine):
        print(f"{options.engine} is not installed.")
        sys.exit(_SKIPPED)
    about = syncthing.version() if options.engine == "syncthing" else options.engine
    print(f"{about}, {options.captures} captures, --seed {options.seed}", flush=True)
    with contextlib.ExitStack() as exits:
        _live(options, exits)


if __name__ == "__main__":
    main()
