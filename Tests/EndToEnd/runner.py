#!/usr/bin/python3
"""Runs one suite of end-to-end tests: runner.py --program PROGRAM --helpers FOLDER SUITE [unittest arguments].

The suite runs in a process below this one, which on every way out ends all that was started. Root passes every
permission check, so for root the suite runs as an ordinary user, from copies which that user can read; with --large-disk,
root gives it a large disk before that."""

import argparse
import faulthandler
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import large_volume
import processes

HERE = pathlib.Path(__file__).resolve().parent
ORDINARY_USER = 65534


def supervise(arguments):
    processes.adopt_orphans()
    folder = pathlib.Path(tempfile.mkdtemp(prefix="quillbrook-e2e-"))
    work = folder / "work"
    try:
        work.mkdir()
        folder.chmod(0o755)
        environment = os.environ | {"TMPDIR": str(work)}
        suites, helpers, program, before = HERE, arguments.helpers.resolve(), arguments.program.resolve(), []
        if os.getuid() == 0:
            tests = shutil.copytree(HERE.parent, folder / "tests", ignore=shutil.ignore_patterns("__pycache__"))
            suites = tests / HERE.name
            helpers = shutil.copytree(helpers, folder / "helpers")
            program = shutil.copy2(program, folder / "quillbrook")
            os.chown(work, ORDINARY_USER, ORDINARY_USER)
            if arguments.large_disk:
                disk = folder / "disk"
                disk.mkdir()
                before = large_volume.mounting(folder / "disk.img", disk, ORDINARY_USER)
                environment["LARGE_DISK"] = str(disk)
            if arguments.volumes:
                drives = folder / "drives"
                drives.mkdir()
                environment["QUILLBROOK_DRIVES"] = str(drives)
                before = ["unshare", "--mount", "--propagation", "private", "--", HERE / "volumes.sh", drives,
                          ORDINARY_USER]
            before += ["setpriv", f"--reuid={ORDINARY_USER}", f"--regid={ORDINARY_USER}", "--clear-groups", "--"]
        command = [*before, sys.executable, "-B", suites / "runner.py", "--below", "--program", program,
                   "--helpers", helpers, "--seconds", str(arguments.seconds), arguments.suite, *arguments.rest]
        child = processes.start(command, env=environment, cwd=work)
        return child.wait(arguments.seconds + 30)
    except subprocess.TimeoutExpired:
        print("The suite did not end.", file=sys.stderr)
        return 1
    finally:
        processes.end_all()
        keep_pictures(work, arguments.pictures)
        shutil.rmtree(folder, ignore_errors=True)


def keep_pictures(work, pictures):
    """The pictures of failed tests, for whoever reads why."""
    if pictures and work.is_dir():
        for picture in work.glob("*.png"):
            pictures.mkdir(parents=True, exist_ok=True)
            shutil.copy(picture, pictures)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--helpers", required=True, type=pathlib.Path)
    parser.add_argument("--pictures", type=pathlib.Path, help="where pictures of failed tests go")
    parser.add_argument("--seconds", type=float, default=200)
    parser.add_argument("--large-disk", action="store_true", help="of 64 GB, where it can be mounted")
    parser.add_argument("--volumes", action="store_true", help="with small drives of several file systems, as root")
    parser.add_argument("--below", action="store_true", help=argparse.SUPPRESS)
    parser.add_argument("suite", help="its name; of one in another folder, with the way there from this one")
    parser.add_argument("rest", nargs=argparse.REMAINDER)
    arguments = parser.parse_args()
    if not arguments.below:
        return supervise(arguments)

    # Whatever hangs, ends here with a trace of where.
    faulthandler.dump_traceback_later(arguments.seconds, exit=True)
    where, _, arguments.suite = arguments.suite.rpartition("/")
    sys.path.append(str(HERE / where))
    import case
    return case.run(arguments)


if __name__ == "__main__":
    sys.exit(main())
