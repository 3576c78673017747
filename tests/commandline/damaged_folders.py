# SPDX-License-Identifier: MIT
"""Folders that are not as they should be: what "check" says of them, and that nobody changes them."""

import os
import shutil

from harness import CommandLineTest, DONE, FOLDER, RECOVERY, WRONG, main

ONE = "00000000-0000-0000-0000-000000000001"


class DamagedFolders(CommandLineTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.note = self.data.add_note("one", 1)

    def check(self, status=WRONG):
        """The findings, as (word, path below the data folder, sentence); nothing changes."""
        before = self.data.state()
        done = self.run_it("check")
        self.assertEqual((done.returncode, done.stderr), (status, b""), done.stdout)
        self.assertEqual(self.data.state(), before)
        findings = []
        for line in done.stdout.decode().splitlines():
            word, path, sentence = line.split("\t")
            findings.append((word, os.path.relpath(path, self.data.path), sentence))
        return findings

    def assert_refused(self, path, why, status=FOLDER):
        findings = self.check()
        self.assertIn(("refused", path, why), [(word, found, sentence if why == sentence else why)
                                               for word, found, sentence in findings
                                               if word == "refused" and why in sentence])
        # What is refused is nobody else's.
        self.assertNotIn(("other", path), [(word, found) for word, found, _ in findings])
        before = self.data.state()
        for command in (["list"], ["search", "one"], ["show", "0"], ["export", str(self.home / "x")]):
            sentence = self.refused(status, *command)
            self.assertIn(os.path.basename(path), sentence)
        self.assertEqual(self.data.state(), before)

    def test_nothing_wrong(self):
        self.assertEqual(self.check(DONE), [])

    def test_no_notes_at_all(self):
        shutil.rmtree(self.data.path)

        self.assertEqual(self.ok("check"), "")
        self.assertEqual(self.ok("list"), "")

        self.assertFalse(self.data.path.exists())

    def test_a_header_that_is_none(self):
        self.note.write_text("no header")

        self.assert_refused(f"Markdown/Notes/{ONE}.md", "header is not that of a note")

    def test_a_name_that_is_not_the_identifier(self):
        self.note.rename(self.data.notes / "mine.md")

        self.assert_refused("Markdown/Notes/mine.md", "name is not the identifier")

    def test_the_same_note_twice(self):
        other = self.data.add_note("one", 0xAB << 120)
        shutil.copy(other, self.data.notes / other.name.replace("AB", "ab"))

        findings = self.check()

        self.assertEqual([(word, sentence) for word, _, sentence in findings],
                         [("refused", "Another file is the same note.")])

    def test_a_draft_without_its_note(self):
        name = "00000000-0000-0000-0000-000000000009.md"
        (self.data.drafts / name).write_text("lost")

        self.assert_refused(f"Markdown/Drafts/{name}", "draft of a note that is not there")

    def test_more_text_than_can_be_held(self):
        for number in range(2, 7):
            os.truncate(self.data.add_note("much", number), 60 << 20)

        done = self.run_it("check")

        self.assertEqual((done.returncode, done.stderr), (WRONG, b""))
        word, path, sentence = done.stdout.decode().strip().split("\t")
        self.assertEqual((word, path), ("refused", str(self.data.markdown)))
        self.assertIn("256 MiB", sentence)

    def test_another_format(self):
        (self.data.markdown / ".format").write_text("Quillmark Markdown 2\n")

        self.assert_refused("Markdown/.format", "another format")
        self.assertIn(".format", self.refused(FOLDER, "add", "text"))
        self.assertEqual(len(self.data.note_files()), 1)

    def test_bytes_that_are_no_text_and_entries_that_are_no_files(self):
        for make, why in ((lambda path: path.write_bytes(b"\xff"), "UTF-8"),
                          (lambda path: path.mkdir(), "ordinary file"),
                          (os.mkfifo, "ordinary file")):
            path = self.data.notes / "00000000-0000-0000-0000-000000000002.md"
            with self.subTest(why=why):
                make(path)
                self.assert_refused(f"Markdown/Notes/{path.name}", why)
            shutil.rmtree(path) if path.is_dir() else path.unlink()

    def test_a_recovery_copy_is_named_and_compared(self):
        copy = self.data.path / ".quillmark-recovery-11111111-1111-4111-8111-111111111111"
        shutil.copytree(self.data.markdown, copy)
        self.data.add_note("two", 2)
        self.note.write_bytes(self.note.read_bytes() + b" changed")
        (copy / "Notes" / "00000000-0000-0000-0000-000000000003.md").write_bytes(b"three")

        findings = self.check()

        self.assertEqual(findings, [
            ("recovery", copy.name, "A copy of the folder “Markdown”."),
            ("difference", f"{copy.name}/Notes/{ONE}.md", "Different from that in the notes."),
            ("difference", f"{copy.name}/Notes/00000000-0000-0000-0000-000000000003.md",
             "Only in the copy."),
            ("difference", "Markdown/Notes/00000000-0000-0000-0000-000000000002.md",
             "Not in the copy.")])
        self.assertIn(copy.name, self.refused(RECOVERY, "add", "text"))
        self.assertIn(copy.name, self.refused(RECOVERY, "list"))
        self.assertEqual(len(self.data.note_files()), 2)

    def test_copies_of_one_file(self):
        recovery = self.data.path / ".quillmark-recovery-1"
        shutil.copy(self.note, recovery)
        (self.data.path / ".quillmark-stage-1").write_text("a draft")

        findings = self.check()

        self.assertEqual(findings, [
            ("recovery", recovery.name, "A copy of one note."),
            ("difference", f"Markdown/Notes/{ONE}.md", "The same as the copy."),
            ("stage", ".quillmark-stage-1", "A copy of a draft, most often “capture.md”."),
            ("difference", "Markdown/Drafts/capture.md", "Different from the copy.")])

    def test_a_stage_alone_is_nothing_wrong(self):
        stage = self.data.path / ".quillmark-stage-1"
        shutil.copytree(self.data.drafts, stage)

        self.assertEqual(self.check(DONE), [("stage", stage.name, "A copy of the folder “Drafts”.")])
        self.ok("add", "text")

    def test_what_lies_beside_the_notes(self):
        words = {
            ".~lock.note.md#": "lock", f".{ONE}.md.swp": "lock", f"{ONE}.md~": "backup",
            "note.bak": "backup", "#note.md#": "backup", f"{ONE}.md.~1~": "backup",
            f"{ONE}.sync-conflict-20250301-081530-ABCDEFG.txt": "conflict",
            f"{ONE} (conflicted copy 2025-03-01 081530).txt": "conflict",
            f"{ONE} (Anna's conflicted copy 2025-03-01).txt": "conflict",
            f"{ONE}_conflict-20250301-081530.txt": "conflict",
            f"{ONE}.txt.conflict1": "conflict", f"{ONE}.txt..path2": "conflict",
            "picture.png": "other"}
        for name in words:
            (self.data.notes / name).write_text("x")
        (self.data.notes / ".#note").symlink_to("anna@home.1:2")

        findings = {os.path.basename(path): word for word, path, _ in self.check()}

        self.assertEqual(findings, {**words, ".#note": "lock"})

    def test_a_conflict_copy_that_keeps_the_notes_from_loading(self):
        name = f"{ONE}.sync-conflict-20250301-081530-ABCDEFG.md"
        shutil.copy(self.note, self.data.notes / name)

        findings = self.check()

        self.assertEqual([(word, path) for word, path, _ in findings],
                         [("refused", f"Markdown/Notes/{name}"),
                          ("conflict", f"Markdown/Notes/{name}")])

    def test_an_editor_lock_that_keeps_the_notes_from_loading(self):
        lock = self.data.notes / f".#{ONE}.md"
        lock.symlink_to("anna@home.1:2")

        findings = self.check()

        self.assertEqual([(word, path) for word, path, _ in findings],
                         [("refused", f"Markdown/Notes/{lock.name}"),
                          ("lock", f"Markdown/Notes/{lock.name}")])
        self.assertIn("lock of an editor", findings[0][2])


if __name__ == "__main__":
    main()
