"""What the suites about the life in the tray share: a tray, and the panel that drops from the program's item in it."""

import re

from gi.repository import Gio, GLib

import accessibility
import case
import desktop
import notification_server
import system_tray
import tray_host
import waiting

# Where the item of most desktops is: at the right of a panel at the top of the screen.
PLACE = (1180, 10)
WATCH, TELL, LOGIN = "Keep watching this Mac", "Tell me when space runs low", "Keep watching after I restart"
LAST_CHECKED = "Last checked today · checks every 30 minutes"
SIZE = r"\d[\d.]* (?:B|[KMGT]B)"
KB, MB = 1024, 1024 * 1024


class InTray(case.Case):
    def tray(self, **options):
        return self._kept(tray_host.TrayHost(self.folder, **options))

    def recorder(self):
        return self._kept(notification_server.Recorder(self.folder))

    def dunst(self):
        return self._kept(notification_server.Dunst(self.folder))

    def system_tray(self):
        return self._kept(system_tray.SystemTray(self.folder))

    def _kept(self, part):
        self.addCleanup(part.stop)
        return part

    def is_running_once(self):
        """Waits until the program has taken its place in the session, where a further start finds it."""
        session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        waiting.until("the program's name on the bus", lambda: session.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
            GLib.Variant("(s)", ("com.tarnwick.Quillbrook",)), None, Gio.DBusCallFlags.NONE, 5000, None).unpack()[0])

    def open_panel(self, quillbrook, tray, place=PLACE):
        """Presses the item, and answers with the panel."""
        return quillbrook.open_panel(lambda: tray.item().activate(*place))

    def switch(self, quillbrook, name):
        return quillbrook.panel().one("check box", name)

    def is_on(self, quillbrook, name):
        return self.switch(quillbrook, name).has(accessibility.CHECKED)

    def turn(self, quillbrook, name, on=True):
        """Presses a switch of the panel, and waits until it shows that."""
        if self.is_on(quillbrook, name) != on:
            self.switch(quillbrook, name).act("Toggle")
        self.becomes(lambda: self.is_on(quillbrook, name), on)

    def switches(self, quillbrook):
        """The words of all that are in the panel, from the top."""
        return quillbrook.panel().names("check box")

    def press(self, quillbrook, name):
        """A button of the panel."""
        quillbrook.panel().one("push button", name).act("Press")

    def no_window(self, quillbrook):
        waiting.until("no window on the display", lambda: not desktop.windows_of(quillbrook.pid))

    def free(self, quillbrook):
        """What the panel tells is free."""
        quillbrook.panel_says("free")
        names = quillbrook.panel().names()
        return names[names.index("free") - 1]

    def reclaimable(self, quillbrook):
        return quillbrook.panel_says(re.compile(f"^{SIZE} can be reclaimed safely$"))
