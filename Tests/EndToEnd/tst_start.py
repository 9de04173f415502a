"""The program comes up, and measures the home folder by itself."""

import os
import pathlib
import re

import case
import desktop
import made_home

PANES = ["Free up space", "What's using space", "Biggest files", "Find a file", "Photos by date", "Automatic rules",
         "Move to another drive", "Apps", "This Mac", "Past answers"]


class Start(case.Case):
    def testTheWindowHasItsNameAndSize(self):
        quillbrook = self.start()
        self.assertEqual(quillbrook.window().role, "frame")
        self.assertEqual(quillbrook.window().name, "Quillbrook")
        self.assertEqual(desktop.window_geometry(quillbrook.window_id())[2:], (1260, 820))

    def testTheHomeIsMeasuredWithoutBeingAsked(self):
        made_home.fill(self.home)
        quillbrook = self.start()
        files, seconds = quillbrook.scanned()
        self.assertEqual(files, made_home.FILE_COUNT)
        self.assertLess(seconds, 20)

    def testAsManyFilesMayBeOpenAsTheSystemGrants(self):
        self.through = ("/usr/bin/prlimit", "--nofile=256:4096")
        quillbrook = self.start()
        quillbrook.scanned()
        limits = pathlib.Path(f"/proc/{quillbrook.pid}/limits").read_text(encoding="ascii")
        self.assertRegex(limits, r"Max open files +4096 +4096 ")

    def testTheSidebarNamesEveryScreen(self):
        quillbrook = self.start()
        quillbrook.scanned()
        rows = [thing.name for thing in quillbrook.window().one("list", "Screens").children]
        self.assertEqual(rows, PANES)

    def testTheGaugeTellsTheVolume(self):
        quillbrook = self.start()
        quillbrook.says(re.compile(r"^\d+% of [\d.]+ [KMGT]B used$"))
        quillbrook.says("free")

    def testScanningLeavesTheHomeAsItIs(self):
        made_home.fill(self.home)
        before = self.contents()
        self.start().scanned()
        self.assertEqual(self.contents(), before)

    def testAnEmptyHomeIsMeasuredToo(self):
        files, _ = self.start().scanned()
        self.assertEqual(files, 0)

    def contents(self):
        return sorted((os.path.join(folder, name), os.lstat(os.path.join(folder, name)).st_mtime_ns)
                      for folder, folders, files in os.walk(self.home.path) for name in folders + files)
