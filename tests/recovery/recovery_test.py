# SPDX-License-Identifier: MIT
"""recovery_test.py VELL_EXPORT [COUNT [SEED]]: transcripts of all three forms are damaged, by a cut or by
single bytes, and recovered. The transcripts are written here, without a line of the program."""
import collections
import difflib
import json
import os
import plistlib
import random
import re
import struct
import subprocess
import sys
import tempfile
import unittest

export = sys.argv[1]
COUNT = int(sys.argv[2]) if len(sys.argv) > 2 else 40
SEED = int(sys.argv[3]) if len(sys.argv) > 3 else 7
WORDS = "lamp cat bathtub umbrella räv \u2603 tea \U0001f408 the a we never always <b> & maybe".split()


class Chat:
    def __init__(self, dice):
        people = [f"{name}{dice.randrange(100)}" for name in dice.sample(["ann", "bob", "cleo", "dan"],
                                                                      dice.randint(2, 4))]
        self.people = people
        self.is_big_endian = dice.random() < 0.5
        time = dice.randrange(10**8, 6 * 10**8)
        self.messages = []
        for number in range(dice.randint(20, 120)):
            time += dice.randrange(1, 5000) / 4
            text = f"{number} " + " ".join(dice.choices(WORDS, k=dice.randint(1, 30)))
            sender = None if dice.random() < 0.04 else dice.choice(people)
            self.messages.append((sender, time, text))


def keyed(chat, xml):
    """The bytes, and the parts of each message."""
    objects = ["$null"]
    known = {}

    def add(value, key=None):
        if key is not None and key in known:
            return known[key]
        objects.append(value)
        uid = plistlib.UID(len(objects) - 1)
        if key is not None:
            known[key] = uid
        return uid

    def of_class(name, *superclasses):
        return add({"$classname": name, "$classes": [name, *superclasses, "NSObject"]}, ("class", name))

    def array(elements, name="NSArray"):
        return add({"NS.objects": elements, "$class": of_class(name)})

    root = add({})
    service = add("AIM")
    listed = add({})

    def person(name):
        if ("person", name) not in known:
            uid = add({}, ("person", name))
            objects[uid.data] = {"ID": add(name), "ServiceName": service, "$class": of_class("Presentity")}
        return known["person", name]

    plain = None
    messages = []
    for sender, time, text in chat.messages:
        self = add({})
        body = {"Sender": person(sender)} if sender else {}
        body["Time"] = add({"NS.time": time, "$class": of_class("NSDate")})
        string = add({"NS.string": text, "$class": of_class("NSMutableString", "NSString")})
        if plain is None:
            plain = add({"NS.keys": [], "NS.objects": [], "$class": of_class("NSDictionary")})
        body["MessageText"] = add({"NSString": string, "NSAttributes": plain,
                                   "$class": of_class("NSAttributedString")})
        body["$class"] = of_class("InstantMessage")
        objects[self.data] = body
        messages.append(self)
    objects[listed.data] = {"NS.objects": messages, "$class": of_class("NSMutableArray", "NSArray")}
    participants = array([person(name) for name in chat.people[1:]])
    empty = add("")
    objects[root.data] = {"NS.objects": [service, empty, listed, participants, empty, add(0), empty, empty],
                          "$class": of_class("NSArray")}
    archive = {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": root},
               "$objects": objects}
    numbers = [uid.data for uid in messages]
    if xml:
        links = [[uid.data for uid in uids_in(value)] for value in objects]
        archive["$top"] = without_uids(archive["$top"])
        archive["$objects"] = [without_uids(value) for value in objects]
    data = plistlib.dumps(archive, fmt=plistlib.FMT_XML if xml else plistlib.FMT_BINARY,
                          sort_keys=xml)
    if xml:
        spans = xml_spans(data)
        references = [[] for _ in spans]
    else:
        numbers, links, spans, references = binary_parts(data, numbers)
    return data, parts_of(numbers, links, spans, references)


def uids_in(value):
    if isinstance(value, plistlib.UID):
        yield value
    for part in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        yield from uids_in(part)


