"""What holds for the house as a whole: which folder may include what, that documents name what exists, that the
packages list knows every QML module, and that scripts, code and desktop entry keep their form.

Takes nothing but the source tree. Run with --list to see the checks."""

import pathlib
import re
import shutil
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
CODE = {".h", ".cpp"}

# What each folder may include besides itself; the arrows never form a ring. The root's own headers (Fatal.h) are for
# everyone. A room of Linux stands below what it serves and may build on it; nothing but the root of the application,
# where the machine is put together, and rooms of Linux include a room of Linux.
KIT_DIRECTIONS = {
    "Platform": set(),
    "Platform/Linux/Files": {"Platform"},
    "Platform/Linux/Folders": {"Platform", "Platform/Linux/Files"},
    "Platform/Linux/Trash": {"Platform", "Platform/Linux/Files", "Platform/Linux/Folders"},
    "Platform/Linux/Backups": {"Platform", "Platform/Linux/Files"},
    "Platform/Linux/Processes": {"Platform", "Platform/Linux/Files"},
    "Platform/Linux/Drives": {"Platform", "Platform/Linux/Files", "Platform/Linux/Folders"},
    "Platform/Linux/Copying": {
        "Platform", "Platform/Linux/Files", "Platform/Linux/Folders", "Platform/Linux/Drives", "Platform/Linux/Trash"},
    "Platform/Linux": {
        "Platform", "Platform/Linux/Files", "Platform/Linux/Folders", "Platform/Linux/Trash", "Platform/Linux/Drives",
        "Platform/Linux/Copying"},
    "Scan": {"Platform"},
    "Catalogue": {"Platform", "Scan"},
    "Catalogue/Linux": {"Catalogue", "Platform", "Scan", "Platform/Linux/Files", "Platform/Linux/Folders"},
    "Removal": {"Platform", "Scan", "Catalogue"},
    "Removal/Linux": {
        "Removal", "Platform", "Platform/Linux/Files", "Platform/Linux/Folders", "Platform/Linux/Trash"},
    "Uninstaller": {"Platform", "Scan", "Removal"},
    "Uninstaller/Linux": {
        "Uninstaller", "Platform", "Removal", "Platform/Linux/Files", "Platform/Linux/Folders",
        "Platform/Linux/Processes"},
    "Offload": {"Platform", "Scan", "Catalogue"},
    "Advisor": {"Platform", "Scan", "Catalogue"},
    "Automation": {"Platform", "Scan", "Catalogue", "Removal"},
    "Photos": set(),
    "Photos/Linux": {"Photos", "Platform", "Removal", "Platform/Linux/Files", "Platform/Linux/Folders"},
}

# The same of the application, for its own folders; all of them may include the Kit's that are no rooms of Linux, and
# the rooms of Linux its rooms too.
APPLICATION_DIRECTIONS = {
    "Platform": set(),
    "Platform/Linux/Bus": set(),
    "Platform/Linux/Sandbox": {"Platform", "Platform/Linux/Bus"},
    "Platform/Linux/Session": {"Platform", "Platform/Linux/Bus", "Platform/Linux/Sandbox"},
    "Platform/Linux/Notifications": {
        "Platform", "Platform/Linux/Bus", "Platform/Linux/Session", "Platform/Linux/Sandbox"},
    "Platform/Linux/Mounts": {"Platform"},
    "Platform/Linux/Opening": {"Platform", "Platform/Linux/Bus", "Platform/Linux/Sandbox"},
    "Platform/Linux/Tray": {"Platform", "Platform/Linux/Bus", "Platform/Linux/Sandbox"},
    "Platform/Linux/Photos": {"Platform", "Platform/Linux/Session"},
    "Platform/Linux": {
        "Platform", "Platform/Linux/Sandbox", "Platform/Linux/Session", "Platform/Linux/Notifications",
        "Platform/Linux/Opening", "Platform/Linux/Tray", "Platform/Linux/Mounts", "Platform/Linux/Photos"},
    "Core": {"Platform"},
    "Advisor": {"Platform", "Core"},
    "Media": {"Platform"},
    "Screens": {"Platform", "Core", "Advisor"},
    "Screens/Symbols": {"Screens"},
}

