"""Measures of the catalogue: its quick stage on a made-up home folder, its evaluation of a large tree, and how soon
the window shows what was found."""

import json
import os
import statistics
import subprocess
import time
from pathlib import Path

from comparison.programs import ProgramFailed, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Row, milliseconds

SERVER = Path(__file__).resolve().parents[2] / "Tests/Support/model_server.py"
FIXTURE = Path(__file__).resolve().parents[2] / "Tests/Support/fixture_home.py"


def catalogue(context):
    yield _evaluation(context)
    yield _instructions(context)
    files = 10_000 if context.quick else 200_000
    home = context.scratch("home")
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
    yield from _answer(context, home)


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


def _answer(context, home):
    phones = Path(home, ".android/avd")
    for number in range(200):
        folder = phones / f"phone {number}.avd"
        folder.mkdir(parents=True)
        (folder / "disk.img").write_bytes(os.urandom(1_100_000))
    reply = {"answer": "There are many.", "proposesRemoval": True, "groupID": "android.avd", "alsoConsiderGroupID": ""}
    script = json.dumps({"kind": "ollama", "replies": [reply]})
    with subprocess.Popen(["/usr/bin/python3", "-B", str(SERVER), script], stdout=subprocess.PIPE, text=True) as server:
        try:
            port = server.stdout.readline().strip()
            painted_in_memory = os.environ | {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}
            program = context.program("AnswerOnce")
            rounds = context.in_turn({"answer": lambda: run([program, home, port], environment=painted_in_memory)})
        finally:
            server.kill()
    runs = [one.output for one in rounds.runs("answer")]
    known = [one["known_seconds"] * 1000 for one in runs]
    yield Row("model_known_ms", "from the window's opening to a known model", statistics.median(known), milliseconds,
              AtMost(500), "a server on the loopback address", {"known_ms": known})
    stalls = [one["stall_seconds"] * 1000 for one in runs]
    yield Row("answer_stall_ms", "longest stall while an answer is awaited and shown", statistics.median(stalls),
              milliseconds, AtMost(50), f"a card of {runs[0]['items']} items; of its own doing at most "
              f"{milliseconds(max(one['busy_seconds'] for one in runs) * 1000)}", {"stalls_ms": stalls})


def _instructions(context):
    output = run([context.program("CatalogueOnce"), "instructions"]).output
    times = [seconds * 1000 for seconds in output["seconds"]]
    return Row("instructions_ms", f"what a model is told of {output['findings']} findings", statistics.median(times),
               milliseconds, AtMost(20), f"over {output['nodes']:,} nodes; {output['characters']:,} characters; the first "
               f"in a process {milliseconds(times[0])}", {"times_ms": times})


def _evaluation(context):
    output = run([context.program("CatalogueOnce"), "evaluate"]).output
    times = [seconds * 1000 for seconds in output["seconds"]]
    return Row("evaluate_ms", f"`evaluate` on {output['nodes']:,} nodes, all tables", statistics.median(times),
               milliseconds, AtMost(10), f"{output['findings']} findings; the first in a process "
               f"{milliseconds(times[0])}", {"times_ms": times})
