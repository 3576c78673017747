# SPDX-License-Identifier: MIT
"""Killed or refused at every call, an addition is whole or not there at all."""

import concurrent.futures
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile

from harness import CommandLineTest, DISK_FULL, DONE, FILE, main, notes

# What changes the disk, and what it is prepared with from the moment that the folder is opened.
CALLS = ["openat", "read", "write", "close", "fstat", "newfstatat", "statx", "getdents64", "mkdir",
         "mkdirat", "renameat", "renameat2", "unlinkat", "fsync", "syncfs", "fchmod", "flock",
         "lseek", "linkat"]


class Kills(CommandLineTest):
    def prepare(self, folder, filled):
        data = notes.DataFolder(folder / "Penwick")
        if filled:
            data.create()
            data.add_note("old", 1)
            data.capture.write_text("draft")
        return data

    def traced(self, folder, *options):
        return ["strace", "-f", "-qq", "-e", "signal=none", *options, *self.command("add", "new")]

    def environment_in(self, folder):
        return self.environment(XDG_DATA_HOME=str(folder))

    def calls(self, filled):
        """How often each call is made before the folder is opened, and in all."""
        with tempfile.TemporaryDirectory(dir=self.home) as name:
            folder = pathlib.Path(name)
            self.prepare(folder, filled)
            trace = folder / "trace"
            subprocess.run(self.traced(folder, "-o", str(trace)), env=self.environment_in(folder),
                           check=True, stdout=subprocess.DEVNULL)
            lines = trace.read_text(errors="replace").splitlines()
        begin = next(i for i, line in enumerate(lines) if str(folder) in line and "open" in line)
        def count(call, some):
            return sum(bool(re.search(rf"(^|\s){call}\(", line)) for line in some)
        return {call: (count(call, lines[:begin]), count(call, lines)) for call in CALLS}

    def every(self, filled, inject, judge):
        tried = 0
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            def one(call, when):
                folder = pathlib.Path(tempfile.mkdtemp(dir=self.home))
                data = self.prepare(folder, filled)
                done = subprocess.run(
                    self.traced(folder, "-e", f"inject={call}:{inject}:when={when}"),
                    env=self.environment_in(folder), stdout=subprocess.PIPE,
                    stderr=subprocess.PIPE, timeout=60, check=False)
                try:
                    judge(data, done)
                except AssertionError as broken:
                    raise AssertionError(f"{inject} at {call} number {when}: {broken}\n"
                                         f"{done.stderr.decode()}") from None
                shutil.rmtree(folder)
            running = [pool.submit(one, call, when)
                       for call, (before, all_of_them) in self.calls(filled).items()
                       for when in range(before + 1, all_of_them + 1)]
            for task in running:
                task.result()
                tried += 1
        self.assertGreater(tried, 15)

    def judge_state(self, data, done):
        bodies = sorted(note.body for note in data.read_notes())
        old = ["old"] if data.draft() == "draft" else []
        self.assertIn(bodies, (old, sorted([*old, "new"])))
        # The path is printed only once the note is there.
        if done.stdout:
            self.assertIn("new", bodies)
            self.assertTrue(os.path.exists(done.stdout.decode().rstrip("\n")))
        if done.returncode == DONE and done.stdout:
            self.assertIn("new", bodies)
        return bodies

    def judge_next(self, data):
        """Nothing is left that keeps the next one from being saved."""
        self.assertEqual([path for path in data.path.glob(".quillmark-recovery-*")], [])
        again = subprocess.run(self.command("add", "again"), stdout=subprocess.PIPE,
                               env=self.environment_in(data.path.parent), check=False)
        self.assertEqual(again.returncode, DONE)
        listed = subprocess.run(self.command("list"), stdout=subprocess.PIPE,
                                env=self.environment_in(data.path.parent), check=False)
        self.assertEqual(listed.returncode, DONE)
        self.assertIn(b"again", listed.stdout)

    def test_killed_at_every_call_it_is_old_or_new(self):
        def judge(data, done):
            self.judge_state(data, done)
            self.judge_next(data)
        for filled in (True, False):
            with self.subTest(filled=filled):
                self.every(filled, "signal=KILL", judge)

    def test_refused_at_every_call_it_says_so_and_is_old_or_new(self):
        for error in ("ENOSPC", "EIO"):
            def judge(data, done, error=error):
                bodies = self.judge_state(data, done)
                if done.returncode in (DONE, FILE):
                    # Saved, whether the path could be printed or not.
                    self.assertIn("new", bodies)
                else:
                    self.assertNotIn("new", bodies)
                    self.assertIn(b"quillmark-notes: ", done.stderr)
                    self.assertEqual(list(data.path.glob(".quillmark-*")), [])
            with self.subTest(error=error):
                self.every(True, f"error={error}", judge)

    def test_a_full_disk_has_a_status_of_its_own(self):
        data = self.prepare(self.home / "full", True)

        done = subprocess.run(self.traced(self.home, "-e", "inject=fsync:error=ENOSPC"),
                              env=self.environment_in(self.home / "full"),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)

        self.assertEqual((done.returncode, done.stdout), (DISK_FULL, b""))
        self.assertIn(b"disk is full", done.stderr)
        self.assertEqual([note.body for note in data.read_notes()], ["old"])

    def test_an_interrupt_during_the_save_lets_it_end(self):
        self.data.create()

        done = subprocess.run(self.traced(self.home, "-e", "inject=fsync:signal=INT:when=1"),
                              env=self.environment(), stdout=subprocess.PIPE, check=False)

        self.assertEqual(done.returncode, -signal.SIGINT)
        self.assertEqual(self.bodies(), ["new"])
        self.assertTrue(os.path.exists(done.stdout.decode().rstrip("\n")))
        self.assertEqual(self.hidden(), [])


