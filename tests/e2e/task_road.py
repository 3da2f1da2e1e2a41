"""The main job, done by hand: open a project, choose two assistants, send a task, answer, watch, close, quit.

Usage: task_road.py PROGRAM PICTURES
"""
import sys

from desktop import checked, press_key, set_text, text_of, type_text, wait_for
from home import on_a_project

TASK = "Say \"hello\" to 'everyone';\n$(touch hacked) `touch hacked`\nand stop."

ASSISTANT = r"""#!/bin/sh
# An assistant as far as the workspace can see: colour, a question, an answer, the task as it was given.
# Asked whether it is signed in, it only answers: that happens in whatever folder the workspace was started.
case "$*" in 'login status' | 'auth status') echo 'Not signed in'; exit 1 ;; esac
printf '\033[1;36m%s\033[0m is working in \033[33m%s\033[0m\n' NAME "${PWD##*/}"
for word; do task=$word; done
printf '%s' "$task" > "NAME.task"
printf 'Continue? [y/n] '
read -r answer
printf '\033[32mAnswer:\033[0m %s\n' "$answer"
[ "$answer" = y ]
"""


def run_task(program, project):
    for name in ("Claude Code", "Codex"):
        box = program.find("check box", name)
        wait_for(f"{name} to be ready and chosen", lambda box=box: checked(box))
    assert not checked(program.find("check box", "Z.ai")), "a tool without a profile must not look chosen"
    program.picture("1-opened")

    # Off and on again: the row is a real check box.
    codex = program.find("check box", "Codex")
    program.do(codex, "Toggle")
    wait_for("one selected", lambda: program.all(name="1 selected"))
    program.do(codex, "Toggle")
    wait_for("two selected", lambda: program.all(name="2 selected"))

    # In the project itself, not in copies of it.
    program.press("Shared folder", "radio button")
    field = program.find("text", "Task for selected assistants")
    set_text(field, TASK)
    wait_for("the task in the field", lambda: text_of(field) == TASK)
    program.picture("2-task-written")
    program.press("Run task")

    terminals = wait_for("two terminals", lambda: both(program.all("terminal")))
    for terminal in terminals:
        wait_for("the question", lambda terminal=terminal: "Continue? [y/n]" in text_of(terminal))
    program.picture("3-both-ask")
    for name in ("claude", "codex"):
        assert (project / f"{name}.task").read_text() == TASK, f"{name} was given another task"
    assert not (project / "hacked").exists(), "the task was read as shell syntax"

    for terminal, answer in zip(terminals, "yn"):
        program.click(terminal)
        type_text(answer)
        press_key("Return")
        wait_for("the answer on the screen", lambda t=terminal, a=answer: f"Answer: {a}" in text_of(t))
    wait_for("both exits", lambda: program.all(name="Exit 0") and program.all(name="Exit 1"))
    program.picture("4-both-ended")

    program.close_panes()
    program.find(name="Start with an idea")
    program.picture("5-closed")


def both(found):
    return found if len(found) == 2 else None


if __name__ == "__main__":
    on_a_project(*sys.argv[1:], ASSISTANT, run_task)
