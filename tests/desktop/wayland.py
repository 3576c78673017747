# SPDX-License-Identifier: MIT
"""The program in a Wayland session, before a native window that has the keyboard."""

import unittest

from harness import DesktopTest, main, until
from harness.input import Mouse
from harness.waiting import holds_for
from harness.wayland import (
    GnomeShellDesktop,
    KWinDesktop,
    NativeWindow,
    SwayDesktop,
    WaylandDesktop,
)


class Wayland(DesktopTest):
    make_desktop = WaylandDesktop

    @classmethod
    def setUpClass(cls):
        if not cls.make_desktop.is_available():
            raise unittest.SkipTest(
                f"{cls.make_desktop.compositor} or Xwayland is not installed")
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
        self.quillmark = self.start_on_screen()

    def start_on_screen(self):
        """Starts the program and waits until the bubble can be clicked."""
        before = self.desktop.picture()
        quillmark = self.start()
        centre = quillmark.launcher().centre()
        # For X it is there earlier than for the compositor.
        until(lambda: before is None or self.desktop.picture().colour(*centre)
              != before.colour(*centre), "the compositor shows it")
        return quillmark

    def expect_native_gets(self, text):
        """That it gets these keys, and has got no other ones."""
        self.keyboard.type(text)
        self.typed += text
        until(lambda: self.native.text() == self.typed,
              f"the native window has “{self.typed}” and not “{self.native.text()}”")

    def open_menu_of_bubble(self):
        self.mouse.click(self.quillmark.launcher().centre(), Mouse.RIGHT)
        menu = until(self.quillmark.popup, "the menu is open")
        self.wait_for_keyboard(menu)
        return menu

    def wait_for_keyboard(self, menu):
        until(lambda: self.windows.has_input(menu.id), "it has the keyboard")

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
        self.quillmark.stop()
        self.write_settings({"launcher.x": 300, "launcher.y": 600})
        self.quillmark = self.start_on_screen()
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
        self.quillmark = self.start_on_screen()

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

    def test_the_bubble_opens_the_editor_over_a_full_screen_window_or_is_there_again(self):
        self.keyboard.press("F11")
        self.expect_native_gets("f")

        self.mouse.click(self.quillmark.launcher().centre())
        until(self.quillmark.shows_editor, "the editor is open")
        self.keyboard.type("t")

        until(lambda: self.data.draft() == "t" or self.quillmark.shows_launcher(),
              "the editor has the keys or has made room")
        if self.quillmark.shows_editor():
            self.keyboard.press("Escape")
        self.quillmark.launcher()
        self.typed = self.native.text()
        self.expect_native_gets("b")

    def test_the_bubble_takes_no_keys(self):
        self.mouse.move(self.quillmark.launcher().centre())

        holds_for(0.5, lambda: self.quillmark.shows_editor() is None, "nothing opens")
        self.expect_native_gets("b")


class GnomeShell(Wayland):
    make_desktop = GnomeShellDesktop


class KWin(Wayland):
    make_desktop = KWinDesktop


class Sway(Wayland):
    make_desktop = SwayDesktop

    def wait_for_keyboard(self, menu):
        """It holds it by a grab, which nobody sees but by its keys."""

    test_the_menu_stays_while_it_has_the_keyboard = None
    test_a_second_right_click_leaves_one_menu = None

    def test_the_menu_closes_when_the_pointer_leaves(self):
        self.open_menu_of_bubble()

        self.mouse.move((400, 400))

        self.expect_closed()
        self.expect_native_gets("b")

    def test_a_second_right_click_closes_the_menu(self):
        self.open_menu_of_bubble()

        self.mouse.click(self.quillmark.launcher().centre(), Mouse.RIGHT)

        self.expect_closed()
        self.expect_native_gets("b")


if __name__ == "__main__":
    main()
