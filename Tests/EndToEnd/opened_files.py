"""Which files are opened, by whatever program, in folders that are looked at."""

import contextlib
import ctypes
import os
import struct

_OPENED, _IS_FOLDER, _OVERFLOW = 0x20, 0x40000000, 0x4000
_EVENT = struct.Struct("iIII")


class OpenedFiles(contextlib.AbstractContextManager):
    """Of the folders below some tops as they are now; a folder that is moved stays one of them."""

    def __init__(self, *tops):
        self._libc = ctypes.CDLL(None, use_errno=True)
        self._queue = self._libc.inotify_init1(os.O_CLOEXEC | os.O_NONBLOCK)
        for top in tops:
            for folder, _, _ in os.walk(os.fsencode(top)):
                if self._libc.inotify_add_watch(self._queue, folder, _OPENED) < 0:
                    raise OSError(ctypes.get_errno(), "inotify_add_watch", folder)

    def __exit__(self, *_):
        os.close(self._queue)

    def names(self):
        """The names of the files that were opened since this was asked the last time."""
        found = set()
        with contextlib.suppress(BlockingIOError):
            while True:
                found |= self._in(os.read(self._queue, 1 << 16))
        return found

    @staticmethod
    def _in(events):
        found, place = set(), 0
        while place < len(events):
            _, mask, _, length = _EVENT.unpack_from(events, place)
            place += _EVENT.size
            assert not mask & _OVERFLOW, "too much was opened to be told"
            if mask & _OPENED and not mask & _IS_FOLDER:
                found.add(events[place:place + length].rstrip(b"\0"))
            place += length
        return found
