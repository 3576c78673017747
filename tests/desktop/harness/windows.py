# SPDX-License-Identifier: MIT
"""What the X server and the window manager say about windows."""

from Xlib import X, Xatom, Xutil
from Xlib.ext import shape
from Xlib.error import BadDrawable, BadMatch, BadWindow
from Xlib.protocol import event

_GONE = (BadWindow, BadDrawable, BadMatch)

# In units of four bytes. What is read in parts may have changed between them.
_WHOLE = 65536


class Window:
    """One window, by its number; it may be gone by the time of a question."""

    def __init__(self, display, number):
        self.id = number
        self._display = display
        self._window = display.create_resource_object("window", number)

    def __eq__(self, other):
        return isinstance(other, Window) and self.id == other.id

    def __hash__(self):
        return hash(self.id)

    def __repr__(self):
        return f"<window {self.id:#x} “{self.title()}” {self.rectangle()}>"

    def property(self, name, kind=X.AnyPropertyType):
        """The property's values, or None."""
        try:
            found = self._window.get_full_property(self._display.intern_atom(name), kind,
                                                   sizehint=_WHOLE)
        except _GONE:
            return None
        return None if found is None else found.value

    def properties(self):
        """The name of every property with its value as text."""
        try:
            names = [self._display.get_atom_name(atom) for atom in self._window.list_properties()]
        except _GONE:
            return {}
        values = {name: self.property(name) for name in names}
        return {name: value.decode(errors="replace") if isinstance(value, bytes) else str(value)
                for name, value in values.items()}

    def disconnect(self):
        """Has the X server end the connection of the window's program."""
        self._window.kill_client()
        self._display.sync()

    def title(self):
        value = self.property("_NET_WM_NAME") or self.property("WM_NAME") or b""
        return value.decode() if isinstance(value, bytes) else str(value)

    def process(self):
        value = self.property("_NET_WM_PID")
        return value[0] if value else None

    def states(self):
        """The names in _NET_WM_STATE."""
        return {self._display.get_atom_name(atom) for atom in self.property("_NET_WM_STATE") or []}

    def types(self):
        atoms = self.property("_NET_WM_WINDOW_TYPE") or []
        return [self._display.get_atom_name(atom) for atom in atoms]

    def workspace(self):
        value = self.property("_NET_WM_DESKTOP")
        return value[0] if value else None

    def is_viewable(self):
        """Mapped, and every window around it too."""
        try:
            return self._window.get_attributes().map_state == X.IsViewable
        except _GONE:
            return False

    def bypasses_window_manager(self):
        try:
            return bool(self._window.get_attributes().override_redirect)
        except _GONE:
            return False

    def takes_clicks(self):
        """Whether it lets not all of them through to what is below it."""
        try:
            return bool(self._window.shape_get_rectangles(shape.SK.Input).rectangles)
        except _GONE:
            return False

    def rectangle(self):
        """x, y, width, height on the screen; the place is that of a border that it may have."""
        try:
            geometry = self._window.get_geometry()
            place = self._window.translate_coords(self._display.screen().root, 0, 0)
        except _GONE:
            return None
        # The answer is where the root's origin lies, seen from the window.
        border = geometry.border_width
        return -place.x - border, -place.y - border, geometry.width, geometry.height

    def centre(self):
        x, y, width, height = self.rectangle()
        return x + width // 2, y + height // 2


