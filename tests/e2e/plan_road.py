"""A drafted plan carried out in another application: opened, typed into, saved; and a step that loses the front.

Usage: plan_road.py PROGRAM PICTURES TYPING_TARGET
"""
import functools
import json
import os
import pathlib
import sys

from desktop import set_text, wait_for
from home import on_a_project

LINE = "Flut um 6:12 – \"it's\" <high> 潮 👩‍🚀 €½"

PLAN = {
    "explanation": "Writes one line into the notes and saves them.",
    "steps": [
        {"id": 1, "title": "Open the notes", "action": "open_app", "app": "org.example.Notes", "value": ""},
        {"id": 2, "title": "Write the line", "action": "type_text", "app": "org.example.Notes", "value": LINE},
        {"id": 3, "title": "Save", "action": "key", "app": "org.example.Notes", "value": "command+s"},
        {"id": 4, "title": "Write elsewhere", "action": "type_text", "app": "org.example.Windowless",
         "value": "must not appear"},
    ],
}

# Answers a planning request with the plan that lies beside the project.
ASSISTANT = r"""#!/bin/sh
case "$1" in login | auth) echo 'Signed in'; exit 0 ;; esac
while [ $# -gt 0 ]; do [ "$1" = --output-last-message ] && answer=$2; shift; done
cp "$HOME/plan.json" "$answer"
echo 'drafted'
"""


def install_applications(target, root):
    entries = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "applications"
    entries.mkdir(parents=True)
    saved = root / "saved.txt"
    for identifier, command in (("org.example.Notes", f'"{target}" "{saved}"'),
                                ("org.example.Windowless", "sleep 5")):
        (entries / f"{identifier}.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName={identifier}\nExec={command}\n")
    (root / "home/plan.json").write_text(json.dumps(PLAN))


def run_plan(program, project):
    saved = project.parent / "saved.txt"
    program.press("Mac actions")
    set_text(program.find("text", "Mac task to plan"), "Note the tide")
    program.press("Make a plan")
    program.find(name="Review the steps below. Run next step performs one action only.")
    program.find(name=LINE.replace("\u200d", "⟨U+200D⟩"))
    program.picture("1-plan")

    for number in (1, 2, 3):
        run_step(program)
        wait_for(f"step {number} to be carried out",
                 lambda number=number: len(program.all(name="Carried out")) == number)
    program.picture("2-carried-out")
    assert wait_for("the saved file", saved.read_text) == LINE

    run_step(program)
    program.find(name="The target app is no longer active. Nothing was typed. Try this step again.")
    assert len(program.all(name="Carried out")) == 3
    assert saved.read_text() == LINE
    # The keyboard back to our own window.
    program.click(program.find(name="Say what you want to do."))


def run_step(program):
    program.press("Run next step")
    program.press("Run this step")


if __name__ == "__main__":
    binary, pictures, target = sys.argv[1:]
    on_a_project(binary, pictures, ASSISTANT, run_plan, functools.partial(install_applications, target))
