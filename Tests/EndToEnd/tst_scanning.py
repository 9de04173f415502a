"""Scans a person has a hand in: stopped, asked for again, and across the window closed and opened."""

import re

import case
import desktop
import made_home
import waiting

MEASURING = re.compile("(?i)^measuring ")
FOLDERS = 2000


class Scanning(case.Case):
    def startOnASlowDisk(self, milliseconds=15):
        """A home of many folders, which the disk takes many seconds to tell: each takes two readings."""
        for index in range(FOLDERS):
            self.home.file(f"development/{index % 40:02}/{index:04}/file.txt", 1)
        return self.start(preload=[self.helper("slow_disk.so")], SLOW_DISK_MILLISECONDS=str(milliseconds))

    def testALongScanTellsWhatItHasSeen(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.says(re.compile(r"^[\d,]+ files · [\d.]+ [KMG]?B$"))
        quillbrook.says(MEASURING)
        self.assertIn("Stop", quillbrook.words())

    def testAScanThatIsStoppedLeavesNothingBehind(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.press("Stop")
        quillbrook.says("Nothing scanned yet", 5)
        quillbrook.says("Press Rescan to look at this Mac.")
        quillbrook.says("Rescan")
        # What the stopped scan still finds is dropped.
        with self.assertRaises(waiting.Late):
            quillbrook.scanned(3)
        self.assertIn("Nothing scanned yet", quillbrook.words())

    def testStoppingARescanKeepsTheOldResult(self):
        quillbrook = self.startOnASlowDisk(milliseconds=5)
        files, _ = quillbrook.scanned(120)
        self.assertEqual(files, FOLDERS)
        quillbrook.press("Rescan")
        quillbrook.says(MEASURING)
        quillbrook.press("Stop")
        self.assertEqual(quillbrook.scanned(5)[0], FOLDERS)
        self.assertFalse(any(map(MEASURING.match, quillbrook.words())))

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
        quillbrook.press("Rescan")
        waiting.until("the new files counted", lambda: quillbrook.scanned()[0] == made_home.FILE_COUNT + 2)

    def testAClosedWindowOpensAgain(self):
        made_home.fill(self.home)
        first = self.start()
        first.scanned()
        desktop.close_window(first.window_id())
        waiting.until("the end of the program", lambda: not first.running)
        self.assertEqual(first.process.returncode, 0, first.output())
        again = self.start()
        self.assertEqual(again.scanned()[0], made_home.FILE_COUNT)

    def testEndingInTheMiddleOfAScanIsClean(self):
        quillbrook = self.startOnASlowDisk()
        quillbrook.says(MEASURING)
        desktop.close_window(quillbrook.window_id())
        waiting.until("the end of the program", lambda: not quillbrook.running)
        self.assertEqual(quillbrook.process.returncode, 0, quillbrook.output())
