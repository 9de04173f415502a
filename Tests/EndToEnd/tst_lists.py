"""Biggest files and Find a file: what they list and in which order, and what can be done with a row."""

import os
import urllib.parse

import accessibility
import case
import desktop
import file_manager
import homes
import screenshot
import waiting

# The colour of rings, as red, green and blue.
ACCENT = bytes((42, 79, 191))
KB = 1024
BLOCK = 4 * KB
# Not UTF-8, on two lines, with what a URI writes in another way, and the replacement of a byte that is no letter.
ODD_NAMES = (b"development/caf\xe9 100%.bin", b"development/two\nlines.bin", "development/søk #1?.bin".encode(),
             "development/replaced \ufffd.bin".encode())


class Lists(case.Case):
    def open(self, digit, pane):
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.open_pane(digit, pane)
        return self.quillbrook

    def biggest(self):
        return self.open("3", "Biggest files")

    def search(self, text=""):
        self.open("4", "Find a file")
        self.type(text)
        return self.quillbrook

    def type(self, text):
        self.quillbrook.search(text)

    def table(self):
        return next(iter(table for name in ("Biggest files", "Found")
                         for table in self.quillbrook.window().all("list", name)), None)

    def rows(self):
        return self.table().all("list item") if self.table() else []

    def rowNames(self):
        return self.quillbrook.rows("Biggest files") or self.quillbrook.rows("Found")

    def fromTheTop(self):
        """The names of the rows by their place on the screen, those of which nothing shows left out."""
        _, top, _, height = self.table().extents
        rows = [(row.extents[1], row.extents[3], row.name) for row in self.rows()]
        return [name for y, tall, name in sorted(rows) if y + tall > top and y < top + height]

    def row(self, name):
        return self.table().one("list item", self.labelled(name))

    def labelled(self, name):
        """A row's words, from what the disk says the file or folder takes."""
        shown = os.fsdecode(name).encode("utf-8", "surrogateescape").decode("utf-8", "replace").replace("\n", " ")
        return f"{os.path.basename(shown)}, {homes.in_words(self.home.allocated(os.fsdecode(name)))}, ~/{shown}"

    def uri(self, name):
        return "file://" + urllib.parse.quote_from_bytes(os.fsencode(self.home.path) + b"/" + os.fsencode(name), safe="/")

    def fileManager(self):
        manager = file_manager.FileManager(self.folder)
        self.addCleanup(manager.stop)
        return manager

    def focusedRow(self):
        return [row.name for row in self.rows() if row.has(accessibility.FOCUSED)]

    def ringed(self):
        """The rows with a ring around them, by the colour at their left edge."""
        picture = case.Run.desktop.picture()
        found = []
        for row in self.rows():
            x, y, _, height = row.extents
            _, _, lines = screenshot.crop(picture, x, y, 4, height)
            if sum(ACCENT in (line[index:index + 3] for index in range(0, len(line), 3)) for line in lines) > height // 2:
                found.append(row.name)
        return found

    def bar(self):
        """What the bar of the selection says and offers."""
        return [name for panel in self.quillbrook.window().all("panel") if panel.name for name in panel.names()[1:]]


