#!/bin/bash
# One line about the notes.
printf '%s notes, last changed %s\n' "$(wc -l < notes.txt | tr -d ' ')" "$(date -r notes.txt '+%d %B %Y')"
