# SPDX-License-Identifier: MIT
"""Who has the keyboard after the editor has folded."""

from harness import DesktopTest, main, until
from harness.waiting import holds_for, until_it_stays


class Keyboard(DesktopTest):
    def setUp(self):
        super().setUp()
        self.first = self.open_text_window("First")
        self.quillmark = self.start()

    def work_in(self, window):
        """As long as a person would: a glance of some milliseconds leaves no trace on the X server,
        and an editor that has just come up is still being placed."""
        def is_active():
            return self.windows.active() == window.id and self.windows.has_input(window.id)
        until_it_stays(0.3, is_active, "the user works there")

    def fold(self):
        self.keyboard.press("Escape")
        self.quillmark.launcher()

    def open_again(self, editor):
        """As a click into the editor does."""
        self.windows.activate(editor.id)
        until(lambda: self.windows.has_input(editor.id), "the editor has the keyboard")

    def test_it_goes_to_the_window_that_was_last_worked_in(self):
        if self.desktop.window_manager == "dwm":
            self.skipTest("this window manager activates nothing on demand")
        second = self.open_text_window("Second", x=200, y=200)
        self.windows.activate(self.first.id)
        until(lambda: self.windows.has_input(self.first.id), "the first one has the keyboard")
        editor = self.quillmark.open_editor()
        self.work_in(editor)
        self.windows.activate(second.id)
        self.work_in(second)
        self.open_again(editor)

        self.fold()

        until(lambda: self.windows.has_input(second.id), "it is where the user last was")

    def test_the_workspace_stays(self):
        if self.desktop.window_manager == "dwm":
            self.skipTest("this window manager tells nobody which workspace is shown")
        self.addCleanup(self.desktop.switch_workspace, 0)
        editor = self.quillmark.open_editor()
        self.desktop.switch_workspace(1)
        self.open_again(editor)

        self.fold()

        holds_for(0.5, lambda: self.windows.workspace() == 1, "the workspace is the same")

    def test_what_is_minimised_stays_so(self):
        if self.desktop.window_manager in ("i3", "bspwm", "dwm"):
            self.skipTest("this window manager minimises nothing")
        editor = self.quillmark.open_editor()
        self.windows.minimise(self.first.id)
        first = self.windows.find(self.first.id)
        until(lambda: "_NET_WM_STATE_HIDDEN" in first.states(), "it is minimised")
        self.open_again(editor)

        self.fold()

        holds_for(0.5, lambda: "_NET_WM_STATE_HIDDEN" in first.states(), "it is still")


if __name__ == "__main__":
    main()
