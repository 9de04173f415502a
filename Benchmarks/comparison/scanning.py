"""Measures of the scanner itself: beside the bare walk, cold, on odd trees, and its memory."""

import os
import statistics

from comparison.programs import PROCESS, ProgramFailed, run
from comparison.ratios import noise, ratio_row
from comparison.rows import AtMost, Missing, Row, mebibytes, milliseconds, seconds

DROP_CACHES = "/proc/sys/vm/drop_caches"

# The scan's own time, without the start and end of its process, as the bare walk tells its own.
SCAN, BARE = ("scan", "seconds"), ("bare", "seconds")


def beside_bare_walk(context):
    """The whole scan beside the bare walk, and its memory and layout on the same tree."""
    tree = context.home_tree()
    threads = context.default_threads()
    rounds = context.in_turn({"bare": context.bare_walk(tree, threads),
                              "scan": context.scan_once(tree, "--threads", str(threads), "--layouts", "9")})
    _same_tree(rounds)
    yield ratio_row("scan_to_bare_walk", "whole scan ÷ bare walk", rounds, SCAN, BARE, bar=AtMost(1.10),
                    note=f"{threads} threads")
    yield _memory(rounds.runs("scan"))
    yield _layout(rounds.runs("scan"), "treemap_layout_ms", "`Treemap::layout` of its root at 1000 × 600")
    # Every folder of a made-up tree is like every other, which gives the most tiles there can be.
    made_up = context.scan_once("--made-up", "1000000", "--layouts", "9")()
    yield _layout([made_up], "made_up_treemap_layout_ms", "the same for an even, made-up tree")


def _layout(runs, name, measure):
    medians = [statistics.median(run.output["layout"]["seconds"]) * 1000 for run in runs]
    firsts = [run.output["layout"]["seconds"][0] * 1000 for run in runs]
    return Row(name, measure, statistics.median(medians), milliseconds, AtMost(8),
               f"{runs[0].output['layout']['tiles']:,} tiles; the first in a process "
               f"{milliseconds(statistics.median(firsts))}", {"medians_ms": medians, "firsts_ms": firsts})


def _memory(runs):
    output = runs[0].output
    nodes, name_bytes = output["nodes"], output["name_bytes"]
    peaks = [run.output["peak_resident"] for run in runs]
    return Row("peak_memory", "peak memory of a scan", max(peaks), mebibytes,
               AtMost(35 * nodes + name_bytes + 40 * 2**20),
               f"the whole process; 35 × {nodes:,} nodes + {name_bytes:,} bytes of names + 40 MiB allowed",
               {"peaks": peaks, "nodes": nodes, "name_bytes": name_bytes})


def cold(context):
    """The scan with nothing of the tree in the page cache, beside the bare walk and du."""
    measure = "cold cache: whole scan ÷ bare walk"
    if not os.access(DROP_CACHES, os.W_OK):
        yield Missing("cold_scan_to_bare_walk", measure, "only root may empty the page cache")
        return
    tree = context.home_tree()
    threads = context.default_threads()
    rounds = context.in_turn({"bare": context.bare_walk(tree, threads),
                              "scan": context.scan_once(tree, "--threads", str(threads)),
                              "du": lambda: run(["du", "-sx", tree], parse=False)},
                             3, warm_up=False, before_each=_forget_files)
    _same_tree(rounds)
    yield ratio_row("cold_scan_to_bare_walk", measure, rounds, SCAN, BARE)
    yield ratio_row("cold_du_to_scan", "cold cache: `du -sx` ÷ whole scan", rounds, ("du", PROCESS),
                    ("scan", PROCESS), note="whole processes")


def _forget_files():
    os.sync()
    with open(DROP_CACHES, "w", encoding="ascii") as file:
        file.write("3\n")


def odd_shapes(context):
    """One wide folder and one deep chain of folders."""
    threads = context.default_threads()
    for kind, files in (("wide", 300_000), ("deep", 20_000)):
        tree = context.tree(kind, files)
        rounds = context.in_turn({"bare": context.bare_walk(tree, threads),
                                  "scan": context.scan_once(tree, "--threads", str(threads))})
        _same_tree(rounds)
        output = rounds.runs("scan")[0].output
        what = f"one folder of {output['files']:,} files" if kind == "wide" \
            else f"a chain of {output['folders']:,} folders"
        yield ratio_row(f"{kind}_scan_to_bare_walk", f"{what}: whole scan ÷ bare walk", rounds, SCAN, BARE)


def growth(context):
    """Made-up trees of 1 to 10 million files in memory: does time or memory for a node grow with the tree?"""
    divisor = 20 if context.quick else 1
    sizes = [millions * 1_000_000 // divisor for millions in (1, 2, 5, 10)]
    rounds = context.in_turn({size: context.scan_once("--made-up", str(size)) for size in sizes},
                             max(3, context.rounds // 2))
    seconds_a_node, bytes_a_node = {}, {}
    for size in sizes:
        nodes = rounds.runs(size)[0].output["nodes"]
        memory = rounds.median(size, "peak_resident") - rounds.median(size, "resident_before")
        seconds_a_node[size] = rounds.median(size, "seconds") / nodes
        bytes_a_node[size] = memory / nodes
        yield Row(f"made_up_{size}_seconds", f"made-up tree of {size:,} files in memory",
                  rounds.median(size, "seconds"), seconds,
                  note=f"{seconds_a_node[size] * 1e9:.0f} ns and {bytes_a_node[size]:.1f} bytes a node",
                  details={"bytes_a_node": bytes_a_node[size], "nodes": nodes,
                           "seconds": rounds.values(size, "seconds")})
    smallest, largest = sizes[0], sizes[-1]
    for what, a_node in (("time", seconds_a_node), ("memory", bytes_a_node)):
        parts = ["1 is linear", noise(rounds)]
        yield Row(f"made_up_{what}_growth", f"{what} a node at {largest:,} files ÷ at {smallest:,}",
                  a_node[largest] / a_node[smallest], bar=AtMost(1.25), note="; ".join(filter(None, parts)))


def _same_tree(rounds):
    """The walk and the scan must have seen the same, or their times tell nothing."""
    bare, scan = rounds.runs("bare")[0].output, rounds.runs("scan")[0].output
    if (bare["files"], bare["folders"]) != (scan["files"], scan["folders"]) or scan["unreadable"]:
        raise ProgramFailed(f"the bare walk and the scan saw different trees: {bare} {scan}")
