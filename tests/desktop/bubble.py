# SPDX-License-Identifier: MIT
"""The bubble: where it is, what it does, and what it leaves alone."""

from harness import DesktopTest, main, until
from harness.waiting import holds_for

INSET = 12


class Bubble(DesktopTest):
    def setUp(self):
        super().setUp()
        self.other = self.open_text_window()
        self.left, self.top, self.right, self.bottom = self.windows.work_area()
        # 88 from the right edge, 108 from the top to its lower edge.
        self.first_place = (self.right - 88, self.top + 44, 64, 64)

    def expect_keyboard_stayed(self):
        before = self.other.text()
        self.keyboard.type("here")
        until(lambda: self.other.text() == before + "here", "the keys go to the other program")
        until(lambda: self.windows.active() == self.other.id, "the other program is active")

    def expect_keyboard_back(self):
        until(lambda: self.windows.has_input(self.other.id), "the keyboard is back")
        self.expect_keyboard_stayed()

    def expect_place(self, quillmark, place):
        until(lambda: quillmark.launcher().rectangle() == place, f"the bubble is at {place}")

    def test_starts_near_the_top_right_corner_and_remembers_that(self):
        quillmark = self.start()

        self.expect_place(quillmark, self.first_place)

        settings = until(lambda: "launcher.y" in quillmark.settings() and quillmark.settings(),
                         "the place is in the settings")
        self.assertEqual(float(settings["launcher.x"]), self.right - 88)
        self.assertEqual(float(settings["launcher.y"]), self.desktop.height - self.top - 108)

    def test_follows_a_drag_and_is_there_again_after_a_restart(self):
        quillmark = self.start()
        x, y = quillmark.launcher().centre()

        self.mouse.drag((x, y), (x - 500, y + 300))

        place = (self.first_place[0] - 500, self.first_place[1] + 300, 64, 64)
        self.expect_place(quillmark, place)
        self.assertIsNone(quillmark.shows_editor())
        self.expect_keyboard_stayed()
        quillmark.stop()
        self.expect_place(self.start(), place)

    def test_comes_back_when_it_is_dropped_beyond_the_edge(self):
        quillmark = self.start()
        corner = (self.desktop.width - 1, self.desktop.height - 1)

        self.mouse.drag(quillmark.launcher().centre(), corner)

        place = (self.right - 64 - INSET, self.bottom - 64 - INSET, 64, 64)
        self.expect_place(quillmark, place)
        self.mouse.drag(quillmark.launcher().centre(), (0, 0))
        self.expect_place(quillmark, (self.left + INSET, self.top + INSET, 64, 64))

    def test_is_brought_back_from_a_place_outside_the_screen(self):
        self.write_settings({"launcher.x": 5000, "launcher.y": 5000})

        quillmark = self.start()

        x, y = self.right - 64 - INSET, self.top + INSET
        self.expect_place(quillmark, (x, y, 64, 64))
        until(lambda: quillmark.settings().get("launcher.x") == str(x), "the settings follow")
        self.assertEqual(float(quillmark.settings()["launcher.y"]), self.desktop.height - y - 64)

    def test_opens_the_editor_inside_the_screen_from_a_far_corner(self):
        self.write_settings({"launcher.x": 20, "launcher.y": 100})
        quillmark = self.start()

        editor = quillmark.open_editor()

        place = (self.left + INSET, self.bottom - INSET - 560, 424, 560)
        until(lambda: editor.rectangle() == place, f"the editor is at {place}")

    def test_takes_a_press_that_moves_four_points_for_a_click(self):
        quillmark = self.start()
        x, y = quillmark.launcher().centre()

        self.mouse.drag((x, y), (x + 4, y), steps=4)

        quillmark.editor()
        quillmark.element("text", "Note text")
        self.keyboard.press("Escape")
        self.expect_place(quillmark, self.first_place)

    def test_takes_a_press_that_went_far_and_came_back_for_a_drag(self):
        quillmark = self.start()
        x, y = quillmark.launcher().centre()

        self.mouse.drag((x, y), (x - 30, y), release=False)
        self.expect_place(quillmark, (self.first_place[0] - 30, *self.first_place[1:]))
        self.mouse.move((x - 1, y))
        self.mouse.release()

        self.expect_place(quillmark, (self.first_place[0] - 1, *self.first_place[1:]))
        self.expect_keyboard_stayed()
        self.assertIsNone(quillmark.shows_editor())

    def test_counts_its_corners_as_its_own_where_windows_are_composited(self):
        if not self.windows.has_compositor():
            self.skipTest("without a compositing manager the window is cut to the visible disc")
        quillmark = self.start()
        x, y, _, _ = quillmark.launcher().rectangle()

        self.mouse.click((x + 1, y + 1))

        quillmark.editor()

    def test_keeps_a_menu_open_that_was_asked_for_right_after_a_fold(self):
        self.other.close()
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.press("Escape")
        until(lambda: not quillmark.shows_editor(), "folded")

        self.open_menu(quillmark)

        holds_for(0.8, lambda: quillmark.popup() is not None, "the menu stays open")

    def test_offers_a_note_and_the_end_on_a_right_click(self):
        quillmark = self.start()

        self.open_menu(quillmark)

        until(lambda: self.windows.active() == self.other.id, "the other program stays active")
        self.assertEqual(self.read_menu(quillmark), ["New note", "Quit Quillmark"])
        self.assertIsNone(quillmark.shows_editor())
        self.expect_keyboard_stayed()

    def test_opens_the_editor_from_its_menu(self):
        quillmark = self.start()
        x, y, width, height = self.open_menu(quillmark).rectangle()

        self.mouse.click((x + width // 2, y + height // 4))

        quillmark.editor()
        self.keyboard.type("from the menu")
        until(lambda: self.data.draft() == "from the menu", "the editor gets the keys")
        self.keyboard.press("Escape")
        quillmark.launcher()
        self.expect_keyboard_back()

    def test_ends_the_program_from_its_menu(self):
        quillmark = self.start()
        x, y, width, height = self.open_menu(quillmark).rectangle()

        self.mouse.click((x + width // 2, y + height * 3 // 4))

        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.expect_keyboard_stayed()

    def test_closes_its_menu_on_a_click_elsewhere(self):
        quillmark = self.start()
        self.open_menu(quillmark)

        self.mouse.click((300, 700))

        until(lambda: quillmark.popup() is None, "the menu is closed")
        self.assertIsNone(quillmark.shows_editor())
        self.assertTrue(quillmark.is_running())

    def test_stays_above_windows_that_are_opened_and_raised_later(self):
        quillmark = self.start()
        launcher = quillmark.launcher()

        later = self.open_text_window("Later", x=900, y=20, width=520)
        later.raise_above_others()

        until(lambda: self.windows.top_at(launcher.centre()) == launcher, "the bubble is on top")
        self.mouse.click(launcher.centre())
        quillmark.editor()

    def test_stays_above_a_full_screen_window_and_opens_there(self):
        quillmark = self.start()
        launcher = quillmark.launcher()
        whole = (0, 0, self.desktop.width, self.desktop.height)

        self.windows.make_full_screen(self.other.id)

        until(lambda: self.windows.find(self.other.id).rectangle() == whole, "it fills the screen")
        until(lambda: self.windows.top_at(launcher.centre()) == launcher, "the bubble is on top")
        editor = quillmark.open_editor()
        until(lambda: self.windows.contains(self.windows.top_at(editor.centre()), editor),
              "the editor is above it")
        self.keyboard.type("over all")
        self.keyboard.press("ctrl+Return")
        quillmark.launcher()
        self.assertEqual([note.body for note in self.data.read_notes()], ["over all"])
        self.expect_keyboard_back()

    def test_is_on_every_workspace_and_the_editor_too(self):
        if self.desktop.window_manager == "dwm":
            self.skipTest("this window manager tells nobody which workspace is shown")
        quillmark = self.start()
        launcher = quillmark.launcher()
        self.addCleanup(self.desktop.switch_workspace, 0)

        self.desktop.switch_workspace(1)

        until(lambda: self.windows.top_at(launcher.centre()) == launcher, "the bubble is here")
        editor = quillmark.open_editor()
        self.desktop.switch_workspace(0)
        until(editor.is_viewable, "the editor came along")
        x, y, _, _ = editor.rectangle()
        self.mouse.click((x + 200, y + 300))
        until(lambda: self.windows.has_input(editor.id), "a click gives it the keyboard")
        self.keyboard.type("everywhere")
        until(lambda: self.data.draft() == "everywhere", "and still gets the keys")

    def test_is_in_no_taskbar(self):
        quillmark = self.start()
        launcher = quillmark.launcher()
        self.assertNotIn(launcher.id, self.windows.managed())

        editor = quillmark.open_editor()

        expected = {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER",
                    "_NET_WM_STATE_ABOVE"}
        if self.desktop.window_manager == "awesome":  # It has no pager.
            expected.remove("_NET_WM_STATE_SKIP_PAGER")
        if self.desktop.window_manager != "i3":  # It has no taskbar either and drops them all.
            until(lambda: expected <= editor.states(), "the editor's states are set")


if __name__ == "__main__":
    main()
