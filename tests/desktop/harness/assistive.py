# SPDX-License-Identifier: MIT
"""A program as a screen reader meets it (AT-SPI)."""

import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

_is_ready = False


def _desktop():
    """The root of everything accessible. What it says is asked for anew every time: this process
    runs no main loop that would tell a cache of changes."""
    global _is_ready
    if not _is_ready:
        Atspi.init()
        Atspi.set_timeout(2000, 5000)
        _is_ready = True
    desktop = Atspi.get_desktop(0)
    desktop.set_cache_mask(Atspi.Cache.NONE)
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)
    return desktop


class Element:
    """One accessible object."""

    def __init__(self, accessible):
        self._accessible = accessible

    def __repr__(self):
        return f"<{self.role()} “{self.name()}”>"

    def name(self):
        return self._accessible.get_name() or ""

    def role(self):
        """As in the specification of AT-SPI: "push button", "text", "window"."""
        return self._accessible.get_role_name()

    def description(self):
        return self._accessible.get_description() or ""

    def identifier(self):
        return self._accessible.get_accessible_id() or ""

    def has(self, state):
        """Whether a state such as "focused", "showing" or "enabled" is set."""
        wanted = getattr(Atspi.StateType, state.upper())
        return self._accessible.get_state_set().contains(wanted)

    def text(self):
        """The content of a text."""
        if "Text" not in self._accessible.get_interfaces():
            return self.name()
        return Atspi.Text.get_text(self._accessible, 0, -1)

    def actions(self):
        if "Action" not in self._accessible.get_interfaces():
            return []
        count = Atspi.Action.get_n_actions(self._accessible)
        with warnings.catch_warnings():
            # Its replacement, get_name, is hidden by the object's own.
            warnings.simplefilter("ignore", DeprecationWarning)
            return [Atspi.Action.get_action_name(self._accessible, index)
                    for index in range(count)]

    def perform(self, action):
        return Atspi.Action.do_action(self._accessible, self.actions().index(action))

    def children(self):
        count = self._accessible.get_child_count()
        found = (self._accessible.get_child_at_index(index) for index in range(count))
        return [Element(child) for child in found if child is not None]

    def descendants(self):
        """Everything below, parents first."""
        for child in self.children():
            yield child
            yield from child.descendants()

    def find(self, role=None, name=None, showing=True):
        """The first descendant with this role and name, or None."""
        for element in self.descendants():
            try:
                if role is not None and element.role() != role:
                    continue
                if name is not None and element.name() != name:
                    continue
                if showing and not element.has("showing"):
                    continue
                return element
            except GLib.Error:
                continue
        return None

    def texts(self):
        """Every name and text that is showing, in order."""
        found = []
        for element in self.descendants():
            try:
                if element.has("showing"):
                    found += [text for text in (element.name(), element.text()) if text]
            except GLib.Error:
                continue
        return found


def program(process):
    """The program of this process, or None while it is not on the accessibility bus."""
    try:
        for index in range(_desktop().get_child_count()):
            child = _desktop().get_child_at_index(index)
            if child is not None and child.get_process_id() == process:
                return Element(child)
    except GLib.Error:
        pass
    return None
