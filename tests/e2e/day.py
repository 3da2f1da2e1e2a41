"""A day of work: three projects, tasks in both modes, edits, applied and refused files, a plan, a dictated draft,
themes, a cleaned history, and a quit with sessions running. Afterwards nothing is left over and everything can be
read.

Usage: day.py PROGRAM ORVOCTL PICTURES [TASKS]
"""
import functools
import json
import os
import pathlib
import shutil
import subprocess
import sys
import time

from companion_road import click_pet, draft, pet
from desktop import activate_window, press_key, set_text, text_of, wait_for, xdotool
from home import on_a_project
from voice_road import PROGRAMS, SKIPPED, say, sound_server

MEMORY_LIMIT = 20 * 1024  # KiB that a day may add

# Edits what is there, adds something of its own, and answers the planner. A task "wait" never ends by itself.
ASSISTANT = r"""#!/bin/sh
case "$*" in 'login status' | 'auth status') echo 'Signed in'; exit 0 ;; esac
for word; do task=$word; done
for word; do [ "$previous" = --output-last-message ] && answer=$word; previous=$word; done
[ -n "$answer" ] && { cp "$HOME/plan.json" "$answer"; exit 0; }
case "$task" in wait) echo 'NAME waits'; exec sleep 600 ;; esac
printf '\033[1;36mNAME\033[0m: %s\n' "$task"
seq 1 400
echo "NAME: $task" >> README.md
echo "$task" > "NAME.txt"
exit 0
"""

PLAN = {"explanation": "Looks at the notes.",
        "steps": [{"id": 1, "title": "Open the notes", "action": "open_url", "app": "org.example.Browser",
                   "value": "https://notes.example/"}]}


class Process:
    """What a running program holds."""

    def __init__(self, pid):
        self.folder = pathlib.Path(f"/proc/{pid}")

    def descriptors(self):
        return len(list((self.folder / "fd").iterdir()))

    def threads(self):
        return len(list((self.folder / "task").iterdir()))

    def children(self):
        pids = []
        for task in (self.folder / "task").iterdir():
            pids += (task / "children").read_text().split()
        return pids

    def memory(self):
        """KiB that are this program's alone."""
        for line in (self.folder / "smaps_rollup").read_text().splitlines():
            if line.startswith("Pss_Anon:"):
                return int(line.split()[1])
        raise AssertionError("no memory map")


