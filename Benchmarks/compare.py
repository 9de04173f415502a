#!/usr/bin/env python3
"""Measures Quillbrook beside the bare system calls and its peers and prints a table of ratios against bars.

The programs it runs are built by `cmake --build --preset release --target benchmarks`. Everything that is
compared runs in turn, A B A B, and a figure is the median; a round during which others used the machine is
taken again. The trees are made on the first run and used again, in ${TMPDIR:-/tmp}/quillbrook-bench-UID.
"""

import argparse
import contextlib
import json
import os
import sys
from pathlib import Path

from comparison import (
    application, apps, background, catalogue, machine, offload, peers, photos, removal, rules, scanning)
from comparison.context import Context
from comparison.programs import ProgramFailed, run
from comparison.rows import Missing, table

HERE = Path(__file__).resolve().parent

# In the order of the table. Each yields rows; a further measure is one more function here.
MEASURES = {
    "scan": scanning.beside_bare_walk,
    "peers": peers.beside_peers,
    "sizes": peers.sizes,
    "window": application.window,
    "model": application.model,
    "background": background.background,
    "catalogue": catalogue.catalogue,
    "photos": photos.photos,
    "rules": rules.rules,
    "apps": apps.apps,
    "offload": offload.offload,
    "growth": scanning.growth,
    "cold": scanning.cold,
    "shapes": scanning.odd_shapes,
    # The last one: what makes files is slow for minutes where many were deleted.
    "removal": removal.removal,
}


def main():
    arguments = parse()
    with contextlib.ExitStack() as leftovers:
        return compare(arguments, Context(
            programs=arguments.programs, directory=arguments.directory,
            rounds=arguments.rounds or (3 if arguments.quick else 5),
            patience=arguments.patience, quick=arguments.quick, leftovers=leftovers))


def compare(arguments, context):
    if arguments.remove_trees:
        remove_trees(context)
        return 0
    print("Making or finding the tree (minutes, the first time) …", file=sys.stderr, flush=True)
    facts = machine.describe(context.home_tree())
    rows = []
    for name in arguments.only or MEASURES:
        print(f"Measuring: {name} …", file=sys.stderr, flush=True)
        rows += measured(name, context)
        # After each measure, so that nothing is lost when a long run is cut short.
        if arguments.json:
            write(arguments.json, facts, rows, context)
    show(facts, rows, context)
    return 0


def parse():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--json", type=Path, metavar="FILE", help="also write the figures by name")
    parser.add_argument("--quick", action="store_true",
                        help="small trees and few rounds: to try it, not to quote")
    parser.add_argument("--rounds", type=int, metavar="N",
                        help="calm rounds for a figure (5; 3 with --quick)")
    parser.add_argument("--patience", type=float, metavar="SECONDS", default=60,
                        help="how long each measure waits, all in all, for a busy machine to calm down (60)")
    parser.add_argument("--only", nargs="+", choices=MEASURES, metavar="NAME",
                        help="only these: " + ", ".join(MEASURES))
    parser.add_argument("--directory", type=Path, metavar="FOLDER", help="where the trees are made")
    parser.add_argument("--programs", type=Path, metavar="FOLDER",
                        default=HERE.parent / "build/release/Benchmarks",
                        help="where the built benchmark programs are")
    parser.add_argument("--remove-trees", action="store_true", help="remove the made trees and end")
    return parser.parse_args()


def measured(name, context):
    """The rows of a measure; one that fails leaves its reason in the table and does not end the others."""
    rows = []
    try:
        for row in MEASURES[name](context):
            rows.append(row)
    except ProgramFailed as failure:
        rows.append(Missing(name, name, str(failure)))
    return rows


def show(facts, rows, context):
    print()
    for name, text in facts.items():
        print(f"{name}: {text}")
    print("load of the last minute, five and fifteen: " + " ".join(f"{load:.2f}" for load in os.getloadavg()))
    if context.quick:
        print("Small trees, few rounds: not figures to quote.")
    print()
    print(table(rows))


def write(path, facts, rows, context):
    content = {"machine": facts, "quick": context.quick, "rounds": context.rounds,
               "figures": {row.name: row.as_json() for row in rows}}
    path.write_text(json.dumps(content, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")


def remove_trees(context):
    command = [context.program("TreeMaker"), "--remove"]
    if context.directory:
        command += ["--directory", str(context.directory)]
    print(f"Removed {run(command, timeout=1800, parse=False).text.strip()} trees")


if __name__ == "__main__":
    try:
        sys.exit(main())
    except ProgramFailed as problem:
        sys.exit(f"compare.py: {problem}")
