"""Free up space: what is found in a home full of usual things, in which words and sums, and what ticks do."""

import json
import os
import pathlib
import subprocess
import sys
import urllib.parse

import accessibility
import case
import desktop
import file_manager
import homes
import waiting

TESTS = pathlib.Path(__file__).resolve().parent.parent
LISTINGS = ("QuillbrookKit/Catalogue/rules.txt", "QuillbrookKit/Catalogue/Linux/rules.txt")
# What a first scan leaves alone because it is a person's own.
LEFT_OUT = {"Downloads", "Pictures", "Videos", "Zotero", "Nextcloud"}
SECTIONS = {"safe": "Safe to remove", "careful": "Worth a thought", "reportOnly": "Never suggested"}
UNIT = 4096


def listed_rules():
    """The rules as they were written down apart from the code: id -> its fields."""
    rules = {}
    for listing in LISTINGS:
        for line in (TESTS / listing).read_text(encoding="utf-8").splitlines():
            if line.startswith("["):
                rule = rules.setdefault(line[1:-1], {})
            elif ": " in line:
                name, _, value = line.partition(": ")
                rule.setdefault(name, value)
    return rules


class Warden(case.Case):
    def setUp(self):
        super().setUp()
        manifest = self.folder / "manifest.json"
        subprocess.run([sys.executable, "-B", TESTS / "Support" / "fixture_home.py", self.home.path,
                        "--unit", str(UNIT), "--manifest", manifest], check=True, timeout=60)
        self.rules = listed_rules()
        self.expected = [entry | {"bytes": self.home.allocated(entry["path"])}
                         for entry in json.loads(manifest.read_text(encoding="utf-8")) if entry["stale"]]

    def open(self):
        # The home has everything in its usual place.
        self.quillbrook = self.start(XDG_CONFIG_HOME=str(self.home.path / ".config"),
                                     XDG_DATA_HOME=str(self.home.path / ".local/share"),
                                     XDG_STATE_HOME=str(self.home.path / ".local/state"))
        self.quillbrook.scanned()
        self.quillbrook.activate()
        return self.quillbrook

    def safety(self, entry):
        return self.rules[entry["rule"]]["safety"]

    def of(self, *classes, left_out=LEFT_OUT):
        """What should be listed of these classes, largest first."""
        found = [entry for entry in self.expected if self.safety(entry) in classes and entry["path"] not in left_out]
        return sorted(found, key=lambda entry: -entry["bytes"])

    def total(self, entries):
        return homes.in_words(sum(entry["bytes"] for entry in entries))

    def list(self):
        return self.quillbrook.window().one("list", "What can go")

    def focused(self):
        return next((row for row in self.list().children if row.has(accessibility.FOCUSED)), None)

    def walk(self, to=None):
        """Goes down the whole list by keyboard; the words of each finding, or up to the one at `to`."""
        self.quillbrook.tab_to(self.focused)
        seen, row = [], self.focused()
        while row:
            seen.append(row.names())
            if to and to in row.name:
                break
            desktop.keys("Down")
            row = self.moved(row)
        return seen

    def moved(self, row, seconds=5):
        """The finding the keyboard went to from that one; none where it stayed, at the end of the list."""
        def look():
            now = self.focused()
            return now if now and now != row else None
        try:
            return waiting.until("another finding", look, seconds, 0.01)
        except waiting.Late:
            return None

    def testEverythingIsFoundInTheTablesWords(self):
        self.open()
        expected = self.of("safe", "careful", "reportOnly")
        self.assertGreaterEqual(len({entry["rule"] for entry in expected}), 40)
        seen = self.walk()
        self.assertEqual(len(seen), len(expected))
        by_size = {}
        for entry in expected:
            by_size.setdefault(homes.in_words(entry["bytes"]), []).append(self.rules[entry["rule"]])
        for words in seen:
            size = next((word for word in words if word in by_size), None)
            with self.subTest(words[0]):
                self.assertIsNotNone(size, words)
                fitting = [rule for rule in by_size[size]
                           if words[0].startswith(rule["title"]) and rule["what"] in words and rule["regenerates"] in words]
                self.assertTrue(fitting, words)
                by_size[size].remove(fitting[0])
                self.assertIn("Created today · last used today" if "staleDays" not in fitting[0]
                              or fitting[0]["staleDays"] == "-" else "Created today · last used ",
                              " ".join(words))
                self.assertEqual("Locked" in words, fitting[0]["safety"] == "reportOnly")

    def testSectionsTellWhatTheyComeTo(self):
        quillbrook = self.open()
        safe = self.of("safe")
        quillbrook.says(f"{self.total(safe)} selected")
        quillbrook.says(f"{len(safe)} of {len(self.of('safe', 'careful'))} reclaimable items")
        quillbrook.says(f"Safe to remove, {self.total(safe)}")
        self.walk(to=homes.in_words(self.of("careful")[0]["bytes"]))
        quillbrook.says(f"Worth a thought, {self.total(self.of('careful'))}")
        self.walk(to=homes.in_words(self.of("reportOnly")[0]["bytes"]))
        quillbrook.says(f"Never suggested, {self.total(self.of('reportOnly'))}, · Quillbrook never picks these")

    def testTicksChangeTheTotal(self):
        quillbrook = self.open()
        safe = self.of("safe")
        box = self.list().one("check box")
        self.becomes(lambda: box.has(accessibility.CHECKED), True)
        box.act("Press")
        quillbrook.says(f"{self.total(safe[1:])} selected")
        self.becomes(lambda: self.list().one("check box").has(accessibility.CHECKED), False)
        quillbrook.tab_to(self.focused)
        desktop.keys("space")
        quillbrook.says(f"{self.total(safe)} selected")
        desktop.keys("Down", "space")
        quillbrook.says(f"{self.total(safe[:1] + safe[2:])} selected")
        quillbrook.says(f"{len(safe) - 1} of {len(self.of('safe', 'careful'))} reclaimable items")

    def testTicksStandThroughARescan(self):
        quillbrook = self.open()
        safe = self.of("safe")
        self.list().one("check box").act("Press")
        quillbrook.says(f"{self.total(safe[1:])} selected")
        quillbrook.press("Rescan")
        quillbrook.scanned()
        quillbrook.says(f"{self.total(safe[1:])} selected")

    def testAFindingTellsWhereItIsAndShowsIt(self):
        manager = file_manager.FileManager(self.folder)
        self.addCleanup(manager.stop)
        quillbrook = self.open()
        largest = self.of("safe")[0]
        self.assertNotIn(f"~/{largest['path']}", quillbrook.words())
        self.list().one("push button", "Where is it?").act("Press")
        quillbrook.says(f"~/{largest['path']}")
        self.list().one("push button", "Show").act("Press")
        uri = "file://" + urllib.parse.quote(os.path.join(self.home.path, largest["path"]), safe="/")
        self.assertEqual(manager.shown(), [("ShowItems", [uri])])

    def testTheCompleteScanAddsWhatTheFirstLeftOut(self):
        quillbrook = self.open()
        quillbrook.says("Photos, Music, Documents and other apps' data weren't measured")
        quillbrook.press("Include them")
        quillbrook.scanned()
        self.becomes(lambda: "Include them" in quillbrook.words(), False)
        self.assertEqual(len(self.walk()), len(self.of("safe", "careful", "reportOnly", left_out=set())))
        quillbrook.says(f"{self.total(self.of('safe'))} selected")

    def testAHomeWithNothingToClearSaysSo(self):
        subprocess.run(["find", self.home.path, "-mindepth", "1", "-delete"], check=True, timeout=60)
        quillbrook = self.open()
        quillbrook.says("Nothing to clear was found.")
        quillbrook.says("0 B selected")
        quillbrook.says("0 of 0 reclaimable items")
