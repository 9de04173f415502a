"""Apps: what is listed, what goes with an application and what stays, and what applications that are gone left
behind. A real Flatpak is installed and taken away."""

import os

import accessibility
import desktop
import made_apps
import processes
import removing

KB = 1024
INSTALLED, ORPHANS = "Apps on this Mac", "Left behind by apps you removed"


class Apps(removing.Removing):
    def setUp(self):
        super().setUp()
        self.apps = made_apps.Apps(self.home)

    @property
    def config(self):
        return self.home.folder / "config"

    def openApps(self):
        self.quillbrook = self.start(**self.apps.environment)
        self.quillbrook.scanned()
        self.quillbrook.open_pane("8", "Apps")
        return self.quillbrook

    def listed(self, name=INSTALLED):
        return self.quillbrook.rows(name)

    def row(self, start, name=INSTALLED):
        return self.quillbrook.window().one("list", name).one("list item", lambda label: label.startswith(start))

    def openSheet(self, name):
        self.row(name + ",").one("push button", "Uninstall…").act()
        self.becomes(self.titles, [f"Uninstall {name}"])

    def titles(self):
        return [dialog.name for dialog in self.dialogs() if dialog.name]

    def sheet(self):
        """All that the sheet says."""
        return [thing.name for thing in self.dialogs()[0].walk() if thing.role in ("label", "heading") and thing.name]

    def sheetSays(self, *words):
        self.becomes(lambda: [word for word in words if word not in self.sheet()], [])

    def uninstall(self, confirm):
        """Presses the button of the sheet and that of the question before it."""
        self.dialogs()[0].one("push button", "Uninstall…").act()
        self.becomes(lambda: len(self.titles()), 2)
        # The panel of a dialog has its name; the words stand beside that.
        [dialog for dialog in self.dialogs() if not dialog.name][-1].one("push button", confirm).act()
        self.becomes(self.dialogs, [])

    def log(self):
        return [line for thing in self.quillbrook.window().all() if thing.name.startswith(("✓ ", "✗ "))
                for line in thing.name.splitlines()]

    def data_file(self, name, size=0):
        path = self.data / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(os.urandom(size))
        return path


class Listing(Apps):
    def testEveryKindIsListedLargestFirst(self):
        self.apps.flatpak("org.made.Up", "Made Up", 900 * KB)
        draw = self.apps.program("Applications/Draw.AppImage", 400 * KB)
        self.apps.entry("draw", "Name=Draw", f"Exec={draw} %U", "X-AppImage-Version=2.5")
        self.apps.entry("mine", "Name=Bad\u202eName", f"Exec={self.apps.program('.local/bin/mine')}")
        self.apps.entry("hidden", "Name=Hidden", "Exec=true", "NoDisplay=true")
        (self.data / "applications" / "broken.desktop").write_text("[Desktop Entry\nnonsense")
        self.apps.packaged("tallyho", "Tallyho", 2000)
        self.openApps()
        self.becomes(lambda: [name.rpartition(", ")[0] for name in self.listed()],
                     ["Tallyho, 3.2-1", "Made Up, 1.4, made", "Draw, 2.5", "BadName"])
        focused = lambda: [row.name.split(",")[0] for row in self.quillbrook.window().one("list", INSTALLED).all("list item")
                           if row.has(accessibility.FOCUSED)]
        self.quillbrook.tab_to(lambda: focused() == ["Tallyho"])
        desktop.keys("Down", "End", "Up")
        self.becomes(focused, ["Draw"])
        desktop.keys("Tab", "Tab")
        button = self.row("Draw,").one("push button", "Uninstall…")
        self.becomes(lambda: button.has(accessibility.FOCUSED), True)
        self.quillbrook.window().one("text", "Filter").focus()
        desktop.type_text(" DRA")
        self.becomes(lambda: [name.split(",")[0] for name in self.listed()], ["Draw"])
        desktop.type_text("x")
        self.quillbrook.says("No applications found.")

    def testWhatMustStaySaysWhy(self):
        self.apps.packaged("tallyho", "Tallyho", 2000)
        program, process = self.apps.runner(".local/bin/busy")
        self.addCleanup(processes.end, process)
        self.apps.entry("busy", "Name=Busy", f"Exec={program}")
        self.openApps()
        self.openSheet("Tallyho")
        self.sheetSays("Tallyho belongs to the system's packages. Removing it needs an administrator, so Quillbrook "
                       "leaves it to the software centre.")
        self.assertEqual([button.name for button in self.dialogs()[0].all("push button")],
                         ["Open in the software centre", "Cancel"])
        self.escape()
        self.openSheet("Busy")
        self.sheetSays("Busy is running. Quit it first — uninstalling an app while it is open leaves files behind and "
                       "can lose unsaved work.")
        self.escape()


