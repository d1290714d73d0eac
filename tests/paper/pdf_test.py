#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reads PDFs that vell writes with other programs: every message is in them once and in order,
with the days as outline and with live links.

usage: pdf_test.py VELL VELL-EXPORT MAKE-ARCHIVE HOSTILE-CHAT FOLDER…  with transcripts in all scripts
"""

import collections
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unicodedata

VELL, EXPORT, ARCHIVE, HOSTILE = sys.argv[1:5]
MESSAGES = 2000
NUMBERED = 10_000  # messages
NEAR = 1000  # characters between two messages: captions, times, headings of pages

failures = []


def check(condition, complaint):
    if not condition:
        failures.append(complaint)
        print("FAILED:", complaint)


def run(*command):
    done = subprocess.run(command, capture_output=True, timeout=300, check=False)
    check(done.returncode == 0, f"{command[0]} ended with {done.returncode}: {done.stderr[-500:]}")
    return done.stdout


def plain(text):
    """The text without blanks and without characters that aren't seen."""
    def is_seen(c):
        return not c.isspace() and unicodedata.category(c) not in ("Cf", "Cc") and c != "\ufffc"
    return "".join(filter(is_seen, text))


def is_mixed(text):
    return any(unicodedata.bidirectional(c) in ("R", "AL", "AN") for c in text)


def messages(transcript):
    """The texts that the timeline shows in bubbles and lines, the addresses of its links, and how
    many days have a heading."""
    texts, links, days = [], [], 0
    for line in run(EXPORT, "--format", "jsonl", transcript).decode().split("\n")[:-1]:
        event = json.loads(line)
        days += event["kind"] == "newDay"
        text = event.get("title") or event.get("text")
        if text and plain(text):
            texts.append(text)
        if event.get("url"):
            links.append(event["url"])
    return texts, links, days


def check_texts(name, texts, shown):
    at, room = 0, NEAR
    for text in texts:
        room += len(text)
        if is_mixed(text):
            # Readers of PDFs disagree on the order of words in both directions on one line.
            for word in re.findall(r"\w+", text):
                check(plain(word) in shown[at : at + room], f"{name}: no {word!r} in its place")
            room += NEAR
            continue
        text = plain(text)
        found = shown.find(text, at)
        check(0 <= found < at + room, f"{name}: no {text[:60]!r} in its place")
        at, room = max(found, at) + len(text), NEAR
    straight = [plain(text) for text in texts if not is_mixed(text)]
    everything = "\n".join(straight)
    for text, count in collections.Counter(t for t in straight if len(t) > 30).items():
        if everything.count(text) == count:
            check(shown.count(text) == count, f"{name}: {text[:60]!r} {shown.count(text)} times")


def entries(outline, level=0):
    """Level, page, and how far down on it; deeper ones are to be folded."""
    for entry in outline:
        yield level, entry["destpageposfrom1"], -entry["dest"][3]
        check(not entry["open"] or not entry["kids"], f"{entry['title']} is unfolded")
        yield from entries(entry["kids"], level + 1)


def check_links(name, pdf):
    """Each leads somewhere from an area within its page, and is there once."""
    objects = json.loads(run("qpdf", "--json=1", "--json-key=objects", pdf))["objects"].values()
    areas = []
    for page in (each for each in objects if isinstance(each, dict) and each.get("/Type") == "/Page"):
        _, _, width, height = page["/MediaBox"]
        for link in page.get("/Annots", []):
            left, bottom, right, top = link["/Rect"]
            check(0 < left < right < width and 0 < bottom < top < height, f"{name}: {link['/Rect']}")
            areas.append((*page["/Contents"].split(), left, top))
    check(len(areas) == len(set(areas)), f"{name}: a link is there twice")
    entries_back = [each for each in objects if isinstance(each, dict) and "/Prev" in each]
    entries_on = [each for each in objects if isinstance(each, dict) and "/Next" in each]
    check(len(entries_back) == len(entries_on), f"{name}: the outline leads one way only")
    return len(areas)


def check_document(name, transcript, folder):
    pdf = folder / "out.pdf"
    run(VELL, "--render", pdf, transcript)
    complaints = run("qpdf", "--check", pdf).decode()
    check("No syntax or stream encoding errors" in complaints, f"{name}: {complaints}")
    texts, links, days = messages(transcript)
    check_texts(name, texts, plain(run("pdftotext", "-raw", pdf, "-").decode()))

    objects = json.loads(run("qpdf", "--json", "--json-key=outlines", "--json-key=pages", pdf))
    marks = list(entries(objects["outlines"]))
    days_at = [(page, down) for level, page, down in marks if level == 2]
    shown_days = len(days_at)
    expected = days or min(len(texts), 1)  # what has no day of its own may have no heading
    check(shown_days == expected, f"{name}: {shown_days} of {expected} days in the outline")
    check(sorted(set(days_at)) == days_at, f"{name}: days out of order, or at the same place")
    shown = check_links(name, pdf)
    plain_links = [link for link in links if link.startswith(("http:", "https:", "mailto:"))]
    check(shown >= len(plain_links), f"{name}: {shown} of {len(plain_links)} links")
    shown_links = run("pdfinfo", "-url", pdf).decode()
    for link in plain_links:
        check(link in shown_links, f"{name}: no link to {link}")
    images = run("pdfimages", "-list", pdf).decode().split("\n")[2:]
    masks = sum(" smask " in image for image in images)
    check(masks <= len(images) / 3, f"{name}: {masks} of {len(images)} pictures are masks")
    title = run("pdfinfo", pdf).decode()
    check(pathlib.Path(transcript).stem in title, f"{name}: no title in {title}")
    return len(objects["pages"])


def check_numbers(folder):
    """Each message begins with its number, whatever else it holds."""
    chat, pdf = folder / "numbered.ichat", folder / "out.pdf"
    run(HOSTILE, chat, str(NUMBERED))
    run(VELL, "--render", pdf, chat)
    numbers = re.findall("n([0-9]{5})n", run("pdftotext", "-raw", pdf, "-").decode())
    check(numbers == [f"{number:05}" for number in range(NUMBERED)],
          f"{len(numbers)} of {NUMBERED} messages, or not in order")
    complaints = run("qpdf", "--check", pdf).decode()
    check("No syntax or stream encoding errors" in complaints, complaints)
    outline = json.loads(run("qpdf", "--json", "--json-key=outlines", pdf))["outlines"]
    check(all(month["kids"] for year in outline for month in year["kids"]), "a day in no month")
    levels = collections.Counter(level for level, _, _ in entries(outline))
    check(levels[0] == levels[1] == 3, f"{levels} for one month in each of three years")


def main():
    missing = [tool for tool in ("qpdf", "pdftotext", "pdfinfo", "pdfimages") if not shutil.which(tool)]
    if missing:
        print("skipped: there is no", ", ".join(missing))
        sys.exit(77)
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary)
        for place in sys.argv[5:]:
            for transcript in sorted(pathlib.Path(place).glob("*.ichat")):
                check_document(transcript.stem, transcript, folder)
        run(ARCHIVE, folder / "archive", "1", str(MESSAGES), "2")
        made = next((folder / "archive").rglob("*.ichat"))
        pages = check_document("many messages", made, folder)
        check(pages > MESSAGES / 40, f"only {pages} pages")
        check_numbers(folder)
        gone = subprocess.run([VELL, "--render", "/dev/full/out.pdf", made], capture_output=True)
        check(gone.returncode == 1 and b"can't be written" in gone.stderr, "a target that isn't there")
    sys.exit(bool(failures))


main()
