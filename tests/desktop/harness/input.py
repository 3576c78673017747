# SPDX-License-Identifier: MIT
"""Mouse and keys, as the X server would get them from devices (XTEST)."""

from Xlib import X, XK
from Xlib.ext import xtest

# The keys that have a name of their own; letters and signs are found by their character.
_NAMED = {"\n": "Return", "\t": "Tab", " ": "space"}


class Mouse:
    LEFT, MIDDLE, RIGHT = 1, 2, 3

    def __init__(self, display):
        self._display = display

    def position(self):
        pointer = self._display.screen().root.query_pointer()
        return pointer.root_x, pointer.root_y

    def move(self, point):
        xtest.fake_input(self._display, X.MotionNotify, x=int(point[0]), y=int(point[1]))
        self._display.sync()

    def press(self, button=LEFT):
        xtest.fake_input(self._display, X.ButtonPress, button)
        self._display.sync()

    def release(self, button=LEFT):
        xtest.fake_input(self._display, X.ButtonRelease, button)
        self._display.sync()

    def click(self, point, button=LEFT):
        self.move(point)
        self.press(button)
        self.release(button)

    def drag(self, start, end, steps=12, release=True):
        """Presses at the start and moves to the end in steps, as a hand does."""
        self.move(start)
        self.press()
        for step in range(1, steps + 1):
            part = step / steps
            self.move((round(start[0] + (end[0] - start[0]) * part),
                       round(start[1] + (end[1] - start[1]) * part)))
        if release:
            self.release()


class Keyboard:
    """Keys by name ("ctrl+Return") and whole texts, on the server's own layout.

    Characters that the layout lacks are bound to unused keys once, when the desktop starts: a
    change of the layout while programs listen would race with the keys that follow.
    """

    EXTRA = "é中文简体“”"
    _MODIFIERS = {"ctrl": "Control_L", "shift": "Shift_L", "alt": "Alt_L", "super": "Super_L"}

    def __init__(self, display):
        self._display = display
        self._bound = {}
        self._bind(self.EXTRA)

    def _bind(self, characters):
        first, last = self._display.display.info.min_keycode, self._display.display.info.max_keycode
        mapping = self._display.get_keyboard_mapping(first, last - first + 1)
        unused = [first + index for index, keys in enumerate(mapping) if not any(keys)]
        for character, code in zip(characters, unused, strict=False):
            self._display.change_keyboard_mapping(code, [[self._keysym(character)] * 2])
            self._bound[character] = code
        self._display.sync()

    @staticmethod
    def _keysym(character):
        point = ord(character)
        return point if point < 0x100 else 0x01000000 + point

    def _key(self, name):
        """The key code, and whether Shift is needed for it."""
        if name in self._bound:
            return self._bound[name], False
        name = _NAMED.get(name, name)
        keysym = XK.string_to_keysym(name) or ord(name)
        code = self._display.keysym_to_keycode(keysym)
        if code == 0:
            raise ValueError(f"the layout has no key for {name!r}")
        return code, self._display.keycode_to_keysym(code, 0) != keysym

    def _send(self, event, code):
        xtest.fake_input(self._display, event, code)

    def press(self, combination):
        """Presses and releases one combination, such as "Escape" or "ctrl+Return"."""
        *modifiers, name = combination.split("+")
        codes = [self._key(self._MODIFIERS[modifier])[0] for modifier in modifiers]
        code, shift = self._key(name)
        if shift:
            codes.append(self._key("Shift_L")[0])
        for modifier in codes:
            self._send(X.KeyPress, modifier)
        self._send(X.KeyPress, code)
        self._send(X.KeyRelease, code)
        for modifier in reversed(codes):
            self._send(X.KeyRelease, modifier)
        self._display.sync()

    def type(self, text):
        """Types each character, line ends as Return."""
        for character in text:
            self.press("plus" if character == "+" else character)
