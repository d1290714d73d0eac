# SPDX-License-Identifier: MIT
#
# A picture leaves the program by mouse and by clipboard and arrives in other programs byte for byte.
#
# usage: pictures_test.py VELL PARTNER

import itertools
import os
import sys

from desktop import Desktop, need, wait_for


class Pictures:
    def __init__(self, desktop, vell, partner):
        self.desktop, self.vell, self.partner = desktop, vell, partner
        self.chat, self.picture = desktop.path("chat.ichat"), desktop.path("field.png")
        self.taken = desktop.path("taken.png")
        desktop.run(partner, "make", self.chat, self.picture)
        self.files = desktop.environment["TMPDIR"] = desktop.path("files")
        os.mkdir(self.files)

    def mouse(self, *actions):
        self.desktop.run("xdotool", *map(str, actions))

    def contents(self, name):
        try:
            with open(self.desktop.path(name), "rb") as file:
                return file.read()
        except FileNotFoundError:
            return b""

    def move(self, window, left, top):
        def is_there():
            self.mouse("windowmove", window, left, top)
            geometry = dict(line.split("=") for line in self.desktop.text(
                "xdotool", "getwindowgeometry", "--shell", window).split())
            # A frame and a title bar may lie between.
            return (0 <= int(geometry["X"]) - left < 60 and 0 <= int(geometry["Y"]) - top < 60)

        wait_for(is_there, f"window {window} to be moved")

    def find_picture(self):
        def place():
            return self.desktop.text(self.partner, "find")

        # The same place twice: nothing moves any more.
        self.x, self.y = map(int, wait_for(lambda: (first := place()) and first == place() and first,
                                           "the picture on the screen").split())

    def start(self):
        # The sanitizers' library wants to be loaded first, and stdbuf brings one of its own.
        self.desktop.start("env", "ASAN_OPTIONS=verify_asan_link_order=0", "stdbuf", "-oL",
                           self.vell, self.chat, output="vell.log")
        self.desktop.start(self.partner, "take", self.taken, output="taker.log")
        self.move(self.desktop.window("taker$"), 900, 600)
        chat = self.desktop.window("ann")
        self.move(chat, 20, 20)
        self.desktop.activate(chat)
        self.find_picture()

    def drag(self):
        self.mouse("mousemove", self.x, self.y, "mousedown", 1)
        for distance in (5, 10, 20, 40, 80):
            self.mouse("mousemove", self.x + distance, self.y)
        shift = itertools.cycle(range(0, 40, 7))

        def is_over_taker():
            self.mouse("mousemove", 980 + next(shift), 700)
            return self.contents("taker.log").count(b"moved") >= 3

        wait_for(is_over_taker, "the other program to see the drag")
        assert not os.listdir(self.files), "a file was written before it was asked for"
        self.mouse("mouseup", 1)
        wait_for(lambda: b"taken" in self.contents("taker.log"), "the drop")
        for taken in (self.taken, self.taken + ".file"):
            assert self.contents(taken) == self.contents(self.picture), f"{taken} differs"
        assert b"\nASK FOR: public.image\n" in b"\n" + self.contents("vell.log")

    def copy(self):
        def windows():
            return set(self.desktop.text("xdotool", "search", "--onlyvisible", "--class", "").split())

        def clipboard(target):
            return self.desktop.run("xclip", "-o", "-selection", "clipboard", "-t", target)

        before = windows()
        self.mouse("mousemove", self.x, self.y, "click", 3)
        wait_for(lambda: windows() - before, "the context menu")
        self.mouse("key", "Down", "Down", "Return")
        wait_for(lambda: b"/" in clipboard("TARGETS"), "the clipboard")
        kinds = set(clipboard("TARGETS").decode().split()) - {"TARGETS", "MULTIPLE", "TIMESTAMP",
                                                              "SAVE_TARGETS", "DELETE"}
        assert kinds == {"image/png"}, kinds
        assert clipboard("image/png") == self.contents(self.picture), "other bytes were copied"


need("xclip")
with Desktop() as desktop:
    pictures = Pictures(desktop, *sys.argv[1:3])
    for step in (pictures.start, pictures.drag, pictures.copy):
        print(step.__name__, flush=True)
        step()
