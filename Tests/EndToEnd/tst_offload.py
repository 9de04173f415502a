"""Moving things to another drive and bringing them back, as an ordinary user, on real file systems that only this run
sees: all of it is reached through its shortcut afterwards, and whatever fails leaves everything where it was."""

import os
import re
import signal
import stat
import time

import desktop
import drives
import homes
import processes
import program
import removing
import tray_host
import waiting

MB = 1024 * 1024
MODELS, TITLE = ".ollama/models", "Downloaded AI models"
PICK = "Pick a folder on the drive you want to move things to."
QUITTING = ("Something is being copied to another drive, or back from there. Quitting ends that, and takes away what was "
            "copied so far. Nothing is lost: all of it stays where it is now.")
STOPPED = f"✗ {TITLE}: Stopped. Nothing was moved."
LARGE = 101 * MB


def facts(folder):
    """What a copy has to keep besides names and content: rights, dates, hard links, holes and attributes."""
    found = {}
    for path, folders, files in os.walk(os.fsencode(folder)):
        for name in [b"."] + folders + files:
            below = os.path.join(path, name)
            status = os.lstat(below)
            attributes = () if os.path.islink(below) else tuple(
                (name, os.getxattr(below, name)) for name in os.listxattr(below) if name.startswith("user."))
            isFolder = stat.S_ISDIR(status.st_mode)
            found[os.path.relpath(below, os.fsencode(folder))] = (
                status.st_mode, status.st_mtime_ns, isFolder or status.st_nlink,
                stat.S_ISREG(status.st_mode) and status.st_blocks * 1024 < status.st_size, attributes)
    return found


