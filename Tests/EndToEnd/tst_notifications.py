"""Notices of the watcher: on a small disk of their own that is nearly full, for a server that writes down what it is
asked and for a real one."""

import os
import re

import homes
import in_tray
import made_home
import small_volume
import waiting
from in_tray import LAST_CHECKED, MB, TELL, WATCH

TOOLS, TITLE = ".cache/pip", "Programming tool downloads"
# Worth mentioning is what comes to two gigabytes.
WORTH = 2100 * MB
BLOCKED = "Alerts are blocked in System Settings, so Quillbrook can only show the number in the menu bar."
WANTED = "Quillbrook.notificationsWanted"


def spare_memory():
    with open("/proc/meminfo", encoding="ascii") as file:
        return int(re.search(r"^MemAvailable:\s+(\d+) kB$", file.read(), re.M).group(1)) * 1024


class Notices(in_tray.InTray):
    """On a disk that is low on space, with a good deal to reclaim."""

    def setUp(self):
        super().setUp()
        if spare_memory() < 2 * WORTH:
            self.skipTest("no memory to spare for a disk of that size")
        try:
            self.volume = small_volume.Volume(self.folder / "volume", 3 * 1024)
        except small_volume.Impossible as impossible:
            self.skipTest(f"no disk of its own: {impossible}")
        self.addCleanup(self.volume.end)
        self.home = small_volume.VolumeHome(self.volume)
        self.through = self.volume.through
        self.host = self.tray()

    def allocated(self, name, size):
        """Room taken on the disk, in no time."""
        path = self.home.file(name)
        with open(path, "r+b") as file:
            os.posix_fallocate(file.fileno(), 0, size)

    def quiet(self):
        quillbrook = self.start(arguments=["--background"])
        self.open_panel(quillbrook, self.host)
        return quillbrook

    def looks(self, quillbrook):
        """Lets it look again, and waits until it has."""
        before = self.reclaimable(quillbrook)
        self.allocated(f"{TOOLS}/{before}", 110 * MB)
        self.press(quillbrook, "Check now")
        waiting.until("another look", lambda: self.reclaimable(quillbrook) != before)

    def sentence(self):
        """What a notice says now: its title and its body."""
        reclaimable = homes.in_words(self.home.allocated(TOOLS))
        return (f"{reclaimable} can be reclaimed",
                f"{homes.in_words(self.volume.free)} free · {reclaimable} can be reclaimed · mostly {TITLE}")

    def assertNoMore(self, server, count):
        with self.assertRaises(waiting.Late):
            server.wait_for(count + 1, 1.5)

    def testALowDiskIsToldOf(self):
        server = self.recorder()
        self.allocated(f"{TOOLS}/torch.whl", WORTH)
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        notice = server.wait_for()[0]
        self.assertEqual((notice["title"], notice["body"]), self.sentence())
        self.assertEqual(notice["application"], "Quillbrook")
        self.assertEqual(notice["hints"].get("desktop-entry"), "com.tarnwick.Quillbrook")
        self.assertEqual((notice["replaces"], notice["milliseconds"]), (0, -1))
        self.assertTrue(notice["hints"].get("suppress-sound"))
        quillbrook.panel_says(LAST_CHECKED)
        # It has spoken, and keeps quiet for hours, however often it looks.
        self.looks(quillbrook)
        self.assertNoMore(server, 1)

    def testARealServerShowsIt(self):
        server = self.dunst()
        self.allocated(f"{TOOLS}/torch.whl", WORTH)
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        self.assertEqual(server.shown(), [(*self.sentence(), "Quillbrook")])

    def testWithTheSwitchOffNothingIsPosted(self):
        server = self.recorder()
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says(LAST_CHECKED)
        self.turn(quillbrook, TELL, False)
        self.allocated(f"{TOOLS}/torch.whl", WORTH)
        self.press(quillbrook, "Check now")
        self.becomes(lambda: self.reclaimable(quillbrook), "2.1 GB can be reclaimed safely")
        self.assertNoMore(server, 0)
        # A notice that was not wanted is none that comes later.
        self.turn(quillbrook, TELL)
        self.looks(quillbrook)
        self.assertNoMore(server, 0)

    def testALittleThatCanBeReclaimedIsNotWorthANotice(self):
        server = self.recorder()
        self.home.file(f"{TOOLS}/wheel.whl", 40 * MB)
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says(LAST_CHECKED)
        self.looks(quillbrook)
        self.assertNoMore(server, 0)

    def testWhatBecomesLowIsToldOfByTheNextLook(self):
        server = self.recorder()
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says(LAST_CHECKED)
        self.assertEqual(server.posted(), [])
        self.allocated(f"{TOOLS}/torch.whl", WORTH)
        self.press(quillbrook, "Check now")
        notice = server.wait_for()[0]
        self.assertEqual((notice["title"], notice["body"]), self.sentence())

    def testWithoutAServerALowDiskDisturbsNothing(self):
        self.allocated(f"{TOOLS}/torch.whl", WORTH)
        quillbrook = self.quiet()
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says(BLOCKED)
        quillbrook.panel_says("2.1 GB can be reclaimed safely")
        self.looks(quillbrook)


class Alerts(in_tray.InTray):
    """What the panel says of them, and what it leaves to choose."""

    def setUp(self):
        super().setUp()
        made_home.fill(self.home)
        self.host = self.tray()

    def watching(self, **environment):
        quillbrook = self.start(arguments=["--background"], **environment)
        self.open_panel(quillbrook, self.host)
        self.turn(quillbrook, WATCH)
        return quillbrook

    def testWithoutAServerThePanelSaysSo(self):
        quillbrook = self.watching()
        quillbrook.panel_says(BLOCKED)
        # The switch can be used all the same.
        self.assertTrue(self.is_on(quillbrook, TELL))
        self.turn(quillbrook, TELL, False)
        quillbrook.panel_says(BLOCKED)

    def testAServerThatComesUpLaterIsFound(self):
        quillbrook = self.watching()
        quillbrook.panel_says(BLOCKED)
        quillbrook.close_panel()
        self.recorder()
        self.open_panel(quillbrook, self.host)
        waiting.until("nothing blocked", lambda: BLOCKED not in quillbrook.panel().names())
        self.assertNotIn("Open Settings", quillbrook.panel().names("push button"))

    def testOpenSettingsOpensTheDesktopsOwn(self):
        opened = self.folder / "opened-settings"
        settings = self.home.folder / "bin" / "xfce4-notifyd-config"
        settings.write_text(f"#!/bin/sh\necho \"$@\" > '{opened}'\n", encoding="utf-8")
        settings.chmod(0o755)
        quillbrook = self.watching(XDG_CURRENT_DESKTOP="XFCE")
        self.press(quillbrook, "Open Settings")
        waiting.until("the desktop's settings", opened.exists)

    def testTheChoiceIsKeptForTheNextStart(self):
        self.recorder()
        quillbrook = self.watching()
        self.assertTrue(self.is_on(quillbrook, TELL))
        self.turn(quillbrook, TELL, False)
        self.home.wait_for_setting(WANTED, "false")
        self.press(quillbrook, "Quit")
        self.assertEqual(quillbrook.exited(), 0)
        self.becomes(self.host.services, [])
        quillbrook = self.watching()
        self.assertFalse(self.is_on(quillbrook, TELL))
        self.turn(quillbrook, TELL)
        self.home.wait_for_setting(WANTED, "true")
