#!/usr/bin/python3
"""A file manager as the session bus knows one: owns org.freedesktop.FileManager1 and writes what it is asked to show
to a file, one line of JSON a call. Run as a program of its own; `FileManager` starts and reads it."""

import json
import os
import pathlib
import sys

from gi.repository import Gio, GLib

import processes
import waiting

_INTERFACE = """
<node>
  <interface name="org.freedesktop.FileManager1">
    <method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
    <method name="ShowFolders"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
    <method name="ShowItemProperties"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
  </interface>
</node>"""


class FileManager:
    def __init__(self, folder):
        self._record = pathlib.Path(folder) / "shown.jsonl"
        self._process = processes.start([sys.executable, "-B", __file__, self._record], env=os.environ.copy())
        waiting.until("file manager on the bus", self._record.exists, 20)

    def shown(self, count=1, seconds=20.0):
        """The first `count` calls, as (method, URIs), once there are so many."""
        def look():
            lines = self._record.read_text(encoding="utf-8").splitlines()
            return [tuple(json.loads(line)) for line in lines] if len(lines) >= count else None
        return waiting.until(f"{count} calls of the file manager", look, seconds)

    def stop(self):
        processes.end(self._process)


def serve(record):
    loop = GLib.MainLoop()

    def called(_connection, _sender, _path, _interface, method, arguments, invocation):
        with open(record, "a", encoding="utf-8") as file:
            file.write(json.dumps([method, arguments.unpack()[0]]) + "\n")
        invocation.return_value(None)

    def acquired(connection, _name):
        information = Gio.DBusNodeInfo.new_for_xml(_INTERFACE)
        connection.register_object("/org/freedesktop/FileManager1", information.interfaces[0], called, None, None)

    def owned(_connection, _name):
        pathlib.Path(record).touch()

    Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.FileManager1", Gio.BusNameOwnerFlags.NONE, acquired, owned,
                     lambda *_: loop.quit())
    loop.run()


if __name__ == "__main__":
    serve(sys.argv[1])
