#!/usr/bin/env python3
"""Makes a Linux home folder with what people usually have in one, so that every kind of finding the catalogue
knows on Linux is there at least once, among much that is none.

    fixture_home.py FOLDER [--unit BYTES] [--files N] [--now SECONDS] [--manifest FILE]

FOLDER must not exist yet or be empty. Sizes are told in megabytes below and made with BYTES for each (1024 without
the option, 1048576 for their full size). --files adds small files until there are about N in all, half of them in
places of the catalogue. --now is the moment from which ages are counted, in seconds since 1970. The manifest lists
each finding to expect: its rule, its place relative to FOLDER, and whether it is old enough for its rule."""

import argparse
import json
import os
import pathlib
import sys
import time

DAY = 86400

# Rule, place, megabytes, members (files; a name that ends in "/" is a folder with one file in it).
# A fifth entry is the age of the place in days, for the rules that ask for one; the sixth says whether it is enough.
FINDINGS = [
    ("gradle.daemon", ".gradle/daemon", 38, ["8.5/daemon-2211.out.log", "8.5/registry.bin"]),
    ("caches.devtools", ".cache/pip", 612, ["http-v2/0/1/a.body", "http-v2/4/2/b.body", "wheels/c/numpy.whl"]),
    ("caches.devtools", ".cache/node-gyp", 58, ["20.11.0/include/node/node.h"]),
    ("caches.devtools", ".cache/typescript", 44, ["5.3/node_modules/@types/react/index.d.ts"]),
    ("npm.cacache", ".npm/_cacache", 1834, ["content-v2/sha512/0a/1b/2c", "content-v2/sha512/3d/4e/5f", "index-v5/6a/7b"]),
    ("trash", ".local/share/Trash/files", 743, ["old-backup.tar", "holiday copy.mp4", "scan (2).pdf"]),
    ("gradle.caches", ".gradle/caches", 2950, ["modules-2/files-2.1/androidx/core.aar", "8.5/generated-gradle-jars/api.jar"]),
    ("android.avd", ".android/avd", 9400, ["Pixel_7.avd/", "Nexus_5X.avd/"], 200, True),
    ("ollama.models", ".ollama/models", 4700, ["blobs/sha256-6a0746a1ec1a", "manifests/registry/llama3"], 10, False),
    ("pub.cache", ".pub-cache", 310, ["hosted/pub.dev/http-1.1.0/lib/http.dart"]),
    ("browser.caches", ".cache/google-chrome", 1210, ["Default/Cache/Cache_Data/f_000001", "Default/Code Cache/js/index"]),
    ("browser.caches", ".cache/mozilla/firefox", 905, ["x1y2z3.default-release/cache2/entries/0A1B"]),
    ("browser.caches", "snap/firefox/common/.cache/mozilla/firefox", 402, ["p0.default/cache2/entries/77FF"]),
    ("chat.caches", ".config/Slack/Cache", 388, ["Cache_Data/f_00001a"]),
    ("chat.caches", ".config/discord/Cache", 276, ["Cache_Data/f_00002b"]),
    ("music.offline", ".cache/spotify/Storage", 2100, ["00/a.file", "7f/b.file"]),
    ("docker.data", ".docker/desktop/vms", 11800, ["0/data/Docker.raw"]),
    ("chrome.profile", ".config/google-chrome", 96, ["Default/History", "Default/Login Data"]),
    ("downloads.folder", "Downloads", 5300, ["installer-12.4.deb", "debian-12.iso", "invoice.pdf"]),
    ("photos.library", "Pictures", 21400, ["2019/IMG_0001.jpg", "2023/IMG_2044.jpg", "Screenshots/one.png"]),
    ("mail.data", ".thunderbird", 1490, ["a.default/ImapMail/imap.example.org/INBOX"]),
    ("linux.thumbnails", ".cache/thumbnails", 233, ["large/0a.png", "normal/1b.png", "fail/2c.png"]),
    ("linux.shaders", ".cache/mesa_shader_cache", 417, ["00/aa", "01/bb"]),
    ("linux.desktop", ".cache/gnome-software", 171, ["screenshots/624x351/app.png"]),
    ("browser.more", ".cache/chromium", 355, ["Default/Cache/Cache_Data/f_000009"]),
    ("editor.caches", ".config/Code/CachedExtensionVSIXs", 290, ["ms-python.python-2024.1"]),
    ("editor.caches", ".config/Code/CachedData", 88, ["a1b2c3/chrome/js/x.code"]),
    ("compiler.caches", ".cache/sccache", 1650, ["0/1/2/012ab", "f/e/d/fedcb"]),
    ("packages.downloads", ".cache/yarn", 980, ["v6/npm-react-18.2.0/node_modules/react/index.js"]),
    ("packages.downloads", ".cache/electron", 266, ["a1b2/electron-v28.1.0-linux-x64.zip"]),
    ("debug.symbols", ".cache/debuginfod_client", 521, ["aabbcc/debuginfo"]),
    ("photo.previews", ".cache/shotwell/thumbs", 143, ["thumbs128/thumb0001.jpg", "thumbs360/thumb0001.jpg"]),
    ("apps.webcaches", ".cache/thunderbird", 119, ["a.default/cache2/entries/00"]),
    ("python.packages", ".cache/uv", 2230, ["archive-v0/abc/numpy/core.so"]),
    ("python.envs", ".local/share/virtualenvs", 1320, ["site-Ab3dEf_9/", "tools-Zz0Yy1Xx/"]),
    ("cargo.registry", ".cargo/registry/cache", 640, ["index.crates.io-6f17/serde-1.0.196.crate"]),
    ("cargo.registry", ".cargo/registry/src", 1730, ["index.crates.io-6f17/serde-1.0.196/src/lib.rs"]),
    ("go.caches", "go/pkg/mod", 1870, ["github.com/spf13/cobra@v1.8.0/cobra.go"]),
    ("js.stores", ".local/share/pnpm/store", 1440, ["v3/files/00/aabb"]),
    ("java.packages", ".m2/repository", 1110, ["org/springframework/spring-core/6.1.3/spring-core-6.1.3.jar"]),
    ("language.packages", ".nuget/packages", 870, ["newtonsoft.json/13.0.3/lib/net6.0/Newtonsoft.Json.dll"]),
    ("build.results", ".cache/vcpkg/archives", 2640, ["0a/0abc.zip"]),
    ("editor.indexes", ".cache/JetBrains", 3350, ["IntelliJIdea2024.1/caches/content.dat", "PyCharm2023.3/index/x"]),
    ("test.browsers", ".cache/ms-playwright", 1280, ["chromium-1097/chrome-linux/chrome"]),
    ("ai.huggingface", ".cache/huggingface/hub", 14300, ["models--org--model-7b/blobs/aa", "datasets--org--set/blobs/bb"], 90, True),
    ("ai.models", ".lmstudio/models", 8800, ["org/model/model-q4.gguf"], 20, False),
    ("chrome.aimodel", ".config/google-chrome/OptGuideOnDeviceModel", 4000, ["2024.5.21.1031/weights.bin"]),
    ("steam.extras", ".local/share/Steam/steamapps/shadercache", 3890, ["570/fozpipelinesv6/a.foz", "730/b.foz"]),
    ("games.runners", ".local/share/Steam/compatibilitytools.d", 1480, ["GE-Proton9-1/files/lib/wine.so"]),
    ("aur.builds", ".cache/yay", 760, ["google-chrome/google-chrome-121.pkg.tar.zst"]),
    ("android.sdk", "Android/Sdk/system-images", 5900, ["android-34/google_apis/x86_64/system.img"]),
    ("search.index", ".cache/tracker3", 620, ["files/meta.db"]),
    ("video.proxies", ".cache/kdenlive/proxy", 6100, ["0a1b.mkv"]),
    ("backup.caches", ".cache/borg", 450, ["9f8e/chunks", "9f8e/files"]),
    ("images.downloads", ".vagrant.d/boxes", 1950, ["debian-VAGRANTSLASH-bookworm64/12.2/virtualbox/box.vmdk"], 100, True),
    ("telegram.cache", ".local/share/TelegramDesktop/tdata/user_data/media_cache", 1240, ["0/1A2B"]),
    ("browser.offline", ".config/chromium/Default/Service Worker/CacheStorage", 530, ["0abc/index.txt", "0abc/d1/e_0"]),
    ("ccache.results", ".cache/ccache", 4600, ["0/1/aR", "f/e/bR"]),
    ("browser.offline", ".config/chromium/Profile 1/Service Worker/CacheStorage", 44, ["0def/index.txt"]),
    ("ai.compiled", ".cache/vllm", 340, ["torch_compile_cache/1517/rank_0_0/graph.py"]),
    ("board.tools", ".platformio/packages", 1900, ["toolchain-xtensa/bin/gcc"]),
    ("flatpak.caches", ".var/app/org.videolan.VLC/cache", 61, ["vlc/art/artistalbum/art.png"]),
    ("containers.storage", ".local/share/containers", 7200, ["storage/overlay/aa/diff/usr/lib/x"]),
    ("vm.images", "VirtualBox VMs", 25200, ["Windows 11/Windows 11.vdi"]),
    ("wine.prefixes", ".wine", 1180, ["drive_c/windows/system32/ntdll.dll"]),
    ("games.installed", ".local/share/Steam/steamapps/common", 38900, ["Dota 2/game/pak01.vpk"]),
    ("flatpak.apps", ".local/share/flatpak", 6350, ["repo/objects/aa/bb.file"]),
    ("sandbox.data", ".var/app", 890, ["org.gimp.GIMP/config/GIMP/2.10/gimprc"]),
    ("sandbox.data", "snap", 4, ["code/common/notes"]),
    ("chat.history", ".config/Signal", 2450, ["attachments.noindex/00/aa", "sql/db.sqlite"]),
    ("browser.profiles", ".mozilla/firefox", 720, ["x1y2z3.default-release/places.sqlite"]),
    ("browser.profiles", ".config/chromium", 12, ["Default/Preferences"]),
    ("dev.toolchains", ".rustup/toolchains", 1390, ["stable-x86_64-unknown-linux-gnu/lib/librustc_driver.so"]),
    ("editor.workspaces", ".config/Code/User/workspaceStorage", 370, ["a1b2/state.vscdb"]),
    ("research.library", "Zotero", 3100, ["storage/AB12CD34/paper.pdf", "zotero.sqlite"]),
    ("cloud.folders", "Nextcloud", 9700, ["Shared/plan.odt", "Photos/x.jpg"]),
    ("videos.folder", "Videos", 18600, ["2023-08-holiday.mp4", "screencast.webm"]),
    ("editor.extensions", ".vscode/extensions", 820, ["ms-python.python-2024.1/package.json"]),
    ("tool.keepsakes", ".cache/pre-commit", 240, ["patch1700000000-77", "repoab12/py_env/bin/python"]),
]

