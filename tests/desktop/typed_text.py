# SPDX-License-Identifier: MIT
"""What was typed outlives every end of the program, whatever the state of the notes."""

import os
import shutil
import signal
import time

from harness import DesktopTest, main, until

MANY = "a thought that must not be lost. " * 30


class TypedText(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.data.add_note("milk", number=1)
        self.state = self.home / ".local/state/Penwick"

    def journals(self):
        return list(self.state.glob("typed-*[!~]")) if self.state.is_dir() else []

    def type_a_draft(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("one")
        until(lambda: self.data.draft() == "one", "the first draft is on the disk")
        until(lambda: not self.journals(), "nothing else is kept")
        return quillmark

    def change_a_note_outside(self):
        path = self.data.note_files()[0]
        path.write_text(path.read_text(encoding="utf-8") + " and bread", encoding="utf-8")

    def type_what_cannot_be_saved(self):
        quillmark = self.type_a_draft()
        self.change_a_note_outside()
        self.keyboard.type(MANY)
        quillmark.element(name="Not saved · Retry")
        return quillmark

    def expect_shown(self, text):
        again = self.start()
        again.open_editor()
        self.assertEqual(again.element("text", "Note text").text(), text)
        return again

    def expect_saved(self, text):
        until(lambda: self.data.draft() == text, "it is saved by itself")
        until(lambda: not self.journals(), "what is saved is not kept")

    def test_a_kill_after_an_outside_change_loses_nothing(self):
        quillmark = self.type_what_cannot_be_saved()
        quillmark.kill()
        self.assertEqual(self.data.draft(), "one")

        self.expect_shown("one" + MANY)

        self.expect_saved("one" + MANY)

    def end_by(self, number):
        quillmark = self.type_what_cannot_be_saved()

        quillmark.send(number)

        self.assertEqual(quillmark.wait_until_ended(), 1)
        (journal,) = self.journals()
        self.assertIn(f"“{journal}”", quillmark.output())
        self.assertIn("Notes changed outside Quillmark.", quillmark.output())
        self.expect_shown("one" + MANY)
        self.expect_saved("one" + MANY)

    def test_an_end_by_the_system_says_where_it_is_kept(self):
        self.end_by(signal.SIGTERM)

    def test_an_end_from_the_terminal_says_where_it_is_kept(self):
        self.end_by(signal.SIGINT)

    def test_an_end_of_the_terminal_says_where_it_is_kept(self):
        self.end_by(signal.SIGHUP)

    def test_a_lost_display_loses_nothing(self):
        quillmark = self.type_what_cannot_be_saved()
        window = quillmark.editor()
        window.disconnect()
        quillmark.wait_until_ended()

        self.expect_shown("one" + MANY)

    def test_it_outlives_the_whole_data_folder(self):
        quillmark = self.type_a_draft()
        shutil.rmtree(self.data.path)
        self.keyboard.type(" two")
        until(self.journals, "it is kept")
        until(lambda: quillmark.has_element(name="Not saved · Retry") or self.data.path.exists(),
              "a save was tried")
        quillmark.kill()

        self.expect_shown("one two")

    def test_it_stands_above_what_another_program_wrote(self):
        quillmark = self.type_a_draft()
        (self.data.path / "Markdown/Drafts/capture.md").write_text("theirs", encoding="utf-8")
        self.keyboard.type(" two")
        quillmark.element(name="Not saved · Retry")
        quillmark.kill()

        again = self.expect_shown("one two\n\ntheirs")
        again.kill()
        again = self.expect_shown("one two\n\ntheirs")

        self.expect_saved("one two\n\ntheirs")

    def test_a_few_letters_outlive_a_kill_soon_after(self):
        quillmark = self.type_a_draft()
        started = time.monotonic()
        self.keyboard.type(" tw")
        until(self.journals, "it is kept")
        # The delayed save would come later than this.
        kept_after = time.monotonic() - started
        quillmark.kill()

        self.assertLess(kept_after, 5)
        self.expect_shown("one tw")

    def test_one_that_cannot_be_read_is_named_and_left(self):
        quillmark = self.type_what_cannot_be_saved()
        quillmark.kill()
        (journal,) = self.journals()
        journal.unlink()
        journal.mkdir()

        again = self.expect_shown("one")

        told = "\n".join(again.texts())
        self.assertIn("What was typed last could not be read. It was left as it is.", told)
        self.assertIn(f"“{journal}” is not an ordinary file.", told)
        self.keyboard.type("!")
        until(lambda: self.data.draft() == "one!", "notes can be saved")
        self.assertTrue(journal.is_dir())

    def test_interface_tests_keep_nothing(self):
        quillmark = self.start("--ui-testing", "--show-editor")
        quillmark.editor()
        self.keyboard.type("one")
        until(lambda: quillmark.element("text", "Note text").text() == "one", "it is typed")
        quillmark.kill()

        self.assertFalse(self.state.exists())
        self.assertEqual(os.listdir(self.data.path), ["Markdown"])


if __name__ == "__main__":
    main()
