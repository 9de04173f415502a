"""The life in the tray: the window goes, the program stays, and its item leads back."""


import accessibility
import desktop
import in_tray
import made_home
import waiting
from in_tray import LAST_CHECKED, LOGIN, MB, PLACE, SIZE, TELL, WATCH

TOOLS = ".cache/pip"
OFFER = ("It checks every half hour and tells you before the disk fills up. It never removes anything on its own, and it "
         "only runs while Quillbrook is in the menu bar.")


class Background(in_tray.InTray):
    def setUp(self):
        super().setUp()
        made_home.fill(self.home)

    def started(self, **environment):
        """With its window closed, after its first scan."""
        quillbrook = self.start(**environment)
        quillbrook.scanned()
        quillbrook.close_window()
        self.assertTrue(quillbrook.running)
        return quillbrook

    def comes_back(self, quillbrook):
        quillbrook.window_id()
        self.assertEqual(len(quillbrook.window_ids()), 1)
        self.assertEqual(quillbrook.scanned()[0], made_home.FILE_COUNT)

    # The window

    def testClosingTheWindowLeavesTheProgramInTheTray(self):
        tray = self.tray()
        quillbrook = self.started()
        self.assertEqual(tray.item().pid, quillbrook.pid)
        self.assertEqual(desktop.windows_of(quillbrook.pid), [])

    def testOpenBringsTheWindowBack(self):
        tray = self.tray()
        quillbrook = self.started()
        for _ in range(2):
            self.open_panel(quillbrook, tray)
            self.press(quillbrook, "Open")
            self.comes_back(quillbrook)
            quillbrook.close_window()

    def testOpenBringsAnOpenWindowToTheFrontAndMakesNoSecond(self):
        tray = self.tray()
        quillbrook = self.start()
        quillbrook.scanned()
        window = quillbrook.window_id()
        desktop.minimise(window)
        waiting.until("the window put away", lambda: not quillbrook.window_ids())
        tray.item().choose("Open")
        self.becomes(quillbrook.window_ids, [window])

    def testWithoutATrayAnotherStartBringsTheWindowBack(self):
        quillbrook = self.started()
        again = self.start()
        self.assertEqual(again.exited(), 0)
        self.comes_back(quillbrook)
        self.assertTrue(quillbrook.running)

    def testAnotherStartWhileTheWindowIsOpenMakesNoSecond(self):
        self.tray()
        quillbrook = self.start()
        quillbrook.scanned()
        for _ in range(2):
            self.assertEqual(self.start().exited(), 0)
        self.assertEqual(len(quillbrook.window_ids()), 1)

    def testTheEndOfTheSessionEndsItInTheTray(self):
        self.tray()
        quillbrook = self.started()
        self.assertTrue(quillbrook.quit())
        self.assertFalse(quillbrook.crashed())

    # The item

    def testTheItemTellsHowMuchIsFree(self):
        item = self.itemOf(self.started)
        title = item.get("Title")
        self.assertRegex(title, f"^Quillbrook.*{SIZE} free")
        self.assertRegex(item.get("XAyatanaLabel"), f"^{SIZE}$")
        self.assertRegex(" ".join(item.tooltip), f"{SIZE} free")
        self.assertEqual(item.get("Status"), "Active")
        self.assertFalse(item.get("ItemIsMenu"))

    def itemOf(self, start):
        tray = self.tray()
        start()
        return tray.item()

    def testTheItemHasAPictureInItsSizes(self):
        pictures = self.itemOf(self.start).pictures
        self.assertTrue(pictures)
        for width, height, pixels in pictures:
            with self.subTest(width):
                self.assertEqual(width, height)
                self.assertEqual(len(pixels), width * height)
                # A disk: nothing in the corners, something in the middle, and a level in it.
                self.assertEqual({pixels[place][0] for place in (0, width - 1, -width, -1)}, {0})
                self.assertEqual(pixels[len(pixels) // 2 + width // 2][0], 255)
                self.assertGreater(len({pixel for pixel in pixels if pixel[0] == 255}), 2)

    def testTheMenuOpensChecksAndQuits(self):
        tray = self.tray()
        quillbrook = self.started()
        entries = tray.item().menu()
        self.assertRegex(entries[0][0], f"^{SIZE} free$")
        self.assertFalse(entries[0][1])
        self.assertEqual([label for label, enabled in entries if label and enabled], ["Open", "Check now", "Quit"])
        tray.item().choose("Open")
        self.comes_back(quillbrook)
        quillbrook.close_window()
        tray.item().choose("Quit")
        self.assertEqual(quillbrook.exited(), 0)

    def testATrayThatComesUpAfterTheProgramGetsItsItem(self):
        quillbrook = self.started()
        tray = self.tray()
        self.open_panel(quillbrook, tray)
        quillbrook.panel_says("free")

    def testAPanelThatComesUpAfterItsListGetsTheItem(self):
        tray = self.tray(shows_items=False)
        quillbrook = self.started()
        tray.come_up()
        self.open_panel(quillbrook, tray)
        quillbrook.panel_says("free")

    def testATrayThatStartsAnewGetsTheItemAgain(self):
        tray = self.tray()
        quillbrook = self.started()
        tray.item()
        for _ in range(2):
            tray.stop()
            tray = self.tray()
            self.assertEqual(tray.item().pid, quillbrook.pid)
        self.open_panel(quillbrook, tray)

    def testInAnOlderTrayAClickOnTheIconOpensThePanel(self):
        tray = self.system_tray()
        quillbrook = self.started()
        x, y, width, height = tray.icon(quillbrook.pid)
        panel = quillbrook.open_panel(lambda: desktop.click(x + width // 2, y + height // 2))
        quillbrook.panel_says("free")
        self.assertNear(panel, (x + width // 2, y + height // 2))

    def testAnOlderTrayThatComesUpAfterTheProgramGetsTheIcon(self):
        quillbrook = self.started()
        tray = self.system_tray()
        tray.icon(quillbrook.pid)

    def testWhereBothKindsOfTrayAreTheNewerHasTheItem(self):
        older = self.system_tray()
        quillbrook = self.started()
        older.icon(quillbrook.pid)
        newer = self.tray()
        self.assertEqual(newer.item().pid, quillbrook.pid)
        waiting.until("no icon in the older tray", lambda: not older.icons(quillbrook.pid))
        newer.stop()
        older.icon(quillbrook.pid)

    # The panel

    def assertNear(self, panel, place):
        """Whole on the screen, and no further from the place than the place is from the screen's edge."""
        left, top, width, height = self.becomesStill(lambda: panel.extents)
        screen_width, screen_height = 1280, 900
        self.assertGreaterEqual(left, 0)
        self.assertGreaterEqual(top, 0)
        self.assertLessEqual(left + width, screen_width)
        self.assertLessEqual(top + height, screen_height)
        x, y = place
        away = max(left - x, x - (left + width), 0) + max(top - y, y - (top + height), 0)
        self.assertLessEqual(away, 48, f"the panel at {(left, top, width, height)} is far from {place}")

    def becomesStill(self, question):
        """The answer, once it is the same twice."""
        answers = []

        def look():
            answers.append(question())
            return len(answers) > 1 and answers[-1] == answers[-2]
        waiting.until("the same answer twice", look, pause=0.2)
        return answers[-1]

    def testThePanelDropsFromWhereTheItemWasPressed(self):
        tray = self.tray()
        quillbrook = self.started()
        for place in (PLACE, (20, 10), (1270, 890), (10, 890), (640, 450)):
            with self.subTest(place):
                self.assertNear(self.open_panel(quillbrook, tray, place), place)
                quillbrook.close_panel()

    def testThePanelTellsTheDiskAtAGlance(self):
        tray = self.tray()
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        self.becomes(lambda: self.free(quillbrook) == tray.item().get("XAyatanaLabel"), True)
        self.becomes(lambda: self.reclaimable(quillbrook), "2.9 MB can be reclaimed safely")
        quillbrook.panel_says(OFFER)
        self.becomes(lambda: self.switches(quillbrook), [WATCH])
        self.assertEqual(quillbrook.panel().names("push button"), ["Open", "Check now", "Quit"])
        self.assertEqual(quillbrook.panel().one("push button", "Quit").description, "Quit Quillbrook.")

    def testWithNothingToReclaimItSaysSo(self):
        (self.home.path / TOOLS / "wheel.whl").unlink()
        tray = self.tray()
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        quillbrook.panel_says("Nothing safe left to reclaim")

    def testWatchingLooksAtOnceAndTellsOfIt(self):
        self.recorder()
        tray = self.tray()
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        self.home.file(f"{TOOLS}/torch.whl", 40 * MB)
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says(LAST_CHECKED)
        self.becomes(lambda: self.switches(quillbrook), [WATCH, TELL, LOGIN])
        # The look sees what the last scan of the window has not.
        self.becomes(lambda: self.reclaimable(quillbrook), "42.9 MB can be reclaimed safely")
        quillbrook.panel_says("Without this, nothing watches after a restart.")
        self.assertEqual(quillbrook.panel().one("push button", "Quit").description,
                         "Quitting stops Quillbrook watching this Mac.")
        quillbrook.close_panel()
        self.open_panel(quillbrook, tray)
        quillbrook.panel_says("Alerts are on.")
        self.turn(quillbrook, WATCH, False)
        quillbrook.panel_says(OFFER)
        self.becomes(lambda: self.switches(quillbrook), [WATCH])

    def testBeforeTheFirstLookItSaysThatItWillCheck(self):
        for number in range(1000):
            self.home.file(f"development/{number}/file")
        self.recorder()
        tray = self.tray()
        # Each folder takes two readings.
        quillbrook = self.start([self.helper("slow_disk.so")], SLOW_DISK_MILLISECONDS="5")
        quillbrook.scanned(60)
        quillbrook.close_window()
        self.open_panel(quillbrook, tray)
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says("Checking shortly…")
        quillbrook.panel_says(LAST_CHECKED, 60)

    def testWatchingStartsOffAtEachStart(self):
        self.recorder()
        tray = self.tray()
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        self.turn(quillbrook, WATCH)
        self.press(quillbrook, "Quit")
        self.assertEqual(quillbrook.exited(), 0)
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        self.assertFalse(self.is_on(quillbrook, WATCH))

    def testCheckNowLooksAgain(self):
        tray = self.tray()
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        self.becomes(lambda: self.reclaimable(quillbrook), "2.9 MB can be reclaimed safely")
        for count, expected in ((1, "42.9 MB"), (2, "82.9 MB")):
            self.home.file(f"{TOOLS}/{count}.whl", 40 * MB)
            self.press(quillbrook, "Check now")
            self.becomes(lambda: self.reclaimable(quillbrook), f"{expected} can be reclaimed safely")
        self.home.file(f"{TOOLS}/3.whl", 40 * MB)
        tray.item().choose("Check now")
        self.becomes(lambda: self.reclaimable(quillbrook), "123 MB can be reclaimed safely")
        # Switching nothing on.
        self.assertFalse(self.is_on(quillbrook, WATCH))

    def testQuitEndsTheProgram(self):
        tray = self.tray()
        quillbrook = self.started()
        self.open_panel(quillbrook, tray)
        self.press(quillbrook, "Quit")
        self.assertEqual(quillbrook.exited(), 0)
        self.becomes(tray.services, [])

    def testEscapeClosesThePanelAndAnotherPressOpensIt(self):
        tray = self.tray()
        quillbrook = self.started()
        for _ in range(2):
            self.open_panel(quillbrook, tray)
            quillbrook.close_panel()
        self.assertTrue(quillbrook.running)

    def testAnotherPressOnTheItemClosesThePanel(self):
        tray = self.tray()
        quillbrook = self.started()
        for press in (tray.item().activate, tray.item().context_menu):
            quillbrook.open_panel(lambda press=press: press(*PLACE))
            press(*PLACE)
            self.becomes(quillbrook.open_panels, [])

    def testWindowsThatComeAndGoLeaveNothingBehind(self):
        tray = self.tray()
        quillbrook = self.started()
        descriptors = 0
        for time in range(6):
            self.open_panel(quillbrook, tray)
            self.press(quillbrook, "Open")
            self.comes_back(quillbrook)
            self.assertEqual(quillbrook.open_panels(), [])
            quillbrook.close_window()
            # What the first windows leave is kept; after the others all that was opened is closed again.
            if time < 2:
                descriptors = self.becomesStill(quillbrook.descriptor_count)
            waiting.until(f"no more than {descriptors} descriptors",
                          lambda: quillbrook.descriptor_count() <= descriptors)

    def testThePanelGoesWhenAnotherWindowGetsTheKeyboard(self):
        tray = self.tray()
        quillbrook = self.start()
        quillbrook.scanned()
        self.open_panel(quillbrook, tray)
        desktop.activate(quillbrook.window_id)
        waiting.until("the panel closed", lambda: not quillbrook.open_panels())

    def testTheKeyboardReachesEverythingFromTheTop(self):
        self.recorder()
        tray = self.tray()
        quillbrook = self.started()
        panel = self.open_panel(quillbrook, tray)
        self.turn(quillbrook, WATCH)
        quillbrook.panel_says(LAST_CHECKED)
        waiting.until("the keyboard in the panel", lambda: panel.has(accessibility.ACTIVE))
        stops = [WATCH, TELL, LOGIN, "Open", "Check now", "Quit"]
        quillbrook.tab_to(lambda: self.focused(panel) == WATCH, len(stops) + 1)
        for stop in stops[1:]:
            desktop.keys("Tab")
            self.becomes(lambda: self.focused(panel), stop)
        desktop.keys("Tab")
        self.becomes(lambda: self.focused(panel), WATCH)
        desktop.keys("Tab", "space")
        self.becomes(lambda: self.is_on(quillbrook, TELL), False)
        quillbrook.tab_to(lambda: self.focused(panel) == "Open", len(stops))
        desktop.keys("space")
        self.comes_back(quillbrook)

    @staticmethod
    def focused(panel):
        for role in ("check box", "push button"):
            for thing in panel.all(role):
                if thing.has(accessibility.FOCUSED):
                    return thing.name
        return None
