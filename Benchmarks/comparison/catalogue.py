"""Measures of the catalogue: its quick stage on a made-up home folder, its evaluation of a large tree, and how soon
the window shows what was found."""

import os
import statistics
import tempfile
import time
from pathlib import Path

from comparison.programs import ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Row, milliseconds

FIXTURE = Path(__file__).resolve().parents[2] / "Tests/Support/fixture_home.py"


def catalogue(context):
    yield _evaluation(context)
    files = 10_000 if context.quick else 200_000
    with tempfile.TemporaryDirectory(prefix="quillbrook-bench-home-", dir=context.directory) as home:
        run(["/usr/bin/python3", str(FIXTURE), home, "--files", str(files)], timeout=600, parse=False)
        program = context.program("CatalogueOnce")
        rounds = context.in_turn({job: lambda job=job: run([program, job, home]) for job in ("bare", "quick")})
        output = rounds.runs("quick")[0].output
        if not output["findings"]:
            raise ProgramFailed("the quick stage found nothing")
        yield ratio_row("quick_stage_to_bare_walks", "quick stage ÷ the bare walks of its locations", rounds,
                        ("quick", "seconds"), ("bare", "seconds"), bar=AtMost(1.30),
                        note=f"{output['findings']} findings in a home of {files:,} files")
        yield from _on_the_screen(context, home)


def _on_the_screen(context, home):
    painted_in_memory = os.environ | {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}
    program = context.program("FindingsOnce")
    rounds = context.in_turn({"window": lambda: run([program, home, repr(time.monotonic())],
                                                    environment=painted_in_memory)})
    runs = rounds.runs("window")
    firsts = [run.output["first_finding_seconds"] * 1000 for run in runs]
    yield Row("first_finding_ms", "first finding on the screen after the start", statistics.median(firsts), milliseconds,
              AtMost(500), f"a home of {runs[0].output['files']:,} measured files; from before the process began",
              {"firsts_ms": firsts})
    painted = [run.output["painted_seconds"] * 1000 for run in runs]
    yield Row("findings_painted_ms", "from the report to the painted screen", statistics.median(painted), milliseconds,
              AtMost(50), f"{runs[0].output['findings']} findings", {"painted_ms": painted})


def _evaluation(context):
    output = run([context.program("CatalogueOnce"), "evaluate"]).output
    times = [seconds * 1000 for seconds in output["seconds"]]
    return Row("evaluate_ms", f"`evaluate` on {output['nodes']:,} nodes, all tables", statistics.median(times),
               milliseconds, AtMost(10), f"{output['findings']} findings; the first in a process "
               f"{milliseconds(times[0])}", {"times_ms": times})
