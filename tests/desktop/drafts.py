# SPDX-License-Identifier: MIT
"""Nothing that was typed is lost."""

import os
import signal
import time

from harness import DesktopTest, main, until


class Drafts(DesktopTest):
    def type_into_note(self, quillmark, title, text):
        quillmark.open_editor()
        quillmark.element(name="Notes").press()
        self.mouse.click(quillmark.element(name=f"Open note: {title}").centre())
        editor = quillmark.element("text", "Note text")
        until(lambda: editor.has("focused"), "the note's text has the keyboard")
        self.keyboard.press("ctrl+End")
        self.keyboard.type(text)

    def test_a_draft_reaches_the_disk_by_itself_and_outlives_a_crash(self):
        quillmark = self.start()
        quillmark.open_editor()

        self.keyboard.type("half a thought")

        until(lambda: self.data.draft() == "half a thought", "the draft is on the disk")
        quillmark.kill()
        self.assertEqual(self.data.draft(), "half a thought")
        again = self.start()
        again.open_editor()
        self.assertEqual(again.element("text", "Note text").text(), "half a thought")

    def test_a_crash_while_typing_leaves_a_folder_that_can_be_read(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("one")
        until(lambda: self.data.draft() == "one", "the first draft is on the disk")

        self.keyboard.type(" two")
        quillmark.kill()

        self.assertIn(self.data.draft(), ("one", "one two"))
        again = self.start()
        again.open_editor()
        text = again.element("text", "Note text").text()
        self.assertIn(text, ("one", "one two"))
        until(lambda: self.data.draft() == text, "what was kept is saved")
        self.assertFalse(again.has_element(name="Retry"))

    def test_a_crash_in_the_middle_of_long_typing_loses_the_last_moment_only(self):
        quillmark = self.start()
        quillmark.open_editor()
        started = time.monotonic()
        typed = ""
        # Never a pause in which it would be saved.
        while time.monotonic() - started < 2:
            self.keyboard.type("word ")
            typed += "word "
            time.sleep(0.05)
        quillmark.kill()

        again = self.start()
        again.open_editor()

        text = again.element("text", "Note text").text()
        self.assertEqual(text, typed[:len(text)])
        self.assertGreater(len(text), len(typed) / 2)
        self.keyboard.press("Escape")
        again.launcher()
        self.assertEqual(self.data.draft(), text)
        self.assertEqual(os.listdir(self.data.path), ["Markdown"])

    def test_a_change_of_a_note_is_a_draft_until_it_is_saved(self):
        self.data.create()
        file = self.data.add_note("milk")
        before = file.read_bytes()
        quillmark = self.start()

        self.type_into_note(quillmark, "milk", " and bread")

        draft = self.data.drafts / file.name
        until(lambda: draft.exists() and draft.read_text() == "milk and bread", "there is a draft")
        self.assertEqual(file.read_bytes(), before)
        quillmark.kill()
        again = self.start()
        again.open_editor()
        again.element(name="Notes").press()
        self.mouse.click(again.element(name="Open note: milk").centre())
        until(lambda: again.element("text", "Note text").text() == "milk and bread",
              "the draft is there after a restart")

        self.keyboard.press("ctrl+Return")

        until(lambda: not draft.exists(), "the draft is gone")
        [note] = self.data.read_notes()
        self.assertEqual(note.body, "milk and bread")
        self.assertEqual(note.created, "2025-03-01T08:15:30.250Z")
        self.assertGreater(note.updated, note.created)
        again.element(name="Open note: milk and bread")

    def test_a_note_is_deleted_only_after_a_question(self):
        self.data.create()
        self.data.add_note("keep me", number=1)
        self.data.add_note("forget me", number=2)
        quillmark = self.start()
        quillmark.open_editor()
        quillmark.element(name="Notes").press()
        self.mouse.click(quillmark.element(name="Open note: forget me").centre())

        quillmark.element(name="Delete note").press()
        quillmark.element(name="Cancel").press()
        until(lambda: not quillmark.has_element(name="Cancel"), "the question is gone")
        self.assertEqual(len(self.data.note_files()), 2)
        quillmark.element(name="Delete note").press()
        quillmark.element(name="Delete").press()

        until(lambda: len(self.data.note_files()) == 1, "one note is left")
        self.assertEqual([note.body for note in self.data.read_notes()], ["keep me"])
        quillmark.element(name="Open note: keep me")

    def test_the_end_of_the_session_writes_what_waits(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                quillmark = self.start()
                quillmark.open_editor()
                self.keyboard.press("ctrl+a")
                self.keyboard.type(number.name)
                editor = quillmark.element("text", "Note text")
                until(lambda: editor.text() == number.name, "the text is typed")

                quillmark.send(number)

                self.assertEqual(quillmark.wait_until_ended(), 0)
                self.assertEqual(self.data.draft(), number.name)


if __name__ == "__main__":
    main()
