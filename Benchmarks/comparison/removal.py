"""Measures of removing: deleting for good beside `rm -rf`, moving to the Trash, counting before one asks."""

import shutil
import statistics
import tempfile
from pathlib import Path

from comparison.programs import PROCESS, ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Row, milliseconds

FILES_IN_A_FOLDER = 100


def removal(context):
    files = 10_000 if context.quick else 100_000
    with tempfile.TemporaryDirectory(prefix="quillbrook-bench-removal-", dir=context.directory) as place:
        place = Path(place)
        yield _deleting(context, place, "delete_to_rm", files, FILES_IN_A_FOLDER)
        yield _deleting(context, place, "delete_wide_to_rm", files, files)
        yield _moving(context, place, files)
        yield _counting(context, place, files * 10)


def _deleting(context, place, name, files, in_a_folder):
    """The whole processes, each on a fresh tree that it alone has the making of behind it."""
    tree = place / "tree"

    def contestant(command):
        def fresh_run():
            shutil.rmtree(tree, ignore_errors=True)
            _make(tree, files, in_a_folder)
            return run([*command, str(tree)], parse=False)
        return fresh_run

    rounds = context.in_turn({"own": contestant([context.program("RemovalOnce"), "delete"]),
                              "rm": contestant(["/bin/rm", "-rf"])})
    if tree.exists():
        raise ProgramFailed("not all was deleted")
    return ratio_row(name, f"deleting {files:,} files, {in_a_folder:,} in a folder ÷ `rm -rf`", rounds,
                     ("own", PROCESS), ("rm", PROCESS), bar=AtMost(1.20))


def _moving(context, place, files):
    tree = place / "moved"
    _make(tree, files, FILES_IN_A_FOLDER)
    command = [context.program("RemovalOnce"), "trash", str(tree), str(place / "Trash")]
    return _milliseconds("trash_ms", f"moving a folder of {files:,} files to the Trash", 5,
                         [run(command) for _ in range(context.rounds)])


def _counting(context, place, files):
    tree = place / "counted"
    _make(tree, files, files)
    command = [context.program("RemovalOnce"), "count", str(tree), "5000"]
    return _milliseconds("count_ms", f"counting to 5,000 in a folder of {files:,} files", 20,
                         [run(command) for _ in range(context.rounds)])


def _milliseconds(name, measure, limit, runs):
    times = [each.output["seconds"] * 1000 for each in runs]
    return Row(name, measure, statistics.median(times), milliseconds, AtMost(limit),
               f"{milliseconds(min(times))} to {milliseconds(max(times))}", {"times_ms": times})


def _make(tree, files, in_a_folder):
    for start in range(0, files, in_a_folder):
        folder = tree / f"folder {start // in_a_folder}"
        folder.mkdir(parents=True)
        for number in range(min(in_a_folder, files - start)):
            with open(folder / f"file {number}", "xb"):
                pass