def without_uids(value):
    if isinstance(value, plistlib.UID):
        return {"CF$UID": value.data}
    if isinstance(value, dict):
        return {key: without_uids(part) for key, part in value.items()}
    if isinstance(value, list):
        return [without_uids(part) for part in value]
    return value


def parts_of(messages, links, spans, references):
    """Of each message: where the objects lie that only it leads to; those that others share, and what else
    leads to any of them."""
    reached = []
    for message in messages:
        found, new = {message}, [message]
        while new:
            new = [link for link in links[new.pop()] if link not in found] + new
            found.update(new)
        reached.append(found)
    users = collections.Counter(link for found in reached for link in found)
    return [([spans[link] for link in found if users[link] == 1],
             [spans[link] for link in found if users[link] > 1] +
             [place for link in found for place in references[link]]) for found in reached]


def xml_spans(data):
    starts = []
    at = data.index(b"<key>$objects</key>")
    while (at := data.find(b"\n\t\t<", at + 1)) >= 0:
        if data[at + 4:at + 5] != b"/" and at < data.index(b"\n\t</array>"):
            starts.append(at)
    starts.append(data.index(b"\n\t</array>"))
    return list(zip(starts, starts[1:]))


def binary_parts(data, messages):
    """The objects of messages, what each object leads to, where each lies, and the places of its offset and its
    number."""
    size, ref, count, _, table = data[-26], data[-25], *struct.unpack(">QQQ", data[-24:])
    offsets = [int.from_bytes(data[table + i * size:table + (i + 1) * size], "big") for i in range(count)]
    spans = list(zip(offsets, [*offsets[1:], table]))
    null = next(i for i in range(count) if data.startswith(b"\x55$null", offsets[i]))
    array = max((i for i in range(count) if data[offsets[i]] >> 4 == 0xa and
                 refs_of(data, offsets[i], ref)[:1] == [null]), key=lambda i: len(refs_of(data, offsets[i], ref)))
    elements = refs_of(data, offsets[array], ref)
    references = [[(table + i * size, table + (i + 1) * size)] for i in range(count)]
    first = spans[array][1] - len(elements) * ref
    for uid, element in enumerate(elements):
        references[element].append((first + uid * ref, first + (uid + 1) * ref))
    links = []
    for at in offsets:
        if data[at] >> 4 == 8:
            links.append([elements[int.from_bytes(data[at + 1:at + 2 + (data[at] & 15)], "big")]])
        else:
            links.append(refs_of(data, at, ref) if data[at] >> 4 in (0xa, 0xd) else [])
    return [elements[uid] for uid in messages], links, spans, references


def refs_of(data, at, ref):
    count = data[at] & 15
    items = count if data[at] >> 4 == 0xa else 2 * count
    if count == 15:
        width = 1 << (data[at + 1] & 7)
        count = int.from_bytes(data[at + 2:at + 2 + width], "big")
        items = count if data[at] >> 4 == 0xa else 2 * count
        at += 1 + width
    at += 1
    return [int.from_bytes(data[at + i * ref:at + (i + 1) * ref], "big") for i in range(items)]


