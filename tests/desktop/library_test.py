# SPDX-License-Identifier: MIT
#
# A day with the library: adding a folder, watching it being indexed, reading what was said with
# somebody, joining two addresses, searching in three scripts, going to a message, saving a chat;
# while files appear, change, vanish and one is broken. Then without an index.
#
# usage: library_test.py VELL VELL-EXPORT MAKE-ARCHIVE SAMPLES

import json
import os
import re
import resource
import shutil
import signal
import sys

from desktop import Desktop, need_accessibility, wait_for

PATIENCE = 120  # seconds; indexing yields to whatever else the computer does
FILES, MESSAGES, PICTURES = 600, 24000, 40
SCRIPTS = (r"[a-z]{7,}", r"[\u4e00-\u9fff]{2}", r"[\u0621-\u064a]{5,}")


class Library:
    def __init__(self, desktop, vell, export, make_archive, samples):
        self.desktop, self.vell, self.export, self.samples = desktop, vell, export, samples
        self.folder = desktop.path("home/Chats")
        assert desktop.run(make_archive, self.folder, str(FILES), str(MESSAGES),
                           str(PICTURES)) is not None
        self.paths = sorted(os.path.join(folder, name) for folder, _, names in
                            os.walk(self.folder) for name in names)
        self.window, self.parts = None, {}

    # ---- what is on the screen ----

    def part(self, role, name=None):
        """A part of the window, looked for only once as long as it is there."""
        if not a11y.showing(self.parts.get((role, name))):
            self.parts[role, name] = a11y.find(self.window, role, name and a11y.named(name),
                                               rows=False)
        return self.parts[role, name]

    def has_found(self, window):
        self.window, self.parts = window, {}
        self.number = self.desktop.window("Library")

    def keys(self, *keys):
        self.desktop.activate(self.number)
        for key in keys:
            self.desktop.run("xdotool", "key", "--clearmodifiers", key)

    def click(self, node, *steps):
        x, y = a11y.middle(node)
        self.desktop.run("xdotool", "mousemove", str(x), str(y), *(steps or ("click", "1")))

    def state(self):
        """What the last line says."""
        if not a11y.showing(self.parts.get("state")):
            labels = a11y.all(self.window, "label", rows=False)
            self.parts["state"] = next((label for label in labels if re.search(
                r"conversation|ndexing|index|Looking", label.name)), None)
        return self.parts["state"].name if self.parts["state"] else ""

    def wait_state(self, text):
        wait_for(lambda: text in self.state(), f"{text!r} in {self.state()!r}", PATIENCE)

    def wait_broken(self):
        return a11y.wait_find(self.window, "button", a11y.holding("couldn’t be read"), rows=False)

    def person(self, name):
        return wait_for(lambda: self.has_person(name), f"{name} among the people", PATIENCE)

    def has_person(self, name):
        people = self.part("list", "People")
        return next((row for row in people or [] if row.name.startswith(name + ",")), None)

    def conversations(self):
        tree = self.part("tree", "Conversations")
        return [row for row in a11y.rows(tree) if " messages" in row.name] if tree else []

    def found(self):
        """The first messages that were found."""
        results = self.part("list", "Messages found")
        return [row.name for row in a11y.rows(results)] if results else []

    def search(self, text):
        self.keys("ctrl+shift+f")
        wait_for(lambda: self.part("text", "Search all chats"), "the search field")
        self.part("text", "Search all chats").queryEditableText().setTextContents(text)

    def rows(self):
        """Of the chat that are on the screen."""
        chat = self.part("list", "Conversation")
        return [row.name for row in a11y.rows(chat)] if chat else []

    def copy_in(self, name, target):
        shutil.copy(os.path.join(self.samples, name), os.path.join(self.folder, target + "~"))
        os.rename(os.path.join(self.folder, target + "~"), os.path.join(self.folder, target))

    # ---- the steps, in order ----

    def add_folder(self):
        self.running = self.desktop.start(self.vell)
        welcome = a11y.window(a11y.named("Welcome to Vell"))
        a11y.press(a11y.wait_find(welcome, "button", a11y.named("Add Folder …")))
        self.desktop.activate(self.desktop.window("Add a Folder"))
        self.desktop.run("xdotool", "type", "--delay", "5", self.folder)
        self.desktop.run("xdotool", "key", "Return")
        self.has_found(a11y.window(a11y.named("Library"), "frame"))

    def watch_progress(self):
        seen = []

        def is_done():
            seen.append(self.state())
            return "conversations" in seen[-1]

        wait_for(is_done, "the end of indexing", PATIENCE)
        assert any(text.startswith(("Indexing: ", "Looking through")) for text in seen), seen
        self.count = int(re.match(r"([\d,]+)", seen[-1])[1].replace(",", ""))
        broken = FILES // 250  # as the archive has them
        assert FILES - 2 * broken - 2 <= self.count <= FILES, seen[-1]
        assert not welcome_is_open(), "the welcome window stays"

    def choose_person(self):
        self.click(self.person("karim"))
        self.click(wait_for(self.conversations, "conversations with karim")[0])
        wait_for(self.rows, "the chat with karim")

    def read_across_sessions(self):
        first = self.rows()
        self.keys("ctrl+shift+f", "Escape")
        self.click(wait_for(self.conversations, "conversations")[-1])
        wait_for(lambda: self.rows() and self.rows() != first, "another session")

    def join_addresses(self):
        before = {name: self.person(name).name for name in ("jun", "haruka")}
        x, y = a11y.middle(self.person("jun"))
        target = a11y.middle(self.person("haruka"))
        self.desktop.run("xdotool", "mousemove", str(x), str(y), "mousedown", "1")
        for step in range(1, 9):
            self.desktop.run("xdotool", "mousemove", str(x + 2 * step),
                             str(y + (target[1] - y) * step // 8), "sleep", "0.1")
        self.desktop.run("xdotool", "mousemove", *map(str, target), "sleep", "0.3", "mouseup", "1")
        wait_for(lambda: not self.has_person("jun"), "jun to be joined")
        counts = [int(re.search(r"([\d,]+) messages", text)[1].replace(",", ""))
                  for text in (*before.values(), self.person("haruka").name)]
        # What they wrote to each other is nobody else's.
        assert max(counts[:2]) < counts[2] <= sum(counts[:2]), before

    def search_in_scripts(self):
        for script in SCRIPTS:
            log = json.loads(self.desktop.run(self.export, "--format", "json", next(
                path for path in self.paths if self.matching(path, script))))
            text = next(event["text"] for event in log["events"]
                        if re.search(script, event.get("text") or ""))
            word = re.search(script, text)[0]
            self.search(word)
            wait_for(lambda: any(word in row for row in self.found()), f"{word} to be found")

    def matching(self, path, script):
        return re.search(script, self.desktop.text(self.export, "--format", "text", path))

    def go_to_hit(self):
        self.search("from:karim in:2012 ")
        hit = wait_for(lambda: next((row for row in self.found() if "2012" in row), None), "a hit")
        self.keys("Return")
        line = hit.split(": ", 1)[1].rstrip("…")[:12]
        wait_for(lambda: any(line in row for row in self.rows()), f"{line!r} in the chat")

    def save_chat(self):
        """All sessions with somebody in one file."""
        self.keys("ctrl+shift+f", "Escape")
        self.click(self.person("karim"))
        wait_for(lambda: self.rows(), "the chat with karim")
        for key, title, name in (("ctrl+s", "Save Chat", "karim.md"),
                                 ("ctrl+shift+e", "Export Chat", "karim.pdf")):
            target = self.desktop.path(name)
            self.keys(key)
            self.desktop.activate(self.desktop.window(title))
            self.desktop.run("xdotool", "key", "ctrl+a")
            self.desktop.run("xdotool", "type", "--delay", "5", target)
            self.desktop.run("xdotool", "key", "Return")
            wait_for(lambda: os.path.exists(target) and os.path.getsize(target) > 50000, name)

    def follow_files(self):
        self.keys("ctrl+shift+f", "Escape")
        self.copy_in("Two umbrellas.ichat", "new.ichat")
        self.wait_state(f"{self.count + 1:,} conversations")
        self.person("oskar@chat.example.net")
        with open(os.path.join(self.folder, "broken.ichat"), "wb") as file:
            file.write(b"no transcript")
        self.wait_broken()
        self.copy_in("The cat in the bathtub.ichat", "new.ichat")
        self.person("jonas_at_home")
        os.remove(os.path.join(self.folder, "new.ichat"))
        self.wait_state(f"{self.count:,} conversations")

    def list_broken_files(self):
        a11y.press(self.wait_broken())
        dialog = a11y.window(a11y.named("Files That Couldn’t Be Read"))
        a11y.wait_find(dialog, "table cell", a11y.named("broken.ichat"))
        self.desktop.activate(self.desktop.window("Files That"))
        self.desktop.run("xdotool", "key", "Escape")

    def show_statistics(self):
        self.keys("ctrl+shift+s")
        a11y.wait_find(self.window, "label", a11y.holding("Longest silence"), rows=False)
        charts = a11y.all(self.window, None, a11y.named("Messages by year"), rows=False)
        assert any("2003: " in chart.description for chart in charts), charts
        self.keys("ctrl+shift+s")

    def quit_and_damage(self):
        self.keys("ctrl+q")
        wait_for(lambda: self.running.poll() == 0, "the end of the program")
        index = os.path.join(self.desktop.environment["XDG_CACHE_HOME"],
                             "vell/library/messages.sqlite")
        assert os.stat(index).st_mode & 0o777 == 0o600
        with open(index, "r+b") as file:
            file.write(b"\0" * 4096)
        self.start_again("was damaged and has been made again")
        self.person("haruka")
        self.kill()
        self.remove_index(index)
        os.mkdir(index)
        self.start_again("can’t be used")
        self.kill()
        os.rmdir(index)
        self.remove_index(index)
        self.start_again("can’t be used", preexec_fn=fill_disk)
        assert self.desktop.start(self.vell, self.paths[0]).wait(60) == 0
        a11y.window(lambda name: "2003" in name, "frame")

    def kill(self):
        self.running.send_signal(signal.SIGKILL)
        wait_for(lambda: self.running.poll() is not None, "the program to be killed")

    def remove_index(self, index):
        for ending in ("", "-wal", "-shm"):
            if os.path.exists(index + ending):
                os.remove(index + ending)

    def start_again(self, notice, **options):
        self.running = self.desktop.start(self.vell, **options)
        welcome = a11y.window(a11y.named("Welcome to Vell"))
        a11y.press(a11y.wait_find(welcome, "button", a11y.named("Library")))
        self.has_found(a11y.window(a11y.named("Library"), "frame"))
        self.wait_state(notice)


def fill_disk():
    """No file may become larger, as on a full disk."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (300_000, 300_000))


def welcome_is_open():
    return bool(a11y.windows(None, a11y.named("Welcome to Vell")))


need_accessibility()
with Desktop(LC_ALL="en_GB.UTF-8") as desktop:
    a11y = desktop.accessible()
    library = Library(desktop, *sys.argv[1:5])
    a11y.play(library.add_folder, library.watch_progress, library.choose_person,
              library.read_across_sessions, library.join_addresses, library.search_in_scripts,
              library.go_to_hit, library.save_chat, library.follow_files, library.list_broken_files,
              library.show_statistics, library.quit_and_damage)
