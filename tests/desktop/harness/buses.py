# SPDX-License-Identifier: MIT
"""Session buses, and programs on a session bus, that do not do what is expected of them."""

import pathlib
import socket
import subprocess
import threading

_OWNER = """\
import sys
import gi
gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib
bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
              "RequestName", GLib.Variant("(su)", (sys.argv[1], 0)), None,
              Gio.DBusCallFlags.NONE, -1, None)
print("ready", flush=True)
GLib.MainLoop().run()
"""


class NameOwner:
    """Another program that has a name on the desktop's session bus. It knows no object, which is
    what it answers unless it is stopped."""

    def __init__(self, desktop, name):
        self._process = desktop.spawn(["/usr/bin/python3", "-B", "-c", _OWNER, name],
                                      stdout=subprocess.PIPE)
        with self._process.stdout as answer:
            if answer.readline().strip() != b"ready":
                raise RuntimeError("the name has no owner:\n" + desktop.log())

    @property
    def process(self):
        return self._process.pid

    def close(self):
        self._process.kill()
        self._process.wait()


class SilentBus:
    """Where a session bus should be, and takes part in the conversation only so far.

    "listening": nobody takes the connection; "accepting": nothing is ever answered;
    "authenticating": no message is answered; "greeting": only the first one is, which gives the
    connection its name.
    """

    def __init__(self, folder, until):
        self._until = until
        self.path = pathlib.Path(folder) / f"bus-{until}"
        self.address = f"unix:path={self.path}"
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._listener.bind(str(self.path))
        # With a queue for one, the second connection has to wait.
        self._listener.listen(0)
        self._connections = []
        if until == "listening":
            first = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
            first.connect(str(self.path))
            self._connections.append(first)
        else:
            threading.Thread(target=self._serve, daemon=True).start()

    def close(self):
        self._listener.close()
        for connection in self._connections:
            connection.close()

    def _serve(self):
        while True:
            try:
                connection, _ = self._listener.accept()
            except OSError:
                return
            self._connections.append(connection)
            if self._until != "accepting":
                threading.Thread(target=self._talk, args=[connection], daemon=True).start()

    def _talk(self, connection):
        try:
            lines = connection.makefile("rb")
            for line in lines:
                if b"AUTH EXTERNAL" in line:
                    connection.sendall(b"OK 0123456789abcdef0123456789abcdef\r\n")
                elif b"NEGOTIATE_UNIX_FD" in line:
                    connection.sendall(b"AGREE_UNIX_FD\r\n")
                elif b"BEGIN" in line:
                    break
            if self._until == "greeting":
                self._greet(connection, lines)
        except OSError:
            pass

    @staticmethod
    def _greet(connection, messages):
        header = messages.read(16)
        body, serial, fields = (int.from_bytes(header[at:at + 4], "little") for at in (4, 8, 12))
        messages.read((fields + 7) // 8 * 8 + body)
        name = b":1.1"
        answered = (b"\x05\x01u\0" + serial.to_bytes(4, "little")
                    + b"\x08\x01g\0\x01s\0".ljust(8, b"\0"))
        content = len(name).to_bytes(4, "little") + name + b"\0"
        connection.sendall(b"l\x02\x01\x01" + len(content).to_bytes(4, "little")
                           + (1).to_bytes(4, "little") + (len(answered) - 1).to_bytes(4, "little")
                           + answered + content)
