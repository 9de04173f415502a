#!/usr/bin/python3
"""Runs clang-tidy, with the checks of .clang-tidy, over the source files the release build compiles, or over those
named. Fails on any finding."""

import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIDY = ROOT / "build/tidy"
HEAD = re.compile(r"^\S+:\d+:\d+: (warning|error): |^error: ")
# Clang 14 takes the destructor of std::expected for a deleted one, where the error type has a destructor, and such a
# value for one that no future can hold. Were it so, the compiler itself would not take the code.
NOT_OURS = re.compile(
    r"attempt to use a deleted function.*destructor of 'expected<"
    r"|static_assert failed due to requirement 'std::is_move_constructible_v<std::expected<"
    r"|no member named '\w+' in 'Q(Future|Promise)<std::expected<", re.S)
SECONDS_A_FILE = 300


def translated_commands():
    """What the build does, as clang 14 can read it: it spells the language differently, has coroutines without
    GCC's option for them, and knows concepts but not the number by which the standard library asks for them."""
    commands = json.loads((ROOT / "build/release/compile_commands.json").read_text(encoding="utf-8"))
    for entry in commands:
        entry["command"] = (entry["command"].replace("-std=c++23", "-std=c++2b").replace(" -fcoroutines ", " ")
                            .replace(" -Werror ", " -D__cpp_concepts=202002L "))
        # What GCC has compiled of headers beforehand is nothing to clang.
        entry["command"] = re.sub(r" -include \S+/cmake_pch\.hxx", "", entry["command"])
    return commands


def findings(text):
    """What clang-tidy says, one text a finding with its notes."""
    found = []
    for line in text.splitlines():
        if HEAD.match(line):
            found.append(line)
        elif found and not re.match(r"\d+ warnings? |Error while processing|Suppressed |Use -|Found compiler error", line):
            found[-1] += "\n" + line
    return found


def look_at(path):
    try:
        answer = subprocess.run(["clang-tidy", "--quiet", "-p", str(TIDY), "--extra-arg=-Wno-unknown-warning-option",
                                 str(path)], capture_output=True, text=True, timeout=SECONDS_A_FILE, cwd=ROOT)
    except subprocess.TimeoutExpired:
        return [f"{path}: not within {SECONDS_A_FILE} s"]
    found = findings(answer.stdout)
    if answer.returncode != 0 and not found:
        return [f"{path}: clang-tidy ended with {answer.returncode}: {answer.stderr}"]
    return [finding for finding in found if not NOT_OURS.search(finding)]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("files", nargs="*", type=pathlib.Path)
    arguments = parser.parse_args()
    if not (ROOT / "build/release/compile_commands.json").exists():
        sys.exit("Configure the release preset first.")
    commands = translated_commands()
    TIDY.mkdir(parents=True, exist_ok=True)
    (TIDY / "compile_commands.json").write_text(json.dumps(commands), encoding="utf-8")

    files = [path.resolve() for path in arguments.files] or [
        path for path in sorted({pathlib.Path(entry["file"]) for entry in commands})
        if path.is_relative_to(ROOT) and not path.is_relative_to(ROOT / "build")]
    seen = set()
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        for found in pool.map(look_at, files):
            for finding in found:
                if finding not in seen:
                    seen.add(finding)
                    print(finding.replace(f"{ROOT}/", ""), flush=True)
    print(f"clang-tidy: {len(files)} files, {len(seen)} findings")
    return 1 if seen else 0


if __name__ == "__main__":
    sys.exit(main())
