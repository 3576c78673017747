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
"""

import argparse
import collections
import contextlib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

STAGE = b".quillmark-stage-"
RECOVERY = b".quillmark-recovery-"
RECOVERY_SENTENCE = "A recovery copy needs attention."
ERRORS = ["ENOSPC", "EIO", "EACCES", "EMFILE", "EDQUOT", "EROFS", "EINTR"]
SHORT_ERRORS = ["ENOSPC", "EIO", "EINTR"]
CALLS = ["openat", "read", "pread64", "write", "pwrite64", "close", "fstat", "newfstatat", "statx",
         "getdents64", "mkdir", "mkdirat", "linkat", "symlinkat", "readlinkat", "rename", "renameat",
         "renameat2", "unlinkat", "fsync", "fdatasync", "syncfs", "fchmod", "ftruncate", "lseek"]
# A close that fails has closed; an interrupted one must not be tried again.
HARMLESS = {("close", "EINTR")}

Result = collections.namedtuple("Result", "status text")


class Broken(Exception):
    """A promise that did not hold."""


def tree(folder):
    """Every file below the folder, by its path as bytes, with its content."""
    found = {}
    for base, _, names in os.walk(os.fsencode(folder)):
        for name in names:
            path = os.path.join(base, name)
            if os.path.islink(path):
                found[path] = b"-> " + os.readlink(path)
            elif os.path.isfile(path):
                with open(path, "rb") as file:
                    found[path] = file.read()
            else:
                found[path] = b"special"
    prefix = os.fsencode(folder)
    return {path[len(prefix):]: content for path, content in found.items()}


class Disk:
    """A data folder and what is beside the notes in it."""

    def __init__(self, folder):
        self.folder = folder

    def live(self):
        path = os.path.join(self.folder, "Markdown")
        return tree(path) if os.path.isdir(path) else None

    def beside(self, prefix):
        if not os.path.isdir(self.folder):
            return []
        return [os.path.join(os.fsencode(self.folder), name)
                for name in os.listdir(os.fsencode(self.folder)) if name.startswith(prefix)]


class Faults:
    def __init__(self, driver, scratch):
        self.driver = driver
        self.scratch = scratch
        self.tried = 0

    # -- running ---------------------------------------------------------------------------------

    def run(self, operation, folder, *strace):
        command = [self.driver, operation, folder]
        if strace:
            command = ["strace", "-f", "-qq", "-e", "signal=none", *strace] + command
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
                              timeout=120)
        return Result(done.returncode, done.stdout.decode(errors="replace"))

    @contextlib.contextmanager
    def folder(self, filled=True, legacy=False):
        folder = tempfile.mkdtemp(dir=self.scratch)
        try:
            if filled:
                result = self.run("fill", folder)
                if result.status != 0:
                    raise Broken(f"the folder could not be filled: {result.text}")
                with open(os.path.join(folder, "Markdown", "Notes", "cover.jpg"), "wb") as file:
                    file.write(b"\xff\xd8 of another program")
            if legacy:
                self.write_legacy(folder)
            yield folder
        finally:
            shutil.rmtree(folder, ignore_errors=True)

    @staticmethod
    def write_legacy(folder):
        notes = [{"id": f"00000000-0000-4000-8000-{i:012}", "body": f"old {i}",
                  "createdAt": 7e8 + i, "updatedAt": 7e8 + i} for i in range(1, 4)]
        snapshot = {"version": 1, "notes": notes, "captureDraft": "kept", "editingDrafts": {}}
        with open(os.path.join(folder, "notes.json"), "w", encoding="utf-8") as file:
            json.dump(snapshot, file)

    def scenarios(self):
        """Name, operation, and how its folder is made."""
        yield "load", "load", {}
        yield "first save", "save", {"filled": False}
        yield "save", "save", {}
        yield "delete", "delete", {}
        yield "migration", "load", {"filled": False, "legacy": True}

    def outcome(self, operation, setting):
        """The states before and after the operation when nothing fails, and its calls in order."""
        with self.folder(**setting) as folder:
            old = Disk(folder).live()
            trace = os.path.join(self.scratch, "trace")
            result = self.run(operation, folder, "-y", "-o", trace)
            if result.status != 0:
                raise Broken(f"{operation} fails without a fault: {result.text}")
            with open(trace, encoding="utf-8", errors="replace") as file:
                lines = file.read().splitlines()
            os.remove(trace)
            return old, Disk(folder).live(), lines

    # -- judging ---------------------------------------------------------------------------------

    def judge(self, what, folder, operation, result, old, new):
        disk = Disk(folder)
        live, stages, recoveries = disk.live(), disk.beside(STAGE), disk.beside(RECOVERY)

        def require(condition, sentence):
            if not condition:
                raise Broken(f"{what}: {sentence}\n  it said: {result.text.strip()!r}\n"
                             f"  beside the notes: {stages + recoveries}")

        killed = result.status not in (0, 1)
        require(live in (old, new) or recoveries, "the notes are neither the old ones nor the new")
        for recovery in recoveries:
            require(tree(recovery) in (old, new) or live in (old, new),
                    "neither the notes nor the recovery copy are whole")
        if result.status == 0:
            require(live == new, '"ok" was said, but the notes are not the new ones')
            # A fault in the last clean-up may leave a stage: it blocks nothing and is in nobody's way.
            require(not recoveries, '"ok" was said, but a recovery copy was left behind')
        elif not killed:
            require(result.text.startswith("failed: ") and len(result.text) > 20, "no sentence")
            require(not stages, "a failed operation left its stage behind")
            if recoveries:
                require(RECOVERY_SENTENCE in result.text, "the recovery copy is not spoken of")
            else:
                require(live == old or operation == "load" and live in (old, new),
                        "failed, but the notes are not the old ones")

        again = self.run("load", folder)
        if recoveries:
            require(again.status == 1 and RECOVERY_SENTENCE in again.text,
                    f"the next load does not speak of the recovery copy: {again.text}")
        else:
            require(again.status == 0, f"the next load fails: {again.text}")
            following = self.run("save", folder)
            require(following.status == 0, f"the next save fails: {following.text}")

    # -- regimes ---------------------------------------------------------------------------------

    def calls_of(self, lines):
        """How often each call occurs before and after the operation begins, in one trace."""
        before, after = collections.Counter(), collections.Counter()
        counting = before
        for line in lines:
            call = re.match(r"(?:\d+ +)?(\w+)\(", line)
            if not call:
                continue
            if "/storage-driver-begins" in line:
                counting = after
            counting[call.group(1)] += 1
        return before, after

    def every_call(self, fault, names, every=1):
        """The fault at each call of the operation in turn, one call a run."""
        for name, operation, setting in self.scenarios():
            old, new, lines = self.outcome(operation, setting)
            before, after = self.calls_of(lines)
            for call in CALLS:
                for error in names:
                    if (call, error) in HARMLESS:
                        continue
                    for k in range(1, after[call] + 1, every):
                        when = before[call] + k
                        with self.folder(**setting) as folder:
                            result = self.run(operation, folder, "-o", "/dev/null", "-e",
                                              f"inject={call}:{fault}={error}:when={when}")
                            self.tried += 1
                            self.judge(f"{name}, {error} at {call} number {k}", folder, operation,
                                       result, old, new)

    def order_of_syncs(self):
        """Each new file and folder is synced before it is published, the parent before "ok"."""
        for name, operation, setting in self.scenarios():
            if operation == "load" and not setting.get("legacy"):
                continue
            _, _, lines = self.outcome(operation, setting)
            self.tried += 1
            check_order(name, lines)


def path_of(descriptor):
    found = re.search(r"<([^>]*)>", descriptor)
    return found.group(1) if found else ""


def check_order(name, lines):
    """Reads one trace made with paths of descriptors (strace -y)."""
    unsynced = set()
    published_unsynced_parent = None
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
        elif call in ("fsync", "fdatasync"):
            unsynced.discard(path_of(arguments))
            if published and path_of(arguments) == published_unsynced_parent:
                published_unsynced_parent = None
        elif call == "syncfs":
            unsynced.clear()
        elif call in ("rename", "renameat", "renameat2"):
            parts = re.findall(r"(?:\d+|AT_FDCWD)<([^>]*)>, \"([^\"]*)\"", arguments)
            source, target = [os.path.join(*part) for part in parts[:2]]
            if os.path.basename(target) == "Markdown":
                stage = {path for path in unsynced if "/.quillmark-" in path}
                if stage:
                    raise Broken(f"{name}: published before it was synced: {sorted(stage)}")
                published, published_unsynced_parent = True, os.path.dirname(target)
            elif source in unsynced:
                raise Broken(f"{name}: renamed before it was synced: {source}")
        elif call == "write" and '"ok' in arguments and published_unsynced_parent:
            raise Broken(f'{name}: "ok" was said before the parent folder was synced')
    if not published:
        raise Broken(f"{name}: nothing was published, so the checker saw nothing")


# -- real disks ----------------------------------------------------------------------------------

class Mount:
    """A file system of its own, for as long as the block runs; needs root."""

    def __init__(self, scratch, kind, *options, size="64M"):
        self.image = tempfile.mktemp(dir=scratch, suffix=".img")
        self.point = tempfile.mkdtemp(dir=scratch)
        self.kind, self.options, self.size = kind, options, size

    def __enter__(self):
        if self.kind == "tmpfs":
            command = ["mount", "-t", "tmpfs", "-o", ",".join(self.options), "tmpfs", self.point]
        else:
            subprocess.run(["truncate", "-s", self.size, self.image], check=True)
            subprocess.run([f"mkfs.{self.kind}", "-q", self.image], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            command = ["mount", "-o", "loop", self.image, self.point]
        subprocess.run(command, check=True)
        return self

    def __exit__(self, *_):
        subprocess.run(["umount", "-l", self.point], check=False)
        shutil.rmtree(self.point, ignore_errors=True)
        with contextlib.suppress(FileNotFoundError):
            os.remove(self.image)


def can_mount():
    return os.geteuid() == 0 and subprocess.run(
        ["unshare", "--mount", "true"], check=False, stderr=subprocess.DEVNULL).returncode == 0


def full_disks(faults):
    """No space and no inodes left: old, nothing left over; and the save works once there is room."""
    for what, option in (("no space", "size=160k"), ("no inodes", "nr_inodes=64")):
        with Mount(faults.scratch, "tmpfs", option) as disk:
            folder = os.path.join(disk.point, "data")
            if faults.run("fill", folder).status != 0:
                raise Broken(f"{what}: the disk is too small for the test itself")
            old = Disk(folder).live()
            ballast = []
            with contextlib.suppress(OSError):
                while True:
                    name = os.path.join(disk.point, f"ballast-{len(ballast)}")
                    ballast.append(name)
                    with open(name, "wb") as file:
                        file.write(b"x" * (1024 if what == "no space" else 0))
            result = faults.run("save", folder)
            faults.tried += 1
            if result.status != 1 or Disk(folder).live() != old or Disk(folder).beside(STAGE):
                raise Broken(f"{what}: {result}")
            for name in ballast:
                with contextlib.suppress(FileNotFoundError):
                    os.remove(name)
            if faults.run("save", folder).status != 0:
                raise Broken(f"{what}: the save fails although there is room again")


def read_only_disk(faults):
    with Mount(faults.scratch, "ext4") as disk:
        folder = os.path.join(disk.point, "data")
        faults.run("fill", folder)
        old = Disk(folder).live()
        subprocess.run(["mount", "-o", "remount,ro", disk.point], check=True)
        result = faults.run("save", folder)
        faults.tried += 1
        if result.status != 1 or Disk(folder).live() != old or Disk(folder).beside(STAGE):
            raise Broken(f"read-only disk: {result}")


def poor_file_systems(faults):
    """Without hard links, and without the exchange of folders: slower, but the same promise."""
    for what, call, error in (("no hard links", "linkat", "EPERM"),
                              ("links across devices", "linkat", "EXDEV"),
                              ("no exchange", "renameat2", "EINVAL"),
                              ("no renameat2", "renameat2", "ENOSYS")):
        old, new, _ = faults.outcome("save", {})
        with faults.folder() as folder:
            result = faults.run("save", folder, "-o", "/dev/null", "-e",
                                f"inject={call}:error={error}")
            faults.tried += 1
            if result.status != 0:
                raise Broken(f"{what}: {result}")
            faults.judge(what, folder, "save", result, old, new)


def power_cuts(faults, kinds, every):
    """The image of the disk, copied at a kill at each publishing call, mounted and loaded."""
    for kind in kinds:
        if shutil.which(f"mkfs.{kind}") is None:
            print(f"power cut on {kind}: left out, mkfs.{kind} is missing")
            continue
        size = {"xfs": "320M", "btrfs": "128M"}.get(kind, "32M")
        with Mount(faults.scratch, kind, size=size) as disk:
            folder = os.path.join(disk.point, "data")
            faults.run("fill", folder)
            os.sync()
            old = Disk(folder).live()
            trace = os.path.join(faults.scratch, "trace")
            pristine = disk.image + ".pristine"
            subprocess.run(["cp", "--sparse=always", disk.image, pristine], check=True)
            faults.run("save", folder, "-y", "-o", trace)
            new = Disk(folder).live()
            with open(trace, encoding="utf-8", errors="replace") as file:
                before, after = faults.calls_of(file.read().splitlines())
        for call in ("fsync", "syncfs", "renameat2", "renameat", "linkat", "unlinkat", "write"):
            for k in range(1, after[call] + 1, every):
                power_cut_at(faults, kind, pristine, call, before[call] + k, old, new)
        power_cut_at(faults, kind, pristine, None, 0, old, new)
        os.remove(pristine)


def power_cut_at(faults, kind, pristine, call, when, old, new):
    image = tempfile.mktemp(dir=faults.scratch, suffix=".img")
    copy = image + ".cut"
    point = tempfile.mkdtemp(dir=faults.scratch)
    subprocess.run(["cp", "--sparse=always", pristine, image], check=True)
    try:
        subprocess.run(["mount", "-o", "loop", image, point], check=True)
        folder = os.path.join(point, "data")
        inject = ["-o", "/dev/null", "-e", f"inject={call}:signal=KILL:when={when}"] if call else []
        result = faults.run("save", folder, *inject)
        # What the disk holds now, without anything that is still in memory only.
        subprocess.run(["cp", "--sparse=always", image, copy], check=True)
        subprocess.run(["umount", "-l", point], check=True)
        subprocess.run(["mount", "-o", "loop", copy, point], check=True)
        faults.tried += 1
        disk = Disk(folder)
        live, recoveries = disk.live(), disk.beside(RECOVERY)
        what = f"power cut on {kind} at {call} number {when}"
        if result.status == 0 and (live != new or recoveries):
            raise Broken(f"{what}: saved, but it is not there")
        if live not in (old, new) and not any(tree(r) in (old, new) for r in recoveries):
            raise Broken(f"{what}: neither old nor new: {sorted(live or {})}")
        again = faults.run("load", folder)
        if recoveries:
            if RECOVERY_SENTENCE not in again.text:
                raise Broken(f"{what}: the recovery copy is not spoken of: {again}")
        elif again.status != 0:
            raise Broken(f"{what}: the next load fails: {again}")
    finally:
        subprocess.run(["umount", "-l", point], check=False)
        os.rmdir(point)
        for path in (image, copy):
            with contextlib.suppress(FileNotFoundError):
                os.remove(path)


# -- editors -------------------------------------------------------------------------------------

def racing_editors(faults, rounds):
    """Another program writes one note at the same moment as a save, by rename and in place: its text
    is live afterwards, or the save has said that the notes changed outside."""
    lost = []
    for way in ("rename", "in place"):
        with faults.folder() as folder:
            path = os.path.join(folder, "Markdown", "Notes",
                                "00000000-0000-4000-8000-000000000003.md")
            with open(path, "rb") as file:
                header = file.read().split(b"\n---\n")[0] + b"\n---\n"
            for i in range(rounds // 2):
                text = header + b"written outside %d" % i
                results = []
                saver = threading.Thread(target=lambda: results.append(faults.run("save", folder)))
                saver.start()
                # Another moment of the save in each round.
                time.sleep((i % 80) / 4000)
                write_outside(path, text, way)
                saver.join()
                faults.tried += 1
                with open(path, "rb") as file:
                    is_live = file.read() == text
                if not is_live and results[0].status == 0:
                    lost.append(f"{way}, round {i}")
    if lost:
        raise Broken(f"{len(lost)} texts of editors were overwritten unseen: {lost[:5]}")


def write_outside(path, text, way):
    with contextlib.suppress(FileNotFoundError):
        if way == "rename":
            temporary = path + "~"
            with open(temporary, "wb") as file:
                file.write(text)
            os.rename(temporary, path)
        else:
            with open(path, "r+b") as file:
                file.write(text)
                file.truncate()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--driver", required=True, help="the StorageDriver program")
    parser.add_argument("--short", action="store_true", help="a part of it, for every run")
    arguments = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="quillmark-faults-") as scratch:
        faults = Faults(os.path.abspath(arguments.driver), scratch)
        short = arguments.short
        regimes = [
            ("order of syncs", faults.order_of_syncs),
            ("errors", lambda: faults.every_call("error", SHORT_ERRORS if short else ERRORS,
                                                 5 if short else 1)),
            ("kills", lambda: faults.every_call("signal", ["KILL"], 3 if short else 1)),
            ("poor file systems", lambda: poor_file_systems(faults)),
            ("racing editors", lambda: racing_editors(faults, 100 if short else 10_000)),
        ]
        if can_mount():
            regimes += [
                ("full disks", lambda: full_disks(faults)),
                ("read-only disk", lambda: read_only_disk(faults)),
                ("power cuts", lambda: power_cuts(
                    faults, ["ext4"] if short else ["ext4", "xfs", "btrfs"], 6 if short else 1)),
            ]
        else:
            print("full disks, read-only disk, power cuts: left out, mounting is not allowed here")
        broken = 0
        for name, regime in regimes:
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
