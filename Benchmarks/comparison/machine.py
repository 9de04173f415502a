"""The machine that figures were taken on."""

import os
import platform
import re
import subprocess


def describe(path):
    """Name to text, in the order to show."""
    return {
        "processor": f"{_processor()}, {os.cpu_count()} cores ({len(os.sched_getaffinity(0))} usable)",
        "memory": f"{os.sysconf('SC_PHYS_PAGES') * os.sysconf('SC_PAGE_SIZE') / 2**30:.1f} GiB",
        "kernel": f"{platform.system()} {platform.release()}",
        "system": _system(),
        "virtual machine": _output(["systemd-detect-virt", "--vm"]) or "unknown",
        "file system": _output(["findmnt", "-no", "FSTYPE,OPTIONS", "--target", path]) or "unknown",
        "peers": ", ".join(filter(None, (_first_line(["du", "--version"]), _first_line(["ncdu", "--version"]),
                                         "gdu " + _version(["gdu", "--version"])))),
    }


def _processor():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        found = re.search(r"^(?:model name|Processor)\s*:\s*(.+)$", file.read(), re.MULTILINE)
    return found.group(1) if found else platform.machine()


def _system():
    try:
        return platform.freedesktop_os_release().get("PRETTY_NAME", "unknown")
    except OSError:
        return "unknown"


def _output(command):
    try:
        done = subprocess.run(command, capture_output=True, text=True, timeout=10, check=False)
    except (OSError, subprocess.TimeoutExpired):
        return ""
    return re.sub(r"[ \t]+", " ", done.stdout).strip()


def _first_line(command):
    return _output(command).partition("\n")[0]


def _version(command):
    found = re.search(r"\d+\.\d+[.\d]*", _output(command))
    return found.group(0) if found else "not installed"
