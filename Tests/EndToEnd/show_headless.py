#!/usr/bin/python3
"""Shows Quillbrook on a display in memory, for a machine that has none: waits for the first scan, tells what was
found, leaves a picture of the window, and ends what it started."""

import argparse
import os
import pathlib
import shutil
import sys
import tempfile

import accessibility
import desktop
import processes
import program
import screenshot
import waiting


def environment():
    """This user's own, with a window that can be read and drawn without a graphics card."""
    return os.environ | {"QT_QPA_PLATFORM": "xcb", "QT_QUICK_BACKEND": "software",
                         "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}


def settled(desk):
    """A picture of the display once nothing moves on it any more, or after a while as it is."""
    shown = [desk.picture()]

    def is_still():
        shown.append(desk.picture())
        return shown[-1] == shown[-2]
    try:
        waiting.until("a picture that stays", is_still, 5, pause=0.3)
    except waiting.Late:
        pass  # Something always moves.
    return shown[-1]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--picture", required=True, type=pathlib.Path)
    parser.add_argument("--seconds", type=float, default=600, help="how long the first scan may take")
    arguments = parser.parse_args()

    processes.adopt_orphans()
    folder = tempfile.mkdtemp(prefix="quillbrook-")
    desk = desktop.Desktop(folder, size=(1260, 820), window_manager=False)
    log = arguments.picture.with_suffix(".log")
    log.unlink(missing_ok=True)
    quillbrook = None
    try:
        desk.start()
        quillbrook = program.Program(arguments.program.resolve(), environment(), log)
        print(f"Quillbrook runs on display {os.environ['DISPLAY']}; waiting for its first scan.", flush=True)
        try:
            quillbrook.scanned(arguments.seconds)
        finally:
            screenshot.write_png(settled(desk), arguments.picture)
            print(f"A picture of the window is in {arguments.picture}; what it wrote to its log, in {log}.")
        print("The window says:")
        for text in quillbrook.words():
            print(f"    {text}")
        ended = quillbrook.quit()
        print("Ended." if ended else "It did not end when asked, and was ended.")
        return 0
    except (waiting.Late, accessibility.Gone, AssertionError) as error:
        print(f"Quillbrook did not come up: {error}", file=sys.stderr)
        return 1
    finally:
        if quillbrook and quillbrook.running:
            quillbrook.quit()
        desk.stop()
        processes.end_all()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
