"""The date is set while the program works: an hour back, ten years ahead, back to what is right, and at a start to a
day before all records. Nothing waits longer for it, says a wrong duration, is lost or changes its place.

Usage: clock_road.py PROGRAM ORVOCTL MOVED_CLOCK PICTURES
"""
import json
import os
import pathlib
import re
import subprocess
import sys

from desktop import Program, activate_window, wait_for
from home import on_a_project

HOUR = 3600
TEN_YEARS = 10 * 365 * 24 * HOUR

# Works until it is told to end.
ASSISTANT = r"""#!/bin/sh
case "$*" in 'login status' | 'auth status') echo 'Signed in'; exit 0 ;; esac
for word; do task=$word; done
while [ ! -e "$HOME/go" ]; do sleep 0.1; done
echo "NAME did: $task"
"""


class Clock:
    """The date of all programs that are started from here."""

    def __init__(self, library):
        self.library = library

    def prepare(self, root):
        self.file = root / "clock"
        self.go = root / "home/go"
        os.environ.update(LD_PRELOAD=self.library, MOVED_CLOCK=str(self.file))
        self.move(0)

    def move(self, seconds):
        fresh = self.file.with_suffix(".new")
        fresh.write_text(str(seconds))
        fresh.rename(self.file)


def work(program, clock, task, meanwhile):
    """Two assistants work on `task`; the clock is moved while they do."""
    program.send(task)
    wait_for("two terminals", lambda: len(program.all("terminal")) == 2)
    clock.move(meanwhile)
    clock.go.touch()
    wait_for("both exits", lambda: len(program.all(name="Exit 0")) == 2)
    clock.go.unlink()
    program.close_panes()


def told(orvoctl, *words):
    done = subprocess.run([orvoctl, *words, "--json"], capture_output=True, timeout=60, check=True)
    return json.loads(done.stdout)


def run_without_window(orvoctl, clock, project):
    """What it shows of the time that has passed is seconds, not years."""
    terminal, errors = os.openpty()
    run = subprocess.Popen([orvoctl, "run", "--json", "--timeout", "60", "--project", str(project), "in a terminal"],
                           stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors)
    os.close(errors)
    shown = b""
    for moved in (-HOUR, TEN_YEARS, 0):
        seen = len(shown)
        while not re.search(rb"  -?[1-9][0-9]* s\b", shown[seen:]):
            shown += os.read(terminal, 4096)
        clock.move(moved)
    clock.go.touch()
    answer = json.loads(run.communicate(timeout=60)[0])
    os.close(terminal)
    clock.go.unlink()
    assert (run.returncode, answer["message"]) == (0, ""), answer
    seconds = [int(number) for number in re.findall(rb"Codex .*  (-?[0-9]+) s\b", shown)]
    assert max(seconds) < 60 and seconds == sorted(seconds), seconds


def restart(program):
    program.process.terminate()
    assert program.process.wait(30) == 0
    assert program.standard_error() == "", program.standard_error()
    fresh = Program(program.process.args[0], program.pictures, program.process.args[1:])
    program.process, program.errors = fresh.process, fresh.errors
    program.find("push button", "New terminal")


def walk(program, project, orvoctl, clock):
    work(program, clock, "noon", meanwhile=-HOUR)
    work(program, clock, "an hour back", meanwhile=TEN_YEARS)
    work(program, clock, "far ahead", meanwhile=0)
    work(program, clock, "right again", meanwhile=0)

    runs = told(orvoctl, "runs")
    # A date that is wrong by years keeps its place in front, but is not what is meant by the latest.
    assert [run["prompt"] for run in runs] == ["far ahead", "right again", "an hour back", "noon"], runs
    assert "right again" in told(orvoctl, "output", "latest", "claude")["output"]
    names = [each for run in runs for each in [run["id"], *(copy["session"] for copy in run["copies"])]]
    assert len(set(names)) == 3 * len(runs), names
    titles = [entry["title"] for entry in told(orvoctl, "history")]
    assert titles[::2] == ["right again", "far ahead", "an hour back", "noon"], titles

    clock.move(-25 * TEN_YEARS // 10)
    restart(program)
    program.press("History")
    wait_for("the sessions", lambda: len([row for row in program.all("list item")
                                          if row.get_description().endswith("Exit 0")]) == 8)
    program.picture("long-ago")
    program.press("Workspace")
    work(program, clock, "long ago", meanwhile=0)
    assert {run["prompt"] for run in told(orvoctl, "runs")} >= {"long ago", "noon"}
    assert told(orvoctl, "history")[0]["title"] == "long ago"
    run_without_window(orvoctl, clock, project)
    activate_window()


def main(binary, orvoctl, library, pictures):
    clock = Clock(library)
    on_a_project(binary, pathlib.Path(pictures), ASSISTANT,
                 lambda program, project: walk(program, project, orvoctl, clock), clock.prepare)


if __name__ == "__main__":
    main(*sys.argv[1:])
