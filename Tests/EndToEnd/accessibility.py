"""The window as assistive technology sees it: a tree of things with a role, a name and actions, read over the
accessibility bus. Nothing is cached, so that an answer is always of now."""

from gi.repository import Gio, GLib

import waiting
from waiting import Gone

ROOT = "/org/a11y/atspi/accessible/root"
_MILLISECONDS = 8000

# Bits of a state set.
ACTIVE, CHECKED, ENABLED, FOCUSABLE, FOCUSED, SELECTED, SHOWING, VISIBLE = 1, 4, 8, 11, 12, 23, 25, 30


class Bus:
    """The accessibility bus of the session whose address is in the environment."""

    def __init__(self):
        session = Gio.bus_get_sync(Gio.BusType.SESSION, None)

        def ask():
            try:
                return session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                                         Gio.DBusCallFlags.NONE, _MILLISECONDS, None).unpack()[0]
            except GLib.Error:
                return None

        address = waiting.until("accessibility bus", ask)
        self.connection = Gio.DBusConnection.new_for_address_sync(
            address,
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
            None, None)

    def call(self, name, path, interface, method, arguments=None):
        try:
            return self.connection.call_sync(name, path, interface, method, arguments, None,
                                             Gio.DBusCallFlags.NONE, _MILLISECONDS, None).unpack()
        except GLib.Error as error:
            raise Gone(f"{method} of {path}: {error.message}") from error

    def application(self, pid):
        """The application of that process, or None as long as it has not registered."""
        children = self.call("org.a11y.atspi.Registry", ROOT, "org.a11y.atspi.Accessible", "GetChildren")[0]
        for name, path in children:
            try:
                owner = self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                  "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]
            except Gone:
                continue
            if owner == pid:
                return Thing(self, name, path)
        return None


class Announcements:
    """What those who hear the screen are told from now on: the names of the notices that appear, in their order."""

    def __init__(self, bus):
        self._bus, self._appeared, self._told = bus, [], []
        bus.call("org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry", "RegisterEvent",
                 GLib.Variant("(s)", ("object:state-changed:showing",)))
        bus.connection.signal_subscribe(None, "org.a11y.atspi.Event.Object", "StateChanged", None, "showing",
                                        Gio.DBusSignalFlags.NONE, self._hear)

    def _hear(self, _, name, path, *signal):
        if signal[-1].unpack()[1] == 1:
            self._appeared.append(Thing(self._bus, name, path))

    def told(self):
        while GLib.MainContext.default().iteration(False):
            pass
        appeared, self._appeared = self._appeared, []
        for thing in appeared:
            try:
                if thing.role == "notification":
                    self._told.append(thing.name)
            except Gone:
                continue
        return self._told


class Thing:
    """One node of the tree."""

    def __init__(self, bus, name, path):
        self._bus, self._name, self._path = bus, name, path

    def __eq__(self, other):
        return isinstance(other, Thing) and (self._name, self._path) == (other._name, other._path)

    def __hash__(self):
        return hash((self._name, self._path))

    def __repr__(self):
        try:
            return f"<{self.role} '{self.name}'>"
        except Gone:
            return "<gone>"

    def _call(self, interface, method, arguments=None):
        return self._bus.call(self._name, self._path, "org.a11y.atspi." + interface, method, arguments)

    def _property(self, interface, name):
        return self._bus.call(self._name, self._path, "org.freedesktop.DBus.Properties", "Get",
                              GLib.Variant("(ss)", ("org.a11y.atspi." + interface, name)))[0]

    @property
    def role(self):
        return self._call("Accessible", "GetRoleName")[0]

    @property
    def name(self):
        return self._property("Accessible", "Name")

    @property
    def description(self):
        return self._property("Accessible", "Description")

    @property
    def children(self):
        return [Thing(self._bus, name, path) for name, path in self._call("Accessible", "GetChildren")[0]
                if not path.endswith("/null")]

    @property
    def text(self):
        """What stands in a text field."""
        return self._call("Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    def has(self, *states):
        low, high = self._call("Accessible", "GetState")[0]
        held = low | high << 32
        return all(held >> state & 1 for state in states)

    @property
    def extents(self):
        """(x, y, width, height) on the display."""
        return self._call("Component", "GetExtents", GLib.Variant("(u)", (0,)))[0]

    @property
    def centre(self):
        x, y, width, height = self.extents
        return x + width // 2, y + height // 2

    @property
    def actions(self):
        return [action[0] for action in self._call("Action", "GetActions")[0]]

    def act(self, action="Press"):
        """Does the action of that name, once it can be done; raises Gone where there is none."""
        waiting.until(f"{self!r} can be used", lambda: self.has(ENABLED))
        actions = self.actions
        if action not in actions:
            raise Gone(f"{self!r} knows {actions}, not {action}")
        self._call("Action", "DoAction", GLib.Variant("(i)", (actions.index(action),)))

    def focus(self):
        return self._call("Component", "GrabFocus")[0]

    def walk(self, showing=True):
        """This and everything below it, in reading order; by default only what is on the screen."""
        stack = [self]
        while stack:
            thing = stack.pop()
            try:
                if showing and thing is not self and not thing.has(SHOWING):
                    continue
                children = thing.children
            except Gone:
                continue
            yield thing
            stack.extend(reversed(children))

    def all(self, role=None, name=None, showing=True):
        """Everything below with that role and name; `name` is the whole name, or a test of it."""
        test = name if callable(name) else (lambda other: name is None or other == name)
        found = []
        for thing in self.walk(showing):
            try:
                if (role is None or thing.role == role) and test(thing.name):
                    found.append(thing)
            except Gone:
                continue
        return found

    def one(self, role=None, name=None, seconds=20.0):
        """The first such thing, once there is one."""
        wanted = f"{role or 'anything'} named {name if not callable(name) else '...'}"
        return waiting.until(wanted + " in the window", lambda: next(iter(self.all(role, name)), None), seconds)

    def names(self, role=None):
        """The names of all below that have one, in reading order."""
        found = []
        for thing in self.all(role):
            try:
                found.append(thing.name)
            except Gone:
                continue
        return [name for name in found if name]

    def outline(self):
        """The tree as text, for a person who reads why a test failed."""
        lines = []

        def describe(thing, depth):
            try:
                mark = "" if thing.has(SHOWING) else " (hidden)"
                lines.append(f"{'  ' * depth}{thing.role} '{thing.name}'{mark}")
                children = thing.children
            except Gone:
                return
            for child in children[:200]:
                describe(child, depth + 1)

        describe(self, 0)
        return "\n".join(lines)
