# SPDX-License-Identifier: MIT
"""Earlier notes: found, opened, changed and copied, also without a mouse."""

import os
import tempfile
import urllib.parse

from harness import DesktopTest, main, until
from harness.file_browser import FileBrowser


class Library(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        for number, body in enumerate(["Café in the RUE", "想到就记下来", "buy milk\nand bread"], 1):
            self.data.add_note(body, number=number)

    def focused(self, quillmark):
        for element in quillmark.accessible().descendants():
            # What hands its focus on is focused as well, and has no name.
            if element.name() and element.has("showing") and element.has("focused"):
                return element.name()
        return None

    def focus(self, quillmark, wanted, key):
        """Walks with Tab or Shift+Tab until the element with this name has the keyboard."""
        passed = [until(lambda: self.focused(quillmark), "something has the keyboard")]
        while passed[-1] != wanted:
            self.keyboard.press(key)
            passed.append(until(lambda: self.focused(quillmark) not in (None, passed[-1])
                                and self.focused(quillmark), "the keyboard goes on"))
            self.assertLess(len(passed), 15, passed)

    def rows(self, quillmark):
        prefix = "Open note: "
        return [text.removeprefix(prefix) for text in quillmark.texts() if text.startswith(prefix)]

    def until_rows_are(self, quillmark, *titles):
        until(lambda: sorted(self.rows(quillmark)) == sorted(titles), f"the rows are {titles}")

    def test_a_note_is_found_opened_and_changed_without_a_mouse(self):
        quillmark = self.start()
        quillmark.open_editor()
        self.focus(quillmark, "Notes", "shift+Tab")
        self.keyboard.press("space")
        self.until_rows_are(quillmark, "Café in the RUE", "想到就记下来", "buy milk")

        self.keyboard.type("cafe in the rue")
        self.until_rows_are(quillmark, "Café in the RUE")
        self.keyboard.press("Down")
        self.keyboard.press("Return")

        editor = quillmark.element("text", "Note text")
        until(lambda: editor.has("focused"), "the text has the keyboard")
        self.assertEqual(editor.text(), "Café in the RUE")
        self.keyboard.press("ctrl+End")
        self.keyboard.type(" at noon")
        self.keyboard.press("ctrl+Return")
        until(lambda: "Café in the RUE at noon" in [n.body for n in self.data.read_notes()],
              "the change is on the disk")
        self.until_rows_are(quillmark, "Café in the RUE at noon", "想到就记下来", "buy milk")
        self.keyboard.press("Escape")
        until(quillmark.shows_launcher, "the bubble is back")

    def test_a_search_says_when_it_finds_nothing_and_is_cleared_by_key(self):
        quillmark = self.start()
        quillmark.open_editor()
        quillmark.element(name="Notes").press()
        search = quillmark.element("text", "Find a thought…")
        until(lambda: search.has("focused"), "the search has the keyboard")

        self.keyboard.type("quince")
        quillmark.element(name="No matching thoughts yet.")
        self.keyboard.press("ctrl+u")

        self.until_rows_are(quillmark, "Café in the RUE", "想到就记下来", "buy milk")

    def test_a_copied_note_can_be_pasted_elsewhere(self):
        other = self.open_text_window()
        quillmark = self.start()
        quillmark.open_editor()
        quillmark.element(name="Notes").press()
        quillmark.element(name="Open note: buy milk").press()
        quillmark.element("text", "Note text")

        quillmark.element(name="Copy text").press()

        until(lambda: other.clipboard() == "buy milk\nand bread", "the other program can paste it")

    def test_the_folder_is_shown_by_the_file_browser(self):
        browser = FileBrowser(self.desktop)
        quillmark = self.start()
        quillmark.open_editor()

        quillmark.element(name="Preferences").press()
        self.choose(quillmark, "Show Markdown files")

        until(lambda: browser.shown_folders(), "the file browser is asked")
        self.assertEqual(browser.shown_folders(), [self.data.notes.as_uri()])

        # A path that is no text has a notes folder, too.
        with tempfile.TemporaryDirectory(dir=self.home) as outer:
            data = os.path.join(os.fsencode(outer), b"\xff data")
            quillmark.stop()
            quillmark = self.start(XDG_DATA_HOME=os.fsdecode(data))
            quillmark.open_editor()
            self.keyboard.type("saved there")
            self.keyboard.press("ctrl+Return")
            quillmark.launcher()
            quillmark.open_editor()
            quillmark.element(name="Preferences").press()
            self.choose(quillmark, "Show Markdown files")
            until(lambda: len(browser.shown_folders()) == 2, "the file browser is asked again")
            self.assertEqual(browser.shown_folders()[1],
                             "file://" + urllib.parse.quote(data) + "/Penwick/Markdown/Notes")
            quillmark.stop()


if __name__ == "__main__":
    main()
