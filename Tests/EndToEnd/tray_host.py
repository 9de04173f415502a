"""A panel's tray as the session bus knows one: keeps the list of items, and shows and presses them as a panel would.
Run as a program of its own it owns org.kde.StatusNotifierWatcher; `TrayHost` starts and uses it."""

import os
import pathlib
import sys

from gi.repository import Gio, GLib

import processes
import waiting

_NAME, _PATH, _MENU = "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "com.canonical.dbusmenu"
_ITEM = "org.kde.StatusNotifierItem"
_INTERFACE = """
<node>
  <interface name="org.kde.StatusNotifierWatcher">
    <method name="RegisterStatusNotifierItem"><arg name="service" type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg name="service" type="s" direction="in"/></method>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <signal name="StatusNotifierItemRegistered"><arg name="service" type="s"/></signal>
    <signal name="StatusNotifierItemUnregistered"><arg name="service" type="s"/></signal>
    <signal name="StatusNotifierHostRegistered"/>
    <signal name="StatusNotifierHostUnregistered"/>
  </interface>
</node>"""
_MILLISECONDS = 10000


class TrayHost:
    """Without `shows_items` the list is kept while no panel shows it, until `come_up`."""

    def __init__(self, folder, shows_items=True):
        self._session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        ready = pathlib.Path(folder) / "tray-host-ready"
        ready.unlink(missing_ok=True)
        self._process = processes.start([sys.executable, "-B", __file__, ready], env=os.environ.copy())
        waiting.until("tray on the bus", ready.exists, 20)
        if shows_items:
            self.come_up()

    def come_up(self):
        """A panel that shows the items says that it is there."""
        self._call(_NAME, _PATH, _NAME, "RegisterStatusNotifierHost", GLib.Variant("(s)", ("org.kde.StatusNotifierHost-1",)))

    def stop(self):
        processes.end(self._process)

    def services(self):
        """The items that are registered, each as its bus name with its path."""
        return self._call(_NAME, _PATH, "org.freedesktop.DBus.Properties", "Get",
                          GLib.Variant("(ss)", (_NAME, "RegisteredStatusNotifierItems")))[0]

    def item(self, seconds=20.0):
        """The one item, once it is there."""
        service = waiting.until("one item in the tray", lambda: found[0] if len(found := self.services()) == 1 else None,
                                seconds)
        return TrayIcon(self._call, service)

    def _call(self, name, path, interface, method, arguments=None):
        return self._session.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                                       _MILLISECONDS, None).unpack()


class TrayIcon:
    """One item, as the panel sees it."""

    def __init__(self, call, service):
        self.service = service
        name, slash, path = service.partition("/")
        self._call, self._name, self._path = call, name, slash + path

    def get(self, name):
        return self._call(self._name, self._path, "org.freedesktop.DBus.Properties", "Get",
                          GLib.Variant("(ss)", (_ITEM, name)))[0]

    @property
    def pid(self):
        return self._call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "GetConnectionUnixProcessID", GLib.Variant("(s)", (self._name,)))[0]

    @property
    def tooltip(self):
        """(title, text)"""
        return self.get("ToolTip")[2:]

    @property
    def pictures(self):
        """Its icon in each size that it comes in: (width, height, pixels as (alpha, red, green, blue))."""
        return [(width, height, [tuple(pixels[index:index + 4]) for index in range(0, len(pixels), 4)])
                for width, height, pixels in self.get("IconPixmap")]

    def activate(self, x, y):
        """A press on the icon at that place of the screen."""
        self._at("Activate", x, y)

    def secondary_activate(self, x, y):
        self._at("SecondaryActivate", x, y)

    def context_menu(self, x, y):
        self._at("ContextMenu", x, y)

    def _at(self, method, x, y):
        self._call(self._name, self._path, _ITEM, method, GLib.Variant("(ii)", (x, y)))

    def menu(self):
        """Its menu's entries from the top: (label, whether it can be chosen); a separator has no label."""
        return [(properties.get("label", "").replace("_", ""), properties.get("enabled", True))
                for _, properties in self._entries()]

    def choose(self, label):
        """A press on that entry."""
        entries = {properties.get("label", "").replace("_", ""): number for number, properties in self._entries()}
        self._call(self._name, self.get("Menu"), _MENU, "Event",
                   GLib.Variant("(isvu)", (entries[label], "clicked", GLib.Variant("i", 0), 0)))

    def _entries(self):
        path = self.get("Menu")
        try:
            self._call(self._name, path, _MENU, "AboutToShow", GLib.Variant("(i)", (0,)))
        except GLib.Error:
            # A panel shows the menu even where nobody wants to be told of it.
            pass
        _, (_, _, children) = self._call(self._name, path, _MENU, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        return [(number, properties) for number, properties, _ in children if properties.get("visible", True)]


class _Watcher:
    """The list of items, and whether a panel shows it."""

    def __init__(self, connection):
        self._connection = connection
        # What was registered, by the name on the bus with which it goes.
        self._items, self._hosts = {}, {}
        self._interface = Gio.DBusNodeInfo.new_for_xml(_INTERFACE).interfaces[0]
        connection.register_object(_PATH, self._interface, self._called, self._get, None)
        connection.signal_subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                                    "/org/freedesktop/DBus", None, Gio.DBusSignalFlags.NONE, self._owner_changed)

    def _called(self, _connection, sender, _path, _interface, method, arguments, invocation):
        service = arguments.unpack()[0]
        if method == "RegisterStatusNotifierItem":
            # Some give a name on the bus, some the path of the item alone.
            full = sender + service if service.startswith("/") else service + "/StatusNotifierItem"
            self._items[full] = {sender, service}
            self._emit("StatusNotifierItemRegistered", GLib.Variant("(s)", (full,)))
        else:
            self._hosts[sender] = service
            self._emit("StatusNotifierHostRegistered")
        invocation.return_value(None)

    def _get(self, _connection, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": lambda: GLib.Variant("as", list(self._items)),
                "IsStatusNotifierHostRegistered": lambda: GLib.Variant("b", bool(self._hosts)),
                "ProtocolVersion": lambda: GLib.Variant("i", 0)}[name]()

    def _owner_changed(self, _connection, _sender, _path, _interface, _signal, arguments):
        name, _, owner = arguments.unpack()
        if owner:
            return
        for full in [full for full, names in self._items.items() if name in names]:
            del self._items[full]
            self._emit("StatusNotifierItemUnregistered", GLib.Variant("(s)", (full,)))
        if self._hosts.pop(name, None) and not self._hosts:
            self._emit("StatusNotifierHostUnregistered")

    def _emit(self, signal, arguments=None):
        # The bus may end before this does; there is nobody to tell then.
        if self._connection.is_closed():
            return
        self._connection.emit_signal(None, _PATH, _NAME, signal, arguments)


def serve(ready):
    loop = GLib.MainLoop()
    watchers = []
    Gio.bus_own_name(Gio.BusType.SESSION, _NAME, Gio.BusNameOwnerFlags.NONE,
                     lambda connection, _name: watchers.append(_Watcher(connection)),
                     lambda *_: pathlib.Path(ready).touch(), lambda *_: loop.quit())
    loop.run()


if __name__ == "__main__":
    serve(sys.argv[1])
