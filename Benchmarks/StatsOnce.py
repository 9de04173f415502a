#!/usr/bin/python3
"""Starts the real program on a display in memory, opens the screen of the live figures, and prints as JSON what
processor time the process takes while that shows. Everything it starts ends with it."""

import argparse
import json
import os
import pathlib
import shutil
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "Tests" / "EndToEnd"))

import desktop  # noqa: E402
import homes  # noqa: E402
import processes  # noqa: E402
import program  # noqa: E402

TICKS = os.sysconf("SC_CLK_TCK")
# Long enough for the work of a start to be over.
SETTLING = 5


def processor_seconds(pid):
    with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--seconds", type=float, default=60)
    arguments = parser.parse_args()

    processes.adopt_orphans()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="quillbrook-stats-"))
    desk = desktop.Desktop(str(folder / "desktop"))
    quillbrook = None
    try:
        desk.start()
        home = homes.Home(folder)
        quillbrook = program.Program(arguments.program.resolve(), home.environment(), folder / "program.log")
        quillbrook.scanned()
        quillbrook.open_pane("9", "This Mac")
        time.sleep(SETTLING)
        started, before = time.monotonic(), processor_seconds(quillbrook.process.pid)
        time.sleep(arguments.seconds)
        taken = processor_seconds(quillbrook.process.pid) - before
        print(json.dumps({"seconds": time.monotonic() - started, "processor_seconds": taken}))
        return 0
    finally:
        if quillbrook and quillbrook.running:
            quillbrook.quit()
        desk.stop()
        processes.end_all()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
