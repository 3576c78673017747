# SPDX-License-Identifier: MIT
"""Memory at rest that belongs to the program alone, beside a bare window.

Counted is the unique set size: Private_Clean + Private_Dirty of /proc/PID/smaps_rollup, that is,
every page in memory that no other process has mapped. Both programs run at the same time.

The kernel maps a page of a library for a process only where the process comes near it, so what is
shared depends on what else runs. The limit is for a desktop on which some other program uses the
same libraries: this one maps all of them. The figures without that are printed as well.
"""

import contextlib
import mmap
import pathlib
import time

from measuring import MANY, processes, run, until

RATIO_LIMIT = 1.4
MEBIBYTES_LIMIT_OF_MANY_NOTES = 25
SETTLED = 2.0
PAGE = mmap.PAGESIZE


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


@contextlib.contextmanager
def libraries_used_elsewhere(process):
    """Maps every page of the libraries that the process has loaded."""
    lines = pathlib.Path(f"/proc/{process}/maps").read_text().splitlines()
    libraries = {line.split(maxsplit=5)[5] for line in lines if ".so" in line}
    with contextlib.ExitStack() as mapped:
        for library in sorted(libraries):
            with open(library, "rb") as file:
                pages = mapped.enter_context(mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ))
            for at in range(0, len(pages), PAGE):
                pages[at]
        yield


def sizes(bench, home):
    """MiB of the bare window and of the program, with the libraries in use elsewhere; then of both
    by themselves."""
    bare = processes.spawn([bench.bare_window], bench.desktop.environment_for(home))
    until(lambda: bench.desktop.windows.of_process(bare.pid), "the bare window is there")
    quillmark = bench.start(home)
    quillmark.launcher()
    try:
        alone = settled([bare.pid, quillmark.process])
        with libraries_used_elsewhere(quillmark.process):
            shared = settled([bare.pid, quillmark.process])
        return [size / 1024 for size in shared + alone]
    finally:
        quillmark.stop()
        processes.stop(bare)


def measure(bench):
    print("Memory at rest that belongs to the program alone")
    bare, quillmark, bare_alone, quillmark_alone = sizes(bench, bench.home("empty"))
    bench.results.figure("bare window", bare, "MiB")
    bench.results.figure("Quillmark", quillmark, "MiB")
    bench.results.limit("ratio", quillmark / bare, RATIO_LIMIT)
    bench.results.figure("nothing else uses the libraries: bare window", bare_alone, "MiB")
    bench.results.figure("nothing else uses the libraries: Quillmark", quillmark_alone, "MiB")
    bench.results.figure("nothing else uses the libraries: ratio", quillmark_alone / bare_alone, "")

    _, with_many, _, _ = sizes(bench, bench.home("many", MANY))
    bench.results.figure(f"Quillmark with {MANY} notes", with_many, "MiB")
    bench.results.limit("more than without notes", with_many - quillmark,
                        MEBIBYTES_LIMIT_OF_MANY_NOTES, "MiB")


if __name__ == "__main__":
    run(measure)
