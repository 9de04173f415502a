"""What an installation of a build holds, what its Debian package holds and asks for, and what its Flatpak manifest
says, as the tools of each see it.

    tst_packaging.py --build FOLDER [--cmake PROGRAM] [--cpack PROGRAM] [TEST...]

Takes a build in which the program is there already. Beside a temporary folder it writes nothing but the manifest that
an installation leaves in the build folder."""

import argparse
import fnmatch
import os
import pathlib
import re
import shlex
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

import yaml

ROOT = pathlib.Path(__file__).resolve().parents[2]
APPLICATION = "com.tarnwick.Quillbrook"
SIZES = (16, 24, 32, 48, 64, 128, 256, 512)
DOCUMENTS = "share/doc/quillbrook"

FILES = {
    "bin/quillbrook",
    f"share/applications/{APPLICATION}.desktop",
    f"share/dbus-1/services/{APPLICATION}.service",
    f"share/icons/hicolor/scalable/apps/{APPLICATION}.svg",
    *(f"share/icons/hicolor/{size}x{size}/apps/{APPLICATION}.png" for size in SIZES),
    f"share/metainfo/{APPLICATION}.metainfo.xml",
    f"{DOCUMENTS}/CHANGELOG.md",
    f"{DOCUMENTS}/README.md",
    f"{DOCUMENTS}/copyright",
    *(f"{DOCUMENTS}/{page.relative_to(ROOT)}" for page in (ROOT / "Docs").rglob("*") if page.is_file()),
}
DEBIAN_FILES = FILES - {f"{DOCUMENTS}/CHANGELOG.md"} | {
    f"{DOCUMENTS}/changelog.gz",
    f"{DOCUMENTS}/changelog.Debian.gz",
    "share/lintian/overrides/quillbrook",
}

options = argparse.Namespace()


def scratch():
    """A temporary folder that goes with the caller, and an environment in which no tool looks at this user's home."""
    folder = tempfile.TemporaryDirectory(prefix="quillbrook-packaging-")
    home = pathlib.Path(folder.name) / "home"
    home.mkdir()
    return folder, pathlib.Path(folder.name), {
        "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": str(home), "TMPDIR": folder.name, "LC_ALL": "C.UTF-8"}


def run(command, environment, **more):
    return subprocess.run([str(word) for word in command], env=environment, capture_output=True, text=True,
                          errors="replace", timeout=100, stdin=subprocess.DEVNULL, **more)


def must(command, environment, **more):
    result = run(command, environment, **more)
    if result.returncode != 0:
        raise AssertionError(f"{shlex.join(map(str, command))}: {result.returncode}\n"
                             + (result.stdout + result.stderr)[-4000:])
    return result.stdout


def install(prefix, environment):
    must([options.cmake, "--install", options.build, "--prefix", prefix], environment)


def files_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir()}


def keys(path, group):
    """The keys of a group of a desktop entry, or of a file of that form."""
    found, inside = {}, False
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            inside = line == f"[{group}]"
        elif inside and "=" in line:
            key, _, value = line.partition("=")
            found[key] = value
    return found


