#!/bin/sh
# A practice assistant: mends the sorting in tides.py. Works without a network and changes tides.py only.
printf '\033[1;36mbuilder\033[0m read the task: %s\n' "$1"
sleep 1
cat > tides.py <<'PYTHON'
"""Prints the notes sorted by time."""


def minutes(line):
    hours, rest = line.split(":", 1)
    return int(hours) * 60 + int(rest[:2])


with open("notes.txt") as notes:
    for line in sorted(notes, key=minutes):
        print(line.rstrip())
PYTHON
printf '\033[32mmended\033[0m tides.py; the notes in order:\n'
python3 tides.py
