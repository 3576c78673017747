# SPDX-License-Identifier: MIT
"""Folders as synchronising programs leave them: "check --repair" makes notes of what they hold."""

import fcntl
import os
import pty
import shutil
import stat
import unittest

from harness import CommandLineTest, DONE, FOLDER, IN_USE, USAGE, WRONG, main

UNANSWERED = 15
ONE = "00000000-0000-0000-0000-000000000001"
CONFLICT = ".sync-conflict-20250301-081530-ABCDEFG.md"


class TakingIn(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.note = self.data.add_note("one", 1)

    def conflict_copy(self, body="one, elsewhere"):
        copy = self.data.notes / (ONE + CONFLICT)
        copy.write_bytes(self.note.read_bytes().replace(b"one", body.encode()))
        return copy

    def originals(self):
        """The folders of what was taken out, oldest first."""
        return sorted((self.home / "state/Penwick").glob("taken-in-*"))

    def repair(self, *arguments, status=DONE):
        done = self.run_it("check", "--repair", *arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        return [line.split("\t") for line in done.stdout.decode().splitlines()]

    def test_a_refused_folder_loads_again_and_the_originals_are_kept(self):
        copy = self.conflict_copy()
        orphan = self.data.drafts / "00000000-0000-0000-0000-000000000009.md"
        orphan.write_text("a draft without its note")
        capture = self.data.drafts / ("capture" + CONFLICT)
        capture.write_text("another half")
        kept = {path.name: path.read_bytes() for path in (copy, orphan, capture)}
        self.refused(FOLDER, "list")

        lines = self.repair("--yes")

        self.assertEqual([line[0] for line in lines], ["note", "note", "note", "originals"])
        self.assertEqual(self.bodies(), sorted(["one", "one, elsewhere", "another half",
                                                "a draft without its note"]))
        folder, = self.originals()
        self.assertEqual(lines[-1][1], str(folder))
        self.assertEqual(stat.S_IMODE(folder.stat().st_mode), 0o700)
        self.assertEqual({path.name: path.read_bytes() for path in folder.rglob("*.md")}, kept)
        self.assertEqual(self.ok("check"), "")
        self.assertEqual(self.repair(), [])
        self.assertEqual(len(self.originals()), 1)

    def test_without_an_answer_nothing_changes(self):
        copy = self.conflict_copy()
        before = self.data.state()

        lines = self.repair(status=UNANSWERED)

        self.assertEqual([(line[0], line[1]) for line in lines], [("note", str(copy))])
        self.assertIn("Syncthing", lines[0][2])
        self.assertEqual(self.data.state(), before)
        self.assertEqual(self.originals(), [])

    def answered(self, answer):
        """What it printed on a terminal, and its status, when that was answered."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.execve(self.program, [self.program, "check", "--repair"], self.environment())
        printed = b""
        while b"[y/N]" not in printed:
            printed += os.read(terminal, 4096)
        os.write(terminal, answer + b"\n")
        try:
            while more := os.read(terminal, 4096):
                printed += more
        except OSError:
            pass
        os.close(terminal)
        return printed.decode(), os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])

    def test_a_terminal_is_asked(self):
        copy = self.conflict_copy()

        for answer in (b"n", b"", b"perhaps"):
            self.assertEqual(self.answered(answer)[1], UNANSWERED)
            self.assertTrue(copy.exists())
        printed, status = self.answered(b"y")

        self.assertEqual(status, DONE, printed)
        self.assertFalse(copy.exists())
        self.assertIn(str(self.originals()[0]), printed)
        self.assertEqual(self.bodies(), ["one", "one, elsewhere"])

    def test_two_computers_make_the_same_files(self):
        self.conflict_copy()
        (self.data.notes / "todo.md").write_text("to do")
        other = self.home / "other/Penwick"
        shutil.copytree(self.data.path, other)

        self.repair("--yes")
        done = self.run_it("check", "--repair", "--yes", env=self.environment(
            XDG_DATA_HOME=str(self.home / "other"), XDG_STATE_HOME=str(self.home / "elsewhere")))

        self.assertEqual(done.returncode, DONE)
        files = {path.relative_to(self.data.path): path.read_bytes()
                 for path in self.data.path.rglob("*") if path.is_file()}
        self.assertEqual(files, {path.relative_to(other): path.read_bytes()
                                 for path in other.rglob("*") if path.is_file()})

    def test_files_that_one_program_renamed_on_both_sides(self):
        text = self.note.read_bytes()
        (self.data.notes / f"{ONE}.md..path1").write_bytes(text.replace(b"one", b"here"))
        (self.data.notes / f"{ONE}.md..path2").write_bytes(text.replace(b"one", b"there"))
        self.note.unlink()

        lines = self.repair("--yes")

        self.assertEqual(sorted(line[0] for line in lines), ["note", "originals", "restored"])
        self.assertEqual(self.bodies(), ["here", "there"])
        self.assertTrue(self.note.exists())

    def test_a_recovery_copy_gives_what_only_it_has(self):
        copy = self.data.path / ".quillmark-recovery-11111111-1111-4111-8111-111111111111"
        shutil.copytree(self.data.markdown, copy)
        (copy / "Notes" / self.note.name).write_bytes(self.note.read_bytes() + b", changed")
        (copy / "Drafts" / "capture.md").write_text("half a thought")

        self.repair("--yes")

        self.assertEqual(self.bodies(), ["half a thought", "one", "one, changed"])
        self.assertEqual(self.hidden(), [])
        self.assertTrue((self.originals()[0] / copy.name / "Notes" / self.note.name).exists())

    @unittest.skipUnless(os.path.exists("/etc/machine-id"), "this computer has no name of its own")
    def test_a_recovery_copy_of_another_computer_is_told_apart(self):
        theirs = self.data.path / ".quillmark-recovery-11111111-1111-8111-8111-111111111111"
        unknown = self.data.path / ".quillmark-recovery-22222222-2222-4222-8222-222222222222"
        for copy in (theirs, unknown):
            shutil.copytree(self.data.markdown, copy)

        findings = [line.split("\t") for line in
                    self.run_it("check").stdout.decode().splitlines()]
        steps = self.repair("--yes")

        self.assertEqual([os.path.basename(path) for _, path, sentence in findings
                          if sentence == "Another computer made this recovery copy."], [theirs.name])
        self.assertEqual([os.path.basename(path) for _, path, sentence in steps
                          if "another computer" in sentence], [theirs.name])

    def test_what_a_running_program_has_is_not_touched(self):
        copy = self.conflict_copy()
        handle = os.open(self.data.path, os.O_RDONLY)
        self.addCleanup(os.close, handle)
        fcntl.flock(handle, fcntl.LOCK_EX)

        sentence = self.refused(IN_USE, "check", "--repair", "--yes")

        self.assertIn("Take in copies", sentence)
        self.assertTrue(copy.exists())

    def test_what_harms_nothing_stays(self):
        for name in (f"{ONE}.md~", f".{ONE}.md.swp", "picture.png"):
            (self.data.notes / name).write_text("x")
        before = self.data.state()

        self.assertEqual(self.repair("--yes"), [])

        self.assertEqual(self.data.state(), before)

    def test_a_folder_that_stays_refused_says_why(self):
        self.conflict_copy()
        (self.data.markdown / ".format").write_text("Quillmark Markdown 2\n")
        before = self.data.state()

        self.assertIn(".format", self.refused(FOLDER, "check", "--repair", "--yes"))

        self.assertEqual(self.data.state(), before)

    def test_no_notes_at_all(self):
        shutil.rmtree(self.data.path)

        self.assertEqual(self.repair("--yes"), [])

        self.assertFalse(self.data.path.exists())

    def test_how_it_is_called(self):
        self.refused(USAGE, "check", "--yes")
        self.refused(USAGE, "check", "--repair", "now")

    def test_every_file_that_refuses_the_folder_is_named(self):
        self.conflict_copy()
        (self.data.notes / "todo.md").write_text("to do")
        (self.data.notes / "folder.md").mkdir()
        (self.data.drafts / "what.md").write_text("what")

        done = self.run_it("check")

        self.assertEqual(done.returncode, WRONG)
        refused = {os.path.basename(line.split("\t")[1]): line.split("\t")[2]
                   for line in done.stdout.decode().splitlines() if line.startswith("refused\t")}
        self.assertEqual(sorted(refused), sorted([ONE + CONFLICT, "todo.md", "folder.md", "what.md"]))
        self.assertIn("name is not the identifier", refused[ONE + CONFLICT])
        self.assertIn("header", refused["todo.md"])
        self.assertIn("ordinary file", refused["folder.md"])
        self.assertIn("no draft", refused["what.md"])

    def test_a_program_that_shares_the_wrong_folder_is_warned_of(self):
        for path in (self.data.markdown / ".stfolder", self.data.notes / ".git"):
            path.mkdir()
        (self.data.markdown / "._sync_0a1b2c3d4e5f.db").write_text("x")
        (self.data.path / ".stfolder").mkdir()

        done = self.run_it("check")

        self.assertEqual(done.returncode, WRONG)
        marked = [line.split("\t")[1] for line in done.stdout.decode().splitlines()
                  if line.startswith("marker\t")]
        self.assertEqual({os.path.relpath(path, self.data.path) for path in marked},
                         {"Markdown/.stfolder", "Markdown/._sync_0a1b2c3d4e5f.db",
                          "Markdown/Notes/.git"})


if __name__ == "__main__":
    main()
