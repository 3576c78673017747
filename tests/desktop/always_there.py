# SPDX-License-Identifier: MIT
"""Whatever happens to its windows, the bubble or the editor is on the screen."""

from harness import DesktopTest, main, until
from harness.waiting import holds_for, until_it_stays


class AlwaysThereTest(DesktopTest):
    def close(self, window):
        """As the user does, by the window manager where that can."""
        if self.windows.supports("_NET_CLOSE_WINDOW"):
            self.windows.close(window.id)
        else:
            self.windows.ask_to_close(window.id)

    def need_activation(self):
        if self.desktop.window_manager == "dwm":
            self.skipTest("this window manager activates nothing on demand")


class AlwaysThere(AlwaysThereTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.other = self.open_text_window()

    def open_with_text(self):
        quillmark = self.start()
        editor = quillmark.open_editor()
        self.keyboard.type("kept")
        until(lambda: quillmark.element("text", "Note text").text() == "kept", "it is typed")
        return quillmark, editor

    def expect_bubble(self, quillmark):
        launcher = quillmark.launcher()
        until(lambda: self.windows.top_at(launcher.centre()) == launcher, "the bubble is on top")
        until(lambda: quillmark.shows_editor() is None, "the editor is folded")
        until(lambda: self.data.draft() == "kept", "the draft is saved")

    def is_one_of_them_seen(self, quillmark):
        return any(window and self.windows.contains(self.windows.top_at(window.centre()), window)
                   for window in (quillmark.shows_launcher(), quillmark.shows_editor()))

    def expect_it_opens_again(self, quillmark):
        quillmark.open_editor()
        self.keyboard.type("!")
        until(lambda: self.data.draft() == "kept!", "it opens again with the text")

    def test_an_editor_that_is_minimised_folds(self):
        quillmark, editor = self.open_with_text()

        self.windows.minimise(editor.id)

        # The last one minimises no utility windows, the others nothing.
        if self.desktop.window_manager in ("i3", "bspwm", "dwm", "mutter"):
            holds_for(1.5, editor.is_viewable, "the editor stays")
            return
        self.expect_bubble(quillmark)
        self.expect_it_opens_again(quillmark)

    def test_an_editor_that_is_unmapped_folds(self):
        quillmark, editor = self.open_with_text()

        self.windows.unmap(editor.id)

        self.expect_bubble(quillmark)
        self.expect_it_opens_again(quillmark)

    def test_an_editor_that_is_destroyed_folds_and_is_made_anew(self):
        quillmark, editor = self.open_with_text()

        self.windows.destroy(editor.id)

        self.expect_bubble(quillmark)
        self.expect_it_opens_again(quillmark)

    def test_an_editor_that_is_closed_folds(self):
        quillmark, editor = self.open_with_text()

        self.close(editor)

        self.expect_bubble(quillmark)
        self.expect_it_opens_again(quillmark)

    def test_an_editor_makes_room_when_the_desktop_is_shown(self):
        if not self.windows.supports("_NET_SHOWING_DESKTOP"):
            self.skipTest("this window manager does not show the desktop")
        quillmark, _ = self.open_with_text()
        self.addCleanup(self.windows.show_desktop, False)

        self.windows.show_desktop(True)

        # Some leave windows that are in no taskbar where they are.
        until_it_stays(1.5, lambda: self.is_one_of_them_seen(quillmark),
                       "the bubble or the editor is seen")

    def test_an_editor_under_a_full_screen_window_comes_above_it_or_folds(self):
        quillmark, editor = self.open_with_text()

        self.windows.make_full_screen(self.other.id)
        self.windows.activate(self.other.id)

        whole = (0, 0, self.desktop.width, self.desktop.height)
        until(lambda: self.windows.find(self.other.id).rectangle() == whole, "it fills the screen")
        # The window manager may still be about to put it above the editor.
        until_it_stays(1.5, lambda: self.is_one_of_them_seen(quillmark),
                       "the bubble or the editor is above it")

    def test_folding_by_itself_activates_nobody(self):
        self.need_activation()
        third = self.open_text_window("Third", x=300)
        quillmark, editor = self.open_with_text()
        self.windows.activate(self.other.id)
        until(lambda: self.windows.active() == self.other.id, "the user is elsewhere")

        self.windows.unmap(editor.id)

        self.expect_bubble(quillmark)
        holds_for(0.5, lambda: self.windows.active() != third.id, "nobody is activated")

    def test_a_bubble_that_is_unmapped_comes_back(self):
        quillmark = self.start()
        launcher = quillmark.launcher()

        self.windows.unmap(launcher.id)

        quillmark.open_editor()

    def test_a_bubble_that_is_destroyed_is_made_anew_in_its_place(self):
        quillmark = self.start()
        launcher = quillmark.launcher()
        place = launcher.rectangle()

        self.windows.destroy(launcher.id)

        until(lambda: quillmark.launcher() != launcher, "there is a new one")
        self.assertEqual(quillmark.launcher().rectangle(), place)
        quillmark.open_editor()

    def test_a_bubble_cannot_be_closed(self):
        quillmark = self.start()
        launcher = quillmark.launcher()

        self.windows.ask_to_close(launcher.id)

        holds_for(0.5, launcher.is_viewable, "the bubble stays")
        quillmark.open_editor()


class NothingCanBeSaved(AlwaysThereTest):
    """Whoever cannot save can still leave."""

    QUESTION = "Some changes could not be saved"
    WAY_OUT = "To quit all the same, press Ctrl+Q."

    def setUp(self):
        super().setUp()
        self.data.create()
        # While it is there, nothing can be saved.
        self.obstacle = self.data.path / ".quillmark-recovery-of-a-test"

    def fail_to_save(self):
        quillmark = self.start("--show-editor")
        editor = quillmark.editor()
        self.obstacle.mkdir()
        self.keyboard.type("unsaved")
        quillmark.element(name="Not saved · Retry")
        return quillmark, editor

    def ask_to_quit(self, quillmark):
        """The question's window, once it has the keyboard."""
        self.keyboard.press("ctrl+q")
        quillmark.element(name=self.QUESTION)
        question = until(quillmark.popup, "the question is on screen")
        until(lambda: self.windows.has_input(question.id), "the question has the keyboard")
        return question

    def test_an_editor_that_is_minimised_comes_back(self):
        quillmark, editor = self.fail_to_save()

        self.windows.minimise(editor.id)

        until(lambda: quillmark.shows_editor() or quillmark.shows_launcher(), "something is there")
        quillmark.editor()
        self.assertEqual(quillmark.element("text", "Note text").text(), "unsaved")

    def test_an_editor_that_is_destroyed_comes_back(self):
        quillmark, editor = self.fail_to_save()

        self.windows.destroy(editor.id)

        self.assertNotEqual(quillmark.editor(), editor)
        self.assertEqual(quillmark.element("text", "Note text").text(), "unsaved")

    def test_control_q_asks_on_every_screen(self):
        quillmark, _ = self.fail_to_save()

        for screen in ("Capture", "Notes"):
            quillmark.element(name=screen).press()
            with self.subTest(screen):
                self.ask_to_quit(quillmark)
                self.keyboard.press("Escape")
                until(lambda: not quillmark.has_element(name=self.QUESTION), "the question is gone")
                quillmark.editor()
        self.keyboard.press("ctrl+q")
        quillmark.element(name="Quit anyway").press()
        self.assertEqual(quillmark.wait_until_ended(), 0)

    def test_a_window_that_cannot_close_says_why_and_how_to_leave(self):
        quillmark, editor = self.fail_to_save()

        self.close(editor)

        def says_so():
            return any(self.WAY_OUT in text and "recovery copy" in text
                       for text in quillmark.texts())
        until(says_so, "the banner names the reason and the way out")
        quillmark.editor()

    def test_nothing_of_the_program_covers_the_question(self):
        # So that the editor lies where window managers place alerts.
        self.write_settings({"launcher.x": 880, "launcher.y": 600})
        quillmark, editor = self.fail_to_save()
        question = self.ask_to_quit(quillmark)

        self.mouse.click((editor.rectangle()[0] + 3, editor.centre()[1]))
        self.windows.activate(editor.id)

        def is_seen():
            top = self.windows.top_at(question.centre())
            return self.windows.contains(top, question)
        until_it_stays(0.5, is_seen, "the question is on top")
        self.mouse.click(quillmark.element(name="Quit anyway").centre())
        self.assertEqual(quillmark.wait_until_ended(), 0)

    def test_a_second_start_raises_the_question(self):
        self.need_activation()
        quillmark, _ = self.fail_to_save()
        question = self.ask_to_quit(quillmark)
        other = self.open_text_window(x=500, y=300)
        until(lambda: self.windows.active() == other.id, "the user is elsewhere")

        self.assertEqual(self.start().wait_until_ended(), 0)

        until(lambda: self.windows.active() == question.id, "the question is active")
        until(lambda: self.windows.has_input(question.id), "the question has the keyboard")
        self.keyboard.press("Escape")
        until(lambda: not quillmark.has_element(name=self.QUESTION), "it gets the keys")


class NothingIsLost(DesktopTest):
    """Who would lose nothing is asked nothing."""

    def setUp(self):
        super().setUp()
        self.data.create()
        self.data.add_note("milk", number=1)

    def quit_by_menu(self, quillmark):
        x, y, width, height = self.open_menu(quillmark).rectangle()
        self.mouse.click((x + width // 2, y + height * 3 // 4))

    def test_nobody_is_asked_when_nothing_would_be_lost(self):
        quillmark = self.start()
        quillmark.launcher()
        self.data.add_note("by another program", number=2)
        before = self.data.state()

        self.quit_by_menu(quillmark)

        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.assertEqual(self.data.state(), before)

    def test_a_second_start_closes_the_menu_of_the_bubble(self):
        quillmark = self.start()
        self.open_menu(quillmark)

        self.assertEqual(self.start().wait_until_ended(), 0)

        quillmark.editor()
        until(lambda: quillmark.popup() is None, "the menu is closed")
        self.keyboard.type("typed")
        until(lambda: self.data.draft() == "typed", "the editor gets the keys")


if __name__ == "__main__":
    main()
