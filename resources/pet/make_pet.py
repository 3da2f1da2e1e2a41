#!/usr/bin/env python3
"""Turns the drawing of the pet into a PNG: make_pet.py DRAWING PNG.

The drawing is text: lines "letter = RRGGBB" name the colours, an empty line follows, then one letter a pixel, where
"." is transparent. The colours become the PNG's palette.
"""
import binascii
import re
import struct
import sys
import zlib


def read(drawing):
    head, _, grid = drawing.strip("\n").partition("\n\n")
    colours = {}
    for line in head.splitlines():
        found = re.fullmatch(r"(\w) = ([0-9A-F]{6})", line)
        if not found:
            raise SystemExit(f"not a colour: {line!r}")
        colours[found[1]] = bytes.fromhex(found[2])
    rows = grid.splitlines()
    if len({len(row) for row in rows}) != 1:
        raise SystemExit("the rows differ in length")
    unknown = set("".join(rows)) - set(colours) - {"."}
    if unknown:
        raise SystemExit(f"colours without a line of their own: {sorted(unknown)}")
    return colours, rows


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", binascii.crc32(kind + data))


def png(colours, rows):
    letters = ["."] + list(colours)
    index = {letter: place for place, letter in enumerate(letters)}
    # Bit depth 8, colour type 3 (palette); each row begins with filter 0.
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 3, 0, 0, 0)
    pixels = b"".join(b"\0" + bytes(index[letter] for letter in row) for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"PLTE", b"\0\0\0" + b"".join(colours.values()))
            + chunk(b"tRNS", b"\0") + chunk(b"IDAT", zlib.compress(pixels, 9)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as source:
        result = png(*read(source.read()))
    with open(sys.argv[2], "wb") as target:
        target.write(result)
