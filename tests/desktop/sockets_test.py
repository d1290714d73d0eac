# SPDX-License-Identifier: MIT
#
# The program never uses the network: every socket it creates is traced while it opens transcripts,
# is started again, and quits.
#
# usage: sockets_test.py VELL FOLDER…

import os
import pathlib
import re
import signal
import sys

from desktop import Desktop, descendants, need_tracing, wait_for

# What a desktop program may connect to: the display, the buses, itself; and the name service of the
# C library, which stays on the machine.
ALLOWED = [
    r"/tmp/\.X11-unix/X\d+",
    r"{folder}/run/bus",
    r"{folder}/.*at-spi.*",
    r"{folder}/run/dev\.quillmark\.vell-[0-9a-f]+",
    r"{folder}/run/\.[^/]+/s",  # the same one while it is made
    r"(/var)?/run/dbus/system_bus_socket",
    r"/var/run/nscd/socket",
]


def foreign_calls(log, folder):
    """The system calls that involve any other socket."""
    allowed = re.compile("|".join(ALLOWED).replace("{folder}", re.escape(folder)))
    found = []
    sockets = 0
    for line in log:
        if re.search(r"\bsocket(pair)?\(", line):
            sockets += 1
            if not re.search(r"\bsocket(pair)?\(AF_UNIX\b", line):
                found.append(line)
        elif "sa_family=" in line:
            path = re.search(r'sun_path=@?"([^"]*)"', line)
            addressed = re.search(r"\b(connect|bind|send\w+)\(", line)
            if "AF_UNIX" not in line or (addressed and not (path and allowed.fullmatch(path[1]))):
                found.append(line)
    assert sockets > 0, "the trace is empty"
    return found


def main():
    vell, *folders = sys.argv[1:]
    transcripts = [str(file) for folder in folders for file in pathlib.Path(folder).glob("*.ichat")]
    need_tracing()
    with Desktop() as desktop:
        trace = desktop.path("trace")
        strace = ["strace", "-f", "-qq", "-s", "256", "-e", "trace=%network", "-o"]
        running = desktop.start(*strace, trace, vell, "--", *transcripts, output="vell.log")
        recent = os.path.join(desktop.environment["XDG_DATA_HOME"], "recently-used.xbel")

        def all_open():
            if not os.path.exists(recent):
                return False
            with open(recent) as entries:
                return entries.read().count("<bookmark ") == len(transcripts)

        wait_for(all_open, "all transcripts to be opened", 120)
        second = desktop.start(*strace, trace + ".second", vell, "--", transcripts[0],
                               output="second.log")
        assert second.wait(60) == 0, "the second start failed"
        for pid in descendants(running.pid):
            os.kill(pid, signal.SIGTERM)
        assert running.wait(60) == 0, "quitting failed"
        for name in (trace, trace + ".second"):
            with open(name, errors="replace") as log:
                found = foreign_calls(log, desktop.folder)
            assert not found, "unexpected sockets:\n" + "".join(found)


main()
