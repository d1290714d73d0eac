# SPDX-License-Identifier: MIT
#
# Reading about in a chat with real keys and the mouse: finding words, patterns and one person's
# messages, the list of matches, going back and forward, and taking a part of the talk elsewhere.
#
# usage: find_test.py VELL VELL-EXPORT SAMPLE

import json
import re
import sys

from desktop import Desktop, need, need_accessibility, wait_for


class Search:
    def __init__(self, desktop, vell, export, sample):
        self.desktop, self.vell, self.sample = desktop, vell, sample
        log = json.loads(desktop.run(export, "--format", "json", sample))
        self.texts = [(event["sender"], event.get("text") or event.get("title") or "")
                      for event in log["events"]]

    def keys(self, *keys):
        self.desktop.activate(self.number)
        for key in keys:
            self.desktop.run("xdotool", "key", "--clearmodifiers", key)

    def write(self, text):
        self.keys("ctrl+f", "ctrl+a")
        self.desktop.run("xdotool", "type", "--delay", "5", text)

    def count(self, pattern, flags=re.IGNORECASE, sender=None):
        return sum(len(re.findall(pattern, text, flags)) for who, text in self.texts
                   if sender is None or (who and who["userID"] == sender))

    def shows(self, current, count):
        a11y.wait_find(self.window, "label", a11y.named(f"{current} of {count}"))

    def switch(self, name):
        a11y.press(a11y.wait_find(self.window, None, a11y.named(name)))

    def rows(self):
        """The rows on the screen."""
        return [row for row in a11y.find(self.window, "list") or [] if a11y.showing(row)]

    def row(self, text):
        return wait_for(lambda: next((row for row in self.rows() if text in row.name), None),
                        f"{text!r} on the screen")

    def mouse(self, *steps):
        """Moves to a place for each pair, and passes on other words as commands."""
        for step in steps:
            self.desktop.run("xdotool", *(["mousemove", *map(str, step)]
                                          if isinstance(step, tuple) else step.split()))

    def clipboard(self, kind="UTF8_STRING", selection="clipboard"):
        return self.desktop.run("xclip", "-o", "-selection", selection, "-t", kind).decode()

    # ---- the steps, in order ----

    def start(self):
        self.desktop.start(self.vell, self.sample)
        self.window = a11y.window(a11y.holding("jonas_at_home"), "frame")
        self.number = self.desktop.window("jonas")
        self.keys("ctrl+Home")

    def find_words(self):
        self.write("the")
        self.shows(1, self.count("the"))
        self.switch("Whole words")
        self.shows(1, self.count(r"\bthe\b"))
        self.switch("Match case")
        self.shows(1, self.count(r"\bthe\b", 0))
        self.switch("Whole words")
        self.switch("Match case")

    def find_patterns(self):
        self.switch("Regular expression")
        self.write("th[ie")
        a11y.wait_find(self.window, "label",
                       a11y.named("Not a regular expression: “]” is missing (character 5)."))
        self.write("th[ie].e")
        wait_for(lambda: not a11y.find(self.window, "label", a11y.holding("Not a regular")),
                 "the notice to go")
        self.shows(1, self.count("th[ie].e"))
        self.write("(.*)*(.*)*(.*)*\\1x9")
        a11y.wait_find(self.window, "label", a11y.named("Not found"))
        self.switch("Regular expression")

    def list_by_person(self):
        self.write("the")
        self.switch("List of matches")
        table = a11y.wait_find(self.window, "table", a11y.named("Matches")).queryTable()
        count = self.count("the")
        wait_for(lambda: table.nRows == count, "the list of matches")
        people = a11y.middle(a11y.wait_find(self.window, "combo box", a11y.named("Everybody")))
        self.mouse(people, "click 1", "sleep 0.5", "key Down", "key Return")
        wait_for(lambda: 0 < table.nRows < count, "one person's matches")
        names = {table.getAccessibleAt(row, 0).name.split(",")[0] for row in range(table.nRows)}
        assert table.nRows == self.count("the", sender=names.pop()) and not names
        self.mouse(people, "click 1", "sleep 0.5", "key Up", "key Return")
        wait_for(lambda: table.nRows == count, "everybody's matches")
        self.keys("ctrl+f", "Down", "End")
        self.shows(count, count)
        self.row(table.getAccessibleAt(count - 1, 0).name.split(": ", 1)[1].strip("…")[:20])
        self.keys("Escape", "Escape")
        wait_for(lambda: not a11y.find(self.window, "table"), "the list to close")

    def go_back(self):
        end = self.rows()[0].name
        self.keys("ctrl+Home")
        start = wait_for(lambda: self.rows()[0].name != end and self.rows()[0].name, "the start")
        for key, name in (("alt+Left", end), ("alt+Right", start)):
            self.keys(key)
            wait_for(lambda: self.rows()[0].name == name, f"{key} to lead to {name}")
        self.mouse(a11y.middle(self.rows()[0]), "click 8")
        wait_for(lambda: self.rows()[0].name == end, "the mouse's button for going back")
        self.keys("alt+Right")

    def take_selected_word(self):
        row = self.row("bathroom?")
        self.mouse(a11y.on_text(row, "bathroom"), "click --repeat 2 1")
        self.keys("ctrl+f")
        self.shows(1, self.count("bathroom"))
        self.keys("Escape")

    def copy_conversation(self):
        first, last = self.row("bathroom?"), self.row("Because something is")
        self.mouse(a11y.on_text(first, "bathroom"), "mousedown 1",
                   a11y.on_text(last, "something"), a11y.on_text(last, "is."), "mouseup 1")
        self.keys("ctrl+c")
        text = wait_for(self.clipboard, "something copied")
        a11y.wait_find(self.window, "status bar", a11y.named("Copied 3 messages"))
        lines = text.splitlines()
        assert lines[0] == "nora.lindqvist, 20:04: bathroom?", text
        assert lines[-1].endswith(", 20:04: Because something "), text
        html, markdown = self.clipboard("text/html"), self.clipboard("text/markdown")
        assert "<b>nora.lindqvist</b>, 20:04: bathroom?" in html, html
        assert markdown.startswith("\n*nora.lindqvist:*\n"), markdown
        assert self.clipboard(selection="primary") == text

    def drag_selected(self):
        """A selected word goes into the find bar's text by the mouse."""
        self.keys("ctrl+f", "ctrl+a", "BackSpace")
        edit = a11y.wait_find(self.window, "text", a11y.named("Find in chat"))
        x, y = a11y.on_text(self.row("bathroom?"), "bathroom")
        target = a11y.middle(edit)

        def is_dropped():
            if a11y.text(edit) == "bathroom":
                return True
            self.mouse((x, y), "click --repeat 2 1", "sleep 0.5", "mousedown 1")
            for down in (4, 12, 30, 60):
                self.mouse((x, y + down), "sleep 0.05")
            # A drop counts only once the program below has said that it takes it.
            for right in range(0, 60, 6):
                self.mouse((target[0] + right, target[1]), "sleep 0.1")
            self.mouse("mouseup 1", "sleep 0.5")

        wait_for(is_dropped, "the dropped word")
        self.mouse(a11y.on_text(self.row("bathroom?"), "Is"), "mousedown 1", "mouseup 1")
        self.keys("Escape")


need("xclip")
need_accessibility()
with Desktop(LC_ALL="en_GB.UTF-8") as desktop:
    a11y = desktop.accessible()
    search = Search(desktop, *sys.argv[1:4])
    a11y.play(search.start, search.find_words, search.find_patterns, search.list_by_person,
              search.go_back, search.take_selected_word, search.drag_selected,
              search.copy_conversation)
