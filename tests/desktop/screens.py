# SPDX-License-Identifier: MIT
"""Two monitors side by side, and what happens when one is pulled out."""

from Xlib import Xatom

from harness import DesktopTest, main, until

# Width in pixels and millimetres, height in both, and the place of the left upper corner.
LEFT = "960/254x900/238+0+0"
RIGHT = "960/254x900/238+960+0"


class Screens(DesktopTest):
    size = (1920, 900)

    def setUp(self):
        super().setUp()
        self.desktop.run(["xrandr", "--setmonitor", "Left", LEFT, "screen"])
        self.addCleanup(self.desktop.run, ["xrandr", "--delmonitor", "Left"])
        self.desktop.run(["xrandr", "--setmonitor", "Right", RIGHT, "none"])
        self.right_is_there = True
        self.addCleanup(self.pull_out_right)
        self.desktop.run(["xrandr", "--output", "screen", "--primary"])

    def pull_out_right(self):
        if self.right_is_there:
            self.desktop.run(["xrandr", "--delmonitor", "Right"])
            self.right_is_there = False

    def expect_place(self, window, place):
        until(lambda: window.rectangle() == place, f"it is at {place}")

    def drag_to_right_monitor(self, quillmark):
        launcher = quillmark.launcher()
        self.mouse.drag(launcher.centre(), (1000, 300))
        self.expect_place(launcher, (972, 268, 64, 64))  # 12 from the monitor's left edge
        return launcher

    def test_the_bubble_starts_on_the_primary_monitor(self):
        quillmark = self.start()

        self.expect_place(quillmark.launcher(), (960 - 88, 44, 64, 64))

    def test_a_panel_is_left_free_on_its_monitor_alone(self):
        panel = self.open_text_window("Panel", focused=False, x=0, y=0, width=960, height=100)
        self.windows.find(panel.id)._window.change_property(
            self.desktop.display.intern_atom("_NET_WM_STRUT_PARTIAL"), Xatom.CARDINAL, 32,
            [0, 0, 100, 0, 0, 0, 0, 0, 0, 959, 0, 0])
        self.desktop.display.sync()
        quillmark = self.start()

        self.expect_place(quillmark.launcher(), (960 - 88, 144, 64, 64))
        self.mouse.drag(quillmark.launcher().centre(), (400, 20))
        self.expect_place(quillmark.launcher(), (368, 112, 64, 64))
        self.mouse.drag(quillmark.launcher().centre(), (1400, 20))
        self.expect_place(quillmark.launcher(), (1368, 12, 64, 64))

    def test_the_editor_opens_on_the_monitor_of_the_bubble(self):
        quillmark = self.start()
        self.drag_to_right_monitor(quillmark)

        editor = quillmark.open_editor()

        self.expect_place(editor, (972, 268, 424, 560))

    def test_the_chosen_place_returns_with_the_monitor(self):
        quillmark = self.start()
        launcher = self.drag_to_right_monitor(quillmark)
        self.pull_out_right()
        self.expect_place(launcher, (960 - 64 - 12, 268, 64, 64))

        self.desktop.run(["xrandr", "--setmonitor", "Right", RIGHT, "none"])
        self.right_is_there = True

        self.expect_place(launcher, (972, 268, 64, 64))
        until(lambda: quillmark.settings().get("launcher.x") == "972", "the settings follow")

    def test_a_monitor_pulled_out_takes_nothing_with_it(self):
        quillmark = self.start()
        launcher = self.drag_to_right_monitor(quillmark)

        self.pull_out_right()

        self.expect_place(launcher, (960 - 64 - 12, 268, 64, 64))
        until(lambda: quillmark.settings().get("launcher.x") == "884", "the new place is kept")
        self.mouse.click(launcher.centre())
        self.expect_place(quillmark.editor(), (960 - 424 - 12, 268, 424, 560))

    def test_an_open_editor_comes_along_with_what_is_in_it(self):
        quillmark = self.start()
        self.drag_to_right_monitor(quillmark)
        editor = quillmark.open_editor()
        self.keyboard.type("still here")

        self.pull_out_right()

        self.expect_place(editor, (960 - 424 - 12, 268, 424, 560))
        self.assertEqual(quillmark.element("text", "Note text").text(), "still here")
        self.keyboard.press("ctrl+Return")
        self.expect_place(quillmark.launcher(), (884, 268, 64, 64))
        self.assertEqual([note.body for note in self.data.read_notes()], ["still here"])


if __name__ == "__main__":
    main()
