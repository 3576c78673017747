# SPDX-License-Identifier: MIT
"""A program as a screen reader meets it: the protocol AT-SPI, spoken over its bus.

Every question goes to the program itself. Nothing is kept, so that no answer is an old one.
"""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

from .waiting import until  # noqa: E402

_ACCESSIBLE = "org.a11y.atspi.Accessible"
_ACTION = "org.a11y.atspi.Action"
_COMPONENT = "org.a11y.atspi.Component"
_TEXT = "org.a11y.atspi.Text"
_ROOT = "/org/a11y/atspi/accessible/root"
_IDENTIFIERS = "org.quillmark.Quillmark.Identifiers1"
_IDENTIFIERS_PATH = "/org/quillmark/Quillmark/Identifiers"
_MILLISECONDS = 5000

# The numbers of the states, which the protocol sends as a set of bits.
_STATES = {"editable": 7, "enabled": 8, "focused": 12, "modal": 16, "pressed": 20, "checked": 4,
           "showing": 25, "visible": 30}


class Gone(Exception):
    """The object, or its program, is there no more."""


class Bus:
    """A connection to the accessibility bus of one session."""

    def __init__(self, session_address):
        session = self._connect(session_address)
        answer = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                   None, None, Gio.DBusCallFlags.NONE, _MILLISECONDS, None)
        session.close_sync(None)
        self._connection = self._connect(answer.unpack()[0])
        # Programs tell of the focus only while somebody wants to hear of it.
        self.call("org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                  "org.a11y.atspi.Registry", "RegisterEvent",
                  GLib.Variant("(sass)", ("object:state-changed:focused", [], "")))

    @staticmethod
    def _connect(address):
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def close(self):
        self._connection.close_sync(None)

    def process_of(self, name):
        """The number of the process that has this name on the bus; the bus itself has one, too."""
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))

    def call(self, name, path, interface, method, arguments=None):
        try:
            answer = self._connection.call_sync(name, path, interface, method, arguments, None,
                                                Gio.DBusCallFlags.NONE, _MILLISECONDS, None)
        except GLib.Error as error:
            raise Gone(error.message) from None
        values = answer.unpack()
        return values[0] if values else None

    def send(self, name, path, interface, method, arguments):
        """Does not wait for the answer: a program that shows a menu answers once it is closed."""
        self._connection.call(name, path, interface, method, arguments, None,
                              Gio.DBusCallFlags.NONE, _MILLISECONDS, None, None)
        self._connection.flush_sync(None)

    def property(self, name, path, interface, key):
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", (interface, key)))

    def listen_to_everything(self, process):
        """From here on hears what this program tells of its objects."""
        return ChangeListener(self, self._connection, process)

    def listen(self):
        """From here on hears what gets the keyboard focus."""
        return FocusListener(self, self._connection)

    def registry_process(self):
        """The process that programs ask about each key before they act on it."""
        return Element(self, "org.a11y.atspi.Registry", _ROOT).process()

    def program(self, process):
        """The program of this process, or None while it is not on the bus."""
        registry = Element(self, "org.a11y.atspi.Registry", _ROOT)
        try:
            for child in registry.children():
                if child.process() == process:
                    return child
        except Gone:
            pass
        return None


class FocusListener:
    """The names of what got the keyboard focus, as a screen reader speaks them; the one way to
    learn what is in an open menu."""

    def __init__(self, bus, connection):
        self._bus = bus
        self._connection = connection
        self._names = []
        self._subscription = connection.signal_subscribe(
            None, "org.a11y.atspi.Event.Object", "StateChanged", None, "focused",
            Gio.DBusSignalFlags.NONE, self._hear)
        # The bus answers in order: by now it knows of the subscription.
        bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId")

    def _hear(self, _connection, sender, path, _interface, _signal, values):
        if values.unpack()[1] == 1:
            self._names.append(Element(self._bus, sender, path).name())

    def names(self):
        """All names until now, the latest last."""
        context = GLib.MainContext.default()
        while context.pending():
            context.iteration(False)
        return list(self._names)

    def close(self):
        self._connection.signal_unsubscribe(self._subscription)


class ChangeListener:
    """All that one program tells of its objects but the keyboard's way, which has a listener of its
    own."""

    def __init__(self, bus, connection, process):
        self._bus = bus
        self._connection = connection
        self._process = process
        self._changes = []
        self._announced = []
        self._texts = []
        self._count = 0
        for event in "object:property-change", "object:state-changed", "object:text-changed":
            bus.call("org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                     "org.a11y.atspi.Registry", "RegisterEvent",
                     GLib.Variant("(sass)", (event, [], "")))
        self._subscription = connection.signal_subscribe(
            None, "org.a11y.atspi.Event.Object", None, None, None, Gio.DBusSignalFlags.NONE,
            self._hear)
        bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId")

    def _hear(self, _connection, sender, path, _interface, signal, values):
        kind, value = values.unpack()[:2]
        source = Element(self._bus, sender, path)
        try:
            if source.process() != self._process:
                return
            self._count += 1
            if signal == "TextChanged":
                self._texts.append(kind)
            elif signal == "StateChanged" and kind == "showing":
                if value == 1 and source.role() == "notification":
                    self._announced.append(source.name())
            elif signal == "PropertyChange" and kind == "accessible-name":
                if source.role() != "notification":
                    self._changes.append((kind, source.name()))
            elif signal == "StateChanged" and kind not in ("focused", "defunct"):
                self._changes.append((f"{kind}:{value}", path))
        except Gone:
            pass

    def _listen(self):
        context = GLib.MainContext.default()
        while context.pending():
            context.iteration(False)

    def count(self):
        """How often something was told until now, of whatever kind."""
        self._listen()
        return self._count

    def changes(self):
        """What was told until now: (kind, name or object)."""
        self._listen()
        return list(self._changes)

    def text_changes(self):
        """What was told of texts: "insert", "delete"."""
        self._listen()
        return list(self._texts)

    def announced(self):
        """The texts that were only to be spoken."""
        self._listen()
        return list(self._announced)

    def close(self):
        self._connection.signal_unsubscribe(self._subscription)


