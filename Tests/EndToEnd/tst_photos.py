"""Photos by date: access, a range that is counted, moved to the Trash and put back, and what can't go in its middle."""

import datetime
import os
import subprocess
import urllib.parse

import accessibility
import desktop
import removing

PANE = "Photos by date"
KB = 1024
ASK = "Quillbrook needs access to your photo library to count what is in a range."
DECLINED = ("Access to Photos was declined. You can change that in System Settings › Privacy & Security › Photos. "
            "Everything else in Quillbrook works without it.")
CONFIRM = ("They go to Recently Deleted for 30 days. If iCloud Photos is on, they are removed from your other devices too. "
           "Photos will ask you to confirm as well.")
AGAIN = "That is what the range holds now. Until the Trash is emptied, all of it can be put back."
MOVED = ("Moved {} items to Recently Deleted. They stay there for 30 days — the space comes back when that is emptied.")
EVERYWHERE = "This deletes from every device, not just this Mac"
LATER = "The space comes back in 30 days, or sooner if you empty it"
ELSEWHERE = "The originals are not on this Mac"
FOUR_YEARS = datetime.timedelta(days=4 * 365)


class Photos(removing.Removing):
    def setUp(self):
        super().setUp()
        # Four assets of the range that stands there at first, in five files, and what is no part of it.
        self.range = ["Pictures/a.jpg", "Pictures/trip/b.cr2", "Pictures/trip/b.jpg", b"Pictures/odd\xff\n.png",
                      "Videos/c.mp4"]
        for name in self.range:
            self.picture(name)
        self.picture("Pictures/new.jpg", datetime.timedelta())
        self.picture("Pictures/.thumbnails/a.jpg")
        self.picture("Videos/d.jpg")
        self.home.file("Pictures/notes.txt", KB)

    def picture(self, name, age=FOUR_YEARS, size=8 * KB):
        path = self.home.file(name, size)
        when = (datetime.datetime.now() - age).timestamp()
        os.utime(path, (when, when))
        return path

    def openPhotos(self, allowed=True, **environment):
        self.quillbrook = self.start(LANG="en_US.UTF-8", **environment)
        self.quillbrook.scanned()
        self.quillbrook.activate()
        self.quillbrook.open_pane("5", PANE)
        if allowed:
            self.quillbrook.press("Allow access to Photos")
            self.quillbrook.window().one("dialog", "Let Quillbrook count your pictures?")
            self.answer("Allow")
        return self.quillbrook

    def measure(self, count):
        self.quillbrook.press("See what is in this range")
        self.quillbrook.says(f"{count} photos and videos")

    def warnings(self):
        return self.banners(EVERYWHERE, LATER, ELSEWHERE)

    def listedByTheDesktop(self):
        """The names in the Trash as the desktop's own program lists them."""
        environment = self.home.environment() | {"XDG_CACHE_HOME": str(self.home.folder / "cache")}
        del environment["DBUS_SESSION_BUS_ADDRESS"]
        listed = subprocess.run(["dbus-run-session", "--", "gio", "trash", "--list"], env=environment, check=True,
                                stdout=subprocess.PIPE, timeout=60).stdout
        addresses = [line.split(b"\t")[0] for line in listed.splitlines()]
        return {urllib.parse.unquote_to_bytes(address.removeprefix(b"trash:///")) for address in addresses}

    def delete(self, shown, now):
        """Asks for it, and answers both questions."""
        self.quillbrook.press(f"Delete these {shown} items")
        self.asks(f"Delete {shown} photos and videos?", CONFIRM, "Cancel", "Move to Recently Deleted")
        self.press("Move to Recently Deleted")
        self.asks(f"Move {now} photos and videos to the Trash?", AGAIN, "Cancel", "Move to Trash")

    def field(self, name):
        return self.quillbrook.window().one("text", name)

    def typeDate(self, name, text):
        self.field(name).focus()
        self.becomes(lambda: self.field(name).has(accessibility.FOCUSED), True)
        desktop.keys("ctrl+a", "BackSpace")
        desktop.type_text(text)
        desktop.keys("Tab")
        self.becomes(lambda: self.field(name).text, text)

    def testARangeGoesToTheTrashAndComesBack(self):
        quillbrook = self.openPhotos()
        before = self.inHome()
        self.measure(4)
        quillbrook.says("roughly 32.0 KB — estimated from a sample of 4, not measured one by one")
        self.assertEqual(self.warnings(), [EVERYWHERE, LATER])
        self.delete(4, 4)
        self.assertEqual(self.inHome(), before)
        self.answer("Move to Trash")
        quillbrook.says(MOVED.format(4))
        self.becomes(lambda: set(self.trashed()), {self.origin(name) for name in self.range})
        self.assertEqual(self.listedByTheDesktop(), {os.path.basename(os.fsencode(name)) for name in self.range})
        self.assertEqual(self.ledger(), {})
        gone = {os.fsencode(name) for name in self.range}
        self.assertEqual(self.inHome(), {path: thing for path, thing in before.items() if path not in gone})
        # What is shown is measured again, and nothing is left.
        self.becomes(self.warnings, [])

        # Whoever comes back another day finds the way back still there.
        quillbrook.quit()
        quillbrook = self.openPhotos(allowed=False)
        quillbrook.press("Put 5 files back")
        quillbrook.says("Put 5 files back.")
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))

    def testWhatIsDeletedIsWhatIsThereByThen(self):
        quillbrook = self.openPhotos()
        self.measure(4)
        self.picture("Pictures/late.jpg")
        self.delete(4, 5)
        before = self.inHome()
        self.escape()
        quillbrook.says("Nothing was deleted.")
        quillbrook.says("4 photos and videos")
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))

    def testOneThatCanNotGoBringsAllBack(self):
        quillbrook = self.openPhotos()
        self.measure(4)
        self.delete(4, 4)
        os.chmod(self.home.path / "Pictures/trip", 0o500)
        before = self.inHome()
        self.answer("Move to Trash")
        quillbrook.says("Nothing was deleted.")
        self.assertEqual((self.inHome(), self.trashed()), (before, {}))

    def testARangeIsTypedOrChosen(self):
        quillbrook = self.openPhotos()
        self.picture(b"Pictures/IMG_20120704_153000.jpg")
        self.typeDate("From", "7/4/2012, 3:30 PM")
        self.typeDate("To", "7/4/2012, 3:30 PM")
        self.measure(1)
        quillbrook.press("Choose To from a calendar")
        quillbrook.press("Wednesday, July 4, 2012")
        self.typeDate("From", "7/4/2012, 3:31 PM")
        # The figures stand for the last press.
        quillbrook.says("1 photos and videos")
        quillbrook.press("See what is in this range")
        self.becomes(self.warnings, [])
        quillbrook.window().one("check box", "Include videos").act("Toggle")
        self.typeDate("From", "1/1/2012, 12:00 AM")
        self.typeDate("To", f"1/1/{datetime.date.today().year - 1}, 12:00 AM")
        self.measure(4)

    def testWhoMayOnlyReadMayCount(self):
        os.chmod(self.home.path / "Pictures", 0o500)
        quillbrook = self.openPhotos()
        self.measure(4)
        self.assertEqual(self.warnings(), [EVERYWHERE, LATER])
        quillbrook.press("Delete these 4 items")
        self.measure(4)
        self.assertEqual(self.dialogs(), [])

    def testOriginalsElsewhereAreWarnedOf(self):
        for number in range(7):
            path = self.home.sparse(f"Pictures/cloud/{number}.jpg", 9 * KB)
            when = (datetime.datetime.now() - FOUR_YEARS).timestamp()
            os.utime(path, (when, when))
        quillbrook = self.openPhotos()
        self.measure(11)
        self.assertEqual(self.warnings(), [EVERYWHERE, ELSEWHERE, LATER])
        warning = quillbrook.window().one("panel", ELSEWHERE)
        self.assertTrue(warning.description.startswith("Only 4 of 11 sampled items are stored here"), warning.description)

    def testARefusalHoldsForTheRun(self):
        quillbrook = self.openPhotos(allowed=False)
        quillbrook.says(ASK)
        quillbrook.press("Allow access to Photos")
        quillbrook.window().one("dialog", "Let Quillbrook count your pictures?")
        self.answer("Don't allow")
        quillbrook.says(DECLINED)
        self.assertEqual(quillbrook.window().all("push button", "See what is in this range"), [])
        quillbrook.open_pane("1", "Free up space")
        quillbrook.open_pane("5", PANE)
        quillbrook.says(DECLINED)
        quillbrook.quit()
        self.openPhotos(allowed=False).says(ASK)
