"""Measures of removing: deleting for good beside `rm -rf`, what the window feels of it, and clearing findings to the
Trash."""

import itertools
import os
import statistics

from comparison.programs import PROCESS, ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Row, milliseconds

FILES_IN_A_FOLDER = 100
FINDINGS, ENTRIES_IN_A_FINDING = 60, 167
MOST_ROUNDS = 3
# A round that is taken again has its trees made where much was just deleted, which is slow.
TAKEN_AGAIN = 2


def removal(context):
    place = context.scratch("removal")
    trees = Trees(context, place, 10_000 if context.quick else 100_000)
    rounds = min(context.rounds, MOST_ROUNDS)
    # A file system that has just deleted much is slow to make files, ext4 for five minutes. So nothing is deleted
    # before all that is to go has been made, and clearing, which makes a note for each thing, comes first.
    trees.make(3 * rounds)
    yield _clearing(context, place, context.rounds)
    yield _deleting(context, trees, rounds)
    yield _stall(context, trees, rounds)


class Trees:
    """Fresh trees to delete, one after the other, each in a home of its own."""

    def __init__(self, context, place, files):
        self.files = files
        self._context, self._place, self._made, self._fresh = context, place, 0, []

    def make(self, count):
        for _ in range(count):
            self._made += 1
            tree = self._place / f"tree {self._made}" / "home" / "folder"
            _make(self._context, tree, self.files, FILES_IN_A_FOLDER)
            self._fresh.append(tree)
        # What is written behind the back of a measure is not its own.
        os.sync()

    def fresh(self):
        """One that nothing was deleted from; a round that is taken again makes one more."""
        if not self._fresh:
            self.make(1)
        return self._fresh.pop(0)


def _deleting(context, trees, wanted):
    """The whole processes, each on a fresh tree."""
    def contestant(command):
        def fresh_run():
            tree = trees.fresh()
            outcome = run([*command, str(tree)], parse=False)
            if tree.exists():
                raise ProgramFailed("not all was deleted")
            return outcome
        return fresh_run

    rounds = context.in_turn({"own": contestant([context.program("RemovalOnce"), "delete"]),
                              "rm": contestant(["/bin/rm", "-rf"])}, wanted, warm_up=False, most=wanted + TAKEN_AGAIN)
    files = trees.files
    return ratio_row("delete_to_rm", f"deleting {files:,} files, {FILES_IN_A_FOLDER} in a folder ÷ `rm -rf`", rounds,
                     ("own", PROCESS), ("rm", PROCESS), bar=AtMost(1.20))


def _stall(context, trees, wanted):
    """The main thread of the model and of its screen meanwhile."""
    def fresh_run():
        tree = trees.fresh()
        return run([context.program("RemovalStall"), str(tree.parent), str(tree)])

    rounds = context.in_turn({"stall": fresh_run}, wanted, warm_up=False, most=wanted + TAKEN_AGAIN)
    files = trees.files
    outputs = [each.output for each in rounds.runs("stall")]
    waits, busy = ([each[key] * 1000 for each in outputs] for key in ("longest_wait", "longest_busy"))
    return Row("delete_stall_ms", f"longest stall of the main thread while {files:,} files are deleted",
               statistics.median(waits), milliseconds, AtMost(50),
               f"the longest of all runs {milliseconds(max(waits))}; of its own doing at most {milliseconds(max(busy))}",
               {"waits_ms": waits, "busy_ms": busy})


def _clearing(context, place, wanted):
    numbers = itertools.count(1)

    def fresh_run():
        machine = place / f"machine {next(numbers)}"
        home, data = machine / "home", machine / "data"
        data.mkdir(parents=True)
        _make(context, home, FINDINGS * ENTRIES_IN_A_FINDING, ENTRIES_IN_A_FINDING)
        return run([context.program("RemovalOnce"), "clear", str(home), str(data)])

    rounds = context.in_turn({"clear": fresh_run}, wanted)
    output = rounds.runs("clear")[0].output
    times = [seconds * 1000 for seconds in rounds.values("clear", "seconds")]
    return Row("clear_ms", f"clearing {output['findings']} findings with {output['entries']:,} entries to the Trash",
               statistics.median(times), milliseconds, AtMost(1000),
               f"with journal and ledger; {milliseconds(min(times))} to {milliseconds(max(times))}", {"times_ms": times})


def _make(context, folder, files, in_a_folder):
    run([context.program("RemovalOnce"), "make", str(folder), str(files), str(in_a_folder)])
