"""Scans a person has a hand in: stopped, asked for again, and across the window closed and opened."""

import re
import shutil

import case
import desktop
import homes
import made_home
import waiting

MEASURING = re.compile("(?i)^measuring ")
FOLDERS = 2000
KB = 1024
MAP = "What's using space"


class Scanning(case.Case):
    def startOnASlowDisk(self, milliseconds=15):
        """A home of many folders, which the disk takes many seconds to tell: each takes two readings."""
        for index in range(FOLDERS):
            self.home.file(f"development/{index % 40:02}/{index:04}/file.txt", 1)
        return self.start(preload=[self.helper("slow_disk.so")], SLOW_DISK_MILLISECONDS=str(milliseconds))

    def tiles(self, quillbrook):
        return quillbrook.window().one("list", MAP).names("list item")

    def testALongScanTellsWhatItHasSeen(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.says(re.compile(r"^[\d,]+ files · [\d.]+ [KMG]?B$"))
        quillbrook.says(MEASURING)
        self.assertIn("Stop", quillbrook.words())

    def testAScanThatIsStoppedLeavesNothingBehind(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.press("Stop")
        quillbrook.says("Nothing scanned yet")
        quillbrook.says("Press Rescan to look at this Mac.")
        quillbrook.says("Rescan")
        # What the stopped scan still finds is dropped.
        with self.assertRaises(waiting.Late):
            quillbrook.scanned(3)
        self.assertIn("Nothing scanned yet", quillbrook.words())

    def testAfterAScanThatWasStoppedAnotherOneWorks(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.says(MEASURING)
        quillbrook.press("Stop")
        quillbrook.says("Nothing scanned yet")
        # The long way is gone; what is left takes no time.
        shutil.rmtree(self.home.path / "development")
        self.home.file("go/module.zip", 200 * KB)
        quillbrook.press("Rescan")
        self.assertEqual(quillbrook.scanned()[0], 1)
        quillbrook.open_pane("3", "Biggest files")
        self.becomes(lambda: quillbrook.rows("Biggest files"), ["module.zip, 200 KB, ~/go/module.zip"])

    def testStoppingARescanKeepsTheOldResult(self):
        self.home.file("report.pdf", 120 * KB)
        quillbrook = self.startOnASlowDisk(milliseconds=5)
        files, _ = quillbrook.scanned(120)
        self.assertEqual(files, FOLDERS + 1)
        self.home.file("report.pdf", 400 * KB)
        quillbrook.press("Rescan")
        quillbrook.says(MEASURING)
        quillbrook.press("Stop")
        self.assertEqual(quillbrook.scanned()[0], FOLDERS + 1)
        self.assertFalse(any(map(MEASURING.match, quillbrook.words())))
        quillbrook.open_pane("3", "Biggest files")
        self.becomes(lambda: quillbrook.rows("Biggest files")[:1], ["report.pdf, 120 KB, ~/report.pdf"])
        # The map has left its folder when the scan began.
        quillbrook.open_pane("2", MAP)
        self.becomes(lambda: (self.tiles(quillbrook), quillbrook.window().one("list", MAP).description),
                     ([], "Scan this Mac to see what is using it."))
        shutil.rmtree(self.home.path / "development")
        quillbrook.press("Rescan")
        self.becomes(lambda: self.tiles(quillbrook), ["report.pdf, 400 KB"])
        self.assertEqual(quillbrook.scanned()[0], 1)

    def testDuringAScanTheSidebarChoosesAndTheScanStaysOnTheScreen(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.says(MEASURING)
        quillbrook.activate()
        desktop.keys("ctrl+9")
        quillbrook.selected("This Mac")
        self.assertTrue(any(map(MEASURING.match, quillbrook.words())))
        quillbrook.press("Stop")
        quillbrook.says("Nothing scanned yet")

    def testARescanPicksUpWhatHasChanged(self):
        made_home.fill(self.home)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
        self.home.file("go/new.bin", 2_000_000)
        self.home.file("go/newer.bin", 1_000_000)
        (self.home.path / "report.pdf").unlink()
        quillbrook.press("Rescan")
        waiting.until("the new files counted", lambda: quillbrook.scanned()[0] == made_home.FILE_COUNT + 1)
        quillbrook.open_pane("4", "Find a file")
        for text, expected in (("new", ["go/new.bin", "go/newer.bin"]), ("report", [])):
            quillbrook.search(text)
            self.becomes(lambda: quillbrook.rows("Found"), [
                f"{name[3:]}, {homes.in_words(self.home.allocated(name))}, ~/{name}" for name in expected])

    def testAClosedWindowOpensAgain(self):
        made_home.fill(self.home)
        quillbrook = self.start()
        quillbrook.scanned()
        quillbrook.close_window()
        self.home.file("go/new.bin", 200 * KB)
        self.assertEqual(self.start().exited(), 0)
        quillbrook.window_id()
        quillbrook.scanned()
        quillbrook.press("Rescan")
        self.becomes(lambda: quillbrook.scanned()[0], made_home.FILE_COUNT + 1)
        quillbrook.open_pane("2", MAP)
        quillbrook.window().one("list", MAP).one("list item", "new.bin, 200 KB")

    def testAScanGoesOnWithoutItsWindow(self):
        quillbrook = self.startOnASlowDisk(milliseconds=3)
        quillbrook.says(MEASURING)
        quillbrook.close_window()
        self.assertEqual(self.start().exited(), 0)
        self.assertEqual(quillbrook.scanned(60)[0], FOLDERS)

    def testEndingInTheMiddleOfAScanIsClean(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.says(MEASURING)
        self.assertTrue(quillbrook.quit())
        self.assertEqual(quillbrook.process.returncode, 0, quillbrook.output())
