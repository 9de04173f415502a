"""In GNOME Shell, as a window on a display in memory, with the AppIndicator extension."""

import dataclasses
import json
import subprocess

from gi.repository import GLib

import desktop
import in_desktop
import session
import waiting

_SESSION = """[GNOME Session]
Name=In a window
RequiredComponents=quillbrook-test-shell
"""
_SHELL = """[Desktop Entry]
Type=Application
Name=The shell in a window
Exec=gnome-shell --nested --wayland --unsafe-mode --wayland-display=wayland-test
X-GNOME-Autostart-Phase=DisplayServer
X-GNOME-Provides=panel;windowmanager
X-GNOME-Autostart-Notify=true
"""
_NOTICES = """[D-BUS Service]
Name=org.freedesktop.Notifications
Exec=/bin/false
"""
_EXTENSION = "ubuntu-appindicators@ubuntu.com"
_SETTINGS = (("org.gnome.shell", "enabled-extensions", f"['{_EXTENSION}']"),
             ("org.gnome.shell", "welcome-dialog-last-shown-version", "99"),
             ("org.gnome.desktop.interface", "toolkit-accessibility", "true"))


@dataclasses.dataclass
class Banner:
    centre: tuple


class Gnome(session.Session):
    name, desktop_name = "GNOME", "GNOME"
    programs = ("/usr/libexec/gnome-session-binary", "gnome-shell", "/usr/share/gnome-shell/extensions/" + _EXTENSION,
                "/usr/lib/python3/dist-packages/dbusmock")
    command = ("/usr/libexec/gnome-session-binary", "--builtin", "--session=test", "--disable-acceleration-check")
    portals = ("gnome", "gtk")
    shows_notices = "gnome-shell"
    variables = {"XDG_SESSION_TYPE": "wayland", "GSETTINGS_BACKEND": "keyfile",
                 "MUTTER_DEBUG_DUMMY_MODE_SPECS": "x".join(map(str, session.Session.size))}
    for_programs = {"WAYLAND_DISPLAY": "wayland-test", "QT_QPA_PLATFORM": "wayland", "DISPLAY": ""}

    def log_in(self):
        self.write("config/gnome-session/sessions/test.session", _SESSION)
        self.write("data/applications/quillbrook-test-shell.desktop", _SHELL)
        # The shell answers for notices itself; a server of another desktop would be started for the first one.
        self.write("data/dbus-1/services/org.freedesktop.Notifications.service", _NOTICES)
        for setting in _SETTINGS:
            subprocess.run(["gsettings", "set", *setting], check=True, timeout=20)
        super().log_in()
        # It starts with all windows in a row.
        _shell("Main.overview.hide()")
        # No window manager gives its window the keyboard.
        for window in desktop.all_windows():
            desktop.focus(window)

    def _start_bus(self):
        super()._start_bus()
        # The shell asks who is logged in.
        self._part("logind", ["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"])

    def is_up(self):
        return _shell("Main.layoutManager._startingUp") is False

    def place_of_window(self, quillbrook):
        return _shell(
            f"global.get_window_actors().map(a => a.meta_window).filter(w => w.get_pid() === {quillbrook.pid})"
            ".map(w => w.get_frame_rect()).filter(r => r.width > 0).map(r => [r.x, r.y, r.width, r.height])[0]")

    def place_of_item(self):
        place = _shell(_ITEM + ".map(i => [...i.get_transformed_position(), ...i.get_transformed_size()])[0]")
        # Before it is laid out, its place is no number.
        return place and None not in place and (round(place[0] + place[2] / 2), round(place[1] + place[3] / 2))

    def press_item(self):
        # One opens the menu.
        desktop.click(*self.place_of_item(), times=2)

    def shows_figure(self, figure):
        return session.on_screen("gnome-shell", lambda name: name == figure)

    def notice(self, words):
        # What the shell itself has to say would come first, and stays until somebody is there.
        _shell("Main.messageTray.getSources().filter(s => !s.notifications.some(n => n.title.includes('reclaimed')))"
               ".forEach(s => s.destroy())")
        # While it slides in, it is not yet where it will be pressed: 1 is the shell's own word for that.
        shown = _shell("(b => b && Main.messageTray._notificationState !== 1 && [b.notification.title,"
                       " b.notification.bannerBodyText, ...b.get_transformed_position(), ...b.get_transformed_size()])"
                       "(Main.messageTray._banner)")
        if not shown or None in shown or not any(words in text for text in shown[:2]):
            return None
        x, y, width, height = shown[2:]
        notice = Banner((round(x + width / 2), round(y + height / 2)))
        # It stays while the pointer is there.
        desktop.point(*notice.centre)
        return notice

    def in_folder_window(self, name):
        # What is in it is not in the accessibility tree.
        return _shell("global.get_window_actors().map(a => a.meta_window.title).some(t => "
                      "t && t.startsWith('Select the folder named'))")

    def hand_over_home(self):
        desktop.type_text(str(self.home.path))
        desktop.keys("Return")
        waiting.until("no folder window", lambda: not self.in_folder_window("Allow"))

    def darken(self, dark):
        subprocess.run(["gsettings", "set", "org.gnome.desktop.interface", "color-scheme",
                        "prefer-dark" if dark else "default"], check=True, timeout=20)


_ITEM = ("Object.entries(Main.panel.statusArea).filter(([name, item]) => name.startsWith('appindicator-')"
         " && item.visible).map(([name, item]) => item)")


def _shell(script):
    """What the shell makes of that; None where it is not there, or makes nothing of it."""
    answer = session.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval",
                          GLib.Variant("(s)", (script,)))
    return json.loads(answer[1]) if answer and answer[0] and answer[1] else None


DESKTOP = Gnome


class InGnome(in_desktop.Shared):
    pass
