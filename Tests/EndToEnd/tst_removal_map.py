"""What a person selects on the map or in a list and removes: what is asked, what the guards refuse, what the disk
refuses, and that nothing but what was selected ever goes."""

import os
import shutil
import unittest

import desktop
import homes
import removing
from removing import under, without

MAP = "What's using space"
CHOSEN = "Quillbrook did not suggest this item — you chose it off the map, so it has no idea what is inside."
TO_TRASH = "It goes to the Trash and can be put back. The space comes back once the Trash is emptied."
NO_COPY = "This Mac has no backup, so there is no other copy."
KB = 1024


class RemovalMap(removing.Removing):
    def setUp(self):
        super().setUp()
        self.home.file("development/atlas/scene.glb", 400 * KB)
        self.home.file("development/atlas/notes.pdf", 120 * KB)
        self.home.file("development/readme.txt", 40 * KB)
        self.home.file("go/module.zip", 200 * KB)
        self.home.file("report.pdf", 64 * KB)

    def openMap(self):
        quillbrook = self.open()
        self.backup = self.hasBackup()
        quillbrook.open_pane("2", MAP)
        return quillbrook

    def tile(self, name):
        return self.quillbrook.window().one("list", MAP).one("list item", lambda label: label.startswith(f"{name}, "))

    def select(self, name):
        """By keyboard, as a click on a folder hits what is drawn in it."""
        self.tile(name).act("SetFocus")
        desktop.keys("space")
        self.becomes(self.bar, [name])

    def bar(self):
        """The names of what is selected: one, or none."""
        return [panel.name for panel in self.quillbrook.window().all("panel") if panel.name]

    def buttons(self):
        return [button.name for panel in self.quillbrook.window().all("panel") if panel.name
                for button in panel.all("push button")]

    def pressInBar(self, button):
        self.quillbrook.window().one("panel", lambda name: name != "").one("push button", button).act()

    def asksToTrash(self, name, what):
        self.pressInBar("Move to Trash")
        self.asks(f"Move {name} to the Trash?", f"{what} {TO_TRASH} {CHOSEN}", "Cancel", "Move to Trash")

    def asksToDelete(self, name, what):
        final = "This cannot be undone." if self.backup else f"This cannot be undone. {NO_COPY}"
        self.pressInBar("Delete permanently")
        self.asks(f"Delete {name} permanently?", f"{what} {final} {CHOSEN}", "Cancel", "Delete permanently")

    def isTold(self, *lines):
        self.quillbrook.open_pane("1", "Free up space")
        self.becomes(self.activity, list(lines))

    def testAFileGoesToTheTrash(self):
        quillbrook = self.openMap()
        before = self.inHome()
        self.select("report.pdf")
        self.assertEqual(self.buttons(), ["Show in Finder", "Move to Trash", "Delete permanently", "Clear selection"])
        self.asksToTrash("report.pdf", "64.0 KB at ~/report.pdf.")
        self.escape()
        self.assertEqual(self.inHome(), before)
        self.assertEqual((self.trashed(), self.ledger()), ({}, {}))
        self.asksToTrash("report.pdf", "64.0 KB at ~/report.pdf.")
        self.answer("Move to Trash")
        self.becomes(self.bar, [])
        self.assertLedgerKnows(["report.pdf"], self.inTrashBytes())
        self.assertEqual(self.inTrash(), {b"report.pdf": before.pop(b"report.pdf")})
        self.assertEqual(self.inHome(), before)
        # The map shows the last scan, and no offer follows.
        self.assertEqual(self.tile("report.pdf").name, "report.pdf, 64.0 KB")
        self.assertEqual(self.dialogs(), [])
        self.isTold("✓ report.pdf — 64.0 KB moved to the Trash")
        self.becomes(self.pending, ["64.0 KB is in the Trash, still taking up space"])
        quillbrook.press("Finish removing")
        self.answer("Remove permanently")
        self.isTold("✓ report.pdf — 64.0 KB moved to the Trash", "✓ permanently removed 1 items · 64.0 KB actually freed")
        self.assertEqual((self.inTrash(), self.trashed(), self.ledger()), ({}, {}, {}))
        self.assertEqual(self.inHome(), before)

    def inTrashBytes(self):
        return sum(status.st_blocks * 512 for status in (
            os.lstat(self.data / "Trash" / "files" / name) for name in os.listdir(self.data / "Trash" / "files")))

    def testAFolderIsDeletedWithAllInItAndNothingBehindItsLinks(self):
        self.home.file("Documents/thesis.odt", 50 * KB)
        (self.home.path / "development/to-documents").symlink_to("../Documents")
        os.link(self.home.path / "development/readme.txt", self.home.path / "readme-again.txt")
        self.openMap()
        before = self.inHome()
        self.select("development")
        words = f"5 items, {homes.in_words(self.shown('development'))}, at ~/development."
        self.asksToDelete("development", words)
        self.escape()
        self.assertEqual(self.inHome(), before)
        self.asksToDelete("development", words)
        self.answer("Delete permanently")
        self.becomes(self.bar, [])
        gone = without(before, "development")
        gone.pop(b"development")
        self.assertEqual(self.inHome(), gone)
        self.assertEqual((self.trashed(), self.ledger()), ({}, {}))

    def shown(self, name):
        """What the map says that a folder takes: which of two names carries a linked file is for the scan to choose."""
        words = self.tile(name).name.rpartition(", ")[2]
        with_link, alone = self.home.allocated(name), self.home.allocated(f"{name}/atlas")
        self.assertIn(words, (homes.in_words(with_link), homes.in_words(alone)))
        return with_link if words == homes.in_words(with_link) else alone

    def testAFolderGoesToTheTrashWithAllInIt(self):
        self.openMap()
        before = self.inHome()
        self.select("development")
        self.asksToTrash("development", "4 items, 560 KB, at ~/development.")
        self.answer("Move to Trash")
        self.becomes(self.bar, [])
        gone = without(before, "development")
        gone.pop(b"development")
        self.assertEqual(self.inHome(), gone)
        self.assertEqual(under(self.inTrash(), "development"), under(before, "development"))
        self.assertLedgerKnows(["development"], 560 * KB)
        self.isTold("✓ development — 560 KB moved to the Trash")

    def testWhatTheGuardsKeepIsRefusedInTheirWords(self):
        refused = {
            "Documents": ("Documents/thesis.odt", "Documents is one of your Mac's own folders. Quillbrook can clear things "
                          "inside it, but will not remove the folder itself."),
            ".cache": (".cache/wheel.whl", ".cache is where all your apps keep their things. Quillbrook can clear things "
                       "inside it, but will not remove the folder itself."),
            "Passwords.kdbx": ("Passwords.kdbx", "Passwords.kdbx is a password safe. Losing it can lock you out for good, so "
                               "Quillbrook leaves it alone."),
            "disk.qcow2": ("go/disk.qcow2", "disk.qcow2 is part of a virtual machine. Remove the machine in the app that made "
                           "it."),
            "Old.PhotosLibrary": ("go/Old.PhotosLibrary/one.jpg", "Old.PhotosLibrary looks like a folder but is one single "
                                  "file. It belongs to the app that made it, so Quillbrook leaves it alone."),
            "one.jpg": ("go/Old.PhotosLibrary/one.jpg", "That is inside Old.PhotosLibrary, which looks like a folder but is "
                        "one single file. Taking a piece out of it breaks the whole thing."),
        }
        for place, _ in refused.values():
            self.home.file(place, 80 * KB)
        quillbrook = self.open()
        before = self.inHome()
        quillbrook.open_pane("4", "Find a file")
        for name, (_, sentence) in refused.items():
            with self.subTest(name):
                self.selectFound(name)
                self.becomes(self.refusals, [sentence])
                self.assertEqual([button for button in self.buttons() if button not in ("Open", "Show in Finder")],
                                 ["Clear selection"])
                self.pressInBar("Clear selection")
                self.becomes(self.bar, [])
        self.assertEqual(self.inHome(), before)
        self.assertEqual((self.trashed(), self.ledger()), ({}, {}))

    def testTheHomeFolderItselfIsRefused(self):
        quillbrook = self.open()
        quillbrook.open_pane("4", "Find a file")
        self.selectFound(self.home.path.name, str(self.home.path))
        self.becomes(self.refusals, ["That is your home folder."])
        self.assertNotIn("Move to Trash", self.buttons())
        self.assertNotIn("Delete permanently", self.buttons())

    def selectFound(self, text, name=None):
        self.quillbrook.window().one("text", "Search every file name on this Mac").focus()
        self.quillbrook.search(text)
        row = self.quillbrook.window().one("list", "Found").one(
            "list item", lambda label: label.startswith(f"{name or text}, "))
        row.act("Press")
        self.becomes(self.bar, [name or text])

    def refusals(self):
        return [name for panel in self.quillbrook.window().all("panel") if panel.name
                for name in panel.names("label") if name.endswith(".")]

    def testWhatVanishedMeanwhileIsToldAndNothingElseGoes(self):
        quillbrook = self.openMap()
        self.select("report.pdf")
        self.pressInBar("Move to Trash")
        quillbrook.window().one("dialog")
        (self.home.path / "report.pdf").unlink()
        before = self.inHome()
        self.answer("Move to Trash")
        self.becomes(self.bar, ["report.pdf"])
        self.isTold("✗ report.pdf is not there any more.")
        self.assertEqual(self.inHome(), before)
        self.assertEqual((self.trashed(), self.ledger(), self.pending()), ({}, {}, []))

    def testAFolderExchangedForALinkIsNotWhatWasPicked(self):
        self.openMap()
        self.select("development")
        self.pressInBar("Delete permanently")
        self.quillbrook.window().one("dialog")
        (self.home.path / "development").rename(self.home.path / "moved")
        (self.home.path / "development").symlink_to("moved")
        before = self.inHome()
        self.answer("Delete permanently")
        self.isTold("✗ development is not what was measured any more. Scan again.")
        self.assertEqual(self.inHome(), before)

    def testAFolderThatLeadsToAGuardedOneByNowIsRefused(self):
        self.home.file("Documents/thesis.odt", 50 * KB)
        self.home.file("development/atlas/private/thesis.odt", 50 * KB)
        quillbrook = self.open()
        quillbrook.open_pane("4", "Find a file")
        self.selectFound("private")
        self.pressInBar("Delete permanently")
        quillbrook.window().one("dialog")
        shutil.rmtree(self.home.path / "development")
        # What was development/atlas/private is the password folder now.
        self.home.file(".ssh/private/id_ed25519", 4 * KB)
        (self.home.path / "development").mkdir()
        (self.home.path / "development/atlas").symlink_to(self.home.path / ".ssh")
        before = self.inHome()
        self.answer("Delete permanently")
        self.isTold("✗ That is where your keys and passwords are kept. Losing them can lock you out for good, so Quillbrook "
                    "leaves them alone.")
        self.assertEqual(self.inHome(), before)

    @unittest.skipIf(os.getuid() == 0, "root may write everywhere")
    def testInAFolderThatIsClosedNothingGoes(self):
        self.home.file("go/closed/deep/module.go", 80 * KB)
        for folder in ("go/closed/deep", "go/closed", "development"):
            (self.home.path / folder).chmod(0o555)
        self.openMap()
        before = self.inHome()
        for button in ("Move to Trash", "Delete permanently"):
            self.quillbrook.open_pane("2", MAP)
            self.select("readme.txt")
            self.pressInBar(button)
            self.answer(button)
            self.becomes(self.bar, ["readme.txt"])
        line = "✗ Could not remove readme.txt: You do not have permission."
        self.isTold(line, line)
        self.assertEqual(self.inHome(), before)
        self.assertEqual((self.trashed(), self.ledger()), ({}, {}))

        # What is closed itself may go: that is the person's own doing, and the way it goes stays what it was.
        self.quillbrook.open_pane("2", MAP)
        self.select("closed")
        self.pressInBar("Move to Trash")
        self.answer("Move to Trash")
        self.becomes(self.bar, [])
        self.assertEqual(under(self.inTrash(), "closed"), under(before, "go/closed"))
        self.assertEqual(self.inTrash()[b"closed"], before[b"go/closed"])
        self.quillbrook.open_pane("1", "Free up space")
        self.quillbrook.press("Finish removing")
        self.answer("Remove permanently")
        self.becomes(self.pending, [])
        self.assertEqual((self.inTrash(), self.trashed()), ({}, {}))

    def testOddNamesGoToTheTrashAndForGood(self):
        for index, name in enumerate(removing.ODD_NAMES):
            self.home.file(os.path.join(b"odd", name), (60 + index * 20) * KB)
        (self.home.path / "odd").rename(self.home.path / "development/odd")
        self.openMap()
        before = self.inHome()
        names = [os.path.join(b"development/odd", name) for name in removing.ODD_NAMES]
        for name in names:
            place = os.fsdecode(self.origin(name)).encode("utf-8", "surrogateescape").decode("utf-8", "replace")
            tile = next(tile for tile in self.quillbrook.window().one("list", MAP).all("list item")
                        if tile.description.replace("\n", " ") == place.replace("\n", " "))
            tile.act("SetFocus")
            desktop.keys("space")
            self.becomes(lambda: len(self.bar()), 1)
            self.pressInBar("Move to Trash")
            self.answer("Move to Trash")
            self.becomes(self.bar, [])
        self.assertLedgerKnows(names)
        self.assertEqual(self.inTrash(), under(before, "development/odd"))
        self.assertEqual(self.inHome(), without(before, "development/odd"))
        self.quillbrook.open_pane("1", "Free up space")
        self.becomes(lambda: len(self.activity()), len(names))
        self.quillbrook.press("Finish removing")
        self.answer("Remove permanently")
        self.becomes(self.pending, [])
        self.assertEqual((self.inTrash(), self.trashed(), self.ledger()), ({}, {}, {}))

    def testASelectionMadeBeforeARescanNeverActs(self):
        quillbrook = self.openMap()
        self.select("report.pdf")
        quillbrook.press("Rescan")
        quillbrook.scanned()
        self.becomes(self.bar, [])

        # Nor when the question is already up, and a screen reader presses what lies behind it.
        self.select("report.pdf")
        self.pressInBar("Delete permanently")
        quillbrook.window().one("dialog")
        self.home.file("another.pdf", 96 * KB)
        before = self.inHome()
        quillbrook.press("Rescan")
        self.becomes(lambda: "another.pdf, 96.0 KB" in self.quillbrook.window().names("list item"), True)
        self.becomes(self.dialogs, [])
        self.assertEqual(self.bar(), [])
        self.assertEqual(self.inHome(), before)
        self.isTold()