class Stream:
    """A non-keyed archive."""

    def __init__(self, is_big_endian):
        self.order = ">" if is_big_endian else "<"
        self.out = bytearray(b"\x04\x0b" + (b"typedstream" if is_big_endian else b"streamtyped"))
        self.strings = {}
        self.numbers = {}
        self.next = 0
        self.spans = {}
        self.used = set()
        self.needs = {}  # by shared objects, that of others
        self.open = []
        self.integer(1000)

    def note(self, key, start=None):
        """A shared part is used; it is written here if its start is given."""
        self.used |= {key} | self.needs.get(key, set())
        if start is not None:
            self.spans[key] = (start, len(self.out))

    def integer(self, value):
        if -110 <= value <= 127:
            self.out += struct.pack("b", value)
        elif -32768 <= value <= 32767:
            self.out += b"\x81" + struct.pack(self.order + "h", value)
        else:
            self.out += b"\x82" + struct.pack(self.order + "i", value)

    def shared(self, text):
        if text in self.strings:
            self.integer(self.strings[text] - 110)
            return self.note(("text", text))
        start = len(self.out)
        self.strings[text] = len(self.strings)
        self.out += b"\x84"
        self.integer(len(text))
        self.out += text.encode()
        self.note(("text", text), start)

    def class_of(self, *names):
        self.used.update(("class", name) for name in names)
        for name in names:
            if name in self.numbers:
                self.integer(self.numbers[name] - 110)
                return self.note(("class", name))
            start = len(self.out)
            self.out += b"\x84"
            self.shared(name)
            self.out += b"\x00"
            self.numbers[name] = self.next
            self.next += 1
            self.note(("class", name), start)
        self.out += b"\x85"

    def begin(self, *names, key=None):
        """Whether the object is new, and its values must follow."""
        self.shared("@")
        if key is not None and key in self.numbers:
            self.integer(self.numbers[key] - 110)
            self.note(key)
            return False
        start = len(self.out)
        self.out += b"\x84"
        if key is not None:
            self.numbers[key] = self.next
        self.next += 1
        before, self.used = self.used, set()
        self.class_of(*names, "NSObject")
        self.open.append((key, start, before))
        return True

    def end(self):
        self.out += b"\x86"
        key, start, before = self.open.pop()
        if key is not None:
            self.needs[key] = set(self.used)
            self.note(key, start)
        self.used |= before

    def number(self, kind, value):
        self.shared(kind)
        self.integer(value)

    def string(self, text, *names, key=None):
        if not self.begin(*(names or ("NSString",)), key=key):
            return
        self.shared("+")
        self.integer(len(text.encode()))
        self.out += text.encode()
        self.end()


