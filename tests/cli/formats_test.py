# SPDX-License-Identifier: MIT
"""formats_test.py VELL_EXPORT HOSTILE_CHAT SCHEMA FILE…: every format, read by readers that others wrote,
holds the same messages as the JSON does, which its schema describes."""
import base64
import csv
import hashlib
import html.parser
import io
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
import xml.etree.ElementTree

export, hostile_chat, schema_path, *all_files = sys.argv[1:]
files = all_files[::3]  # each kind is among them

NUMBERED = 3000  # messages
CONTENT = ("plainText", "link", "image", "file")


def run(*arguments, file):
    result = subprocess.run([export, "-q", "-v", *arguments, file], capture_output=True)
    assert result.returncode == 0, result.stderr
    return result.stdout


def stated_count(file, name):
    result = subprocess.run([export, "-v", "-f", name, file], capture_output=True, text=True)
    return int(result.stderr.splitlines()[-1].rsplit(": ", 1)[1].split()[0])


def content_of(file):
    events = json.loads(run("-f", "json", file=file))["events"]
    return [event for event in events if event["kind"] in CONTENT]


def expected_cell(text):
    return (text or "").replace("\0", "\ufffd")


def undone(cell):
    """Undoes what keeps spreadsheets from running a cell."""
    return cell[1:] if cell.startswith("'") else cell


class Page(html.parser.HTMLParser):
    """A page's messages, and whatever shouldn't be in it."""

    ELEMENTS = set("html head meta title style body header main h1 h2 p b span time article div br a img"
                   .split())
    ATTRIBUTES = set("lang dir charset http-equiv content name id class datetime rel href alt width"
                     " height src".split())
    SCHEMES = ("http:", "https:", "mailto:", "ftp:", "aim:", "xmpp:", "facetime:", "tel:")
    EMPTY = ("meta", "br", "img")

    def __init__(self, text, attachments=()):
        super().__init__()
        self.attachments, self.attached = attachments, set()
        self.messages, self.titles, self.names, self.faults, self.ids = {}, [], [], [], []
        self.policy, self.style, self.open, self.pictures = "", "", [], []
        self.feed(text)
        self.close()
        self.faults += [f"{name} is open" for name, _ in self.open]

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if tag not in self.ELEMENTS or not values.keys() <= self.ATTRIBUTES:
            self.faults.append((tag, attributes))
        for name, allowed in (("href", self.SCHEMES), ("src", "data:image/")):
            address = values.get(name, "")
            path = urllib.parse.unquote(address)
            if path in self.attachments and not re.search("[:?#]", address):
                self.attached.add(path)
            elif address and not address.lower().startswith(allowed):
                self.faults.append(address)
        if values.get("http-equiv") == "Content-Security-Policy":
            self.policy = values["content"]
        if "id" in values:
            self.ids.append(values["id"])
        if values.get("id", "").startswith("m"):
            self.message = int(values["id"][1:])
            self.messages[self.message] = ""
        if tag == "br":
            self.handle_data("\n")
        if tag == "img":
            self.messages[self.message] += "Picture: " + values["alt"]
            self.pictures.append(values["src"])
        if tag not in self.EMPTY:
            self.open.append((tag, values.get("class", "").split(" ")[0]))

    def handle_endtag(self, tag):
        if not self.open or self.open.pop()[0] != tag:
            self.faults.append(tag)

    def handle_data(self, data):
        places = [place for _, place in self.open]
        if "bubble" in places or "file" in places or "system" in places:
            self.messages[self.message] += data
        elif self.open and self.open[-1][0] in ("title", "h1"):
            self.titles.append(data)
        elif self.open and self.open[-1][0] == "b":
            self.names.append(data)
        elif self.open and self.open[-1][0] == "style":
            self.style += data
        elif data.strip() and not ({"time", "span"} & {tag for tag, _ in self.open}
                                   or ("h2", "session") in self.open):
            self.faults.append(data)

    def handle_comment(self, data):
        self.faults.append(data)


