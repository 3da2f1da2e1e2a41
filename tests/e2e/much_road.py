"""Much of everything: a review of 5,000 changed files, 200 runs, 50 long entries in the history, a file of 200,000
characters, a terminal that never rests. What keeps the main thread too long is told on standard error, which must stay
empty.

Usage: much_road.py PROGRAM PICTURES
"""
import json
import sys
import uuid

from desktop import activate_window, press_key, text_of, type_text, wait_for, xdotool
from home import on_a_project

FILES = 5000
RUNS = 200
# With what is typed, just short of the size from which on a text stays without colours.
LENGTH = 199_900

ASSISTANT = r"""#!/bin/sh
case "$*" in 'login status' | 'auth status') echo 'Signed in'; exit 0 ;; esac
case "$PWD" in */Runs/*)
  i=0; while [ $i -lt 4998 ]; do echo $i > file$i; i=$((i+1)); done
  seq 1 20000 >> README.md; echo >> tides.py ;;
esac
seq 1 50000
"""

LINE = "let tide = table[index] + 18  # minutes, NAME\n"


def identifier():
    return str(uuid.uuid4()).upper()


def prepare(root):
    runs = root / "data/Orvo AI/Runs"
    for number in range(RUNS):
        folder = runs / identifier()
        folder.mkdir(parents=True)
        copies = [{"id": identifier(), "provider": provider, "directory": str(folder / provider), "exitCode": 0}
                  for provider in ("claude", "codex")]
        (folder / "run.json").write_text(json.dumps({
            "id": identifier(), "prompt": f"Task {number}, which is {'long ' * 100}", "project": str(root / "harbor notes"),
            "root": str(folder), "created": 800_000_000 + number, "copies": copies}))
        (folder / f"output-{copies[0]['id']}.txt").write_text(LINE * (60_000 // len(LINE)))
    preferences = root / "config/orvo-ai"
    preferences.mkdir(parents=True, mode=0o700)
    (preferences / "history.data").write_text(json.dumps([{
        "id": identifier(), "provider": "codex", "title": f"Session {number}", "directory": str(root / "harbor notes"),
        "started": 800_000_000 - number, "exitCode": 0,
        "output": (LINE * 2000 if number % 2 else "tide " * 20000)[:60_000]} for number in range(50)]))
    (root / "harbor notes/tides.py").write_text((LINE * 5000)[:LENGTH])


def read_history(program):
    program.press("History")
    output = program.find("text", "Saved output")
    for number in range(6):
        program.press(f"Session {number}", role="list item")
        wait_for("the whole entry", lambda: len(text_of(output)) >= 50_000 or number % 2 == 0)
    field = program.find("text", "Search completed sessions…")
    program.click(field)
    type_text("session 4")
    wait_for("fewer rows", lambda: not program.all("list item", "Session 5"))
    press_key("ctrl+a")
    press_key("BackSpace")
    program.find("list item", "Session 5")


def edit_the_long_file(program, project):
    program.press("Files & runner")
    program.click(program.find("list item", "tides.py"))
    editor = program.find("text", "Code editor")
    wait_for("the file", lambda: len(text_of(editor)) == LENGTH)
    program.click(editor)
    for key in ("ctrl+End", "ctrl+Home", "Next", "Next", "ctrl+End", "Prior", "ctrl+Home"):
        press_key(key)
    # A line at the beginning, one that opens a text to its end, and all of it undone.
    type_text("import tides")
    press_key("Return")
    type_text("'''")
    press_key("ctrl+z")
    type_text("low = 6")
    press_key("ctrl+a")
    press_key("ctrl+Home")
    press_key("ctrl+f")
    type_text("minutes")
    for _ in range(5):
        press_key("Return")
    press_key("Escape")
    program.picture("2-editor")
    press_key("ctrl+s")
    wait_for("the saved mark", lambda: not program.all(name="Unsaved changes"))
    assert (project / "tides.py").read_text().startswith("import tides\n")


def review(program):
    program.press("Workspace")
    program.press("Separate copies", "radio button")
    program.send("Change everything")
    wait_for("both exits", lambda: len(program.all(name="Exit 0")) == 2, 60)
    program.review("Claude Code")
    program.find(name=f"{FILES} changed files")
    program.press("Select all")
    program.find("push button", f"Apply selected ({FILES})")
    program.click(program.find("check box", "README.md"))
    for key in ["Down"] * 20 + ["Next"] * 10 + ["End", "Home"]:
        press_key(key)
    after = program.find("text", "After")
    wait_for("the long file", lambda: len(text_of(after)) > 100_000)
    program.picture("3-review")
    program.press("Apply selected (5000)")
    program.press("Apply changes")
    wait_for("the end of applying", lambda: program.all(
        name="Applied 5000 files. Originals are saved in the run’s backup folder."), 60)
    # Its folder is full now, and so is the list of files.
    program.press("Files & runner")
    program.click(program.find("text", "Find a file…"))
    type_text("file499")
    program.find("list item", "file499")
    program.press("Team runs")
    picker = program.find("combo box", "Run")
    program.click(picker)
    for key in ("End", "Home", "Down", "Return"):
        press_key(key)
    program.press("Output")
    program.press("Done")


def watch_the_terminal(program):
    program.press("Workspace")
    program.press("New terminal")
    program.find(name="Running")
    type_text("seq 1 300000; echo at the $((6 * 7))th")
    press_key("Return")
    wait_for("the end of the output", lambda: any(
        "at the 42th" in text_of(terminal)[-2000:] for terminal in program.all("terminal")), 60)
    program.click(program.all("terminal")[-1])
    xdotool("click", "--repeat", "40", "--delay", "10", "4")
    program.picture("4-terminal")
    type_text("exit")
    press_key("Return")
    wait_for("its end", lambda: not program.all(name="Running"))


def walk(program, project):
    program.find("push button", "New terminal")
    program.picture("1-start")
    read_history(program)
    edit_the_long_file(program, project)
    review(program)
    watch_the_terminal(program)
    activate_window()
    program.press("Settings")


if __name__ == "__main__":
    on_a_project(*sys.argv[1:], ASSISTANT, walk, prepare)
