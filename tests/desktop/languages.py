# SPDX-License-Identifier: MIT
"""Every text in Chinese, and what a screen reader is told."""

import re

from harness import DesktopTest, main, until
from harness.input import Mouse
from harness.translations import chinese

# Names and signs that are the same in both languages.
SAME_IN_BOTH = {"Quillmark", "English", "milk", "Open note: milk"}
LATIN_WORD = re.compile(r"[A-Za-z]{2,}")
HAN = re.compile("[\u4e00-\u9fff]")


class Languages(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.data.add_note("milk", number=1)

    def start_in_chinese(self):
        self.write_settings({"ui.language": "zh-Hans"})
        return self.start()

    def expect_chinese(self, texts):
        left = [text for text in texts if text not in SAME_IN_BOTH and LATIN_WORD.search(text)
                and not HAN.search(text)]
        self.assertEqual(left, [], "these texts are not Chinese")
        self.assertTrue(any(HAN.search(text) for text in texts), texts)

    def test_every_screen_is_in_chinese(self):
        quillmark = self.start_in_chinese()
        quillmark.open_editor()
        quillmark.element(name=chinese("Save this thought"))
        self.expect_chinese(quillmark.texts())

        quillmark.element(name=chinese("Notes")).press()
        row = quillmark.element(name=chinese("Open note: %@").replace("%@", "milk"))
        self.expect_chinese(quillmark.texts())

        self.mouse.click(row.centre())
        quillmark.element(name=chinese("Save changes"))
        self.expect_chinese(quillmark.texts())

        quillmark.element(name=chinese("Delete note")).press()
        quillmark.element(name=chinese("Delete this note?"))
        self.expect_chinese(quillmark.texts())

    def test_the_menus_are_in_chinese(self):
        quillmark = self.start_in_chinese()
        launcher = quillmark.launcher()
        until(lambda: launcher.title() == chinese("Quillmark · Quick capture"), "the title follows")

        self.mouse.click(launcher.centre(), Mouse.RIGHT)

        self.assertEqual(self.read_menu(quillmark),
                         [chinese("New note"), chinese("Quit Quillmark")])
        quillmark.open_editor()
        quillmark.element(name=chinese("Preferences")).press()
        self.expect_chinese(self.read_menu(quillmark))

    def test_the_language_changes_while_it_runs(self):
        quillmark = self.start()
        quillmark.open_editor()

        quillmark.element(name="Preferences").press()
        self.choose(quillmark, "Language", "简体中文")

        quillmark.element(name=chinese("Save this thought"))
        self.expect_chinese(quillmark.texts())
        until(lambda: quillmark.settings().get("ui.language") == "zh-Hans", "the choice is kept")
        self.keyboard.press("Escape")
        launcher = quillmark.launcher()
        until(lambda: launcher.title() == chinese("Quillmark · Quick capture"), "the title follows")
        quillmark.element("push button", chinese("New note"))

    def test_a_screen_reader_finds_and_presses_the_bubble(self):
        quillmark = self.start()
        bubble = quillmark.element("push button", "New note")

        self.assertIn("Press", bubble.actions())
        bubble.perform("Press")

        quillmark.editor()
        text = quillmark.element("text", "Note text")
        until(lambda: text.has("focused"), "the text has the keyboard")

    def test_a_screen_reader_captures_and_finds_a_thought(self):
        quillmark = self.start()
        quillmark.element("push button", "New note").press()
        quillmark.editor()

        self.keyboard.type("bread")
        until(lambda: quillmark.element(name="Save this thought").has("enabled"), "it can be saved")
        quillmark.element(name="Save this thought").press()

        quillmark.element("push button", "New note").press()
        quillmark.element(name="Notes").press()
        quillmark.element(name="Open note: bread")
        quillmark.element(name="Open note: milk")
        quillmark.element(name="2 notes")
        quillmark.element("text", "Find a thought…")
        self.keyboard.type("mil")
        until(lambda: not quillmark.has_element(name="Open note: bread"), "only milk is found")
        quillmark.element(name="Clear search").press()
        quillmark.element(name="Open note: bread")

    def test_everything_that_can_be_pressed_has_a_name(self):
        quillmark = self.start()
        quillmark.open_editor()
        quillmark.element(name="Save this thought")

        for screen in ("Capture", "Notes"):
            quillmark.element(name=screen).press()
            pressable = [element for element in quillmark.accessible().descendants()
                         if element.has("showing") and element.actions()
                         and element.role() != "scroll bar"]
            self.assertGreater(len(pressable), 4)
            self.assertEqual([element for element in pressable if not element.name()], [])


if __name__ == "__main__":
    main()
