# SPDX-License-Identifier: MIT
"""formats_test.py VELL_EXPORT HOSTILE_CHAT SCHEMA FILE…: every format, read by readers that others wrote,
holds the same messages as the JSON does, which its schema describes."""
import csv
import io
import json
import os
import subprocess
import sys
import tempfile
import unittest

export, hostile_chat, schema_path, *files = sys.argv[1:]

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
                        self.assertNotIn(cell.strip()[:1], ("=", "+", "-", "@", "\uff1d"))

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

    def test_documents_in_one_stream_are_one_table(self):
        two = subprocess.run([export, "-f", "csv", "--byte-order-mark", files[0], self.hostile],
                             capture_output=True, check=True).stdout
        one = run("-f", "csv", file=files[0])
        other = run("-f", "csv", file=self.hostile)
        self.assertEqual(two, b"\xef\xbb\xbf" + one + other.split(b"\r\n", 1)[1])

    def test_every_format_states_as_many_messages(self):
        for file in self.files:
            counts = {name: stated_count(file, name)
                      for name in ("markdown", "text", "json", "jsonl", "csv")}
            self.assertEqual(len(set(counts.values())), 1, counts)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
