# SPDX-License-Identifier: MIT
"""Writing with real input methods."""

import unittest

from harness import DesktopTest, input_method, main, until
from harness.waiting import holds_for, until_it_stays


class WithInputMethod(DesktopTest):
    """A program that is written in with an input method; what it is called with chooses which."""

    variables = input_method.IBUS

    def setUp(self):
        super().setUp()
        input_method.share_with(self.desktop, self.home)
        self.quillmark = self.start(**self.variables)
        self.quillmark.open_editor()
        self.until_writing()

    @property
    def editor(self):
        """Of the screen that is shown: another screen has another one."""
        return self.quillmark.element("text", "Note text")

    def until_writing(self):
        until(lambda: self.editor.has("focused"), "the text has the keyboard")

    def until_text_is(self, text):
        until(lambda: self.editor.text() == text, f"the text is “{text}”")

    def search(self):
        """The search field, once it has the keyboard."""
        field = self.quillmark.element("text", "Find a thought…")
        until(lambda: field.has("focused"), "the search has the keyboard")
        return field

    def press(self, name):
        """As a hand does, so that the keyboard is where it would be."""
        self.mouse.click(self.quillmark.element(name=name).centre())

    def fold(self):
        self.keyboard.press("Escape")
        until(self.quillmark.shows_launcher, "the bubble is back")


class InputMethod(WithInputMethod):
    """With the engine of our own, which tells what it composes."""

    leaves = "commit"

    @classmethod
    def setUpClass(cls):
        if not input_method.is_available():
            raise unittest.SkipTest("ibus is not installed")
        super().setUpClass()
        cls.ibus = input_method.InputMethod(cls.desktop, cls.leaves)

    def setUp(self):
        super().setUp()
        self.until_letters_are_held_back()

    def until_letters_are_held_back(self):
        """ibus gives its engine to a window some time after the keyboard has come to it, and what is
        typed before is plain text in every program."""
        before = self.editor.text()

        def is_held_back():
            self.keyboard.type("x")
            until(lambda: self.ibus.composed() == "x" or self.editor.text() != before,
                  "the letter has come")
            is_composed = self.ibus.composed() == "x"
            self.keyboard.press("Escape" if is_composed else "BackSpace")
            until(lambda: self.ibus.composed() == "" and self.editor.text() == before,
                  "the letter is gone")
            return is_composed
        until(is_held_back, "letters are held back")

    def compose(self, letters):
        """Types letters that the input method holds back."""
        self.keyboard.type(letters)
        until(lambda: self.ibus.composed() == letters, f"“{letters}” is being composed")

    def cancel(self):
        """Drops what is composed, and goes on once that has left the screen, too."""
        self.keyboard.press("Escape")
        until_it_stays(0.3, lambda: self.ibus.composed() == "", "the letters are dropped")

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
        self.cancel()
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

    def test_what_is_composed_for_a_thought_stays_with_it_when_the_screen_changes(self):
        self.compose("xiang")

        self.press("Notes")

        field = self.search()
        until(lambda: self.data.draft() == "xiang", "it is in the draft")
        self.keyboard.type("jiuji ")
        until(lambda: field.text() == "就记", "and nowhere else: the search begins anew")
        self.press("Capture")
        self.until_text_is("xiang")

    def test_what_is_composed_for_a_search_does_not_come_into_the_thought(self):
        self.press("Notes")
        self.search()
        self.compose("xiang")

        self.press("Capture")

        self.until_writing()
        self.keyboard.type("jiuji ")
        self.until_text_is("就记")

    def test_what_is_composed_is_in_the_draft_when_the_editor_is_folded(self):
        self.keyboard.type("jiuji ")
        self.until_text_is("就记")
        self.compose("xiang")

        self.press("Close · Esc")

        until(self.quillmark.shows_launcher, "the bubble is back")
        self.assertEqual(self.data.draft(), "就记xiang")

    def test_what_was_cancelled_does_not_come_back(self):
        for leave in (self.fold, lambda: self.press("Notes"), lambda: self.press("Capture")):
            self.compose("xiang")
            self.cancel()
            leave()
            if self.quillmark.shows_launcher():
                self.quillmark.open_editor()
                self.until_writing()
                self.until_letters_are_held_back()

        self.until_writing()
        self.keyboard.type("jiuji ")
        self.until_text_is("就记")
        self.assertEqual(self.data.draft().replace("就记", ""), "")

    def test_what_was_cancelled_in_a_search_does_not_come_back(self):
        self.press("Notes")
        field = self.search()
        self.compose("xiang")
        self.cancel()
        other = self.open_text_window()
        self.windows.activate(self.quillmark.shows_editor().id)
        self.search()
        self.compose("xiang")
        self.cancel()
        self.keyboard.press("shift+Tab")
        until(lambda: not field.has("focused"), "the keyboard is elsewhere")
        self.keyboard.press("Tab")

        self.search()
        self.keyboard.type("jiuji ")

        until(lambda: field.text() == "就记", "the search is what was typed last")
        other.close()

    def test_a_word_is_composed_from_the_list(self):
        self.keyboard.type("xiangdao ")
        self.until_text_is("想到")
        self.keyboard.press("ctrl+Return")
        until(self.quillmark.shows_launcher, "the bubble is back")
        self.quillmark.open_editor()
        self.press("Notes")
        field = self.search()
        self.keyboard.press("Down")
        row = self.quillmark.element(name="Open note: 想到")
        until(lambda: row.has("focused"), "the row has the keyboard")

        self.compose("xiangdao")
        self.keyboard.press("space")

        until(lambda: field.text() == "想到", "the word is in the search field")
        until(lambda: field.has("focused"), "the search has the keyboard")
        self.keyboard.type("jiuji ")
        until(lambda: field.text() == "想到就记", "typing goes on there")


