# SPDX-License-Identifier: MIT
#
# Reads a conversation as a screen reader does: every message of a sample in order, with its sender,
# text and time, whether it is on the screen or not; then follows a link.
#
# usage: screen_reader_test.py VELL VELL_EXPORT SAMPLE

import json
import sys

from desktop import Desktop, need_accessibility, wait_for


def expected_rows(log):
    """Role and name of each row, made from the exported conversation."""
    rows = []
    for event in log["events"]:
        date, clock = event["timestamp"].split("T")
        clock = clock[:5]
        sender = event["sender"] and event["sender"]["userID"]
        kind = event["kind"]
        if kind in ("newDay", "newMinute"):
            rows.append(("heading", ("", date[:4] if kind == "newDay" else "", clock)))
        elif kind != "user":
            text = {
                "plainText": lambda: event["text"],
                "link": lambda: event["title"],
                "image": lambda: "Picture " + event["path"],
                "file": lambda: "File: ",
            }[kind]()
            role = "link" if kind == "link" else "list item"
            rows.append((role, ((sender + ": ") if sender else "", text, ", " + clock)))
    return rows


class Reading:
    def __init__(self, desktop, vell, export, sample):
        self.desktop, self.vell, self.sample = desktop, vell, sample
        self.log = json.loads(desktop.run(export, "--format", "json", sample))
        self.expected = expected_rows(self.log)

    def start(self):
        self.desktop.start(self.vell, self.sample)
        self.messages = a11y.wait_find(a11y.window(a11y.holding("jonas_at_home"), "frame"), "list")
        wait_for(lambda: self.messages.childCount > 0, "messages")

    def read(self):
        assert self.messages.childCount == len(self.expected), self.messages.childCount
        hidden = 0
        for index, (role, parts) in enumerate(self.expected):
            item = self.messages.getChildAtIndex(index)
            name = item.name
            assert a11y.has_role(item, role), f"row {index} ({name}) is a {item.getRoleName()}"
            assert (name.startswith(parts[0]) and name.endswith(parts[-1]) and
                    all(part in name for part in parts)), f"row {index}: {name!r}, not {parts}"
            hidden += not a11y.showing(item)
        assert hidden >= len(self.expected) // 2, f"only {hidden} rows are beyond the window"

    def follow_link(self):
        index = [role for role, _ in self.expected].index("link")
        a11y.press(self.messages.getChildAtIndex(index))
        address = next(event["url"] for event in self.log["events"] if event["kind"] == "link")
        assert wait_for(self.desktop.opened, "the link to be opened") == [address]

    def go_to_last(self):
        """A row that was never on the screen comes there when the reader goes to it."""
        last = self.messages.childCount - 1
        wait_for(lambda: a11y.focus(self.messages.getChildAtIndex(last)),
                 "the focus on the last row")


need_accessibility()
with Desktop(LC_ALL="en_GB.UTF-8", TZ="UTC") as desktop:
    a11y = desktop.accessible()
    reading = Reading(desktop, *sys.argv[1:4])
    a11y.play(reading.start, reading.read, reading.follow_link, reading.go_to_last)
