"""Applications of every kind that a made-up machine can have: a real Flatpak of the made-up user, an AppImage, an
entry of the user's own, one that the package manager owns, and one that runs."""

import os
import pathlib
import shutil
import subprocess

import processes

KB = 1024


class Apps:
    """On `home`, with the system's own folders beside it. `environment` is what a program gets besides."""

    def __init__(self, home):
        self.home = home
        self.system = home.folder / "system"
        self.data = home.folder / "data"
        self.admin = home.folder / "dpkg"
        (self.system / "applications").mkdir(parents=True)
        self.environment = {"XDG_DATA_DIRS": str(self.system), "FLATPAK_SYSTEM_DIR": str(home.folder / "flatpak"),
                            "DPKG_ADMINDIR": str(self.admin)}

    def entry(self, name, *lines, folder=None):
        path = (folder or self.data) / "applications" / f"{name}.desktop"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(["[Desktop Entry]", "Type=Application", *lines, ""]), encoding="utf-8")
        return path

    def program(self, name, size=64 * KB):
        """A file that can be run, below the home folder."""
        path = self.home.file(name, size)
        path.chmod(0o755)
        return path

    def packaged(self, name, shown, size):
        """An entry that a package owns, of so many kilobytes, in a database of packages of our own."""
        path = self.entry(name, f"Name={shown}", "Exec=true", folder=self.system)
        (self.admin / "info").mkdir(parents=True)
        (self.admin / "info" / f"{name}.list").write_text(f"/.\n{path}\n", encoding="utf-8")
        (self.admin / "status").write_text(
            f"Package: {name}\nStatus: install ok installed\nMaintainer: Nobody <nobody@example.test>\n"
            f"Architecture: all\nVersion: 3.2-1\nInstalled-Size: {size}\nDescription: made up\n", encoding="utf-8")

    def runner(self, name):
        """A program in the home folder that runs until its end is asked for."""
        path = self.home.path / name
        path.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(shutil.which("sleep"), path)
        path.chmod(0o755)
        return path, processes.start([path, "600"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def flatpak(self, identifier, shown, size=300 * KB):
        """Makes an application, a repository with nothing else in it, and installs it for the made-up user."""
        build = self.home.folder / "build"
        arch = self._flatpak("--default-arch").strip()
        for name, text in {
                "metadata": f"[Application]\nname={identifier}\nruntime=org.made.Base/{arch}/1\ncommand=x\n",
                f"files/share/metainfo/{identifier}.metainfo.xml":
                    f'<component><id>{identifier}</id><releases><release version="1.4"/></releases></component>',
                f"export/share/applications/{identifier}.desktop":
                    f"[Desktop Entry]\nType=Application\nName={shown}\nExec=x\n"}.items():
            path = build / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        (build / "files" / "program").write_bytes(os.urandom(size))
        repository = self.home.folder / "repository"
        self._flatpak("build-export", "--disable-sandbox", repository, build)
        self._flatpak("--user", "remote-add", "--no-gpg-verify", "made", repository)
        self._flatpak("--user", "install", "--no-deps", "--noninteractive", "made", identifier)
        return self.data / "flatpak" / "app" / identifier

    def flatpaks(self):
        """The ids that Flatpak itself says are installed."""
        return self._flatpak("--user", "list", "--app", "--columns=application").split()

    def _flatpak(self, *arguments):
        # Without the library that makes up the account: Flatpak goes by its own variables.
        environment = self.home.environment() | self.environment
        environment.pop("LD_PRELOAD")
        # Before it installs, it asks there whether this user may; nobody answers, and so everybody may.
        environment["DBUS_SYSTEM_BUS_ADDRESS"] = environment["DBUS_SESSION_BUS_ADDRESS"]
        done = subprocess.run(["flatpak", *map(str, arguments)], env=environment, capture_output=True, text=True,
                              timeout=60, check=False)
        assert done.returncode == 0, done.stdout + done.stderr
        return done.stdout


def aged(path, days):
    """Everything at and below `path` was last changed so long ago."""
    moment = pathlib.Path(path).stat().st_mtime - days * 86_400
    for folder, folders, files in os.walk(path, topdown=False):
        for name in files + folders:
            os.utime(os.path.join(folder, name), (moment, moment), follow_symlinks=False)
    os.utime(path, (moment, moment))
