"""Measures of the applications of a made-up machine: how soon their names are known, what measuring them takes beside
walking their folders, one plan, and the search for what removed ones left behind."""

import statistics

from comparison.programs import run
from comparison.rows import AtMost, Row, milliseconds, ratio


def apps(context):
    place = context.scratch("apps")
    output = run([context.program("AppsOnce"), place]).output
    yield _median("apps_names_ms", f"names of {output['applications']} applications, warm", output["names_seconds"], 300)
    ratios = output["sizes"]["ratios"]
    yield Row("apps_sizes_to_bare_walks", "sizes of applications ÷ the bare walks of their folders",
              statistics.median(ratios), ratio, AtMost(1.30), "200 files each", {"ratios": ratios})
    yield _median("apps_plan_ms", "plan of one application, warm", output["plan_seconds"], 200)
    yield _median("apps_orphans_ms", "orphans over 5,000 entries, without their measuring", output["orphan_seconds"], 500)


def _median(name, measure, values, bar):
    times = [value * 1000 for value in values]
    return Row(name, measure, statistics.median(times), milliseconds, AtMost(bar), details={"times_ms": times})
