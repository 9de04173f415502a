"""Findings cleared on the screen "Free up space": what is asked, what goes where, what the ledger knows, how the job is
finished, and that a program that is killed loses nothing and removes nothing that was not chosen."""

import os
import re
import shutil
import signal
import unittest

import accessibility
import desktop
import homes
import removing
import waiting
from opened_files import OpenedFiles
from removing import contents, under, without

TOOLS, TOOLS_TITLE = ".cache/pip", "Programming tool downloads"
PACKAGES, PACKAGES_TITLE = ".npm/_cacache", "Downloaded code packages"
TO_TRASH = ("Moving to the Trash is undoable, but it does not free the space until the Trash is emptied — Quillbrook will "
            "offer to finish the job.")


class Removal(removing.Removing):
    def setUp(self):
        super().setUp()
        # Two things in a folder of one kind, and one of another; what is large, and no finding.
        self.home.file(f"{TOOLS}/wheels/numpy.whl", 3_000_000)
        self.home.file(f"{TOOLS}/.partial", 200_000)
        self.home.file(f"{PACKAGES}/react", 1_000_000)
        self.home.file("report.pdf", 300_000)
        self.old = self.otherTrash()

    def openOnTools(self):
        """With the tick taken off all but the tools' downloads."""
        quillbrook = self.open()
        self.list().one("list item", lambda name: name.startswith(PACKAGES_TITLE)).one("check box").act()
        quillbrook.says(f"{self.size(TOOLS)} selected")
        return quillbrook

    def list(self):
        return self.quillbrook.window().one("list", "What can go")

    def size(self, *names):
        return homes.in_words(self.home.allocated(*names))

    def ask(self, size, count):
        backup = self.hasBackup()
        self.quillbrook.press("Move to Trash")
        self.asks(f"Move {size} to the Trash?",
                  TO_TRASH + ("" if backup else " This Mac has no backup, so deleting permanently is final."),
                  "Cancel", f"Move {count} items to Trash", "Delete permanently")

    def trashTools(self, keep=True):
        """All of the tools' downloads to the Trash, and the answer to the offer that follows."""
        size = self.size(TOOLS)
        self.ask(size, 1)
        self.answerWith("Move 1 items to Trash", size)
        self.answer("Keep in Trash for now" if keep else "Free it now")
        return size

    def answerWith(self, button, size):
        self.press(button)
        self.asks(f"Moved {size} to the Trash. Free the space now?", removing.FREE_NOW, "Keep in Trash for now",
                  "Free it now")

    def share(self, *names, count):
        """What the ledger counts for each of so many things."""
        return self.home.allocated(*names) // count

    def testCancelIsWhatTheKeyboardStandsOnAndTouchesNothing(self):
        self.openOnTools()
        before = contents(self.folder / "home"), contents(self.data)
        self.ask(self.size(TOOLS), 1)
        self.escape()
        self.ask(self.size(TOOLS), 1)
        desktop.keys("Return")
        self.becomes(self.dialogs, [])
        self.assertEqual((contents(self.folder / "home"), contents(self.data)), before)
        self.assertEqual(self.activity(), [])
        self.assertEqual(self.ledger(), {})
        # What was ticked still is.
        self.ask(self.size(TOOLS), 1)

    def testAQuestionThatARescanOvertakesIsWithdrawn(self):
        quillbrook = self.openOnTools()
        self.ask(self.size(TOOLS), 1)
        self.home.file(f"{TOOLS}/added.whl", 400_000)
        before = self.inHome()
        # As a screen reader may, behind the question.
        quillbrook.press("Rescan")
        quillbrook.says(f"{self.size(TOOLS)} selected")
        self.becomes(self.dialogs, [])
        self.assertEqual(self.inHome(), before)
        self.assertEqual((self.trashed(), self.ledger()), (self.old, {}))

    def testAFindingGoesToTheTrashAndTheJobIsFinished(self):
        quillbrook = self.openOnTools()
        before, trash, share = self.inHome(), self.inTrash(), self.share(TOOLS, count=2)
        size = self.trashTools()
        things = [f"{TOOLS}/wheels", f"{TOOLS}/.partial"]
        self.assertEqual(self.inHome(), without(before, TOOLS))
        self.assertEqual(self.trashed(), self.old | {self.origin(name): os.path.basename(name).encode() for name in things})
        self.assertEqual(self.inTrash(), trash | under(before, TOOLS))
        self.assertLedgerKnows(things, share)
        self.becomes(self.activity, [f"✓ {TOOLS_TITLE} — {size} to Trash"])

        title = f"{homes.in_words(2 * share)} is in the Trash, still taking up space"
        self.becomes(self.pending, [title])
        quillbrook.says("The Trash sits on the same volume, so the space only comes back once it is emptied. Quillbrook will "
                        "remove only the 2 items it moved — never anything else you have thrown away.")
        self.finishAsked(2 * share)
        self.escape()
        self.assertLedgerKnows(things)
        self.finishAsked(2 * share)
        self.answer("Remove permanently")
        self.becomes(self.pending, [])
        self.assertEqual((self.inTrash(), self.trashed(), self.ledger()), (trash, self.old, {}))
        self.assertEqual(self.inHome(), without(before, TOOLS))
        self.becomes(self.activity, [
            f"✓ {TOOLS_TITLE} — {size} to Trash",
            f"✓ permanently removed 2 items · {homes.in_words(2 * share)} actually freed"])

    def finishAsked(self, size, earlier=0):
        """`earlier` is how many things lay there before this run of the program."""
        words = homes.in_words(size)
        self.quillbrook.press("Finish removing")
        self.asks(f"Permanently remove {words}?", removing.FINISH, "Cancel", "Remove permanently", also=(
            f"{earlier} items ({words}) that Quillbrook moved there before go.", "What is it?") if earlier else ())

    def testWhatLiesInTheTrashIsListedAndPutBack(self):
        quillbrook = self.openOnTools()
        before = self.inHome()
        self.trashTools()
        # Without it there is room in the window for all of the log.
        quillbrook.press("Dismiss")
        quillbrook.press("Show what is in the Trash")
        names = lambda: sorted(name for name in self.list().names("list item") if name.startswith(TOOLS_TITLE))
        self.becomes(lambda: len(names()), 2)
        # One of them is kept where it is, and the place of the other is taken.
        kept = self.list().one("list item", lambda name: name.startswith(f"{TOOLS_TITLE} · .partial"))
        kept.one("check box").act()
        self.home.file(f"{TOOLS}/wheels", 4096)
        quillbrook.press("Hide what is in the Trash")
        quillbrook.press("Put back")
        self.becomes(lambda: any(line.startswith(f"✗ {TOOLS_TITLE} · wheels: ") for line in self.activity()), True)
        self.assertEqual(len(self.ledger()), 2)
        (self.home.path / TOOLS / "wheels").unlink()
        quillbrook.scanned()
        quillbrook.press("Put back")
        self.becomes(self.inHome, {path: thing for path, thing in before.items() if not path.endswith(b".partial")})
        self.becomes(lambda: len(self.ledger()), 1)
        self.assertLedgerKnows([f"{TOOLS}/.partial"])

    def testWhatLayThereBeforeIsToldBeforeSpaceIsFreed(self):
        self.openOnTools()
        self.trashTools()
        self.quillbrook.scanned()
        self.list().one("list item", lambda name: name.startswith(PACKAGES_TITLE)).one("check box").act()
        size = self.size(PACKAGES)
        self.ask(size, 1)
        self.press("Move 1 items to Trash")
        self.quillbrook.says(re.compile(r"^2 items \(.*\) that Quillbrook moved there before go too\.$"))
        self.press("What is it?")
        rows = self.quillbrook.window().one("list", "What is in the Trash")
        self.becomes(lambda: len(rows.all("check box")), 2)
        self.answer("Free it now")
        self.becomes(self.ledger, {})
        self.becomes(self.trashed, self.old)

    def testWhatWasProvedIsDismissedAndThePendingBannerStays(self):
        quillbrook = self.openOnTools()
        self.trashTools()
        quillbrook.press("Dismiss")
        self.becomes(lambda: self.banners("free space barely moved", "actually freed"), [])
        self.becomes(lambda: len(self.pending()), 1)

    def testTheOfferFreesTheSpaceAtOnce(self):
        self.openOnTools()
        before, share = self.inHome(), self.share(TOOLS, count=2)
        size = self.trashTools(keep=False)
        self.becomes(self.activity, [
            f"✓ {TOOLS_TITLE} — {size} to Trash",
            f"✓ permanently removed 2 items · {homes.in_words(2 * share)} actually freed"])
        self.assertEqual(self.trashed(), self.old)
        self.assertEqual(self.ledger(), {})
        self.becomes(self.pending, [])
        self.assertEqual(self.inHome(), without(before, TOOLS))

    def testDeletingPermanentlyLeavesTheTrashOutOfIt(self):
        quillbrook = self.open()
        before, size = self.inHome(), self.size(TOOLS)
        trash = contents(self.data / "Trash")
        packages = self.size(PACKAGES)
        self.ask(self.size(TOOLS, PACKAGES), 2)
        self.answer("Delete permanently")
        self.becomes(self.activity, [f"✓ {TOOLS_TITLE} — {size} deleted", f"✓ {PACKAGES_TITLE} — {packages} deleted"])
        quillbrook.says("0 of 0 reclaimable items")
        self.assertEqual(self.inHome(), without(before, TOOLS, PACKAGES))
        self.assertEqual(contents(self.data / "Trash"), trash)
        self.assertEqual(self.ledger(), {})
        self.assertEqual((self.pending(), self.dialogs()), ([], []))

    def testNoFileOfThePersonIsEverOpened(self):
        """Neither by the scan nor by what goes, one way or the other."""
        with OpenedFiles(self.home.path, self.data / "Trash" / "files") as opened:
            self.openOnTools()
            self.trashTools(keep=False)
            self.becomes(self.ledger, {})
            self.quillbrook.says("0 of 1 reclaimable items")
            self.list().one("list item", lambda name: name.startswith(PACKAGES_TITLE)).one("check box").act()
            self.ask(self.size(PACKAGES), 1)
            self.answer("Delete permanently")
            self.quillbrook.says("0 of 0 reclaimable items")
            self.assertEqual(opened.names(), set())
            # It would have been told.
            (self.home.path / "report.pdf").read_bytes()
            self.assertEqual(opened.names(), {b"report.pdf"})

    def testAFolderThatBecameALinkSinceTheScanLeavesWhatLiesBehindIt(self):
        self.home.file("Documents/thesis.odt", 50_000)
        self.openOnTools()
        for button, told in (("Move 1 items to Trash", "0 B to Trash"), ("Delete permanently", "0 B deleted")):
            with self.subTest(button):
                self.quillbrook.press("Move to Trash")
                self.quillbrook.window().one("dialog")
                tools = self.home.path / TOOLS
                tools.rename(self.home.path / "moved")
                tools.symlink_to(self.home.path / "Documents")
                before = self.inHome()
                self.answer(button)
                self.becomes(lambda: self.activity()[-1:], [f"✓ {TOOLS_TITLE} — {told}"])
                self.assertEqual(self.inHome(), before)
                self.assertEqual((self.trashed(), self.ledger(), self.pending()), (self.old, {}, []))
                tools.unlink()
                (self.home.path / "moved").rename(tools)
                self.quillbrook.press("Rescan")
                self.quillbrook.says("0 of 2 reclaimable items")
                self.list().one("list item", lambda name: name.startswith(TOOLS_TITLE)).one("check box").act()
                self.quillbrook.says(f"{self.size(TOOLS)} selected")

    def testWhatSomebodyElseEmptiedIsPendingNoMore(self):
        quillbrook = self.openOnTools()
        self.trashTools()
        self.becomes(lambda: len(self.pending()), 1)
        for part in ("files", "info"):
            shutil.rmtree(self.data / "Trash" / part)
        quillbrook.press("Rescan")
        quillbrook.scanned()
        self.becomes(self.pending, [])

    def testNamesLinksAndClosedFoldersAreMovedAndRemovedAsTheyAre(self):
        for name in removing.ODD_NAMES:
            self.home.file(os.path.join(os.fsencode(TOOLS), name), 5000)
        self.home.file("Documents/thesis.odt", 50_000)
        (self.home.path / TOOLS / "to-documents").symlink_to(self.home.path / "Documents")
        (self.home.path / TOOLS / "to-nowhere").symlink_to("/nonexistent")
        self.home.file(f"{TOOLS}/closed/deep/module.go", 5000)
        for folder in (f"{TOOLS}/closed/deep", f"{TOOLS}/closed"):
            (self.home.path / folder).chmod(0o555)
        self.openOnTools()
        before, trash = self.inHome(), self.inTrash()
        things = os.listdir(os.fsencode(self.home.path / TOOLS))
        self.trashTools()
        self.assertEqual(self.inHome(), without(before, TOOLS))
        self.assertLedgerKnows([os.path.join(os.fsencode(TOOLS), name) for name in things])
        self.assertEqual(self.inTrash(), trash | under(before, TOOLS))
        self.quillbrook.press("Finish removing")
        self.answer("Remove permanently")
        self.becomes(self.pending, [])
        self.assertEqual(self.trashed(), self.old)
        # What a link led to is where it was.
        self.assertEqual(self.inHome(), without(before, TOOLS))

    @unittest.skipIf(os.getuid() == 0, "root may write everywhere")
    def testWhatMayNotBeMovedIsToldAndStays(self):
        folder = self.home.path / PACKAGES
        folder.chmod(0o555)
        self.addCleanup(folder.chmod, 0o755)
        self.open()
        before, size = self.inHome(), self.size(TOOLS)
        self.ask(self.size(TOOLS, PACKAGES), 2)
        self.answerWith("Move 2 items to Trash", size)
        self.answer("Keep in Trash for now")
        told = [f"✓ {TOOLS_TITLE} — {size} to Trash",
                f"✗ {PACKAGES_TITLE}: Could not reclaim react: You do not have permission."]
        self.becomes(self.activity, told)
        self.assertEqual(self.inHome(), without(before, TOOLS))
        self.assertLedgerKnows([f"{TOOLS}/wheels", f"{TOOLS}/.partial"])
        # Nor for good. Its tick has come back with the rescan.
        self.quillbrook.says(f"{self.size(PACKAGES)} selected")
        self.quillbrook.press("Move to Trash")
        self.answer("Delete permanently")
        self.becomes(lambda: self.activity()[2:],
                     [f"✗ {PACKAGES_TITLE}: Could not reclaim react: You do not have permission."])
        self.assertEqual(self.inHome(), without(before, TOOLS))

    def testAProgramKilledAfterTheMoveKnowsWhatItMoved(self):
        for index in range(400):
            self.home.file(f"development/{index:03}/file.txt", 1)
        self.quillbrook = self.start(preload=[self.helper("slow_disk.so")], SLOW_DISK_MILLISECONDS="5")
        self.quillbrook.scanned(60)
        before, share = self.inHome(), self.share(TOOLS, PACKAGES, count=1)
        self.quillbrook.press("Move to Trash")
        self.press("Move 2 items to Trash")
        self.quillbrook.says("Stop")
        self.killed()

        things = [f"{TOOLS}/wheels", f"{TOOLS}/.partial", f"{PACKAGES}/react"]
        self.assertEqual(self.inHome(), without(before, TOOLS, PACKAGES))
        self.assertLedgerKnows(things)
        self.open()
        self.becomes(self.pending, [f"{homes.in_words(share)} is in the Trash, still taking up space"])
        self.assertEqual(self.activity(), [])
        self.assertEqual(self.inHome(), without(before, TOOLS, PACKAGES))
        self.assertLedgerKnows(things)
        self.finishAsked(share, earlier=3)
        self.press("What is it?")
        listed = self.quillbrook.window().one("list", "What is in the Trash")
        self.becomes(lambda: len(listed.all("check box")), 3)
        self.answer("Remove permanently")
        self.becomes(self.activity, [f"✓ permanently removed 3 items · {homes.in_words(share)} actually freed"])
        self.assertEqual((self.trashed(), self.ledger()), (self.old, {}))
        self.assertEqual(self.inHome(), without(before, TOOLS, PACKAGES))

    def testAProgramKilledTenTimesInTheMiddleOfTheMoveLosesTrackOfNothing(self):
        count = 20_000
        for index in range(count):
            os.close(os.open(self.home.path / TOOLS / f"{index:05}", os.O_CREAT | os.O_WRONLY, 0o600))
        before = self.inHome()
        trash = self.data / "Trash"
        for turn in range(10):
            self.open()
            self.assertBooksKnowTheTrash()
            self.quillbrook.press("Move to Trash")
            dialog = self.quillbrook.window().one("dialog")
            # A question takes the keyboard once it stands.
            self.becomes(lambda: dialog.one("push button", "Cancel").has(accessibility.FOCUSED), True)
            button = dialog.one("push button", "Move 2 items to Trash")
            self.quillbrook.tab_to(lambda: button.has(accessibility.FOCUSED))
            there = len(os.listdir(trash / "files"))
            desktop.keys("Return")
            waiting.until("the next things in the Trash", lambda: len(os.listdir(trash / "files")) > there + turn * 40,
                          pause=0)
            self.killed()
            moved = {name: thing for name, thing in self.inTrash().items() if name != b"old.txt"}
            self.assertLess(len(moved), count, "the move was over before it could be broken off")
            left = self.inHome()
            self.assertEqual(left | {os.fsencode(TOOLS) + b"/" + name: thing for name, thing in moved.items()}, before)
            self.assertEqual(len(left) + len(moved), len(before))
            self.assertEqual(without(left, TOOLS), without(before, TOOLS))
        self.open()
        self.assertBooksKnowTheTrash()
        self.assertEqual(self.inHome(), left)

    def assertBooksKnowTheTrash(self):
        """Once what a kill has left is taken up, all that lies in the Trash but what the person threw away is a row and
        counted, and no note is without its thing."""
        things = set(os.listdir(os.fsencode(self.data / "Trash" / "files"))) - {b"old.txt"}
        self.becomes(lambda: {os.path.basename(place) for place, _ in self.ledger().values()}, things)
        self.assertEqual(set(self.trashed().values()) - {b"old.txt"}, things)
        self.becomes(self.reclaimed, sum(size for _, size in self.ledger().values()))
        self.becomes(lambda: len(self.pending()), 1 if things else 0)

    def reclaimed(self):
        settings = self.home.settings.read_text() if self.home.settings.exists() else ""
        found = re.search(r"^Quillbrook\.reclaimedBytes=(\d+)$", settings, re.MULTILINE)
        return int(found[1]) if found else 0

    def killed(self):
        os.kill(self.quillbrook.pid, signal.SIGKILL)
        self.quillbrook.process.wait(10)