# What is large, or looks like a finding, and is none.
OTHERS = [
    ("Documents", 420, ["thesis.odt", "taxes/2023.pdf"]),
    ("Music", 3900, ["album/01.flac"]),
    ("Projects/site", 260, ["node_modules/react/index.js", "src/app.ts"]),
    (".cache/google-chromes", 9, ["Default/Cache/x"]),
    (".cache/thumbnails-old", 7, ["large/0a.png"]),
    (".cargo/bin", 150, ["ripgrep"]),
    (".cache/deno/location_data", 3, ["a/local_storage"]),
    (".config/google-chrome-notes", 1, ["notes.txt"]),
    (".huggingface", 1, ["token"]),
]

# There and empty, or there as a link: nothing to find.
EMPTY = [".local/share/Trash/expunged", ".local/share/Trash/info", ".cache/fontconfig", ".cache/restic"]
LINKS = [(".cache/puppeteer", "../Documents"), (".cache/Cypress", "/nonexistent/cypress"), (".nv/GLCache", "../Music")]

# Where many small files usually are; the first half in places of the catalogue.
CROWDED = [".npm/_cacache/content-v2/sha512", ".cache/mozilla/firefox/x1y2z3.default-release/cache2/entries",
           ".cache/thumbnails/large", "go/pkg/mod/cache/download", ".cargo/registry/src/index.crates.io-6f17",
           "Projects/site/node_modules", "Projects/engine/build", "Documents/archive", "Pictures/2021",
           ".local/share/applications-data"]
