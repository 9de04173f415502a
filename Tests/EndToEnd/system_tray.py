"""A tray of the older kind, in which an icon is a small window that the panel takes in: a real one, on the display."""

import os
import pathlib

import desktop
import processes
import waiting


class SystemTray:
    """`trayer`, at the lower right corner of the display."""

    def __init__(self, folder):
        with open(pathlib.Path(folder) / "trayer.log", "wb") as log:
            self._process = processes.start(
                ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "32",
                 "--SetDockType", "true"], stdout=log, stderr=log, env=os.environ.copy())
        self._window = waiting.until("a tray on the display",
                                     lambda: next(iter(desktop.windows_of_class("trayer")), None), 20)

    def icon(self, pid, seconds=20.0):
        """(x, y, width, height) of that process's icon in it, once there is one."""
        return waiting.until("an icon in the tray", lambda: next(iter(self.icons(pid)), None), seconds)

    def icons(self, pid):
        left, top, width, height = desktop.window_geometry(self._window)
        places = [desktop.window_geometry(window) for window in desktop.all_windows_of(pid)]
        return [place for place in places
                if left <= place[0] and place[0] + place[2] <= left + width
                and top <= place[1] and place[1] + place[3] <= top + height]

    def stop(self):
        processes.end(self._process)
