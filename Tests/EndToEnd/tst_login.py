"""Starting with the session: the entry that asks for it, and a start that shows nothing but the item in the tray."""

import os
import shlex
import subprocess
import time

import case
import desktop
import homes
import in_tray
import made_home
import waiting
from in_tray import LOGIN, WATCH

QUIET = ["--background"]
WITHOUT = "Without this, nothing watches after a restart."
WITH = "Quillbrook starts with your Mac and sits in the menu bar."


class Login(in_tray.InTray):
    def setUp(self):
        super().setUp()
        made_home.fill(self.home)
        self.recorder()
        self.host = self.tray()
        self.entry = self.home.folder / "config" / "autostart" / "com.tarnwick.Quillbrook.desktop"

    def watching(self):
        """With its panel open and watching."""
        quillbrook = self.start(arguments=QUIET)
        self.open_panel(quillbrook, self.host)
        self.turn(quillbrook, WATCH)
        return quillbrook

    def values(self):
        lines = self.entry.read_text(encoding="utf-8").splitlines()
        self.assertEqual(lines[0], "[Desktop Entry]")
        return dict(line.split("=", 1) for line in lines[1:] if line)

    def comes_back(self, quillbrook):
        quillbrook.window_id()
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)

    # The entry

    def testTheSwitchWritesAnEntryThatStartsTheProgramQuietly(self):
        quillbrook = self.watching()
        quillbrook.panel_says(WITHOUT)
        self.assertFalse(self.entry.exists())
        self.turn(quillbrook, LOGIN)
        quillbrook.panel_says(WITH)
        values = self.values()
        self.assertEqual(shlex.split(values["Exec"]), [str(case.Run.program), "--background"])
        self.assertEqual((values["Type"], values["Name"]), ("Application", "Quillbrook"))
        checked = subprocess.run(["desktop-file-validate", self.entry], capture_output=True, text=True, timeout=20,
                                 check=False)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))
        self.turn(quillbrook, LOGIN, False)
        quillbrook.panel_says(WITHOUT)
        self.assertFalse(self.entry.exists())

    def testWhatTheEntrySaysStartsTheProgramInTheTray(self):
        quillbrook = self.watching()
        self.turn(quillbrook, LOGIN)
        self.press(quillbrook, "Quit")
        self.assertEqual(quillbrook.exited(), 0)
        self.becomes(self.host.services, [])
        started = self.start(arguments=shlex.split(self.values()["Exec"])[1:])
        self.assertEqual(self.host.item().pid, started.pid)
        self.assertEqual(desktop.windows_of(started.pid), [])
        self.open_panel(started, self.host)
        # It starts with the session, and watches when it is told to.
        self.turn(started, WATCH)
        self.assertTrue(self.is_on(started, LOGIN))

    def testTheSwitchShowsWhatOthersMadeOfTheEntry(self):
        quillbrook = self.watching()
        self.turn(quillbrook, LOGIN)
        quillbrook.close_panel()
        with open(self.entry, "a", encoding="utf-8") as entry:
            entry.write("Hidden=true\n")
        self.open_panel(quillbrook, self.host)
        self.becomes(lambda: self.is_on(quillbrook, LOGIN), False)
        self.turn(quillbrook, LOGIN)
        self.assertNotIn("Hidden", self.values())
        quillbrook.close_panel()
        self.entry.unlink()
        self.open_panel(quillbrook, self.host)
        self.becomes(lambda: self.is_on(quillbrook, LOGIN), False)

    def testAnEntryThatCannotBeWrittenLeavesTheSwitchOff(self):
        self.entry.parent.write_text("A file where the folder should be.")
        quillbrook = self.watching()
        self.switch(quillbrook, LOGIN).act("Toggle")
        waiting.until("the failure in the log", lambda: "login item change failed" in quillbrook.output())
        self.becomes(lambda: self.is_on(quillbrook, LOGIN), False)
        quillbrook.panel_says(WITHOUT)

    def testAHomeWithAnOddNameGetsAnEntryToo(self):
        self.home = homes.Home(self.folder / "Änn, 100% \"two\"")
        self.entry = self.home.folder / "config" / "autostart" / self.entry.name
        quillbrook = self.watching()
        self.turn(quillbrook, LOGIN)
        self.assertTrue(self.entry.exists())

    # The quiet start

    def testAQuietStartShowsNoWindowUntilItIsAskedTo(self):
        quillbrook = self.start(arguments=QUIET)
        self.assertEqual(self.host.item().pid, quillbrook.pid)
        self.assertEqual(desktop.windows_of(quillbrook.pid), [])
        self.open_panel(quillbrook, self.host)
        # The panel starts the first scan by itself.
        self.becomes(lambda: self.reclaimable(quillbrook), "2.9 MB can be reclaimed safely")
        self.assertEqual(quillbrook.window_ids(), [])
        self.press(quillbrook, "Open")
        self.comes_back(quillbrook)

    def testAfterAQuietStartAnotherStartShowsTheWindow(self):
        quillbrook = self.start(arguments=QUIET)
        self.host.item()
        again = self.start()
        self.assertEqual(again.exited(), 0)
        self.comes_back(quillbrook)
        self.assertEqual(len(quillbrook.window_ids()), 1)

    def testAQuietStartWithoutATrayStaysAndCanBeOpened(self):
        self.host.stop()
        quillbrook = self.start(arguments=QUIET)
        self.is_running_once()
        again = self.start()
        self.assertEqual(again.exited(), 0)
        self.comes_back(quillbrook)

    def testAQuietStartMeasuresNothingByItself(self):
        quillbrook = self.start(arguments=QUIET)
        item = self.host.item()
        self.assertRegex(item.get("XAyatanaLabel"), f"^{in_tray.SIZE}$")
        # Much longer than the scan below takes, which shows that a scan would have been seen.
        time.sleep(3)
        self.assertFalse(self.has_measured())
        self.assertTrue(quillbrook.running)
        self.open_panel(quillbrook, self.host)
        waiting.until("the count of a first scan", self.has_measured)

    def has_measured(self):
        return os.path.exists(self.home.settings) and "lastFileCount" in self.home.settings.read_text()