class Biggest(Lists):
    def testFilesAreListedByWhatTheyTakeOnTheDisk(self):
        self.home.file("report.pdf", 120 * KB)
        self.home.file("go/deep/down/below/here/and/further/module.zip", 400 * KB)
        self.home.file(".cache/wheel.whl", 40 * KB)
        self.home.sparse("development/disk.img", 900_000 * KB)
        self.home.file("development/empty.txt")
        self.home.file("Documents/private.bin", 800 * KB)
        self.biggest()
        self.becomes(self.rowNames, [
            "module.zip, 400 KB, ~/go/deep/down/below/here/and/further/module.zip", "report.pdf, 120 KB, ~/report.pdf",
            "wheel.whl, 40.0 KB, ~/.cache/wheel.whl"])

    def testAFileOfTwoNamesIsListedOnce(self):
        self.home.file("go/module.zip", 400 * KB)
        self.home.link("go/module.zip", "go/again.zip")
        self.biggest()
        self.becomes(lambda: len(self.rowNames()), 1)
        self.assertIn(self.rowNames()[0], (self.labelled("go/module.zip"), self.labelled("go/again.zip")))

    def testTheListEndsWithTheTwoHundredthInSize(self):
        for index in range(1, 206):
            self.home.file(f"development/{index:03}.bin", index * BLOCK)
        self.biggest()
        first = [self.labelled(f"development/{index:03}.bin") for index in range(205, 195, -1)]
        self.becomes(lambda: self.rowNames()[:10], first)
        self.quillbrook.tab_to(self.focusedRow)
        desktop.keys("End")
        self.becomes(self.focusedRow, [self.labelled("development/006.bin")])
        self.becomes(lambda: self.fromTheTop()[-3:], [self.labelled(f"development/{name}.bin") for name in ("008", "007", "006")])
        desktop.keys("Home")
        self.becomes(self.focusedRow, first[:1])
        self.becomes(lambda: self.fromTheTop()[:10], first)

    def testWithoutFilesTheListSaysSo(self):
        self.biggest().says("No files found.")
        self.assertEqual(self.rowNames(), [])

    def testARowIsWalkedToSelectedAndShownFromTheKeyboard(self):
        manager = self.fileManager()
        for name, size in (("go/a.bin", 400 * KB), ("go/b.bin", 200 * KB), ("go/c.bin", 100 * KB)):
            self.home.file(name, size)
        quillbrook = self.biggest()
        quillbrook.tab_to(lambda: self.focusedRow() == [self.labelled("go/a.bin")])
        self.becomes(self.ringed, [self.labelled("go/a.bin")])
        desktop.keys("Down", "Down", "Up")
        self.becomes(self.focusedRow, [self.labelled("go/b.bin")])
        self.becomes(self.ringed, [self.labelled("go/b.bin")])
        desktop.keys("Return")
        self.becomes(self.bar, ["b.bin", "200 KB", "~/go/b.bin", "Show in Finder", "Move to Trash",
                                "Delete permanently", "Clear selection"])
        desktop.keys("Tab")
        show = self.row("go/b.bin").one("push button", "Show")
        self.becomes(lambda: show.has(accessibility.FOCUSED), True)
        desktop.keys("space")
        self.assertEqual(manager.shown(1), [("ShowItems", [self.uri("go/b.bin")])])

    def testAClickSelectsARowAndItsButtonShowsIt(self):
        manager = self.fileManager()
        self.home.file("go/a.bin", 400 * KB)
        self.home.file("go/b.bin", 200 * KB)
        self.biggest()
        x, y, width, height = self.row("go/b.bin").extents
        desktop.click(x + width // 3, y + height // 2)
        self.becomes(lambda: [row.has(accessibility.SELECTED) for row in self.rows()], [False, True])
        self.becomes(lambda: self.bar()[:3], ["b.bin", "200 KB", "~/go/b.bin"])
        # The ring is for the keyboard.
        self.assertEqual(self.ringed(), [])
        desktop.click(*self.row("go/a.bin").one("push button", "Show").centre)
        self.assertEqual(manager.shown(1), [("ShowItems", [self.uri("go/a.bin")])])
        # Showing a row leaves the selection where it is.
        self.assertEqual(self.bar()[:1], ["b.bin"])

    def testNamesOfAnyBytesAreListedAndShown(self):
        manager = self.fileManager()
        for index, name in enumerate(ODD_NAMES):
            self.home.file(name, (len(ODD_NAMES) - index) * 40 * KB)
        self.biggest()
        self.becomes(self.rowNames, [self.labelled(name) for name in ODD_NAMES])
        for row in self.rows():
            _, top, _, height = row.extents
            for part in row.all("label"):
                _, y, _, tall = part.extents
                self.assertTrue(top <= y and y + tall <= top + height, f"{part!r} reaches out of its row")
        for position, name in enumerate(ODD_NAMES):
            self.row(name).one("push button", "Show").act("Press")
            self.assertEqual(manager.shown(position + 1)[position], ("ShowItems", [self.uri(name)]))

    def testASelectionOfAnyBytesIsShownFromItsBar(self):
        manager = self.fileManager()
        for name in ODD_NAMES:
            self.home.file(name, 40 * KB)
        self.biggest()
        for position, name in enumerate(ODD_NAMES):
            self.row(name).act("Press")
            self.becomes(lambda: [row.has(accessibility.SELECTED) for row in self.rows()].count(True), 1)
            self.becomes(lambda: self.row(name).has(accessibility.SELECTED), True)
            self.quillbrook.press("Show in Finder")
            self.assertEqual(manager.shown(position + 1)[position], ("ShowItems", [self.uri(name)]))

    def testWithoutAFileManagerTheFolderIsOpened(self):
        self.home.file("go/a.bin", 400 * KB)
        self.biggest()
        self.row("go/a.bin").one("push button", "Show").act("Press")
        waiting.until("something opened", self.home.opened.exists)
        self.becomes(self.home.opened.read_text, self.uri("go") + "\n")
        self.row("go/a.bin").act("Press")
        self.becomes(lambda: self.bar()[:1], ["a.bin"])

    def testARescanListsWhatIsThereNow(self):
        self.home.file("go/a.bin", 400 * KB)
        self.home.file("go/b.bin", 200 * KB)
        quillbrook = self.biggest()
        self.becomes(self.rowNames, ["a.bin, 400 KB, ~/go/a.bin", "b.bin, 200 KB, ~/go/b.bin"])
        self.row("go/a.bin").act("Press")
        self.becomes(lambda: self.bar()[:1], ["a.bin"])
        (self.home.path / "go/a.bin").unlink()
        self.home.file("go/b.bin", 280 * KB)
        self.home.file("go/c.bin", 240 * KB)
        quillbrook.press("Rescan")
        self.becomes(self.rowNames, ["b.bin, 280 KB, ~/go/b.bin", "c.bin, 240 KB, ~/go/c.bin"])
        self.assertEqual(self.bar(), [])


class Search(Lists):
    def setUp(self):
        super().setUp()
        for name, size in (("development/laboratory/lab.txt", 40 * KB), ("development/laboratory/other.bin", 80 * KB),
                           ("go/SLAB.bin", 200 * KB), ("a.txt", 4 * KB)):
            self.home.file(name, size)

    ABOUT_LAB = ["SLAB.bin, 200 KB, ~/go/SLAB.bin", "laboratory, 120 KB, ~/development/laboratory",
                 "lab.txt, 40.0 KB, ~/development/laboratory/lab.txt"]

    def testFewerThanTwoLettersFindNothing(self):
        quillbrook = self.search()
        quillbrook.says("Type at least two characters.")
        self.type("a")
        quillbrook.says("Type at least two characters.")
        self.assertEqual(self.rowNames(), [])
        self.type("a.")
        self.becomes(self.rowNames, ["a.txt, 4.0 KB, ~/a.txt"])

    def testFilesAndFoldersAreFoundInAnyLetterCaseLargestFirst(self):
        self.search("lab")
        for text in ("lab", "LAB", "lAb"):
            with self.subTest(text):
                self.type(text)
                self.becomes(self.rowNames, self.ABOUT_LAB)

    def testWhatNothingIsCalledFindsNothing(self):
        quillbrook = self.search("labx")
        quillbrook.says("No files found.")
        self.assertEqual(self.rowNames(), [])
        desktop.keys("BackSpace")
        self.becomes(self.rowNames, self.ABOUT_LAB)

    def testTheWholeHomeIsSearchedWhateverTheMapShows(self):
        quillbrook = self.search("lab")
        quillbrook.open_pane("2", "What's using space")
        quillbrook.window().one("list", "What's using space").one("list item", "go, 200 KB").act("Press")
        quillbrook.says("go")
        quillbrook.open_pane("4", "Find a file")
        self.becomes(self.rowNames, self.ABOUT_LAB)

    def testWhatWasTypedIsStillThereAfterAnotherScreenAndARescan(self):
        quillbrook = self.search("lab")
        quillbrook.open_pane("3", "Biggest files")
        self.becomes(lambda: len(self.rowNames()), 4)
        self.home.file("go/lab.iso", 400 * KB)
        quillbrook.press("Rescan")
        self.becomes(lambda: len(self.rowNames()), 5)
        quillbrook.open_pane("4", "Find a file")
        self.becomes(self.rowNames, ["lab.iso, 400 KB, ~/go/lab.iso", "SLAB.bin, 200 KB, ~/go/SLAB.bin",
                                     *self.ABOUT_LAB[1:]])

    def testAFoundFolderOpensOnTheMap(self):
        quillbrook = self.search("labor")
        self.row("development/laboratory").act("Press")
        self.becomes(self.bar, ["laboratory", "120 KB", "~/development/laboratory", "· 2 items", "Open",
                                "Show in Finder", "Move to Trash", "Delete permanently", "Clear selection"])
        quillbrook.press("Open")
        quillbrook.selected("What's using space")
        tiles = quillbrook.window().one("list", "What's using space")
        self.becomes(lambda: sorted(tile.name for tile in tiles.all("list item")), ["lab.txt, 40.0 KB", "other.bin, 80.0 KB"])

    def testAFoundFileIsShownByTheFileManager(self):
        manager = self.fileManager()
        self.search("slab")
        self.row("go/SLAB.bin").one("push button", "Show").act("Press")
        self.assertEqual(manager.shown(1), [("ShowItems", [self.uri("go/SLAB.bin")])])
