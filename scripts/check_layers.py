#!/usr/bin/env python3
"""Holds the includes of src/ against the table "Who may include whom" of docs/architecture.md.

Linking already forbids most wrong directions; this finds the rest (headers only, and pages that include one
another). Exit status 1 and one line a fault.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROW = re.compile(r"^\|\s*`(?P<folder>[\w/]+)`\s*\|\s*(?P<allowed>[^|]*)\|")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def read_table():
    """Folder -> folders it may include from, as the architecture document says."""
    table = {}
    section = (ROOT / "docs/architecture.md").read_text().split("## Who may include whom", 1)[1].split("\n## ", 1)[0]
    for line in section.splitlines():
        match = ROW.match(line)
        if match:
            table[match["folder"]] = set(re.findall(r"`([\w/]+)`", match["allowed"]))
    return table


def folder_of(path, folders):
    """The longest folder of the table that holds `path`."""
    parts = path.split("/")[:-1]
    while parts:
        if "/".join(parts) in folders:
            return "/".join(parts)
        parts.pop()
    return None


def main():
    table = read_table()
    faults = []
    for source in sorted((ROOT / "src").rglob("*")):
        if source.suffix not in (".h", ".cpp"):
            continue
        name = source.relative_to(ROOT / "src").as_posix()
        own = folder_of(name, table)
        if own is None:
            faults.append(f"src/{name}: its folder is missing from the table")
            continue
        for number, line in enumerate(source.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            target = match and folder_of(match[1], table)
            if target and target != own and target not in table[own]:
                faults.append(f"src/{name}:{number}: {own} must not include {match[1]}")
    print("\n".join(faults) if faults else "layers: every include goes downward")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
