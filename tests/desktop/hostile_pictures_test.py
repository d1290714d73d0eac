# SPDX-License-Identifier: MIT
#
# Pictures that try to read files of the machine they are shown on, or to exhaust its memory.
#
# usage: hostile_pictures_test.py VELL PARTNER

import base64
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

from desktop import need_tracing

vell, partner = sys.argv[1:]
folder = tempfile.TemporaryDirectory()
work = pathlib.Path(folder.name)
os.environ["XDG_RUNTIME_DIR"] = folder.name
chat, painted = work / "chat.ichat", work / "painted.png"


def fail(what):
    sys.exit("FAILED: " + what)


def wrap(pictures):
    """A chat of these pictures, by name."""
    for name, content in pictures.items():
        (work / name).write_bytes(content if isinstance(content, bytes) else content.encode())
    subprocess.run([partner, "wrap", chat, *(work / name for name in pictures)], check=True)


def svg(inside, before=""):
    return (f"{before}<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20' "
            f"xmlns:l='http://www.w3.org/1999/xlink'>{inside}</svg>")


def reads_no_file():
    """Each names a pipe, which also blocks forever whoever opens it."""
    bait = work / "bait"
    os.mkfifo(bait)
    image = f"<image width='9' height='9' l:href='{bait}'/>"
    nested = base64.b64encode(svg(image).encode()).decode()
    utf7 = image.replace("<", "+ADw-").replace(">", "+AD4-")
    refused = {
        "direct.svg": svg(image),
        "nested.svg": svg(f"<image l:href='data:image/svg+xml;base64,{nested}'/>"),
        "style.svg": svg("", f"<?xml-stylesheet type='text/css' href='{bait}'?>"),
        "import.svg": svg(f"<style>@import url({bait});</style>"),
        "utf7.svg": svg(utf7, "<?xml version='1.0' encoding='UTF-7'?>"),
        "entity.svg": svg("&x;", f"<!DOCTYPE svg [<!ENTITY x SYSTEM '{bait}'>]>"),
    }
    wrap(refused)
    trace = work / "trace"
    subprocess.run(["strace", "-f", "-s", "400", "-e", "trace=%file,sendto", "-o", trace,
                    vell, "--render", painted, chat], check=True, timeout=120)
    lines = trace.read_text(errors="replace").splitlines()
    count = sum("are not drawn" in line for line in lines)
    if count != len(refused):
        fail(f"{count} of {len(refused)} pictures were refused")
    if any(str(bait) in line and "sendto" not in line for line in lines):
        fail("a picture had a file opened")


def png(side):
    """Interlaced, so that a decoder must hold all of it."""
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    pack = zlib.compressobj(1)
    pixels = b""
    for x, y, dx, dy in ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4),
                         (1, 0, 2, 2), (0, 1, 1, 2)):
        row = bytes(1 + 3 * ((side - x + dx - 1) // dx))
        for _ in range((side - y + dy - 1) // dy):
            pixels += pack.compress(row)
    header = struct.pack(">IIBBBBB", side, side, 8, 2, 0, 0, 1)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"IDAT", pixels + pack.flush()) + chunk(b"IEND", b""))


def tiff(side):
    strip = zlib.compress(bytes(3 * side * side), 1)
    entries = [(256, side), (257, side), (258, 8), (259, 8), (262, 2), (273, 8), (277, 3),
               (278, side), (279, len(strip))]
    directory = b"".join(struct.pack("<HHII", tag, 4, 1, value) for tag, value in entries)
    return (b"II*\0" + struct.pack("<I", 8 + len(strip)) + strip +
            struct.pack("<H", len(entries)) + directory + bytes(4))


def gif(side):
    size = struct.pack("<HH", side, side)
    return (b"GIF89a" + size + bytes.fromhex("910000 ff0000 00ff00 0000ff 000000 2c00000000") + size +
            bytes.fromhex("00 02024401 00 3b"))


def bmp(side):
    rows = (side + 31) // 32 * 4 * side
    return (struct.pack("<2sIII", b"BM", 62 + rows, 0, 62) +
            struct.pack("<IiiHHIIiiII", 40, side, side, 1, 1, 0, rows, 0, 0, 2, 0) + bytes(8 + rows))


def peak():
    """Megabytes that the process of the window needed at most for painting the chat."""
    process = subprocess.Popen([vell, "--render", painted, chat])
    most = 0
    while process.poll() is None:
        try:
            status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
        except OSError:
            continue
        most = max([most, *(int(line.split()[1]) // 1024 for line in status.splitlines()
                            if line.startswith("VmHWM:"))])
        try:
            process.wait(0.02)
        except subprocess.TimeoutExpired:
            pass
    if process.returncode != 0:
        fail("the chat was not painted")
    return most


def stays_small():
    """Pictures of 400 megabytes and more that lie in small files."""
    wrap({"plain.svg": svg("")})
    usual = peak()
    paths = "<path d='M0 0L1 1'/>" * 3000000
    bombs = {"a.png": png(11000), "b.tiff": tiff(11000), "c.gif": gif(11000), "d.bmp": bmp(11000),
             "e.svg": svg(paths)}
    for name, bomb in bombs.items():
        wrap({name: bomb})
        most = peak()
        print(f"{name}: {len(bomb)} bytes, {most} MB where {usual} are usual")
        if most > usual + 300:
            fail("the window's process decoded a picture")


need_tracing()
reads_no_file()
stays_small()
