"""Measures of the application's model: questions about a tree, and the main thread during a scan."""

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
    yield _stall(rounds)


def _stall(rounds):
    waits = [run.output["longest_wait"] * 1000 for run in rounds.runs("model")]
    busy = [run.output["longest_busy"] * 1000 for run in rounds.runs("model")]
    parts = [f"a scan and a rescan; the longest of all runs {milliseconds(max(waits))}; of its own doing at most "
             f"{milliseconds(max(busy))}", noise(rounds)]
    return Row("main_thread_stall_ms", "longest stall of the main thread during a scan",
               statistics.median(waits), milliseconds, AtMost(50), "; ".join(filter(None, parts)),
               {"waits_ms": waits, "busy_ms": busy})
