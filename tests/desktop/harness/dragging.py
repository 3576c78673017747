# SPDX-License-Identifier: MIT
"""Other programs that something is dragged from.

The messages are those of XDND 5 (freedesktop.org/wiki/Specifications/XDND).
"""

import queue

from Xlib import X, Xatom
from Xlib.display import Display
from Xlib.protocol.event import ClientMessage

from .clipboard import ClipboardOwner

_VERSION = 5
_DEADLINE = 10.0


class DragSource(ClipboardOwner):
    """Offers bytes to be dropped, each under the name of a target, as a ClipboardOwner does."""

    def __init__(self, display_name, offers, manner=""):
        self._heard = queue.Queue()
        super().__init__(display_name, offers, "XdndSelection", manner)
        self._sender = Display(display_name)
        self._source = self._window.id
        self._types = [self._sender.intern_atom(name) for name in offers]
        self._window.change_property(self._sender.intern_atom("XdndTypeList"), Xatom.ATOM, 32,
                                     self._types)
        self._display.flush()

    def close(self):
        super().close()
        self._sender.close()

    def drop(self, window, place):
        """Drags onto a place of a window and lets go there; whether it was taken. It is None while
        the target is not done with it."""
        if not self.drag(window, place):
            self._tell(window, "XdndLeave")
            return False
        self._tell(window, "XdndDrop", 0, X.CurrentTime)
        try:
            return bool(self._wait_for("XdndFinished", _DEADLINE)[1] & 1)
        except queue.Empty:
            return None

    def drag(self, window, place):
        """Drags onto a place of a window; whether it may be dropped there."""
        listed = (self._types + 3 * [X.NONE])[:3]
        self._tell(window, "XdndEnter", _VERSION << 24 | (len(self._types) > 3), *listed)
        x, y = place
        self._tell(window, "XdndPosition", 0, x << 16 | y, X.CurrentTime,
                   self._sender.intern_atom("XdndActionCopy"))
        return bool(self._wait_for("XdndStatus", _DEADLINE)[1] & 1)

    def _hear(self, message):
        self._heard.put((message.client_type, list(message.data[1])))

    def _wait_for(self, name, seconds):
        wanted = self._sender.intern_atom(name)
        while True:
            kind, data = self._heard.get(timeout=seconds)
            if kind == wanted:
                return data

    def _tell(self, window, name, *data):
        message = ClientMessage(window=window.id, client_type=self._sender.intern_atom(name),
                                data=(32, ([self._source, *data] + 4 * [0])[:5]))
        self._sender.create_resource_object("window", window.id).send_event(message)
        self._sender.flush()
