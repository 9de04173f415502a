"""Runs a program once, bounded in time, and says how long it took and how busy the machine was besides."""

import json
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from dataclasses import dataclass, field

TICKS = os.sysconf("SC_CLK_TCK")


class ProgramFailed(Exception):
    """A program that was to be measured did not end well. Its text is for the reader."""


@dataclass(frozen=True)
class Run:
    """One run of one program."""

    # Wall clock of the whole process, its start and end included.
    seconds: float
    # Processor time that it took, of its own and of the system on its behalf.
    processor_seconds: float
    # Processor time that others took meanwhile, as a share of all the processors this process may use.
    foreign: float
    text: str = ""
    output: dict = field(default_factory=dict)

    def figure(self, key):
        """The program's own figure of that name, or one of the whole process."""
        if key == PROCESS:
            return self.seconds
        return self.processor_seconds if key == PROCESSOR else float(self.output[key])


# Name the wall clock and the processor time of the whole process where a figure is asked for by name.
PROCESS = "seconds of the process"
PROCESSOR = "processor seconds of the process"


def busy_seconds():
    """Processor time that the whole machine has spent on anything (stolen time is nobody's rest either)."""
    with open("/proc/stat", encoding="ascii") as file:
        user, nice, system, _idle, _wait, irq, softirq, steal = map(int, file.readline().split()[1:9])
    return (user + nice + system + irq + softirq + steal) / TICKS


def run(command, *, timeout=300, parse=True, environment=None):
    """Runs a program to its end. Its standard output is JSON unless `parse` is false."""
    if shutil.which(command[0]) is None:
        raise ProgramFailed(f"{command[0]} is not installed")
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        busy_before = busy_seconds()
        own_before = time.process_time()
        start = time.monotonic()
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=errors,
                                   start_new_session=True, env=environment)
        timer = threading.Timer(timeout, _kill, [process])
        timer.start()
        try:
            _pid, status, usage = os.wait4(process.pid, 0)
        finally:
            timer.cancel()
        seconds = time.monotonic() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        its = usage.ru_utime + usage.ru_stime
        runners = time.process_time() - own_before
        foreign = max(0.0, busy_seconds() - busy_before - its - runners) / (seconds * os.cpu_count())
        output.seek(0)
        errors.seek(0)
        text = output.read().decode("utf-8", "replace")
        if process.returncode != 0:
            complaint = errors.read(2000).decode("utf-8", "replace").strip()
            reason = f"took longer than {timeout} s" if process.returncode == -signal.SIGKILL \
                else f"ended with {process.returncode}"
            raise ProgramFailed(f"{' '.join(command)} {reason} {complaint}")
    return Run(seconds, its, foreign, text, json.loads(text) if parse else {})


def _kill(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
