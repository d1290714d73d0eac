# SPDX-License-Identifier: MIT
#
# A whole session, played with the keyboard and through assistive technology: read, enlarge, find,
# copy, open a second transcript and a damaged one, see names from an address book, quit, and return
# to the same place.
#
# usage: visit_test.py VELL VELL-EXPORT SAMPLES

import os
import shutil
import signal
import sys
import time

from desktop import Desktop, need, need_accessibility, wait_for

CARD = """BEGIN:VCARD
VERSION:3.0
UID:jonas
FN:Jonas Holm
X-AIM:jonas_at_home
END:VCARD
"""


class Visit:
    def __init__(self, desktop, vell, export, samples):
        self.desktop, self.vell, self.export = desktop, vell, export
        self.cat = self.copy(samples, "The cat in the bathtub.ichat")
        self.umbrellas = self.copy(samples, "Two umbrellas.ichat")
        self.broken = desktop.path("broken secret.ichat")
        with open(self.broken, "wb") as file:
            file.write(b"this was never a transcript")
        contacts = os.path.join(desktop.environment["XDG_DATA_HOME"], "contacts")
        os.makedirs(contacts)
        with open(os.path.join(contacts, "nora.vcf"), "w") as card:
            card.write(CARD)

    def copy(self, samples, name):
        shutil.copy(os.path.join(samples, name), self.desktop.path(name))
        return self.desktop.path(name)

    def keys(self, title, *keys):
        """Types into a window, which comes to the front first."""
        self.desktop.activate(self.desktop.window(title))
        for key in keys:
            self.desktop.run("xdotool", "key", "--clearmodifiers", key)

    # ---- the steps, in order ----

    def start(self):
        self.running = self.desktop.start(self.vell, self.cat)
        self.window = a11y.window(a11y.holding("jonas_at_home"), "frame")

    def read(self):
        chat = a11y.wait_find(self.window, "list")
        rows = wait_for(lambda: list(chat), "the rows of the chat")
        assert any("Is one of you in our bathroom?" in row.name for row in rows[:6]), \
            [row.name for row in rows[:6]]
        assert rows[-1].name.strip(), "the last message says nothing"

    def enlarge(self):
        self.keys("jonas", "ctrl+equal", "ctrl+equal")
        wait_for(lambda: self.desktop.setting("TimelineFontSize") == "18", "a larger type")

    def find(self):
        self.keys("jonas", "ctrl+f")
        a11y.wait_find(self.window, "text", a11y.named("Find in chat"))
        self.desktop.run("xdotool", "type", "--delay", "5", "LANDLORD")
        a11y.wait_find(self.window, "label", a11y.named("1 of 2"))
        self.keys("jonas", "Escape")
        wait_for(lambda: not a11y.find(self.window, "label", a11y.named("1 of 2")),
                 "the find bar to close")

    def go_back(self):
        window = a11y.window(a11y.holding("jonas_at_home"), "frame")
        self.keys("jonas", "ctrl+Home", "Page_Down")
        start = self.top_row(window)
        self.keys("jonas", "End")
        wait_for(lambda: self.top_row(window) != start, "the end")
        end = self.top_row(window)
        for key, row in (("alt+Left", start), ("alt+Right", end), ("alt+Left", start)):
            self.keys("jonas", key)
            wait_for(lambda: self.top_row(window) == row, f"{key} to lead to {row}")

    def copy_all(self):
        expected = self.desktop.run(self.export, self.cat)
        assert b"landlord" in expected
        self.keys("jonas", "ctrl+shift+c")
        self.read_notice("Copied the whole chat")

        def copied():
            return self.desktop.run("xclip", "-o", "-selection", "clipboard", "-t",
                                    "text/markdown")

        wait_for(copied, "something on the clipboard")
        assert copied() == expected, "what was copied differs from what is exported"
        assert self.desktop.run("xclip", "-o", "-selection", "clipboard") == expected

    def read_notice(self, text):
        """It is shown for four seconds, so look before anything else."""
        a11y.wait_find(self.window, "status bar", a11y.holding(text))

    def export_all(self):
        """The name that is typed decides on the format."""
        for name, option, begin in (("chat.pdf", None, b"%PDF-1."), ("chat.txt", "text", b""),
                                    ("chat.html", None, b"<!DOCTYPE html>")):
            target = self.desktop.path(name)
            self.keys("jonas", "ctrl+shift+e")
            self.desktop.activate(self.desktop.window("Export Chat"))
            self.desktop.run("xdotool", "key", "ctrl+a")
            self.desktop.run("xdotool", "type", "--delay", "5", target)
            self.desktop.run("xdotool", "key", "Return")
            self.read_notice(f"Exported to “{name}”")
            with open(target, "rb") as file:
                written = file.read()
            assert written.startswith(begin), written[:40]
            if option:
                assert written == self.desktop.run(self.export, "-f", option, self.cat)

    def fail_to_export(self):
        self.keys("jonas", "ctrl+shift+e")
        self.desktop.activate(self.desktop.window("Export Chat"))
        self.desktop.run("xdotool", "key", "ctrl+a")
        missing = self.desktop.path("no such folder/chat.pdf")
        self.desktop.run("xdotool", "type", "--delay", "5", missing)
        self.desktop.run("xdotool", "key", "Return")
        dialog = wait_for(lambda: next(
            (window for window in a11y.windows() if
             a11y.find(window, "label", a11y.named("Nothing was written."))), None), "the reason")
        a11y.press(a11y.wait_find(dialog, "button", a11y.holding("OK")))

    def print_pages(self):
        """On the printer that is a file; the preview counts the pages."""
        self.keys("jonas", "ctrl+p")
        preview = a11y.window(a11y.named("Print"))
        a11y.wait_find(preview, "label", a11y.named("of 4"))
        self.keys("Print$", "Next", "Next")
        page = a11y.wait_find(preview, "spin button", a11y.named("Page"))
        wait_for(lambda: page.queryValue().currentValue == 3, "the third page")
        a11y.press(a11y.wait_find(preview, "button", a11y.named("Print …")))
        chosen = wait_for(lambda: next(
            (button for window in a11y.windows(None, a11y.named("Print")) if
             (button := a11y.find(window, "button", a11y.named("Print")))), None), "the question")
        a11y.press(chosen)
        target = os.path.join(self.desktop.environment["HOME"], "The cat in the bathtub.pdf")
        wait_for(lambda: os.path.exists(target), target)
        with open(target, "rb") as file:
            assert b"/Outlines" in file.read()
        wait_for(lambda: not a11y.windows(None, a11y.named("Print")), "both windows to close")

    def open_second(self):
        second = self.desktop.start(self.vell, self.umbrellas)
        assert second.wait(60) == 0
        a11y.window(a11y.holding("oskar@chat.example.net"), "frame")
        assert self.running.poll() is None

    def open_broken(self):
        began = time.monotonic()
        assert self.desktop.start(self.vell, self.broken).wait(60) == 0
        dialog = a11y.window(a11y.named("Vell"), "dialog")
        a11y.wait_find(dialog, "label", a11y.named(
            "The document “broken secret.ichat” could not be opened. The file is damaged or not a "
            "transcript."))
        log = a11y.window(a11y.named("Vell Load Log"))
        assert time.monotonic() - began >= 0.8, "the log came before its time"
        shown = a11y.text(a11y.wait_find(log, "text"))
        version = self.desktop.text(self.vell, "--version").split()[1]
        for part in (f"#  App Version: {version} Build ", "w/ size: 27\n", "|this was never a|",
                     "74 68 69 73"):
            assert part in shown, f"{part!r} is missing in\n{shown}"
        assert "secret" not in shown, "the file's name is in the log"
        a11y.press(a11y.wait_find(dialog, "button", a11y.holding("OK")))
        self.keys("Vell Load Log", "ctrl+w")
        wait_for(lambda: not a11y.windows(None, a11y.named("Vell Load Log")), "the log to close")

    def name_people(self):
        assert not a11y.windows(None, a11y.holding("Jonas Holm"))
        a11y.press(a11y.wait_find(self.window, "button", a11y.named("Grant or Deny")))
        a11y.window(a11y.named("Access to Your Contacts"))
        allow = wait_for(lambda: next(
            (button for window in a11y.windows() if
             (button := a11y.find(window, "button", a11y.named("Allow")))), None), "the question")
        a11y.press(allow)
        self.window = a11y.window(a11y.holding("Jonas Holm"), "frame")
        wait_for(lambda: not a11y.find(self.window, "button", a11y.named("Grant or Deny")),
                 "the bar to go")

    def about_twice(self):
        for _ in range(2):
            a11y.press(a11y.wait_find(self.window, "menu item", a11y.named("About Vell …"),
                                      hidden=True))
            a11y.window(a11y.named("About Vell"))
        assert len(a11y.windows(None, a11y.named("About Vell"))) == 1

    def come_back(self):
        self.keys("jonas", "ctrl+End")
        places = self.places()
        self.keys("jonas", "ctrl+q")
        assert self.running.wait(60) == 0
        wait_for(lambda: not a11y.windows("frame"), "all windows to go")
        self.running = self.desktop.start(self.vell)
        wait_for(lambda: self.places() == places, f"the same places as {places}")
        assert self.desktop.setting("TimelineFontSize") == "18"
        self.running.send_signal(signal.SIGTERM)
        assert self.running.wait(60) == 0

    def places(self):
        """Where the windows stand, and what is read at the top of each."""
        return sorted((window.name, a11y.place(window), self.top_row(window))
                      for window in a11y.windows("frame"))

    def top_row(self, window):
        chat = a11y.find(window, "list")
        shown = [row for row in chat or [] if a11y.showing(row)]
        return shown[0].name if shown else None


need("xclip")
need_accessibility()
with Desktop() as desktop:
    a11y = desktop.accessible()
    visit = Visit(desktop, *sys.argv[1:4])
    a11y.play(visit.start, visit.read, visit.enlarge, visit.find, visit.go_back, visit.copy_all,
              visit.export_all, visit.fail_to_export, visit.print_pages, visit.open_second,
              visit.open_broken, visit.name_people, visit.about_twice, visit.come_back)