class Element:
    """One accessible object."""

    def __init__(self, bus, name, path):
        self._bus = bus
        self._name = name
        self._path = path

    def __repr__(self):
        return f"<{self.role()} “{self.name()}”>"

    def _call(self, interface, method, arguments=None):
        return self._bus.call(self._name, self._path, interface, method, arguments)

    def process(self):
        return self._bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                              "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                              GLib.Variant("(s)", (self._name,)))

    def name(self):
        return self._bus.property(self._name, self._path, _ACCESSIBLE, "Name")

    def description(self):
        return self._bus.property(self._name, self._path, _ACCESSIBLE, "Description")

    def identifier(self):
        """By which the program names it for drivers of tests, see docs/ARCHITECTURE.md."""
        return self._bus.call(self._name, _IDENTIFIERS_PATH, _IDENTIFIERS, "IdentifierOf",
                              GLib.Variant("(o)", (self._path,)))

    def role(self):
        """As the protocol names it: "push button", "text", "menu item"."""
        return self._call(_ACCESSIBLE, "GetRoleName")

    def has(self, state):
        """Whether a state such as "focused", "showing" or "enabled" is set."""
        low, high = self._call(_ACCESSIBLE, "GetState")
        return bool((low | high << 32) >> _STATES[state] & 1)

    def rectangle(self):
        """x, y, width and height of what is seen of it, on the screen."""
        return self._call(_COMPONENT, "GetExtents", GLib.Variant("(u)", (0,)))

    def centre(self):
        """The middle of what is seen of it, on the screen."""
        x, y, width, height = self.rectangle()
        return x + width // 2, y + height // 2

    def _offers(self, interface):
        return interface in self._call(_ACCESSIBLE, "GetInterfaces")

    def text(self):
        """The content of a text; of anything else, its name."""
        if not self._offers(_TEXT):
            return self.name()
        return self._call(_TEXT, "GetText", GLib.Variant("(ii)", (0, -1)))

    def actions(self):
        if not self._offers(_ACTION):
            return []
        count = self._bus.property(self._name, self._path, _ACTION, "NActions")
        return [self._call(_ACTION, "GetName", GLib.Variant("(i)", (index,)))
                for index in range(count)]

    def perform(self, action, is_awaited=False):
        index = self.actions().index(action)
        do = self._bus.call if is_awaited else self._bus.send
        do(self._name, self._path, _ACTION, "DoAction", GLib.Variant("(i)", (index,)))

    def press(self, is_awaited=False):
        """What a press does: a button is pressed, a choice toggled, a menu button shows its menu.

        Awaited, it has been done when the call returns; not for what shows a menu or a question."""
        offered = self.actions()
        for action in ("Press", "Toggle", "ShowMenu"):
            if action in offered:
                self.perform(action, is_awaited)
                # The toolkit shows the button pressed for a moment before it counts.
                if is_awaited:
                    until(lambda: not self.has("pressed"), f"{self} is pressed")
                return
        raise AssertionError(f"{self} cannot be pressed, it offers {offered}")

    def parent(self):
        return Element(self._bus, *self._bus.property(self._name, self._path, _ACCESSIBLE,
                                                      "Parent"))

    def index(self):
        """Its place among the children of its parent, from 0."""
        return self._call(_ACCESSIBLE, "GetIndexInParent")

    def children(self):
        return [Element(self._bus, name, path)
                for name, path in self._call(_ACCESSIBLE, "GetChildren")]

    def descendants(self):
        """Everything below, parents first; what goes meanwhile is left out."""
        try:
            children = self.children()
        except Gone:
            return
        for child in children:
            yield child
            yield from child.descendants()

    def find(self, role=None, name=None):
        """The first descendant on screen with this role and name, or None."""
        for element in self.descendants():
            try:
                if ((name is None or element.name() == name)
                        and (role is None or element.role() == role) and element.has("showing")):
                    return element
            except Gone:
                continue
        return None

    def texts(self):
        """Every name and text on screen, in order, each once."""
        found = {}
        for element in self.descendants():
            try:
                if element.has("showing"):
                    found |= {text: None for text in (element.name(), element.text()) if text}
            except Gone:
                continue
        return list(found)
