"""What shows notifications. `Recorder` is one that only writes down what it is asked, argument by argument: run as a
program of its own it owns org.freedesktop.Notifications. `Dunst` is a real one, on the display."""

import json
import os
import pathlib
import sys

from gi.repository import Gio, GLib

import processes
import waiting

_NAME, _PATH = "org.freedesktop.Notifications", "/org/freedesktop/Notifications"
_INTERFACE = """
<node>
  <interface name="org.freedesktop.Notifications">
    <method name="GetCapabilities"><arg type="as" direction="out"/></method>
    <method name="GetServerInformation">
      <arg type="s" direction="out"/><arg type="s" direction="out"/>
      <arg type="s" direction="out"/><arg type="s" direction="out"/>
    </method>
    <method name="Notify">
      <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
      <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
    </method>
    <method name="CloseNotification"><arg type="u" direction="in"/></method>
    <signal name="NotificationClosed"><arg type="u"/><arg type="u"/></signal>
    <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
  </interface>
</node>"""
_FIELDS = ("application", "replaces", "icon", "title", "body", "actions", "hints", "milliseconds")


class Recorder:
    def __init__(self, folder):
        self._record = pathlib.Path(folder) / "notifications.jsonl"
        self._record.unlink(missing_ok=True)
        self._process = processes.start([sys.executable, "-B", __file__, self._record], env=os.environ.copy())
        waiting.until("notification server on the bus", self._record.exists, 20)

    def posted(self):
        """What was to be shown so far, each by the names in `_FIELDS`."""
        return [found[1] for found in self._lines() if found[0] == "Notify"]

    def wait_for(self, count=1, seconds=30.0):
        return waiting.until(f"{count} notifications", lambda: found if len(found := self.posted()) >= count else None,
                             seconds)

    def _lines(self):
        return [json.loads(line) for line in self._record.read_text(encoding="utf-8").splitlines()]

    def stop(self):
        processes.end(self._process)


class Dunst:
    """It keeps what it has shown, and tells of it."""

    def __init__(self, folder):
        folder = pathlib.Path(folder)
        configuration = folder / "dunstrc"
        # What is shown goes nowhere by itself, not even into the history.
        configuration.write_text("[global]\nidle_threshold = 0\n[urgency_normal]\ntimeout = 0\n", encoding="utf-8")
        self._session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        with open(folder / "dunst.log", "wb") as log:
            self.process = processes.start(["dunst", "-config", configuration], stdout=log, stderr=log,
                                           env=os.environ.copy())
        waiting.until("dunst on the bus", self._is_there, 20)

    def _is_there(self):
        return self._session.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                       "NameHasOwner", GLib.Variant("(s)", (_NAME,)), None, Gio.DBusCallFlags.NONE,
                                       5000, None).unpack()[0]

    def shown(self, seconds=30.0):
        """(title, body, application) of what is on the display, once something is: dismissed by this, oldest first."""
        waiting.until("a notification on the display", lambda: self._property("displayedLength") > 0, seconds)
        self._command("NotificationCloseAll")
        rows = waiting.until("what dunst has shown", lambda: self._command("NotificationListHistory")[0])
        return [(row["summary"], row["body"], row["appname"]) for row in reversed(rows)]

    def _property(self, name):
        return self._session.call_sync(_NAME, _PATH, "org.freedesktop.DBus.Properties", "Get",
                                       GLib.Variant("(ss)", ("org.dunstproject.cmd0", name)), None,
                                       Gio.DBusCallFlags.NO_AUTO_START, 10000, None).unpack()[0]

    def _command(self, method):
        return self._session.call_sync(_NAME, _PATH, "org.dunstproject.cmd0", method, None, None,
                                       Gio.DBusCallFlags.NO_AUTO_START, 10000, None).unpack()

    def stop(self):
        processes.end(self.process)


def serve(record):
    loop = GLib.MainLoop()
    numbers = iter(range(1, 1_000_000))

    def called(_connection, _sender, _path, _interface, method, arguments, invocation):
        if method == "GetCapabilities":
            invocation.return_value(GLib.Variant("(as)", (["body", "body-markup", "icon-static"],)))
        elif method == "GetServerInformation":
            invocation.return_value(GLib.Variant("(ssss)", ("recorder", "tests", "1", "1.2")))
        elif method == "Notify":
            write([method, dict(zip(_FIELDS, arguments.unpack()))])
            invocation.return_value(GLib.Variant("(u)", (next(numbers),)))
        else:
            write([method, arguments.unpack()])
            invocation.return_value(None)

    def write(what):
        with open(record, "a", encoding="utf-8") as file:
            file.write(json.dumps(what, default=repr) + "\n")

    def acquired(connection, _name):
        information = Gio.DBusNodeInfo.new_for_xml(_INTERFACE)
        connection.register_object(_PATH, information.interfaces[0], called, None, None)

    Gio.bus_own_name(Gio.BusType.SESSION, _NAME, Gio.BusNameOwnerFlags.NONE, acquired,
                     lambda *_: pathlib.Path(record).touch(), lambda *_: loop.quit())
    loop.run()


if __name__ == "__main__":
    serve(sys.argv[1])
