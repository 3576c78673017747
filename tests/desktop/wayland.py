# SPDX-License-Identifier: MIT
"""The program in a Wayland session, before a native window that has the keyboard."""

import unittest

from harness import DesktopTest, main, until
from harness.input import Mouse
from harness.waiting import holds_for
from harness.wayland import GnomeShellDesktop, NativeWindow, WaylandDesktop


class Wayland(DesktopTest):
    make_desktop = WaylandDesktop

    @classmethod
    def setUpClass(cls):
        if not cls.make_desktop.is_available():
            raise unittest.SkipTest(
                f"{cls.make_desktop.compositor}, Xwayland or foot is not installed")
        cls.desktop = cls.enterClassContext(cls.make_desktop())

    def setUp(self):
        super().setUp()
        self.native = NativeWindow(self.desktop, self.home)
        self.addCleanup(self.native.close)

        # GNOME Shell gives a window no keyboard by itself that opens while somebody types.
        def is_heard():
            self.mouse.click((400, 400))
            self.keyboard.type("a")
            return self.native.text()
        until(is_heard, "the native window has the keyboard")
        self.keyboard.type("z")
        until(lambda: self.native.text().endswith("z"), "it has got all keys")
        self.typed = self.native.text()
        self.quillmark = self.start()

    def expect_native_gets(self, text):
        """That it gets these keys, and has got no other ones."""
        self.keyboard.type(text)
        self.typed += text
        until(lambda: self.native.text() == self.typed,
              f"the native window has “{self.typed}” and not “{self.native.text()}”")

    def open_menu_of_bubble(self):
        self.mouse.click(self.quillmark.launcher().centre(), Mouse.RIGHT)
        menu = until(self.quillmark.popup, "the menu is open")
        until(lambda: self.windows.has_input(menu.id), "it has the keyboard")
        return menu

    def expect_closed(self):
        until(lambda: self.quillmark.popup() is None, "the menu is closed")

    def test_a_thought_is_kept_and_the_native_window_has_the_keyboard_again(self):
        self.quillmark.open_editor()

        self.keyboard.type("a thought")
        until(lambda: self.data.draft() == "a thought", "the editor has the keys")
        self.keyboard.press("ctrl+Return")

        self.quillmark.launcher()
        self.assertEqual([note.body for note in self.data.read_notes()], ["a thought"])
        self.expect_native_gets("b")

    def test_a_click_beside_the_editor_reaches_the_native_window(self):
        self.write_settings({"launcher.x": 300, "launcher.y": 600})
        self.quillmark.stop()
        self.quillmark = self.start()
        x, y, width, height = self.quillmark.open_editor().rectangle()

        self.mouse.click((x + width + 12, y + height // 2))

        self.expect_native_gets("b")

    def test_the_menu_opens_below_the_bubble_and_closes_on_escape(self):
        x, y = self.quillmark.launcher().centre()

        menu = self.open_menu_of_bubble()

        left, top, width, height = menu.rectangle()
        self.assertLess(max(left - x, x - left - width), 3)
        self.assertEqual(top, y + 32, "right below the bubble, which is above every window")
        self.keyboard.press("Escape")
        self.expect_closed()
        self.expect_native_gets("b")

    def test_the_menu_opens_above_a_bubble_at_the_bottom(self):
        self.quillmark.stop()
        self.write_settings({"launcher.x": 700, "launcher.y": 20})
        self.quillmark = self.start()

        menu = self.open_menu_of_bubble()

        _, top, _, height = menu.rectangle()
        self.assertEqual(top + height, self.quillmark.launcher().rectangle()[1])

    def test_the_menu_stays_while_it_has_the_keyboard(self):
        self.open_menu_of_bubble()

        self.mouse.move((1000, 500))

        holds_for(1.2, lambda: self.quillmark.popup() is not None, "the menu stays")
        self.keyboard.press("Escape")
        self.expect_closed()

    def test_the_menu_is_used_with_the_keyboard(self):
        self.open_menu_of_bubble()

        self.keyboard.press("Down")
        self.keyboard.press("Return")

        self.quillmark.editor()
        self.expect_closed()
        self.keyboard.type("from the menu")
        until(lambda: self.data.draft() == "from the menu", "the editor has the keys")
        self.keyboard.press("Escape")
        self.quillmark.launcher()
        self.expect_native_gets("b")

    def test_the_menu_is_used_with_the_mouse(self):
        x, y, width, height = self.open_menu_of_bubble().rectangle()

        self.mouse.click((x + width // 2, y + height * 3 // 4))

        self.assertEqual(self.quillmark.wait_until_ended(), 0)
        self.expect_native_gets("b")

    def test_a_click_on_the_native_window_closes_the_menu(self):
        self.open_menu_of_bubble()

        self.mouse.click((400, 400))

        self.expect_closed()
        self.expect_native_gets("b")

    def test_a_second_right_click_leaves_one_menu(self):
        first = self.open_menu_of_bubble()

        self.mouse.click(self.quillmark.launcher().centre(), Mouse.RIGHT)

        until(lambda: not first.is_viewable() and self.quillmark.popup(), "there is another one")
        self.keyboard.press("Escape")
        self.expect_closed()

    def test_the_bubble_takes_no_keys(self):
        self.mouse.move(self.quillmark.launcher().centre())

        holds_for(0.5, lambda: self.quillmark.shows_editor() is None, "nothing opens")
        self.expect_native_gets("b")


class GnomeShell(Wayland):
    make_desktop = GnomeShellDesktop


if __name__ == "__main__":
    main()
