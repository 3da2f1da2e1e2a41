#!/usr/bin/env python3
"""Writes tables of character properties as C++ text, from the Unicode character database.

usage: generate_character_table.py properties|letters UNICODE_FOLDER OUTPUT

UNICODE_FOLDER holds UnicodeData.txt, PropList.txt, EastAsianWidth.txt and emoji/emoji-data.txt (Debian package
unicode-data).

properties: what the terminal looks every scalar up in; one byte a page of 256 scalars that numbers the page, and
the distinct pages of property bytes.
letters: the first and last scalar of each range of letters, marks and numbers (general categories L, M, N).
"""
import pathlib
import sys

SCALARS = 0x110000
PAGE = 256

# The bits of CharacterProperties.h.
NONSPACING_MARK = 1
WIDE = 2
WHITE_SPACE = 4
EMOJI = 8
EMOJI_MODIFIER = 16
REGIONAL_INDICATOR = 32
JOINER = 64
TAG = 128

REGIONAL_INDICATORS = (0x1F1E6, 0x1F1FF)
TAGS = (0xE0020, 0xE007F)
# The zero width joiner, and the enclosing keycap.
JOINERS = (0x200D, 0x20E3)

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


def categories(path):
    """First scalar, last scalar and general category of everything assigned, in order."""
    first = None
    for line in path.read_text(encoding="utf-8").splitlines():
        scalar, name, category = line.split(";")[:3]
        if name.endswith(", First>"):
            first = int(scalar, 16)
            continue
        yield first if name.endswith(", Last>") else int(scalar, 16), int(scalar, 16), category


def rows(values):
    for start in range(0, len(values), 24):
        yield "    " + ", ".join(str(value) for value in values[start : start + 24]) + ","


def properties(source):
    table = bytearray(SCALARS)
    for first, last, category in categories(source / "UnicodeData.txt"):
        if category == "Mn":
            mark(table, first, last, NONSPACING_MARK)
    for first, last in WIDE_RANGES:
        mark(table, first, last, WIDE)
    for width in ("W", "F"):
        for first, last in property_ranges(source / "EastAsianWidth.txt", width):
            mark(table, first, last, WIDE)
    emoji_data = source / "emoji" / "emoji-data.txt"
    for first, last in property_ranges(emoji_data, "Emoji"):
        mark(table, max(first, 0x80), last, EMOJI)
    for first, last in property_ranges(emoji_data, "Emoji_Modifier"):
        mark(table, first, last, EMOJI_MODIFIER)
    for first, last in property_ranges(emoji_data, "Emoji_Presentation"):
        mark(table, first, last, WIDE)
    mark(table, *REGIONAL_INDICATORS, REGIONAL_INDICATOR)
    mark(table, *TAGS, TAG)
    for scalar in JOINERS:
        mark(table, scalar, scalar, JOINER)
    for scalar, bits in enumerate(table):
        if bits & (EMOJI_MODIFIER | REGIONAL_INDICATOR):
            table[scalar] &= ~EMOJI
    for first, last in property_ranges(source / "PropList.txt", "White_Space"):
        mark(table, first, last, WHITE_SPACE)

    numbers = {}
    page_numbers = []
    for start in range(0, SCALARS, PAGE):
        page = bytes(table[start : start + PAGE])
        page_numbers.append(numbers.setdefault(page, len(numbers)))
    yield "const std::uint8_t characterPages[] = {"
    yield from rows(page_numbers)
    yield "};"
    yield ""
    yield "const std::uint8_t pageProperties[] = {"
    yield from rows(b"".join(numbers))
    yield "};"


def letters(source):
    ranges = []
    for first, last, category in categories(source / "UnicodeData.txt"):
        if category[0] not in "LMN":
            continue
        if ranges and ranges[-1][1] == first - 1:
            ranges[-1][1] = last
        else:
            ranges.append([first, last])
    yield "constexpr ScalarRange lettersAndNumbers[] = {"
    for first, last in ranges:
        yield f"    {{0x{first:X}, 0x{last:X}}},"
    yield "};"


def main():
    kind, source, output = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    lines = {"properties": properties, "letters": letters}[kind](source)
    title = "// Made by scripts/generate_character_table.py from the Unicode character database."
    output.write_text("\n".join([title, "", *lines, ""]), encoding="utf-8")


if __name__ == "__main__":
    main()