def non_keyed(chat):
    out = Stream(chat.is_big_endian)
    parts = []

    def person(name):
        if out.begin("Presentity", key=("person", name)):
            out.string("AIM", key=("string", "AIM"))
            out.string(name)
            out.end()

    out.begin("NSArray")
    out.number("i", 8)
    out.string("AIM", key=("string", "AIM"))
    out.string("")
    out.begin("NSMutableArray", "NSArray")
    out.number("i", len(chat.messages))
    for sender, time, text in chat.messages:
        start = len(out.out)
        out.used = set()
        out.begin("InstantMessage")
        if sender:
            person(sender)
        else:
            out.shared("@")
            out.out += b"\x85"
        out.begin("NSDate")
        out.shared("d")
        out.out += b"\x83" + struct.pack(out.order + "d", time)
        out.end()
        out.begin("NSAttributedString")
        out.string(text, "NSMutableString", "NSString")
        out.shared("iI")
        out.integer(1)
        out.integer(len(text.encode("utf-16-le")) // 2)
        if out.begin("NSDictionary", key="plain"):
            out.number("i", 0)
            out.end()
        out.end()
        out.number("I", 0)
        out.end()
        parts.append((([(start, len(out.out))]), out.used))
    out.end()
    out.begin("NSArray")
    out.number("i", len(chat.people) - 1)
    for name in chat.people[1:]:
        person(name)
    out.end()
    out.number("i", 0)
    out.number("i", 0)
    out.string("")
    out.string("")
    out.end()
    return bytes(out.out), [(own, [out.spans[key] for key in used]) for own, used in parts]


FORMS = {"binary": lambda chat: keyed(chat, False), "xml": lambda chat: keyed(chat, True),
         "non-keyed": non_keyed}


def recovered(data, folder, *options):
    """The exit status, the messages, and the notes."""
    path = os.path.join(folder, "damaged.ichat")
    with open(path, "wb") as file:
        file.write(data)
    run = subprocess.run([export, "-q", "-f", "json", "--expand", *options, path], capture_output=True)
    if run.returncode not in (0, 3):
        return run.returncode, [], []
    messages, notes = [], []
    for event in json.loads(run.stdout)["events"]:
        if event["kind"] != "plainText":
            continue
        sender = event["sender"] and event["sender"]["userID"]
        if sender is None and re.match("Recovered |Messages are missing here", event["text"]):
            notes.append(event["text"])
        else:
            messages.append((sender, event["secondsSinceReferenceDate"], event["text"]))
    return run.returncode, messages, notes


def is_hit(places, spans):
    return any(first <= place < last for place in places for first, last in spans)


def cut(dice, data, parts):
    end = dice.randrange(len(data))
    damaged = [i for i, (own, shared) in enumerate(parts) if any(last > end for _, last in own)]
    return data[:end], damaged, damaged


def flip(dice, data, parts):
    """The damaged bytes; the messages whose own bytes are damaged; and with them those that share some."""
    broken = bytearray(data)
    places = [dice.randrange(len(data)) for _ in range(dice.randint(1, 16))]
    for place in places:
        broken[place] ^= dice.randrange(1, 256)
    return (bytes(broken), [i for i, (own, _) in enumerate(parts) if is_hit(places, own)],
            [i for i, (own, shared) in enumerate(parts) if is_hit(places, own + shared)])


def resembles(message, original):
    return (message[1:2] == original[1:2] or message[2] == original[2] or
            difflib.SequenceMatcher(None, message[2], original[2]).ratio() > 0.6)


class Figures:
    """Of many transcripts."""

    def __init__(self):
        self.untouched = self.untouched_back = 0  # their own bytes are whole
        self.whole = self.whole_back = 0  # and those that they share
        self.altered = self.invented = 0  # unlike all originals; and like no damaged one

    def add(self, originals, found, touched, damaged):
        found = set(found)
        untouched = set(range(len(originals))) - set(touched)
        whole = untouched - set(damaged)
        self.untouched += len(untouched)
        self.untouched_back += sum(originals[i] in found for i in untouched)
        self.whole += len(whole)
        self.whole_back += sum(originals[i] in found for i in whole)
        for message in found - set(originals):
            self.altered += 1
            if not any(resembles(message, originals[i]) for i in damaged):
                self.invented += 1

    def __str__(self):
        def share(part, all):
            return f"{part} of {all} ({100 * part / max(all, 1):.1f} %)"
        return (f"{share(self.untouched_back, self.untouched)} untouched, {share(self.whole_back, self.whole)} "
                f"whole; {self.altered} altered, {self.invented} invented")


class Recovery(unittest.TestCase):
    def figures(self, damage, form):
        dice = random.Random(f"{SEED} {damage.__name__} {form}")
        figures = Figures()
        with tempfile.TemporaryDirectory() as folder:
            for number in range(COUNT):
                chat = Chat(dice)
                data, parts = FORMS[form](chat)
                broken, touched, damaged = damage(dice, data, parts)
                status, found, _ = recovered(broken, folder, "--recover")
                if status == 0:
                    continue  # still readable: nothing to recover
                figures.add(chat.messages, found, touched, damaged)
        print(f"{damage.__name__} {form}: {figures}", flush=True)
        return figures

    def test_cut_transcripts_keep_what_stands_before_the_cut(self):
        for form in FORMS:
            with self.subTest(form=form):
                figures = self.figures(cut, form)
                self.assertGreaterEqual(figures.untouched_back, 0.95 * figures.untouched)
                self.assertEqual(figures.altered, 0)

    def test_messages_without_damaged_bytes_come_back(self):
        for form in FORMS:
            with self.subTest(form=form):
                figures = self.figures(flip, form)
                self.assertGreaterEqual(figures.untouched_back, 0.9 * figures.untouched)
                self.assertEqual(figures.invented, 0)

    def test_recovery_is_marked_and_only_on_request(self):
        dice = random.Random(5)
        data, _ = keyed(Chat(dice), False)
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(recovered(data, folder)[0], 0)
            self.assertEqual(recovered(data, folder, "--recover")[0], 0)
            self.assertEqual(recovered(data[:-900], folder)[0], 1)
            status, _, notes = recovered(data[:-900], folder, "--recover")
            self.assertEqual(status, 3)
            self.assertRegex(notes[0], r"^Recovered [\d,]+ of about [\d,]+ messages; "
                                       r"the file is damaged after byte [\d,]+$")
            self.assertEqual(recovered(b"no transcript", folder, "--recover")[0], 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