# Every other folder of the screens is a screen, which knows none of the others; the window alone holds them.
SCREENS = {f"Screens/{path.name}" for path in (ROOT / "Quillbrook/Screens").iterdir() if path.is_dir()}
SCREENS -= {*APPLICATION_DIRECTIONS, "Screens/Panel", "Screens/Window"}
APPLICATION_DIRECTIONS |= {screen: {"Platform", "Core", "Advisor", "Screens"} for screen in SCREENS | {"Screens/Panel"}}
APPLICATION_DIRECTIONS["Screens/Window"] = {"Platform", "Core", "Advisor", "Screens"} | SCREENS
for screen in ("Screens/Photos", "Screens/Stats"):
    APPLICATION_DIRECTIONS[screen].add("Media")

# Headers that only a folder named Linux may include.
PLATFORM_HEADERS = re.compile(
    r"<(linux/|sys/|mntent\.h|fcntl\.h|unistd\.h|dirent\.h|pwd\.h|sched\.h|signal\.h|poll\.h|dlfcn\.h|"
    r"QDBus|QtDBus)")
PLATFORM_PATHS = re.compile(r"[\"']/(proc|sys)(/|[\"'])")


def tracked(*suffixes):
    """Files of the tree that belong to it; outside a git checkout everything but build folders."""
    listing = subprocess.run(
        ["git", "-c", "safe.directory=*", "-C", str(ROOT), "ls-files", "--cached", "--others", "--exclude-standard"],
        capture_output=True, text=True, timeout=30)
    if listing.returncode == 0:
        names = [ROOT / name for name in listing.stdout.splitlines()]
    else:
        names = [path for path in ROOT.rglob("*") if not path.relative_to(ROOT).parts[0].startswith(("build", ".git"))]
    return sorted(path for path in names if path.is_file() and (not suffixes or path.suffix in suffixes))


def relative(path):
    return path.relative_to(ROOT).as_posix()


def includes(path):
    """(line number, what stands between the quotes or brackets, with them) of every include."""
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        found = re.match(r'\s*#\s*include\s*(["<][^">]+[">])', line)
        if found:
            yield number, found.group(1)


def in_linux(path):
    """Whether a file stands in a folder named Linux, or in one below."""
    return "Linux" in path.relative_to(ROOT).parts[:-1]


def folder_of(path, base):
    """The folder a file of the Kit or of the application stands in, "" for the root's own."""
    return path.parent.relative_to(ROOT / base).as_posix().removeprefix(".")


def folder_included(name):
    """The folder that stands in an include of ours, "" for a root's header, None for one of others."""
    return name.strip('"').rpartition("/")[0] if name.startswith('"') else None


