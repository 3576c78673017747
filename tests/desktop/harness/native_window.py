# SPDX-License-Identifier: MIT
"""A program of its own: a window that speaks Wayland alone and keeps what is typed into it in a file.
F11 makes it fill the screen.

Its arguments are the file, which is there once the window is, and width and height of the window.
"""

import pathlib
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def main():
    file, width, height = pathlib.Path(sys.argv[1]), *map(int, sys.argv[2:])
    Gdk.set_allowed_backends("wayland")
    window = Gtk.Window(title="Native", default_width=width, default_height=height)

    def keep(_, event):
        if event.keyval == Gdk.KEY_F11:
            window.fullscreen()
            return
        letter = chr(Gdk.keyval_to_unicode(event.keyval))
        with file.open("a", encoding="utf-8") as text:
            text.write(letter)

    window.connect("key-press-event", keep)
    window.connect("map-event", lambda *_: file.touch())
    window.connect("destroy", Gtk.main_quit)
    window.show()
    Gtk.main()


if __name__ == "__main__":
    main()
