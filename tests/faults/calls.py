# SPDX-License-Identifier: MIT
"""Every system call of an operation made to fail, or to be the last, in turn; and their order."""

import os
import re

from storage import CALLS, Broken

# A close that fails has closed; an interrupted one must not be tried again.
HARMLESS = {("close", "EINTR")}

# What some file systems and kernels lack: no hard links at all, none to other parts of the disk, no
# exchange of two folders, no flags of renames.
POOR = [("no hard links", "inject=linkat:error=EPERM"),
        ("links across devices", "inject=linkat:error=EXDEV"),
        ("links against a policy", "inject=linkat:error=EACCES"),
        ("no exchange", "inject=renameat2:error=EINVAL"),
        ("no renameat2", "inject=renameat2:error=ENOSYS"),
        ("renameat2 against a policy", "inject=renameat2:error=EPERM")]


def every_call(faults, fault, names, every=1, lasting=False, always=(), only=None, without=()):
    """The fault at each call of each operation in turn, one call a run; from there on for good, when
    it is a lasting one. What always holds besides are arguments of strace."""
    tasks = []
    for name, operation, setting in faults.scenarios():
        if only and name not in only:
            continue
        old, new, lines = faults.outcome(operation, setting, *always)
        before, after = faults.calls_of(lines)
        for call in CALLS:
            if call in without or any(f"inject={call}:" in argument for argument in always):
                continue
            for error in names:
                if (call, error) in HARMLESS:
                    continue
                for k in range(1, after[call] + 1, every):
                    when = f"{before[call] + k}{'+' if lasting else ''}"
                    what = f"{name}, {error} at {call} number {k}{' and later' if lasting else ''}"
                    inject = f"inject={call}:{fault}={error}:when={when}"
                    tasks.append(lambda operation=operation, setting=setting, what=what, old=old,
                                 new=new, inject=inject: one_call(
                                     faults, operation, setting, what, old, new, lasting,
                                     [*always, "-e", inject]))
    faults.side_by_side(tasks)


def one_call(faults, operation, setting, what, old, new, lasting, strace):
    with faults.folder(**setting) as folder:
        result = faults.run(operation, folder, "-o", "/dev/null", *strace)
        faults.count()
        faults.judge(f"{what} ({' '.join(strace)})", folder, operation, result, old, new, lasting)


def poor_file_systems(faults, names, every):
    """Without hard links, and without the exchange of folders: slower, but the same promise, also
    when a call fails there."""
    for what, injection in POOR:
        old, new, _ = faults.outcome("save", {})
        with faults.folder() as folder:
            result = faults.run("save", folder, "-o", "/dev/null", "-e", injection)
            faults.count()
            if result.status != 0:
                raise Broken(f"{what}: {result}")
            faults.judge(what, folder, "save", result, old, new)
        for fault, errors in (("error", names), ("signal", ["KILL"])):
            every_call(faults, fault, errors, every, always=["-e", injection], only=["save"])


def order_of_syncs(faults):
    """Each new file and folder is synced before it is published, the parent before "ok"."""
    for name, operation, setting in faults.scenarios():
        if operation == "load" and not setting.get("legacy"):
            continue
        for always in ((), ("-e", POOR[0][1]), ("-e", POOR[2][1])):
            _, _, lines = faults.outcome(operation, setting, *always)
            faults.count()
            check_order(" ".join((name, *always)), lines)


def path_of(descriptor):
    found = re.search(r"<([^>]*)>", descriptor)
    return found.group(1) if found else ""


def check_order(name, lines):
    """Reads one trace made with paths of descriptors (strace -y)."""
    unsynced = set()
    published_unsynced = set()
    started = published = False
    for line in lines:
        line = re.sub(r"^\d+ +", "", line)
        if "/storage-driver-begins" in line:
            started = True
        if not started or re.search(r"= -1 E", line):
            continue
        call = line.split("(", 1)[0]
        arguments = line.split("(", 1)[1] if "(" in line else ""
        if call == "openat" and "O_CREAT" in arguments:
            opened = re.search(r"= \d+<([^>]*)>", line)
            if opened and opened.group(1).startswith("/"):
                unsynced.add(opened.group(1))
        elif call in ("mkdirat", "linkat"):
            parts = re.findall(r"(?:\d+|AT_FDCWD)<([^>]*)>, \"([^\"]*)\"", arguments)
            if parts:
                folder = os.path.join(*parts[-1])
                unsynced.add(folder if call == "mkdirat" else os.path.dirname(folder))
        elif call == "unlinkat":
            parts = re.findall(r"(?:\d+|AT_FDCWD)<([^>]*)>, \"([^\"]*)\"", arguments)
            unsynced.discard(os.path.join(*parts[-1]))
        elif call in ("fsync", "fdatasync"):
            unsynced.discard(path_of(arguments))
            published_unsynced.discard(path_of(arguments))
        elif call == "syncfs":
            unsynced.clear()
        elif call in ("rename", "renameat", "renameat2"):
            parts = re.findall(r"(?:\d+|AT_FDCWD)<([^>]*)>, \"([^\"]*)\"", arguments)
            source, target = [os.path.join(*part) for part in parts[:2]]
            if "/Markdown" in target or "/Markdown" in source:
                stage = {path for path in unsynced if "/.quillmark-" in path}
                if stage:
                    raise Broken(f"{name}: published before it was synced: {sorted(stage)}")
                published = True
                published_unsynced |= {os.path.dirname(source), os.path.dirname(target)}
            elif source in unsynced:
                raise Broken(f"{name}: renamed before it was synced: {source}")
        elif call == "writev" and '"ok' in arguments and published_unsynced:
            raise Broken(f'{name}: "ok" was said before these were synced: '
                         f'{sorted(published_unsynced)}')
    if not published:
        raise Broken(f"{name}: nothing was published, so the checker saw nothing")


