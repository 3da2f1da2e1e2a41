#!/usr/bin/env python3
"""Writes the table of character properties that the terminal looks every scalar up in.

usage: generate_character_table.py UNICODE_FOLDER OUTPUT

UNICODE_FOLDER holds UnicodeData.txt and PropList.txt (Debian package unicode-data). The output is C++ text with
two tables: one byte a page of 256 scalars that numbers the page, and the distinct pages of property bytes.
"""
import pathlib
import sys

SCALARS = 0x110000
PAGE = 256

# The bits of CharacterProperties.h.
NONSPACING_MARK = 1
WIDE = 2
WHITE_SPACE = 4

# Blocks whose characters take two cells, unassigned ones included.
WIDE_RANGES = [
    (0x1100, 0x115F),  # Hangul Jamo leading consonants
    (0x2E80, 0xA4CF),  # CJK radicals through Yi
    (0xAC00, 0xD7AF),  # Hangul syllables
    (0xF900, 0xFAFF),  # CJK compatibility ideographs
    (0xFE30, 0xFE6F),  # CJK compatibility and small form variants
    (0xFF01, 0xFF60),  # fullwidth forms
    (0x1F300, 0x1FAFF),  # pictographs and emoji
]


def mark(table, first, last, bit):
    for scalar in range(first, last + 1):
        table[scalar] |= bit


def property_ranges(path, wanted):
    """The ranges that a file of "first..last ; property" lines gives to one property."""
    for line in path.read_text(encoding="utf-8").splitlines():
        fields = [field.strip() for field in line.split("#")[0].split(";")]
        if len(fields) < 2 or fields[1] != wanted:
            continue
        first, _, last = fields[0].partition("..")
        yield int(first, 16), int(last or first, 16)


def nonspacing_marks(path):
    for line in path.read_text(encoding="utf-8").splitlines():
        scalar, _, category = line.split(";")[:3]
        if category == "Mn":
            yield int(scalar, 16)


def rows(values):
    for start in range(0, len(values), 24):
        yield "    " + ", ".join(str(value) for value in values[start : start + 24]) + ","


def main():
    source, output = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    table = bytearray(SCALARS)
    for scalar in nonspacing_marks(source / "UnicodeData.txt"):
        mark(table, scalar, scalar, NONSPACING_MARK)
    for first, last in WIDE_RANGES:
        mark(table, first, last, WIDE)
    for first, last in property_ranges(source / "PropList.txt", "White_Space"):
        mark(table, first, last, WHITE_SPACE)

    numbers = {}
    page_numbers = []
    for start in range(0, SCALARS, PAGE):
        page = bytes(table[start : start + PAGE])
        page_numbers.append(numbers.setdefault(page, len(numbers)))

    lines = ["// Made by scripts/generate_character_table.py from the Unicode character database.", ""]
    lines += ["const std::uint8_t characterPages[] = {"]
    lines += [*rows(page_numbers), "};", ""]
    lines += ["const std::uint8_t pageProperties[] = {"]
    lines += [*rows(b"".join(numbers)), "};", ""]
    output.write_text("\n".join(lines), encoding="utf-8")


if __name__ == "__main__":
    main()
