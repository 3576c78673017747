# SPDX-License-Identifier: MIT
"""The end of the session waits for the notes."""

import os

from harness import DesktopTest, main, until
from harness.session_manager import SessionManager

QUESTION = "Some changes could not be saved"


class SessionEnd(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        # The library listens once for all.
        cls.session = SessionManager()

    def setUp(self):
        super().setUp()
        self.session.forget_programs()

    def type_unsaved(self):
        """An open editor, in a session, whose text cannot be saved."""
        quillmark = self.start(SESSION_MANAGER=self.session.address)
        self.session.wait_for_program()
        quillmark.open_editor()
        self.keyboard.type("one")
        until(lambda: self.data.draft() == "one", "the first draft is on the disk")
        until(lambda: len(os.listdir(self.data.path)) == 1, "the save has cleaned up")
        self.obstacle = self.data.path / ".quillmark-recovery-of-a-test"
        self.obstacle.mkdir()
        # One key, and so one delayed save.
        self.keyboard.type("!")
        quillmark.element(name="Not saved · Retry")
        return quillmark

    def test_what_is_typed_is_written_before_the_session_goes_on(self):
        quillmark = self.start(SESSION_MANAGER=self.session.address)
        self.session.wait_for_program()
        quillmark.open_editor()
        editor = quillmark.element("text", "Note text")
        self.keyboard.type("a last word")
        until(lambda: editor.text() == "a last word", "it is typed")

        self.session.ask_to_end()

        self.session.until(lambda: self.session.is_saved, "the program has saved")
        self.assertEqual(self.data.draft(), "a last word")
        self.session.end()
        self.session.work()
        self.assertEqual(quillmark.wait_until_ended(), 0)

    def test_a_write_that_fails_can_stop_the_end(self):
        quillmark = self.type_unsaved()

        self.session.ask_to_end()

        self.session.until(lambda: self.session.is_interacting, "the program asks to ask")
        self.session.until(lambda: quillmark.has_element(name=QUESTION), "the question is shown")
        quillmark.element(name="Return to notes").press()
        self.session.until(lambda: self.session.was_cancelled, "the end is called off")
        self.session.go_on()
        self.session.work()
        self.obstacle.rmdir()
        quillmark.element(name="Retry").press()
        until(lambda: self.data.draft() == "one!", "the draft is on the disk")
        self.assertTrue(quillmark.is_running())

    def test_a_write_that_fails_need_not_stop_the_end(self):
        quillmark = self.type_unsaved()

        self.session.ask_to_end()

        self.session.until(lambda: quillmark.has_element(name=QUESTION), "the question is shown")
        quillmark.element(name="Quit anyway").press()
        self.session.until(lambda: self.session.is_saved, "the program is done")
        self.assertFalse(self.session.was_cancelled)
        self.session.end()
        self.session.work()
        self.assertEqual(quillmark.wait_until_ended(), 1)
        self.assertIn("What was typed could not be saved, and is kept in", quillmark.output())
        self.assertEqual(self.data.draft(), "one")


if __name__ == "__main__":
    main()
