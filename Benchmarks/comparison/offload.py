"""Measures of moving to another drive: the copy beside the bare tools, and the measured rate beside dd. Both ask for a
second file system, a real one, which is a file mounted for the time of the measure; that takes root."""

import os
import shutil
import statistics
import subprocess
import time
from contextlib import contextmanager

from comparison.programs import PROCESS, ProgramFailed, Run, run
from comparison.ratios import ratio_row
from comparison.rows import AtMost, Between, Row, milliseconds

FILES = 10_000
BYTES = 2 * 2**30


def offload(context):
    files, size = (1000, 200 * 2**20) if context.quick else (FILES, BYTES)
    place = context.scratch("offload")
    with _volume(place, size * 2) as volume:
        yield _rate(context, volume)
        yield _moving(context, place, volume, files, size)
        yield _stall(context, place, volume, files, size)


@contextmanager
def _volume(place, size):
    """A drive of its own, which goes when its holder does. Nobody else sees it; this process reaches it through the
    holder."""
    image, mount = place / "drive.img", place / "drive"
    mount.mkdir()
    with open(image, "wb") as file:
        file.truncate(size)
    script = ('mkfs.ext4 -q -F -m 0 "$1"; mount -o loop "$1" "$2"; mountpoint -q "$2"; echo mounted; exec sleep 3600')
    holder = subprocess.Popen(["unshare", "--mount", "--propagation", "private", "sh", "-ec", script, "sh", image, mount],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    try:
        if holder.stdout.readline().strip() != "mounted":
            raise ProgramFailed(f"no second file system: {holder.stderr.read().strip()}")
        yield _Volume(mount, ["nsenter", "--mount", f"--target={holder.pid}", "--"])
    finally:
        holder.kill()
        holder.wait(10)
        holder.stdout.close()
        holder.stderr.close()


class _Volume:
    def __init__(self, path, inside):
        self.path, self.inside = path, inside

    def run(self, *command, **options):
        return run([*self.inside, *map(str, command)], **options)


def _rate(context, volume):
    """The seconds that 24 MiB take until they are on the drive."""
    def own():
        return volume.run(context.program("OffloadOnce"), "rates", volume.path)

    def dd():
        target = volume.path / "dd"
        text = volume.run("sh", "-c", f'dd if=/dev/zero of="{target}" bs=1M count=24 oflag=direct conv=fsync 2>&1; '
                          f'rm "{target}"', parse=False).text
        seconds = float(text.rpartition(" s, ")[0].rpartition(" ")[2])
        return Run(seconds, seconds, 0.0, output={"seconds": seconds})

    rounds = context.in_turn({"own": own, "dd": dd})
    return ratio_row("offload_rate_to_dd", "seconds of the measured write ÷ `dd … oflag=direct conv=fsync`", rounds,
                     ("own", "seconds"), ("dd", "seconds"), bar=Between(0.80, 1.20))


def _moving(context, place, volume, files, size):
    source, trash = place / "models", place / "Trash"
    _make(source, files, size // files)
    taken = sum(os.lstat(path).st_blocks * 512 for path in source.rglob("*") if path.is_file())

    def own():
        result = volume.run(context.program("OffloadOnce"), "move", source, volume.path, trash, taken)
        # Back to where it was, by renames.
        source.unlink()
        (trash / "files" / source.name).rename(source)
        shutil.rmtree(trash)
        volume.run("rm", "-rf", volume.path / source.name, parse=False)
        time.sleep(0.5)
        return result

    def bare():
        copy = volume.path / "copy"
        result = volume.run("sh", "-ec", f'cp -aT "{source}" "{copy}"; sync -f "{copy}"; du -s "{copy}"', parse=False)
        volume.run("rm", "-rf", copy, parse=False)
        time.sleep(0.5)
        return result

    rounds = context.in_turn({"own": own, "bare": bare}, max(3, context.rounds // 2))
    return ratio_row("offload_to_cp", f"moving {files:,} files, {size / 2**30:.1f} GiB, to another drive ÷ `cp -a`, `sync -f`, `du`",
                     rounds, ("own", PROCESS), ("bare", PROCESS), bar=AtMost(1.15))


def _stall(context, place, volume, files, size):
    """The main thread of the model while such a copy runs."""
    home = place / "home"
    source = home / "models"
    _make(source, files, size // files)
    taken = sum(os.lstat(path).st_blocks * 512 for path in source.rglob("*") if path.is_file())
    runs = []
    for number in range(max(3, context.rounds // 3)):
        runs.append(volume.run(context.program("OffloadStall"), home, source, volume.path, taken))
        volume.run("rm", "-rf", volume.path / source.name, parse=False)
        source.unlink()
        _make(source, files, size // files)
    waits = [each.output["longest_wait"] * 1000 for each in runs]
    busy = [each.output["longest_busy"] * 1000 for each in runs]
    return Row("offload_stall_ms", "longest stall of the main thread while it copies", statistics.median(waits), milliseconds,
               AtMost(50), f"the longest of all runs {milliseconds(max(waits))}; of its own doing at most "
               f"{milliseconds(max(busy))}", {"waits_ms": waits, "busy_ms": busy})


def _make(tree, files, each):
    block = os.urandom(each)
    for number in range(files):
        folder = tree / f"folder {number // 100}"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"file {number}").write_bytes(block)
