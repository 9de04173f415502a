"""What the suites about removal share: the Trash and the ledger as they lie on the disk, told without the program,
and the questions that it asks before anything goes."""

import base64
import hashlib
import json
import os
import stat
import urllib.parse

import accessibility
import case
import desktop
import waiting

NO_BACKUP = "This Mac has no backup"
FREE_NOW = ("The Trash is on the same disk, so the space only comes back once it leaves. Freeing it now removes only what "
            "Quillbrook moved, and can't be undone. Keep it in the Trash if you might want something back.")
FINISH = "This frees the space immediately and cannot be undone. Only the items Quillbrook moved are removed."
# Not UTF-8, on two lines, with what a note writes in another way, and with a dash in front.
ODD_NAMES = (b"caf\xe9 100%.bin", b"two\nlines.bin", "søk #1?.bin".encode(), b"-rf", b".hidden")


def contents(folder):
    """All that lies below: its path in bytes, with what it is and what is in it."""
    top = os.fsencode(folder)
    found = {}
    for path, folders, files in os.walk(top):
        for name in folders + files:
            below = os.path.join(path, name)
            mode, inside = os.lstat(below).st_mode, None
            if stat.S_ISLNK(mode):
                inside = os.readlink(below)
            elif stat.S_ISREG(mode):
                with open(below, "rb") as file:
                    inside = hashlib.sha256(file.read()).digest()
            found[os.path.relpath(below, top)] = mode, inside
    return found


def without(found, *names):
    """The same without what lies below these."""
    gone = tuple(os.fsencode(name) + b"/" for name in names)
    return {path: thing for path, thing in found.items() if not path.startswith(gone)}


def under(found, name):
    """What lies below this, by its path from there."""
    top = os.fsencode(name) + b"/"
    return {path.removeprefix(top): thing for path, thing in found.items() if path.startswith(top)}


class Removing(case.Case):
    # The same for the whole run, once it is known.
    _backup = None

    @property
    def seen(self):
        """The home folder by the path at which the program sees it."""
        return self.home.path

    @property
    def data(self):
        """The folder in which the Trash and the ledger lie."""
        return self.home.folder / "data"

    def origin(self, name):
        return os.path.join(os.fsencode(self.seen), os.fsencode(name))

    def inHome(self):
        return contents(self.home.path)

    def inTrash(self):
        return contents(self.data / "Trash" / "files")

    def trashed(self):
        """The things in the Trash by where their notes say that they come from; each has a note, and each note a
        thing."""
        files, notes = (os.fsencode(self.data / "Trash" / part) for part in ("files", "info"))
        if not os.path.isdir(files):
            return {}
        names = sorted(os.listdir(files))
        self.assertEqual(sorted(os.listdir(notes)), sorted(name + b".trashinfo" for name in names))
        return {self._noted(os.path.join(notes, name + b".trashinfo")): name for name in names}

    @staticmethod
    def _noted(path):
        with open(path, "rb") as note:
            lines = note.read().split(b"\n")
        assert lines[0] == b"[Trash Info]", lines
        return urllib.parse.unquote_to_bytes(next(line for line in lines if line.startswith(b"Path=")).removeprefix(b"Path="))

    def otherTrash(self):
        """Something that the person threw away without the program."""
        trash = self.data / "Trash"
        for part in ("files", "info"):
            (trash / part).mkdir(parents=True, mode=0o700)
        (trash / "files" / "old.txt").write_text("thrown away by hand")
        (trash / "info" / "old.txt.trashinfo").write_text(
            f"[Trash Info]\nPath={self.seen}/old.txt\nDeletionDate=2024-05-01T12:00:00\n")
        return {self.origin("old.txt"): b"old.txt"}

    def ledger(self):
        """Its rows by where each thing was: where it lies now, and its bytes."""
        path = self.data / "Quillbrook" / "ledger.json"
        rows = json.loads(path.read_text(encoding="utf-8")) if path.exists() else []
        found = {self._place(row, "originalPath"): (self._place(row, "trashPath"), row["bytes"]) for row in rows}
        self.assertEqual(len(found), len(rows))
        return found

    @staticmethod
    def _place(row, key):
        return base64.b64decode(row[key + "Bytes"]) if key + "Bytes" in row else row[key].encode()

    def assertLedgerKnows(self, names, size=None):
        """The ledger holds exactly what came from there, and each lies in the Trash where it says."""
        rows, lying = self.ledger(), self.trashed()
        self.assertEqual(set(rows), {self.origin(name) for name in names})
        for origin, (place, noted) in rows.items():
            self.assertEqual(os.path.basename(place), lying[origin])
            if size is not None:
                self.assertEqual(noted, size)

    def hasBackup(self):
        """Whether the screen has told by now that a backup stands behind what is removed: it warns of none."""
        if Removing._backup is None:
            try:
                self.quillbrook.says(NO_BACKUP)
                Removing._backup = False
            except waiting.Late:
                Removing._backup = True
        return Removing._backup

    def open(self):
        """The program with a first scan behind it, and the keyboard in its window."""
        self.quillbrook = self.start()
        self.quillbrook.scanned()
        self.quillbrook.activate()
        return self.quillbrook

    def dialogs(self):
        return self.quillbrook.window().all("dialog")

    def asks(self, title, message, *buttons, also=()):
        """Waits for the question in exactly these words and buttons, with what else stands between them; what leaves
        everything as it is comes first of the buttons, and has the keyboard."""
        self.becomes(self.question, [title, message, *also, *buttons])
        self.becomes(lambda: [thing.name for thing in self.quillbrook.window().all("push button")
                              if thing.has(accessibility.FOCUSED)], [buttons[0]])

    def question(self):
        return [thing.name for dialog in self.dialogs()[:1] for thing in dialog.walk()
                if thing.role in ("label", "push button") and thing.name]

    def press(self, button):
        """Presses a button of the question."""
        self.quillbrook.window().one("dialog").one("push button", button).act()

    def answer(self, button):
        self.press(button)
        self.becomes(self.dialogs, [])

    def escape(self):
        """Lets it be, by the key for that."""
        desktop.keys("Escape")
        self.becomes(self.dialogs, [])

    def activity(self):
        """The lines of the log on the screen of findings."""
        return [name for name in self.quillbrook.words() if name.startswith(("✓ ", "✗ "))]

    def banners(self, *endings):
        """The titles of the banners that end so."""
        return [panel.name for panel in self.quillbrook.window().all("panel") if panel.name.endswith(endings)]

    def pending(self):
        return self.banners("is in the Trash, still taking up space")
