# SPDX-License-Identifier: MIT
#
# A bad file affects nothing else: later starts, searches and other windows work.
#
# usage: mishaps_test.py VELL SAMPLE

import os
import shutil
import signal
import sys

from desktop import Desktop, need_accessibility, need_tracing, wait_for

WELCOME = "Welcome to Vell"


class Mishaps:
    def __init__(self, desktop, vell, sample):
        self.desktop, self.vell = desktop, vell
        self.good = desktop.path("good.ichat")
        self.broken = desktop.path("broken.ichat")
        self.sample = sample
        shutil.copy(sample, self.good)
        with open(self.broken, "wb") as file:
            file.write(b"this was never a transcript")

    def remembered(self):
        return "good.ichat" in (self.desktop.setting("LastWindows") or "")

    def end(self, running):
        running.send_signal(signal.SIGTERM)
        assert running.wait(60) == 0, "quitting failed"
        wait_for(lambda: not a11y.windows(), "all windows to go")

    def failure(self, sentence):
        dialog = a11y.window(a11y.named("Vell"), "dialog")
        a11y.wait_find(dialog, "label", a11y.holding(sentence))

    def plain_start_welcomes(self):
        running = self.desktop.start(self.vell)
        a11y.window(a11y.named(WELCOME))
        assert not a11y.windows("dialog"), "the failure came back"
        self.end(running)

    def broken_at_start(self):
        running = self.desktop.start(self.vell, self.broken)
        self.failure("damaged")
        a11y.window(a11y.named(WELCOME))
        self.end(running)
        self.plain_start_welcomes()

    def show_good(self):
        running = self.desktop.start(self.vell, self.good)
        a11y.window(a11y.holding("jonas_at_home"), "frame")
        wait_for(self.remembered, "the window to be remembered")
        self.end(running)

    def broken_meanwhile(self):
        self.show_good()
        shutil.copy(self.broken, self.good)
        running = self.desktop.start(self.vell)
        self.failure("damaged")
        a11y.window(a11y.named(WELCOME))
        self.end(running)
        self.plain_start_welcomes()
        shutil.copy(self.sample, self.good)

    def shows_what_is_left(self):
        """Of a transcript whose copy was cut off, on request and marked as a part; never of other files."""
        cut = self.desktop.path("cut.ichat")
        with open(self.sample, "rb") as whole, open(cut, "wb") as file:
            bytes = whole.read()
            file.write(bytes[:len(bytes) * 2 // 3])
        running = self.desktop.start(self.vell, cut, self.broken)
        self.failure("2 documents could not be opened")
        dialog = a11y.window(a11y.named("Vell"), "dialog")
        a11y.press(a11y.wait_find(dialog, "button", a11y.named("Show What Can Be Read")))
        window = a11y.window(a11y.holding("(recovered)"), "frame")
        a11y.wait_find(window, "label", a11y.holding("messages; the file is damaged after byte"))
        a11y.wait_find(window, name=a11y.holding("Messages are missing here."),
                       hidden=True)
        self.failure("No message of the document “broken.ichat” can be read")
        assert not self.remembered() and "cut" not in (self.desktop.setting("LastWindows") or "")
        self.end(running)

    def crash_while_opening(self):
        """The program crashes at the first byte of a transcript that it showed in an earlier session."""
        for arguments in ([self.good], []):
            self.show_good()
            crashed = self.desktop.start(
                "strace", "-f", "-qq", "-o", "/dev/null", "-P", self.good, "-e", "trace=read",
                "-e", "inject=read:signal=KILL", "--", self.vell, *arguments, output="crash.log")
            assert crashed.wait(60) != 0, "it did not crash"
            wait_for(lambda: not a11y.windows(), "all windows to go")
            if not arguments:
                self.plain_start_welcomes()

    def names_of_old_encodings(self):
        """A name in Latin-1 is opened, listed and found again by the next start."""
        old = os.fsencode(self.desktop.path("caf")) + b"\xe9.ichat"
        shutil.copy(self.sample, old)
        self.end(self.opened(old))
        running = self.desktop.start(self.vell)
        a11y.window(a11y.holding("jonas_at_home"), "frame")
        self.end(running)

    def opened(self, path):
        running = self.desktop.start(self.vell, path)
        a11y.window(a11y.holding("jonas_at_home"), "frame")
        wait_for(lambda: self.desktop.setting("LastWindows"), "the window to be remembered")
        return running

    def search_meets_a_giant(self):
        folder = self.desktop.path("found")
        os.mkdir(folder)
        shutil.copy(self.sample, folder)
        with open(os.path.join(folder, "giant.ichat"), "wb") as giant:
            giant.truncate(200 << 30)
        running = self.desktop.start(self.vell, folder)
        found = a11y.window(a11y.holding("iChat Files"))
        a11y.wait_find(found, "table cell", a11y.holding("can’t be read"))
        assert self.desktop.start(self.vell, os.path.join(folder, "giant.ichat")).wait(60) == 0
        self.failure("larger than Vell can read")
        assert running.poll() is None
        self.end(running)


need_tracing()
need_accessibility()
with Desktop() as desktop:
    a11y = desktop.accessible()
    mishaps = Mishaps(desktop, *sys.argv[1:3])
    a11y.play(mishaps.broken_at_start, mishaps.broken_meanwhile, mishaps.shows_what_is_left, mishaps.crash_while_opening,
              mishaps.names_of_old_encodings, mishaps.search_meets_a_giant)
