"""A team run in the window: a task to two copies, their changes reviewed, one file taken over.

Usage: team_run_road.py PROGRAM PICTURES
"""
import sys

from desktop import checked, set_text, wait_for
from home import on_a_project

# Both write the same file, each in its own words, and claude adds one.
ASSISTANT = r"""#!/bin/sh
case "$*" in 'login status' | 'auth status') echo 'Signed in'; exit 0 ;; esac
echo 'Tide table by NAME' >> README.md
[ NAME = claude ] && echo 'low 06:12' > tides.txt
echo 'NAME has finished'
"""


def run_team(program, project):
    for name in ("Claude Code", "Codex"):
        box = program.find("check box", name)
        wait_for(f"{name} to be ready and chosen", lambda box=box: checked(box))
    before = {path.name: path.read_bytes() for path in project.iterdir()}
    set_text(program.find("text", "Task for selected assistants"), "Add a tide table")
    program.press("Run task")
    wait_for("both exits", lambda: len(program.all(name="Exit 0")) == 2)
    program.picture("1-both-ended")
    assert before == {path.name: path.read_bytes() for path in project.iterdir()}, "the project was touched"

    program.press("Team runs")
    review = wait_for("the copy of Claude Code", lambda: [
        button for button in program.all("push button", "Review files")
        if button.get_description() == "Claude Code"])
    program.do(review[0])
    program.find(name="2 changed files")
    program.picture("2-review")
    tides = program.find("check box", "tides.txt")
    program.do(tides, "Toggle")
    program.press("Apply selected (1)")
    program.press("Apply changes")
    program.find(name="Applied 1 files. Originals are saved in the run’s backup folder.")
    program.picture("3-applied")
    assert (project / "tides.txt").read_text() == "low 06:12\n"
    assert (project / "README.md").read_bytes() == before["README.md"], "a file was applied that was not chosen"


if __name__ == "__main__":
    on_a_project(*sys.argv[1:], ASSISTANT, run_team)
