"""A large disk of which almost nothing is kept, for what goes by gigabytes: an ext4 image full of holes. Whoever starts
the suite mounts it, where nobody but the suite sees it; that takes an administrator and a loop device. Elsewhere it is
`Impossible`."""

import os
import pathlib
import shutil

import homes

GIGABYTES = 64
# Mounts the image $1 at $2 for the user $3, then goes on as the command behind it, also where it can't be mounted.
MOUNT = f"""
if truncate -s {GIGABYTES}G "$1" &&
    mkfs.ext4 -q -F -m 0 -E nodiscard,lazy_itable_init=1,lazy_journal_init=1 "$1" &&
    mount -o loop "$1" "$2" && mountpoint -q "$2"; then
    chown "$3" "$2"
fi
shift 3
exec "$@"
"""


class Impossible(Exception):
    pass


def mounting(image, place, user):
    """The command that goes on as another one with the disk in its place."""
    return ["unshare", "--mount", "--propagation", "private", "--", "sh", "-c", MOUNT, "sh", image, place, str(user)]


class Volume:
    """A folder of its own on that disk, for one test."""

    def __init__(self, name):
        self._place = os.environ.get("LARGE_DISK", "")
        if not self._place or not os.path.ismount(self._place):
            raise Impossible("no large disk is mounted; that takes an administrator and a loop device")
        self.path = pathlib.Path(self._place) / name
        self.path.mkdir()

    def require(self):
        """Ends the test where a write would go to another disk."""
        assert os.path.ismount(self._place), f"{self._place} is not mounted"

    @property
    def free(self):
        status = os.statvfs(self._place)
        return status.f_bavail * status.f_frsize

    @property
    def used(self):
        """The percentage that is used, cut to a whole number."""
        status = os.statvfs(self._place)
        return (status.f_blocks - status.f_bavail) * 100 // status.f_blocks

    def allocate(self, path, size):
        """Makes a file take so much room, in no time."""
        self.require()
        descriptor = os.open(path, os.O_WRONLY | os.O_CREAT, 0o600)
        try:
            os.posix_fallocate(descriptor, 0, size)
        finally:
            os.close(descriptor)

    def leave(self, count):
        """Takes all the space but so many bytes."""
        self.allocate(self.path / "filler", max(self.free - count, 1))

    def fill(self):
        """Takes all the space there is."""
        self.leave(1024 * 1024)
        self.require()
        with open(self.path / "filler-2", "wb", buffering=0) as file:
            try:
                while True:
                    file.write(bytes(4096))
            except OSError:
                pass

    def end(self):
        shutil.rmtree(self.path, ignore_errors=True)


class VolumeHome(homes.Home):
    """A home that lies, with all that the program stores, on such a disk."""

    def __init__(self, volume):
        volume.require()
        self._volume = volume
        super().__init__(volume.path)

    def allocate(self, name, size):
        path = self.file(name)
        self._volume.allocate(path, size)
        return path
