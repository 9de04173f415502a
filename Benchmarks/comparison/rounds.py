"""Runs contestants in turn, A B A B, so that whatever slows the machine for a while slows them alike."""

import os
import statistics
import time

from comparison.programs import busy_seconds

# A round counts as calm when others took at most this share of the machine in each of its runs. Whether a
# round counts is decided by this alone and never by what came out.
CALM = 0.05


class Rounds:
    """The rounds that count: in each, every contestant ran once."""

    def __init__(self, rounds, noise):
        self._rounds = rounds
        # The largest share of the machine that others took in a round that counts.
        self.noise = noise

    def median(self, contestant, figure):
        return statistics.median(self.values(contestant, figure))

    def values(self, contestant, figure):
        return [runs[contestant].figure(figure) for runs in self._rounds]

    def ratios(self, above, below):
        """Round by round, one (contestant, figure) divided by another."""
        return [runs[above[0]].figure(above[1]) / runs[below[0]].figure(below[1]) for runs in self._rounds]

    def runs(self, contestant):
        return [runs[contestant] for runs in self._rounds]


class Patience:
    """How long to wait, all in all, for the machine to have nothing else to do."""

    def __init__(self, seconds):
        self._left = seconds

    def wait_for_calm(self):
        """Returns once others leave the machine alone for half a second, or when patience is at its end."""
        while self._left > 0:
            start, busy = time.monotonic(), busy_seconds()
            time.sleep(0.5)
            passed = time.monotonic() - start
            if (busy_seconds() - busy) / (passed * os.cpu_count()) <= CALM:
                return
            self._left -= passed


def in_turn(contestants, wanted, *, warm_up=True, before_each=None, patience=None, most=None):
    """Runs `contestants` (name to a function that returns a Run) in turn until `wanted` calm rounds are done.

    When the machine does not calm down within `most` rounds (three times as many), the calmest count.
    """
    if warm_up:
        for contest in contestants.values():
            contest()
    rounds = []
    while len(rounds) < (most or 3 * wanted) and sum(noise_of(runs) <= CALM for runs in rounds) < wanted:
        if patience:
            patience.wait_for_calm()
        runs = {}
        for name, contest in contestants.items():
            if before_each:
                before_each()
            runs[name] = contest()
        rounds.append(runs)
    calm = [runs for runs in rounds if noise_of(runs) <= CALM]
    chosen = calm if len(calm) >= wanted else sorted(rounds, key=noise_of)[:wanted]
    return Rounds(chosen, max(map(noise_of, chosen)))


def noise_of(runs):
    return max(run.foreign for run in runs.values())
