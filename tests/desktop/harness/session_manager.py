# SPDX-License-Identifier: MIT
"""A session manager as desktops have one, speaking the X session management protocol.

The protocol's own library is called, which every program on the xcb platform loads as well. All
of it runs in one thread, whenever the test waits.
"""

import ctypes
import select

from .waiting import until

_ice = ctypes.CDLL("libICE.so.6")
_sm = ctypes.CDLL("libSM.so.6")

_POINTER = ctypes.c_void_p
_for_int = ctypes.CFUNCTYPE(ctypes.c_int, _POINTER, _POINTER, _POINTER)
_for_nothing = ctypes.CFUNCTYPE(None, _POINTER, _POINTER, ctypes.c_int)
_HOST = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_char_p)

for _function in (_sm.SmsGenerateClientID, _ice.IceAcceptConnection,
                  _ice.IceComposeNetworkIdList):
    _function.restype = _POINTER

# The callbacks in their order in SmsCallbacks, which holds a function and a datum for each.
_CALLBACKS = ["register", "interact_request", "interact_done", "save_request", "save_phase2_request",
              "save_done", "close", "set_properties", "delete_properties", "get_properties"]
_SAVE_LOCAL, _SAVE_BOTH = 1, 2
_NO_INTERACTION, _ANY_INTERACTION = 0, 2


class _Callbacks(ctypes.Structure):
    _fields_ = [(f"{name}_{part}", _POINTER) for name in _CALLBACKS for part in ("call", "datum")]


class SessionManager:
    """Listens for programs; address is what they find it by, in SESSION_MANAGER."""

    def __init__(self):
        self._connections = []
        self._keep = []
        self.forget_programs()
        error = ctypes.create_string_buffer(256)
        # A program that ends is no error. Without this the library ends the whole process.
        _ice.IceSetIOErrorHandler(self._callback(ctypes.CFUNCTYPE(None, _POINTER), lambda _: None))
        new_client = self._callback(ctypes.CFUNCTYPE(
            ctypes.c_int, _POINTER, _POINTER, ctypes.POINTER(ctypes.c_ulong),
            ctypes.POINTER(_Callbacks), ctypes.POINTER(ctypes.c_char_p)), self._accept_client)
        everyone = self._callback(_HOST, lambda host: 1)
        self._check(_sm.SmsInitialize(b"Test", b"1", new_client, None, everyone, 256, error), error)
        count = ctypes.c_int()
        listeners = ctypes.POINTER(_POINTER)()
        self._check(_ice.IceListenForConnections(ctypes.byref(count), ctypes.byref(listeners), 256,
                                                 error), error)
        self._listeners = [_POINTER(listeners[i]) for i in range(count.value)]
        for listener in self._listeners:
            _ice.IceSetHostBasedAuthProc(listener, everyone)
        addresses = _ice.IceComposeNetworkIdList(count, listeners)
        self.address = ctypes.string_at(addresses).decode()

    def _callback(self, kind, function):
        callback = kind(function)
        self._keep.append(callback)
        return callback

    @staticmethod
    def _check(succeeded, error):
        if not succeeded:
            raise RuntimeError(f"the session manager did not start: {error.value.decode()}")

    def _accept_client(self, client, _datum, mask, callbacks, _failure):
        calls = {"register": (_for_int, self._register),
                 "interact_request": (_for_nothing, self._let_interact),
                 "interact_done": (_for_nothing, self._end_interaction),
                 "save_done": (_for_nothing, self._end_save)}
        others = (_for_nothing, lambda *_: None)
        for name in _CALLBACKS:
            call = self._callback(*calls.get(name, others))
            setattr(callbacks.contents, f"{name}_call", ctypes.cast(call, _POINTER))
        mask[0] = (1 << len(_CALLBACKS)) - 1
        return 1

    def _register(self, client, _datum, _previous):
        client = _POINTER(client)
        _sm.SmsRegisterClientReply(client, _POINTER(_sm.SmsGenerateClientID(client)))
        # As the protocol asks for from every program that is new to the session.
        _sm.SmsSaveYourself(client, _SAVE_LOCAL, 0, _NO_INTERACTION, 0)
        self._clients.append(client)
        return 1

    def _let_interact(self, client, _datum, _kind):
        self.is_interacting = True
        _sm.SmsInteract(_POINTER(client))

    def _end_interaction(self, _client, _datum, cancelled):
        self.is_interacting = False
        self.was_cancelled = bool(cancelled)

    def _end_save(self, client, _datum, _succeeded):
        self.is_saved = True
        _sm.SmsSaveComplete(_POINTER(client))

    # What a test does with it

    def forget_programs(self):
        """A session in which nothing has happened yet."""
        self._clients = []
        self.is_interacting = False
        self.was_cancelled = None
        self.is_saved = False

    def work(self):
        """Takes in what programs have said."""
        for listener in self._listeners:
            if self._is_readable(_ice.IceGetListenConnectionNumber(listener)):
                status = ctypes.c_int()
                self._connections.append(_POINTER(_ice.IceAcceptConnection(
                    listener, ctypes.byref(status))))
        for connection in list(self._connections):
            while self._is_readable(_ice.IceConnectionNumber(connection)):
                if _ice.IceProcessMessages(connection, None, None) != 0:
                    self._connections.remove(connection)
                    break

    @staticmethod
    def _is_readable(descriptor):
        return bool(select.select([descriptor], [], [], 0)[0])

    def until(self, condition, what):
        def worked():
            self.work()
            return condition()
        return until(worked, what)

    def wait_for_program(self):
        self.until(lambda: self._clients and self.is_saved, "the program has joined the session")
        self.is_saved = False

    def ask_to_end(self):
        """Asks the program to save, as at a log-out that the user may still cancel."""
        self.was_cancelled = None
        _sm.SmsSaveYourself(self._clients[-1], _SAVE_BOTH, 1, _ANY_INTERACTION, 0)

    def end(self):
        _sm.SmsDie(self._clients[-1])

    def go_on(self):
        _sm.SmsShutdownCancelled(self._clients[-1])
