"""Removal on a small disk that nobody else writes to: what is told of free space is held against the disk's own figures,
to the byte, and a disk without a byte left loses nothing."""

import homes
import removing
import small_volume
from removing import without

MEGABYTES = 64
TOOLS, TITLE = ".cache/pip", "Programming tool downloads"
MB = 1024 * 1024
BARELY = ("Either it is still in the Trash, or something else wrote to the disk at the same time — a build running in the "
          "background will do it. Rescan to see the current picture.")


class RemovalVolume(removing.Removing):
    def setUp(self):
        super().setUp()
        try:
            self.volume = small_volume.Volume(self.folder / "volume", MEGABYTES)
        except small_volume.Impossible as impossible:
            self.skipTest(f"no disk of its own: {impossible}")
        self.addCleanup(self.volume.end)
        self.home = small_volume.VolumeHome(self.volume)
        self.through = self.volume.through
        self.home.file(f"{TOOLS}/wheels/numpy.whl", 20 * MB)
        self.home.file(f"{TOOLS}/torch.whl", 4 * MB)
        self.home.file("report.pdf", 300_000)

    @property
    def seen(self):
        return self.home.seen

    def size(self):
        return homes.in_words(self.home.allocated(TOOLS))

    def choose(self, button):
        self.quillbrook.press("Move to Trash")
        self.press(button)

    def trash(self, size):
        self.choose("Move 1 items to Trash")
        self.quillbrook.says(f"Moved {size} to the Trash. Free the space now?")
        self.answer("Keep in Trash for now")

    def went(self, before, after):
        return f"Free space went {homes.in_words(before)} → {homes.in_words(after)}."

    def gauge(self):
        """What the sidebar tells is free."""
        names = self.quillbrook.words()
        return names[names.index("free") - 1]

    def testDeletingPermanentlyIsProvedByTheDisksOwnFigures(self):
        quillbrook = self.open()
        before, size, taken = self.volume.free, self.size(), self.home.allocated(TOOLS)
        self.becomes(self.gauge, homes.in_words(before))
        self.choose("Delete permanently")
        self.becomes(self.activity, [f"✓ {TITLE} — {size} deleted"])
        quillbrook.scanned()
        gained = self.volume.free - before
        # The books and the settings lie on the same disk, and are written meanwhile.
        self.assertLess(abs(gained - taken), 64 * 1024)
        self.becomes(lambda: self.banners("actually freed"), [f"{homes.in_words(gained)} actually freed"])
        quillbrook.says(f"{self.went(before, before + gained)} Measured, not estimated.")
        self.becomes(self.gauge, homes.in_words(self.volume.free))
        quillbrook.press("Dismiss")
        self.becomes(lambda: self.banners("actually freed"), [])

    def testAMoveToTheTrashFreesNothingUntilTheJobIsFinished(self):
        quillbrook = self.open()
        before, size, taken = self.volume.free, self.size(), self.home.allocated(TOOLS)
        home = self.inHome()
        self.trash(size)
        quillbrook.scanned()
        after = self.volume.free
        self.assertLess(abs(after - before), 64 * 1024)
        self.becomes(lambda: self.banners("free space barely moved"), [f"Removed {size}, but free space barely moved"])
        quillbrook.says(f"{self.went(before, after)} {BARELY}")
        self.assertEqual(self.inHome(), without(home, TOOLS))
        self.assertLedgerKnows([f"{TOOLS}/wheels", f"{TOOLS}/torch.whl"], taken // 2)

        quillbrook.press("Finish removing")
        self.answer("Remove permanently")
        self.becomes(lambda: self.activity()[1:], [f"✓ permanently removed 2 items · {homes.in_words(taken)} actually freed"])
        self.assertLess(abs(self.volume.free - after - taken), 64 * 1024)
        self.becomes(self.gauge, homes.in_words(self.volume.free))
        self.assertEqual((self.pending(), self.trashed(), self.ledger()), ([], {}, {}))
        # What the first removal achieved stays told until it is dismissed.
        self.assertEqual(len(self.banners("free space barely moved")), 1)

    def testOnAFullDiskTheMoveWorksByWhatWasKeptBack(self):
        self.home.file("development/readme.txt", 40 * 1024)
        quillbrook = self.open()
        quillbrook.open_pane("2", "What's using space")
        quillbrook.window().one("list", "What's using space").one(
            "list item", "readme.txt, 40.0 KB").act()
        quillbrook.window().one("panel", "readme.txt").one("push button", "Move to Trash").act()
        self.answer("Move to Trash")
        self.assertLedgerKnows(["development/readme.txt"])
        quillbrook.open_pane("1", "Free up space")

        self.volume.fill()
        self.assertEqual(self.volume.free, 0)
        home, size = self.inHome(), self.size()
        self.trash(size)
        self.assertEqual(self.inHome(), without(home, TOOLS))
        self.assertLedgerKnows(["development/readme.txt", f"{TOOLS}/wheels", f"{TOOLS}/torch.whl"])
        # And back to work: the job is finished on the full disk, which then is none any more.
        taken = homes.in_words(sum(size for _, size in self.ledger().values()))
        quillbrook.press("Finish removing")
        self.answer("Remove permanently")
        self.becomes(lambda: self.activity()[-1:], [f"✓ permanently removed 3 items · {taken} actually freed"])
        self.assertGreater(self.volume.free, 23 * MB)
        self.assertEqual((self.trashed(), self.ledger()), ({}, {}))
        self.assertEqual(self.inHome(), without(home, TOOLS))

    def testADiskThatWasFullFromTheStartSaysWhyAndLosesNothing(self):
        self.volume.fill()
        quillbrook = self.open()
        home, size = self.inHome(), self.size()
        self.choose("Move 1 items to Trash")
        self.becomes(self.activity,
                     [f"✗ {TITLE}: Quillbrook could not note down what goes, so nothing was moved: There is no space left "
                      "on the disk."])
        quillbrook.says("Removed 0 B, but free space barely moved")
        self.assertEqual(self.inHome(), home)
        self.assertEqual((self.trashed(), self.ledger(), self.dialogs()), ({}, {}, []))
        # Deleting asks for no space.
        quillbrook.says(f"{size} selected")
        self.choose("Delete permanently")
        self.becomes(lambda: self.activity()[1:], [f"✓ {TITLE} — {size} deleted"])
        self.assertEqual(self.inHome(), without(home, TOOLS))
        self.assertGreater(self.volume.free, 23 * MB)
