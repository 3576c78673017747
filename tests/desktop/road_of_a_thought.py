# SPDX-License-Identifier: MIT
"""From another program to a note on the disk, and back."""

import datetime
import os
import signal

from harness import DesktopTest, main, until
from harness.notes import MARKER
from harness.waiting import holds_for


class RoadOfAThought(DesktopTest):
    def setUp(self):
        super().setUp()
        self.other = self.open_text_window()

    def has_keyboard(self, window):
        return self.windows.active() == window.id and self.windows.has_input(window.id)

    def expect_keyboard_back(self):
        until(lambda: self.has_keyboard(self.other), "the other program is active again")
        before = self.other.text()
        self.keyboard.type("back")
        until(lambda: self.other.text() == before + "back", "its window gets the keys")

    def test_the_bubble_floats_above_other_windows_and_leaves_them_the_keyboard(self):
        quillmark = self.start()

        launcher = quillmark.launcher()

        self.assertEqual(self.windows.top_at(launcher.centre()), launcher)
        holds_for(0.3, lambda: self.has_keyboard(self.other), "the other program is active")
        self.expect_keyboard_back()

    def test_a_click_opens_the_editor_in_the_place_of_the_bubble(self):
        quillmark = self.start()
        x, y, width, height = quillmark.launcher().rectangle()

        editor = quillmark.open_editor()

        place = (x + width - 424, y, 424, 560)
        until(lambda: editor.rectangle() == place, f"the editor is at {place}")
        until(lambda: quillmark.shows_launcher() is None, "the bubble is gone")
        until(lambda: self.windows.active() == editor.id, "the editor is active")

    def test_the_editor_stays_above_a_window_that_is_raised(self):
        quillmark = self.start()
        editor = quillmark.open_editor()
        other = self.open_text_window("One more", x=700, y=100)

        other.raise_above_others()

        until(lambda: self.has_keyboard(other), "the window is active")
        above = self.windows.top_at(editor.centre())
        self.assertTrue(self.windows.contains(above, editor), f"{above} is above the editor")

    def test_control_return_writes_the_note_and_gives_the_keyboard_back(self):
        quillmark = self.start()
        quillmark.open_editor()
        before = datetime.datetime.now(datetime.timezone.utc)

        self.keyboard.type("  A thought: 50% of it,\nin two lines. é中文 \n")
        self.keyboard.press("ctrl+Return")

        quillmark.launcher()
        until(lambda: quillmark.shows_editor() is None, "the editor is gone")
        after = datetime.datetime.now(datetime.timezone.utc)
        [note] = self.data.read_notes()
        self.assertEqual(note.body, "A thought: 50% of it,\nin two lines. é中文")
        self.assertEqual(note.created, note.updated)
        created = datetime.datetime.fromisoformat(note.created)
        self.assertGreaterEqual(created, before.replace(microsecond=0))
        self.assertLessEqual(created, after)
        self.assertEqual((self.data.markdown / ".format").read_bytes(), MARKER)
        self.assertEqual(self.data.draft(), "")
        self.assertEqual({path.name for path in self.data.path.iterdir()}, {"Markdown"})
        self.expect_keyboard_back()

    def test_an_editor_that_is_opened_again_at_once_is_ready(self):
        quillmark = self.start()
        quillmark.open_editor()
        for body in ("first", "second", "third"):
            editor = quillmark.element("text", "Note text")
            until(lambda: editor.has("focused"), "the text has the keyboard, and says so")
            self.keyboard.type(body)
            self.keyboard.press("ctrl+Return")
            quillmark.open_editor()

        quillmark.element(name="Notes").press()
        search = quillmark.element("text", "Find a thought…")
        until(lambda: search.has("focused"), "the search has the keyboard")
        self.assertEqual(len(self.data.note_files()), 3)

    def test_super_return_writes_the_note_as_well(self):
        quillmark = self.start()
        quillmark.open_editor()

        self.keyboard.type("with the other key")
        self.keyboard.press("super+Return")

        quillmark.launcher()
        self.assertEqual([note.body for note in self.data.read_notes()], ["with the other key"])
        self.expect_keyboard_back()

    def test_every_thought_becomes_a_note_of_its_own(self):
        quillmark = self.start()

        for thought in ("first", "second", "third"):
            quillmark.open_editor()
            self.keyboard.type(thought)
            self.keyboard.press("ctrl+Return")
            until(quillmark.shows_launcher, "the bubble is back")

        self.assertEqual({note.body for note in self.data.read_notes()},
                         {"first", "second", "third"})
        self.expect_keyboard_back()

    def test_escape_folds_the_editor_and_keeps_the_draft(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("not yet")

        self.keyboard.press("Escape")

        quillmark.launcher()
        self.assertEqual(self.data.draft(), "not yet")
        self.assertEqual(self.data.note_files(), [])
        self.expect_keyboard_back()
        quillmark.open_editor()
        self.assertEqual(quillmark.element("text", "Note text").text(), "not yet")
        self.keyboard.type("!")
        until(lambda: self.data.draft() == "not yet!", "typing goes on at the end of the draft")

    def type_while_busy(self, process, text, last_key):
        """The keys pile up, and wait together for the process."""
        os.kill(process, signal.SIGSTOP)
        try:
            self.keyboard.type(text)
            self.keyboard.press(last_key)
        finally:
            os.kill(process, signal.SIGCONT)

    def test_what_was_typed_before_the_save_key_is_saved_however_late_it_is_read(self):
        quillmark = self.start()

        for number, process in enumerate((quillmark.process,
                                          self.desktop.assistive.registry_process())):
            quillmark.open_editor()
            self.type_while_busy(process, f"faster than the computer {number}", "ctrl+Return")
            quillmark.launcher()

        self.assertEqual({note.body for note in self.data.read_notes()},
                         {"faster than the computer 0", "faster than the computer 1"})

    def test_what_was_typed_before_escape_is_in_the_draft_however_late_it_is_read(self):
        quillmark = self.start()
        quillmark.open_editor()

        self.type_while_busy(self.desktop.assistive.registry_process(), "not yet", "Escape")

        quillmark.launcher()
        self.assertEqual(self.data.draft(), "not yet")

    def test_spaces_alone_cannot_be_saved(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("  \n ")

        self.keyboard.press("ctrl+Return")

        until(lambda: self.data.draft() == "  \n ", "the draft is kept as it is")
        self.assertIsNotNone(quillmark.shows_editor())
        self.assertEqual(self.data.note_files(), [])


if __name__ == "__main__":
    main()
