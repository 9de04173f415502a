"""A made-up home folder, and the environment in which a program takes it for its own."""

import os
import pathlib

import waiting


class Home:
    """`path` is the home; what the program itself stores goes beside it, so that the home stays as it was made. Only
    caches are where they usually are: of a base outside the home folder nothing can be cleared. What the program hands
    to the desktop to open is written to `opened`: the machine's own programs would put windows of theirs in the way."""

    def __init__(self, folder, user="ann"):
        self.folder = pathlib.Path(folder)
        self.path = self.folder / "home" / user
        self.path.mkdir(parents=True)
        self.settings = self.folder / "config" / "Quillbrook" / "Quillbrook.conf"
        for name in ("config", "data", "state", "bin"):
            (self.folder / name).mkdir()
        self.opened = self.folder / "opened"
        opener = self.folder / "bin" / "xdg-open"
        opener.write_text('#!/bin/sh\nprintf "%s\\n" "$1" >> "${0%/*}/../opened"\n', encoding="utf-8")
        opener.chmod(0o755)
        self._passwd = self.folder / "passwd"
        self._group = self.folder / "group"
        self._passwd.write_text(
            f"{user}:x:{os.getuid()}:{os.getgid()}:A made-up user:{self.path}:/bin/sh\n", encoding="utf-8", errors="surrogateescape")
        self._group.write_text(f"{user}:x:{os.getgid()}:\n", encoding="utf-8", errors="surrogateescape")

    def environment(self, preload=()):
        """Where it stands, the account database says this home is that of whoever asks."""
        kept = {name: value for name, value in os.environ.items()
                if name in ("PATH", "DISPLAY", "XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS", "TMPDIR")}
        return kept | {
            "HOME": str(self.path),
            "PATH": f"{self.folder / 'bin'}:{os.environ['PATH']}",
            "LANG": "C.UTF-8",
            "TZ": "UTC",
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "XDG_CACHE_HOME": str(self.path / ".cache"),
            "QML_DISABLE_DISK_CACHE": "1",
            "XDG_DATA_HOME": str(self.folder / "data"),
            "XDG_STATE_HOME": str(self.folder / "state"),
            "XDG_DATA_DIRS": "/usr/local/share:/usr/share",
            "XDG_CONFIG_DIRS": "/etc/xdg",
            "LD_PRELOAD": " ".join(["libnss_wrapper.so", *map(str, preload)]),
            "NSS_WRAPPER_PASSWD": str(self._passwd),
            "NSS_WRAPPER_GROUP": str(self._group),
            "QT_QUICK_BACKEND": "software",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }

    def file(self, name, size=0):
        """A file of `size` real bytes, in folders made as needed. `name` may be bytes."""
        path = os.path.join(os.fsencode(self.path), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            # Not zeros: a file system may store those as nothing.
            block = os.urandom(65536)
            left = size
            while left > 0:
                left -= file.write(block[:left])
        return pathlib.Path(os.fsdecode(path))

    def sparse(self, name, size):
        path = self.file(name)
        os.truncate(path, size)
        return path

    def link(self, old, new):
        path = self.path / new
        path.parent.mkdir(parents=True, exist_ok=True)
        os.link(self.path / old, path)
        return path

    def wait_for_setting(self, key, value):
        """Waits until the program has stored that."""
        line = f"{key}={value}"
        waiting.until(f"{line} in the settings", lambda: self.settings.exists()
                      and line in self.settings.read_text(encoding="utf-8").splitlines())

    def allocated(self, *below):
        """Bytes on disk of all files under these names (all of the home without), each hard-linked file once,
        folders themselves not counted: by stat, not by the program."""
        seen, total = set(), 0
        for start in below or ("",):
            top = os.path.join(self.path, start)
            found = [top] if not os.path.isdir(top) else [
                os.path.join(folder, name) for folder, folders, files in os.walk(top)
                for name in files + [name for name in folders if os.path.islink(os.path.join(folder, name))]]
            for path in found:
                status = os.lstat(path)
                if (status.st_dev, status.st_ino) not in seen:
                    seen.add((status.st_dev, status.st_ino))
                    total += status.st_blocks * 512
        return total


def in_words(count):
    """A size as the program words it: binary steps, one decimal under 100."""
    if count < 1024:
        return f"{count} B"
    value, unit = count / 1024, "KB"
    for bigger in ("MB", "GB", "TB"):
        if value < 1024:
            break
        value, unit = value / 1024, bigger
    return f"{value:.0f} {unit}" if value >= 100 else f"{value:.1f} {unit}"
