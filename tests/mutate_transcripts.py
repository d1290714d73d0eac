#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Damages good transcripts at random and has vell-export read them.

Whatever the bytes, it must end by itself within five seconds, with 0 (and a document) or with 1 (and
one line that says why), and take no more memory than it is allowed. Each damaged file depends on the
seed and its number alone; one that is not survived is kept, and named at the end.

    tests/mutate_transcripts.py build/dev/bin/vell-export --count 10000
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import random
import resource
import struct
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SECONDS = 5
# What sanitizers exit with instead of 1, which is also an honest answer.
SANITIZER_STATUS = 86
INTERESTING = [0, 1, 2, 0x0F, 0x7F, 0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x92, 0xFF]
WORDS = [b"NSArray", b"NSString", b"NSMutableString", b"NSData", b"NSDate", b"NSURL",
         b"NSDictionary", b"NSAttributedString", b"NSTextAttachment", b"NSFileWrapper",
         b"InstantMessage", b"Presentity", b"Person", b"IMHandle", b"$null", b"$class", b"rtfd",
         b"[99999999c]", b"{?=@@}", b"@", b"iI", b"+"]


def mutate(data: bytearray, other: bytes, rng: random.Random) -> bytearray:
    """One change at a random place."""
    if not data:
        return bytearray(other[:rng.randint(1, 64)])
    at = rng.randrange(len(data))
    length = min(rng.choice([1, 2, 4, 8, 40, 200]), len(data) - at)
    kind = rng.randrange(10)
    if kind == 0:
        data[at] ^= 1 << rng.randrange(8)
    elif kind == 1:
        data[at] = rng.choice(INTERESTING)
    elif kind == 2:  # a number of some width, in some order
        number = rng.choice([0, 1, len(data), len(data) - 1, 2**15, 2**31, 2**32 - 1, rng.getrandbits(32)])
        form = rng.choice([">B", ">H", "<H", ">I", "<I", ">Q", "<Q"])
        packed = struct.pack(form, number & (256 ** struct.calcsize(form) - 1))
        data[at:at + len(packed)] = packed
    elif kind == 3:
        del data[at:at + length]
    elif kind == 4:
        data[at:at] = data[at:at + length] * rng.choice([1, 1, 2, 50])
    elif kind == 5:
        del data[at:]
    elif kind == 6:  # a piece of another transcript
        start = rng.randrange(len(other))
        data[at:at + length] = other[start:start + length]
    elif kind == 7:
        word = rng.choice(WORDS)
        data[at:at + len(word)] = word
    elif kind == 8:  # a property list's trailer, or whatever else stands at the end
        data[-1 - rng.randrange(min(32, len(data)))] = rng.choice(INTERESTING)
    else:  # a reference or an offset, exchanged with another
        where = rng.randrange(len(data))
        data[at], data[where] = data[where], data[at]
    return data


def damaged(number: int, seed: int, sources: list) -> bytes:
    rng = random.Random(f"{seed}/{number}")
    data = bytearray(rng.choice(sources))
    for _ in range(rng.choice([1, 1, 1, 2, 3, 8])):
        data = mutate(data, rng.choice(sources), rng)
    return bytes(data)


def limit_memory(megabytes: int) -> None:
    if megabytes:
        resource.setrlimit(resource.RLIMIT_AS, (megabytes << 20, megabytes << 20))


def problem(program: str, path: pathlib.Path, megabytes: int):
    """What is wrong with the program's answer to this file, or None."""
    sanitizers = f"exitcode={SANITIZER_STATUS}"
    environment = dict(os.environ, ASAN_OPTIONS=sanitizers, UBSAN_OPTIONS=sanitizers)
    try:
        done = subprocess.run(
            [program, "--format", "json", str(path)], capture_output=True, timeout=SECONDS,
            env=environment, preexec_fn=lambda: limit_memory(megabytes), check=False)
    except subprocess.TimeoutExpired:
        return f"took more than {SECONDS} seconds"
    if done.returncode not in (0, 1):
        return f"ended with {done.returncode}\n{done.stderr.decode(errors='replace')[-2000:]}"
    if done.returncode == 1 and b"vell-export: " not in done.stderr:
        return "ended with 1 and did not say why"
    if done.returncode == 0:
        try:
            json.loads(done.stdout)
        except ValueError as error:
            return f"wrote what is no document: {error}"
    return None


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", help="vell-export")
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--memory", type=int, default=0, metavar="MB",
                        help="address space each run may take; not under a sanitizer")
    options = parser.parse_args()
    files = sorted([*ROOT.glob("tests/data/transcripts/*.ichat"), *ROOT.glob("samples/*.ichat")])
    sources = [file.read_bytes() for file in files]
    folder = pathlib.Path(tempfile.mkdtemp(prefix="vell-mutations."))

    def attempt(number: int):
        path = folder / f"{options.seed}-{number}.ichat"
        path.write_bytes(damaged(number, options.seed, sources))
        found = problem(options.program, path, options.memory)
        if found is None:
            path.unlink()
        return path, found

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, found in pool.map(attempt, range(options.count)):
            if found:
                failed += 1
                print(f"{path}: {found}")
    if not failed:
        folder.rmdir()
    print(f"{options.count - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
