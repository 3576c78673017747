# SPDX-License-Identifier: MIT
"""A virtual desktop with real input, on which the whole program is tried from outside.

    with Desktop("openbox") as desktop:
        other = desktop.open_text_window()
        quillmark = desktop.start_quillmark(program)
        desktop.mouse.click(quillmark.bubble().centre())

Nothing of the user's own desktop is touched: display, session bus, home and data folders are
made for the occasion and removed afterwards, also when something fails. Nothing waits for a
time; everything waits for a condition, with a deadline.
"""

from .desktop import Desktop, WINDOW_MANAGERS
from .testcase import DesktopTest, main
from .waiting import until

__all__ = ["Desktop", "DesktopTest", "WINDOW_MANAGERS", "main", "until"]
