#!/usr/bin/python3
"""Runs one suite of end-to-end tests: runner.py --program PROGRAM [--helpers FOLDER] SUITE [unittest arguments].

Root passes every permission check, so for root the suite runs as an ordinary user, from copies which that user can
read. The whole run has a bound, and on every way out what it started ends."""

import argparse
import faulthandler
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
NOBODY = 65534


def as_ordinary_user(arguments):
    """Copies what the run needs to where another user reaches it, and runs there as that user."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="quillbrook-e2e-"))
    try:
        folder.chmod(0o755)
        shutil.copytree(HERE, folder / "suites", ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copy2(arguments.program, folder / "quillbrook")
        shutil.copytree(arguments.helpers, folder / "helpers")
        work = folder / "work"
        work.mkdir()
        os.chown(work, NOBODY, NOBODY)
        command = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", "--pdeathsig=KILL", "--",
                   sys.executable, "-B", str(folder / "suites" / "runner.py"), "--program", str(folder / "quillbrook"),
                   "--helpers", str(folder / "helpers"), "--seconds", str(arguments.seconds),
                   "--pictures", str(arguments.pictures.resolve()) if arguments.pictures else "",
                   arguments.suite, *arguments.rest]
        return subprocess.run(command, env=os.environ | {"TMPDIR": str(work)}, cwd=work, check=False,
                              timeout=arguments.seconds + 30).returncode
    finally:
        keep_pictures(folder / "work", arguments.pictures)
        shutil.rmtree(folder, ignore_errors=True)


def keep_pictures(work, pictures):
    """The pictures the run left, for whoever reads why it failed."""
    if pictures and work.is_dir():
        pictures.mkdir(parents=True, exist_ok=True)
        for picture in work.glob("*.png"):
            shutil.copy(picture, pictures)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--helpers", required=True, type=pathlib.Path)
    parser.add_argument("--pictures", type=lambda text: pathlib.Path(text) if text else None)
    parser.add_argument("--seconds", type=float, default=240)
    parser.add_argument("suite")
    parser.add_argument("rest", nargs=argparse.REMAINDER)
    arguments = parser.parse_args()
    if os.getuid() == 0:
        return as_ordinary_user(arguments)

    # Whatever hangs, ends here with a trace of where.
    faulthandler.dump_traceback_later(arguments.seconds, exit=True)
    sys.path.insert(0, str(HERE))
    import case
    return case.run(arguments)


if __name__ == "__main__":
    sys.exit(main())