class Directions(unittest.TestCase):
    def sources(self, folder):
        found = [path for path in tracked(*CODE) if relative(path).startswith(folder + "/")]
        self.assertTrue(found, f"no sources under {folder}")
        return found

    def testTheKitIncludesNothingOfTheApplication(self):
        application = {path.relative_to(ROOT / "Quillbrook").as_posix() for path in self.sources("Quillbrook")}
        kit = {path.relative_to(ROOT / "QuillbrookKit").as_posix() for path in self.sources("QuillbrookKit")}
        for path in self.sources("QuillbrookKit"):
            for number, name in includes(path):
                bare = name.strip('"<>')
                with self.subTest(f"{relative(path)}:{number}"):
                    self.assertFalse(bare in application - kit, f"includes {bare} of the application")
                    self.assertNotRegex(bare, r"^(QtGui|QtQuick|QtQml|QtWidgets|QGuiApp|QApplication|QQuick|QQml|QWidget)")

    def testTheArrowsNeverFormARing(self):
        for directions in (KIT_DIRECTIONS, APPLICATION_DIRECTIONS):
            reached = {folder: set(others) for folder, others in directions.items()}
            for _ in directions:
                for others in reached.values():
                    others |= set().union(*(reached.get(other, set()) for other in others))
            for folder, others in reached.items():
                with self.subTest(folder):
                    self.assertNotIn(folder, others)

    def testFoldersOfTheKitIncludeOnlyWhatTheyBuildOn(self):
        for path in self.sources("QuillbrookKit"):
            own = folder_of(path, "QuillbrookKit")
            if not own:
                continue
            with self.subTest(relative(path)):
                self.assertIn(own, KIT_DIRECTIONS, "a folder without a row in the table above")
            for number, name in includes(path):
                other = folder_included(name)
                with self.subTest(f"{relative(path)}:{number}"):
                    if other and other != own:
                        self.assertIn(other, KIT_DIRECTIONS.get(own, ()), f"{own} does not build on {other}")

    def testFoldersOfTheApplicationIncludeOnlyWhatTheyBuildOn(self):
        for path in self.sources("Quillbrook"):
            own = folder_of(path, "Quillbrook")
            if not own:
                continue
            with self.subTest(relative(path)):
                self.assertIn(own, APPLICATION_DIRECTIONS, "a folder without a row in the table above")
            allowed = set(APPLICATION_DIRECTIONS.get(own, ())) | {own}
            allowed |= {folder for folder in KIT_DIRECTIONS if in_linux(path) or "Linux" not in folder}
            for number, name in includes(path):
                other = folder_included(name)
                with self.subTest(f"{relative(path)}:{number}"):
                    if other:
                        self.assertIn(other, allowed, f"{own} does not build on {other}")

    def testOnlyFoldersOfLinuxIncludeSystemHeaders(self):
        for path in self.sources("QuillbrookKit") + self.sources("Quillbrook"):
            if in_linux(path):
                continue
            for number, name in includes(path):
                with self.subTest(f"{relative(path)}:{number}"):
                    self.assertNotRegex(name, PLATFORM_HEADERS)

    def testOnlyFoldersOfLinuxReadTheKernelsFiles(self):
        for path in self.sources("QuillbrookKit") + self.sources("Quillbrook"):
            if in_linux(path):
                continue
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                with self.subTest(f"{relative(path)}:{number}"):
                    self.assertNotRegex(line.split("//")[0], PLATFORM_PATHS)

    def testEverySourceFileIsBuilt(self):
        lists = "\n".join(path.read_text(encoding="utf-8") for path in tracked() if path.name == "CMakeLists.txt")
        for path in tracked(".cpp", ".qml"):
            # The screens' suites are found by their names.
            if re.fullmatch(r"Tests/Quillbrook/Screens/\w+/tst_\w+\.cpp", relative(path)):
                continue
            with self.subTest(relative(path)):
                self.assertRegex(lists, r"(^|[\s/(])" + re.escape(path.name) + r"\b")


class Suites(unittest.TestCase):
    def testSuitesOfAProgramShareNoName(self):
        """A suite is called after its file, and all else that it defines is seen by its file alone."""
        suites = [path for path in tracked(".cpp") if path.name.startswith("tst_")]
        self.assertGreater(len(suites), 100)
        for path in suites:
            with self.subTest(relative(path)):
                text = path.read_text(encoding="utf-8")
                if "QUICK_TEST_MAIN" in text:
                    continue
                suite = "Test" + path.stem.removeprefix("tst_")
                self.assertRegex(text, rf"\nQUILLBROOK_SUITE\(\s*{suite}, \w+")
                text = re.sub(r'^(namespace|extern "C") \{$.*?^\} // (namespace|extern "C")$', "", text, flags=re.S | re.M)
                self.assertEqual(re.findall(r"^(?:class|struct) (\w+)", text, flags=re.M), [suite])
                functions = re.findall(r"^[^\s#/}].*\)(?: const)?\n\{$", text, flags=re.M)
                self.assertEqual(functions, [], "functions that other files see")


