# SPDX-License-Identifier: MIT
#
# Somebody looks through a chat of forty days for what was shared in it.
#
# usage: album_test.py VELL PARTNER

import sys

from desktop import Desktop, need, need_accessibility, wait_for


class Album:
    def __init__(self, desktop, vell, partner):
        self.desktop, self.vell = desktop, vell
        self.chat = desktop.path("album.ichat")
        desktop.run(partner, "album", self.chat)

    def keys(self, title, *keys):
        self.desktop.activate(self.desktop.window(title))
        for key in keys:
            self.desktop.run("xdotool", "key", "--clearmodifiers", key)

    def click(self, node, button=1):
        x, y, width, height = a11y.place(node)
        self.desktop.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "click",
                         str(button))

    def rows(self):
        """The names of the rows on the screen."""
        chat = a11y.find(self.window, "list")
        return [row.name for row in chat or [] if a11y.showing(row)]

    def wait_top(self, text):
        wait_for(lambda: (rows := self.rows()) and text in rows[0], f"{text} at the top")

    # ---- the steps, in order ----

    def start(self):
        self.desktop.start(self.vell, self.chat)
        self.window = a11y.window(a11y.holding("bob"), "frame")
        wait_for(self.rows, "the chat")

    def step_by_days(self):
        self.keys("bob", "alt+Down", "alt+Down")
        self.wait_top("Oct 6, 2005")
        self.keys("bob", "alt+Up")
        self.wait_top("Oct 5, 2005")
        self.keys("bob", "alt+Up", "alt+Up")
        self.wait_top("Oct 3, 2005")
        a11y.wait_find(self.window, "status bar", a11y.holding("no earlier day"), hidden=True)
        self.keys("bob", "ctrl+End", "alt+Up")
        self.wait_top("Nov 10, 2005")

    def go_to_date(self):
        self.keys("bob", "ctrl+Home", "ctrl+j")
        dialog = a11y.window(a11y.named("Go to Date"), "dialog")
        a11y.wait_find(dialog, "label", a11y.holding("3 October 2005: 4 messages"))
        # The 4th has nothing: a click goes to the next day that has.
        cells = a11y.wait_find(dialog, "table")
        self.click(a11y.wait_find(cells, None, a11y.named("4")))
        self.wait_top("Oct 5, 2005")
        a11y.wait_find(dialog, "label", a11y.holding("5 October 2005: 6 messages"))
        # Weeks by the arrow keys, and the day with them.
        self.keys("Go to Date", "Down", "Return")
        self.wait_top("Oct 12, 2005")
        wait_for(lambda: not a11y.windows(None, a11y.named("Go to Date")), "the calendar to close")

    def look_at_pictures(self):
        self.keys("bob", "ctrl+Home")
        self.click(a11y.wait_find(self.window, None, a11y.holding("picture 1.png")))
        a11y.wait_find(self.window, "label", a11y.holding("1 of 27"))
        self.keys("bob", "Right")
        a11y.wait_find(self.window, "label", a11y.named("picture 2.png"))
        # What lies below doesn't answer, and what is shown is copied.
        self.keys("bob", "ctrl+j", "ctrl+c")
        shown = wait_for(lambda: self.desktop.run("xclip", "-o", "-selection", "clipboard", "-t",
                                                  "image/png"), "a copied picture")
        assert shown[16:24] == bytes([0, 0, 1, 224, 0, 0, 2, 128]), "not 480 by 640 pixels"
        assert not a11y.windows(None, a11y.named("Go to Date"))
        a11y.press(a11y.wait_find(self.window, "button", a11y.named("Next Picture")))
        a11y.wait_find(self.window, "label", a11y.holding("3 of 27"))
        self.keys("bob", "Escape")
        self.wait_top("picture 3.png")
        assert not a11y.find(self.window, "label", a11y.holding("3 of 27"))
        self.keys("bob", "alt+Left")
        self.wait_top("Oct 3, 2005")

    def open_link(self):
        def shown():
            return set(self.desktop.text("xdotool", "search", "--onlyvisible", "--class", "").split())

        before = shown()
        self.click(a11y.wait_find(self.window, None, a11y.holding("The timetable")), button=3)
        wait_for(lambda: shown() - before, "the context menu")
        self.desktop.run("xdotool", "key", "Down", "Return")
        wait_for(lambda: self.desktop.opened() == ["https://example.net/trains/0"], "the address")

    def look_at_what_was_shared(self):
        self.keys("bob", "F9")
        pane = a11y.wait_find(self.window, "table", a11y.named("Pictures"))
        self.click(a11y.wait_find(pane, None, a11y.holding("picture 5.png")))
        wait_for(lambda: any("picture 5.png" in row for row in self.rows()), "the fifth picture")
        self.desktop.run("xdotool", "click", "--repeat", "2", "--delay", "60", "1")
        a11y.wait_find(self.window, "label", a11y.holding("5 of 27"))
        self.keys("bob", "Escape")
        self.click(a11y.wait_find(self.window, "page tab", a11y.named("Links (6)")))
        links = a11y.wait_find(self.window, "table", a11y.named("Links"))
        self.click(a11y.wait_find(links, None, a11y.holding("trains/35,")))
        wait_for(lambda: any("Day 35, 0" in row for row in self.rows()), "the last link's message")
        self.keys("bob", "F9")
        wait_for(lambda: not a11y.find(self.window, "table"), "the pane to close")

    def look_from_elsewhere(self):
        """In Tokyo these evenings are mornings."""
        self.keys("bob", "ctrl+Home", "alt+v", "z", "o")
        dialog = a11y.window(a11y.named("Time Zone"), "dialog")
        a11y.wait_find(dialog, "text", a11y.named("City or region"))
        self.desktop.run("xdotool", "type", "--delay", "5", "toky")
        self.desktop.run("xdotool", "key", "Return")
        self.wait_top("Oct 4, 2005, 6:10")
        a11y.wait_find(self.window, "label", a11y.named("Time zone: Tokyo"))
        wait_for(lambda: self.desktop.setting("TimeZone") == "Asia/Tokyo", "the zone to be kept")
        # Exports follow.
        self.keys("bob", "ctrl+shift+c")
        wait_for(lambda: b"Oct 4, 2005" in (copied := self.desktop.run(
            "xclip", "-o", "-selection", "clipboard")) and b"Oct 3," not in copied, "Tokyo's days")
        self.keys("bob", "alt+v", "z", "a")
        self.wait_top("Oct 3, 2005, 11:10")
        wait_for(lambda: not a11y.find(self.window, "label", a11y.holding("Time zone")),
                 "the zone to leave the status bar")


need("xclip")
need_accessibility()
with Desktop() as desktop:
    a11y = desktop.accessible()
    album = Album(desktop, *sys.argv[1:3])
    a11y.play(album.start, album.step_by_days, album.go_to_date,
              album.look_at_pictures, album.open_link, album.look_at_what_was_shared,
              album.look_from_elsewhere)
