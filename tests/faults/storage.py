# SPDX-License-Identifier: MIT
"""A data folder, the operations of StorageDriver on it, and what must hold after each."""

import collections
import concurrent.futures
import contextlib
import json
import os
import re
import shutil
import subprocess
import tempfile
import threading

STAGE = b".quillmark-stage-"
RECOVERY = b".quillmark-recovery-"
RECOVERY_SENTENCE = "A recovery copy needs attention."
CALLS = ["openat", "read", "pread64", "write", "pwrite64", "close", "fstat", "newfstatat", "statx",
         "getdents64", "mkdir", "mkdirat", "linkat", "symlinkat", "readlinkat", "rename", "renameat",
         "renameat2", "unlinkat", "fsync", "fdatasync", "syncfs", "fchmod", "fchown", "ftruncate",
         "lseek", "utimensat", "flistxattr", "fgetxattr", "fsetxattr", "flock"]

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
    """Runs the driver under faults and judges what it leaves; counts the faults that were tried."""

    def __init__(self, driver, scratch):
        self.driver = driver
        self.scratch = scratch
        self.tried = 0
        self._lock = threading.Lock()

    def count(self):
        with self._lock:
            self.tried += 1

    @staticmethod
    def side_by_side(tasks):
        """Runs the tasks, as many at once as there are processors; the first that breaks ends it."""
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            running = [pool.submit(task) for task in tasks]
            try:
                for task in concurrent.futures.as_completed(running):
                    task.result()
            finally:
                for task in running:
                    task.cancel()

    # -- running ---------------------------------------------------------------------------------

    def run(self, operation, folder, *strace, **options):
        """With arguments for strace, the operation runs under it."""
        command = [self.driver, operation, folder]
        if strace:
            command = ["strace", "-f", "-qq", "-e", "signal=none", *strace] + command
        try:
            done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  check=False, timeout=120, **options)
        except subprocess.TimeoutExpired as hang:
            raise Broken(f"it does not end: {' '.join(map(str, command))}") from hang
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
        yield "draft", "draft", {}
        yield "drafts", "drafts", {}
        yield "migration", "load", {"filled": False, "legacy": True}

    def outcome(self, operation, setting, *always):
        """The states before and after the operation when nothing else fails, and its calls."""
        with self.folder(**setting) as folder:
            old = Disk(folder).live()
            trace = os.path.join(folder, os.pardir, os.path.basename(folder) + ".trace")
            result = self.run(operation, folder, "-y", "-o", trace, *always)
            if result.status != 0:
                raise Broken(f"{operation} fails without a fault: {result.text}")
            with open(trace, encoding="utf-8", errors="replace") as file:
                lines = file.read().splitlines()
            os.remove(trace)
            return old, Disk(folder).live(), lines

    @staticmethod
    def calls_of(lines):
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

    # -- judging ---------------------------------------------------------------------------------

    def judge(self, what, folder, operation, result, old, new, lasting=False):
        """What must hold after one operation. A lasting fault also keeps it from cleaning up."""
        disk = Disk(folder)
        live, stages, recoveries = disk.live(), disk.beside(STAGE), disk.beside(RECOVERY)

        def require(condition, sentence):
            if not condition:
                raise Broken(f"{what}: {sentence}\n  it said: {result.text.strip()!r}\n"
                             f"  beside the notes: {stages + recoveries}")

        killed = result.status not in (0, 1)
        whole = [state for state in (live, *map(tree, stages + recoveries)) if state in (old, new)]
        require(live in (old, new) or recoveries and whole,
                "the notes are neither the old ones nor the new")
        require(old is None or live in (old, new) or old in map(tree, recoveries),
                "the old notes are gone")
        for recovery in recoveries:
            require(tree(recovery) in (old, new) or live in (old, new),
                    "neither the notes nor the recovery copy are whole")
        if result.status == 0:
            require(live == new, '"ok" was said, but the notes are not the new ones')
            # A fault in the last clean-up may leave a stage: it blocks nothing and is in nobody's way.
            require(not recoveries, '"ok" was said, but a recovery copy was left behind')
        elif not killed:
            require(result.text.startswith("failed: ") and len(result.text) > 20, "no sentence")
            require(not stages or lasting, "a failed operation left its stage behind")
            if recoveries:
                require(RECOVERY_SENTENCE in result.text, "the recovery copy is not spoken of")
            else:
                # A load may have migrated older notes, and failed only then. A first save whose
                # fault lasts may have nothing to take it back with.
                may_be_new = operation == "load" or lasting and old is None
                require(live == old or may_be_new and live == new,
                        "failed, but the notes are not the old ones")

        again = self.run("load", folder)
        if recoveries:
            require(again.status == 1 and RECOVERY_SENTENCE in again.text,
                    f"the next load does not speak of the recovery copy: {again.text}")
        else:
            require(again.status == 0, f"the next load fails: {again.text}")
            following = self.run("save", folder)
            require(following.status == 0, f"the next save fails: {following.text}")
