"""A home, settings and a desktop that are not as they should be."""

import os
import unittest

import case
import made_home

EXPECTED_FILES = "Quillbrook.lastFileCount"


class Surroundings(case.Case):
    def testTheNumberOfFilesIsRememberedForTheNextProgress(self):
        made_home.fill(self.home)
        self.start().scanned()
        self.assertIn(f"{EXPECTED_FILES}={made_home.FILE_COUNT}\n", self.home.settings.read_text(encoding="utf-8"))

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
    def testAHomeThatCannotBeReadIsAnEmptyScan(self):
        made_home.fill(self.home)
        self.home.path.chmod(0)
        self.addCleanup(self.home.path.chmod, 0o755)
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 0)

    @unittest.skipIf(os.getuid() == 0, "root may read everything")
    def testAFolderThatCannotBeReadIsLeftOut(self):
        made_home.fill(self.home)
        closed = self.home.path / "go"
        closed.chmod(0)
        self.addCleanup(closed.chmod, 0o755)
        # The two names of one file lie in there.
        self.assertEqual(self.start().scanned()[0], made_home.FILE_COUNT - 2)

    def testAHomeThatDoesNotExistIsAnEmptyScan(self):
        self.home.path.rmdir()
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], 0)

    def testAHomeThatIsAFileIsAnEmptyScan(self):
        self.home.path.rmdir()
        self.home.path.write_text("not a folder")
        self.assertEqual(self.start().scanned()[0], 0)

    def testAHomeBehindALinkIsMeasured(self):
        made_home.fill(self.home)
        real = self.home.path.with_name("elsewhere")
        self.home.path.rename(real)
        self.home.path.symlink_to(real)
        self.assertEqual(self.start().scanned()[0], made_home.FILE_COUNT)

    def testWithoutASessionBusTheProgramScans(self):
        made_home.fill(self.home)
        quillbrook = self.start(DBUS_SESSION_BUS_ADDRESS=f"unix:path={self.folder}/no-bus")
        # Without that bus the window can't be read either; its picture and its memory can.
        quillbrook.window_id()
        self.home.wait_for_setting(EXPECTED_FILES, str(made_home.FILE_COUNT))
