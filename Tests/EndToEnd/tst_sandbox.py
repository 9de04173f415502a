"""In a sandbox: the gate, the folder that a person hands over through the desktop's portal, and what is kept of it."""


import accessibility
import case
import desktop
import made_home
import portal
import waiting

GATE = "Quillbrook needs to see your files to measure them"
PROMISE = ("It reads names, sizes and dates — never the contents of a file. Choose your home folder and it will not ask "
           "again.")
CHOOSE = "Choose my home folder…"
WRONG = "That is not this Mac's startup disk"
KEPT = "Quillbrook.homeBookmark"


class Sandbox(case.Case):
    def setUp(self):
        super().setUp()
        made_home.fill(self.home)
        # What a strictly confined Snap has for its home.
        self.inside = self.folder / "snap"
        self.inside.mkdir()
        self.portal = portal.Portal(self.folder)
        self.addCleanup(self.portal.stop)

    def confined(self):
        return self.start(SNAP="/snap/quillbrook/1", SNAP_NAME="quillbrook", SNAP_USER_DATA=str(self.inside),
                          HOME=str(self.inside))

    def granted(self, folder=None):
        """With a folder handed over, and measured."""
        quillbrook = self.confined()
        quillbrook.says(GATE)
        self.portal.person_picks(folder or self.home.path)
        quillbrook.press(CHOOSE)
        quillbrook.scanned()
        return quillbrook

    @staticmethod
    def filled(folder):
        """Another folder to hand over, with one file in it."""
        (folder / "go").mkdir(parents=True)
        (folder / "go" / "module.zip").write_bytes(bytes(200_000))
        return folder

    def end(self, quillbrook):
        self.assertTrue(quillbrook.quit())

    def assertGated(self, quillbrook):
        quillbrook.says(GATE)
        words = quillbrook.words()
        self.assertIn(CHOOSE, words)
        self.assertFalse([text for text in words if text.startswith("scanned ")])

    def testOutsideASandboxThereIsNoGate(self):
        quillbrook = self.start()
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
        self.assertNotIn(GATE, quillbrook.words())
        self.assertNotIn("Change", quillbrook.words())
        self.assertEqual(self.portal.asked(), [])

    def testTheGateStandsBeforeEverythingAndMeasuresNothing(self):
        quillbrook = self.confined()
        quillbrook.says(PROMISE)
        quillbrook.says("not chosen")
        self.assertGated(quillbrook)
        quillbrook.press("Rescan")
        quillbrook.activate()
        desktop.keys("ctrl+2")
        quillbrook.selected("What's using space")
        with self.assertRaises(waiting.Late):
            quillbrook.scanned(1)
        self.assertGated(quillbrook)
        self.assertEqual(self.portal.asked(), [])

    def testTheFolderThatIsPickedIsMeasured(self):
        quillbrook = self.confined()
        quillbrook.says(GATE)
        self.portal.person_picks(self.home.path)
        quillbrook.press(CHOOSE)
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
        self.assertNotIn(GATE, quillbrook.words())
        _, title, options = self.portal.wait_for()[0]
        self.assertEqual(title, f"Select the folder named “{self.home.path.name}” — that is your home folder, on this Mac's "
                                "startup disk.")
        self.assertTrue(options["directory"])
        self.assertFalse(options.get("multiple", False))
        self.assertEqual(options["accept_label"], "Allow")
        quillbrook.says(str(self.home.path))
        self.assertNotIn(WRONG, quillbrook.words())

    def testCancellingKeepsTheGateAndTheNextAnswerCounts(self):
        quillbrook = self.confined()
        quillbrook.says(GATE)
        quillbrook.press(CHOOSE)
        self.portal.wait_for()
        self.assertGated(quillbrook)
        self.assertFalse(self.home.settings.exists() and KEPT in self.home.settings.read_text(encoding="utf-8"))
        self.portal.person_picks(self.home.path)
        quillbrook.press(CHOOSE)
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)

    def testTheNextStartAsksNoMore(self):
        self.end(self.granted())
        for _ in range(2):
            quillbrook = self.confined()
            self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
            self.assertNotIn(GATE, quillbrook.words())
            self.end(quillbrook)
        self.assertEqual(len(self.portal.asked()), 1)

    def testAFolderThatIsGoneBringsTheGateBackUntilItIsThereAgain(self):
        away = self.home.path.with_name("away")
        self.end(self.granted())
        self.home.path.rename(away)
        quillbrook = self.confined()
        self.assertGated(quillbrook)
        self.end(quillbrook)
        away.rename(self.home.path)
        self.assertEqual(self.confined().scanned()[0], made_home.FILE_COUNT)

    def testAFolderOnAnotherDiskIsMeasuredAndWarnedOf(self):
        other = self.filled(self.folder / "drive" / "ann")
        quillbrook = self.granted(other)
        self.assertEqual(quillbrook.scanned()[0], 1)
        quillbrook.says(WRONG)
        quillbrook.says("Freeing space there will not help a full internal disk.")
        quillbrook.says(str(other))

    def testChangeHandsOverAnotherFolder(self):
        quillbrook = self.granted()
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)
        other = self.filled(self.home.path.with_name("ben"))
        self.portal.person_picks(other)
        quillbrook.press("Change")
        quillbrook.says(str(other))
        self.becomes(lambda: quillbrook.scanned()[0], 1)
        self.end(quillbrook)
        self.assertEqual(self.confined().scanned()[0], 1)

    def testChangeAndCancelBringsTheGate(self):
        quillbrook = self.granted()
        self.portal.person_cancels()
        quillbrook.press("Change")
        self.portal.wait_for(count=2)
        quillbrook.says(GATE)
        self.end(quillbrook)
        self.assertGated(self.confined())

    def testWithoutAPortalTheProgramAsksByItself(self):
        self.portal.stop()
        quillbrook = self.confined()
        quillbrook.says(GATE)
        # By the keyboard: the press lasts until the person has answered.
        quillbrook.activate()
        button = quillbrook.window().one("push button", CHOOSE)
        quillbrook.tab_to(lambda: button.has(accessibility.FOCUSED))
        window = quillbrook.window_id()
        desktop.keys("space")
        asking = waiting.until("a window that asks", lambda: [other for other in desktop.windows_of(quillbrook.pid)
                                                              if other != window])
        desktop.activate(lambda: asking[0])
        desktop.keys("Escape")
        self.becomes(lambda: desktop.windows_of(quillbrook.pid), [window])
        self.assertGated(quillbrook)

    def testNothingIsWrittenOutsideTheFoldersOfTheProgram(self):
        def names(folder):
            return sorted(str(path.relative_to(folder)) for path in folder.rglob("*"))
        before = names(self.home.path)
        self.granted()
        self.assertEqual(names(self.home.path), before)
