# SPDX-License-Identifier: MIT
"""What other programs drop on the bubble becomes a note, and in the editor goes on being written."""

from harness import DesktopTest, main, until
from harness.dragging import DragSource


class Drops(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.quillmark = self.start()

    def source(self, offers, **options):
        source = DragSource(self.desktop.environment["DISPLAY"], offers, **options)
        self.addCleanup(source.close)
        return source

    def drop_on_bubble(self, offers):
        launcher = self.quillmark.launcher()
        return self.source(offers).drop(launcher, launcher.centre())

    def bodies(self):
        return [path.read_bytes().split(b"\n---\n", 1)[-1].strip().decode()
                for path in self.data.note_files()]

    def until_kept(self, *texts):
        until(lambda: sorted(self.bodies()) == sorted(texts), f"there are notes {texts}")

    def until_said(self, text):
        until(lambda: any(text in said for said in self.quillmark.texts()), f"it says “{text}”")

    def test_a_text_becomes_a_note(self):
        for number, (offers, text) in enumerate([
                ({"text/plain;charset=utf-8": "想到就记 🪶".encode()}, "想到就记 🪶"),
                ({"UTF8_STRING": b"utf8"}, "utf8"),
                ({"text/html": b"<p>one</p><p>two</p>"}, "one\ntwo")], 1):
            with self.subTest(offers=offers):
                self.assertTrue(self.drop_on_bubble(offers))

                until(lambda: len(self.bodies()) == number, "there is a note more")
                self.assertIn(text, self.bodies())
        self.assertTrue(self.quillmark.shows_launcher())

    def test_files_become_one_note_of_their_addresses(self):
        self.drop_on_bubble({"text/uri-list": b"file:///a%20b.txt\r\nhttps://c.example/d\r\n"})

        self.until_kept("file:///a%20b.txt\nhttps://c.example/d")

    def test_the_unfinished_thought_stays(self):
        self.quillmark.open_editor()
        self.keyboard.type("half")
        self.keyboard.press("Escape")
        self.quillmark.launcher()

        self.drop_on_bubble({"UTF8_STRING": b"whole"})

        self.until_kept("whole")
        self.assertEqual(self.data.draft(), "half")

    def test_what_is_no_text_is_refused_with_a_sentence(self):
        for offers, why in [({"text/plain;charset=utf-8": b"\xff\xfe"}, "no UTF-8 text"),
                            ({"UTF8_STRING": b" \n"}, "there is no text in what was dropped")]:
            with self.subTest(offers=offers):
                self.drop_on_bubble(offers)

                self.until_said(why)
        self.assertEqual(self.bodies(), [])

    def test_what_nobody_could_read_is_not_taken(self):
        self.assertFalse(self.drop_on_bubble({"image/png": b"a picture"}))

        self.assertEqual(self.bodies(), [])

    def test_a_source_that_hands_nothing_over_is_told_of(self):
        launcher = self.quillmark.launcher()
        offers = {"text/uri-list": b"file:///x", "UTF8_STRING": b"x", "text/html": b"x"}
        for manner in "silent", "after a part":
            with self.subTest(manner=manner):
                self.source(offers, manner=manner).drop(launcher, launcher.centre())

                self.until_said("the other program did not hand over")
        self.assertEqual(self.bodies(), [])

    def test_a_source_that_hands_nothing_over_changes_no_text(self):
        editor = self.quillmark.open_editor()
        text = self.quillmark.element("text", "Note text")

        self.assertFalse(self.source({"UTF8_STRING": b"x"}, manner="silent").drop(
            editor, text.centre()))

        self.keyboard.type("on")
        until(lambda: text.text() == "on", "the text is written on")

    def test_the_search_takes_a_text(self):
        editor = self.quillmark.open_editor()
        self.keyboard.press("ctrl+f")
        search = self.quillmark.element("text", "Find a thought…")

        self.assertTrue(self.source({"UTF8_STRING": b"milk"}).drop(editor, search.centre()))

        until(lambda: search.text() == "milk", "it is searched for")

    def test_a_save_that_fails_is_told(self):
        (self.data.markdown / ".format").write_text("of another kind")

        self.drop_on_bubble({"UTF8_STRING": b"not kept"})

        self.until_said("invalid metadata")
        self.assertEqual(self.bodies(), [])

    def test_a_text_dropped_in_the_editor_takes_the_keyboard_along(self):
        editor = self.quillmark.open_editor()
        text = self.quillmark.element("text", "Note text")
        other = self.open_text_window()
        self.windows.activate(other.id)
        until(lambda: self.windows.has_input(other.id), "the user works elsewhere")

        self.assertTrue(self.source({"UTF8_STRING": b"dropped"}).drop(editor, text.centre()))

        until(lambda: text.text() == "dropped", "it is in the text")
        until(lambda: self.windows.has_input(editor.id), "the editor has the keyboard")
        self.keyboard.type("!")
        until(lambda: self.data.draft() == "dropped!", "and is written on")


if __name__ == "__main__":
    main()
