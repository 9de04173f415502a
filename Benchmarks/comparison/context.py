"""What every measure needs to know: where the programs and trees are, and how thorough to be."""

import contextlib
import os
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

from comparison.programs import run
from comparison.rounds import Patience, in_turn


@dataclass(frozen=True)
class Context:
    # The folder with the built benchmark programs.
    programs: Path
    # Where trees are made; None for TreeMaker's usual folder.
    directory: Path | None
    rounds: int
    # Seconds that each measure waits, all in all, for the machine to have nothing else to do.
    patience: float
    # Smaller trees and fewer rounds, for trying the runner out.
    quick: bool
    # What goes at the end of the run.
    leftovers: contextlib.ExitStack

    def program(self, name):
        return str(self.programs / name)

    def tree(self, kind, files):
        """The path of a made tree; making a large one takes minutes, once."""
        files = files // 20 if self.quick else files
        command = [self.program("TreeMaker"), "--kind", kind, "--files", str(files)]
        if self.directory:
            command += ["--directory", str(self.directory)]
        return run(command, timeout=1800, parse=False).text.rstrip("\n")

    def scratch(self, name):
        """A folder of a measure's own, which goes with everything in it when all measures have ended.

        For five minutes ext4 is slow to make a file in the place of one that it has deleted: it reads every such inode
        to learn how long ago that was, and a tree takes ten times as long. So nothing is deleted between measures, and
        what lies right in this folder is spread over the disk, as ext4 does for the folders of a disk's top level.
        """
        place = self.leftovers.enter_context(
            tempfile.TemporaryDirectory(prefix=f"quillbrook-bench-{name}-", dir=self.directory))
        # Other file systems may refuse.
        subprocess.run(["/usr/bin/chattr", "+T", place], stderr=subprocess.DEVNULL, timeout=10, check=False)
        return Path(place)

    def in_turn(self, contestants, rounds=None, **options):
        return in_turn(contestants, rounds or self.rounds, patience=Patience(self.patience), **options)

    def home_tree(self):
        return self.tree("home", 1_000_000)

    def scan_once(self, *arguments):
        return lambda: run([self.program("ScanOnce"), *arguments])

    def bare_walk(self, tree, threads):
        return lambda: run([self.program("BareWalk"), tree, str(threads)])

    def default_threads(self):
        """As many as the program itself would take."""
        return int(run([self.program("ScanOnce"), "--made-up", "1"]).output["threads"])


@contextlib.contextmanager
def two_cores():
    """Keeps this process, and so all that it starts meanwhile, to two processors."""
    before = os.sched_getaffinity(0)
    os.sched_setaffinity(0, sorted(before)[:2])
    try:
        yield min(2, len(before))
    finally:
        os.sched_setaffinity(0, before)
