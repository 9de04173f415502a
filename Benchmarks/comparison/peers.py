"""The whole scan beside other programs that measure a tree, and the sizes beside du's."""

from comparison.context import two_cores
from comparison.programs import PROCESS, ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtLeast, Exactly, Missing, Row, whole

# Each as a whole process, as ours is: name, command before the tree, and bar.
PEERS = (
    ("du", ["du", "-sx"], 1.8),
    ("gdu", ["gdu", "-npc"], 2.8),
    ("ncdu", ["ncdu", "-0xo", "/dev/null"], 1.8),
)


def beside_peers(context):
    """Every peer runs right beside a scan of its own."""
    tree = context.home_tree()
    for name, command, bar in PEERS:
        measure = f"`{' '.join(command)}` ÷ whole scan, on 2 cores"
        try:
            with two_cores() as threads:
                rounds = context.in_turn({name: lambda: run([*command, tree], parse=False),
                                          "scan": context.scan_once(tree, "--threads", str(threads))})
        except ProgramFailed as failure:
            yield Missing(f"{name}_to_scan", measure, str(failure))
            continue
        yield ratio_row(f"{name}_to_scan", measure, rounds, (name, PROCESS), ("scan", PROCESS), bar=AtLeast(bar),
                        note="whole processes")


def sizes(context):
    """The scan's total beside du's, to the byte.

    `du -B1` adds up the blocks of every file once, however many links it has, and those of every folder. A
    folder counts nothing here, so the folders' blocks, which find lists, come off du's total.
    """
    tree = context.home_tree()
    total = int(run(["du", "-sx", "-B1", tree], parse=False).text.split()[0])
    blocks = run(["find", tree, "-xdev", "-type", "d", "-printf", "%b\n"], parse=False).text.split()
    folders = 512 * sum(map(int, blocks))
    scan = context.scan_once(tree)().output
    yield Row("total_minus_du", "total of sizes − (du's total − the folders' own blocks)",
              scan["bytes"] - (total - folders), whole, Exactly(0),
              f"bytes: {scan['bytes']:,} − ({total:,} − {folders:,}); {scan['files']:,} files, further hard "
              f"links among them",
              {"bytes": scan["bytes"], "du_bytes": total, "folder_bytes": folders})
