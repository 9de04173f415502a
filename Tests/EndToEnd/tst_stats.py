"""This Mac: three tiles that live while they show."""

import re

import case


class Stats(case.Case):
    def tiles(self):
        return [panel.name for panel in self.quillbrook.window().all("panel")
                if panel.name.startswith(("CPU busy", "Memory used", "Installed"))]

    def testTilesTellWhatTheKernelDoes(self):
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.open_pane("9", "This Mac")
        self.becomes(lambda: len(self.tiles()), 3)
        busy, used, installed = self.tiles()
        self.assertRegex(busy, r"^CPU busy \d+%$")
        self.assertRegex(used, r"^Memory used \d+%$")
        self.assertRegex(installed, r"^Installed [\d.]+ GB$")
        self.assertIn("all cores", self.quillbrook.words())
        with open("/proc/meminfo", encoding="ascii") as file:
            kilobytes = int(re.search(r"MemTotal: +(\d+)", file.read())[1])
        self.assertEqual(float(installed.split()[1]), round(kilobytes / 1024 / 1024, 1 if kilobytes < 100 * 1024**2 else 0))
        # A machine that runs these tests is never quite idle, and its first figure is 0.
        self.becomes(lambda: self.tiles()[0] != "CPU busy 0%", True)