class KillsWhileCopiesAreTakenIn(CommandLineTest):
    """Killed at every call and done again, the notes are those of an undisturbed run."""

    # What changes the disk, or stands between two calls that do.
    CALLS = ["openat", "write", "close", "mkdirat", "renameat", "renameat2", "unlinkat", "fsync"]
    BODIES = ["half a thought", "one", "one, before", "one, elsewhere"]

    def prepare(self, folder):
        data = notes.DataFolder(folder / "Penwick")
        data.create()
        note = data.add_note("one", 1)
        copy = data.path / ".quillmark-recovery-11111111-1111-4111-8111-111111111111"
        shutil.copytree(data.markdown, copy)
        (copy / "Notes" / note.name).write_bytes(note.read_bytes() + b", before")
        note.with_name(note.stem + ".sync-conflict-20250301-081530-ABCDEFG.md").write_bytes(
            note.read_bytes() + b", elsewhere")
        (data.drafts / "00000000-0000-0000-0000-000000000009.md").write_text("half a thought")
        return data

    def repair(self, folder, *tracer):
        return subprocess.run([*tracer, *self.command("check", "--repair", "--yes")],
                              env=self.environment(XDG_DATA_HOME=str(folder),
                                                   XDG_STATE_HOME=str(folder / "state")),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60,
                              check=False)

    def tracer(self, *options):
        return ["strace", "-f", "-qq", "-e", "signal=none", *options]

    def points(self):
        """Each call from the moment that the folder is opened, and which one of its kind it is."""
        with tempfile.TemporaryDirectory(dir=self.home) as name:
            folder = pathlib.Path(name)
            self.prepare(folder)
            trace = folder / "trace"
            self.assertEqual(self.repair(folder, *self.tracer("-o", str(trace))).returncode, DONE)
            lines = trace.read_text(errors="replace").splitlines()
        begin = next(i for i, line in enumerate(lines) if "mkdir" in line and str(folder) in line
                     or "taken-in-" in line)
        counts = dict.fromkeys(self.CALLS, 0)
        for i, line in enumerate(lines):
            call = next((call for call in self.CALLS if re.search(rf"(^|\s){call}\(", line)), None)
            if call:
                counts[call] += 1
                if i >= begin:
                    yield call, counts[call]

    def judge(self, call, when):
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.home))
        data = self.prepare(folder)
        texts = {path.read_bytes() for path in data.path.rglob("*.md")}
        self.repair(folder, *self.tracer("-e", f"inject={call}:signal=KILL:when={when}"))
        again = self.repair(folder)
        place = f"killed at {call} number {when}: {again.stderr.decode()}"
        self.assertEqual(again.returncode, DONE, place)
        self.assertEqual(sorted(note.body for note in data.read_notes()), self.BODIES, place)
        self.assertEqual(list(data.path.glob(".quillmark-recovery-*")), [], place)
        kept = {path.read_bytes() for path in folder.rglob("*.md")}
        self.assertEqual(texts - kept, set(), place)
        shutil.rmtree(folder)

    def test_it_ends_the_same(self):
        points = list(self.points())
        self.assertGreater(len(points), 40)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for done in [pool.submit(self.judge, *point) for point in points]:
                done.result()


if __name__ == "__main__":
    main()