def project_version():
    return re.search(r"project\(Quillbrook VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]


def listed(section):
    """The packages of a section of the packages list."""
    lines = (ROOT / "Packaging/packages.txt").read_text(encoding="utf-8").split(f"[{section}]\n")[1].split("\n[")[0]
    return [line.split()[0] for line in lines.splitlines() if line.strip()]


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder, cls.scratch, cls.environment = scratch()
        cls.addClassCleanup(folder.cleanup)
        cls.prefix = cls.scratch / "a prefix that isn't /usr"
        install(cls.prefix, cls.environment)

    def path(self, name):
        return self.prefix / "share" / name.format(APPLICATION)

    def testExactlyTheseFilesAreInstalled(self):
        self.assertEqual(files_below(self.prefix), FILES)

    def testTheProgramIsOneAndLooksForLibrariesInNoFolderOfTheBuild(self):
        program = self.prefix / "bin/quillbrook"
        self.assertTrue(program.stat().st_mode & stat.S_IXOTH)
        self.assertNotRegex(must(["readelf", "-d", program], self.environment), r"RPATH|RUNPATH")
        self.assertNotIn("not found", must(["ldd", program], self.environment))

    def testTheDesktopEntryIsValid(self):
        must(["desktop-file-validate", "--warn-kde", self.path("applications/{}.desktop")], self.environment)

    def testTheDesktopEntryNamesWhatIsInstalled(self):
        entry = keys(self.path("applications/{}.desktop"), "Desktop Entry")
        self.assertEqual(entry["Exec"], "quillbrook")
        self.assertEqual(entry["Icon"], APPLICATION)
        self.assertEqual(entry["StartupWMClass"], APPLICATION)

    def testWhatTheBusStartsIsTheInstalledProgram(self):
        service = keys(self.path("dbus-1/services/{}.service"), "D-BUS Service")
        self.assertEqual(service["Name"], APPLICATION)
        self.assertEqual(shlex.split(service["Exec"]), [str(self.prefix / "bin/quillbrook")])

    def testADesktopThatStartsByTheBusFindsTheService(self):
        entry = keys(self.path("applications/{}.desktop"), "Desktop Entry")
        self.assertEqual(entry["DBusActivatable"], "true")
        self.assertEqual(keys(self.path("dbus-1/services/{}.service"), "D-BUS Service")["Name"], APPLICATION)

    def testAnInstallationBelowAnotherRootNamesThePathItWillHave(self):
        root = self.scratch / "root"
        install("/opt/quillbrook", {**self.environment, "DESTDIR": str(root)})
        self.assertEqual(files_below(root), {f"opt/quillbrook/{name}" for name in FILES})
        service = root / f"opt/quillbrook/share/dbus-1/services/{APPLICATION}.service"
        self.assertEqual(keys(service, "D-BUS Service")["Exec"], "/opt/quillbrook/bin/quillbrook")

    def testTheApplicationsDataIsValid(self):
        must(["appstreamcli", "validate", "--no-net", "--no-color", self.path("metainfo/{}.metainfo.xml")],
             self.environment)

    def testTheApplicationsDataAgreesWithTheRest(self):
        data = xml.etree.ElementTree.parse(self.path("metainfo/{}.metainfo.xml"))
        entry = keys(self.path("applications/{}.desktop"), "Desktop Entry")
        self.assertEqual(data.findtext("id"), APPLICATION)
        self.assertEqual(data.findtext("name"), entry["Name"])
        self.assertEqual(data.findtext("summary"), entry["Comment"])
        self.assertEqual(data.findtext("launchable"), f"{APPLICATION}.desktop")
        self.assertEqual([each.text for each in data.findall("categories/category")],
                         entry["Categories"].strip(";").split(";"))
        self.assertEqual([each.text for each in data.findall("keywords/keyword")],
                         entry["Keywords"].strip(";").split(";"))
        self.assertEqual(data.find("releases/release").get("version"), project_version())

    def testTheWidthItAsksForIsTheNarrowestOfTheWindow(self):
        data = xml.etree.ElementTree.parse(self.path("metainfo/{}.metainfo.xml"))
        metrics = (ROOT / "Quillbrook/Screens/Metrics.qml").read_text(encoding="utf-8")
        self.assertEqual(data.findtext("requires/display_length"),
                         re.search(r"windowMinimumWidth: (\d+)", metrics)[1])

    def testIconsArePicturesOfTheirSizes(self):
        for size in SIZES:
            with self.subTest(size):
                head = self.path(f"icons/hicolor/{size}x{size}/apps/{{}}.png").read_bytes()[:24]
                self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
                self.assertEqual(struct.unpack(">II", head[16:24]), (size, size))
        drawing = xml.etree.ElementTree.parse(self.path("icons/hicolor/scalable/apps/{}.svg")).getroot()
        self.assertEqual(drawing.tag, "{http://www.w3.org/2000/svg}svg")


class DebianPackage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder, cls.scratch, cls.environment = scratch()
        cls.addClassCleanup(folder.cleanup)
        # Packed by someone whose new files are nobody else's.
        must([options.cpack, "--config", options.build / "CPackConfig.cmake", "-B",
              cls.scratch / "package"], cls.environment, cwd=cls.scratch, umask=0o077)
        packages = list((cls.scratch / "package").glob("*.deb"))
        assert len(packages) == 1, packages
        cls.package = packages[0]
        cls.unpacked = cls.scratch / "unpacked"
        must(["dpkg-deb", "--extract", cls.package, cls.unpacked], cls.environment)

    def field(self, name):
        return must(["dpkg-deb", "--field", self.package, name], self.environment).strip()

    def testItsNameTellsPackageVersionAndMachine(self):
        machine = must(["dpkg", "--print-architecture"], self.environment).strip()
        self.assertEqual(self.package.name, f"quillbrook_{project_version()}-1_{machine}.deb")
        self.assertEqual(self.field("Package"), "quillbrook")
        self.assertEqual(self.field("Version"), f"{project_version()}-1")
        self.assertEqual(self.field("Architecture"), machine)

    def testItsFieldsTellWhatItIs(self):
        self.assertEqual(self.field("Section"), "utils")
        self.assertEqual(self.field("Priority"), "optional")
        self.assertRegex(self.field("Maintainer"), r"^.+ <.+@.+>$")
        self.assertRegex(self.field("Homepage"), r"^https://")
        self.assertGreater(int(self.field("Installed-Size")), 1000)
        summary, *text = self.field("Description").splitlines()
        self.assertLess(len(summary), 80)
        self.assertGreater(len(text), 3)
        for line in text:
            self.assertLessEqual(len(line), 80)

    def testItDependsOnTheLinkedLibrariesAndOnTheList(self):
        depends = {each.split()[0] for each in self.field("Depends").split(", ")}
        self.assertLessEqual(set(listed("run")), depends)
        self.assertLessEqual({"libc6", "libqt6core6", "libqt6quick6", "libqcoro6core0", "libplist3"}, depends)
        self.assertFalse(any(each.endswith("-dev") for each in depends))

    def testItRecommendsWhatItCanDoWithout(self):
        self.assertEqual(self.field("Recommends").split(", "), listed("recommended"))

    def testItHoldsTheInstalledFilesAndThoseOfAPackage(self):
        self.assertEqual(files_below(self.unpacked / "usr"), DEBIAN_FILES)
        self.assertEqual([path.name for path in self.unpacked.iterdir()], ["usr"])

    def testEverythingIsRootsAndReadByEveryone(self):
        lines = must(["dpkg-deb", "--contents", self.package], self.environment).splitlines()
        self.assertGreater(len(lines), len(DEBIAN_FILES))
        for line in lines:
            mode, owner, *_, name = line.split()
            with self.subTest(name):
                self.assertEqual(owner, "root/root")
                wanted = "-rw-r--r--"
                if name.endswith("/"):
                    wanted = "drwxr-xr-x"
                elif name.endswith("/bin/quillbrook"):
                    wanted = "-rwxr-xr-x"
                self.assertEqual(mode, wanted)

    def testItRunsNoScriptOfItsOwn(self):
        folder = self.scratch / "control"
        must(["dpkg-deb", "--control", self.package, folder], self.environment)
        self.assertEqual(files_below(folder), {"control", "md5sums"})

    def testWhatTheBusStartsIsThePackagesProgram(self):
        service = self.unpacked / f"usr/share/dbus-1/services/{APPLICATION}.service"
        self.assertEqual(keys(service, "D-BUS Service")["Exec"], "/usr/bin/quillbrook")

    def testTheProgramIsStripped(self):
        sections = must(["readelf", "-SW", self.unpacked / "usr/bin/quillbrook"], self.environment)
        self.assertIn(".text", sections)
        self.assertNotIn(".symtab", sections)

    def testItsChangeLogBeginsWithItsVersion(self):
        log = self.unpacked / "usr" / DOCUMENTS / "changelog.Debian.gz"
        text = must(["gzip", "-dc", log], self.environment)
        self.assertTrue(text.startswith(f"quillbrook ({self.field('Version')}) "), text[:80])
        must(["dpkg-parsechangelog", "-l", ROOT / "Packaging/debian/changelog"], self.environment)

    def testLintianFindsNothing(self):
        as_root = ["--allow-root"] if os.geteuid() == 0 else []
        result = run(["lintian", "--no-cfg", *as_root, "--fail-on", "error,warning", self.package], self.environment)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)


