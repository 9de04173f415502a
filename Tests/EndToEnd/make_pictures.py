#!/usr/bin/python3
"""Makes the pictures of the documents on a display in memory: each screen of the main window over a made-up machine, as
`quillbrook-offline` shows it, and what can go as `quillbrook` itself finds it in a made-up home folder."""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import desktop
import homes
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

# The picture of a real run; the home folder for it, and what each of its megabytes takes here.
REAL = "free-up-space"
FIXTURE = pathlib.Path(__file__).parents[1] / "Support" / "fixture_home.py"
MEGABYTE = 65_536

# Each picture of the made-up machine: the state that the program is told, the screen's name, and what is pressed there.
PICTURES = {
    "whats-using-space": ("ready", "What's using space", ()),
    "biggest-files": ("ready", "Biggest files", ()),
    "photos-by-date": ("ready", "Photos by date", ("See what is in this range",)),
    "automatic-rules": ("rules", "Automatic rules", ()),
    "move-to-another-drive": ("rules", "Move to another drive", ()),
    "apps": ("ready", "Apps", ()),
    "this-mac": ("ready", "This Mac", ()),
    "past-answers": ("conversation", "Past answers", ()),
}


def real(program_path, work):
    """The program itself, once it has seen all of a made-up home folder."""
    home = homes.Home(work)
    subprocess.run([sys.executable, "-B", FIXTURE, home.path, "--unit", str(MEGABYTE)], check=True)
    font = {"FONTCONFIG_FILE": os.environ["FONTCONFIG_FILE"]} if "FONTCONFIG_FILE" in os.environ else {}
    quillbrook = program.Program(program_path, home.environment() | font | {"LC_ALL": "en_US.UTF-8"}, work / "log")
    before = quillbrook.says(program.SCANNED)
    quillbrook.press("Include them")
    quillbrook.scanned(unlike=before)
    return quillbrook


def made_up(offline, work, name):
    """The program over a made-up machine, on the screen that the picture is of."""
    state, pane, presses = PICTURES[name]
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
    return quillbrook


def make(arguments, name):
    work = pathlib.Path(tempfile.mkdtemp(prefix="quillbrook-pictures-"))
    # Without a window manager there is no frame, and the window takes the whole display.
    desk = desktop.Desktop(str(work), size=SIZE, window_manager=False)
    quillbrook = None
    try:
        desk.start()
        desktop.point(*ASIDE)
        if name == REAL:
            quillbrook = real(arguments.program.resolve(), work)
        else:
            quillbrook = made_up(arguments.offline.resolve(), work, name)
        time.sleep(COURSE if name == "this-mac" else SETTLING)
        screenshot.write_png(desk.picture(), arguments.folder / f"{name}.png")
    finally:
        if quillbrook and quillbrook.running:
            quillbrook.quit()
        desk.stop()
        shutil.rmtree(work, ignore_errors=True)


def main():
    names = [REAL, *PICTURES]
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--offline", required=True, type=pathlib.Path, help="the program quillbrook-offline")
    parser.add_argument("--program", required=True, type=pathlib.Path, help="the program quillbrook")
    parser.add_argument("--folder", required=True, type=pathlib.Path, help="where the pictures go")
    parser.add_argument("names", nargs="*", metavar="NAME", help=f"which of {', '.join(names)}; all without")
    arguments = parser.parse_args()
    processes.adopt_orphans()
    try:
        for name in arguments.names or names:
            make(arguments, name)
            print(name, flush=True)
        return 0
    finally:
        processes.end_all()


if __name__ == "__main__":
    sys.exit(main())