class Index(html.parser.HTMLParser):
    """Where an index leads, with how many messages are there."""

    ELEMENTS = set("html head meta title style body header main nav section h1 h2 p ul li a span div"
                   " table thead tbody tr th td details summary small".split())

    def __init__(self, text):
        super().__init__()
        self.links, self.faults, self.address = {}, [], None
        self.totals = [[0, 0]]  # as stated and as linked: of all, then of each person
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if tag not in self.ELEMENTS or any(name.startswith("on") for name in values):
            self.faults.append((tag, attributes))
        if tag == "section":
            self.totals.append([0, 0])
        address = values.get("href", "#")
        if re.search("^[a-z]+:", address):
            self.faults.append(address)
        self.address = address if not address.startswith("#") else None

    def handle_endtag(self, tag):
        if tag in ("a", "td"):
            self.address = None

    def handle_data(self, data):
        if self.address and data.strip():
            self.links[self.address] = int(data.replace(",", ""))
            self.totals[-1][1] += self.links[self.address]
        stated = re.search("pages?, ([0-9,]+) messages?$", data)
        if stated:
            self.totals[-1][0] = int(stated[1].replace(",", ""))


def page_text(event):
    """What a page shows of an event."""
    if event["kind"] == "link":
        address, title = event["url"], event["title"]
        plain = address.lower().startswith(Page.SCHEMES) and not any(c <= " " or c == "\\" for c in address)
        text = address if title == address else title if plain else f"{title} ({address})"
    elif event["kind"] == "image":
        text = "Picture: " + (event["path"] or "").rsplit("/", 1)[-1]
    elif event["kind"] == "file":
        text = f"File: {event['fileName'] or 'unnamed'} ({event['byteCount']} bytes)"
    else:
        text = event["text"]
    return as_shown(text)


def as_shown(text):
    return text.replace("\r\n", "\n").replace("\r", "\n").replace("\0", "\ufffd")