class InputMethodThatLeavesNothing(InputMethod):
    leaves = "clear"


class InputMethodThatIsWaitedFor(InputMethod):
    variables = input_method.IBUS_WAITING


class WithPinyin(WithInputMethod):
    """What every engine for pinyin must do. A composition is one letter, so that the first sign of
    it is all of it."""

    def compose_a_letter(self):
        self.keyboard.type("w")
        save = self.quillmark.element(name="Save this thought")
        until(lambda: save.has("enabled"), "something is being composed")

    def test_a_composed_word_becomes_a_note(self):
        self.keyboard.type("xiangdao ")
        self.until_text_is("想到")

        self.keyboard.press("ctrl+Return")

        until(self.quillmark.shows_launcher, "the bubble is back")
        self.assertEqual([note.body for note in self.data.read_notes()], ["想到"])

    def test_a_word_is_composed_from_the_list(self):
        self.keyboard.type("xiangdao ")
        self.until_text_is("想到")
        self.keyboard.press("ctrl+Return")
        until(self.quillmark.shows_launcher, "the bubble is back")
        self.quillmark.open_editor()
        self.press("Notes")
        field = self.search()
        self.keyboard.press("Down")
        row = self.quillmark.element(name="Open note: 想到")
        until(lambda: row.has("focused"), "the row has the keyboard")

        self.keyboard.type("xiangdao ")

        until(lambda: field.text() == "想到", "the word is in the search field")
        until(lambda: field.has("focused"), "the search has the keyboard")

    def test_what_was_cancelled_does_not_come_back(self):
        self.compose_a_letter()
        self.keyboard.press("Escape")
        save = self.quillmark.element(name="Save this thought")
        until(lambda: not save.has("enabled"), "nothing is being composed")

        self.press("Close · Esc")

        until(self.quillmark.shows_launcher, "the bubble is back")
        # Sooner, the press would be the second one of a double click.
        holds_for(0.5, self.quillmark.shows_launcher, "it stays")
        self.quillmark.open_editor()
        self.until_writing()
        self.assertEqual(self.editor.text(), "")

    def test_a_composition_ends_where_it_began(self):
        self.compose_a_letter()

        self.press("Notes")

        field = self.search()
        # The letter, or the word that was proposed for it.
        until(lambda: self.data.capture.exists() and len(self.data.draft()) == 1,
              "it is in the draft, once")
        self.keyboard.type("xiangdao ")
        until(lambda: field.text() == "想到", "and nowhere else")

    def test_what_is_still_composed_is_saved_with_the_thought(self):
        self.compose_a_letter()

        # Some engines take all keys while they compose, those that save as well.
        self.press("Save this thought")

        until(self.quillmark.shows_launcher, "the bubble is back")
        [note] = self.data.read_notes()
        self.assertEqual(len(note.body), 1, note.body)


class PinyinOfIbus(WithPinyin):
    @classmethod
    def setUpClass(cls):
        if not input_method.has_pinyin_of_ibus():
            raise unittest.SkipTest("the pinyin engine of ibus is not installed")
        super().setUpClass()
        input_method.PinyinOfIbus(cls.desktop)


class PinyinOfFcitx(WithPinyin):
    variables = input_method.FCITX
    options = {}

    @classmethod
    def setUpClass(cls):
        if not input_method.has_pinyin_of_fcitx():
            raise unittest.SkipTest("fcitx is not installed, or its pinyin engine or Qt plugin")
        super().setUpClass()
        cls.fcitx = input_method.PinyinOfFcitx(cls.desktop, **cls.options)

    def setUp(self):
        super().setUp()
        until(self.fcitx.is_in_use, "fcitx knows who has the keyboard")


class PinyinOfFcitxAsWords(PinyinOfFcitx):
    options = {"as_pinyin": False}


class PinyinOfFcitxInAPanel(PinyinOfFcitx):
    options = {"in_application": False}


# They are there to be inherited from.
del WithInputMethod, WithPinyin


if __name__ == "__main__":
    main()
