# SPDX-License-Identifier: MIT
"""Other programs that offer something to be pasted, and may not give it."""

import os
import select
import threading

from Xlib import X, Xatom
from Xlib.display import Display
from Xlib.protocol.event import SelectionNotify

_SERVED_AT_ONCE = 1 << 16
_BREATH = 0.1


class ClipboardOwner:
    """A program on a connection and a thread of its own that owns the clipboard, or the selection
    that the middle button pastes.

    It offers bytes, each under the name of a target; more than 64 KiB in parts. It may keep silent
    about everything ("silent"), after it has told what it offers ("after targets"), or after the
    first part ("after a part"). One that is "slow" sends a part of one byte ten times a second, and
    the rest when it is told to hurry up.
    """

    def __init__(self, display_name, offers, selection="CLIPBOARD", manner=""):
        self._display = Display(display_name)
        self._offers = {self._atom(name): content for name, content in offers.items()}
        self._manner = manner
        self._window = self._display.screen().root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        self._selection = self._atom(selection)
        self._window.set_selection_owner(self._selection, X.CurrentTime)
        self._display.sync()
        self._parts = {}  # (window, property) → what is still to be sent
        self._asked = threading.Event()
        self._hurries = threading.Event()
        self._end, self._wake = os.pipe()
        self._thread = threading.Thread(target=self._serve, daemon=True)
        self._thread.start()

    def was_asked(self):
        return self._asked.is_set()

    def hurry_up(self):
        self._hurries.set()

    def close(self):
        os.close(self._wake)
        self._thread.join()
        os.close(self._end)
        self._display.close()

    def _atom(self, name):
        return self._display.intern_atom(name)

    def _serve(self):
        while True:
            ready, _, _ = select.select([self._display, self._end], [], [], _BREATH)
            if self._end in ready:
                return
            while self._display.pending_events():
                event = self._display.next_event()
                if event.type == X.SelectionRequest:
                    self._answer(event)
                elif event.type == X.ClientMessage:
                    self._hear(event)
                elif (event.type == X.PropertyNotify and event.state == X.PropertyDelete
                        and self._manner not in ("after a part", "slow")):
                    self._send_part(event.window, event.atom)
            if self._manner == "slow":
                for window, place in list(self._parts):
                    self._send_part(window, place)
            self._display.flush()

    def _hear(self, message):
        """Another program's message to the owner's window."""

    def _answer(self, request):
        self._asked.set()
        targets = self._atom("TARGETS")
        content = self._offers.get(request.target)
        if self._manner == "silent" or (self._manner == "after targets"
                                        and request.target != targets):
            return
        place = request.property
        if request.target == targets:
            request.requestor.change_property(place, Xatom.ATOM, 32, [targets, *self._offers])
        elif content is None:
            place = X.NONE
        elif len(content) > _SERVED_AT_ONCE or self._manner in ("after a part", "slow"):
            request.requestor.change_attributes(event_mask=X.PropertyChangeMask)
            self._parts[request.requestor, place] = request.target, content
            request.requestor.change_property(place, self._atom("INCR"), 32, [len(content)])
        else:
            request.requestor.change_property(place, request.target, 8, content)
        request.requestor.send_event(SelectionNotify(
            time=request.time, requestor=request.requestor, selection=request.selection,
            target=request.target, property=place))

    def _send_part(self, window, place):
        found = self._parts.get((window, place))
        if found is None or window.get_property(place, X.AnyPropertyType, 0, 0) is not None:
            return
        target, content = found
        length = 1 if self._manner == "slow" and not self._hurries.is_set() else _SERVED_AT_ONCE
        if self._manner == "slow" and length == 1 and len(content) == 1:
            return
        window.change_property(place, target, 8, content[:length])
        if content:
            self._parts[window, place] = target, content[length:]
        else:
            del self._parts[window, place]
