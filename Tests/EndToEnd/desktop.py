"""A desktop of its own in memory: a display, a session bus on which nothing starts by itself, the accessibility bus
and a window manager. Everything it starts ends with it."""

import ctypes
import os
import select
import shutil
import subprocess

import processes
import screenshot
import waiting

_BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  {services}
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Desktop:
    """Made once a process: after `start`, this process's environment names it, for the program as for D-Bus."""

    # Which services the bus starts by itself, in the words of its configuration.
    services = ""

    def __init__(self, folder, size=(1280, 900), window_manager=True):
        self.folder = folder
        self.size = size
        self._window_manager = window_manager
        self._parts = []

    def start(self):
        # A short name, as sockets with long names of their own are made in there.
        runtime = self._made("run")
        os.chmod(runtime, 0o700)
        # Nothing of the desktop this may run on leaks in.
        for name in ("WAYLAND_DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "SESSION_MANAGER",
                     "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE",
                     "QT_SCALE_FACTOR", "GTK_MODULES"):
            os.environ.pop(name, None)
        os.environ["XDG_RUNTIME_DIR"] = runtime
        self._start_display()
        self._start_bus()
        self._part("accessibility", ["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        if self._window_manager:
            self._start_window_manager()
        return self

    def stop(self):
        for part in reversed(self._parts):
            processes.end(part, 5)
        self._parts.clear()

    def picture(self):
        return screenshot.read_screen(os.path.join(self.folder, "screen", "Xvfb_screen0"))

    def _made(self, name):
        path = os.path.join(self.folder, name)
        os.makedirs(path, exist_ok=True)
        return path

    def _part(self, name, command, **options):
        log = open(os.path.join(self._made("logs"), name + ".log"), "wb")
        with log:
            part = processes.start(command, stdout=options.pop("stdout", log), stderr=log, **options)
        self._parts.append(part)
        return part

    def _start_display(self):
        # The server itself looks for a free number, and writes it once it takes connections.
        reading, writing = os.pipe()
        width, height = self.size
        server = self._part(
            "display",
            ["Xvfb", "-displayfd", writing, "-screen", "0", f"{width}x{height}x24", "-fbdir", self._made("screen"),
             "-nolisten", "tcp", "-noreset"],
            pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading, "rb") as answer:
            ready, _, _ = select.select([answer], [], [], 30)
            number = answer.readline().strip().decode() if ready else ""
        if not number:
            raise waiting.Late(f"no display within 30 s (it ended with {server.poll()}); see {self.folder}/logs")
        os.environ["DISPLAY"] = ":" + number

    def _start_bus(self):
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self._bus("bus", self.services)

    def _bus(self, name, services=""):
        """The address of a bus that this has started."""
        configuration, socket = os.path.join(self.folder, name + ".conf"), os.path.join(self.folder, name)
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(_BUS_CONFIGURATION.format(socket=socket, services=services))
        self._part(name, ["dbus-daemon", "--nofork", "--nopidfile", f"--config-file={configuration}"])
        waiting.until(name, lambda: os.path.exists(socket))
        return f"unix:path={socket}"

    def _start_window_manager(self):
        # A window that asks to be shown while it starts stays hidden; this file tells that it has.
        ready = os.path.join(self.folder, "window-manager-ready")
        self._part("openbox", ["openbox", "--sm-disable", "--startup", f"touch {ready}"])
        waiting.until("window manager", lambda: os.path.exists(ready))


def keys(*combination):
    """Presses keys on the display, as "ctrl+2" or "Return"."""
    _xdotool("key", "--clearmodifiers", "--delay", "30", *combination)


def type_text(text):
    _xdotool("type", "--clearmodifiers", "--delay", "30", "--", text)


def click(x, y, times=1):
    _xdotool("mousemove", "--sync", str(x), str(y))
    _xdotool("click", "--repeat", str(times), "--delay", "30", "1")


def point(x, y):
    _xdotool("mousemove", str(x), str(y))


def windows_of(pid):
    """Ids of the visible windows of that process that have a title."""
    return _search("--pid", str(pid), "--name", ".")


def all_windows_of(pid):
    """The same with those that have none, such as an icon in a tray."""
    return _search("--pid", str(pid))


def windows_of_class(name):
    """Ids of the visible windows of programs of that name."""
    return _search("--class", f"^{name}$")


def all_windows():
    """Ids of the visible windows."""
    return _search("--name", "")


def _search(*conditions):
    answer = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", *conditions], capture_output=True, text=True,
                            timeout=20, check=False)
    return answer.stdout.split()


def window_geometry(window):
    """(x, y, width, height) on the display."""
    answer = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window],
                            capture_output=True, text=True, timeout=20, check=True)
    values = dict(line.split("=", 1) for line in answer.stdout.splitlines())
    return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))


def width_of(window):
    """0 when it has gone meanwhile."""
    try:
        return window_geometry(window)[2]
    except subprocess.CalledProcessError:
        return 0


def activate(window_of):
    """Gives the window that this names the keyboard, and waits until keys go there. A window manager names a window as
    the active one before the display does, and drops a request for one that it still places, or that has just made way
    for another: so the request is made again until it is followed."""
    def follows():
        window = window_of()
        try:
            _xdotool("windowactivate", window)
            return waiting.until("keys go to the window", lambda: focused() == window, 2)
        except (subprocess.SubprocessError, waiting.Late):
            return None
    waiting.until("a window that keys go to", follows, 40)


def focused():
    """The window's id; the numbers below 2 stand for none."""
    answer = subprocess.run(["xdotool", "getwindowfocus"], capture_output=True, text=True, timeout=20, check=False)
    return answer.stdout.strip()


def focus(window):
    """Gives it the keyboard where no window manager does."""
    _xdotool("windowfocus", window)


def minimise(window):
    _xdotool("windowminimize", "--sync", window)


class _ClientMessage(ctypes.Structure):
    """XClientMessageEvent, as long as an XEvent."""
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("rest", ctypes.c_long * 12)]


def close_window(window):
    """As a task list does: the window manager is told to, and asks the window to close. Not by keys: those go
    nowhere while the window manager has its hands full."""
    client_message, substructure_notify, substructure_redirect = 33, 1 << 19, 1 << 20
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XInternAtom.restype = x11.XDefaultRootWindow.restype = ctypes.c_ulong
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    event = _ClientMessage(type=client_message, window=int(window), format=32,
                           message_type=x11.XInternAtom(display, b"_NET_CLOSE_WINDOW", 0))
    x11.XSendEvent(display, ctypes.c_ulong(x11.XDefaultRootWindow(display)), 0,
                   ctypes.c_long(substructure_notify | substructure_redirect), ctypes.byref(event))
    x11.XCloseDisplay(display)


def _xdotool(*arguments):
    if shutil.which("xdotool") is None:
        raise RuntimeError("xdotool is missing; it stands in Packaging/packages.txt")
    subprocess.run(["xdotool", *arguments], check=True, timeout=30)
