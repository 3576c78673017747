# SPDX-License-Identifier: MIT
"""Another program, here or on another computer, changes the notes while the program runs."""

import shutil

from harness import DesktopTest, main, until

CHANGED = ("Could not save. Your text is still in this window.\n"
           "Notes changed outside Quillmark. "
           "Copy your pending text and reopen the app to reload the files.")


class OutsideChanges(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.first = self.data.add_note("the first note", number=1)

    def test_a_note_that_comes_while_the_bubble_rests_is_there_at_the_next_opening(self):
        quillmark = self.start()
        quillmark.launcher()
        self.data.add_note("from another computer", number=2)

        quillmark.open_editor()
        quillmark.element(name="2 notes")
        self.keyboard.type("a thought of this one")
        self.keyboard.press("ctrl+Return")
        quillmark.launcher()

        until(lambda: len(list(self.data.notes.iterdir())) == 3, "all three are there")

    def test_what_changes_while_nothing_is_typed_does_not_keep_the_editor_open(self):
        quillmark = self.start()
        quillmark.open_editor()
        quillmark.element(name="1 note")
        self.data.add_note("from another computer", number=2)

        self.keyboard.press("Escape")
        quillmark.launcher()
        quillmark.open_editor()

        quillmark.element(name="2 notes")

    def test_a_reload_keeps_what_was_typed(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("mine")
        until(lambda: self.data.draft() == "mine", "the draft is on the disk")
        self.data.add_note("from another computer", number=2)
        self.keyboard.type(" and more")
        quillmark.element(name=CHANGED)

        self.mouse.click(quillmark.element(name="Reload").centre())

        until(lambda: self.data.draft() == "mine and more", "the draft is saved")
        quillmark.element(name="2 notes")
        self.assertEqual(quillmark.element("text", "Note text").text(), "mine and more")
        self.assertFalse(quillmark.has_element(name="Reload"))

    def test_a_reload_puts_two_half_thoughts_together(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("mine")
        until(lambda: self.data.draft() == "mine", "the draft is on the disk")
        (self.data.drafts / "capture.md").write_text("theirs")
        self.keyboard.type(" too")
        quillmark.element(name=CHANGED)

        self.mouse.click(quillmark.element(name="Reload").centre())

        until(lambda: self.data.draft() == "mine too\n\ntheirs", "both are saved")
        self.assertEqual(quillmark.element("text", "Note text").text(), "mine too\n\ntheirs")

    def test_notes_that_could_not_be_read_open_once_they_are_mended(self):
        broken = self.data.notes / "plan.md"
        broken.write_text("no note")
        quillmark = self.start()
        quillmark.open_editor()
        reload = quillmark.element(name="Reload")
        self.mouse.click(reload.centre())
        self.assertFalse(quillmark.element("text", "Note text").has("enabled"))
        broken.unlink()

        self.mouse.click(quillmark.element(name="Reload").centre())

        quillmark.element(name="1 note")
        until(lambda: quillmark.element("text", "Note text").has("enabled"), "the editor is open")

        def takes_keyboard():
            # The banner makes room, and the text moves under the pointer.
            self.mouse.click(quillmark.element("text", "Note text").centre())
            return quillmark.element("text", "Note text").has("focused")
        until(takes_keyboard, "the text takes the keyboard")
        self.keyboard.type("at last")
        until(lambda: self.data.draft() == "at last", "it is saved")

    def test_drafts_need_no_folder(self):
        shutil.rmtree(self.data.drafts)
        quillmark = self.start()

        quillmark.open_editor()
        quillmark.element(name="1 note")
        self.keyboard.type("a thought")

        until(lambda: self.data.draft() == "a thought", "the draft has a folder")


if __name__ == "__main__":
    main()
