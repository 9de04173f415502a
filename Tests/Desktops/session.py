"""A real desktop's own session on a display in memory, for an ordinary user with a made-up home."""

import glob
import os
import pathlib
import shutil
import unittest

from gi.repository import Gio, GLib

import accessibility
import case
import desktop
import homes
import made_home
import processes
import waiting

_ENTRY = """[Desktop Entry]
Type=Application
Name=Quillbrook
Icon=com.tarnwick.Quillbrook
Exec={}
StartupWMClass=com.tarnwick.Quillbrook
"""
_PORTALS = "/usr/share/xdg-desktop-portal/portals/"
_PORTAL = """[D-BUS Service]
Name=org.freedesktop.portal.Desktop
Exec=/usr/bin/env -u LD_PRELOAD XDG_DESKTOP_PORTAL_DIR={} /usr/libexec/xdg-desktop-portal
"""


class Session(desktop.Desktop):
    """`name` is what people call the desktop, `desktop_name` what it calls itself, `programs` what it is made of, and
    `command` what a login starts."""

    # A desktop is made of services that start when they are asked for.
    services = "<standard_session_servicedirs/>"
    size = (3200, 2000)
    name = desktop_name = ""
    programs = command = ()
    # What answers for the desktop's portal, its own first.
    portals = ()
    # What the session's own environment says, and what a program in it is started with besides.
    variables, for_programs = {}, {}

    def __init__(self, folder):
        super().__init__(folder, self.size, window_manager=False)
        self.home = None
        self._session = None
        self._before = frozenset()

    def start(self):
        portals = [_PORTALS + portal + ".portal" for portal in self.portals]
        missing = [program for program in (*self.programs, *portals)
                   if not shutil.which(program) and not glob.glob(program)]
        if missing:
            raise unittest.SkipTest(f"{self.name} is not installed: there is no {', no '.join(missing)}")
        super().start()
        self.log_in()
        return self

    def log_in(self):
        """Starts the desktop as a login does, and waits until it is there."""
        self._before = frozenset(processes.descendants())
        with open(os.path.join(self._made("logs"), "session.log"), "ab") as log:
            self._session = processes.start(self.command, stdout=log, stderr=log)
        try:
            waiting.until(f"{self.name} on the display", self.is_up, 60, pause=0.5)
        except waiting.Late:
            print(pathlib.Path(log.name).read_text(encoding="utf-8", errors="replace")[-4000:])
            raise

    def log_out(self):
        """Ends all that the session has started; the display and the bus stay."""
        if self._session:
            processes.end(self._session)
            # A signal to a copy that the bus has made of itself, to start a service, reaches the bus too.
            processes.end_all(kept=self._before | processes.copies_of(self._before))

    def stop(self):
        self.log_out()
        super().stop()

    def is_up(self):
        raise NotImplementedError

    def place_of_window(self, quillbrook):
        """(x, y, width, height) on the display."""
        return desktop.window_geometry(quillbrook.window_id())

    def place_of_item(self):
        """The middle of the program's item in the desktop's panel; None before it is there."""
        raise NotImplementedError

    def press_item(self):
        """The press that opens the program's panel."""
        desktop.click(*self.place_of_item())

    def shows_figure(self, figure):
        """Whether the desktop shows that beside the item, or in the words that go with it."""
        raise NotImplementedError

    def darken(self, dark):
        raise NotImplementedError

    # The application in the accessibility tree that shows notices.
    shows_notices = ""

    def dismiss_notice(self, notice):
        desktop.click(*notice.centre)

    def notice(self, words):
        """What of a notice on the screen has these words in it, or None."""
        return on_screen(self.shows_notices, lambda name: words in name)

    def write(self, name, text):
        """A file of the user's, by its name beside the home."""
        path = self.home.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def _start_bus(self):
        # Before the bus, whose services get it too.
        self.home = homes.Home(os.path.join(self.folder, "user"))
        made_home.fill(self.home)
        self.write("data/applications/com.tarnwick.Quillbrook.desktop", _ENTRY.format(case.Run.program))
        # It does not survive what makes up the account, and is to know this desktop's portals alone.
        self.write("data/dbus-1/services/org.freedesktop.portal.Desktop.service",
                   _PORTAL.format(self.home.folder / "portals"))
        for portal in self.portals:
            self.write(f"portals/{portal}.portal", pathlib.Path(_PORTALS + portal + ".portal").read_text(encoding="utf-8"))
        os.environ.update(self.home.environment() | self.variables | {
            "XDG_CURRENT_DESKTOP": self.desktop_name, "ICEAUTHORITY": os.path.join(self.folder, "ice"),
            "LIBGL_ALWAYS_SOFTWARE": "1"})
        # Nothing is on the system's here, but some end without it.
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = self._bus("system-bus")
        super()._start_bus()

    def in_folder_window(self, name):
        """What has that name in the folder window of the desktop's portal, or None."""
        return on_screen(f"xdg-desktop-portal-{self.portals[0]}", lambda words: words.replace("&", "") == name)

    def hand_over_home(self):
        """Chooses the home in that window, and allows it."""
        desktop.click(*self.in_folder_window("Home").centre)
        waiting.until("the home in the folder window", lambda: self.in_folder_window("development"))
        allow = self.in_folder_window("Allow")
        allow.act(allow.actions[0])


def applications(name):
    """Those of that name in the accessibility tree."""
    bus = accessibility.Bus()
    for owner, path in bus.call("org.a11y.atspi.Registry", accessibility.ROOT, "org.a11y.atspi.Accessible",
                                "GetChildren")[0]:
        thing = accessibility.Thing(bus, owner, path)
        try:
            if thing.name == name:
                yield thing
        except accessibility.Gone:
            continue


def on_screen(application, test, role=None):
    """The first thing of that application on the screen whose words pass the test, or None."""
    for found in applications(application):
        # Not every application says of itself that it is on the screen; what is in it does.
        for thing in found.all(role, showing=False):
            try:
                if thing.has(accessibility.SHOWING) and test(_words(thing)):
                    return thing
            except accessibility.Gone:
                continue
    return None


def _words(thing):
    return thing.name or (thing.text if thing.role == "text" else "")


def call(name, path, interface, method, arguments=None):
    """Of a service of the desktop; None where it is not there."""
    try:
        return Gio.bus_get_sync(Gio.BusType.SESSION, None).call_sync(
            name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START, 10000, None).unpack()
    except GLib.Error:
        return None


def owned(name):
    """Whether somebody on the bus has that name."""
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                GLib.Variant("(s)", (name,)))[0]
