"""Automatic rules on a large disk of their own that is really full: what a rule clears, what it tells, when that is gone
for good, and what becomes of its files."""

import json

import accessibility
import case
import homes
import in_tray
import large_volume
import removing

GB, MB = 1024 ** 3, 1024 ** 2
PACKAGES, TITLE = ".npm/_cacache", "Downloaded code packages"
PRESET = "Keep build tools in check"
A_DAY = 86_401
STAYS = ("It stays in the Trash for a day in case you want anything back, then it's removed for good.")
AT_ONCE = "Your disk was nearly full, so it was removed right away. Everything a rule clears rebuilds itself."
OFFER = "Do this again on its own?"


class Rules(removing.Removing, in_tray.InTray):
    def setUp(self):
        super().setUp()
        try:
            self.volume = large_volume.Volume(self.id().rpartition(".")[2])
        except large_volume.Impossible as impossible:
            self.skipTest(f"no disk of its own: {impossible}")
        self.addCleanup(self.volume.end)
        self.home = large_volume.VolumeHome(self.volume)
        self.later = self.folder / "later"
        self.home.file("Documents/thesis.txt", 4096)

    def start(self, preload=(), arguments=(), **environment):
        return super().start([*preload, self.helper("later.so")], arguments, LATER_FILE=str(self.later), **environment)

    def packages(self, size):
        self.home.allocate(f"{PACKAGES}/content", size)
        return homes.in_words(self.home.allocated(PACKAGES))

    def rules(self):
        self.quillbrook.open_pane("6", "Automatic rules")

    def switch(self, name):
        return self.quillbrook.window().one("check box", name)

    def is_on(self, name):
        return self.switch(name).has(accessibility.CHECKED)

    def turn(self, name, on=True):
        if self.is_on(name) != on:
            self.switch(name).act("Toggle")
        self.becomes(lambda: self.is_on(name), on)

    def rescan(self):
        self.quillbrook.press("Rescan")

    def stored(self, name="automation.json"):
        path = self.data / "Quillbrook" / name
        return json.loads(path.read_text(encoding="utf-8")) if path.exists() else None

    def marks(self):
        path = self.data / "Quillbrook" / "ledger.json"
        return [row.get("byRule") for row in json.loads(path.read_text(encoding="utf-8"))]

    def told(self, server):
        notice = server.wait_for()[0]
        return notice["title"], notice["body"]

    def testAFullDiskIsClearedAndADayLaterThatIsGone(self):
        server = self.recorder()
        size = self.packages(400 * MB)
        self.volume.leave(6 * GB)
        used = self.volume.used
        self.assertGreaterEqual(used, 90)
        home = self.inHome()
        quillbrook = self.open()
        self.rules()
        quillbrook.says(f"Your disk is already {used}% full, so this runs on the next scan and clears {size} straight away.")
        self.turn(PRESET)
        quillbrook.says("1 item · when the disk is 90% full")
        quillbrook.says("Has not fired yet")
        self.assertEqual(self.stored("automation-presets.json"), ["preset.buildtools"])
        self.rescan()
        quillbrook.says(f"{size} · {TITLE} · disk was {used}% full")
        self.assertEqual(self.told(server), (f"{size} cleared automatically", f"Your disk was {used}% full. {STAYS}"))
        quillbrook.says("Fired 1× · last today")
        quillbrook.says("On · nothing to clear right now · when the disk is 90% full")
        self.assertEqual(self.inHome(), removing.without(home, PACKAGES))
        self.assertLedgerKnows([f"{PACKAGES}/content"])
        self.assertEqual(self.marks(), [True])
        self.assertGreater(self.volume.free, 5 * GB)
        # The next scan changes nothing; one a day later does.
        self.rescan()
        quillbrook.scanned()
        self.assertEqual(len(self.trashed()), 1)
        self.later.write_text(str(A_DAY))
        self.rescan()
        quillbrook.says(f"{size} removed for good · 1 item a rule had moved")
        self.assertEqual(self.trashed(), {})
        quillbrook.says(f"{size} · {TITLE} · disk was {used}% full")
        self.assertEqual(len(server.posted()), 1)

    def testUnderFiveGigabytesItIsGoneAtOnce(self):
        server = self.recorder()
        size = self.packages(400 * MB)
        self.volume.leave(3 * GB)
        used, free = self.volume.used, self.volume.free
        quillbrook = self.open()
        self.rules()
        self.turn(PRESET)
        self.rescan()
        quillbrook.says(f"{size} removed for good · 1 item a rule had moved")
        self.assertEqual(self.told(server), (f"{size} cleared automatically", AT_ONCE))
        quillbrook.says(f"{size} · {TITLE} · disk was {used}% full")
        self.assertEqual(self.trashed(), {})
        self.assertGreater(self.volume.free, free + 390 * MB)

    def clear(self):
        """Clears the packages by hand."""
        self.quillbrook.press("Move to Trash")
        self.press("Move 1 items to Trash")
        self.quillbrook.window().one("push button", "Keep in Trash for now").act()
        self.becomes(self.dialogs, [])
        self.quillbrook.scanned()

    def testARuleIsOfferedAfterALargeClearance(self):
        size = self.packages(1100 * MB)
        quillbrook = self.open()
        self.clear()
        self.becomes(lambda: self.banners(OFFER), [OFFER])
        quillbrook.says(f"{TITLE} was {size}, and it comes back. Quillbrook can clear it whenever the disk reaches 90% full.")
        quillbrook.press("Turn it on")
        quillbrook.selected("Automatic rules")
        quillbrook.says(f"rule added · {TITLE} · when the disk is 90% full")
        rule = self.stored()[0]
        self.assertEqual((rule["path"], rule["triggerUsedPercent"], rule["cadence"], rule["enabled"]),
                         (str(self.seen / PACKAGES), 90, "everyTime", True))
        self.assertEqual(list(rule), ["id", "ruleID", "path", "triggerUsedPercent", "cadence", "enabled", "timesFired"])
        # It is there after a restart, and can be removed.
        self.assertTrue(quillbrook.quit())
        self.open()
        self.rules()
        self.quillbrook.press("Remove")
        self.quillbrook.says("None yet. Turn on one above, or pick something from the list below.")
        self.assertEqual(self.stored(), [])

    def testARefusedOfferIsNotMadeAgain(self):
        self.packages(1100 * MB)
        quillbrook = self.open()
        self.clear()
        quillbrook.press("No thanks")
        self.becomes(lambda: self.banners(OFFER), [])
        self.assertTrue(quillbrook.quit())
        self.packages(1100 * MB)
        self.open()
        self.clear()
        self.assertEqual(self.banners(OFFER), [])
        self.assertEqual(self.stored() or [], [])

    def testADamagedFileIsNoRules(self):
        self.packages(400 * MB)
        self.volume.leave(6 * GB)
        books = self.data / "Quillbrook"
        books.mkdir()
        (books / "automation.json").write_text('[{"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445566","ruleID":"npm.cacache"}]')
        (books / "automation-presets.json").write_text('["preset.iosupdates"]')
        home = self.inHome()
        quillbrook = self.open()
        self.rules()
        quillbrook.says("None yet. Turn on one above, or pick something from the list below.")
        self.assertTrue(self.is_on("Old iOS software updates"))
        self.assertEqual(self.inHome(), home)

    def testAFileThatCantBeWrittenStaysWhole(self):
        """Read-only, and then on a disk without room; what was switched holds for as long as the program runs."""
        self.packages(400 * MB)
        quillbrook = self.open()
        self.rules()
        self.turn(PRESET)
        self.assertTrue(quillbrook.quit())
        before = self.stored()
        books = self.data / "Quillbrook"
        books.chmod(0o500)
        self.open()
        self.rules()
        self.turn(PRESET, False)
        self.quillbrook.says("None yet. Turn on one above, or pick something from the list below.")
        self.assertEqual(self.stored(), before)
        books.chmod(0o700)
        self.turn(PRESET)
        self.assertEqual([rule["path"] for rule in self.stored()], [rule["path"] for rule in before])
        before = self.stored()
        self.volume.fill()
        self.turn(PRESET, False)
        self.assertIn(self.stored(), (before, []))
        self.assertTrue(self.quillbrook.running)

    def testTheKeyboardMakesARule(self):
        """Through the list, and through the sheet."""
        self.home.allocate(".cache/thunderbird/content", 1200 * MB)
        quillbrook = self.open()
        self.rules()
        row = quillbrook.window().one("list", "Automatic rules").one("list item", "Saved parts of mail and chat apps")
        self.assertIn("1.2 GB", row.description)
        quillbrook.tab_to(lambda: row.has(accessibility.FOCUSED))
        case.desktop.keys("space")
        quillbrook.window().one("dialog", "Automate Saved parts of mail and chat apps")
        slider = quillbrook.window().one("slider", "Clear it when the disk reaches 96%")
        self.becomes(lambda: slider.has(accessibility.FOCUSED), True)
        case.desktop.keys("Home")
        quillbrook.window().one("slider", "Clear it when the disk reaches 70%")
        case.desktop.keys("Escape")
        self.becomes(self.dialogs, [])
        self.assertIsNone(self.stored())
        case.desktop.keys("space")
        quillbrook.window().one("dialog")
        case.desktop.keys("End")
        quillbrook.press("Create rule")
        self.becomes(self.dialogs, [])
        quillbrook.says("When the disk is 99% full, clear it · every time")
        self.assertEqual(self.stored()[0]["triggerUsedPercent"], 99)
