#!/bin/zsh
# One line about the notes.
print "$(wc -l < notes.txt | tr -d ' ') notes, last changed $(date -r notes.txt '+%d %B %Y')"
