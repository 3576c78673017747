# SPDX-License-Identifier: MIT
"""A data folder that cannot be read is shown as such, and not one byte of it is changed."""

import os
import socket
import stat

from harness import DesktopTest, main, until
from harness.file_browser import FileBrowser

INVALID = "A Markdown file has invalid metadata. Original files were left untouched."
RECOVERY = ("A recovery copy needs attention. "
            "Original files were preserved in the data folder.")
NOT_SAVED = "Could not save. Your text is still in this window."
CHANGED = ("Notes changed outside Quillmark. "
           "Copy your pending text and reopen the app to reload the files.")
NAME = "11111111-2222-3333-4444-555555555555.md"


class DamagedFolder(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.browser = FileBrowser(cls.desktop)

    def setUp(self):
        super().setUp()
        self.data.create()
        self.data.add_note("a good note", number=1)

    def is_settled(self):
        """Whether a save has left nothing to be removed, and nothing open to others."""
        folders = [self.data.markdown, self.data.notes, self.data.drafts]
        return ([path.name for path in self.data.path.iterdir()] == ["Markdown"]
                and {path.name for path in self.data.markdown.iterdir()}
                == {".format", self.data.notes.name, self.data.drafts.name}
                and all(stat.S_IMODE(folder.stat().st_mode) == 0o700 for folder in folders))

    def expect_protected(self, message=None):
        """Starts, tries to write in every way, ends, and compares the folder."""
        before = self.data.state()
        quillmark = self.start()
        quillmark.open_editor()
        quillmark.element(name="Retry")
        quillmark.element(name="Not saved · Retry")
        texts = [line for text in quillmark.texts() for line in text.splitlines()]
        self.assertIn("Could not read your notes. Original files were protected.", texts)
        if message is not None:
            self.assertIn(message, texts)
        self.assertFalse(quillmark.element("text", "Note text").has("enabled"))
        self.assertFalse(quillmark.element(name="Save this thought").has("enabled"))

        self.keyboard.type("not to be written")
        self.keyboard.press("ctrl+Return")
        self.mouse.click(quillmark.element(name="Retry").centre())
        self.keyboard.press("Escape")
        quillmark.launcher()
        quillmark.stop()

        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.assertEqual(self.data.state(), before)
        return texts

    def expect_file_named(self, name):
        """The message says which file it is, so that a person can act on it."""
        texts = self.expect_protected()
        self.assertTrue(any(name in text for text in texts), f"{name} is not in {texts}")

    def show_file(self):
        """Starts, presses "Show file", and tells which file was shown."""
        before = len(self.browser.shown_items())
        quillmark = self.start("--show-editor")
        quillmark.editor()
        quillmark.element(name="Show file").press()
        until(lambda: len(self.browser.shown_items()) > before, "the file browser was asked")
        return self.browser.shown_items()[before:]

    def test_the_file_with_invalid_metadata_is_named_and_shown(self):
        (self.data.notes / NAME).write_bytes(b"no header here\n")
        texts = self.expect_protected(INVALID)
        self.assertIn(str(self.data.notes / NAME), texts)
        self.assertEqual(self.show_file(), [(self.data.notes / NAME).as_uri()])

    def test_the_recovery_copy_is_named_and_shown(self):
        copy = self.data.path / ".quillmark-recovery-1"
        copy.mkdir()
        texts = self.expect_protected(RECOVERY)
        self.assertIn(str(copy), texts)
        self.assertEqual(self.show_file(), [copy.as_uri()])

    def test_the_lock_of_an_editor_is_told_as_such(self):
        (self.data.notes / f".#{NAME}").symlink_to("me@here.4711:1")
        texts = self.expect_protected()
        self.assertTrue(any("is the lock of an editor" in text for text in texts), texts)

    def test_a_format_of_another_kind(self):
        (self.data.markdown / ".format").write_bytes(b"Something else 1\n")
        self.expect_protected(INVALID)

    def test_a_format_of_a_later_time(self):
        (self.data.markdown / ".format").write_bytes(b"Quillmark Markdown 2\n")
        self.expect_protected(INVALID)

    def test_a_format_that_is_missing(self):
        (self.data.markdown / ".format").unlink()
        self.expect_file_named(".format")

    def test_a_note_without_a_header(self):
        (self.data.notes / NAME).write_bytes(b"no header here\n")
        self.expect_protected(INVALID)

    def test_a_note_of_a_later_version(self):
        file = self.data.add_note("later", number=2)
        file.write_bytes(file.read_bytes().replace(b"quillmark: 1", b"quillmark: 2"))
        self.expect_protected(INVALID)

    def test_a_note_under_a_foreign_name(self):
        self.data.add_note("moved", number=2).rename(self.data.notes / NAME)
        self.expect_protected(INVALID)

    def test_a_note_that_is_not_utf8(self):
        file = self.data.add_note("bytes", number=2)
        file.write_bytes(file.read_bytes() + b"\xff\xfe")
        self.expect_file_named(file.name)

    def test_a_draft_of_no_note(self):
        (self.data.drafts / NAME).write_bytes(b"orphan")
        self.expect_protected(INVALID)

    def test_a_recovery_copy(self):
        (self.data.path / ".quillmark-recovery-8A0C").mkdir()
        self.expect_protected(RECOVERY)

    def test_older_notes_of_a_later_version(self):
        self.data.markdown.rename(self.data.path / "put aside")
        (self.data.path / "notes.json").write_text(
            '{"version": 2, "notes": [], "captureDraft": "", "editingDrafts": {}}')
        self.expect_protected("Unsupported note version: 2. Original files were left untouched.")

    def test_a_pipe_in_place_of_a_note(self):
        os.mkfifo(self.data.notes / NAME)
        self.expect_file_named(NAME)

    def test_a_folder_in_place_of_a_note(self):
        (self.data.notes / NAME).mkdir()
        self.expect_file_named(NAME)

    def test_a_link_in_place_of_a_note(self):
        (self.data.notes / NAME).symlink_to("/etc/hostname")
        self.expect_file_named(NAME)

    def test_a_link_to_nothing_in_place_of_a_note(self):
        (self.data.notes / NAME).symlink_to("nowhere")
        self.expect_file_named(NAME)

    def test_a_socket_in_place_of_a_note(self):
        # The path of a socket may be no longer than 107 bytes, so it is made from inside.
        with socket.socket(socket.AF_UNIX) as listener:
            here = os.getcwd()
            os.chdir(self.data.notes)
            try:
                listener.bind(NAME)
            finally:
                os.chdir(here)
            self.expect_file_named(NAME)

    def test_a_name_that_is_not_utf8(self):
        with open(os.fsencode(self.data.notes) + b"/\xff\xfe.md", "wb") as file:
            file.write(b"whose name is no text")
        self.expect_protected()

    def test_a_note_of_two_gigabytes(self):
        with open(self.data.notes / NAME, "wb") as file:
            file.truncate(2 << 30)
        self.expect_file_named(NAME)

    def test_a_change_by_another_program_stops_saving_and_keeps_the_text(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("mine")
        until(lambda: self.data.draft() == "mine", "the draft is on the disk")
        until(self.is_settled, "the save has cleaned up")
        self.data.add_note("theirs", number=2)
        before = self.data.state()

        self.keyboard.type(" and more")

        quillmark.element(name=NOT_SAVED + "\n" + CHANGED)
        self.keyboard.press("Escape")
        quillmark.element(name="Not saved · Retry")
        self.assertIsNotNone(quillmark.shows_editor())
        self.assertEqual(quillmark.element("text", "Note text").text(), "mine and more")
        self.assertEqual(self.data.state(), before)


if __name__ == "__main__":
    main()
