"""Measures of the library of pictures: finding all of them, and moving many to the Trash; and what the screen of the
live figures takes while it shows."""

import statistics
from pathlib import Path

from comparison.programs import ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Row, milliseconds, percent

PICTURES_IN_A_FOLDER = 200
DRIVER = Path(__file__).resolve().parents[1] / "StatsOnce.py"


def photos(context):
    place = context.scratch("photos")
    yield _querying(context, place / "many", 20_000 if context.quick else 200_000)
    yield from _moving(context, place, 1_000 if context.quick else 10_000)
    yield _showing(context, 10 if context.quick else 30)


def _querying(context, tree, pictures):
    _make(tree, pictures)
    rounds = context.in_turn({"own": lambda: run([context.program("PhotosOnce"), str(tree)]),
                              "bare": lambda: run([context.program("BareWalk"), str(tree), "1"])})
    if rounds.runs("own")[0].output["assets"] != pictures:
        raise ProgramFailed("not all pictures were found")
    return ratio_row("photo_query_to_bare_walk", f"query over {pictures:,} pictures ÷ bare walk", rounds,
                     ("own", "seconds"), ("bare", "seconds"), bar=AtMost(1.50), note="1 thread")


def _moving(context, place, pictures):
    outputs = []
    for number in range(max(3, context.rounds // 3)):
        home = place / f"moved {number}"
        _make(home, pictures)
        outputs.append(run([context.program("PhotosStall"), str(home)]).output)
        if str(pictures) not in outputs[-1]["result"]:
            raise ProgramFailed("not all pictures were moved")
    times, waits, busy = ([each[key] * 1000 for each in outputs] for key in ("seconds", "longest_wait", "longest_busy"))
    yield Row("photos_to_trash_ms", f"deleting {pictures:,} pictures to the Trash", statistics.median(times), milliseconds,
              AtMost(4000), f"from the press to the result; {milliseconds(min(times))} to {milliseconds(max(times))}",
              {"times_ms": times})
    yield Row("photos_stall_ms", f"longest stall of the main thread while {pictures:,} pictures are deleted",
              statistics.median(waits), milliseconds, AtMost(50),
              f"the longest of all runs {milliseconds(max(waits))}; of its own doing at most {milliseconds(max(busy))}",
              {"waits_ms": waits, "busy_ms": busy})


def _showing(context, seconds):
    program = str(context.programs.parent / "quillbrook")
    figures = run(["/usr/bin/python3", "-B", str(DRIVER), "--program", program, "--seconds", str(seconds)],
                  timeout=600).output
    return Row("stats_processor", "processor time of the live figures while they show, of one core",
               100 * figures["processor_seconds"] / figures["seconds"], percent, AtMost(1),
               f"{figures['processor_seconds']:.2f} s in {figures['seconds']:.0f} s, drawn without a graphics card", figures)


def _make(tree, pictures):
    for start in range(0, pictures, PICTURES_IN_A_FOLDER):
        folder = tree / "Pictures" / f"{start // PICTURES_IN_A_FOLDER:04}"
        folder.mkdir(parents=True)
        for number in range(min(PICTURES_IN_A_FOLDER, pictures - start)):
            with open(folder / f"DSC{number:05}.jpg", "xb"):
                pass