class Offload(removing.Removing):
    def setUp(self):
        super().setUp()
        self.drives = drives.folder()
        self.models = self.home.path / MODELS
        self.home.file(f"{MODELS}/blobs/large", LARGE)

    def rich(self):
        """All that a tree can be made of."""
        for name in removing.ODD_NAMES:
            self.home.file(os.fsencode(f"{MODELS}/odd/") + name, 5000)
        self.home.sparse(f"{MODELS}/holes", 500 * MB)
        self.home.link(f"{MODELS}/blobs/large", f"{MODELS}/twin")
        os.symlink("/nowhere at all", self.models / "dangling")
        os.symlink("blobs", self.models / "inside")
        os.mkfifo(self.models / "pipe")
        note = self.home.file(f"{MODELS}/noted", 10)
        os.setxattr(note, "user.note", b"kept")
        note.chmod(0o640)
        self.home.file(f"{MODELS}/closed/inner", 10)
        (self.models / "closed").chmod(0o550)
        for path in (note, self.models / "odd", self.models):
            os.utime(path, ns=(1_000_000_000_000_000_005, 1_100_000_000_123_456_789))

    def drive(self, name):
        """A folder of this test's own on one of the run's drives."""
        place = self.drives / name / self.id().rpartition(".")[2]
        place.mkdir()
        return place

    def plug(self, drive):
        self.addCleanup(drive.end)
        return drive

    def open(self):
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.pane()
        return self.quillbrook

    def pane(self):
        self.quillbrook.open_pane("7", "Move to another drive")

    def pick(self, folder):
        """Picks a folder in the desktop's window and waits until it was measured."""
        before = set(desktop.all_windows_of(self.quillbrook.pid))
        self.quillbrook.press("Choose a volume…")
        window = waiting.until("the folder window", lambda: next(
            iter(set(desktop.all_windows_of(self.quillbrook.pid)) - before), None))
        desktop.focus(window)
        desktop.keys("ctrl+a")
        desktop.type_text(str(folder))
        desktop.keys("Return")
        waiting.until("the folder window closed", lambda: window not in desktop.all_windows_of(self.quillbrook.pid))
        self.quillbrook.says(re.compile(r"^\d+ MB/s write · \d+ MB/s read · .* free$"))

    def row(self, title=TITLE, group="RARELY USED — SAFE TO MOVE"):
        return self.quillbrook.window().one("list", group).one("list item", title)

    def accept(self):
        """Accepts a slow drive; where the machine is slow itself, every drive is one."""
        switches = self.quillbrook.window().all("check box", "Relocate anyway")
        if switches and not switches[0].has(removing.accessibility.CHECKED):
            switches[0].act("Toggle")

    def move(self):
        self.accept()
        self.row().one("push button", "Move").act()

    def assertUntouched(self, before):
        self.assertEqual(removing.contents(self.home.path), before)
        self.assertEqual(self.trashed(), {})

    def assertMoved(self, place, before, kept=None):
        self.assertEqual(os.readlink(self.models), str(place / "models"))
        self.assertEqual(removing.contents(f"{self.models}/"), before)
        if kept:
            self.assertEqual(set(facts(f"{self.models}/").items()) ^ set(kept.items()), set())
        self.assertEqual(list(self.trashed()), [os.fsencode(self.models)])

    def movesWithAllItHas(self, name):
        self.rich()
        place = self.drive(name)
        before, kept = removing.contents(self.models), facts(self.models)
        quillbrook = self.open()
        words = quillbrook.scanned()
        self.pick(place)
        self.assertNotIn("loses them", " ".join(quillbrook.words()))
        self.move()
        self.becomes(self.log, [f"✓ {TITLE} → {place / 'models'}"], 60)
        quillbrook.scanned(unlike=None)
        self.assertMoved(place, before, kept)
        # The program sees by itself that nothing is left to move, and where it went.
        self.pane()
        quillbrook.says("Nothing on this Mac is both large and cold right now.")
        self.row(group="ON ANOTHER DRIVE")
        self.assertIsNotNone(words)

    def log(self):
        return [text for text in self.quillbrook.words() if text.startswith(("✓ ", "✗ "))]

    def testAllOfATreeIsReachedOnExt4(self):
        self.movesWithAllItHas("ext4")

    def testAllOfATreeIsReachedOnXfs(self):
        self.movesWithAllItHas("xfs")

    def testAllOfATreeIsReachedOnBtrfs(self):
        self.movesWithAllItHas("btrfs")

    def testAStickSaysWhatItCanNotHold(self):
        stick = self.drive("exfat")
        before = removing.contents(self.models)
        quillbrook = self.open()
        self.pick(stick)
        quillbrook.says("This drive can't keep who owns a file, who may read it, or its attributes. What is moved there "
                        "loses them.")
        self.move()
        self.becomes(self.log, [f"✓ {TITLE} → {stick / 'models'}"], 60)
        self.assertEqual({name: inside for name, (_, inside) in removing.contents(f"{self.models}/").items()},
                         {name: inside for name, (_, inside) in before.items()})

    def testALinkDoesNotFitOnAStick(self):
        os.symlink("blobs", self.models / "inside")
        stick = self.drive("exfat")
        before = removing.contents(self.home.path)
        self.open()
        self.pick(stick)
        self.move()
        line = waiting.until("a line of the log", lambda: next(iter(self.log()), None), 60)
        self.assertTrue(line.startswith(f"✗ {TITLE}: Copy failed: cannot create symbolic link '{stick}/models/inside'"), line)
        self.assertUntouched(before)

    def testWhatCanNotBeReadIsNamed(self):
        place = self.drive("ext4")
        closed = self.home.file(f"{MODELS}/deep/it's closed", 10)
        before = removing.contents(self.home.path)
        mode = closed.stat().st_mode
        closed.chmod(0)
        self.open()
        self.pick(place)
        self.move()
        self.becomes(self.log, [f'✗ {TITLE}: Copy failed: cannot open "{closed}" for reading: Permission denied'], 60)
        closed.chmod(mode)
        self.assertUntouched(before)
        # A copy that failed is left, and not taken for anything else.
        self.assertEqual(os.listdir(place), ["models"])

    def testAFolderOfThePortalIsNoDrive(self):
        behind = self.folder / "behind"
        behind.mkdir()
        handed = self.plug(drives.Drive(self.folder / "handed", [
            "bindfs", "-f", "--no-allow-other", "-o", "subtype=portal", behind, self.folder / "handed"]))
        before = removing.contents(self.home.path)
        self.open()
        self.pick(handed.path)
        self.move()
        self.becomes(self.log, [f"✗ {TITLE}: {handed.path} was handed over by the desktop's portal. A link to it would lead "
                                "nowhere for other programs."])
        self.assertUntouched(before)
        self.assertEqual(os.listdir(behind), [])

    def testADriveThatIsTooSmallTakesNothing(self):
        place = self.drive("small")
        before = removing.contents(self.home.path)
        self.open()
        self.pick(place)
        self.move()
        line = waiting.until("a line of the log", lambda: next(iter(self.log()), None))
        self.assertRegex(line, rf"^✗ {TITLE}: Needs 101 MB, only [\d.]+ MB free\.$")
        self.assertUntouched(before)
        self.assertEqual(os.listdir(place), [])

    def testASlowDriveSaysSoAndACopyIsStopped(self):
        behind = self.folder / "behind"
        slow = self.plug(drives.slow(self.folder / "slow", behind, 12))
        before = removing.contents(self.home.path)
        quillbrook = self.open()
        self.pick(slow.path)
        warning = quillbrook.says(re.compile("^This volume writes at"))
        rate, factor = map(int, re.match(
            r"^This volume writes at (\d+) MB/s — roughly (\d+)× slower than this Mac's internal disk\.$", warning).groups())
        self.assertLess(rate, 150)
        self.assertAlmostEqual(factor, 2300 / rate, delta=0.6 + 2300 / rate / rate)
        # Not before it is accepted.
        self.row().one("push button", "Move").act()
        time.sleep(0.3)
        self.assertEqual((self.log(), os.listdir(behind)), ([], []))
        self.move()
        quillbrook.says(re.compile(r"^[\d.]+ [KM]B of 101 MB · [\d.]+ [KM]B/s$"), 30)
        bar = self.row().one("progress bar", TITLE)
        self.assertIsNotNone(bar)
        self.row().one("push button", "Stop").act()
        self.becomes(self.log, [STOPPED], 30)
        self.assertUntouched(before)
        self.assertEqual(os.listdir(behind), [])
        # And once more from the keyboard alone.
        self.assertTrue(self.row().one("push button", "Move").focus())
        desktop.keys("space")
        self.row().one("push button", "Stop")
        desktop.keys("space")
        self.becomes(self.log, [STOPPED, STOPPED], 30)
        self.assertUntouched(before)

    def copying(self):
        """A copy that takes its time; the folder that it goes into."""
        behind = self.folder / "behind"
        self.slow = self.plug(drives.slow(self.folder / "slow", behind, 8))
        quillbrook = self.open()
        self.pick(self.slow.path)
        self.move()
        quillbrook.says(re.compile(r"^[\d.]+ [KM]B of 101 MB"), 30)
        return behind

    def testADriveThatDisappearsMidwayLosesNothing(self):
        before = removing.contents(self.home.path)
        self.copying()
        self.slow.vanish()
        line = waiting.until("a line of the log", lambda: next(iter(self.log()), None), 60)
        self.assertTrue(line.startswith(f"✗ {TITLE}: Copy failed: "), line)
        self.assertUntouched(before)
        # The destination is away, and says so.
        self.quillbrook.says(f"{self.slow.path} is not connected.")

    def testWhatIsCopiedIsShownWhereThingsAreClearedAndStoppedThere(self):
        before = removing.contents(self.home.path)
        behind = self.copying()
        quillbrook = self.quillbrook
        quillbrook.open_pane("1", "Free up space")
        quillbrook.says("Moving 1 of 1")
        quillbrook.says(re.compile(rf"^{TITLE} · [\d.]+ [KM]B so far$"))
        # A scan does not wait for it.
        words = quillbrook.says(program.SCANNED)
        another = self.home.file("another", 10)
        quillbrook.press("Rescan")
        quillbrook.scanned(unlike=words)
        another.unlink()
        quillbrook.press("Stop")
        self.pane()
        self.becomes(self.log, [STOPPED], 30)
        self.assertUntouched(before)
        self.assertEqual(os.listdir(behind), [])

    def testQuittingAsksFirstAndEndsACopyAsStopDoes(self):
        tray = tray_host.TrayHost(self.folder)
        self.addCleanup(tray.stop)
        before = removing.contents(self.home.path)
        behind = self.copying()
        quillbrook = self.quillbrook
        # Without its window the copy goes on.
        quillbrook.close_window()
        for answer in (self.answer, "Keep going"), (self.press, "Quit"):
            self.assertEqual(os.listdir(behind), ["models"])
            quillbrook.open_panel(lambda: tray.item().activate(1180, 10)).one("push button", "Quit").act()
            self.asks("Quit and stop moving?", QUITTING, "Keep going", "Quit")
            answer[0](answer[1])
        self.assertEqual(quillbrook.exited(30), 0)
        self.assertUntouched(before)
        self.assertEqual(os.listdir(behind), [])

    def testASessionThatEndsWaitsForNobody(self):
        before = removing.contents(self.home.path)
        behind = self.copying()
        self.assertTrue(self.quillbrook.quit(30))
        self.assertUntouched(before)
        self.assertEqual(os.listdir(behind), [])

    def testAKilledProgramTakesItsCopyingToolAlong(self):
        before = removing.contents(self.home.path)
        behind = self.copying()
        tools = [pid for pid in processes.descendants() if command(pid).startswith(b"/usr/bin/cp\0-a")]
        self.assertEqual(len(tools), 1)
        os.kill(self.quillbrook.pid, signal.SIGKILL)
        waiting.until("no tool", lambda: not [pid for pid in tools if command(pid)])
        self.quillbrook.process.wait(10)
        self.assertUntouched(before)
        # What was copied so far is left, and not taken for anything else.
        self.assertEqual(os.listdir(behind), ["models"])
        self._programs.clear()

    def testWhatLiesElsewhereComesBack(self):
        place = self.drive("ext4")
        before, kept = removing.contents(self.models), facts(self.models)
        os.rename(self.models, self.folder / "aside")
        os.system(f"cp -a '{self.folder / 'aside'}' '{place / 'mine'}'")
        os.symlink(place / "mine", self.models)
        os.makedirs(self.home.path / ".android")
        os.symlink("/media/ann/Archive/avd", self.home.path / ".android/avd")
        quillbrook = self.open()
        away = self.row("Test Android phones", "ON ANOTHER DRIVE")
        self.assertEqual(away.description, "Archive · not connected, —")
        away.one("push button", "Bring back").act()
        self.assertEqual(self.dialogs(), [])
        there = self.row(group="ON ANOTHER DRIVE")
        waiting.until("its size", lambda: re.match(r"^ext4 · [\d.]+ MB free, 101 MB$", there.description))
        there.one("push button", "Bring back").act()
        self.asks(f"Bring back {TITLE}?", f"{place / 'mine'} is copied back to this disk, in the place of its shortcut. Then that "
                  "folder goes to the Trash of its own drive.", "Cancel", "Bring back")
        self.answer("Cancel")
        self.assertTrue(self.models.is_symlink())
        there.one("push button", "Bring back").act()
        self.answer("Bring back")
        self.becomes(self.log, [f"✓ {TITLE} → {self.models}"], 60)
        self.assertFalse(self.models.is_symlink())
        self.assertEqual(removing.contents(self.models), before)
        self.assertEqual(facts(self.models), kept)
        self.assertEqual(os.listdir(self.models.parent), ["models"])
        self.assertEqual(os.listdir(place), [])

    def testAVolumeWithinAFolderComesBackWithIt(self):
        place = self.drive("btrfs")
        os.rename(self.models, self.folder / "aside")
        os.system(f"cp -a '{self.folder / 'aside'}' '{place / 'mine'}'")
        # As an ordinary user may make one. It is a folder with a device of its own, and no mount.
        self.assertEqual(os.system(f"btrfs -q subvolume create '{place / 'mine' / 'inner'}'"), 0)
        (place / "mine" / "inner" / "small").write_text("kept")
        os.symlink(place / "mine", self.models)
        before = removing.contents(place / "mine")
        self.open()
        self.row(group="ON ANOTHER DRIVE").one("push button", "Bring back").act()
        self.answer("Bring back")
        line = waiting.until("a line of the log", lambda: next(iter(self.log()), None), 60)
        self.assertTrue(line.startswith(f"✓ {TITLE} → {self.models}"), line)
        self.assertEqual(removing.contents(self.models), before)

    def testADriveThatDoesNotAnswerHidesNoOtherAndKeepsNobodyFromQuitting(self):
        os.makedirs(self.home.path / ".android")
        os.symlink("/media/ann/Archive/avd", self.home.path / ".android/avd")
        behind = self.folder / "behind"
        drive = self.plug(drives.slow(self.folder / "stick", behind, 500))
        os.rename(self.models, behind / "models")
        os.symlink(drive.path / "models", self.models)
        quillbrook = self.open()
        there = self.row(group="ON ANOTHER DRIVE")
        waiting.until("its size", lambda: there.description.endswith(", 101 MB"))
        drive.hang()
        self.addCleanup(drive.go_on)

        def looked_again():
            quillbrook.open_pane("1", "Free up space")
            self.pane()
            return self.row(group="ON ANOTHER DRIVE").description

        waiting.until("it is told as silent", lambda: looked_again() == "stick · not answering, —", 30)
        self.assertEqual(self.row("Test Android phones", "ON ANOTHER DRIVE").description, "Archive · not connected, —")
        self.assertTrue(quillbrook.quit(15))
        self.assertEqual(quillbrook.process.returncode, 0)

    def testADriveIsFollowedAsItComesAndGoes(self):
        behind = self.folder / "behind"
        drive = self.plug(drives.slow(self.folder / "stick", behind, 500))
        os.rename(self.models, behind / "models")
        os.symlink(drive.path / "models", self.models)
        self.open()
        there = self.row(group="ON ANOTHER DRIVE")
        waiting.until("its size", lambda: there.description.endswith(", 101 MB"))
        drive.vanish()
        waiting.until("it is away", lambda: self.row(group="ON ANOTHER DRIVE").description.endswith("not connected, —"))
        drive = self.plug(drives.slow(self.folder / "stick", behind, 500))
        waiting.until("it is back", lambda: self.row(group="ON ANOTHER DRIVE").description.endswith(", 101 MB"))


def command(pid):
    try:
        with open(f"/proc/{pid}/cmdline", "rb") as file:
            return file.read()
    except OSError:
        return b""
