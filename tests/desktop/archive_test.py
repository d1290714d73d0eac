# SPDX-License-Identifier: MIT
#
# Somebody looks into a transcript's file: the tree and the chat follow each other, and an attachment
# is saved as it is stored.
#
# usage: archive_test.py VELL SAMPLE

import os
import plistlib
import sys
import time

from desktop import Desktop, need, need_accessibility, wait_for


class Archive:
    def __init__(self, desktop, vell, sample):
        self.desktop, self.vell, self.sample = desktop, vell, sample
        with open(sample, "rb") as file:
            self.objects = plistlib.load(file)["$objects"]

    def keys(self, *keys):
        self.desktop.activate(self.number)
        for key in keys:
            self.desktop.run("xdotool", "key", "--clearmodifiers", key)

    def click(self, node, button=1):
        x, y, width, height = a11y.place(node)
        self.desktop.run("xdotool", "mousemove", str(x + min(width // 2, 60)), str(y + height // 2),
                         "click", str(button))

    def of_class(self, name):
        return [number for number, value in enumerate(self.objects) if isinstance(value, dict)
                and "$class" in value and self.objects[value["$class"].data]["$classname"] == name]

    def tree_rows(self):
        x, y, _, height = a11y.place(self.tree)
        component = self.tree.queryComponent()
        found = [component.getAccessibleAtPoint(x + 90, line, pyatspi.DESKTOP_COORDS)
                 for line in range(y + 30, y + height, 12)]
        return [row for row in found if row is not None]

    def current(self):
        """What is selected in the tree."""
        rows = [row for row in self.tree_rows() if row.getState().contains(pyatspi.STATE_SELECTED)]
        return rows[0].name if rows else ""

    def wait_current(self, text):
        wait_for(lambda: self.current().startswith(text), f"{text} in the tree")

    def text_of(self, message):
        string = self.objects[self.objects[message]["MessageText"].data]["NSString"].data
        string = self.objects[string]
        return string if isinstance(string, str) else string["NS.string"]

    def selected(self):
        """The names of the chat's rows in which something is selected."""
        return [row.name for row in list(self.chat) if row.queryText().getNSelections() > 0]

    def search(self, start):
        """Moves the tree to the row that begins so, once what was typed before is forgotten."""
        time.sleep(0.6)
        self.desktop.run("xdotool", "type", "--delay", "5", start)
        self.wait_current(start + ",")

    # ---- the steps, in order ----

    def start(self):
        self.desktop.start(self.vell, self.sample)
        self.window = a11y.window(a11y.holding("jonas_at_home"), "frame")
        self.number = self.desktop.window("jonas_at_home")
        self.chat = a11y.wait_find(self.window, "list")
        self.messages = self.of_class("InstantMessage")

    def open(self):
        """It begins at the message that is read."""
        self.keys("F12")
        self.tree = a11y.wait_find(self.window, "tree", a11y.named("Archive"))
        self.wait_current(f"#{self.messages[0]}, InstantMessage, object, at byte ")

    def follow_a_reference(self):
        self.keys("Right", "Down")
        keys = list(self.objects[self.messages[0]])
        for _ in range(keys.index("Sender")):
            self.keys("Down")
        sender = self.objects[self.messages[0]]["Sender"].data
        self.wait_current(f"Sender, #{sender} Presentity, reference")
        self.keys("Return")
        self.wait_current(f"#{sender}, Presentity")

    def lead_the_chat(self):
        self.search(f"#{self.messages[2]}")
        text = self.text_of(self.messages[2])
        wait_for(lambda: any(text[:20] in row for row in self.selected()), f"{text!r} to be selected")

    def follow_the_chat(self):
        text = self.text_of(self.messages[1])
        self.click(next(row for row in self.chat if text[:20] in row.name))
        self.wait_current(f"#{self.messages[1]}, InstantMessage")
        self.keys("Down")
        self.wait_current(f"#{self.messages[2]}, InstantMessage")
        assert not self.selected(), "who walks through the chat selects nothing"

    def save(self):
        number = next(number for number, value in enumerate(self.objects) if isinstance(value, bytes))
        self.click(self.tree_rows()[0])
        self.search(f"#{number}")
        target = self.desktop.path("saved")
        self.keys("ctrl+alt+s")
        self.desktop.activate(self.desktop.window("Save Value"))
        self.desktop.run("xdotool", "key", "ctrl+a")
        self.desktop.run("xdotool", "type", "--delay", "5", target)
        self.desktop.run("xdotool", "key", "Return")
        wait_for(lambda: os.path.exists(target), "the saved value")
        with open(target, "rb") as file:
            assert file.read() == self.objects[number], "other bytes"

    def close(self):
        self.keys("F12")
        wait_for(lambda: not a11y.find(self.window, "tree", a11y.named("Archive")), "the pane to close")

    def look_into_a_damaged_file(self):
        """Its objects are where they are in the file, and follow the chat too."""
        damaged = self.desktop.path("cut.ichat")
        with open(self.sample, "rb") as whole, open(damaged, "wb") as cut:
            cut.write(whole.read()[:-40])
        self.desktop.start(self.vell, damaged)
        dialog = a11y.window(a11y.named("Vell"), "dialog")
        a11y.press(a11y.wait_find(dialog, "button", a11y.named("Show What Can Be Read")))
        self.window = a11y.window(a11y.holding("(recovered)"), "frame")
        self.number = self.desktop.window(".*recovered")
        self.chat = a11y.wait_find(self.window, "list")
        self.keys("F12")
        self.tree = a11y.wait_find(self.window, "tree", a11y.named("Archive"))
        self.wait_current(f"#{self.messages[0]}, InstantMessage, object, at byte ")
        self.follow_the_chat()
        self.close()


need("xdotool")
need_accessibility()
with Desktop() as desktop:
    a11y = desktop.accessible()
    import pyatspi
    archive = Archive(desktop, *sys.argv[1:3])
    a11y.play(archive.start, archive.open, archive.follow_a_reference, archive.lead_the_chat,
              archive.follow_the_chat, archive.save, archive.close,
              archive.look_into_a_damaged_file)
