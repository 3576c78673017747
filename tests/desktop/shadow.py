# SPDX-License-Identifier: MIT
"""The shadow around the editor, which a compositing manager makes possible."""

from harness import DesktopTest, main, until
from harness.waiting import holds_for, until_it_stays

# How far it reaches beyond the editor; on the right as on the left.
LEFT, TOP, BOTTOM = 26, 18, 34


class Shadow(DesktopTest):
    def setUp(self):
        super().setUp()
        self.other = self.open_text_window(x=60, y=60, width=1300, height=800)
        self.write_settings({"launcher.x": 800, "launcher.y": 700})

    def shadow_windows(self):
        return [window for window in self.windows.on_screen()
                if window.property("_GTK_FRAME_EXTENTS") is not None and window.is_viewable()]

    def brightness(self, x, y):
        return sum(self.desktop.picture(x, y, 1, 1).colour(0, 0))

    def profile(self, points):
        """How bright the screen is at each of the points."""
        return [self.brightness(*point) for point in points]

    def below(self, editor):
        """From the lower edge downwards, in the middle of it."""
        x, y, width, height = editor.rectangle()
        return [(x + width // 2, y + height + away) for away in (1, 8, 16, 24, BOTTOM + 6)]

    def beside(self, editor):
        x, y, _, height = editor.rectangle()
        return [(x - away, y + height // 2) for away in (2, 9, 16, LEFT + 6)]

    def above(self, editor):
        x, y, width, _ = editor.rectangle()
        return [(x + width // 2, y - away) for away in (2, 8, TOP + 6)]

    def open(self):
        """The editor, before the window of another program that is one colour."""
        quillmark = self.start()
        editor = quillmark.open_editor()
        x, y, width, height = editor.rectangle()
        self.assertGreater(x - LEFT, 60)
        self.assertGreater(60 + 800, y + height + BOTTOM)
        return quillmark, editor

    def need_compositor(self):
        if not self.windows.has_compositor():
            self.skipTest("nothing is composited here")

    def expect_shadow(self, editor):
        def is_there():
            return all(sorted(line) == line and line[-1] - line[0] > 20 for line in
                       map(self.profile, (self.below(editor), self.beside(editor),
                                          self.above(editor))))
        until(is_there, "it is darker the closer to the editor, on every side")

    def expect_none(self, places):
        until(lambda: len({self.brightness(*place) for place in places}) == 1, "there is no shadow")

    def test_nothing_is_around_the_editor_where_nothing_is_composited(self):
        if self.windows.has_compositor():
            self.skipTest("windows are composited here")
        _, editor = self.open()

        holds_for(0.5, lambda: len(set(self.profile(self.below(editor)))) == 1, "no shadow comes")
        self.assertEqual(self.shadow_windows(), [])
        self.assertEqual(editor.rectangle()[2:], (424, 560))

    def test_the_editor_casts_a_shadow(self):
        self.need_compositor()
        _, editor = self.open()

        self.expect_shadow(editor)

        self.assertEqual(editor.rectangle()[2:], (424, 560))
        below, above = self.below(editor)[1], self.above(editor)[1]
        self.assertLess(self.brightness(*below), self.brightness(*above), "the light is above")

    def test_the_editor_itself_lies_in_no_shadow(self):
        self.need_compositor()
        _, editor = self.open()
        self.expect_shadow(editor)
        x, y, width, height = editor.rectangle()

        # The surface lets some of what is behind it through, which is of one colour.
        line = self.profile([(x + column, y + height - 8)
                             for column in (60, width // 2, width - 60)])

        self.assertEqual(len(set(line)), 1)

    def test_it_goes_where_the_editor_goes_and_ends_with_it(self):
        self.need_compositor()
        quillmark, editor = self.open()
        self.expect_shadow(editor)
        earlier = self.below(editor)

        x, y, *_ = editor.rectangle()

        def moves():
            self.windows.move(editor.id, x - 60, y - 40)
            return editor.rectangle()[:2] != (x, y)
        # What comes within the first 0.3 seconds is undone: it would be the window manager's doing.
        until_it_stays(0.5, moves, "the window manager has moved it")
        self.expect_shadow(editor)
        places = earlier[-2:] + self.below(editor)
        self.keyboard.press("Escape")
        quillmark.launcher()

        self.expect_none(places)
        self.assertEqual(self.shadow_windows(), [])

    def test_it_is_there_again_with_the_editor(self):
        self.need_compositor()
        quillmark, editor = self.open()
        self.keyboard.press("Escape")
        quillmark.launcher()

        editor = quillmark.open_editor()
        self.expect_shadow(editor)
        self.windows.destroy(editor.id)
        quillmark.launcher()

        self.expect_shadow(quillmark.open_editor())

    def test_a_click_on_it_reaches_the_window_below(self):
        self.need_compositor()
        quillmark, editor = self.open()
        self.expect_shadow(editor)
        self.keyboard.type("ours")
        until(lambda: quillmark.data.draft() == "ours", "the editor has the keyboard")

        self.mouse.click(self.below(editor)[1])
        until(lambda: self.windows.has_input(self.other.id), "the other window is clicked")
        self.keyboard.type("theirs")

        until(lambda: self.other.text() == "theirs", "it has the keyboard")

    def test_it_stays_right_below_the_editor(self):
        self.need_compositor()
        _, editor = self.open()
        self.expect_shadow(editor)

        for other in (self.open_text_window("Third", x=100, y=100), self.other):
            self.windows.activate(other.id)
            until(lambda: self.windows.active() == other.id, "another window comes up")
            until(lambda: self.stands_right(editor), "nothing is between the two")

    def stands_right(self, editor):
        """Whether the shadow comes right below the editor among the windows on the screen; under
        mutter, which puts such windows on top of all, right above it."""
        shown = [window for window in self.windows.on_screen() if window.is_viewable()]
        shadows = self.shadow_windows()
        frame = next(window for window in shown if self.windows.contains(window, editor))
        steps = {shown.index(frame) - shown.index(shadow) for shadow in shadows}
        return steps <= ({1, -1} if self.desktop.window_manager == "mutter" else {1})

    def test_a_window_of_it_is_in_no_list(self):
        self.need_compositor()
        quillmark, editor = self.open()
        self.expect_shadow(editor)

        for window in self.shadow_windows():
            self.assertTrue(window.bypasses_window_manager())
            self.assertNotIn(window.id, self.windows.managed())
            self.assertNotIn(window, quillmark.windows())
        names = [child.name() for child in quillmark.accessible().children()]
        self.assertTrue(names)
        for name in names:
            self.assertRegex(name, "^Quillmark")


if __name__ == "__main__":
    main()
