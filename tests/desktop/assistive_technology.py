# SPDX-License-Identifier: MIT
"""What assistive technology meets, on every screen and in both languages."""

from harness import DesktopTest, main, until
from harness.translations import table

NOTES = ["milk", "bread\nof rye, and butter", "Café in the RUE"]


class AssistiveTechnology(DesktopTest):
    language = "en"

    def setUp(self):
        super().setUp()
        self.data.create()
        for number, body in enumerate(NOTES, 1):
            self.data.add_note(body, number=number)
        self.write_settings({"ui.language": self.language})
        self.quillmark = self.start()
        self.quillmark.open_editor()
        self.element("Save this thought")
        self.until_focused(self.words("Note text"))

    # What is there

    def words(self, text):
        """A text of the program in the language of the test."""
        return table(self.language)[text]

    def element(self, name, role=None):
        return self.quillmark.element(role, self.words(name))

    def row(self, title):
        return self.quillmark.element("list item",
                                      self.words("Open note: %@").replace("%@", title))

    def showing(self):
        return [element for element in self.quillmark.accessible().descendants()
                if element.has("showing") and element.role() != "notification"]

    def focused(self):
        """All that count as focused; a window does for its program, not in itself."""
        return [element for element in self.showing() if element.has("focused")]

    def until_focused(self, name):
        until(lambda: [element.name() for element in self.focused()] == [name],
              f"“{name}” has the keyboard and nothing else")

    def listen(self):
        """From here on hears of all that changes."""
        listener = self.desktop.assistive.listen_to_everything(self.quillmark.process)
        self.addCleanup(listener.close)
        return listener

    def heard_of_focus(self, act, last):
        """What a reader is told of the keyboard while the act goes on until the last is told."""
        listener = self.desktop.assistive.listen()
        self.addCleanup(listener.close)
        act()
        until(lambda: last in listener.names(), f"“{last}” is told to have the keyboard")
        return listener.names()

    # The screens

    def go_to_notes(self):
        self.element("Notes").press()
        self.until_focused(self.words("Find a thought…"))

    def open_note(self):
        self.go_to_notes()
        self.row("milk").press()
        self.element("Save changes")
        self.until_focused(self.words("Note text"))

    def ask_to_delete(self):
        self.open_note()
        self.element("Delete note").press()
        self.element("Delete this note?")
        self.until_focused(self.words("Cancel"))

    def search_in_vain(self):
        self.go_to_notes()
        self.keyboard.type("quince")
        self.element("No matching thoughts yet.")

    def screens(self):
        """Each screen in turn, from the first one; the names are for messages."""
        for name, go in (("capture", lambda: None), ("notes", self.go_to_notes),
                         ("nothing found", self.search_in_vain), ("note", self.open_note),
                         ("alert", self.ask_to_delete)):
            go()
            yield name
            if name == "alert":
                self.keyboard.press("Escape")
            self.element("Capture").press()
            self.until_focused(self.words("Note text"))

    def test_the_tree_is_in_the_order_in_which_it_is_seen(self):
        for screen in self.screens():
            with self.subTest(screen):
                # What lies behind the alert is not to be used meanwhile, and so is left out.
                leaves = [(element, element.rectangle()) for element in self.showing()
                          if not element.children()
                          and (screen != "alert" or element.has("enabled"))]
                self.assertGreater(len(leaves), 3)
                for (one, before), (other, after) in zip(leaves, leaves[1:], strict=False):
                    # Below it, or beside it in the same line.
                    is_below = after[1] + after[3] / 2 >= before[1]
                    is_before = (after[1] + after[3] <= before[1] + 1
                                 or (after[0] < before[0] and after[1] < before[1] + before[3]
                                     and before[1] < after[1] + after[3]))
                    self.assertTrue(is_below and not is_before,
                                    f"{screen}: {one} at {before} comes before {other} at {after}")

    def test_one_thing_has_the_keyboard_on_every_screen(self):
        for screen in self.screens():
            with self.subTest(screen):
                self.assertEqual(len(self.focused()), 1, self.focused())

    def test_every_text_that_is_seen_is_a_text_of_the_program(self):
        known = set(table(self.language).values())
        own = {line for body in NOTES for line in body.split("\n")} | {"Quillmark", "quince"}
        patterns = [self.words(key) for key in ("%d notes", "%d characters", "Open note: %@")]
        for screen in self.screens():
            with self.subTest(screen):
                for text in self.quillmark.texts():
                    is_number = any(c.isdigit() for c in text)
                    is_pattern = any(
                        text.startswith(p.split("%")[0]) and text.endswith(p[p.index("%") + 2:])
                        for p in patterns)
                    # Dates and counts.
                    self.assertTrue(text in known or text in own or is_pattern or is_number,
                                    f"{screen}: “{text}”")

    def test_what_is_seen_can_be_found_by_its_identifier(self):
        expected = {
            "capture": {"captureTab": "Capture", "libraryTab": "Notes", "noteEditor": "Note text",
                        "saveNote": "Save this thought"},
            "notes": {"searchNotes": "Find a thought…", "noteList": "Notes"},
            "nothing found": {"searchNotes": "Find a thought…", "clearSearch": "Clear search"},
            "note": {"noteEditor": "Note text", "saveEdit": "Save changes",
                     "deleteNote": "Delete note"},
            "alert": {"cancelDelete": "Cancel", "confirmDelete": "Delete"},
        }
        for screen in self.screens():
            with self.subTest(screen):
                found = {element.identifier(): element for element in self.showing()}
                for identifier, name in expected[screen].items():
                    self.assertIn(identifier, found)
                    self.assertEqual(found[identifier].name(), self.words(name))
                # They are for programs: no reader comes across them.
                del found[""]
                for identifier, element in found.items():
                    self.assertNotIn(identifier, (element.name(), element.description()))
        self.keyboard.press("Escape")
        self.quillmark.launcher()
        self.assertIn("floatingLauncher", [element.identifier() for element in self.showing()])

    # What is told

    def test_only_what_gets_the_keyboard_is_told(self):
        note = self.words("Note text")
        search = self.words("Find a thought…")
        row = self.words("Open note: %@").replace("%@", "milk")
        notes = self.element("Notes")
        self.assertEqual(self.heard_of_focus(notes.press, search), [search])
        self.assertEqual(self.heard_of_focus(self.row("milk").press, note), [note])
        back = self.element("All notes")
        self.assertEqual(self.heard_of_focus(back.press, row), [row])
        self.assertEqual(
            self.heard_of_focus(lambda: self.keyboard.press("Return"), note), [note])
        delete = self.element("Delete note")
        cancel = self.words("Cancel")
        self.assertEqual(self.heard_of_focus(delete.press, cancel), [cancel])
        self.assertEqual(
            self.heard_of_focus(lambda: self.keyboard.press("Escape"), note), [note])

    def test_the_text_of_a_note_is_no_news_when_it_is_opened(self):
        # A reader would read it out, and then not say what has the keyboard.
        self.go_to_notes()
        listener = self.listen()
        self.row("milk").press()
        self.element("Save changes")
        self.until_focused(self.words("Note text"))
        self.assertEqual(listener.text_changes(), [])

        self.keyboard.type("y")
        until(lambda: listener.text_changes() == ["insert"], "what is typed is told")

    def test_a_deletion_tells_of_the_note_that_comes_next(self):
        self.ask_to_delete()
        row = self.words("Open note: %@").replace("%@", "bread")
        rows = [self.words("Open note: %@").replace("%@", body.split("\n")[0]) for body in NOTES]

        listener = self.desktop.assistive.listen()
        self.addCleanup(listener.close)
        self.element("Delete").press()

        until(lambda: listener.names(), "something is told to have the keyboard")
        self.until_focused(listener.names()[0])
        self.assertEqual(len(listener.names()), 1)
        self.assertIn(listener.names()[0], rows)
        self.assertIn(row, rows)

    def test_tab_stops_at_both_tabs_on_both_screens(self):
        for go, first in ((lambda: None, self.words("Note text")),
                          (self.go_to_notes, self.words("Find a thought…"))):
            go()
            passed = [first]
            while passed.count(first) < 2:
                listener = self.desktop.assistive.listen()
                self.keyboard.press("Tab")
                passed.append(until(listener.names, f"the keyboard goes on from {passed[-1]}")[-1])
                listener.close()
                self.assertLess(len(passed), 15, passed)
            self.assertIn(self.words("Capture"), passed)
            self.assertIn(self.words("Notes"), passed)

    def test_the_tab_that_is_checked_leaves_the_note_when_it_is_toggled(self):
        self.open_note()

        self.element("Notes").perform("Toggle")

        self.until_focused(self.words("Find a thought…"))
        self.assertTrue(self.element("Notes").has("checked"))

    def test_nothing_behind_the_alert_can_be_pressed(self):
        self.open_note()
        save = self.element("Save changes")
        self.keyboard.type("!")
        until(lambda: save.has("enabled"), "there is something to save")

        self.element("Delete note").press()

        alert = self.element("Delete this note?", "alert message")
        until(lambda: alert.has("modal"), "the alert is modal")
        within = {repr(element) for element in alert.descendants()}
        for element in self.showing():
            if element.actions() and repr(element) not in within:
                self.assertFalse(element.has("enabled"), element)
        self.assertEqual(save.actions(), [])
        self.keyboard.press("Escape")
        self.until_focused(self.words("Note text"))
        self.assertTrue(save.has("enabled"))
        self.assertEqual(self.data.read_notes()[0].body, NOTES[0])

    def test_a_search_and_a_copy_are_announced(self):
        self.go_to_notes()
        listener = self.listen()
        self.keyboard.type("milk")
        until(lambda: self.words("1 note") in listener.announced(), "what was found is announced")
        self.keyboard.type("!")
        until(lambda: self.words("No matching thoughts yet.") in listener.announced(),
              "that nothing was found is announced")
        self.keyboard.press("ctrl+u")
        self.row("milk").press()
        self.element("Copy text").press()
        until(lambda: self.words("Copied") in listener.announced(), "the copy is announced")
        # Once each: “m” and “mi” find two notes and one, and “milk!” is the first to find none.
        heard = listener.announced()
        self.assertEqual([one for one, next_one in zip(heard, heard[1:]) if one == next_one], [])

    def test_rows_are_items_of_a_list_with_their_excerpt(self):
        self.go_to_notes()
        rows = self.row("milk").parent().children()
        self.assertEqual([row.role() for row in rows], ["list item"] * 3)
        self.assertEqual([row.index() for row in rows], [0, 1, 2])
        self.assertTrue(all("Press" in row.actions() for row in rows))
        self.assertTrue(self.row("bread").description().startswith("of rye, and butter\n"))

    def test_each_key_tells_of_what_it_changed_and_once(self):
        for go, name in ((lambda: None, "Note text"), (self.go_to_notes, "Find a thought…"),
                         (self.open_note, "Note text")):
            go()
            field = self.element(name, "text")
            self.keyboard.type("m")
            until(lambda: "m" in field.text(), "a letter is typed")
            self.until_quiet()
            for key in "i", "l":
                listener = self.listen()
                before = field.text()
                self.keyboard.type(key)
                until(lambda: field.text() != before, "a letter is typed")
                self.until_quiet()
                # The status has one name while a draft is pending and another one when it is safe.
                status = self.words("Saving draft…"), self.words("Saved on this Mac")
                names = [name for kind, name in listener.changes()
                         if kind == "accessible-name" and name not in status]
                self.assertEqual(len(names), len(set(names)), names)
                for changed in names:
                    self.assertTrue(any(c.isdigit() for c in changed)
                                    or changed in (self.words("No matching thoughts yet."),
                                                   self.words("Try another keyword.")), names)
                told = [change for change in listener.changes() if change[0] != "accessible-name"]
                self.assertEqual(len(told), len(set(told)), told)
                listener.close()
            self.keyboard.press("ctrl+a")
            self.keyboard.press("Delete")

    def until_quiet(self):
        """Until the draft is safe: no more changes come of the last key."""
        if self.quillmark.has_element(name=self.words("Saving draft…")):
            self.element("Saved on this Mac")


class AssistiveTechnologyInChinese(AssistiveTechnology):
    language = "zh-Hans"


if __name__ == "__main__":
    main()