class Formats(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.hostile = os.path.join(cls.folder.name, "<b> &'\"=.ichat")
        subprocess.run([hostile_chat, cls.hostile], check=True)
        cls.files = [*files, cls.hostile]

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_json_is_what_its_schema_describes(self):
        try:
            import jsonschema
        except ImportError:
            self.skipTest("python3-jsonschema is not installed")
        with open(schema_path) as text:
            schema = json.load(text)
        validator = jsonschema.Draft202012Validator
        validator.check_schema(schema)
        line = validator({**schema, "$ref": "#/$defs/line", "properties": {}, "required": [],
                          "additionalProperties": True})
        for file in self.files:
            with self.subTest(file):
                document = json.loads(run("-f", "json", file=file))
                validator(schema).validate(document)
                lines = [json.loads(text) for text in run("-f", "jsonl", file=file).splitlines()]
                for each in lines:
                    line.validate(each)
                self.assertEqual([{"file": file, **event} for event in document["events"]], lines)
        for broken in ({"text": 1}, {"kind": "call"}, {"more": 1}, {"sequence": 0}):
            text = next(event for event in document["events"] if event["kind"] == "plainText")
            self.assertFalse(validator(schema).is_valid({**document, "events": [{**text, **broken}]}))

    def test_csv_holds_every_text_for_each_reader(self):
        for file in self.files:
            with self.subTest(file):
                written = run("-f", "csv", file=file)
                rows = list(csv.reader(io.StringIO(written.decode(), newline=""), strict=True))
                self.assertEqual(rows[0], "file,sequence,timestamp,service,user,name,kind,text,address"
                                 .split(","))
                self.assertEqual(self.rows_of_sqlite(written), rows[1:])
                content = content_of(file)
                self.assertEqual(len(rows) - 1, len(content))
                for row, event in zip(rows[1:], content):
                    sender = event["sender"] or {"userID": ""}
                    cells = [undone(cell) for cell in row]
                    self.assertEqual(cells[0], file)
                    self.assertEqual(cells[1:3], [str(event["sequence"]), event["timestamp"] or ""])
                    self.assertEqual(cells[4], expected_cell(sender["userID"]))
                    self.assertEqual(cells[6], event["kind"])
                    if "text" in event or "title" in event:
                        text = event.get("text", event.get("title"))
                        self.assertEqual(cells[7], expected_cell(text))
                    self.assertEqual(cells[8], expected_cell(event.get("url", event.get("path"))))
                    for cell in row:
                        self.assertNotIn(cell.strip("\u200b \t\r\n")[:1] or " ", "=+-@\uff1d\uff0b\uff0d\uff20")

    def rows_of_sqlite(self, written):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "chat.csv")
            with open(path, "wb") as file:
                file.write(written)
            script = ".import --csv chat.csv chat\nSELECT json_array(" + ",".join(
                "file sequence timestamp service user name kind text address".split()) + ") FROM chat;"
            result = subprocess.run(["sqlite3", ":memory:"], input=script.encode(), cwd=folder,
                                    capture_output=True, check=True)
            self.assertEqual(result.stderr, b"")
            return [json.loads(line) for line in result.stdout.decode().split("\n")[:-1]]

    def test_a_page_shows_every_text_and_holds_nothing_else(self):
        for file in self.files:
            with self.subTest(file):
                page = Page(run("-f", "html", file=file).decode())
                self.assertEqual(page.faults, [])
                self.assertEqual(len(page.ids), len(set(page.ids)))
                digest = base64.b64encode(hashlib.sha256(page.style.encode()).digest()).decode()
                self.assertEqual(page.policy, f"default-src 'none'; style-src 'sha256-{digest}'; "
                                 "img-src data:; base-uri 'none'; form-action 'none'")
                title = os.path.splitext(os.path.basename(file))[0]
                self.assertEqual(page.titles, [title, title])
                senders, texts = [], {}
                for event in content_of(file):
                    if event["sequence"] in page.messages:
                        first = event["sequence"]
                        texts[first] = ""
                        senders += [event["sender"]["userID"]] if event["sender"] else []
                    texts[first] += page_text(event)
                self.assertEqual("".join(page.names), "".join(as_shown(name) for name in senders))
                for first, text in texts.items():
                    shown = re.sub(r"Picture: picture\.(png|jpe?g|gif|tiff|bmp|pdf)", "Picture: ",
                                   page.messages[first])
                    shown = re.sub(r"Folder: (.*?) \(\d+ entr\w+\)", r"File: \1 (None bytes)", shown)
                    self.assertEqual(shown, text)
        without = run("-f", "html", "--pictures", "none", file=self.hostile)
        self.assertNotIn(b"<img", without)

    def test_embedded_pictures_are_whole(self):
        largest = 0
        for file in [*all_files, self.hostile]:
            hashes = {event.get("sha256") for event in content_of(file)}
            for address in Page(run("-f", "html", file=file).decode()).pictures:
                picture = base64.b64decode(address.split(";base64,")[1], validate=True)
                self.assertIn(hashlib.sha256(picture).hexdigest(), hashes)
                largest = max(largest, len(picture))
        self.assertGreater(largest, 50_000)

    def test_attachments_are_where_documents_say(self):
        for file in self.files:
            with self.subTest(file), tempfile.TemporaryDirectory() as folder:
                documents = {}
                for name in ("json", "csv", "html", "markdown"):
                    run("-f", name, "-d", f"{folder}/out", "--attachments", f"{folder}/files", file=file)
                for path in os.listdir(f"{folder}/out"):
                    with open(f"{folder}/out/{path}", encoding="utf-8", newline="") as document:
                        documents[os.path.splitext(path)[1]] = document.read()
                attached = {event["sequence"]: event for event in json.loads(documents[".json"])["events"]
                            if "attachment" in event}
                paths = {event["attachment"] for event in attached.values()}
                for place, _, names in os.walk(f"{folder}/files"):
                    for name in names:
                        path = os.path.relpath(os.path.join(place, name), f"{folder}/out")
                        self.assertTrue(path in paths or os.path.dirname(path) in paths, path)
                for event in content_of(file):
                    if event["kind"] not in ("image", "file") or event["byteCount"] is None:
                        continue
                    path = os.path.join(folder, "out", attached[event["sequence"]]["attachment"])
                    with open(path, "rb") as stored:
                        self.assertEqual(hashlib.sha256(stored.read()).hexdigest(), event["sha256"])
                times = {event["attachment"]: [] for event in attached.values()
                         if event["byteCount"] is not None}
                for event in attached.values():
                    if event["attachment"] in times:
                        times[event["attachment"]].append(event["secondsSinceReferenceDate"])
                for path, dates in times.items():
                    written = os.stat(os.path.join(folder, "out", path)).st_mtime - 978307200
                    self.assertTrue(any(abs(written - date) < 1 for date in dates))
                rows = csv.DictReader(io.StringIO(documents[".csv"], newline=""))
                addresses = {int(row["sequence"]): undone(row["address"]) for row in rows}
                for sequence, event in attached.items():
                    self.assertEqual(addresses[sequence], event["attachment"])
                page = Page(documents[".html"], paths)
                self.assertEqual((page.faults, page.attached), ([], paths))
                tree = subprocess.run(["cmark", "-t", "xml"], input=documents[".md"].encode(),
                                      capture_output=True, check=True).stdout
                linked = {urllib.parse.unquote(node.get("destination"))
                          for node in xml.etree.ElementTree.fromstring(tree).iter()
                          if node.get("destination")}
                self.assertLessEqual(paths, linked)

    def test_an_index_leads_to_all_messages_of_merged_chats(self):
        with tempfile.TemporaryDirectory() as folder:
            chats = os.path.join(folder, "chats")
            os.mkdir(chats)
            for number, file in enumerate([*all_files, *all_files[:9], self.hostile]):
                shutil.copy(file, os.path.join(chats, f"{number}.ichat"))
            for name in ("json", "html"):
                subprocess.run([export, "-qf", name, "--merge", "--time-zone", "UTC", "-d",
                                f"{folder}/{name}", *(["--index"] if name == "html" else []), chats],
                               check=True)
            merged, single = set(), set()
            for place, _, names in os.walk(f"{folder}/json"):
                for name in names:
                    with open(os.path.join(place, name)) as document:
                        events = [event for event in json.load(document)["events"]
                                  if event["kind"] in CONTENT]
                    years = {(event["timestamp"] or "undated")[:4] for event in events}
                    self.assertEqual(years - {os.path.splitext(name)[0].zfill(4)[:4]}, set())
                    merged |= {json.dumps({**event, "sequence": 0}) for event in events}
            for file in [*all_files, self.hostile]:
                single |= {json.dumps({**event, "sequence": 0}) for event in content_of(file)}
            self.assertEqual({json.loads(event).get("text") for event in single},
                             {json.loads(event).get("text") for event in merged})
            with open(f"{folder}/html/index.html", encoding="utf-8", newline="") as page:
                index = Index(page.read())
            self.assertEqual(index.faults, [])
            index.totals[0][1] = sum(linked for _, linked in index.totals[1:])
            self.assertTrue(all(stated == linked > 0 for stated, linked in index.totals), index.totals)
            shown = 0
            for address, count in index.links.items():
                path, anchor = address.split("#")
                with open(os.path.join(folder, "html", urllib.parse.unquote(path)), newline="") as page:
                    target = Page(page.read())
                self.assertEqual(target.faults, [])
                self.assertIn(anchor, target.ids)
                if anchor.startswith("day-"):
                    month = anchor.rsplit("-", 1)[0]
                    self.assertEqual(anchor, next(each for each in target.ids if each.startswith(month)))
                shown += count
            pages = {urllib.parse.unquote(address.split("#")[0]) for address in index.links}
            self.assertEqual(pages, {os.path.relpath(os.path.join(place, name), f"{folder}/html")
                                     for place, _, names in os.walk(f"{folder}/html")
                                     for name in names if name != "index.html"})
            messages = 0
            for page in pages:
                with open(os.path.join(folder, "html", page), newline="") as text:
                    messages += len(Page(text.read()).messages)
            self.assertEqual(shown, messages)

    def test_documents_in_one_stream_are_one_table(self):
        two = subprocess.run([export, "-f", "csv", "--byte-order-mark", files[0], self.hostile],
                             capture_output=True, check=True).stdout
        one = run("-f", "csv", file=files[0])
        other = run("-f", "csv", file=self.hostile)
        self.assertEqual(two, b"\xef\xbb\xbf" + one + other.split(b"\r\n", 1)[1])

    def test_every_format_has_each_message_once_and_in_order(self):
        for form in ([], ["non-keyed"]):
            file = os.path.join(self.folder.name, "numbered.ichat")
            subprocess.run([hostile_chat, file, str(NUMBERED), *form], check=True)
            for name in ("markdown", "text", "html", "csv", "json", "jsonl"):
                with self.subTest(format=name, form=form):
                    document = run("-f", name, file=file).decode()
                    numbers = re.findall("n([0-9]{5})n", document)
                    self.assertEqual(numbers, [f"{number:05}" for number in range(NUMBERED)])
                    self.assertEqual(stated_count(file, name), NUMBERED)

    def test_events_are_as_many_as_stated_beside_the_transcripts(self):
        for file in all_files:
            expected = os.path.splitext(file)[0] + ".json"
            if not os.path.exists(expected):
                continue
            with self.subTest(file), open(expected, encoding="utf-8") as text:
                count = sum(event["kind"] in CONTENT for event in json.load(text)["events"])
                table = csv.reader(io.StringIO(run("-f", "csv", file=file).decode(), newline=""))
                self.assertEqual(len(list(table)) - 1, count)
                self.assertEqual(len(run("-f", "jsonl", file=file).splitlines()), len(
                    json.loads(run("-f", "json", file=file))["events"]))
                self.assertEqual(len(content_of(file)), count)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