class Flatpak(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder, cls.scratch, cls.environment = scratch()
        cls.addClassCleanup(folder.cleanup)
        cls.manifest = ROOT / f"Packaging/flatpak/{APPLICATION}.yml"
        cls.told = yaml.safe_load(cls.manifest.read_text(encoding="utf-8"))

    def module(self, name):
        return next(each for each in self.told["modules"] if each["name"] == name)

    def testTheBuilderKnowsEveryField(self):
        result = run(["flatpak-builder", "--show-manifest", self.manifest], self.environment, cwd=self.scratch)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertNotIn("WARNING", result.stderr)
        self.assertIn('"finish-args"', result.stdout)

    def testItIsThisApplication(self):
        self.assertEqual(self.told["id"], APPLICATION)
        self.assertEqual(self.told["command"], "quillbrook")
        self.assertEqual((self.told["runtime"], self.told["sdk"]), ("org.kde.Platform", "org.kde.Sdk"))
        self.assertGreaterEqual(tuple(map(int, self.told["runtime-version"].split("."))), (6, 4))
        self.assertEqual(self.told["modules"][-1]["name"], "quillbrook")

    def testWhatIsFetchedHasItsReleaseAndWhatIsOursComesFromHere(self):
        for module in self.told["modules"]:
            for source in module["sources"]:
                with self.subTest(module["name"]):
                    if module["name"] == "quillbrook":
                        self.assertEqual((self.manifest.parent / source["path"]).resolve(), ROOT)
                    else:
                        self.assertRegex(source["url"], r"^https://.+\.git$")
                        self.assertRegex(source["tag"], r"^v?\d+\.\d+")

    def testTheBuildsOptionsAreOnesOfOurs(self):
        declared = "".join(path.read_text(encoding="utf-8")
                           for path in [ROOT / "CMakeLists.txt", *(ROOT / "cmake").glob("*.cmake")])
        given = [each for each in self.module("quillbrook")["config-opts"] if each.startswith("-DQUILLBROOK_")]
        self.assertTrue(given)
        for option in given:
            with self.subTest(option):
                self.assertIn(f"option({option[2:].split('=')[0]} ", declared)

    def testFlatpakTakesTheInstalledFilesWithThesePermissions(self):
        # What the builder does last, by hand: it needs no runtime, and refuses an argument that it does not know.
        folder = self.scratch / "application"
        install(folder / "files", self.environment)
        (folder / "var").mkdir()
        machine = must(["flatpak", "--default-arch"], self.environment).strip()
        version = f"{machine}/{self.told['runtime-version']}"
        (folder / "metadata").write_text(f"[Application]\nname={APPLICATION}\n"
                                         f"runtime={self.told['runtime']}/{version}\nsdk={self.told['sdk']}/{version}\n")
        must(["flatpak", "build-finish", folder, f"--command={self.told['command']}", *self.told["finish-args"]],
             self.environment)

        exported = {name.removeprefix("share/") for name in files_below(folder / "export/share")}
        wanted = ("share/applications/", "share/dbus-1/", "share/icons/", "share/metainfo/")
        self.assertEqual(exported, {name.removeprefix("share/") for name in FILES if name.startswith(wanted)})
        context = keys(folder / "metadata", "Context")
        # Flatpak itself writes x11 beside its fallback.
        self.assertEqual(set(context["sockets"].strip(";").split(";")) - {"x11"}, {"wayland", "fallback-x11"})
        self.assertEqual(set(context["shared"].strip(";").split(";")), {"network", "ipc"})
        self.assertEqual(context["devices"], "dri;")
        self.assertEqual(context["filesystems"], "home;")
        self.assertEqual(keys(folder / "metadata", "Session Bus Policy"), {"org.kde.StatusNotifierWatcher": "talk"})

    def testNothingOfOursIsCleanedAway(self):
        for pattern in self.told["cleanup"]:
            with self.subTest(pattern):
                taken = [name for name in FILES if fnmatch.fnmatchcase("/" + name, pattern)
                         or ("/" + name).startswith(pattern + "/")]
                self.assertEqual(taken, [])


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True, type=lambda name: pathlib.Path(name).resolve())
    parser.add_argument("--cmake", default=shutil.which("cmake"))
    parser.add_argument("--cpack", default=shutil.which("cpack"))
    options, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
