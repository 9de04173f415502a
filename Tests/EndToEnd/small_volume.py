"""A small disk in memory that only the program sees and this test: mounted in a place of its own, which ends with the
process that holds it. Needs user namespaces; where those are forbidden, `Volume` raises `Impossible`."""

import errno
import os
import pathlib
import sys

import homes
import processes
import waiting


class Impossible(Exception):
    pass


class Volume:
    """`path` is where the program sees it, `outside` where this process does."""

    def __init__(self, path, megabytes):
        self.path = pathlib.Path(path)
        self.path.mkdir()
        self._log = self.path.with_suffix(".log")
        with open(self._log, "wb") as log:
            self._holder = processes.start(
                ["unshare", "--user", "--map-root-user", "--mount", "--propagation", "private", "sh", "-ec",
                 'mount -t tmpfs -o "size=$2m,mode=755" none "$1"; mountpoint -q "$1"; exec sleep 600', "sh", self.path,
                 str(megabytes)], stdout=log, stderr=log)
        self.outside = pathlib.Path(f"/proc/{self._holder.pid}/root{self.path}")
        try:
            waiting.until("the small disk", self._look, 20)
        except waiting.Late:
            self.end()
            raise

    def _look(self):
        if self._holder.poll() is not None:
            raise Impossible(self._log.read_text(encoding="utf-8", errors="replace").strip())
        return self.is_mounted()

    def is_mounted(self):
        try:
            return os.path.ismount(self.outside)
        except OSError:
            return False

    def require(self):
        """Ends the run where a write would go to another disk."""
        if not self.is_mounted():
            print(f"{self.outside} is not mounted", file=sys.stderr)
            os._exit(1)

    @property
    def through(self):
        """The command that starts a program in there, as the user this process runs as."""
        return ["nsenter", "--preserve-credentials", "--user", "--mount", f"--target={self._holder.pid}", "--",
                "unshare", "--user", f"--map-user={os.getuid()}", f"--map-group={os.getgid()}", "--"]

    @property
    def free(self):
        status = os.statvfs(self.outside)
        return status.f_bavail * status.f_frsize

    def fill(self):
        """Takes all the space there is."""
        self.require()
        descriptor = os.open(self.outside / "filler", os.O_WRONLY | os.O_CREAT | os.O_APPEND, 0o600)
        try:
            block = os.urandom(4096)
            while True:
                os.write(descriptor, block)
        except OSError as error:
            if error.errno != errno.ENOSPC:
                raise
        finally:
            os.close(descriptor)

    def end(self):
        processes.end(self._holder)


class VolumeHome(homes.Home):
    """A home that lies, with all that the program stores, on such a disk."""

    def __init__(self, volume):
        volume.require()
        self._volume = volume
        super().__init__(volume.outside)
        for table in (self._passwd, self._group):
            table.write_text(self._inside(table.read_text(encoding="utf-8")), encoding="utf-8")

    @property
    def seen(self):
        """Where the program sees it."""
        return pathlib.Path(self._inside(str(self.path)))

    def environment(self, preload=()):
        return {name: self._inside(value) for name, value in super().environment(preload).items()}

    def file(self, name, size=0):
        self._volume.require()
        return super().file(name, size)

    def _inside(self, text):
        return text.replace(str(self._volume.outside), str(self._volume.path))