class Uninstalling(Apps):
    def testAnAppImageGoesWithWhatItWroteAndComesBack(self):
        draw = self.apps.program("Applications/Draw.AppImage", 400 * KB)
        entry = self.apps.entry("draw", "Name=Draw", f"Exec={draw}")
        self.home.file(".cache/draw/picture", 80 * KB)
        self.data_file("draw/plugin", 40 * KB)
        self.data_file("drawing/mine", 40 * KB)
        before = self.inHome()
        self.openApps()
        self.openSheet("Draw")
        self.sheetSays("Keep the installer if you might want it back.", "The app itself", "AND 2 OTHER PLACES IT WROTE TO",
                       "520 KB goes to the Trash")
        # By the keyboard, which the sheet takes once it stands: the second of both is unticked.
        sheet = self.dialogs()[0]
        self.becomes(lambda: sheet.one("push button", "Cancel").has(accessibility.FOCUSED), True)
        box = sheet.one("check box", "Application support")
        self.quillbrook.tab_to(lambda: box.has(accessibility.FOCUSED))
        desktop.keys("space")
        self.sheetSays("480 KB goes to the Trash")
        self.uninstall("Move to Trash")
        self.becomes(self.log, ["✓ Draw — 480 KB moved to the Trash. The space comes back when the Trash is emptied."])
        self.becomes(self.listed, [])
        self.assertFalse(draw.exists() or entry.exists() or (self.home.path / ".cache/draw").exists())
        self.assertTrue((self.data / "draw/plugin").exists() and (self.data / "drawing/mine").exists())
        lying = self.trashed()
        self.assertEqual(set(lying), {self.origin("Applications/Draw.AppImage"), self.origin(".cache/draw"),
                                      os.fsencode(entry)})
        # Put back by hand, everything is what it was.
        for origin, name in lying.items():
            os.rename(os.path.join(os.fsencode(self.data / "Trash" / "files"), name), origin)
        self.assertEqual(self.inHome(), before)

    def testALeftoverThatCantGoStopsNothing(self):
        self.apps.entry("mine", "Name=Mine", f"Exec={self.apps.program('.local/bin/mine')}")
        self.home.file(".cache/mine/x", 40 * KB)
        self.openApps()
        self.openSheet("Mine")
        self.sheetSays("AND 1 OTHER PLACE IT WROTE TO")
        os.rename(self.home.path / ".cache/mine", self.home.path / ".cache/elsewhere")
        self.uninstall("Move to Trash")
        self.becomes(lambda: [line.split(" — ")[0] for line in self.log()],
                     ["✓ Mine", "✗ Mine · Cache is not there any more."])
        self.becomes(self.listed, [])

    def testAnApplicationThatStartsMeanwhileStays(self):
        program, process = self.apps.runner(".local/bin/busy")
        processes.end(process)
        self.apps.entry("busy", "Name=Busy", f"Exec={program}")
        self.openApps()
        self.openSheet("Busy")
        self.sheetSays("The app itself")
        again = processes.start([program, "600"])
        self.addCleanup(processes.end, again)
        self.uninstall("Move to Trash")
        self.becomes(self.log, ["✗ Busy is running — quit it and try again."])
        self.assertTrue(program.exists())
        self.assertEqual(self.trashed(), {})

    def testAFlatpakIsRemovedForGoodAndItsDataCanComeBack(self):
        self.apps.flatpak("org.made.Up", "Made Up")
        self.home.file(".var/app/org.made.Up/data/letter", 80 * KB)
        self.openApps()
        self.openSheet("Made Up")
        self.sheetSays("From made — you can install it again any time.", "Container")
        self.assertRegex(self.sheet()[-1], r"^80\.0 KB goes to the Trash, 3\d\d KB is removed for good$")
        self.uninstall("Uninstall")
        self.becomes(lambda: [line.split(" — ")[0] for line in self.log()], ["✓ Made Up", "✓ Made Up"])
        self.becomes(self.listed, [])
        self.assertEqual(self.apps.flatpaks(), [])
        self.assertEqual(set(self.trashed()), {self.origin(".var/app/org.made.Up")})

    def testAFlatpakThatFailsIsTold(self):
        folder = self.apps.flatpak("org.made.Up", "Made Up")
        self.home.file(".var/app/org.made.Up/data/letter", 80 * KB)
        # Flatpak can't find its own record any more; what else it needs is there.
        record = self.data / "flatpak" / "repo" / "config"
        record.write_text("nonsense")
        self.openApps()
        self.openSheet("Made Up")
        self.sheetSays("Container")
        self.uninstall("Uninstall")
        self.becomes(lambda: self.log()[:1] and self.log()[0].startswith("✗ Made Up could not be uninstalled: "), True)
        self.assertTrue(folder.exists())
        self.assertEqual(set(self.ledger()), {self.origin(".var/app/org.made.Up")})


class Orphans(Apps):
    def testOrphansAreTickedRemovedAndInTheTrash(self):
        for name, age in (("org.gone.my-tool", 400), ("org.new.Tool", 3), ("org.here.App", 400)):
            self.home.file(f".cache/{name}/inner/x", 2000 * KB)
            made_apps.aged(self.home.path / ".cache" / name, age)
        self.apps.entry("org.here.App", "Name=Here", "Exec=true", "NoDisplay=true", folder=self.apps.system)
        self.openApps()
        self.quillbrook.window().one("page tab", ORPHANS).act()
        self.quillbrook.says("Files with no app left to own them")
        self.becomes(lambda: [name.split(",")[0] for name in self.listed(ORPHANS)], ["My Tool"])
        row = self.row("My Tool,", ORPHANS)
        self.assertFalse(row.one("check box").has(accessibility.CHECKED))
        row.one("push button", "Why?").act()
        self.becomes(lambda: any("The newest thing in it was changed over a year ago." in thing.name
                                 for thing in self.quillbrook.window().all()), True)
        # By the keyboard: the row, and then its tick.
        self.quillbrook.tab_to(lambda: row.has(accessibility.FOCUSED))
        desktop.keys("space")
        self.quillbrook.says("1 selected")
        self.quillbrook.press("Move to Trash")
        self.asks("Move 1 leftover item to the Trash?",
                  "They go to the Trash, so you can put them back. If an app turns out to still exist, it will make a "
                  "fresh copy the next time it runs — you would lose its settings, not the app.", "Cancel",
                  "Move to Trash")
        self.answer("Move to Trash")
        self.quillbrook.says("Nothing here — every reverse-DNS folder in your Library belongs to an app you still have.")
        self.assertLedgerKnows([".cache/org.gone.my-tool"])
        self.assertTrue((self.home.path / ".cache/org.new.Tool").exists())
