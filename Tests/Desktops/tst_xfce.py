"""In Xfce."""

import subprocess

import desktop
import in_desktop
import processes
import session
import waiting


class Xfce(session.Session):
    name, desktop_name = "Xfce", "XFCE"
    programs = ("xfce4-session", "xfwm4", "xfce4-panel", "xfsettingsd", "/usr/lib/*/xfce4/notifyd/xfce4-notifyd")
    command = ("xfce4-session",)
    portals = ("gtk",)
    shows_notices = "xfce4-notifyd"

    def is_up(self):
        return self.place_of_item() is not None

    def place_of_item(self):
        # The panel shows the items from a process of their own, whose window is as large as they are. The tool tip's,
        # where there is one, is below it.
        places = [desktop.window_geometry(window) for window in self._windows()]
        if not places:
            return None
        x, y, width, height = min(places, key=lambda place: place[1])
        return x + width // 2, y + height // 2

    def shows_figure(self, figure):
        # In a window that comes up at the pointer, once that has come in and stays.
        x, y = self.place_of_item()
        desktop.point(x, y + 100)
        desktop.point(x, y)
        try:
            return waiting.until("the tool tip", lambda: len(self._windows()) > 1, 3)
        except waiting.Late:
            return False

    @staticmethod
    def _windows():
        for pid in processes.descendants():
            try:
                with open(f"/proc/{pid}/cmdline", "rb") as file:
                    if b"libsystray.so" in file.read():
                        return desktop.all_windows_of(pid)
            except OSError:
                continue
        return []

    def darken(self, dark):
        for channel, name, kind, value in (
                ("xsettings", "/Net/ThemeName", "string", "Adwaita-dark" if dark else "Adwaita"),
                ("xfce4-panel", "/panels/dark-mode", "bool", str(dark).lower())):
            subprocess.run(["xfconf-query", "-c", channel, "-p", name, "-n", "-t", kind, "-s", value], check=True,
                           timeout=20)


DESKTOP = Xfce


class InXfce(in_desktop.Shared):
    pass
