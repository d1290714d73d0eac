# SPDX-License-Identifier: MIT
#
# The program's windows beside each other: what clicks and drags do to them, where they open, and
# what they are called.
#
# usage: windows_test.py VELL SAMPLES

import os
import shutil
import signal
import sys
import time

from desktop import Desktop, need_accessibility, wait_for

ABOUT, LOG = "About Vell", "Vell Load Log"


def overlap(a, b):
    return (a[0] < b[0] + b[2] and b[0] < a[0] + a[2] and
            a[1] < b[1] + b[3] and b[1] < a[1] + a[3])


class Windows:
    def __init__(self, desktop, vell, samples):
        self.desktop, self.vell = desktop, vell
        self.samples = samples
        self.cat = self.copy("cat.ichat", "The cat in the bathtub.ichat")

    def copy(self, name, sample):
        shutil.copy(os.path.join(self.samples, sample), self.desktop.path(name))
        return self.desktop.path(name)

    def broken(self, name):
        with open(self.desktop.path(name), "wb") as file:
            file.write(b"this was never a transcript")
        return self.desktop.path(name)

    def open(self, *paths):
        assert self.desktop.start(self.vell, *paths).wait(60) == 0

    def end(self):
        self.running.send_signal(signal.SIGTERM)
        assert self.running.wait(60) == 0
        wait_for(lambda: not a11y.windows(), "all windows to go")

    def mouse(self, *actions):
        self.desktop.run("xdotool", *(str(word) for word in actions))

    def choose(self, name):
        a11y.press(a11y.wait_find(self.window, "menu item", a11y.named(name), hidden=True))

    def close(self, title, count):
        for left in reversed(range(count)):
            self.desktop.activate(self.desktop.window(title))
            self.mouse("key", "Escape")
            wait_for(lambda: len(a11y.windows(None, a11y.named(title))) == left, "a window to close")

    # ---- the steps, in order ----

    def start(self):
        self.running = self.desktop.start(self.vell, self.cat)
        self.window = a11y.window(a11y.holding("jonas_at_home"), "frame")

    def click_and_drag(self):
        self.choose("About Vell …")
        about = a11y.window(a11y.named(ABOUT))
        self.desktop.activate(self.desktop.window(ABOUT))
        link = a11y.wait_find(about, None, a11y.named("Uses IGIdenticon."))
        before = wait_for(lambda: a11y.place(about), "the window's place")
        x, y, width, height = a11y.place(link)
        self.mouse("mousemove", x + width // 2, y + height // 2, "click", "--repeat", 4, "--delay",
                   60, 1)
        wait_for(lambda: len(self.desktop.opened()) == 4, "four clicks to count")
        self.mouse("mousemove", before[0] + 20, before[1] + 20, "click", 1, "mousemove", 60, 60)
        self.mouse("mousemove", 900, 900)
        assert a11y.place(about) == before, "a click dragged the window"
        self.mouse("mousemove", before[0] + 20, before[1] + 20, "mousedown", 1)
        for step in range(8):
            self.mouse("mousemove_relative", "--", -10, -5, "sleep", 0.05)
        self.mouse("mouseup", 1)
        wait_for(lambda: a11y.place(about)[0] < before[0] - 30, "a drag to move the window")
        self.close(ABOUT, 1)

    def explain_a_failing_opener(self):
        opener = self.desktop.path("bin/xdg-open")
        os.rename(opener, opener + ".good")
        with open(opener, "w", opener=lambda path, flags: os.open(path, flags, 0o700)) as script:
            script.write("#!/bin/sh\nexit 3\n")
        self.choose("Report Bug …")
        failure = a11y.window(a11y.named("Open Address"))
        a11y.wait_find(failure, "label", a11y.named("The desktop could not open this address."))
        a11y.press(a11y.wait_find(failure, "button", a11y.holding("OK")))
        os.rename(opener + ".good", opener)

    def hide_the_toolbar(self):
        self.choose("Toolbar")
        wait_for(lambda: not a11y.find(self.window, "tool bar"), "the toolbar to go")
        self.choose("Toolbar")
        a11y.wait_find(self.window, "tool bar")

    def choose_a_font_size(self):
        self.choose("Show Fonts")
        panel = a11y.window(a11y.named("Font Size"))
        a11y.wait_find(panel, "list item", a11y.named("24"))
        assert not a11y.find(panel, "combo box"), "families do nothing"
        edit = a11y.wait_find(panel, "spin button", a11y.named("Font size"))
        edit.queryValue().currentValue = 13.7
        wait_for(lambda: self.desktop.setting("TimelineFontSize") == "13", "the whole size")
        a11y.wait_find(self.window, "status bar", a11y.named("Font size: 13"))
        self.mouse("key", "Escape")

    def fail_four_times(self):
        names = [f"broken {number}.ichat" for number in range(4)]
        self.open(*map(self.broken, names))
        logs = wait_for(lambda: len(found := a11y.windows(None, a11y.named(LOG))) == 4 and found,
                        "four logs")
        dialog = a11y.window(a11y.named("Vell"), "dialog")
        shown = a11y.text(a11y.wait_find(dialog, "text"))
        assert all(name in shown for name in names), shown
        places = [a11y.place(log) for log in logs]
        assert not any(overlap(a11y.place(dialog), place) for place in places), \
            f"{places} on {a11y.place(dialog)}"
        assert len({place[:2] for place in places}) == 4, f"logs lie on each other: {places}"
        self.close(LOG, 4)
        a11y.press(a11y.wait_find(dialog, "button", a11y.holding("OK")))

    def miss_a_file(self):
        gone = self.copy("gone.ichat", "Two umbrellas.ichat")
        self.open(gone)
        a11y.window(a11y.holding("oskar@chat.example.net"), "frame")
        wait_for(lambda: "gone.ichat" in self.desktop.setting("RecentFiles"), "a recent file")
        self.desktop.activate(self.desktop.window("oskar"))
        self.mouse("key", "ctrl+w")
        wait_for(lambda: len(a11y.windows("frame")) == 1, "its window to close")
        os.remove(gone)
        self.open(gone)
        dialog = a11y.window(a11y.named("Vell"), "dialog")
        a11y.wait_find(dialog, "label", a11y.holding("There is no such file."))
        wait_for(lambda: "gone.ichat" not in self.desktop.setting("RecentFiles"), "it to be forgotten")
        time.sleep(1)
        assert not a11y.windows(None, a11y.named(LOG)), "there is nothing to log"
        self.end()


need_accessibility()
with Desktop() as desktop:
    a11y = desktop.accessible()
    windows = Windows(desktop, *sys.argv[1:3])
    a11y.play(windows.start, windows.click_and_drag, windows.explain_a_failing_opener,
              windows.hide_the_toolbar, windows.choose_a_font_size, windows.fail_four_times,
              windows.miss_a_file)
