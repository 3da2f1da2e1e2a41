"""The program is killed at random moments of its work, and started again each time: every file of the project is
old or new, what was replaced is in the backup, settings and records can be read, an apply that was cut off is named.

Usage: abuse.py PROGRAM ORVOCTL PICTURES [KILLS [SEED]]
"""
import json
import os
import pathlib
import random
import subprocess
import sys
import time

from desktop import Program, activate_window, text_of, wait_for, xdotool
from home import on_a_project

FILES = 300

# Changes every file of the project and adds as many.
ASSISTANT = r"""#!/bin/sh
case "$*" in 'login status' | 'auth status') echo 'Signed in'; exit 0 ;; esac
for name in old-*.txt; do echo "new from NAME $$" > "$name"; done
for number in $(seq %d); do echo "added by NAME $$" > "added-$number.txt"; done
""" % FILES


def contents(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir() if path.is_file()}


class Abuse:
    def __init__(self, program, project, orvoctl, chance):
        self.program = program
        self.project = project
        self.orvoctl = orvoctl
        self.chance = chance
        self.cut_applies = 0
        self.data = pathlib.Path(os.environ["XDG_DATA_HOME"])
        self.config = pathlib.Path(os.environ["XDG_CONFIG_HOME"])

    def kill(self, within):
        """At some moment of the next `within` seconds."""
        time.sleep(self.chance.uniform(0, within))
        self.program.process.kill()
        self.program.process.wait()

    def start(self):
        fresh = Program(self.program.process.args[0], self.program.pictures, ["--workspace", str(self.project)])
        self.program.process, self.program.errors = fresh.process, fresh.errors
        self.program.find("push button", "New terminal")

    # Each does one kind of work and is killed in the middle of it.

    def in_a_task(self):
        before = contents(self.project)
        self.program.send("Change everything")
        self.kill(1.5)
        assert contents(self.project) == before, "a task in copies changed the project"

    def in_an_apply(self):
        program = self.program
        program.send("Change everything")
        wait_for("both exits", lambda: len(program.all(name="Exit 0")) == 2)
        program.press("Team runs")
        review = wait_for("a copy", lambda: program.all("push button", "Review files"))
        program.do(review[0])
        program.find(name=f"{2 * FILES} changed files")
        program.press("Select all")
        newest = max((self.data / "Orvo AI/Runs").iterdir(), key=lambda run: run.stat().st_mtime)
        before = contents(self.project)
        copies = {copy["provider"]: pathlib.Path(copy["directory"])
                  for copy in json.loads((newest / "run.json").read_text())["copies"]}
        after = contents(copies["claude"])
        program.press(f"Apply selected ({2 * FILES})")
        program.press("Apply changes")
        self.kill(2.5)
        now = contents(self.project)
        temporary = {name for name in now if name not in before and name not in after}
        backups = {path.name: path.read_bytes() for path in newest.glob("backup-*/*") if path.is_file()}
        for name, content in now.items():
            if name in temporary:
                continue
            assert content in (before.get(name), after[name]), (
                f"{name} is neither old nor new: {content} was {before.get(name)}, becomes {after[name]}")
            if name in before and content != before[name]:
                assert backups.get(name) == before[name], f"{name} was replaced without a backup"
        missing = {name for name in before if name not in now}
        assert not missing, f"{missing} are gone"
        # The journal is there from before the project is touched until the apply has ended.
        under_way = bool(list(newest.glob("backup-*.journal")))
        assert under_way or not temporary, "temporary files are left of an apply that has ended"
        new = [name for name in after if now.get(name) == after[name]]
        self.start()
        program.press("Team runs")
        program.find("push button", "Review files")
        # Before the first touch nothing is to be told, and after the last only tidying was left.
        if under_way and (temporary or new) and len(new) < len(after):
            program.find(name="Applying files was interrupted")
            self.cut_applies += 1
        left = {name for name in contents(self.project) if name not in before and name not in after}
        assert not left, f"{left} were left in the project"
        self.program.process.kill()
        self.program.process.wait()

    def in_a_save(self):
        program = self.program
        notes = self.project / "notes.md"
        before = notes.read_text()
        editor = program.edit("notes.md", before)
        line = f"line {self.chance.randrange(10 ** 6)} "
        xdotool("type", "--delay", "4", "--", line)
        wait_for("the line", lambda: text_of(editor) == before + line)
        xdotool("key", "ctrl+s")
        self.kill(0.03)
        assert notes.read_text() in (before, before + line), "the file is neither old nor new"
        self.start()
        # What had been typed and not saved may be offered again.
        if program.all("push button", "Discard"):
            program.press("Discard")
        self.program.process.kill()
        self.program.process.wait()

    def in_a_setting(self):
        self.program.press("Appearance")
        palettes = wait_for("the palettes", lambda: self.program.all("radio button"))
        self.program.do(self.chance.choice(palettes))
        self.kill(0.05)

    def check_records(self):
        for words in (["runs"], ["history"], ["providers"]):
            done = subprocess.run([self.orvoctl, *words, "--json"], capture_output=True, timeout=60)
            assert done.returncode == 0, done
            json.loads(done.stdout)
        damaged = [path for folder in (self.data, self.config) for path in folder.rglob("*.damaged")]
        assert not damaged, f"could not be read: {damaged}"

    def walk(self, kills):
        works = [self.in_a_task, self.in_an_apply, self.in_a_save, self.in_a_setting]
        for number in range(kills):
            if number > 0:
                self.start()
            works[number % len(works)]()
            self.check_records()
            for name in [path for path in self.project.glob("added-*.txt")]:
                name.unlink()
        self.start()
        print(f"{kills} kills; {self.cut_applies} applies were cut off and named")
        activate_window()


def prepare(root):
    project = root / "harbor notes"
    for number in range(1, FILES + 1):
        (project / f"old-{number}.txt").write_text(f"old {number}\n")
    (project / "notes.md").write_text("notes\n")


def main(binary, orvoctl, pictures, kills="200", seed=None):
    seed = seed or str(random.randrange(10 ** 6))
    print(f"seed {seed}")
    on_a_project(binary, pictures, ASSISTANT,
                 lambda program, project: Abuse(program, project, orvoctl, random.Random(seed)).walk(int(kills)),
                 prepare)


if __name__ == "__main__":
    main(*sys.argv[1:])
