"""Drives that a suite plugs in and out by itself: file systems that an ordinary user may mount, each by a process of its
own, which ends with the drive. Needs the drives that `volumes.sh` makes; without them there are none."""

import os
import pathlib
import signal
import subprocess
import unittest

import processes
import waiting


def folder():
    """Where the run has its drives; passes the test over where it has none."""
    place = os.environ.get("QUILLBROOK_DRIVES")
    if not place:
        raise unittest.SkipTest("no drives of its own without root")
    return pathlib.Path(place)


class Drive:
    """What a file system's own program mounts at `path` as long as it runs."""

    def __init__(self, path, command):
        self.path = pathlib.Path(path)
        self.path.mkdir(exist_ok=True)
        self._process = processes.start(command)
        waiting.until(f"a drive at {self.path}", self.is_mounted)

    def is_mounted(self):
        if self._process.poll() is not None:
            raise AssertionError(f"no drive at {self.path}")
        try:
            return os.path.ismount(self.path)
        except OSError:
            return False

    def vanish(self):
        """As a stick that is pulled out: what serves it ends, and its place is empty."""
        self._process.kill()
        self._process.wait(10)
        subprocess.run(["fusermount3", "-u", "-z", self.path], check=False)

    def hang(self):
        """As a server that is gone: whoever asks it waits, and so would a test."""
        self._process.send_signal(signal.SIGSTOP)

    def go_on(self):
        self._process.send_signal(signal.SIGCONT)

    def end(self):
        if os.path.ismount(self.path):
            subprocess.run(["fusermount3", "-u", "-z", self.path], check=False)
        processes.end(self._process)


def slow(path, behind, megabytes):
    """A drive that shows what lies in the folder `behind`, written at so many megabytes a second."""
    pathlib.Path(behind).mkdir(exist_ok=True)
    return Drive(path, ["bindfs", "-f", "--no-allow-other", f"--write-rate={megabytes}M", behind, path])