class Documents(unittest.TestCase):
    def testEveryPathADocumentNamesExists(self):
        documents = [path for path in tracked(".md")]
        self.assertIn(ROOT / "README.md", documents)
        tops = {path.name for path in ROOT.iterdir()}
        named = 0
        for document in documents:
            text = document.read_text(encoding="utf-8")
            text = re.sub(r"^```.*?^```$", "", text, flags=re.S | re.M)
            for name in re.findall(r"`([^`\s]+)`", text) + re.findall(r"\]\(([^)\s]+)\)", text):
                name = name.split("#")[0].removeprefix("./")
                if not name or re.match(r"https?:|mailto:|[~/$<]", name) or re.search(r"[*{}<>]", name):
                    continue
                linked = (document.parent / name).exists()
                if name.split("/")[0] not in tops and not linked:
                    # A word in code type, not a path; unless it has the form of one.
                    if not re.search(r"/.+\.(h|cpp|qml|md|py|png|svg|txt)$", name):
                        continue
                if name.split("/")[0] == "build":
                    continue
                named += 1
                with self.subTest(f"{relative(document)}: {name}"):
                    self.assertTrue(linked or (ROOT / name).exists())
        self.assertGreater(named, 10, "the documents name no paths any more")


# Literals with a word for people in them: a capital and small letters, or words with blanks between.
SPOKEN = re.compile(r"^[^\w]*([A-Z][a-z]+|[A-Z]{4,}|.*[A-Za-z]{2}.*[ …].*|.*[ …].*[A-Za-z]{2}.*)[^\w]*$")

# Where a literal of that form is not read by a person in their own language: lines that are logged, and what goes
# with them, stay English, and the tables are translated where they are shown.
ENGLISH = {
    "QuillbrookKit/Automation/AutomationPreset.cpp": "a table, translated where it is shown",
    "QuillbrookKit/Catalogue/": "tables, translated where they are shown",
    "QuillbrookKit/Removal/": "sentences of the log, and tables",
    "QuillbrookKit/Uninstaller/": "sentences of the log, and tables, translated where they are shown",
    "QuillbrookKit/Advisor/": "what a language model is sent",
    "QuillbrookKit/Platform/Linux/Trash/": "errors, which end in the log",
    "Quillbrook/Core/AutomationDriver.cpp": "sentences of the log",
    "QuillbrookKit/Offload/": "errors, which end in the log, and a table",
    "QuillbrookKit/Platform/Linux/Copying/": "errors, which end in the log",
    "QuillbrookKit/Platform/Linux/Trash/": "errors, which end in the log",
    "Quillbrook/Core/OffloadDriver.cpp": "sentences of the log",
    "Quillbrook/Core/PathRemovals.cpp": "sentences of the log",
    "Quillbrook/Core/ReclaimDriver.cpp": "sentences of the log",
    "Quillbrook/Core/UninstallDriver.cpp": "sentences of the log",
    "Quillbrook/Platform/Linux/Bus/": "errors told to programs",
    "Quillbrook/Platform/Linux/Tray/TrayMenu.cpp": "an error told to programs, and texts that TrayTexts words",
}
# Words of protocols, of other programs and of styles, and names.
NOT_SPOKEN = {
    "Quillbrook", "Esc", "GNOME", "PATH", "HOME", "SNAP", "$HOME", "${HOME}", "APPIMAGE", "APPDIR", "Exec=",
    " --background", "MMMM yyyy", "888.8 GB", "Basic", "Activate", "Notify", "Lookup", "Response", "Close", "Get",
    "Active", "Block", "Drive", "Removable", "Ollama"}


