"""Measures of the application's model: questions about a tree, and the main thread during a scan."""

import os
import statistics

from comparison.programs import run
from comparison.rows import AtMost, Row, milliseconds
from comparison.ratios import noise

# The words that TreeMaker puts into one file in 80,000 and three in a hundred (Benchmarks/TreeMaker/Names.h).
RARE, COMMON = "quokka", "index"


def model(context):
    tree = context.home_tree()
    rounds = context.in_turn({"model": lambda: run([context.program("ModelOnce"), tree, RARE, COMMON])})
    runs = rounds.runs("model")
    for key, name, measure in (("largest", "largest_files_ms", "`largestFiles(200)`"),
                               ("rare", "search_rare_ms", f"`search` for a rare word (“{RARE}”)"),
                               ("common", "search_common_ms", f"`search` for a common word (“{COMMON}”)")):
        medians = [statistics.median(run.output[key]["seconds"]) * 1000 for run in runs]
        firsts = [run.output[key]["seconds"][0] * 1000 for run in runs]
        yield Row(name, measure, statistics.median(medians), milliseconds, AtMost(33),
                  f"{runs[0].output[key]['found']} found; the first time "
                  f"{milliseconds(statistics.median(firsts))}",
                  {"medians_ms": medians, "firsts_ms": firsts})
    yield _stall(rounds, "model", "model_stall_ms", "the same with the model alone")


def window(context):
    """The main thread with the whole window open, painted by that very thread."""
    tree = context.home_tree()
    painted_in_memory = os.environ | {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}
    rounds = context.in_turn({"window": lambda: run([context.program("WindowOnce"), tree],
                                                    environment=painted_in_memory)}, max(3, context.rounds // 2))
    yield _stall(rounds, "window", "main_thread_stall_ms", "longest stall of the main thread during a scan")


def _stall(rounds, contestant, name, measure):
    waits = [run.output["longest_wait"] * 1000 for run in rounds.runs(contestant)]
    busy = [run.output["longest_busy"] * 1000 for run in rounds.runs(contestant)]
    parts = [f"scans and rescans; the longest of all runs {milliseconds(max(waits))}; of its own doing at most "
             f"{milliseconds(max(busy))}", noise(rounds)]
    return Row(name, measure, statistics.median(waits), milliseconds, AtMost(50), "; ".join(filter(None, parts)),
               {"waits_ms": waits, "busy_ms": busy})
