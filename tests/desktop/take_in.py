# SPDX-License-Identifier: MIT
"""Copies keep a folder from being read: the window says what would become of them, and takes them in."""

import shutil

from harness import DesktopTest, main, until

CONFLICT = ".sync-conflict-20250301-081530-ABCDEFG.md"


class TakingIn(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.note = self.data.add_note("the first note", number=1)

    def conflict_copy(self):
        copy = self.note.with_name(self.note.stem + CONFLICT)
        copy.write_bytes(self.note.read_bytes() + b", elsewhere")
        return copy

    def originals(self):
        state = self.home / ".local/state/Penwick"
        return [path.name for folder in state.glob("taken-in-*") for path in folder.rglob("*.md")]

    def ask(self, quillmark):
        quillmark.open_editor()
        self.mouse.click(quillmark.element(name="Take in copies…").centre())
        return quillmark.element(name="Take in copies?")

    def test_a_conflict_copy_becomes_a_note_without_a_restart(self):
        copy = self.conflict_copy()
        quillmark = self.start()
        self.ask(quillmark)
        self.assertTrue(any("Syncthing" in text for text in quillmark.texts()), quillmark.texts())
        self.assertTrue(copy.exists())

        self.mouse.click(quillmark.element(name="Take in").centre())

        quillmark.element(name="2 notes")
        self.assertFalse(copy.exists())
        self.assertEqual(self.originals(), [copy.name])
        self.assertFalse(quillmark.has_element(name="Take in copies…"))
        until(lambda: quillmark.element("text", "Note text").has("focused"),
              "the text has the keyboard")
        self.keyboard.type("at last")
        until(lambda: self.data.draft() == "at last", "it is saved")

    def test_copies_that_are_no_notes_by_their_names_are_told_of(self):
        quillmark = self.start()
        quillmark.launcher()
        for side, text in (("1", b", here"), ("2", b", there")):
            copy = self.note.with_name(f"{self.note.name}..path{side}")
            copy.write_bytes(self.note.read_bytes() + text)
        self.note.unlink()
        self.ask(quillmark)
        self.assertTrue(any("rclone" in text for text in quillmark.texts()), quillmark.texts())

        self.mouse.click(quillmark.element(name="Take in").centre())

        quillmark.element(name="2 notes")
        self.assertFalse(quillmark.has_element(name="Take in copies…"))
        self.assertEqual(sorted(path.read_bytes().rsplit(b", ")[-1] for path in
                                self.data.notes.glob("*.md")), [b"here", b"there"])

    def test_cancel_changes_nothing(self):
        self.conflict_copy()
        before = self.data.state()
        quillmark = self.start()
        self.ask(quillmark)

        self.keyboard.press("Escape")

        until(lambda: not quillmark.has_element(name="Take in copies?"), "the question is gone")
        self.assertTrue(quillmark.shows_editor())
        self.assertEqual(self.data.state(), before)

    def test_a_recovery_copy_is_taken_in(self):
        copy = self.data.path / ".quillmark-recovery-11111111-1111-4111-8111-111111111111"
        shutil.copytree(self.data.markdown, copy)
        (copy / "Notes" / self.note.name).write_bytes(self.note.read_bytes() + b", before")
        quillmark = self.start()
        self.ask(quillmark)

        self.keyboard.press("Tab")
        self.keyboard.press("Return")

        quillmark.element(name="2 notes")
        self.assertFalse(copy.exists())

    def test_a_copy_that_comes_while_something_is_typed(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("mine")
        until(lambda: self.data.draft() == "mine", "the draft is on the disk")
        self.conflict_copy()
        self.keyboard.type(" and more")
        self.mouse.click(quillmark.element(name="Reload").centre())
        self.mouse.click(quillmark.element(name="Take in copies…").centre())
        quillmark.element(name="Take in copies?")

        self.mouse.click(quillmark.element(name="Take in").centre())

        until(lambda: self.data.draft() == "mine and more", "what was typed is saved")
        quillmark.element(name="2 notes")
        self.assertEqual(quillmark.element("text", "Note text").text(), "mine and more")


if __name__ == "__main__":
    main()
