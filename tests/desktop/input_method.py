# SPDX-License-Identifier: MIT
"""Writing with a real input method."""

import unittest

from harness import DesktopTest, input_method, main, until


class InputMethod(DesktopTest):
    @classmethod
    def setUpClass(cls):
        if not input_method.is_available():
            raise unittest.SkipTest("ibus is not installed")
        super().setUpClass()
        cls.ibus = input_method.InputMethod(cls.desktop)

    def setUp(self):
        super().setUp()
        input_method.share_with(self.desktop, self.home)
        self.quillmark = self.start(QT_IM_MODULE="ibus")
        self.quillmark.open_editor()
        self.editor = self.quillmark.element("text", "Note text")

    def until_text_is(self, text):
        until(lambda: self.editor.text() == text, f"the text is “{text}”")

    def compose(self, letters):
        """Types letters that the input method holds back."""
        self.keyboard.type(letters)
        until(lambda: self.ibus.composed() == letters, f"“{letters}” is being composed")

    def test_a_composed_word_becomes_a_note(self):
        self.keyboard.type("xiangdao ")
        self.until_text_is("想到")
        self.keyboard.type("jiuji ")
        self.until_text_is("想到就记")

        self.keyboard.press("ctrl+Return")

        until(self.quillmark.shows_launcher, "the bubble is back")
        self.assertEqual([note.body for note in self.data.read_notes()], ["想到就记"])

    def test_a_composed_word_is_searched_for(self):
        self.keyboard.type("xiangdao ")
        self.until_text_is("想到")
        self.keyboard.press("ctrl+Return")
        until(self.quillmark.shows_launcher, "the bubble is back")
        self.quillmark.open_editor()
        self.quillmark.element(name="Notes").press()
        self.quillmark.element(name="Open note: 想到")

        self.keyboard.type("jiuji ")
        self.quillmark.element(name="No matching thoughts yet.")
        self.keyboard.press("ctrl+u")
        self.quillmark.element(name="Open note: 想到")
        self.compose("xiangdao")
        self.keyboard.press("space")
        until(lambda: "想到" in self.quillmark.texts(), "the word is in the search field")
        self.quillmark.element(name="Open note: 想到")

    def test_return_and_escape_belong_to_the_input_method_while_it_composes(self):
        self.compose("xiang")
        self.keyboard.press("Escape")
        until(lambda: self.ibus.composed() == "", "the letters are dropped")
        self.compose("jiuji")
        self.keyboard.press("Return")

        self.until_text_is("jiuji")
        self.assertIsNotNone(self.quillmark.shows_editor())

        self.keyboard.press("Escape")
        until(self.quillmark.shows_launcher, "the bubble is back")

    def test_what_is_still_composed_is_saved_with_the_thought(self):
        self.keyboard.type("jiuji ")
        self.until_text_is("就记")
        self.compose("xiang")

        self.keyboard.press("ctrl+Return")

        until(self.quillmark.shows_launcher, "the bubble is back")
        self.assertEqual([note.body for note in self.data.read_notes()], ["就记xiang"])

    def test_a_composition_does_not_count_as_an_empty_draft(self):
        self.compose("xiang")

        self.keyboard.press("ctrl+Return")

        until(lambda: self.data.note_files(), "the thought is a note")
        self.assertEqual([note.body for note in self.data.read_notes()], ["xiang"])


if __name__ == "__main__":
    main()
