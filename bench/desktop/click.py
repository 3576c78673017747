# SPDX-License-Identifier: MIT
"""From a click on the bubble to an editor that is painted and has the keyboard.

The time begins before the button is pressed. The editor counts as there when the X server's input
focus is in it and when the parts of it that are watched look as they do once nothing changes any
more; both are asked for in turn, without a pause.
"""

import time

from Xlib import X
from measuring import median, run, until

CLICKS = 15
LIMIT = 25
QUIET = 0.25

# Parts of the editor: left, top, width, height. Where the pointer and the caret are not.
WATCHED = [(26, 24, 120, 12), (26, 120, 200, 12), (240, 500, 150, 12)]


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


def click(bench, quillmark, place):
    """Milliseconds until the editor had the keyboard, and until it looked final."""
    watch = Watch(bench.desktop, place)
    mouse = bench.desktop.mouse
    mouse.move(quillmark.launcher().centre())
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


def measure(bench):
    window_manager = bench.desktop.window_manager
    print(f"Click on the bubble to the editor, under {window_manager}")
    bench.desktop.open_text_window()
    quillmark = bench.start(bench.home("empty"))
    x, y, width, _ = quillmark.launcher().rectangle()
    place = (x + width - 424, y, 424, 560)

    rows = []
    for _ in range(CLICKS):
        rows.append(click(bench, quillmark, place))
        bench.desktop.keyboard.press("Escape")
        until(quillmark.shows_launcher, "the bubble is back")
        until(lambda: not bench.desktop.windows.has_input(0) and quillmark.shows_editor() is None,
              "the editor is gone")
    quillmark.stop()

    for name, row in (("first click", rows[0]),
                      (f"later clicks, median of {CLICKS - 1}",
                       [median(column) for column in zip(*rows[1:])]),
                      ("later clicks, slowest", [max(column) for column in zip(*rows[1:])])):
        bench.results.figure(f"{name}: keyboard", row[0], "ms")
        bench.results.limit(f"{name}: keyboard and painted", max(row), LIMIT, "ms")


if __name__ == "__main__":
    run(measure)
