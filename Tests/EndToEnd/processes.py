"""Processes this run started, and the way to end exactly those.

A bus starts services of its own and a program may leave children behind. As the reaper of its descendants this
process gets every orphan among them as its child, so that `end_all` finds them by their parent and never by name."""

import ctypes
import os
import signal
import subprocess
import time

_libc = ctypes.CDLL(None, use_errno=True)
_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36


def adopt_orphans():
    """Makes this process the parent of whatever its descendants leave behind."""
    _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def _die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def start(command, **options):
    """Starts a process that does not outlive this one, whatever ends this one."""
    return subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL, preexec_fn=_die_with_parent,
                            **options)


def end(process, seconds=10):
    """Asks a process to end, and makes it. Answers whether it ended when asked."""
    if process.poll() is None:
        process.terminate()
    try:
        process.wait(seconds)
        return True
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait(seconds)
        return False


def descendants():
    """Ids of all processes below this one."""
    parents = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as stat:
                    parents[int(entry)] = int(stat.read().rpartition(")")[2].split()[1])
            except OSError:
                continue
    found, grown = set(), {os.getpid()}
    while grown:
        grown = {child for child, parent in parents.items() if parent in grown and child not in found}
        found |= grown
    return found


def copies_of(pids):
    """Ids of those below this process whose parent is one of these, and which run what that runs."""

    def field(pid, name):
        try:
            with open(f"/proc/{pid}/{name}", "rb") as file:
                return file.read()
        except OSError:
            return b""

    def parent(pid):
        found = field(pid, "stat").rpartition(b")")[2].split()
        return int(found[1]) if len(found) > 1 else 0

    return {pid for pid in descendants() if (above := parent(pid)) in pids
            and field(pid, "cmdline") and field(pid, "cmdline") == field(above, "cmdline")}


def end_all(seconds=10, kept=frozenset()):
    """Ends everything below this process but those with these ids, whose children it ends."""
    for sign in (signal.SIGTERM, signal.SIGKILL):
        limit = time.monotonic() + seconds
        alive = descendants() - kept
        for pid in alive:
            try:
                os.kill(pid, sign)
            except ProcessLookupError:
                pass
        while alive and time.monotonic() < limit:
            _reap()
            alive = descendants() - kept
            time.sleep(0.05)
        if not alive:
            return


def _reap():
    while True:
        try:
            if os.waitpid(-1, os.WNOHANG)[0] == 0:
                return
        except ChildProcessError:
            return
