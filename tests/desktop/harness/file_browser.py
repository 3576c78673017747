#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""A file browser that shows nothing and remembers what it was asked to show.

Run as a program this file is the service on the session bus; it prints each call on a line.
"""

import subprocess
import threading

_NAME = "org.freedesktop.FileManager1"
_INTERFACE = """
<node>
  <interface name="org.freedesktop.FileManager1">
    <method name="ShowFolders">
      <arg type="as" name="uris" direction="in"/>
      <arg type="s" name="startup" direction="in"/>
    </method>
    <method name="ShowItems">
      <arg type="as" name="uris" direction="in"/>
      <arg type="s" name="startup" direction="in"/>
    </method>
  </interface>
</node>
"""


class FileBrowser:
    """The service on a desktop's bus; it can be called once this is made."""

    def __init__(self, desktop):
        service = desktop.spawn(["/usr/bin/python3", "-B", __file__], stdout=subprocess.PIPE)
        if service.stdout.readline().strip() != b"ready":
            raise RuntimeError("the file browser did not start:\n" + desktop.log())
        self._calls = []
        threading.Thread(target=self._follow, args=[service.stdout], daemon=True).start()

    def _follow(self, lines):
        with lines:
            for line in lines:
                self._calls.append(line.decode().rstrip("\n"))

    def shown_folders(self):
        """The addresses of the folders that it was asked to show, oldest first."""
        return self._shown("ShowFolders")

    def shown_items(self):
        """The same of the files and folders that it was asked to choose in theirs."""
        return self._shown("ShowItems")

    def _shown(self, method):
        return [address for name, address in (call.split(" ", 1) for call in self._calls)
                if name == method]


def run_service():
    from gi.repository import Gio, GLib

    def called(_connection, _sender, _path, _interface, method, arguments, invocation):
        for address in arguments.unpack()[0]:
            print(method, address, flush=True)
        invocation.return_value(None)

    def acquired(connection, _name):
        [interface] = Gio.DBusNodeInfo.new_for_xml(_INTERFACE).interfaces
        connection.register_object("/org/freedesktop/FileManager1", interface, called, None, None)

    Gio.bus_own_name(Gio.BusType.SESSION, _NAME, Gio.BusNameOwnerFlags.NONE, acquired,
                     lambda *_: print("ready", flush=True), lambda *_: print("lost", flush=True))
    GLib.MainLoop().run()


if __name__ == "__main__":
    run_service()
