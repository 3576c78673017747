# SPDX-License-Identifier: MIT
"""What a hand does with the mouse that is no plain click and no plain drag."""

import math
import random
import time

from harness import DesktopTest, main, until
from harness.input import Mouse
from harness.waiting import holds_for

INSET = 12
FIRST_PLACE = (1352, 44, 64, 64)
DOUBLE_CLICK = 0.4  # Qt's, in seconds.
TRIES = 20


class Pointer(DesktopTest):
    def setUp(self):
        super().setUp()
        self.other = self.open_text_window()

    def double_click(self, prepare, changed):
        """Prepares, and clicks twice at the point that prepare() returns: the second time when the
        first has changed what is there. On a busy machine that is later than a double click, and
        is tried anew."""
        for _ in range(TRIES):
            point = prepare()
            begin = time.monotonic()
            self.mouse.click(point)
            until(changed, "the first click is answered")
            self.mouse.click(point)
            if time.monotonic() - begin < DOUBLE_CLICK:
                return
            # Apart from the next one.
            time.sleep(DOUBLE_CLICK)
        self.skipTest("this machine is too busy for a double click")

    def test_a_double_click_opens_the_editor_and_leaves_it_open(self):
        # So that the button that folds lies under the pointer.
        quillmark = self.start()

        def point_at_bubble():
            self.settle(quillmark)
            return quillmark.launcher().centre()

        self.double_click(point_at_bubble, quillmark.shows_editor)

        editor = quillmark.editor()
        holds_for(0.7, editor.is_viewable, "it stays open")

    def test_a_double_click_on_the_button_that_folds_leaves_the_bubble(self):
        quillmark = self.start()

        def point_at_button():
            self.settle(quillmark)
            quillmark.open_editor()
            button = quillmark.element(name="Close · Esc")
            # Later than the press that opened it.
            holds_for(DOUBLE_CLICK, quillmark.shows_editor, "the editor is open")
            return button.centre()

        self.double_click(point_at_button, quillmark.shows_launcher)

        launcher = quillmark.launcher()
        holds_for(0.7, launcher.is_viewable, "it stays folded")

    def test_a_drag_begins_at_five_points_at_every_scale(self):
        for scale in (1, 1.25, 1.5, 2):
            for across, down in ((1, 0), (0, 1), (-1, 0), (0, -1)):
                with self.subTest(scale=scale, across=across, down=down):
                    self.expect_threshold(scale, across, down)

    def expect_threshold(self, scale, across, down):
        self.write_settings({"launcher.x": 201, "launcher.y": 201})
        quillmark = self.start(QT_SCALE_FACTOR=str(scale))
        try:
            self.expect_threshold_of(quillmark, scale, across, down)
        finally:
            self.mouse.release()
            quillmark.stop()

    def expect_threshold_of(self, quillmark, scale, across, down):
        size = round(64 * scale)
        launcher = until(lambda: next((window for window in quillmark.windows()
                                       if window.is_viewable()
                                       and window.rectangle()[2:] == (size, size)), None),
                         "the bubble is on screen")
        x, y = launcher.centre()
        place = launcher.rectangle()
        least = math.ceil(5 * scale)  # In device pixels.

        self.mouse.drag((x, y), (x + across * (least - 1), y + down * (least - 1)), steps=1,
                        release=False)
        holds_for(0.2, lambda: launcher.rectangle() == place, "below five points it stays")
        self.mouse.move((x + across * least, y + down * least))
        until(lambda: launcher.rectangle() != place, "from five points on it follows")

    def test_a_drag_ends_when_the_right_button_comes_in_between(self):
        quillmark = self.start()
        launcher = quillmark.launcher()
        x, y = launcher.centre()
        before = launcher.rectangle()
        self.mouse.drag((x, y), (x - 100, 20), release=False)
        until(lambda: launcher.rectangle() != before, "it follows")

        self.mouse.press(Mouse.RIGHT)
        self.mouse.release(Mouse.RIGHT)
        self.mouse.release()

        self.expect_settled(quillmark)
        self.keyboard.press("Escape")
        until(lambda: quillmark.popup() is None, "the menu is closed")
        place = quillmark.launcher().rectangle()
        self.mouse.move((place[0] + 32, place[1] + 32))
        self.mouse.press(Mouse.MIDDLE)
        self.mouse.move((700, 500))
        self.mouse.release(Mouse.MIDDLE)
        holds_for(0.3, lambda: quillmark.launcher().rectangle() == place, "it stays there")

    def test_a_drag_ends_when_a_second_start_opens_the_editor(self):
        quillmark = self.start()
        x, y = quillmark.launcher().centre()
        self.mouse.drag((x, y), (x - 100, 5), release=False)

        self.assertEqual(self.start().wait_until_ended(), 0)

        quillmark.editor()
        self.mouse.release()
        self.keyboard.press("Escape")
        self.expect_settled(quillmark)
        self.assertEqual(quillmark.launcher().rectangle(), (FIRST_PLACE[0] - 100, INSET, 64, 64))

    def test_whatever_is_pressed_the_bubble_lies_where_it_is_said_to(self):
        """Random sequences of buttons, moves, keys and starts; the seed is in the message."""
        quillmark = self.start()
        quillmark.launcher()
        for seed in range(12):
            with self.subTest(seed=seed):
                self.play(quillmark, random.Random(seed))
                self.settle(quillmark)
                self.expect_settled(quillmark)

    def play(self, quillmark, chance):
        buttons = (Mouse.LEFT, Mouse.MIDDLE, Mouse.RIGHT)

        def near():
            # A menu has no place of its own to aim at.
            window = quillmark.shows_launcher() or quillmark.shows_editor()
            x, y = window.centre() if window else (700, 400)
            self.mouse.move((x + chance.randint(-5, 5), y + chance.randint(-5, 5)))

        deeds = [
            near, near,
            lambda: self.mouse.press(chance.choice(buttons)),
            lambda: self.mouse.press(),
            lambda: self.mouse.release(chance.choice(buttons)),
            lambda: self.mouse.release(),
            lambda: self.mouse.move((chance.randrange(self.desktop.width),
                                     chance.randrange(self.desktop.height))),
            lambda: self.mouse.move((chance.randrange(self.desktop.width), 0)),
            lambda: self.keyboard.press("Escape"),
            lambda: self.windows.activate(self.other.id),
            lambda: [self.windows.unmap(window.id) for window in [quillmark.shows_launcher()]
                     if window],
        ]
        for _ in range(25):
            chance.choice(deeds)()
        for button in buttons:
            self.mouse.release(button)

    def settle(self, quillmark):
        """Closes what the sequence may have left open."""
        def is_folded():
            if quillmark.popup():
                self.keyboard.press("Escape")
            elif quillmark.shows_editor():
                self.windows.activate(quillmark.shows_editor().id)
                self.keyboard.press("Escape")
            return quillmark.popup() is None and quillmark.shows_launcher()
        until(is_folded, "the bubble is there alone")

    def expect_settled(self, quillmark):
        """On the screen, where the settings say, and held by nobody."""
        def is_settled():
            launcher = quillmark.shows_launcher()
            if launcher is None:
                return False
            x, y, width, height = launcher.rectangle()
            settings = quillmark.settings()
            return (INSET <= x <= self.desktop.width - width - INSET
                    and INSET <= y <= self.desktop.height - height - INSET
                    and float(settings["launcher.x"]) == x
                    and float(settings["launcher.y"]) == self.desktop.height - y - height)
        until(is_settled, "the bubble is on the screen, where the settings say")
        place = quillmark.launcher().rectangle()
        self.mouse.move((place[0] + 32, place[1] + 32))
        self.mouse.move((place[0] + 132, place[1] + 132 if place[1] < 400 else place[1] - 132))
        holds_for(0.1, lambda: quillmark.launcher().rectangle() == place, "it is not dragged on")


if __name__ == "__main__":
    main()
