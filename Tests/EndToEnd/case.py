"""What every end-to-end suite builds on: a desktop for the run, and for each test a made-up home with the real
program on it."""

import importlib
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

import accessibility
import desktop
import homes
import processes
import program
import screenshot
import waiting


# What ends a run that is passed over as a whole, for ctest.
SKIPPED = 77


class Run:
    """What belongs to the whole run."""

    program = None
    helpers = None
    folder = None
    desktop = None


def run(arguments):
    processes.adopt_orphans()
    Run.program, Run.helpers = arguments.program.resolve(), arguments.helpers.resolve()
    Run.folder = pathlib.Path(tempfile.mkdtemp(prefix="run-"))
    suite = importlib.import_module(arguments.suite)
    Run.desktop = getattr(suite, "DESKTOP", desktop.Desktop)(str(Run.folder / "desktop"))
    try:
        Run.desktop.start()
        suite = unittest.main(module=suite, argv=[arguments.suite, "-v", *arguments.rest], exit=False)
        return 0 if suite.result.wasSuccessful() and suite.result.testsRun > 0 else 1
    except unittest.SkipTest as reason:
        print(f"skipped: {reason}", file=sys.stderr)
        return SKIPPED
    finally:
        Run.desktop.stop()
        processes.end_all()
        make_removable(Run.folder)
        shutil.rmtree(Run.folder, ignore_errors=True)


def make_removable(folder):
    """Gives back the permissions that tests took."""
    for path, folders, _ in os.walk(folder):
        for name in folders:
            below = os.path.join(path, name)
            if not os.path.islink(below):
                os.chmod(below, 0o700)


class Case(unittest.TestCase):
    """A test makes its home with `self.home`, then starts the program with `self.start()`."""

    # The command that the program is started through, if any.
    through = ()

    def setUp(self):
        name = self.id().rpartition(".")[2]
        self.folder = Run.folder / name
        self.folder.mkdir()
        self.home = homes.Home(self.folder)
        self._programs = []

    def start(self, preload=(), arguments=(), **environment):
        """Starts the program on the made-up home; a second start gets the same home."""
        started = program.Program(Run.program, self.home.environment(preload) | environment,
                                  self.folder / f"program-{len(self._programs)}.log", self.through, arguments)
        self._programs.append(started)
        self.addCleanup(self._end, started)
        return started

    def becomes(self, question, expected, seconds=20.0):
        """Waits until the question has that answer, and gives it back; fails with the difference."""
        try:
            return waiting.until("the answer", lambda: [answer] if (answer := self._answer(question)) == expected else None,
                                 seconds)[0]
        except waiting.Late:
            self.assertEqual(self._answer(question), expected)
            return expected

    def _answer(self, question):
        # What is asked about may be replaced in the middle of the question.
        try:
            return question()
        except accessibility.Gone as gone:
            return gone

    def helper(self, name):
        """A program or library built for these tests."""
        return Run.helpers / name

    def _end(self, started):
        if self._failed():
            self._explain(started)
        if started.running:
            self.assertTrue(started.quit(), "did not end within 20 s of being asked")
        self.assertFalse(started.crashed(), f"crashed with {started.process.returncode}: {started.output()}")

    def _failed(self):
        outcome = self._outcome.result
        return any(test is self for test, _ in outcome.failures + outcome.errors)

    def _explain(self, started):
        """For a failed test: what the window said, and its picture."""
        try:
            print(f"--- output of the program\n{started.output()}")
            if started.running:
                name = f"{self.id().rpartition('.')[2]}.png"
                screenshot.write_png(Run.desktop.picture(), os.path.join(os.environ.get("TMPDIR", "/tmp"), name))
                print(f"--- picture in {name}\n--- the window\n{started.window(5).outline()}")
        except Exception as error:  # Whatever goes wrong here must not hide why the test failed.
            print(f"--- no more to tell: {error}")
