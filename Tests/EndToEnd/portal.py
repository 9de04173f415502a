"""The desktop's portal, as a sandboxed program meets it, with a person behind it who answers as they were told to. Run
as a program of its own it owns org.freedesktop.portal.Desktop; `Portal` starts it, and reads what it was asked."""

import json
import os
import pathlib
import sys

from gi.repository import Gio, GLib

import processes
import waiting

_NAME, _PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
_REQUEST = """
<node>
  <interface name="org.freedesktop.portal.Request">
    <method name="Close"/>
    <signal name="Response"><arg type="u"/><arg type="a{sv}"/></signal>
  </interface>
</node>"""
_INTERFACE = """
<node>
  <interface name="org.freedesktop.portal.FileChooser">
    <method name="OpenFile">
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
      <arg type="o" direction="out"/>
    </method>
    <property name="version" type="u" access="read"/>
  </interface>
  <interface name="org.freedesktop.portal.Background">
    <method name="RequestBackground">
      <arg type="s" direction="in"/><arg type="a{sv}" direction="in"/><arg type="o" direction="out"/>
    </method>
    <property name="version" type="u" access="read"/>
  </interface>
  <interface name="org.freedesktop.portal.Notification">
    <method name="AddNotification"><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/></method>
    <method name="RemoveNotification"><arg type="s" direction="in"/></method>
    <property name="version" type="u" access="read"/>
  </interface>
</node>"""


class Portal:
    def __init__(self, folder):
        folder = pathlib.Path(folder)
        self._record, self._answer = folder / "portal.jsonl", folder / "portal-answer.json"
        self._record.unlink(missing_ok=True)
        self.person_cancels()
        self._process = processes.start([sys.executable, "-B", __file__, self._record, self._answer],
                                        env=os.environ.copy())
        waiting.until("portal on the bus", self._record.exists, 20)

    def person_picks(self, folder):
        self._answers([pathlib.Path(folder).as_uri()])

    def person_cancels(self):
        self._answers(None)

    def _answers(self, uris):
        beside = self._answer.with_suffix(".new")
        beside.write_text(json.dumps(uris), encoding="utf-8")
        beside.rename(self._answer)

    def asked(self, method="OpenFile"):
        """The calls of that method so far, each as its arguments."""
        lines = self._record.read_text(encoding="utf-8").splitlines()
        return [call[1] for call in map(json.loads, lines) if call[0] == method]

    def wait_for(self, method="OpenFile", count=1, seconds=20.0):
        return waiting.until(f"{count} calls of {method}",
                             lambda: found if len(found := self.asked(method)) >= count else None, seconds)

    def stop(self):
        processes.end(self._process)


def serve(record, answer):
    loop = GLib.MainLoop()
    request = Gio.DBusNodeInfo.new_for_xml(_REQUEST).interfaces[0]

    def called(connection, sender, _path, _interface, method, arguments, invocation):
        given = arguments.unpack()
        with open(record, "a", encoding="utf-8") as file:
            file.write(json.dumps([method, given], default=repr) + "\n")
        if method not in ("OpenFile", "RequestBackground"):
            invocation.return_value(None)
            return
        options = given[-1]
        handle = f"{_PATH}/request/{sender[1:].replace('.', '_')}/{options.get('handle_token', 't')}"
        number = connection.register_object(handle, request, lambda *call: call[-1].return_value(None), None, None)
        invocation.return_value(GLib.Variant("(o)", (handle,)))
        GLib.idle_add(respond, connection, sender, handle, number, method, options)

    def respond(connection, sender, handle, number, method, options):
        code, results = 0, {}
        if method == "OpenFile":
            uris = json.loads(pathlib.Path(answer).read_text(encoding="utf-8"))
            code, results = (1, {}) if uris is None else (0, {"uris": GLib.Variant("as", uris)})
        else:
            results = {"background": GLib.Variant("b", True),
                       "autostart": GLib.Variant("b", options.get("autostart", False))}
        connection.emit_signal(sender, handle, "org.freedesktop.portal.Request", "Response",
                               GLib.Variant("(ua{sv})", (code, results)))
        connection.unregister_object(number)
        return GLib.SOURCE_REMOVE

    def acquired(connection, _name):
        for interface in Gio.DBusNodeInfo.new_for_xml(_INTERFACE).interfaces:
            connection.register_object(_PATH, interface, called, lambda *_: GLib.Variant("u", 3), None)

    Gio.bus_own_name(Gio.BusType.SESSION, _NAME, Gio.BusNameOwnerFlags.NONE, acquired,
                     lambda *_: pathlib.Path(record).touch(), lambda *_: loop.quit())
    loop.run()


if __name__ == "__main__":
    serve(*sys.argv[1:])
