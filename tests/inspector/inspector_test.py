# SPDX-License-Identifier: MIT
"""inspector_test.py VELL_EXPORT SAMPLES: archives as text, against another reader of property lists.
VELL_ARCHIVES may name a folder with more of them."""
import os
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest

export, samples = sys.argv[1:3]


def shown(path):
    run = subprocess.run([export, "-f", "archive", path], capture_output=True)
    return run.returncode, run.stdout.decode().splitlines()


def archives():
    for root in (samples, os.environ.get("VELL_ARCHIVES")):
        for folder, _, names in os.walk(root or "/nonexistent"):
            yield from (os.path.join(folder, name) for name in names)


class Inspector(unittest.TestCase):
    def test_every_object_and_reference_is_there_once(self):
        seen = 0
        for path in archives():
            try:
                with open(path, "rb") as file:
                    archive = plistlib.load(file)
                objects = archive["$objects"]
            except Exception:  # another kind of file
                continue
            with self.subTest(path=path):
                status, lines = shown(path)
                self.assertEqual(status, 0)
                heads = [int(match[1]) for line in lines if (match := re.match(r"#(\d+)( |$)", line))]
                values = dict(line.split(" = ", 1) for line in lines if " = " in line)
                self.assertEqual(heads, list(range(len(objects))))
                for number, value in enumerate(objects):
                    for key, part in value.items() if isinstance(value, dict) else ():
                        value = values[f"#{number}.{key}"]
                        if isinstance(part, plistlib.UID):
                            self.assertEqual(value, f"#{part.data}")
                        elif isinstance(part, str) and part.isascii() and part.isprintable():
                            quoted = part.replace("\\", "\\\\").replace('"', '\\"')
                            self.assertEqual(value, f'"{quoted}"')
                seen += 1
        self.assertGreater(seen, 0)

    def test_non_keyed_archives_show_to_their_end(self):
        for path in archives():
            with open(path, "rb") as file:
                data = file.read()
            if data[2:13] not in (b"streamtyped", b"typedstream") or "bad_" in path:
                continue
            with self.subTest(path=path):
                status, lines = shown(path)
                self.assertEqual(status, 0)
                named = {match[1] for line in lines if (match := re.match(r"(#\d+) (?:@|class)", line))}
                named |= {match[1] for line in lines if (match := re.search(r'= (#\d+) "', line))}
                for line in lines:
                    if match := re.search(r"= (#\d+)(?: \(.\))?$", line):
                        self.assertIn(match[1], named)

    def test_damage_is_reported_behind_all_that_can_be_read(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "cut")
            stream = b"\x04\x0bstreamtyped\x81\xe8\x03\x84\x01@\x84\x84\x84\x01A\x00\x85\x84\x01i\x05\x92"
            with open(path, "wb") as file:
                file.write(stream)
            self.assertEqual(shown(path), (1, [
                "non-keyed archive, little-endian", "root[0] = #0", "#0 @19 A", "#0[0] = 5 (i)",
                "#1 @20 class A, version 0"]))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
