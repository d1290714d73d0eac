# SPDX-License-Identifier: MIT
#
# Every message of every file is in a merged chat exactly once, those that several files have as
# often as the file that has them most often. The messages are counted here, file by file.
#
# usage: merge_test.py VELL-EXPORT MERGE-CHATS MAKE-ARCHIVE [FOLDER]

import collections
import json
import os
import subprocess
import sys
import tempfile

MARKS = ("newDay", "newMinute", "user", "session")


def output(*command, lines):
    return subprocess.run(command, input=b"".join(lines), stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=False).stdout


def identity(event):
    sender = event["sender"] and (event["sender"]["serviceID"], event["sender"]["userID"])
    content = [event.get(key) for key in ("text", "url", "title", "fileName", "sha256")]
    return event["secondsSinceReferenceDate"], sender, event["kind"], *content


def messages_of(events):
    return [event for event in events if event["kind"] not in MARKS]


def counted(export, paths):
    """How often each message is to be there, and how many messages the files have."""
    by_file = collections.defaultdict(collections.Counter)
    for line in output(export, "-qf", "jsonl", "--files0-from", "-",
                       lines=[path + b"\0" for path in paths]).splitlines():
        event = json.loads(line)
        if event["kind"] not in MARKS:
            by_file[event["file"]][identity(event)] += 1
    expected = collections.Counter()
    for messages in by_file.values():
        expected |= messages
    return expected, sum(messages.total() for messages in by_file.values()), len(by_file)


def check(export, merge_chats, folder):
    paths = sorted(os.fsencode(os.path.join(at, name)) for at, _, names in os.walk(folder)
                   for name in names)
    expected, everything, files = counted(export, paths)
    events = json.loads(output(merge_chats, lines=[path + b"\n" for path in paths]))["events"]
    messages = messages_of(events)
    print(f"{files} files, {everything} messages, {len(messages)} of them shown")
    assert 0 < expected.total() < everything, "nothing overlaps"
    merged = collections.Counter(map(identity, messages))
    assert merged == expected, (list((expected - merged).items())[:3],
                                list((merged - expected).items())[:3])
    dates = [message["secondsSinceReferenceDate"] for message in messages]
    assert dates == sorted(dates)
    assert [event["sequence"] for event in events] == list(range(1, len(events) + 1))


export, merge_chats, make_archive = sys.argv[1:4]
if len(sys.argv) > 4:
    check(export, merge_chats, sys.argv[4])
else:
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([make_archive, "--overlaps", folder, "450", "9000", "60"], check=True)
        check(export, merge_chats, folder)