FILES_PER_FOLDER = 200


def make_file(path, size):
    path.parent.mkdir(parents=True, exist_ok=True)
    with open(path, "xb") as file:
        if size > 0:
            os.posix_fallocate(file.fileno(), 0, size)


def fill(folder, size, members):
    for member in members:
        path = folder / (member + "content" if member.endswith("/") else member)
        make_file(path, max(size // len(members), 1))


def crowd(home, count):
    """Small files of a few sizes, some without content, spread over folders as programs spread them."""
    for number in range(count):
        place = CROWDED[number % len(CROWDED)]
        index = number // len(CROWDED)
        path = home / place / f"{index // FILES_PER_FOLDER:03x}" / f"file-{index:06d}"
        if index % FILES_PER_FOLDER == 0:
            path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "xb") as file:
            file.write(b"q" * (number * 7919 % 6000))


def count_files(home):
    return sum(len(names) for _, _, names in os.walk(home))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--unit", type=int, default=1024, metavar="BYTES")
    parser.add_argument("--files", type=int, default=0, metavar="N")
    parser.add_argument("--now", type=float, default=None, metavar="SECONDS")
    parser.add_argument("--manifest", type=pathlib.Path)
    options = parser.parse_args()
    home = options.folder
    now = time.time() if options.now is None else options.now

    home.mkdir(parents=True, exist_ok=True)
    if any(home.iterdir()):
        sys.exit(f"{home} is not empty")
    for _, place, megabytes, members, *_ in FINDINGS:
        fill(home / place, megabytes * options.unit, members)
    for place, megabytes, members in OTHERS:
        fill(home / place, megabytes * options.unit, members)
    for place in EMPTY:
        (home / place).mkdir(parents=True, exist_ok=True)
    for place, target in LINKS:
        (home / place).parent.mkdir(parents=True, exist_ok=True)
        os.symlink(target, home / place)
    # A name that is no text, and one that differs from another only in how its accent is written.
    make_file(home / "Downloads" / os.fsdecode(b"caf\xe9.txt"), options.unit)
    make_file(home / "Downloads" / "re\u0301sume\u0301.pdf", options.unit)
    make_file(home / "Downloads" / "r\u00e9sum\u00e9.pdf", options.unit)
    crowd(home, max(options.files - count_files(home), 0))

    manifest = []
    for rule, place, _, _, *age in FINDINGS:
        days, stale = age or (None, True)
        if days is not None:
            os.utime(home / place, (now - days * DAY, now - days * DAY))
        manifest.append({"rule": rule, "path": place, "stale": stale})
    if options.manifest:
        options.manifest.write_text(json.dumps(manifest, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
