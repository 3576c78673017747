# SPDX-License-Identifier: MIT
"""Keys that people know from elsewhere."""

from harness import DesktopTest, main, until


class Habits(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        for number, body in enumerate(["milk", "bread", "butter"], 1):
            self.data.add_note(body, number=number)
        self.quillmark = self.start()
        self.quillmark.open_editor()
        self.until_focused("Note text")

    def until_focused(self, name):
        until(lambda: any(element.has("focused") and element.name() == name
                          for element in self.quillmark.accessible().descendants()
                          if element.has("showing")), f"“{name}” has the keyboard")

    def press(self, key, focused):
        self.keyboard.press(key)
        self.until_focused(focused)

    def open_note(self):
        self.press("ctrl+f", "Find a thought…")
        self.keyboard.type("milk")
        self.press("Down", "Open note: milk")
        self.press("Return", "Note text")
        self.quillmark.element(name="Save changes")

    def test_control_f_goes_to_the_search_from_everywhere(self):
        self.press("ctrl+f", "Find a thought…")
        self.keyboard.type("milk")
        self.press("Down", "Open note: milk")
        self.press("ctrl+f", "Find a thought…")
        # What is typed next begins another search.
        self.keyboard.type("bread")
        self.quillmark.element(name="Open note: bread")
        self.open_note()
        self.press("ctrl+f", "Find a thought…")
        self.assertFalse(self.quillmark.has_element(name="Save changes"))

    def test_control_n_goes_to_the_capture_screen_and_keeps_what_is_there(self):
        self.keyboard.type("eggs")
        self.open_note()

        self.press("ctrl+n", "Note text")

        self.quillmark.element(name="Save this thought")
        self.assertEqual(self.quillmark.element("text", "Note text").text(), "eggs")

    def test_control_tab_goes_to_the_other_tab(self):
        self.press("ctrl+Tab", "Find a thought…")
        self.press("ctrl+Tab", "Note text")
        self.press("ctrl+shift+Tab", "Find a thought…")
        self.press("Down", self.quillmark.element("list item").name())
        self.press("ctrl+Tab", "Note text")
        self.assertEqual(self.quillmark.element("text", "Note text").text(), "")

    def test_alt_left_goes_back_from_a_note(self):
        self.open_note()
        self.keyboard.type("!")

        self.press("alt+Left", "Open note: milk")

        self.assertFalse(self.quillmark.has_element(name="Save changes"))
        until(lambda: any(self.data.drafts.glob("*.md")), "the draft is kept")

    def test_delete_on_a_row_asks_and_deletes(self):
        self.press("ctrl+f", "Find a thought…")
        rows = [row.name() for row in self.quillmark.element("list item").parent().children()]
        self.press("Down", rows[0])
        self.press("Down", rows[1])

        self.press("Delete", "Cancel")
        self.press("Escape", rows[1])
        self.assertEqual(len(self.data.note_files()), 3)
        self.press("Delete", "Cancel")
        self.press("Tab", "Delete")
        self.press("Return", rows[2])

        self.assertEqual(len(self.data.note_files()), 2)
        self.assertFalse(self.quillmark.has_element(name=rows[1]))

    def test_the_keys_are_shown_until_the_next_one(self):
        for key in ("F1", "ctrl+question"):
            self.press(key, "Keys")
            self.quillmark.element(name="Search the notes")
            self.press("Escape", "Note text")
            self.assertIsNotNone(self.quillmark.shows_editor())
            self.assertFalse(self.quillmark.has_element(name="Keys"))


if __name__ == "__main__":
    main()
