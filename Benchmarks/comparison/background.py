"""Measures of the whole program as a person has it all day: its start, and its life in the tray."""

import statistics
from pathlib import Path

from comparison.programs import run
from comparison.rows import AtMost, Row, mebibytes, milliseconds, percent, whole

DRIVER = Path(__file__).resolve().parents[1] / "TrayOnce.py"
MINUTE = 60


def background(context):
    program = str(context.programs.parent / "quillbrook")
    idle = 30 if context.quick else 300
    small = _measured(program, ["--starts", str(context.rounds), "--idle", str(idle)])
    yield Row("first_frame_ms", "from the start of the process to the first painted frame",
              statistics.median(small["starts"]) * 1000, milliseconds, AtMost(600),
              f"on a display in memory, drawn without a graphics card; the longest of {len(small['starts'])} "
              f"{milliseconds(max(small['starts']) * 1000)}", {"starts_s": small["starts"]})
    yield _memory("tray_memory", "memory with the window closed, a small home", small, AtMost(90 * 2**20))
    yield from _idle(small["idle"])
    large = _measured(program, ["--starts", "1", "--idle", "0", "--home", context.home_tree()])
    yield _memory("tray_memory_large", "the same with the tree of the large home", large, None)


def _measured(program, arguments):
    # The interpreter that knows the system's own modules.
    return run(["/usr/bin/python3", "-B", str(DRIVER), "--program", program, *arguments], timeout=1800).output


def _memory(name, measure, figures, bar):
    closed, opened = figures["memory"]["closed"], figures["memory"]["open"]
    return Row(name, measure, closed["rss"], mebibytes, bar,
               f"resident; of its own {mebibytes(closed['uss'])}, its share {mebibytes(closed['pss'])}; with the window "
               f"open {mebibytes(opened['rss'])}", figures["memory"])


def _idle(figures):
    minutes = figures["seconds"] / MINUTE
    yield Row("tray_processor", "processor time in the tray, of one core",
              100 * figures["processor_seconds"] / figures["seconds"], percent, AtMost(0.1),
              f"{figures['processor_seconds']:.3f} s in {minutes:.1f} minutes, watching", figures)
    yield Row("tray_wake_ups", "wake-ups a minute in the tray", figures["wake_ups"] / minutes, whole)
