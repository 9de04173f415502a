#!/usr/bin/python3
"""Makes the pictures of the documents: each screen of the main window over a made-up machine, as `quillbrook-offline`
shows it on a display in memory."""

import argparse
import pathlib
import shutil
import sys
import tempfile
import time

import desktop
import processes
import program
import screenshot
import show_headless

SIZE = (1260, 820)
# What comes in moves for a moment.
SETTLING = 1.5
# The live figures are shown with some of their course.
COURSE = 100

# A folder's tile on the map, and where the pointer tells nothing of what is under it.
FOLDER = (300, 250)
ASIDE = (120, 500)

# Each picture: the state that the program is told, the screen's key and name, and what is pressed there.
PICTURES = {
    "free-up-space": ("rules", "1", "Free up space", ()),
    "whats-using-space": ("ready", "2", "What's using space", ()),
    "biggest-files": ("ready", "3", "Biggest files", ()),
    "photos-by-date": ("ready", "5", "Photos by date", ("See what is in this range",)),
    "automatic-rules": ("rules", "6", "Automatic rules", ()),
    "move-to-another-drive": ("rules", "7", "Move to another drive", ()),
    "apps": ("ready", "8", "Apps", ()),
    "this-mac": ("ready", "9", "This Mac", ()),
    "past-answers": ("conversation", "0", "Past answers", ()),
}


def make(offline, folder, name):
    state, key, pane, presses = PICTURES[name]
    work = pathlib.Path(tempfile.mkdtemp(prefix="quillbrook-pictures-"))
    # Without a window manager there is no frame, and the window takes the whole display.
    desk = desktop.Desktop(str(work), size=SIZE, window_manager=False)
    quillbrook = None
    try:
        desk.start()
        desktop.point(*ASIDE)
        environment = show_headless.environment() | {"LC_ALL": "en_US.UTF-8", "TZ": "UTC"}
        quillbrook = program.Program(offline, environment, work / "log", arguments=(state,))
        quillbrook.scanned()
        time.sleep(SETTLING)
        quillbrook.window().one("list", "Screens").one("list item", pane).act("Press")
        quillbrook.selected(pane)
        for button in presses:
            quillbrook.press(button)
        if name == "whats-using-space":
            desktop.click(*FOLDER)
            desktop.point(*ASIDE)
        time.sleep(COURSE if name == "this-mac" else SETTLING)
        screenshot.write_png(desk.picture(), folder / f"{name}.png")
    finally:
        if quillbrook and quillbrook.running:
            quillbrook.quit()
        desk.stop()
        shutil.rmtree(work, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--offline", required=True, type=pathlib.Path, help="the program quillbrook-offline")
    parser.add_argument("--folder", required=True, type=pathlib.Path, help="where the pictures go")
    parser.add_argument("names", nargs="*", metavar="NAME", help=f"which of {', '.join(PICTURES)}; all without")
    arguments = parser.parse_args()
    processes.adopt_orphans()
    try:
        for name in arguments.names or PICTURES:
            make(arguments.offline.resolve(), arguments.folder, name)
            print(name, flush=True)
        return 0
    finally:
        processes.end_all()


if __name__ == "__main__":
    sys.exit(main())
