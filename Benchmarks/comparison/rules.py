"""Measures of automatic rules: which are due, a tick with nothing due, and how soon their screen is painted."""

import os
import statistics

from comparison.programs import ProgramFailed, run
from comparison.rows import AtMost, Row, milliseconds


def rules(context):
    painted_in_memory = os.environ | {"QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}
    program = context.program("RulesOnce")
    rounds = context.in_turn({"rules": lambda: run([program], environment=painted_in_memory)})
    outputs = [run.output for run in rounds.runs("rules")]
    if not outputs[0]["due"]["due"]:
        raise ProgramFailed("no rule was due")
    due = [seconds * 1000 for output in outputs for seconds in output["due"]["seconds"]]
    yield Row("rules_due_ms", "`due` over 1,000 rules and 400 findings", statistics.median(due), milliseconds, AtMost(2),
              f"{outputs[0]['due']['due']} due", {"due_ms": due})
    ticks = [seconds * 1000 for output in outputs for seconds in output["tick_seconds"]]
    yield Row("rules_tick_ms", "main thread in a tick with nothing due", max(ticks), milliseconds, AtMost(5),
              "the longest of all", {"ticks_ms": ticks})
    painted = [output["painted_seconds"] * 1000 for output in outputs]
    yield Row("rules_painted_ms", "from choosing Automatic rules to the painted screen", statistics.median(painted),
              milliseconds, AtMost(50), f"{outputs[0]['rules']} rules, 20 suggestions; the first time in a process",
              {"painted_ms": painted})
