"""A script by hand: filter the files, open one, edit and save it, run it, read its output in the terminal.

Usage: files_road.py PROGRAM PICTURES
"""
import sys

from desktop import press_key, set_text, text_of, type_text, wait_for
from home import on_a_project

ASSISTANT = "#!/bin/sh\nexit 1\n"

SCRIPT = "#!/bin/bash\n# counts\necho old\n"


def run_script(program, project):
    # A name that the shell would take apart, and a mode that must stay.
    script = project / "it's $(touch hacked) a script.sh"
    script.write_text(SCRIPT)
    script.chmod(0o755)
    # Lines of either end.
    (project / "windows.txt").write_bytes(b"one\r\ntwo\nthree\r\n")

    program.press("Files & runner")
    program.find(name="Make something here.")
    # The list follows the disk by itself.
    row = program.find("list item", script.name)
    program.picture("1-browsing")
    set_text(program.find("text", "Find a file…"), "SCRIPT")
    wait_for("the filter", lambda: not program.all("list item", "README.md"))
    program.click(row)
    editor = program.find("text", "Code editor")
    wait_for("the file's text", lambda: text_of(editor) == script.read_text())
    program.picture("2-opened")

    program.click(editor)
    press_key("ctrl+End")
    type_text("for n in 1 2 3; do")
    press_key("Return")
    press_key("Tab")
    type_text("echo \"tide $((n * 7))\"")
    press_key("Return")
    press_key("shift+Tab")
    type_text("done")
    program.find(name="Unsaved changes")
    program.picture("3-edited")
    press_key("ctrl+s")
    wait_for("the saved mark", lambda: not program.all(name="Unsaved changes"))
    expected = SCRIPT + "for n in 1 2 3; do\n    echo \"tide $((n * 7))\"\ndone"
    assert script.read_text() == expected, script.read_text()
    assert script.stat().st_mode & 0o777 == 0o755

    # What somebody else writes is told before it is saved over.
    script.write_text(expected + "\necho theirs\n")
    program.find(name="Changed on disk")
    program.picture("4-changed-on-disk")
    program.press("Reload file")
    wait_for("the new text", lambda: text_of(editor).endswith("echo theirs\n"))

    program.press("Run file")
    terminal = program.find("terminal")
    wait_for("the script's output", lambda: "tide 21" in text_of(terminal) and "theirs" in text_of(terminal))
    program.find(name="Exit 0")
    program.picture("5-ran")
    assert not (project / "hacked").exists(), "the name was read as shell syntax"

    program.press("Files & runner")
    set_text(program.find("text", "Find a file…"), "")
    program.edit("windows.txt", "one\ntwo\nthree\n")
    type_text("four")
    press_key("Return")
    press_key("ctrl+s")
    wait_for("the saved mark", lambda: not program.all(name="Unsaved changes"))
    assert (project / "windows.txt").read_bytes() == b"one\r\ntwo\nthree\r\nfour\r\n"

    field = program.find("text", "Run a command in this project")
    set_text(field, "echo free $((6 * 7))")
    program.press("Execute")
    wait_for("the command's output", lambda: any("free 42" in text_of(t) for t in program.all("terminal")))
    program.picture("6-command")
    # Away from the terminal, which keeps every control key to itself.
    program.press("Files & runner")
    program.click(program.find("text", "Code editor"))


if __name__ == "__main__":
    on_a_project(*sys.argv[1:], ASSISTANT, run_script)
