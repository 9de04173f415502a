"""The home that most scenarios use: a few things of known size in the folders a first scan enters, and everything
else a home can hold that is counted differently."""

import os

# Larger ones first, far enough apart that no file system's rounding changes the order.
BIGGEST = {
    "development/renderer/build/scene.glb": 6_000_000,
    ".cache/pip/wheel.whl": 3_000_000,
    ".local/share/notes/data.db": 1_500_000,
    "go/pkg/module.zip": 700_000,
    "report.pdf": 300_000,
    "development/renderer/src/main.cpp": 40_000,
}


def fill(home):
    for name, size in BIGGEST.items():
        home.file(name, size)
    # Counted once, however many names it has.
    home.link("go/pkg/module.zip", "go/pkg/module-again.zip")
    # Long, and nearly nothing on the disk.
    home.sparse("development/renderer/sparse.img", 100_000_000)
    # Never followed.
    os.symlink("..", home.path / "development" / "renderer" / "up")
    # A first scan names it and does not enter it.
    home.file("Documents/private.txt", 500_000)


# The folders at the top of the home that a first scan enters, and the file beside them.
MEASURED = (".cache", ".local", "development", "go", "report.pdf")
# Files, links and what else is no folder, below MEASURED.
FILE_COUNT = len(BIGGEST) + 3
