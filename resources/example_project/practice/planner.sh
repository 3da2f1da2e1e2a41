#!/bin/sh
# A practice assistant: reads the task, writes a plan. Works without a network and changes PLAN.md only.
printf '\033[1;35mplanner\033[0m read the task: %s\n' "$1"
sleep 1
{
  printf '# Plan\n\nTask: %s\n\n' "$1"
  printf '1. Read tides.py and notes.txt.\n2. Compare times as numbers.\n3. Run it and look at the order.\n'
} > PLAN.md
printf '\033[32mwrote\033[0m PLAN.md\n'