class Words(unittest.TestCase):
    def bare(self, path, literal):
        if path.suffix == ".qml":
            literal = re.compile(r'(?<!qsTr\()(?<!QT_TR_NOOP\()"((?:[^"\\\n]|\\.)*)"')
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if re.match(r"\s*(//|import|#include|pragma)", line):
                continue
            for text in literal.findall(line.split(" // ")[0]):
                text = "".join(text)
                if SPOKEN.match(text) and text not in NOT_SPOKEN and not text.startswith("/"):
                    yield number, text

    def testEveryTextAPersonReadsIsTranslated(self):
        literal = re.compile(r'(?:u"((?:[^"\\\n]|\\.)*)"_s|QStringLiteral\("((?:[^"\\\n]|\\.)*)"\))')
        for path in tracked(".cpp", ".h", ".qml"):
            name = relative(path)
            if not name.startswith(("Quillbrook/", "QuillbrookKit/")) or name.startswith(tuple(ENGLISH)):
                continue
            for number, text in self.bare(path, literal):
                with self.subTest(f"{name}:{number}: {text}"):
                    self.fail("a text without tr or qsTr")

    def testWhatStaysEnglishIsStillThere(self):
        names = [relative(path) for path in tracked()]
        for start in ENGLISH:
            with self.subTest(start):
                self.assertTrue(any(name.startswith(start) for name in names))


class Packages(unittest.TestCase):
    def lines(self):
        section = None
        for line in (ROOT / "Packaging/packages.txt").read_text(encoding="utf-8").splitlines():
            if line.startswith("["):
                section = line.strip("[]")
            elif line.strip() and not line.startswith("#"):
                yield section, line

    def testEveryPackageHasItsReason(self):
        for section, line in self.lines():
            with self.subTest(line):
                self.assertIsNotNone(section)
                self.assertRegex(line, r"^[a-z0-9][a-z0-9.+-]+ +# .+$")

    def testEveryImportedQmlModuleIsListed(self):
        listed = {line.split()[0] for _, line in self.lines()}
        imported = {}
        for path in tracked(".qml"):
            for module in re.findall(r"^\s*import\s+([A-Z][\w.]*)", path.read_text(encoding="utf-8"), flags=re.M):
                imported.setdefault(module, path)
        imported.pop("Quillbrook", None)
        self.assertIn("QtQuick", imported)
        for module, path in imported.items():
            # A style is part of the controls' package.
            package = re.sub(r"^(QtQuick\.Controls)\..*", r"\1", module)
            package = "qml6-module-" + package.lower().replace(".", "-")
            with self.subTest(f"{module}, as in {relative(path)}"):
                self.assertIn(package, listed)


class Form(unittest.TestCase):
    def tool(self, name):
        found = shutil.which(name)
        self.assertIsNotNone(found, f"{name} is missing; it stands in Packaging/packages.txt")
        return found

    def check(self, command):
        result = subprocess.run(command, capture_output=True, text=True, cwd=ROOT, timeout=120)
        self.assertEqual(result.returncode, 0, (result.stdout + result.stderr)[:8000])

    def testCodeIsFormatted(self):
        files = [str(path) for path in tracked(*CODE)]
        self.check([self.tool("clang-format"), "--dry-run", "-Werror", *files])

    def testScriptsPassShellcheck(self):
        scripts = [path for path in tracked()
                   if path.suffix == ".sh" or path.suffix == "" and path.read_bytes().startswith(b"#!/usr/bin/env bash")]
        self.assertIn(ROOT / "run", scripts)
        self.check([self.tool("shellcheck"), "-x", *map(str, scripts)])

    def testTheDesktopEntryIsValid(self):
        entry = ROOT / "Packaging/com.tarnwick.Quillbrook.desktop"
        self.check([self.tool("desktop-file-validate"), "--warn-kde", str(entry)])

    def testFilesEndWithOneLineFeedAndHoldNoTrailingBlanks(self):
        for path in tracked(".h", ".cpp", ".qml", ".md", ".py", ".sh", ".txt", ".cmake", ".svg", ".xml", ".yml",
                            ".in", ".desktop"):
            with self.subTest(relative(path)):
                text = path.read_text(encoding="utf-8")
                self.assertTrue(text.endswith("\n") and not text.endswith("\n\n"))
                self.assertNotRegex(text, r"[ \t]+\n")


if __name__ == "__main__":
    if "--list" in sys.argv:
        for suite in (Directions, Suites, Documents, Words, Packages, Form):
            print(*unittest.defaultTestLoader.getTestCaseNames(suite), sep="\n")
    else:
        unittest.main()
