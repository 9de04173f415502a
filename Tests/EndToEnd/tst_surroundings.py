"""A home, settings and a desktop that are not as they should be."""

import os
import unittest

import case
import homes
import made_home

EXPECTED_FILES = "Quillbrook.lastFileCount"
KB = 1024


class Surroundings(case.Case):
    def map(self, quillbrook):
        """What the map shows, once it is on the screen."""
        quillbrook.open_pane("2", "What's using space")
        return sorted(quillbrook.window().one("list", "What's using space").names("list item"))

    def testTheNumberOfFilesIsRememberedForTheNextProgress(self):
        made_home.fill(self.home)
        self.start().scanned()
        self.home.wait_for_setting(EXPECTED_FILES, str(made_home.FILE_COUNT))

    def testDamagedSettingsAreDefaults(self):
        made_home.fill(self.home)
        self.home.settings.parent.mkdir()
        for damage in (b"\x00\xff\xfe[[[[\n=\n%", b"[General]\nQuillbrook.lastFileCount=many\n", b"@Invalid()" * 1000):
            with self.subTest(damage[:20]):
                self.home.settings.write_bytes(damage)
                quillbrook = self.start()
                self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
                self.assertTrue(quillbrook.quit())

    def testSettingsThatCannotBeWrittenDisturbNothing(self):
        made_home.fill(self.home)
        # A file where the folder should be.
        self.home.settings.parent.write_text("")
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
        quillbrook.press("Rescan")
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)

    @unittest.skipIf(os.getuid() == 0, "root may read everything")
    def testSettingsThatCannotBeReadAreDefaults(self):
        made_home.fill(self.home)
        self.home.settings.parent.mkdir()
        self.home.settings.write_text(f"[General]\n{EXPECTED_FILES}=5\n", encoding="utf-8")
        self.home.settings.chmod(0)
        self.assertEqual(self.start().scanned()[0], made_home.FILE_COUNT)

    @unittest.skipIf(os.getuid() == 0, "root may read everything")
    def testAHomeThatCannotBeReadIsAnEmptyScan(self):
        made_home.fill(self.home)
        self.home.path.chmod(0)
        self.addCleanup(self.home.path.chmod, 0o755)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 0)
        quillbrook.open_pane("3", "Biggest files")
        quillbrook.says("No files found.")
        self.home.path.chmod(0o755)
        quillbrook.press("Rescan")
        self.becomes(lambda: quillbrook.scanned()[0], made_home.FILE_COUNT)

    @unittest.skipIf(os.getuid() == 0, "root may read everything")
    def testAFolderThatCannotBeReadIsLeftOut(self):
        made_home.fill(self.home)
        closed = self.home.path / "go"
        closed.chmod(0)
        self.addCleanup(closed.chmod, 0o755)
        # The two names of one file lie in there.
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT - 2)
        quillbrook.says("1 folder could not be opened")

    def testAHomeThatDoesNotExistIsAnEmptyScan(self):
        self.home.path.rmdir()
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 0)
        self.assertEqual(self.map(quillbrook), [])
        self.home.file("go/module.zip", 200 * KB)
        quillbrook.press("Rescan")
        self.becomes(lambda: self.map(quillbrook), ["go, 200 KB", "module.zip, 200 KB"])

    def testAnEmptyHomeHasAMapWithoutTilesAndListsWithoutRows(self):
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 0)
        self.assertEqual(self.map(quillbrook), [])
        quillbrook.press(str(self.home.path))
        quillbrook.open_pane("3", "Biggest files")
        quillbrook.says("No files found.")
        quillbrook.open_pane("4", "Find a file")
        quillbrook.search("anything")
        quillbrook.says("No files found.")

    def testAHomeThatIsAFileIsAnEmptyScan(self):
        self.home.path.rmdir()
        self.home.path.write_text("not a folder")
        self.assertEqual(self.start().scanned()[0], 0)

    def testAHomeBehindALinkIsMeasured(self):
        self.home.file("go/module.zip", 200 * KB)
        real = self.home.path.with_name("elsewhere")
        self.home.path.rename(real)
        self.home.path.symlink_to(real)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 1)
        self.becomes(lambda: self.map(quillbrook), ["go, 200 KB", "module.zip, 200 KB"])
        quillbrook.says(str(self.home.path))

    def testAHomeThatIsALinkToItselfIsAnEmptyScan(self):
        self.home.path.rmdir()
        self.home.path.symlink_to(self.home.path)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 0)
        self.assertEqual(self.map(quillbrook), [])

    def testTheAccountsHomeIsMeasuredWhateverTheEnvironmentSays(self):
        self.home.file("go/module.zip", 200 * KB)
        other = homes.Home(self.folder / "other", "bob")
        other.file("development/large.bin", 400 * KB)
        other.file("development/small.bin", 40 * KB)
        quillbrook = self.start(HOME=str(other.path))
        self.assertEqual(quillbrook.scanned()[0], 1)
        self.becomes(lambda: self.map(quillbrook), ["go, 200 KB", "module.zip, 200 KB"])
        quillbrook.says(str(self.home.path))
        quillbrook.open_pane("3", "Biggest files")
        self.becomes(lambda: quillbrook.rows("Biggest files"), ["module.zip, 200 KB, ~/go/module.zip"])

    def testWithoutAnAccountTheEnvironmentNamesTheHome(self):
        self.home.file("go/module.zip", 200 * KB)
        nobody = self.folder / "nobody"
        nobody.write_text("someone:x:4242:4242:Another user:/nowhere:/bin/sh\n", encoding="utf-8")
        quillbrook = self.start(NSS_WRAPPER_PASSWD=str(nobody))
        self.assertEqual(quillbrook.scanned()[0], 1)
        self.becomes(lambda: self.map(quillbrook), ["go, 200 KB", "module.zip, 200 KB"])

    def testAHomeWithAnOddNameIsMeasured(self):
        home = self.home = homes.Home(self.folder / "odd", "Änn, 100% \"two\"")
        home.file("go/module.zip", 200 * KB)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 1)
        self.becomes(lambda: self.map(quillbrook), ["go, 200 KB", "module.zip, 200 KB"])
        quillbrook.says(str(home.path))

    def testAHomeWhoseNameIsNotTextIsMeasuredAndCleared(self):
        home = self.home = homes.Home(self.folder / "raw", "jos\udce9")
        package = home.file(".npm/_cacache/package", 200 * KB)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 1)
        quillbrook.says("free")
        quillbrook.says("200 KB selected")
        quillbrook.press("Move to Trash")
        quillbrook.press("Move 1 items to Trash")
        self.becomes(package.exists, False)
        self.assertTrue(package.parent.exists())
        quillbrook.says("0 B selected")

    def testWithoutASessionBusTheProgramScans(self):
        made_home.fill(self.home)
        quillbrook = self.start(DBUS_SESSION_BUS_ADDRESS=f"unix:path={self.folder}/no-bus")
        # Without that bus the window can't be read either; its picture and its memory can.
        quillbrook.window_id()
        self.home.wait_for_setting(EXPECTED_FILES, str(made_home.FILE_COUNT))
