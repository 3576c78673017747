# SPDX-License-Identifier: MIT
"""Another program's window, which keeps what is typed into it."""

import os

from Xlib import X, XK, Xatom, Xutil
from Xlib.display import Display


class TextWindow:
    """A plain top-level window on a connection of its own, so that the server and the window
    manager take it for a program apart. Keys that arrive are kept as text."""

    def __init__(self, display_name, title, x=100, y=120, width=640, height=480):
        self._display = Display(display_name)
        screen = self._display.screen()
        self._window = screen.root.create_window(
            x, y, width, height, 0, screen.root_depth, X.InputOutput, X.CopyFromParent,
            background_pixel=0xE8E4DC,
            event_mask=X.KeyPressMask | X.FocusChangeMask | X.StructureNotifyMask)
        self.id = self._window.id
        self._text = ""
        self._window.set_wm_name(title)
        self._window.set_wm_class("textwindow", "TextWindow")
        self._window.set_wm_hints(flags=Xutil.InputHint | Xutil.StateHint, input=1,
                                  initial_state=Xutil.NormalState)
        self._window.set_wm_normal_hints(flags=Xutil.USPosition | Xutil.USSize)
        self._window.set_wm_protocols([self._display.intern_atom("WM_DELETE_WINDOW")])
        self._window.change_property(self._display.intern_atom("_NET_WM_PID"), Xatom.CARDINAL, 32,
                                     [os.getpid()])
        self._window.map()
        self._display.flush()

    def text(self):
        """Everything typed into the window until now."""
        while self._display.pending_events():
            event = self._display.next_event()
            if event.type == X.KeyPress:
                keysym = self._display.keycode_to_keysym(event.detail,
                                                         event.state & X.ShiftMask)
                if keysym == XK.XK_Return:
                    self._text += "\n"
                elif 0x20 <= keysym < 0x100:
                    self._text += chr(keysym)
            elif event.type == X.MappingNotify:
                self._display.refresh_keyboard_mapping(event)
        return self._text

    def clipboard(self):
        """What a paste into the window would bring; None when nobody offers text."""
        clipboard = self._display.intern_atom("CLIPBOARD")
        kind = self._display.intern_atom("UTF8_STRING")
        place = self._display.intern_atom("PASTED")
        self._window.convert_selection(clipboard, kind, place, X.CurrentTime)
        while True:
            event = self._display.next_event()
            if event.type == X.SelectionNotify:
                break
        found = self._window.get_full_property(place, X.AnyPropertyType)
        return None if event.property == X.NONE or not found else found.value.decode()

    def raise_above_others(self):
        self._window.configure(stack_mode=X.Above)
        self._display.sync()

    def close(self):
        if self._display is not None:
            self._display.close()
            self._display = None
