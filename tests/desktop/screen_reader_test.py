#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Reads a conversation as a screen reader does: lists every message of a sample in order, with its
sender, text and time, whether it is on the screen or not, and follows a link.

usage: with_desktop.sh screen_reader_test.py VELL VELL_EXPORT SAMPLE
"""

import json
import os
import subprocess
import sys
import time

try:
    import pyatspi
except ImportError:
    print("skipped: no pyatspi here")
    sys.exit(77)

PATIENCE = 60  # seconds


def wait_for(what, find):
    """The first true answer of find(); objects may come and go while it looks."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            found = find()
        except Exception as error:  # the bus tells every kind of absence as one of its own
            found, problem = None, error
        else:
            problem = "nothing"
        if found:
            return found
        time.sleep(0.05)
    sys.exit(f"waited for {what} and found {problem}")


def descendant(node, is_wanted, depth=8):
    if is_wanted(node):
        return node
    if depth == 0:
        return None
    for index in range(min(node.childCount, 50)):
        child = node.getChildAtIndex(index)
        found = child and descendant(child, is_wanted, depth - 1)
        if found:
            return found
    return None


def conversation(pid):
    """The list of messages in the program's window."""
    desktop = pyatspi.Registry.getDesktop(0)
    for application in desktop:
        if application and application.get_process_id() == pid:
            return descendant(
                application, lambda node: node.getRole() == pyatspi.ROLE_LIST and node.childCount > 20
            )
    return None


def expected_rows(export, sample):
    """Role and name of each row, made from the exported conversation."""
    log = json.loads(subprocess.check_output([export, "--format", "json", sample]))
    rows = []
    for event in log["events"]:
        date, clock = event["timestamp"].split("T")
        clock = clock[:5]
        sender = event["sender"] and event["sender"]["userID"]
        kind = event["kind"]
        if kind in ("newDay", "newMinute"):
            rows.append((pyatspi.ROLE_HEADING, ("", date[:4] if kind == "newDay" else "", clock)))
        elif kind == "user":
            if sender:
                rows.append((pyatspi.ROLE_LABEL, ("End of messages by " + sender,)))
        else:
            text = {
                "plainText": lambda: event["text"],
                "link": lambda: event["title"],
                "image": lambda: "Picture " + event["path"],
                "file": lambda: "File: ",
            }[kind]()
            role = pyatspi.ROLE_LINK if kind == "link" else pyatspi.ROLE_LIST_ITEM
            rows.append((role, ((sender + ": ") if sender else "", text, ", " + clock)))
    links = [event["url"] for event in log["events"] if event["kind"] == "link"]
    return rows, links


def check_rows(messages, expected):
    if messages.childCount != len(expected):
        sys.exit(f"{messages.childCount} rows, not {len(expected)}")
    hidden = 0
    for index, (role, parts) in enumerate(expected):
        item = messages.getChildAtIndex(index)
        name = item.name
        if item.getRole() != role:
            sys.exit(f"row {index} ({name}) is a {item.getRoleName()}")
        if not (name.startswith(parts[0]) and name.endswith(parts[-1])):
            sys.exit(f"row {index} is called {name!r}, not {parts}")
        if not all(part in name for part in parts):
            sys.exit(f"row {index} is called {name!r}, not {parts}")
        hidden += not item.getState().contains(pyatspi.STATE_SHOWING)
    if hidden < len(expected) // 2:
        sys.exit(f"only {hidden} rows of {len(expected)} are beyond the window")


def go_to_last(messages):
    """Rows that were never on the screen come there when the reader goes to them."""
    item = messages.getChildAtIndex(messages.childCount - 1)

    def has_focus():
        item.queryComponent().grabFocus()
        state = item.getState()
        return state.contains(pyatspi.STATE_FOCUSED) and state.contains(pyatspi.STATE_SHOWING)

    wait_for("the focus on the last row", has_focus)


def press_link(messages, expected, address):
    index = [role for role, _ in expected].index(pyatspi.ROLE_LINK)
    action = messages.getChildAtIndex(index).queryAction()
    names = [action.getName(i) for i in range(action.nActions)]
    action.doAction(names.index("Press"))

    def opened():
        with open(os.environ["OPENED"], encoding="utf-8") as file:
            return file.read().splitlines()

    addresses = wait_for("the link to be opened", opened)
    if addresses != [address]:
        sys.exit(f"opened {addresses}, not {address}")


def main():
    vell, export, sample = sys.argv[1:]
    expected, links = expected_rows(export, sample)
    program = subprocess.Popen([vell, "--new-instance", sample])
    try:
        messages = wait_for("the conversation", lambda: conversation(program.pid))
        check_rows(messages, expected)
        press_link(messages, expected, links[0])
        go_to_last(messages)
    finally:
        program.terminate()
        program.wait(PATIENCE)


main()
