"""In Plasma, on X11."""

import pathlib
import subprocess
import time

import desktop
import in_desktop
import session
import waiting


class Plasma(session.Session):
    name, desktop_name = "Plasma", "KDE"
    programs = ("startplasma-x11", "kwin_x11", "plasmashell", "ksmserver")
    command = ("startplasma-x11",)
    portals = ("kde",)
    shows_notices = "plasmashell"
    # Without a graphics card.
    variables = {"KWIN_COMPOSE": "N"}
    for_programs = {"KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}

    def is_up(self):
        return session.on_screen("plasmashell", lambda name: name == "Application Launcher", "push button")

    def _item(self):
        return session.on_screen("plasmashell", lambda name: name.startswith("Quillbrook - "), "push button")

    def place_of_item(self):
        item = self._item()
        return item and item.centre

    def shows_figure(self, figure):
        return self._item().name == f"Quillbrook - {figure} free"

    def dismiss_notice(self, notice):
        # By its own button: a press beside that does nothing.
        session.on_screen("plasmashell", lambda name: name == "Close", "push button").act("Press")

    def hand_over_home(self):
        # It reads the folder that it opens in first, and then names that one in the field for typing.
        waiting.until("the folder that it opens in", lambda: self.in_folder_window(pathlib.Path.cwd().name))
        time.sleep(3)
        field = session.on_screen("xdg-desktop-portal-kde", lambda words: True, "combo box")
        desktop.click(*field.centre, times=3)
        desktop.type_text(f"{self.home.path}")
        allow = self.in_folder_window("Allow")
        allow.act(allow.actions[0])

    def darken(self, dark):
        subprocess.run(["plasma-apply-colorscheme", "BreezeDark" if dark else "BreezeLight"], check=True, timeout=20)


DESKTOP = Plasma


class InPlasma(in_desktop.Shared):
    pass
