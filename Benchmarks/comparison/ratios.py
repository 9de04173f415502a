"""The row of a ratio of two figures that were taken in turn."""

import statistics

from comparison.rounds import CALM
from comparison.rows import Row, seconds


def ratio_row(name, measure, rounds, above, below, *, bar=None, note=""):
    """One (contestant, figure) divided by another: the median of the rounds' ratios."""
    ratios = rounds.ratios(above, below)
    parts = [note, f"{seconds(rounds.median(*above))} ÷ {seconds(rounds.median(*below))}",
             f"{min(ratios):.2f} to {max(ratios):.2f} in {len(ratios)} rounds", noise(rounds)]
    return Row(name, measure, statistics.median(ratios), bar=bar, note="; ".join(filter(None, parts)),
               details={"ratios": ratios, f"{above[0]}_seconds": rounds.values(*above),
                        f"{below[0]}_seconds": rounds.values(*below)})


def noise(rounds):
    """Says so when the machine was busy with other things."""
    return "" if rounds.noise <= CALM else f"others took up to {rounds.noise:.0%} of the machine"