class Day:
    def __init__(self, program, project, binary, orvoctl, tasks, sound):
        self.program = program
        self.binary = binary
        self.orvoctl = orvoctl
        self.tasks = tasks
        self.sound = sound
        self.sent = 0
        self.projects = [project]
        for name in ("tide tables", "lumen-site"):
            other = project.parent / name
            shutil.copytree(project, other)
            self.projects.append(other)
        git = ["git", "-C", str(self.projects[2]), "-c", "user.name=a", "-c", "user.email=a@b.example"]
        subprocess.run([*git, "init", "-q"], check=True)
        subprocess.run([*git, "add", "-A"], check=True)
        subprocess.run([*git, "commit", "-qm", "first"], check=True)
        self.project = project

    def open(self, project):
        """A second start hands its folder to the open window."""
        done = subprocess.run([self.binary, "--workspace", str(project)], stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=60)
        assert (done.returncode, done.stderr) == (0, b""), done
        self.project = project
        self.program.find(name=project.name)

    def send(self, task, mode):
        """To both assistants; waits until both have ended, and closes their panes."""
        program = self.program
        program.press("Workspace")
        program.press(mode, "radio button")
        program.send(task)
        self.sent += 2
        wait_for("both exits", lambda: len(program.all(name="Exit 0")) == 2, 60)
        program.close_panes()

    def apply(self, name):
        """One file of the newest run; true when it was taken over, false when the application refused."""
        program = self.program
        program.review("Claude Code")
        program.find(name="2 changed files")
        program.do(program.find("check box", name), "Toggle")
        program.press("Apply selected (1)")
        program.press("Apply changes")
        done = "Applied 1 files. Originals are saved in the run’s backup folder."
        refused = lambda: [node for node in program.all() if "since this run began" in (node.get_name() or "")]
        return wait_for("an answer", lambda: (program.all(name=done) and "applied") or (refused() and "refused")
                        ) == "applied"

    def edit(self, line):
        program = self.program
        program.edit("README.md", (self.project / "README.md").read_text())
        xdotool("type", "--delay", "5", "--", line)
        program.find(name="Unsaved changes")
        press_key("ctrl+s")
        wait_for("the saved mark", lambda: not program.all(name="Unsaved changes"))
        assert (self.project / "README.md").read_text().endswith(line)

    def change_theme(self, number):
        self.program.press("Appearance")
        palettes = wait_for("the palettes", lambda: self.program.all("radio button"))
        self.program.do(palettes[number % len(palettes)])

    def plan(self):
        program = self.program
        program.press("Mac actions")
        set_text(program.find("text", "Mac task to plan"), "Look at the notes")
        program.press("Make a plan")
        program.find(name="1. Open the notes")
        program.press("Workspace")
        program.close_panes()

    def dictate(self):
        program = self.program
        wait_for("the pet", pet)
        click_pet()
        wait_for("the draft", draft)
        program.press("Microphone")
        program.find(name="Listening… tap the microphone to stop.")
        say("Please make a new plan before you change any files.", self.sound)
        field = program.find("text", "Companion draft")
        wait_for("the words", lambda: {"new", "plan", "files"} <= set(text_of(field).split()))
        program.press("Stop mic")
        wait_for("the pet to rest", lambda: program.all(name="Microphone off. Your draft is ready to review."))
        press_key("Escape")
        wait_for("the draft to close", lambda: not draft())
        activate_window()

    def clear_history(self):
        program = self.program
        program.press("History")
        program.press("Clear history")
        program.find(name="Clear Orvo’s saved history?")
        program.press("Clear")
        program.find(name="Your next session starts the story.")

    def shell_output(self, *words):
        done = subprocess.run([self.orvoctl, *words, "--json"], capture_output=True, timeout=60)
        assert done.returncode == 0, done
        return json.loads(done.stdout)

    def walk(self):
        program = self.program
        process = Process(program.process.pid)
        program.find("push button", "New terminal")
        # Every page has been seen, and each kind of work done once: what is made once is made.
        self.plan()
        self.send("warm up", "Separate copies")
        assert self.apply("claude.txt")
        self.dictate()
        for page in ("Assistants", "History", "Companion", "Settings", "Workspace"):
            program.press(page)
        time.sleep(3)
        before = (process.descriptors(), process.threads(), process.memory())

        number = 0
        while self.sent < self.tasks:
            number += 1
            self.open(self.projects[number % len(self.projects)])
            separate = number % 2 == 0
            self.send(f"task {number}", "Separate copies" if separate else "Shared folder")
            if separate:
                unchanged = number % 4 == 0
                if not unchanged:
                    (self.project / "README.md").write_text("Somebody else was here.\n")
                assert self.apply("README.md") == unchanged
                text = (self.project / "README.md").read_text()
                assert (f"task {number}\n" in text) == unchanged, text
                assert unchanged or text == "Somebody else was here.\n", text
            if number % 3 == 0:
                self.edit(f"edit {number}")
                self.change_theme(number)
            if number == 2:
                self.clear_history()
        program.press("Workspace")
        program.picture("1-evening")

        wait_for("the children to be gone", lambda: not process.children())
        time.sleep(3)
        after = (process.descriptors(), process.threads(), process.memory())
        print(f"descriptors, threads, KiB: {before} in the morning, {after} in the evening")
        assert after[0] <= before[0] + 2, "descriptors were left open"
        assert after[1] <= before[1] + 2, "threads were left"
        assert after[2] <= before[2] + MEMORY_LIMIT, "memory was left"
        runs = self.shell_output("runs")
        assert len(runs) >= 2, runs
        for run in runs:
            self.shell_output("review", run["id"], "claude")
        entries = self.shell_output("history")
        assert entries and all(entry["output"] is not None for entry in entries if "output" in entry)
        scratch = list(pathlib.Path(os.environ["TMPDIR"]).iterdir())
        assert not scratch, f"temporary files were left: {scratch}"

        # The evening: two sessions still run.
        set_text(program.find("text", "Task for selected assistants"), "wait")
        program.press("Shared folder", "radio button")
        program.press("Run task")
        wait_for("both at work", lambda: len(process.children()) >= 2)
        children = process.children()
        press_key("ctrl+shift+q")  # plain Ctrl belongs to the session with the focus
        program.find(name="Quit and stop running sessions?")
        program.picture("2-quitting")
        program.press("Quit & stop")
        assert program.process.wait(30) == 0
        assert program.standard_error() == "", program.standard_error()
        wait_for("the sessions to be gone", lambda: not [pid for pid in children if os.path.exists(f"/proc/{pid}")])


def walk(binary, orvoctl, tasks, sound, program, project):
    day = Day(program, project, binary, orvoctl, tasks, sound)
    day.walk()
    # The next morning, which ends the usual way.
    morning = type(program)(binary, program.pictures / "morning", [])
    program.process, program.errors = morning.process, morning.errors
    program.find("push button", "New terminal")
    program.press("History")
    program.find(name="Pick up the thread.")
    activate_window()


def prepare(root):
    (root / "home/plan.json").write_text(json.dumps(PLAN))
    scratch = root / "scratch"
    scratch.mkdir()
    os.environ["TMPDIR"] = str(scratch)


def main(binary, orvoctl, pictures, tasks="40"):
    if not all(map(shutil.which, PROGRAMS)):
        print("what dictation is tried with is not installed")
        return SKIPPED
    with sound_server() as sound:
        on_a_project(binary, pictures, ASSISTANT, functools.partial(walk, binary, orvoctl, int(tasks), sound),
                     prepare)
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
