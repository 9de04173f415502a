"""The map: every folder and file by name and exact size, the way down and back by mouse and keyboard, and the bar of
what is selected."""

import os

import accessibility
import case
import desktop
import file_manager
import homes

KB = 1024
FILES = {
    "development/atlas/scene.glb": 400 * KB,
    "development/atlas/notes.pdf": 120 * KB,
    "development/readme.txt": 40 * KB,
    "go/module.zip": 200 * KB,
    ".cache/wheel.whl": 100 * KB,
    "report.pdf": 64 * KB,
}
FOLDERS = ("development", "development/atlas", "go", ".cache")
# In the list of screens, over the map, and what the map itself is called.
MAP = "What's using space"


class Map(case.Case):
    def open(self):
        """The program with a first scan behind it, the map on its screen, and the keyboard in its window."""
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.open_pane("2", MAP)
        return self.quillbrook

    def openOnFiles(self):
        for name, size in FILES.items():
            self.home.file(name, size)
        return self.open()

    def map(self):
        return self.quillbrook.window().one("list", MAP)

    def tiles(self):
        return self.map().all("list item")

    def tileNames(self):
        return sorted(self.map().names("list item"))

    def tile(self, name):
        return self.map().one("list item", self.labelled(name))

    def labelled(self, name):
        """A tile's words, from what the disk says the file or folder takes."""
        return f"{os.path.basename(name)}, {homes.in_words(self.home.allocated(name))}"

    def crumbs(self):
        return self.quillbrook.window().one("list", "Folders above").names("push button")

    def bar(self):
        """The names of what is selected: one, or none."""
        return [panel.name for panel in self.quillbrook.window().all("panel") if panel.name]

    def barWords(self):
        """What the bar says and offers, in reading order."""
        return [name for panel in self.quillbrook.window().all("panel") if panel.name for name in panel.names()[1:]]

    def focused(self):
        return [tile.name for tile in self.tiles() if tile.has(accessibility.FOCUSED)]

    def focusedCrumbs(self):
        crumbs = self.quillbrook.window().one("list", "Folders above").all("push button")
        return [crumb.name for crumb in crumbs if crumb.has(accessibility.FOCUSED)]

    def titleOf(self, folder):
        """A point on a top folder's tile that none of its contents covers."""
        x, y, _, _ = self.tile(folder).extents
        return x + 30, y + 7

    def testEveryFolderAndFileIsToldByNameAndExactSize(self):
        self.openOnFiles()
        for name, size in FILES.items():
            self.assertEqual(self.home.allocated(name), size, "this disk stores in other steps than the test takes")
        self.becomes(self.tileNames, sorted([
            "development, 560 KB", "atlas, 520 KB", "scene.glb, 400 KB", "notes.pdf, 120 KB", "readme.txt, 40.0 KB",
            "go, 200 KB", "module.zip, 200 KB", ".cache, 100 KB", "wheel.whl, 100 KB", "report.pdf, 64.0 KB"]))
        self.becomes(lambda: sorted(tile.description for tile in self.tiles()),
                     sorted(str(self.home.path / name) for name in [*FILES, *FOLDERS]))

    def testATileIsAsLargeAsItsShare(self):
        self.openOnFiles()
        top = ("development", "go", ".cache", "report.pdf")
        total = sum(FILES.values())
        _, _, map_width, map_height = self.map().extents
        for name in top:
            _, _, width, height = self.tile(name).extents
            with self.subTest(name):
                # Whole pixels are told, up to one more a side than there are.
                self.assertAlmostEqual(width * height / (map_width * map_height), self.home.allocated(name) / total,
                                       delta=2 * (width + height) / (map_width * map_height))

    def testALinkCountsOnceAndAHoleNothing(self):
        self.home.file("go/module.zip", 200 * KB)
        self.home.link("go/module.zip", "go/module-again.zip")
        self.home.sparse("go/disk.img", 50_000 * KB)
        os.symlink("..", self.home.path / "go" / "up")
        self.home.file("Documents/private.txt", 300 * KB)
        self.open()
        names = self.becomes(lambda: [name for name in self.tileNames() if not name.startswith("module")], ["go, 200 KB"])
        self.assertEqual(names, ["go, 200 KB"])
        # Which of its two names carries the file is for the scan to choose.
        self.assertEqual(len(self.tileNames()), 2)
        self.assertIn(self.tileNames()[1], ("module.zip, 200 KB", "module-again.zip, 200 KB"))

    def testADoubleClickGoesIntoAFolderAndTheBreadcrumbBack(self):
        quillbrook = self.openOnFiles()
        home = str(self.home.path)
        self.becomes(self.crumbs, [home])
        desktop.click(*self.titleOf("development"), times=2)
        self.becomes(self.crumbs, [home, "development"])
        inside = ["atlas, 520 KB", "notes.pdf, 120 KB", "readme.txt, 40.0 KB", "scene.glb, 400 KB"]
        self.becomes(self.tileNames, inside)
        self.assertEqual(self.bar(), [])
        desktop.click(*self.titleOf("development/atlas"), times=2)
        self.becomes(self.crumbs, [home, "development", "atlas"])
        self.becomes(self.tileNames, ["notes.pdf, 120 KB", "scene.glb, 400 KB"])
        quillbrook.press("development")
        self.becomes(self.crumbs, [home, "development"])
        self.becomes(self.tileNames, inside)
        crumb = quillbrook.window().one("push button", home)
        desktop.click(*crumb.centre)
        self.becomes(self.crumbs, [home])
        self.becomes(lambda: len(self.tileNames()), len(FILES) + len(FOLDERS))

    def testADoubleClickOnAFileSelectsItAndStaysWhereItIs(self):
        self.openOnFiles()
        desktop.click(*self.tile("go/module.zip").centre, times=2)
        self.becomes(self.bar, ["module.zip"])
        self.assertEqual(self.crumbs(), [str(self.home.path)])

    def testTheKeyboardWalksFromTileToTileAndDownAndUp(self):
        # One folder, in it one file on the left and a smaller one on the right.
        self.home.file("development/large.bin", 768 * KB)
        self.home.file("development/small.bin", 256 * KB)
        quillbrook = self.open()
        folder, large, small = "development, 1.0 MB", "large.bin, 768 KB", "small.bin, 256 KB"
        self.becomes(self.tileNames, sorted([folder, large, small]))
        quillbrook.tab_to(lambda: self.focused() == [folder])
        for key, expected in (("Down", large), ("Right", small), ("Left", large), ("Up", folder), ("Up", folder),
                              ("Down", large)):
            desktop.keys(key)
            self.becomes(self.focused, [expected])
        desktop.keys("Return")
        self.becomes(self.bar, ["large.bin"])
        desktop.keys("Right", "space")
        self.becomes(self.bar, ["small.bin"])
        desktop.keys("Up")
        self.becomes(self.focused, [folder])
        desktop.keys("Return")
        self.becomes(self.crumbs, [str(self.home.path), "development"])
        self.becomes(self.tileNames, [large, small])
        self.assertEqual(self.bar(), [])
        desktop.keys("BackSpace")
        self.becomes(self.crumbs, [str(self.home.path)])
        # It stands on the folder it came out of.
        self.becomes(self.focused, [folder])

    def testTheBreadcrumbIsWalkedInReadingOrderAndGoesBack(self):
        quillbrook = self.openOnFiles()
        self.tile("development").act("Press")
        self.becomes(self.crumbs, [str(self.home.path), "development"])
        self.tile("development/atlas").act("Press")
        way = [str(self.home.path), "development", "atlas"]
        self.becomes(self.crumbs, way)
        quillbrook.tab_to(lambda: self.focusedCrumbs() == way[:1])
        for crumb in way[1:]:
            desktop.keys("Tab")
            self.becomes(self.focusedCrumbs, [crumb])
        desktop.keys("shift+Tab")
        self.becomes(self.focusedCrumbs, ["development"])
        desktop.keys("Return")
        self.becomes(self.crumbs, way[:2])

    def testAScreenReaderPressesATile(self):
        self.openOnFiles()
        self.tile("development").act("Press")
        self.becomes(self.crumbs, [str(self.home.path), "development"])
        self.tile("development/readme.txt").act("Press")
        self.becomes(self.bar, ["readme.txt"])

    def testASelectedFileTellsItsSizeAndPathAndIsShownByTheFileManager(self):
        manager = self.fileManager()
        quillbrook = self.openOnFiles()
        desktop.click(*self.tile("development/atlas/scene.glb").centre)
        self.becomes(self.barWords, ["scene.glb", "400 KB", "~/development/atlas/scene.glb", "Show in Finder",
                                     "Move to Trash", "Delete permanently", "Clear selection"])
        # Also the first selection of all has room for its words.
        for part in quillbrook.window().one("panel", "scene.glb").all("label"):
            _, _, width, height = part.extents
            self.assertGreater(width, 2 * height, part)
        quillbrook.press("Show in Finder")
        path = self.home.path / "development/atlas/scene.glb"
        self.assertEqual(manager.shown(1), [("ShowItems", [path.as_uri()])])
        desktop.click(*quillbrook.window().one("push button", "Clear selection").centre)
        self.becomes(self.bar, [])

    def testASelectedFolderTellsHowManyThingsAreInItAndOpens(self):
        manager = self.fileManager()
        quillbrook = self.openOnFiles()
        desktop.click(*self.titleOf("development"))
        # A folder, two files in it, and a file beside it.
        self.becomes(self.barWords, ["development", "560 KB", "~/development", "· 4 items", "Open", "Show in Finder",
                                     "Move to Trash", "Delete permanently", "Clear selection"])
        quillbrook.press("Show in Finder")
        self.assertEqual(manager.shown(1), [("ShowItems", [(self.home.path / "development").as_uri()])])
        quillbrook.press("Open")
        self.becomes(self.crumbs, [str(self.home.path), "development"])
        self.becomes(self.bar, [])

    def testTheSelectionIsClearedFromTheKeyboard(self):
        quillbrook = self.openOnFiles()
        desktop.click(*self.tile("report.pdf").centre)
        self.becomes(self.bar, ["report.pdf"])
        quillbrook.window().one("push button", "Clear selection").focus()
        desktop.keys("Return")
        self.becomes(self.bar, [])
        # The keyboard is on the map again.
        desktop.keys("space")
        self.becomes(lambda: len(self.bar()), 1)

    def testThingsAreCountedUpToFiveThousand(self):
        for folder, count in (("development/few", 4999), ("development/many", 5000), ("development/one", 1)):
            self.home.file(f"{folder}/0000.bin", 200 * KB)
            # What is hidden does not count.
            self.home.file(f"{folder}/.hidden/file", 0)
            for index in range(1, count):
                os.close(os.open(self.home.path / folder / f"{index:04}", os.O_CREAT | os.O_WRONLY, 0o600))
        self.open()
        self.tile("development").act("Press")
        for name, expected in (("few", ["· 4,999 items"]), ("many", ["· over 5,000 items"]), ("one", [])):
            with self.subTest(name):
                self.tile(f"development/{name}").act("SetFocus")
                desktop.keys("space")
                self.becomes(self.bar, [name])
                self.becomes(lambda: [text for text in self.barWords() if text.startswith("·")], expected)

    def testWhatLiesUnderThePointerIsNamed(self):
        quillbrook = self.openOnFiles()
        desktop.point(*self.tile("go/module.zip").centre)
        quillbrook.says("~/go/module.zip")
        self.assertIn("200 KB", quillbrook.words())
        desktop.point(*self.tile("development/atlas/scene.glb").centre)
        quillbrook.says("~/development/atlas/scene.glb")
        self.assertNotIn("~/go/module.zip", quillbrook.words())

    def testARescanShowsTheWholeMapAnewWithTheNewSizes(self):
        quillbrook = self.openOnFiles()
        desktop.click(*self.titleOf("development"), times=2)
        self.becomes(self.crumbs, [str(self.home.path), "development"])
        desktop.click(*self.tile("development/readme.txt").centre)
        self.becomes(self.bar, ["readme.txt"])
        self.home.file("development/added.bin", 80 * KB)
        self.home.file("go/module.zip", 300 * KB)
        (self.home.path / ".cache/wheel.whl").unlink()
        quillbrook.press("Rescan")
        self.becomes(self.crumbs, [str(self.home.path)])
        self.becomes(self.tileNames, sorted([
            "development, 640 KB", "atlas, 520 KB", "scene.glb, 400 KB", "notes.pdf, 120 KB", "readme.txt, 40.0 KB",
            "added.bin, 80.0 KB", "go, 300 KB", "module.zip, 300 KB", "report.pdf, 64.0 KB"]))
        self.assertEqual(self.bar(), [])

    def fileManager(self):
        manager = file_manager.FileManager(self.folder)
        self.addCleanup(manager.stop)
        return manager
