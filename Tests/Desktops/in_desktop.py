"""What is tried in every desktop; each of them knows how to find things on its screen."""

import os
import pathlib
import shutil
import signal

from gi.repository import Gio, GLib

import accessibility
import case
import desktop
import in_tray
import screenshot
import session
import small_volume
import tray_host
import waiting
from in_tray import LOGIN, MB, WATCH

QUIET = ["--background"]
GATE, CHOOSE = "Quillbrook needs to see your files to measure them", "Choose my home folder…"
# Worth a notice is what comes to two gigabytes.
WORTH = 2100 * MB


class Tray(tray_host.TrayHost):
    """The desktop's own list of items."""

    def __init__(self):
        self._session = Gio.bus_get_sync(Gio.BusType.SESSION, None)

    def services(self):
        # Some lists leave the usual path out, some keep what has gone for a while.
        listed = session.call("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                              "org.freedesktop.DBus.Properties", "Get", GLib.Variant(
                                  "(ss)", ("org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems")))
        return [service if "/" in service else service + "/StatusNotifierItem" for service in listed[0]
                if session.owned(service.partition("/")[0])] if listed else []


class InDesktop(in_tray.InTray):
    def setUp(self):
        super().setUp()
        self.session = case.Run.desktop
        self.home = self.session.home
        for folder in ("config/Quillbrook", "config/autostart"):
            shutil.rmtree(self.home.folder / folder, ignore_errors=True)

    def start(self, preload=(), arguments=(), **environment):
        own = {name: os.environ[name] for name in ("XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE") if name in os.environ}
        return super().start(preload, arguments, **own | self.session.for_programs | environment)

    def picture(self, name):
        """Keeps a picture of the whole display, for a person to see, once nothing moves on it."""
        seen = []

        def is_still():
            seen.append(self.session.picture())
            return len(seen) > 1 and seen[-1] == seen[-2]

        waiting.until("a display on which nothing moves", is_still, pause=0.7)
        screenshot.write_png(seen[-1], os.path.join(os.environ["TMPDIR"], f"{self.session.name}-{name}.png"))
        return seen[-1]

    def item(self):
        """The program's, in the desktop's list."""
        return Tray().item()

    @staticmethod
    def windows(pid):
        application = accessibility.Bus().application(pid)
        return [window for window in application.children if window.has(accessibility.SHOWING)] if application else []

    def quiet(self):
        """Started in the background, its panel opened over the bus."""
        quillbrook = self.start(arguments=QUIET)
        self.item().activate(*waiting.until("the item on the screen", self.session.place_of_item))
        quillbrook.panel()
        return quillbrook

    def place(self, quillbrook):
        """Where its window is, once it has a size."""
        return waiting.until("a window on the display", lambda: self.session.place_of_window(quillbrook))

    def window(self, name, quillbrook):
        """What of such a picture is the program's window."""
        return screenshot.crop(self.picture(name), *self.place(quillbrook))


class Shared(InDesktop):
    """The tests themselves."""

    def testTheWindowIsDrawnAndRead(self):
        quillbrook = self.start()
        quillbrook.scanned()
        quillbrook.says("Programming tool downloads · pip")
        self.assertGreater(screenshot.colours(self.window("window", quillbrook)), 100)

    def testTheItemShowsTheFigureAndAPressOnItOpensThePanel(self):
        quillbrook = self.start(arguments=QUIET)
        self.assertEqual(self.item().pid, quillbrook.pid)
        figure = waiting.until("the figure", lambda: self.item().get("XAyatanaLabel"))
        waiting.until("the item on the screen", self.session.place_of_item)
        waiting.until("the figure on the screen", lambda: self.session.shows_figure(figure))
        self.picture("item")
        self.session.press_item()
        quillbrook.panel_says("free")
        self.reclaimable(quillbrook)
        self.picture("panel")
        quillbrook.close_panel()

    def testANoticeIsShownAndGoesWhenItIsPressed(self):
        try:
            volume = small_volume.Volume(self.folder / "volume", 3 * 1024)
        except small_volume.Impossible as impossible:
            self.skipTest(f"no disk of its own: {impossible}")
        self.addCleanup(volume.end)
        self.home, self.through = small_volume.VolumeHome(volume), volume.through
        with open(self.home.file(".cache/pip/torch.whl"), "r+b") as file:
            os.posix_fallocate(file.fileno(), 0, WORTH)
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        notice = waiting.until("the notice on the screen", lambda: self.session.notice("2.1 GB can be reclaimed"), 30)
        self.picture("notice")
        self.assertIsNotNone(self.session.notice(" free · 2.1 GB can be reclaimed · mostly Programming tool downloads"))
        self.session.dismiss_notice(notice)
        waiting.until("no notice on the screen", lambda: not self.session.notice("2.1 GB can be reclaimed"))

    def testItStartsWithTheSession(self):
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        self.turn(quillbrook, LOGIN)
        entry = self.home.folder / "config" / "autostart" / "com.tarnwick.Quillbrook.desktop"
        waiting.until("the entry", entry.exists)
        self.press(quillbrook, "Quit")
        self.assertEqual(quillbrook.exited(), 0)
        self.session.log_out()
        self.session.log_in()
        pid = self.item().pid
        self.addCleanup(self.end, pid)
        self.assertEqual(pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().split(b"\0")[:-1],
                         [os.fsencode(case.Run.program), b"--background"])
        self.assertEqual(self.windows(pid), [])
        self.picture("started")
        self.assertEqual(self.start().exited(), 0)
        waiting.until("its window", lambda: self.windows(pid))
        self.assertEqual(Tray().item().pid, pid)

    def end(self, pid):
        os.kill(pid, signal.SIGTERM)
        self.becomes(Tray().services, [])

    def testTheFolderWindowHandsOverTheHome(self):
        inside = self.folder / "snap"
        inside.mkdir()
        quillbrook = self.start(SNAP="/snap/quillbrook/1", SNAP_NAME="quillbrook", SNAP_USER_DATA=str(inside),
                                HOME=str(inside))
        quillbrook.says(GATE)
        # By the keyboard: a press lasts until the person has answered.
        button = quillbrook.window().one("push button", CHOOSE)
        quillbrook.tab_to(lambda: button.has(accessibility.FOCUSED))
        desktop.keys("space")
        waiting.until("the desktop's folder window", lambda: self.session.in_folder_window("Allow"), 30)
        self.picture("folder")
        self.session.hand_over_home()
        quillbrook.scanned()
        quillbrook.says(str(self.home.path))

    def testADarkDesktopLeavesItLight(self):
        pictures = []
        for dark in (False, True):
            self.session.darken(dark)
            quillbrook = self.start()
            quillbrook.scanned()
            pictures.append(self.window("dark" if dark else "light", quillbrook))
            self.assertGreater(screenshot.colours(pictures[-1]), 100)
            quillbrook.quit()
        self.assertEqual(pictures[0][:2], pictures[1][:2])
        same = sum(a == b for a, b in zip(b"".join(pictures[0][2]), b"".join(pictures[1][2])))
        self.assertGreater(same, 0.98 * 3 * pictures[0][0] * pictures[0][1])

    def testItGrowsWithTheScale(self):
        for scale in ("1.5", "2"):
            quillbrook = self.start(QT_SCALE_FACTOR=scale)
            quillbrook.scanned()
            self.picture(f"scale-{scale}")
            # With the frame, where the desktop counts that in.
            self.assertAlmostEqual(self.place(quillbrook)[2], 1260 * float(scale), delta=20)
            quillbrook.quit()
