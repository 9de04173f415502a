"""The runner of the benchmarks: which rounds count, how ratios come about, and what the table says."""

import pathlib
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Benchmarks"))

from comparison.programs import PROCESS, ProgramFailed, Run, run  # noqa: E402
from comparison.ratios import ratio_row  # noqa: E402
from comparison.rounds import CALM, Patience, in_turn  # noqa: E402
from comparison.rows import AtLeast, AtMost, Between, Exactly, Missing, Row, table  # noqa: E402

BUSY = CALM * 2


def contestant(log, name, seconds, foreign=()):
    """Answers with `seconds`; others take `foreign` of the machine, one figure a run, then nothing."""
    left = list(foreign)

    def contest():
        log.append(name)
        return Run(seconds, seconds, left.pop(0) if left else 0.0)
    return contest


class InTurn(unittest.TestCase):
    def testContestantsAlternateAfterOneWarmUpEach(self):
        log = []
        in_turn({"a": contestant(log, "a", 1), "b": contestant(log, "b", 1)}, 2)
        self.assertEqual("".join(log), "ab" "abab")

    def testABusyRoundIsTakenAgain(self):
        log = []
        rounds = in_turn({"a": contestant(log, "a", 1, [0, BUSY])}, 2)
        self.assertEqual(len(log), 1 + 3)
        self.assertEqual(rounds.noise, 0)

    def testWhatCameOutDoesNotDecideWhetherARoundCounts(self):
        times = iter([9, 1, 100, 1])
        rounds = in_turn({"a": lambda: Run(next(times), 0, 0)}, 3)
        self.assertEqual(rounds.values("a", PROCESS), [1, 100, 1])

    def testTheCalmestCountWhenTheMachineNeverCalmsDown(self):
        log = []
        noises = [0, 0.9, 0.5, 0.7, 0.6, 0.8, 0.4]
        rounds = in_turn({"a": contestant(log, "a", 1, noises)}, 2)
        self.assertEqual(len(log), 1 + 6)
        self.assertEqual(rounds.noise, 0.5)

    def testEveryRoundWaitsForCalmFirst(self):
        log = []

        class Watched(Patience):
            def wait_for_calm(self):
                log.append("-")
        in_turn({"a": contestant(log, "a", 1)}, 2, patience=Watched(1))
        self.assertEqual("".join(log), "a-a-a")

    def testPatienceComesToAnEnd(self):
        start = time.monotonic()
        Patience(0).wait_for_calm()
        self.assertLess(time.monotonic() - start, 0.4)

    def testThePreparationComesBeforeEveryRun(self):
        log = []
        in_turn({"a": contestant(log, "a", 1), "b": contestant(log, "b", 1)}, 1, warm_up=False,
                before_each=lambda: log.append("-"))
        self.assertEqual("".join(log), "-a-b")


class Ratios(unittest.TestCase):
    def testTheMedianOfTheRoundsRatiosIsTaken(self):
        above = iter([Run(seconds, 0, 0) for seconds in (0, 2, 30, 4)])
        rounds = in_turn({"above": lambda: next(above), "below": lambda: Run(2, 0, 0)}, 3)
        row = ratio_row("name", "measure", rounds, ("above", PROCESS), ("below", PROCESS), bar=AtMost(2))
        self.assertEqual(row.value, 2)
        self.assertTrue(row.met)
        self.assertEqual(row.details["ratios"], [1, 15, 2])

    def testNoiseIsTold(self):
        rounds = in_turn({"a": lambda: Run(1, 0, 0.4), "b": lambda: Run(1, 0, 0)}, 1)
        row = ratio_row("name", "measure", rounds, ("a", PROCESS), ("b", PROCESS))
        self.assertIn("others took up to 40% of the machine", row.note)


class Bars(unittest.TestCase):
    def testABarIsMetUpToItself(self):
        for bar, met, missed in ((AtMost(1.1), 1.1, 1.11), (AtLeast(1.8), 1.8, 1.79), (Exactly(0), 0, -512),
                                 (Between(0.8, 1.2), 0.8, 0.79), (Between(0.8, 1.2), 1.2, 1.21)):
            with self.subTest(bar):
                self.assertTrue(bar.met(met))
                self.assertFalse(bar.met(missed))

    def testTheTableSaysWhatWasNotMetAndWhatIsMissing(self):
        shown = table([Row("a", "first", 2.0, bar=AtMost(1)), Row("b", "second", 1.0, bar=AtMost(1)),
                       Row("c", "third", 1.0), Missing("d", "fourth", "no such program")])
        lines = [line.split("|") for line in shown.splitlines()[2:]]
        self.assertEqual([line[4].strip() for line in lines], ["NOT MET", "met", "", ""])
        self.assertEqual(lines[3][3].strip(), "—")
        self.assertEqual(lines[3][5].strip(), "no such program")

    def testAMissedBarIsInTheFigures(self):
        figure = Row("a", "first", 2.0, bar=AtMost(1)).as_json()
        self.assertIs(figure["met"], False)


class Programs(unittest.TestCase):
    def testOutputIsReadAndTimeIsTaken(self):
        done = run(["sh", "-c", "echo '{\"seconds\": 3}'"])
        self.assertEqual(done.figure("seconds"), 3)
        self.assertGreater(done.figure(PROCESS), 0)

    def testAFailingProgramIsNoRun(self):
        with self.assertRaisesRegex(ProgramFailed, "ended with 3 because"):
            run(["sh", "-c", "echo because >&2; exit 3"], parse=False)

    def testAMissingProgramIsNoRun(self):
        with self.assertRaisesRegex(ProgramFailed, "is not installed"):
            run(["no-such-program-here"])

    def testAProgramThatHangsIsEnded(self):
        start = time.monotonic()
        with self.assertRaisesRegex(ProgramFailed, "took longer than 0.2 s"):
            run(["sh", "-c", "sleep 30 & wait"], timeout=0.2, parse=False)
        self.assertLess(time.monotonic() - start, 20)


if __name__ == "__main__":
    unittest.main()
