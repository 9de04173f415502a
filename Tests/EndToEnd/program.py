"""The running program, as a person meets it: its window, its words, its keys."""

import os
import re
import signal

import accessibility
import desktop
import processes
import screenshot
import waiting

SCANNED = re.compile(r"^scanned ([\d,]+) files in ([\d.]+)s$")

# No window is as narrow as the panel, and no panel as wide as a window. Pixels.
PANEL_LIMIT = 600


class Program:
    """`environment` is the whole environment it gets; its output goes to `log`. `through` is a command that turns into
    the one it is given."""

    def __init__(self, path, environment, log, through=(), arguments=()):
        self.log = log
        with open(log, "ab") as output:
            self.process = processes.start([*through, path, *arguments], env=environment, stdout=output, stderr=output)
        self.pid = self.process.pid
        self._bus = accessibility.Bus()

    def announcements(self):
        """What those who hear the screen are told from now on."""
        return accessibility.Announcements(self._bus)

    def application(self):
        return self._bus.application(self.pid)

    @property
    def running(self):
        return self.process.poll() is None

    def window(self, seconds=30.0):
        """The window in the accessibility tree, once it is there."""
        return waiting.until("window of the program", lambda: next(iter(self._windows(False)), None), seconds)

    def panel(self, seconds=20.0):
        """The small window that drops from the tray, once it is open."""
        return waiting.until("the panel", lambda: next(iter(self.open_panels()), None), seconds)

    def open_panel(self, press):
        """Opens the panel with that press on the item, and answers with it once it has the keyboard. A window manager
        that was still placing the keyboard after the last window takes it away again; the panel goes with it, and the
        press is made once more."""
        def opened():
            if not self.open_panels():
                press()
            try:
                return waiting.until("the keyboard in the panel", self._panel_with_keyboard, 3)
            except waiting.Late:
                return None
        return waiting.until("the panel with the keyboard", opened, 40)

    def _panel_with_keyboard(self):
        panel = next((panel for panel in self.open_panels() if panel.has(accessibility.ACTIVE)), None)
        return panel if panel and desktop.focused() in desktop.windows_of(self.pid) else None

    def open_panels(self):
        try:
            return [panel for panel in self._windows(True) if panel.has(accessibility.SHOWING)]
        except accessibility.Gone:
            return []

    def _windows(self, narrow):
        """Those in the accessibility tree, hidden ones among them. Both kinds have the same title; their width tells
        them apart."""
        if not self.running:
            raise AssertionError(f"the program ended with {self.process.returncode}: {self.output()}")
        try:
            application = self.application()
            children = application.children if application else []
            return [window for window in children if (window.extents[2] < PANEL_LIMIT) == narrow]
        except accessibility.Gone:
            return []

    def window_ids(self):
        """Ids of its open windows on the display, the panel left out."""
        return [window for window in desktop.windows_of(self.pid) if desktop.width_of(window) >= PANEL_LIMIT]

    def window_id(self, seconds=20.0):
        return waiting.until("window on the display", lambda: next(iter(self.window_ids()), None), seconds)

    def close_window(self):
        """Closes the window as its frame's button does, and waits until it is gone."""
        desktop.close_window(self.window_id())
        waiting.until("no window on the display", lambda: not self.window_ids())

    def close_panel(self):
        """By the key for that."""
        waiting.until("the keyboard in the panel", lambda: self.panel().has(accessibility.ACTIVE))
        before = desktop.focused()
        is_own = before in desktop.all_windows_of(self.pid)
        desktop.keys("Escape")
        waiting.until("the panel closed", lambda: not self.open_panels())
        if is_own:
            waiting.until("keys go elsewhere", lambda: desktop.focused() != before)

    def exited(self, seconds=20.0):
        """Its exit code, once it has ended by itself."""
        waiting.until("the end of the program", lambda: not self.running, seconds)
        return self.process.returncode

    def activate(self):
        """Gives the window the keyboard, and waits until the program knows that it has it."""
        desktop.activate(self.window_id)
        waiting.until("the keyboard in the window", lambda: self.window().has(accessibility.ACTIVE))

    def words(self):
        """Everything the window says, in reading order."""
        return self.window().names()

    def says(self, words, seconds=20.0):
        """Waits until these words stand in the window; `words` is the whole text, or a pattern that matches it."""
        return _until_said("the window", self.words, words, seconds)

    def panel_says(self, words, seconds=20.0):
        """The same of the panel."""
        return _until_said("the panel", lambda: self.panel().names(), words, seconds)

    def scanned(self, seconds=30.0, unlike=None):
        """(files, seconds) of the top bar, once a scan has ended and its button says so; with `unlike`, once the
        text differs from that."""
        def look():
            texts = self.words()
            text = next((text for text in texts if SCANNED.match(text)), None)
            return text if text and text != unlike and "Rescan" in texts else None
        text = waiting.until("the end of the scan", look, seconds)
        found = SCANNED.match(text)
        return int(found.group(1).replace(",", "")), float(found.group(2))

    def press(self, name, role="push button", seconds=20.0):
        self.window().one(role, name, seconds).act("Press")

    def selected(self, pane, seconds=20.0):
        """Waits until the sidebar shows that screen as the chosen one."""
        row = self.window().one("list", "Screens").one("list item", pane)
        waiting.until(f"{pane} chosen", lambda: row.has(accessibility.SELECTED), seconds)

    def open_pane(self, digit, pane):
        """Chooses a screen by its keys."""
        self.activate()
        desktop.keys("ctrl+" + digit)
        self.selected(pane)

    def rows(self, table):
        """The rows of a list of files that are on the screen, in reading order."""
        return [name for found in self.window().all("list", table) for name in found.names("list item")]

    def search(self, text):
        """Replaces what stands in the search field of the screen that is chosen."""
        field = self.window().one("text", "Search every file name on this Mac")
        waiting.until("the keyboard in the search field", lambda: field.has(accessibility.FOCUSED))
        desktop.keys("ctrl+a", "BackSpace")
        desktop.type_text(text)
        waiting.until(f"{text} in the search field", lambda: field.text == text)

    def tab_to(self, reached, stops=40):
        """Presses Tab until `reached` answers yes: each time once the last press has moved the keyboard on, so that none
        goes past the right place."""
        for _ in range(stops):
            if reached():
                return
            before = self._with_keyboard()
            desktop.keys("Tab")
            try:
                waiting.until("the keyboard elsewhere", lambda: self._with_keyboard() != before, 3)
            except waiting.Late:
                pass  # It has nowhere else to go.
        waiting.until(f"the right place within {stops} presses of Tab", reached)

    def _with_keyboard(self):
        """What has the keyboard, with all that it lies in."""
        return [thing for thing in self.application().walk() if self._has(thing, accessibility.FOCUSED)]

    @staticmethod
    def _has(thing, state):
        try:
            return thing.has(state)
        except accessibility.Gone:
            return False

    def picture(self, desk):
        # What the window says of itself; the frame that a window manager puts around it is none of it.
        return screenshot.crop(desk.picture(), *self.window().extents)

    def output(self):
        with open(self.log, encoding="utf-8", errors="replace") as log:
            return log.read()[-4000:]

    def quit(self, seconds=20):
        """Ends it as a session does when the user logs out. Answers whether it ended when asked."""
        return processes.end(self.process, seconds)

    def crashed(self):
        code = self.process.poll()
        return code is not None and code in {-signal.SIGSEGV, -signal.SIGABRT, -signal.SIGBUS, -signal.SIGFPE,
                                             -signal.SIGILL}

    def descriptor_count(self):
        return len(os.listdir(f"/proc/{self.pid}/fd"))


def _until_said(who, ask, words, seconds):
    matches = words.search if hasattr(words, "search") else (lambda text: text == words)
    return waiting.until(f"{who} says {words!r}", lambda: next((text for text in ask() if matches(text)), None), seconds)