class RemovalOfTheTrash(removing.Removing):
    """The Trash where a desktop without settings of its own has it: in the home folder, where it is a finding."""

    TITLE = "Trash"

    @property
    def data(self):
        return self.home.path / ".local/share"

    def testWhatLiesInTheTrashGoesForGoodOnly(self):
        self.otherTrash()
        self.home.file(".local/share/Trash/files/holiday.mp4", 900_000)
        (self.data / "Trash/info/holiday.mp4.trashinfo").write_text(
            f"[Trash Info]\nPath={self.seen}/holiday.mp4\nDeletionDate=2024-05-01T12:00:00\n")
        self.home.file(f"{TOOLS}/torch.whl", 200_000)
        self.quillbrook = self.start(XDG_DATA_HOME=str(self.data))
        self.quillbrook.scanned()
        self.quillbrook.activate()
        size = homes.in_words(self.home.allocated(".local/share/Trash/files"))
        self.list_item(TOOLS_TITLE).one("check box").act()
        self.list_item(self.TITLE).one("check box").act()
        self.quillbrook.says(f"{size} selected")
        before = contents(self.data / "Trash")
        self.quillbrook.press("Move to Trash")
        self.answer("Move 1 items to Trash")
        self.becomes(self.activity, [
            "✗ Trash: This is already in the Trash. Delete it permanently to get the space back."])
        self.assertEqual(contents(self.data / "Trash"), before)

        self.quillbrook.says("0 of 2 reclaimable items")
        self.list_item(self.TITLE).one("check box").act()
        self.quillbrook.press("Move to Trash")
        self.answer("Delete permanently")
        self.becomes(lambda: self.activity()[1:], [f"✓ Trash — {size} deleted"])
        self.assertEqual((self.inTrash(), self.trashed()), ({}, {}))
        self.assertIn(os.fsencode(f"{TOOLS}/torch.whl"), self.inHome())

    def list_item(self, title):
        return self.quillbrook.window().one("list", "What can go").one("list item", lambda name: name.startswith(title))
