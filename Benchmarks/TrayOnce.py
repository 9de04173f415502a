#!/usr/bin/python3
"""Starts the real program on a display in memory again and again, then leaves it in the tray, and prints as JSON how
long a start takes to its first painted frame, what memory it holds once its window is closed, and what it does there
while nobody asks anything of it. Everything it starts ends with it."""

import argparse
import json
import mmap
import os
import pathlib
import re
import shutil
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "Tests" / "EndToEnd"))

import accessibility  # noqa: E402
import desktop  # noqa: E402
import homes  # noqa: E402
import processes  # noqa: E402
import program  # noqa: E402
import tray_host  # noqa: E402
import waiting  # noqa: E402

TICKS = os.sysconf("SC_CLK_TCK")
# The window fills nearly all of the display. What a window manager draws around it lies outside of this.
DISPLAY = (1280, 900)
INSIDE = (100, 100, 1180, 800)
# A window that is there and has not drawn yet is of one colour.
DRAWN = 4
FILES_IN_A_FOLDER = 100
# Long enough for the work of a closing window to be over.
SETTLING = 10


class Screen:
    """What is on the display at this moment, looked at without asking anyone."""

    def __init__(self, folder):
        with open(os.path.join(folder, "screen", "Xvfb_screen0"), "rb") as file:
            self._pixels = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        width, height = DISPLAY
        self._header = len(self._pixels) - width * height * 4

    def is_drawn(self):
        left, top, right, bottom = INSIDE
        colours = set()
        for y in range(top, bottom, 20):
            start = self._header + (y * DISPLAY[0] + left) * 4
            row = memoryview(self._pixels)[start:start + (right - left) * 4].cast("I")[::8]
            colours.update(row)
        return len(colours) >= DRAWN


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--files", type=int, default=0, help="so many more in the home that is measured")
    parser.add_argument("--starts", type=int, default=9)
    parser.add_argument("--idle", type=float, default=300, metavar="SECONDS", help="0 leaves the time in the tray out")
    arguments = parser.parse_args()

    processes.adopt_orphans()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="quillbrook-tray-"))
    desk = desktop.Desktop(str(folder / "desktop"), size=DISPLAY)
    try:
        desk.start()
        # Off what is looked at: a pointer has shades of its own.
        desktop.point(0, 0)
        tray = tray_host.TrayHost(folder)
        home = make_home(folder, arguments.files)
        figures = {"starts": starts(arguments, folder, home), "memory": memory(arguments, folder, home)}
        if arguments.idle > 0:
            figures["idle"] = idle(arguments, folder, home, tray)
        print(json.dumps(figures))
        return 0
    except (waiting.Late, accessibility.Gone, AssertionError) as error:
        print(f"{type(error).__name__}: {error}", file=sys.stderr)
        return 1
    finally:
        desk.stop()
        processes.end_all()
        shutil.rmtree(folder, ignore_errors=True)


def make_home(folder, files):
    home = homes.Home(folder)
    home.file(".cache/pip/wheel.whl", 3_000_000)
    home.file("report.pdf", 300_000)
    for first in range(0, files, FILES_IN_A_FOLDER):
        below = home.path / "development" / f"folder {first}"
        below.mkdir(parents=True)
        for number in range(first, min(first + FILES_IN_A_FOLDER, files)):
            (below / f"file {number}.txt").touch()
    return home


def plain(home):
    """As most people's: nobody reads the window aloud, which would cost the program memory and time."""
    environment = home.environment()
    del environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"]
    return environment


def starts(arguments, folder, home):
    """Seconds from the start of the process to the first frame, one a start; the first, which warms up, left out."""
    screen = Screen(folder / "desktop")
    found = []
    for _ in range(arguments.starts + 1):
        waiting.until("an empty display", lambda: not screen.is_drawn(), 20)
        begin = time.monotonic()
        started = program.Program(arguments.program.resolve(), plain(home), folder / "program.log")
        waiting.until("the first frame", screen.is_drawn, 60, pause=0.002)
        found.append(time.monotonic() - begin)
        end(started)
    return found[1:]


def memory(arguments, folder, home):
    """Bytes of a process that has measured the home and closed its window."""
    home.settings.unlink(missing_ok=True)
    started = program.Program(arguments.program.resolve(), plain(home), folder / "program.log")
    window = started.window_id(60)
    files = waiting.until("the end of the first scan", lambda: home.settings.exists() and re.search(
        r"^Quillbrook\.lastFileCount=(\d+)$", home.settings.read_text(encoding="utf-8"), re.M), 600)
    open_window = resident(started.pid)
    desktop.close_window(window)
    waiting.until("no window", lambda: not desktop.windows_of(started.pid), 20)
    time.sleep(SETTLING)
    if not started.running:
        raise AssertionError(f"the program ended with {started.process.returncode}: {started.output()}")
    closed = resident(started.pid)
    end(started)
    return {"open": open_window, "closed": closed, "files": int(files.group(1))}


def idle(arguments, folder, home, tray):
    """What it takes while it watches, after its first look and with no window."""
    started = program.Program(arguments.program.resolve(), home.environment(), folder / "program.log")
    started.scanned(600)
    desktop.close_window(started.window_id())
    waiting.until("no window", lambda: not desktop.windows_of(started.pid), 20)
    tray.item().activate(DISPLAY[0] - 40, DISPLAY[1] - 20)
    panel = started.panel()
    panel.one("check box", "Keep watching this Mac").act("Toggle")
    panel.one("label", lambda text: re.match("Last checked .*", text), 600)
    started.close_panel()
    # The watcher's own first look is still to come, seconds after it was switched on.
    time.sleep(3 * SETTLING)
    before, switches, begin = processor_seconds(started.pid), wake_ups(started.pid), time.monotonic()
    time.sleep(arguments.idle)
    passed = time.monotonic() - begin
    taken = [end - start for start, end in zip(before, processor_seconds(started.pid))]
    figures = {"seconds": passed, "processor_seconds": max(taken),
               "wake_ups": wake_ups(started.pid) - switches, "memory": resident(started.pid)}
    end(started)
    return figures


def resident(pid):
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        bytes_of = {name: int(kibibytes) * 1024 for name, kibibytes in re.findall(r"^(\w+):\s+(\d+) kB", file.read(), re.M)}
    return {"rss": bytes_of["Rss"], "pss": bytes_of["Pss"],
            "uss": bytes_of["Private_Clean"] + bytes_of["Private_Dirty"]}


def processor_seconds(pid):
    """Of all its threads: those that have ended among them, in hundredths; and of those that live, exactly."""
    with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as file:
        fields = file.read().rpartition(")")[2].split()
    living = 0
    for task in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{task}/schedstat", encoding="ascii") as file:
            living += int(file.read().split()[0])
    return (int(fields[11]) + int(fields[12])) / TICKS, living / 1e9


def wake_ups(pid):
    """How often its threads have gone to sleep."""
    count = 0
    for task in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{task}/status", encoding="utf-8", errors="replace") as file:
            count += int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", file.read(), re.M).group(1))
    return count


def end(started):
    if not started.quit(20):
        raise AssertionError("the program did not end when asked")


if __name__ == "__main__":
    sys.exit(main())
