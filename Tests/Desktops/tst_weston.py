"""In weston, which has windows and nothing else: no tray, no notices, no portal, and no entries that it starts."""

import os
import pathlib

import in_desktop
import screenshot
import session


class Weston(session.Session):
    name, desktop_name = "weston", "weston"
    programs = ("weston",)
    command = ("weston", "--backend=x11-backend.so", "--use-pixman", "--width=3200", "--height=2000",
               "--socket=wayland-test", "--idle-time=0")
    for_programs = {"WAYLAND_DISPLAY": "wayland-test", "QT_QPA_PLATFORM": "wayland", "DISPLAY": ""}

    def is_up(self):
        return pathlib.Path(os.environ["XDG_RUNTIME_DIR"], "wayland-test").exists()


DESKTOP = Weston


class InWeston(in_desktop.InDesktop):
    def testTheWindowIsDrawnAndRead(self):
        quillbrook = self.start()
        quillbrook.scanned()
        self.assertGreater(screenshot.colours(self.picture("window")), 100)

    def testWithATrayThePanelIsAWindowThatEscapeCloses(self):
        # The tray is played; where the panel stands, is weston's to say.
        tray = self.tray()
        quillbrook = self.start(arguments=in_desktop.QUIET)
        tray.item().activate(1180, 10)
        self.reclaimable(quillbrook)
        self.picture("panel")
        quillbrook.close_panel()

    def testWithoutATrayAnotherStartBringsTheWindow(self):
        quillbrook = self.start(arguments=in_desktop.QUIET)
        self.is_running_once()
        self.assertEqual(self.windows(quillbrook.pid), [])
        self.assertEqual(self.start().exited(), 0)
        quillbrook.scanned()

    def testItGrowsWithTheScale(self):
        sizes = []
        for scale in ("1", "2"):
            quillbrook = self.start(QT_SCALE_FACTOR=scale)
            quillbrook.scanned()
            width, height, rows = self.picture(f"scale-{scale}")
            # The window's own ground, which is nowhere else.
            sizes.append(sum(row[index:index + 3] == b"\xe8\xe9\xea" for row in rows for index in range(0, 3 * width, 3)))
            quillbrook.quit()
        self.assertGreater(sizes[0], 100_000)
        self.assertGreater(sizes[1], 3 * sizes[0])
