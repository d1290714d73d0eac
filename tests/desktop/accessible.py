# SPDX-License-Identifier: MIT
#
# The program as assistive technology sees it. Desktop.accessible() returns this module.

import os
import time

os.environ.setdefault("NO_AT_BRIDGE", "1")

import pyatspi  # noqa: E402

from desktop import wait_for  # noqa: E402


LISTS = ("list", "table", "tree", "tree table")


def _walk(node, depth=12, rows=True):
    yield node
    if depth == 0 or not rows and _has_rows(node):
        return
    try:
        count = node.childCount
    except Exception:  # it has gone meanwhile
        return
    for index in range(min(count, 400)):
        try:
            child = node.getChildAtIndex(index)
        except Exception:
            continue
        if child is not None:
            yield from _walk(child, depth - 1, rows)


def _has_rows(node):
    try:
        return node.getRoleName() in LISTS
    except Exception:
        return False


def _is(node, role, name):
    try:
        # What is a "button" today was a "push button" in older releases.
        if role is not None and node.getRoleName().removeprefix("push ") != role:
            return False
        return name is None or name(node.name)
    except Exception:
        return False


def named(text):
    return lambda name: name == text


def holding(text):
    return lambda name: text in name


def windows(role=None, name=None):
    """The windows that all programs on this desktop show."""
    found = []
    desktop = pyatspi.Registry.getDesktop(0)
    for application in list(desktop):
        try:
            shown = list(application or [])
        except Exception:  # it has just ended
            continue
        for window in shown:
            if window is not None and _is(window, role, name) and showing(window):
                found.append(window)
    return found


def showing(node):
    try:
        return node.getState().contains(pyatspi.STATE_SHOWING)
    except Exception:
        return False


def window(name, role=None):
    return wait_for(lambda: next(iter(windows(role, name)), None), "a window")


def find(within, role=None, name=None, hidden=False, rows=True):
    """The first node of this kind, or none. Entries of closed menus are hidden. Without rows
    lists are not looked into, which takes long where there are many."""
    return next((node for node in _walk(within, rows=rows)
                 if _is(node, role, name) and (hidden or showing(node))), None)


def all(within, role=None, name=None, rows=True):
    """The nodes of this kind that are on the screen."""
    return [node for node in _walk(within, rows=rows) if _is(node, role, name) and showing(node)]


def wait_find(within, role=None, name=None, hidden=False, rows=True):
    return wait_for(lambda: find(within, role, name, hidden, rows), f"a {role} in {within.name}")


def rows(node, step=12):
    """What a list shows, top down, however many rows it has."""
    x, y, width, height = place(node)
    component = node.queryComponent()
    seen = []
    for line in range(y + 4, y + height, step):
        row = component.getAccessibleAtPoint(x + width // 2, line, pyatspi.DESKTOP_COORDS)
        if row is not None and row not in seen:
            seen.append(row)
    return seen


def press(node):
    """Does what a click on it does."""
    action = node.queryAction()
    for index in range(action.nActions):
        if action.getName(index) in ("Press", "press", "Toggle", "click", "ShowMenu"):
            action.doAction(index)
            return
    raise AssertionError(f"{node.name} can't be pressed")


def place(node):
    extents = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    return extents.x, extents.y, extents.width, extents.height


def middle(node):
    x, y, width, height = place(node)
    return x + width // 2, y + height // 2


def on_text(node, part):
    """The middle of the first character of a part of a node's text."""
    at = text(node).index(part)
    x, y, width, height = node.queryText().getCharacterExtents(at, pyatspi.DESKTOP_COORDS)
    return x + width // 2, y + height // 2


def text(node):
    content = node.queryText()
    return content.getText(0, content.characterCount)


def has_role(node, role):
    return _is(node, role, None)


def focus(node):
    """Moves the keyboard there; whether it has arrived and the node is on the screen."""
    try:
        node.queryComponent().grabFocus()
        return node.getState().contains(pyatspi.STATE_FOCUSED) and showing(node)
    except Exception:  # not there yet
        return False


def play(*steps):
    """Takes the steps in order; when one fails, what the windows show is printed."""
    for step in steps:
        print(step.__name__, end=": ", flush=True)
        begin = time.monotonic()
        try:
            step()
        except AssertionError:
            print("failed", flush=True)
            dump()
            raise
        print(f"{time.monotonic() - begin:.1f} s", flush=True)


def dump():
    """What is shown, for a failure's report."""
    for top in windows():
        for node in _walk(top):
            if showing(node):
                print(f"    {node.getRoleName()}: {node.name!r}")
