# SPDX-License-Identifier: MIT
"""What other programs offer is pasted, and one that does not give it holds nothing up."""

import signal

from harness import DesktopTest, main, until
from harness.clipboard import ClipboardOwner
from harness.input import Mouse

SILENT = ("silent", "after targets", "after a part")


class Clipboard(DesktopTest):
    def setUp(self):
        super().setUp()
        self.quillmark = self.start()
        self.quillmark.open_editor()
        self.editor = self.quillmark.element("text", "Note text")

    def offer(self, offers, **options):
        owner = ClipboardOwner(self.desktop.environment["DISPLAY"], offers, **options)
        self.addCleanup(owner.close)
        return owner

    def until_text_is(self, text):
        until(lambda: self.editor.text() == text, f"the text is {text[:40]!r}")

    def clear(self):
        self.keyboard.press("ctrl+a")
        self.keyboard.press("Delete")
        self.until_text_is("")

    def test_every_kind_of_text_is_pasted(self):
        letters = "Zürich 想到 🪶"
        for offers, pasted in [
                ({"UTF8_STRING": letters.encode()}, letters),
                ({"text/plain;charset=utf-8": letters.encode()}, letters),
                ({"text/plain": letters.encode()}, letters),
                ({"STRING": "Zürich".encode("latin-1")}, "Zürich"),
                ({"STRING": b"Z?rich", "UTF8_STRING": letters.encode()}, letters),
                ({"UTF8_STRING": b"one\r\ntwo\rthree"}, "one\ntwo\nthree"),
                ({"text/html": f"<p>{letters}</p><p>two</p>".encode()}, letters + "\ntwo"),
                ({"text/html": f"<b>{letters}</b>".encode("utf-16")}, letters),
                ({"text/html": b"<b>bold</b>", "UTF8_STRING": b"plain"}, "plain"),
                ({"text/uri-list": b"file:///notes/one%20two\r\n"}, "file:///notes/one two"),
                ({"image/png": b"no text"}, "")]:
            with self.subTest(offers=offers):
                owner = self.offer(offers)

                self.keyboard.press("ctrl+v")

                until(owner.was_asked, "it is asked for what it has")
                self.keyboard.type(".")
                self.until_text_is(pasted + ".")
                self.clear()

    def test_megabytes_are_pasted(self):
        text = "".join(f"line {number} of a long text\n" for number in range(80_000))
        self.offer({"UTF8_STRING": text.encode()})

        self.keyboard.press("ctrl+v")

        until(lambda: self.data.draft() == text, "all of it is in the draft", 60)

    def test_a_long_text_is_safe_before_all_of_it_is_seen(self):
        text = "".join(f"line {number}\n" for number in range(500_000))
        self.offer({"UTF8_STRING": text.encode()})
        self.keyboard.press("ctrl+v")
        until(lambda: self.quillmark.has_element("label", f"{len(text):,} characters"),
              "it is counted", 20)

        self.quillmark.send(signal.SIGTERM)

        self.quillmark.wait_until_ended()
        self.assertEqual(self.data.draft(), text)
        again = self.start()
        again.open_editor()
        # From its end on: reading all of it over and over would hold up what it waits for.
        field = again.element("text", "Note text")
        until(lambda: field.text().endswith("\nline 499999\n"), "its end is there again", 20)
        again.element("label", f"{len(text):,} characters")

    def test_what_was_copied_here_is_pasted(self):
        self.keyboard.type("twice ")
        self.keyboard.press("ctrl+a")
        self.keyboard.press("ctrl+c")
        self.keyboard.press("Right")

        self.keyboard.press("ctrl+v")
        self.keyboard.press("shift+Insert")

        self.until_text_is("twice twice twice ")

    def test_the_menu_pastes(self):
        self.offer({"UTF8_STRING": b"from the menu"})

        self.mouse.click(self.editor.centre(), Mouse.RIGHT)
        self.choose(self.quillmark, "Paste\tCtrl+V")

        self.until_text_is("from the menu")

    def test_the_middle_button_pastes_what_is_selected_elsewhere(self):
        self.keyboard.type("nds")
        self.keyboard.press("Home")
        self.keyboard.type("e")
        self.until_text_is("ends")
        self.offer({"UTF8_STRING": b" here"}, selection="PRIMARY")

        self.mouse.click(self.editor.centre(), Mouse.MIDDLE)

        # A click below the text is one at its end.
        self.until_text_is("ends here")

    def test_the_search_field_pastes(self):
        self.keyboard.type("buy milk")
        self.keyboard.press("ctrl+Return")
        self.quillmark.open_editor()
        self.quillmark.element(name="Notes").press()
        self.quillmark.element(name="Open note: buy milk")
        self.offer({"UTF8_STRING": b"bread"})

        self.keyboard.press("ctrl+v")

        self.quillmark.element(name="No matching thoughts yet.")
        self.assertIn("bread", self.quillmark.texts())

    def test_an_owner_that_does_not_answer_holds_no_typing_up(self):
        for manner in SILENT:
            with self.subTest(manner=manner):
                owner = self.offer({"UTF8_STRING": b"never"}, manner=manner)

                self.keyboard.press("ctrl+v")
                until(owner.was_asked, "it is asked for what it has")
                self.keyboard.type(manner)

                self.until_text_is(manner)
                self.clear()

    def test_a_selection_that_nobody_gives_holds_no_typing_up(self):
        owner = self.offer({"UTF8_STRING": b"never"}, selection="PRIMARY", manner="silent")

        self.mouse.click(self.editor.centre(), Mouse.MIDDLE)
        until(owner.was_asked, "it is asked for what it has")
        self.keyboard.type("typed")

        self.until_text_is("typed")

    def test_an_owner_that_does_not_answer_holds_no_menu_up(self):
        self.offer({"UTF8_STRING": b"never"}, manner="silent")

        self.mouse.click(self.editor.centre(), Mouse.RIGHT)

        until(self.quillmark.popup, "the menu is open", 4)
        self.keyboard.press("Escape")
        until(lambda: self.quillmark.popup() is None, "the menu is closed")

    def test_an_owner_that_does_not_answer_holds_no_search_up(self):
        self.quillmark.element(name="Notes").press()
        self.quillmark.element(name="Open Capture to write your first one.")
        owner = self.offer({"UTF8_STRING": b"never"}, manner="silent")

        self.keyboard.press("ctrl+v")
        until(owner.was_asked, "it is asked for what it has")
        self.keyboard.type("bread")

        until(lambda: "bread" in self.quillmark.texts(), "the field takes the keys")
        self.mouse.click(self.quillmark.element("text").centre(), Mouse.RIGHT)
        until(self.quillmark.popup, "the menu is open", 4)
        self.keyboard.press("Escape")

    def test_a_save_waits_for_a_paste_that_takes_its_time(self):
        owner = self.offer({"UTF8_STRING": b"pasted"}, manner="slow")
        self.keyboard.type("typed ")
        self.until_text_is("typed ")

        self.keyboard.press("ctrl+v")
        until(owner.was_asked, "it is asked for what it has")
        owner.hurry_up()
        self.keyboard.press("ctrl+Return")

        self.quillmark.launcher()
        self.assertEqual([note.body for note in self.data.read_notes()], ["typed pasted"])

    def test_a_paste_that_takes_its_time_comes_where_it_was_asked_for(self):
        text = "pasted " * 20
        owner = self.offer({"UTF8_STRING": text.encode()}, manner="slow")
        self.keyboard.type("<>")
        self.keyboard.press("Left")

        self.keyboard.press("ctrl+v")
        until(owner.was_asked, "it is asked for what it has")
        self.keyboard.type("meanwhile")
        self.until_text_is("<meanwhile>")
        owner.hurry_up()

        self.until_text_is(f"<{text}meanwhile>")
        self.keyboard.type("!")
        self.until_text_is(f"<{text}meanwhile!>")


if __name__ == "__main__":
    main()
