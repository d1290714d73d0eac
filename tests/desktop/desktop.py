# SPDX-License-Identifier: MIT
#
# A private desktop for a test: an X server on a free display, a session bus, a window manager, and
# empty folders. Whatever was started on it, and nothing else, has ended when the test leaves it.
#
#     with Desktop() as desktop:
#         vell = desktop.start("vell", "chat.ichat")
#         wait_for(lambda: ..., "the window")

import ctypes
import importlib.util
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True

SKIPPED = 77
PR_SET_CHILD_SUBREAPER = 36


def skip(reason):
    print("left out:", reason)
    sys.exit(SKIPPED)


def need(*programs):
    for program in programs:
        if shutil.which(program) is None:
            skip(f"no {program} here")


def need_tracing():
    need("strace")
    if subprocess.run(["strace", "-f", "-o", "/dev/null", "true"], capture_output=True,
                      check=False).returncode != 0:
        skip("processes can't be traced here")


def need_accessibility():
    if not importlib.util.find_spec("pyatspi"):
        skip("no pyatspi for this Python")
    if not os.path.exists("/usr/share/dbus-1/services/org.a11y.Bus.service"):
        skip("no accessibility bus here")


def wait_for(condition, what, seconds=40):
    """The first true result of the condition; a test never waits for anything else."""
    end = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"timed out waiting for {what}")
        time.sleep(0.05)


def descendants(of):
    """The processes below one, youngest generation last."""
    parents = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat") as stat:
                    fields = stat.read().rsplit(")", 1)[1].split()
                parents[int(name)] = (int(fields[1]), fields[0])
            except OSError:
                pass
    found = [of]
    for pid in found:
        found += [child for child, (parent, _) in parents.items() if parent == pid]
    return [pid for pid in found[1:] if parents[pid][1] != "Z"]


class Desktop:
    def __init__(self, **environment):
        need("Xvfb", "dbus-daemon", "openbox", "xdotool")
        # Services that the bus starts would otherwise outlive it as orphans.
        ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
        self.folder = tempfile.mkdtemp(prefix="vell-desktop-")
        self.processes = []
        self.environment = {
            "PATH": self.path("bin") + ":" + os.environ["PATH"],
            "HOME": self.path("home"),
            "XDG_CONFIG_HOME": self.path("home/.config"),
            "XDG_DATA_HOME": self.path("home/.local/share"),
            "XDG_CACHE_HOME": self.path("home/.cache"),
            "XDG_RUNTIME_DIR": self.path("run"),
            "TMPDIR": self.path("tmp"),
            "LC_ALL": "C.UTF-8",
            "TZ": "Europe/Berlin",
            "QT_QPA_PLATFORM": "xcb",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "GSETTINGS_BACKEND": "memory",
            "GIO_USE_VFS": "local",
            **environment,
        }
        for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"):
            os.makedirs(self.environment[name])
        os.mkdir(self.environment["XDG_RUNTIME_DIR"], 0o700)
        # Addresses that programs open end up as lines of a file.
        os.mkdir(self.path("bin"))
        with open(self.path("bin/xdg-open"), "w", opener=lambda path, flags: os.open(
                path, flags, 0o700)) as opener:
            opener.write(f'#!/bin/sh\nprintf "%s\\n" "$1" >>{self.path("opened")}\n')

    def path(self, name):
        return os.path.join(self.folder, name)

    def __enter__(self):
        try:
            self._begin()
        except BaseException:
            self.__exit__(*sys.exc_info())
            raise
        return self

    def _begin(self):
        # Without -noreset the server forgets everything when its last client leaves.
        self.environment["DISPLAY"] = ":" + self._ready("Xvfb", "-screen", "0", "1600x1200x24",
                                                       "-nolisten", "tcp", "-noreset",
                                                       option="-displayfd")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._ready(
            "dbus-daemon", "--session", "--nofork", "--nopidfile",
            "--address=unix:path=" + self.path("run/bus"), option="--print-address")
        self.start("openbox", "--sm-disable", output="openbox.log")
        wait_for(lambda: self.run("xdotool", "get_num_desktops"), "the window manager")

    def __exit__(self, kind, error, trace):
        for number in (signal.SIGTERM, signal.SIGKILL):
            end = time.monotonic() + 5
            while (alive := descendants(os.getpid())) and time.monotonic() < end:
                for pid in reversed(alive):
                    try:
                        os.kill(pid, number)
                    except ProcessLookupError:
                        pass
                for process in self.processes:
                    process.poll()
                time.sleep(0.05)
        if error:
            for name in sorted(os.listdir(self.folder)):
                if name.endswith(".log"):
                    with open(self.path(name), errors="replace") as log:
                        sys.stderr.write(f"---- {name}\n{log.read()[-4000:]}\n")
        shutil.rmtree(self.folder, ignore_errors=True)

    def start(self, *command, output=None, **options):
        """Starts a program; what it prints goes into a file of the folder."""
        with open(self.path(output or os.path.basename(command[0]) + ".log"), "ab") as log:
            process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                       stdout=log, stderr=log, **options)
        self.processes.append(process)
        return process

    def run(self, *command):
        """Runs a program to its end and returns the bytes it wrote; none when it failed."""
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, check=False, timeout=60)
        return done.stdout if done.returncode == 0 else b""

    def text(self, *command):
        return self.run(*command).decode()

    def opened(self):
        """The addresses that programs have opened."""
        try:
            with open(self.path("opened"), encoding="utf-8") as addresses:
                return addresses.read().splitlines()
        except FileNotFoundError:
            return []

    def setting(self, key):
        """A setting of the program as it stands on the disk."""
        try:
            with open(os.path.join(self.environment["XDG_CONFIG_HOME"], "quillmark",
                                   "vell.conf")) as settings:
                return next((line.split("=", 1)[1].strip() for line in settings
                             if line.startswith(key + "=")), None)
        except FileNotFoundError:
            return None

    def window(self, title):
        """The number of the visible window whose title begins like this."""
        return wait_for(lambda: self.text("xdotool", "search", "--onlyvisible", "--name",
                                          "^" + title).split(), f"the window {title}")[0]

    def activate(self, window):
        def is_active():
            self.run("xdotool", "windowactivate", window)
            return self.text("xdotool", "getactivewindow").strip() == window

        wait_for(is_active, f"window {window} to be active")

    def accessible(self):
        """The windows of this desktop as assistive technology sees them."""
        os.environ.update(self.environment)  # for the bindings in this process
        import accessible
        return accessible

    def _ready(self, *command, option):
        """Starts a server and returns the line it writes once it is ready."""
        reading, writing = os.pipe()
        argument = [f"{option}={writing}"] if option.startswith("--") else [option, str(writing)]
        self.start(*command, *argument, pass_fds=[writing])
        os.close(writing)
        with open(reading) as line:
            written = line.readline().strip()
        assert written, f"{command[0]} did not start"
        return written
