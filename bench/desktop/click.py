# SPDX-License-Identifier: MIT
"""From a click on the bubble to an editor that is painted and has the keyboard.

The pointer comes to the bubble and stays there for as long as a quick hand takes to press, and the
time begins as the button goes down. The editor counts as there when the X server's input focus is
in it and when the parts of it that are watched look as they do once nothing changes any more; both
are asked for in turn, without a pause.
"""

import time

from Xlib import X
from measuring import median, run, until

STARTS = 5
LATER = 4
LIMIT = 25
QUIET = 0.25
HAND = 0.15

# Parts of the editor where pointer and caret are not: left, top, width, height.
WATCHED = [(50, 28, 100, 16), (26, 110, 300, 20), (26, 480, 120, 16)]


class Watch:
    """Looks at the screen as fast as it can."""

    def __init__(self, desktop, place):
        self._display = desktop.display
        self._root = desktop.display.screen().root
        self._parts = [(place[0] + x, place[1] + y, width, height)
                       for x, y, width, height in WATCHED]

    def picture(self):
        return [bytes(self._root.get_image(*part, X.ZPixmap, 0xFFFFFFFF).data)
                for part in self._parts]

    def focus(self):
        focus = self._display.get_input_focus().focus
        return getattr(focus, "id", focus)


def click(bench, quillmark, place, hand=HAND):
    """Milliseconds until the editor had the keyboard, and until it looked final."""
    watch = Watch(bench.desktop, place)
    mouse = bench.desktop.mouse
    mouse.move(quillmark.launcher().centre())
    time.sleep(hand)
    before = watch.focus()
    last, changed, focused = watch.picture(), None, None
    mouse_down = time.monotonic()
    mouse.press()
    mouse.release()
    while changed is None or focused is None or time.monotonic() - changed < QUIET:
        if focused is None and watch.focus() != before:
            focused = time.monotonic()
        now = watch.picture()
        if now != last:
            last, changed = now, time.monotonic()
        if time.monotonic() - mouse_down > 10:
            raise AssertionError("the editor did not open")
    editor = quillmark.editor()
    if editor.rectangle() != place:
        raise AssertionError(f"the editor is at {editor.rectangle()}, not at {place}")
    return 1000 * (focused - mouse_down), 1000 * (changed - mouse_down)


def fold(bench, quillmark):
    bench.desktop.keyboard.press("Escape")
    until(quillmark.shows_launcher, "the bubble is back")
    until(lambda: quillmark.shows_editor() is None, "the editor is gone")
    bench.desktop.mouse.move((5, 5))


def measure(bench):
    print(f"Click on the bubble to the editor, under {bench.desktop.window_manager}")
    bench.desktop.open_text_window()
    place = (992, 44, 424, 560)  # over the bubble in its first place

    first, unannounced, later = [], [], []
    for _ in range(STARTS):
        for hand, rows in ((HAND, first), (0, unannounced)):
            quillmark = bench.start(bench.home("empty"))
            rows.append(click(bench, quillmark, place, hand))
            fold(bench, quillmark)
            if rows is first:
                for _ in range(LATER):
                    later.append(click(bench, quillmark, place))
                    fold(bench, quillmark)
            quillmark.stop()

    for name, rows in ((f"first click, median of {STARTS} starts", first),
                       (f"later clicks, median of {len(later)}", later)):
        keyboard, painted = (median(column) for column in zip(*rows))
        bench.results.figure(f"{name}: keyboard", keyboard, "ms")
        bench.results.limit(f"{name}: and painted", max(keyboard, painted), LIMIT, "ms")
    bench.results.figure("first click, pointer not there before: and painted",
                         median([max(row) for row in unannounced]), "ms")


if __name__ == "__main__":
    run(measure)
