"""Measures of removing: deleting for good beside `rm -rf`, what the window feels of it, and clearing findings to the
Trash."""

import shutil
import statistics
import tempfile
from pathlib import Path

from comparison.programs import PROCESS, ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Row, milliseconds

FILES_IN_A_FOLDER = 100
FINDINGS, ENTRIES_IN_A_FINDING = 60, 167
# Each makes and deletes all its files; more would take longer than all other measures together.
MOST_ROUNDS = 5


def removal(context):
    with tempfile.TemporaryDirectory(prefix="quillbrook-bench-removal-", dir=context.directory) as place:
        files = 10_000 if context.quick else 100_000
        yield _deleting(context, Path(place), files)
        yield _stall(context, Path(place), files)
        yield _clearing(context, Path(place))


def _deleting(context, place, files):
    """The whole processes, each on a fresh tree that it alone has the making of behind it."""
    tree = place / "tree"

    def contestant(command):
        def fresh_run():
            _make(context, tree, files, FILES_IN_A_FOLDER)
            return run([*command, str(tree)], parse=False)
        return fresh_run

    rounds = context.in_turn({"own": contestant([context.program("RemovalOnce"), "delete"]),
                              "rm": contestant(["/bin/rm", "-rf"])}, min(context.rounds, MOST_ROUNDS))
    if tree.exists():
        raise ProgramFailed("not all was deleted")
    return ratio_row("delete_to_rm", f"deleting {files:,} files, {FILES_IN_A_FOLDER} in a folder ÷ `rm -rf`", rounds,
                     ("own", PROCESS), ("rm", PROCESS), bar=AtMost(1.20))


def _stall(context, place, files):
    """The main thread of the model and of its screen meanwhile."""
    home = place / "stalled"

    def fresh_run():
        shutil.rmtree(home, ignore_errors=True)
        _make(context, home / "folder", files, FILES_IN_A_FOLDER)
        return run([context.program("RemovalStall"), str(home), str(home / "folder")])

    rounds = context.in_turn({"stall": fresh_run}, 3)
    outputs = [each.output for each in rounds.runs("stall")]
    waits, busy = ([each[key] * 1000 for each in outputs] for key in ("longest_wait", "longest_busy"))
    return Row("delete_stall_ms", f"longest stall of the main thread while {files:,} files are deleted",
               statistics.median(waits), milliseconds, AtMost(50),
               f"the longest of all runs {milliseconds(max(waits))}; of its own doing at most {milliseconds(max(busy))}",
               {"waits_ms": waits, "busy_ms": busy})


def _clearing(context, place):
    home, data = place / "home", place / "data"

    def fresh_run():
        shutil.rmtree(data, ignore_errors=True)
        data.mkdir()
        shutil.rmtree(home, ignore_errors=True)
        _make(context, home, FINDINGS * ENTRIES_IN_A_FINDING, ENTRIES_IN_A_FINDING)
        return run([context.program("RemovalOnce"), "clear", str(home), str(data)])

    rounds = context.in_turn({"clear": fresh_run}, min(context.rounds, MOST_ROUNDS))
    output = rounds.runs("clear")[0].output
    times = [seconds * 1000 for seconds in rounds.values("clear", "seconds")]
    return Row("clear_ms", f"clearing {output['findings']} findings with {output['entries']:,} entries to the Trash",
               statistics.median(times), milliseconds, AtMost(1000),
               f"with journal and ledger; {milliseconds(min(times))} to {milliseconds(max(times))}", {"times_ms": times})


def _make(context, folder, files, in_a_folder):
    run([context.program("RemovalOnce"), "make", str(folder), str(files), str(in_a_folder)])