class Windows:
    """All windows of one display."""

    def __init__(self, display):
        self._display = display
        self._root = display.screen().root
        self._root_window = Window(display, self._root.id)

    @property
    def root_id(self):
        return self._root.id

    def find(self, number):
        return Window(self._display, number)

    def has_window_manager(self):
        check = self._root_window.property("_NET_SUPPORTING_WM_CHECK")
        if not check:
            return False
        return self.find(check[0]).property("_NET_SUPPORTING_WM_CHECK") is not None

    def has_compositor(self):
        owner = self._display.get_selection_owner(self._display.intern_atom("_NET_WM_CM_S0"))
        return owner != X.NONE

    def active(self):
        """The number of the active window; 0 when there is none."""
        value = self._root_window.property("_NET_ACTIVE_WINDOW")
        return value[0] if value else 0

    def managed(self):
        """The managed windows, oldest first."""
        return list(self._root_window.property("_NET_CLIENT_LIST") or [])

    def stacking(self):
        """The managed windows, lowest first."""
        return list(self._root_window.property("_NET_CLIENT_LIST_STACKING") or [])

    def on_screen(self):
        """The windows directly on the root, lowest first: frames and unmanaged windows."""
        return [Window(self._display, child.id) for child in self._root.query_tree().children]

    def _tree(self, window, depth):
        try:
            children = window.query_tree().children
        except _GONE:
            return
        for child in children:
            yield child.id
            if depth > 1:
                yield from self._tree(child, depth - 1)

    def all(self):
        """The root and every window of every program."""
        return [self._root_window, *(self.find(number) for number in self._tree(self._root, 99))]

    def of_process(self, process):
        """Every window that names this process, inside window managers' frames too."""
        found = (self.find(number) for number in self._tree(self._root, 4))
        return [window for window in found if window.process() == process]

    def top_at(self, point):
        """The visible window on the root that a click at the point goes to."""
        for window in reversed(self.on_screen()):
            rectangle = window.rectangle()
            if rectangle is None or not window.is_viewable():
                continue
            x, y, width, height = rectangle
            if (x <= point[0] < x + width and y <= point[1] < y + height
                    and window.takes_clicks()):
                return window
        return None

    def contains(self, outer, inner):
        """Whether a window is the other one or lies inside it."""
        return outer.id == inner.id or inner.id in self._tree(outer._window, 4)

    def has_input(self, number):
        """Whether keys go to the window or to one inside it."""
        focus = self._display.get_input_focus().focus
        focused = getattr(focus, "id", focus)
        window = self.find(number)
        return focused == number or focused in self._tree(window._window, 4)

    def _tell(self, window, kind, values):
        message = event.ClientMessage(window=window, client_type=self._display.intern_atom(kind),
                                      data=(32, (values + [0] * 5)[:5]))
        mask = X.SubstructureRedirectMask | X.SubstructureNotifyMask
        self._root.send_event(message, event_mask=mask)
        self._display.sync()

    def activate(self, number):
        """As a pager would."""
        self._tell(self.find(number)._window, "_NET_ACTIVE_WINDOW", [2, X.CurrentTime])

    def ask_for_frame_extents(self, number):
        """Changes nothing; a question that every window manager listens to."""
        self._tell(self.find(number)._window, "_NET_REQUEST_FRAME_EXTENTS", [])

    def close(self, number):
        self._tell(self.find(number)._window, "_NET_CLOSE_WINDOW", [X.CurrentTime, 2])

    def ask_to_close(self, number):
        """As a window manager asks, also a window that it does not manage."""
        window = self.find(number)._window
        message = event.ClientMessage(
            window=window, client_type=self._display.intern_atom("WM_PROTOCOLS"),
            data=(32, [self._display.intern_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0]))
        window.send_event(message)
        self._display.sync()

    def minimise(self, number):
        """As a program asks for its own window."""
        self._tell(self.find(number)._window, "WM_CHANGE_STATE", [Xutil.IconicState])

    def show_desktop(self, shown):
        self._tell(self._root, "_NET_SHOWING_DESKTOP", [int(shown)])

    def supports(self, name):
        return self._display.intern_atom(name) in (self._root_window.property("_NET_SUPPORTED")
                                                   or [])

    def unmap(self, number):
        """As another program may do to any window."""
        self.find(number)._window.unmap()
        self._display.sync()

    def move(self, number, x, y):
        """As a pager would, or a drag with the mouse."""
        # Static gravity: the place is the window's own; x and y are given; from a pager.
        self._tell(self.find(number)._window, "_NET_MOVERESIZE_WINDOW", [10 | 3 << 8 | 2 << 12, x, y])

    def destroy(self, number):
        self.find(number)._window.destroy()
        self._display.sync()

    def make_full_screen(self, number):
        full = self._display.intern_atom("_NET_WM_STATE_FULLSCREEN")
        self._tell(self.find(number)._window, "_NET_WM_STATE", [1, full, 0, 2])

    def workspace(self):
        value = self._root_window.property("_NET_CURRENT_DESKTOP")
        return value[0] if value else None

    def work_area(self):
        """left, top, right and bottom of what panels leave of the screen."""
        screen = self._root.get_geometry()
        x, y, width, height = (self._root_window.property("_NET_WORKAREA")
                               or (0, 0, screen.width, screen.height))[:4]
        return x, y, x + width, y + height

    def workspaces(self):
        value = self._root_window.property("_NET_NUMBER_OF_DESKTOPS")
        return value[0] if value else 1

    def switch_workspace(self, number):
        # Some desktops begin with one.
        if number >= self.workspaces():
            self._tell(self._root, "_NET_NUMBER_OF_DESKTOPS", [number + 1])
        self._tell(self._root, "_NET_CURRENT_DESKTOP", [number, X.CurrentTime])

    def clipboard_owner(self):
        return self._display.get_selection_owner(self._display.intern_atom("CLIPBOARD"))
