"""How runs of the program begin and end, in a real window.

Usage: lifecycle.py PROGRAM PICTURES SCENARIO SESSION_MANAGER
"""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from desktop import Program, press_key, text_of, type_text, wait_for, xdotool
from home import make_home

BINARY = SESSION_MANAGER = ""
PICTURES = pathlib.Path()
NO_ASSISTANT = "#!/bin/sh\nexit 1\n"


class Home:
    """A home in which several runs follow one another."""

    def __init__(self):
        self.root = pathlib.Path(tempfile.mkdtemp())
        self.project = make_home(self.root, NO_ASSISTANT)
        self.programs = []

    def start(self, *arguments, environment=None):
        program = Program(BINARY, PICTURES, arguments, environment)
        self.programs.append(program)
        program.find("push button", "New terminal")
        return program

    def later_start(self, *arguments):
        """A start beside a running instance; it must end by itself and with 0."""
        done = subprocess.run([BINARY, *arguments], stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
        assert (done.returncode, done.stdout, done.stderr) == (0, b"", b""), done

    def end(self):
        for program in self.programs:
            program.end()
        shutil.rmtree(self.root, ignore_errors=True)


def window_of(program):
    """The id of the program's window, shown or not."""
    found = subprocess.run(["xdotool", "search", "--all", "--pid", str(program.process.pid), "--name", "Orvo AI"],
                           capture_output=True, text=True).stdout.split()
    # The window manager knows it; others of this name serve the toolkit.
    managed = [window for window in found if "window state" in window_state(window)]
    return managed[-1] if managed else None


def active_window():
    return subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True).stdout.strip()


def window_state(window):
    return subprocess.run(["xprop", "-id", window, "WM_STATE"], capture_output=True, text=True).stdout


def is_minimized(window):
    return "Iconic" in window_state(window)


def wait_until_ended(program):
    return wait_for("the end of the program", lambda: program.process.poll() is not None and [program.process.poll()])[0]


def second_start(home):
    other = home.root / "other project"
    other.mkdir()
    (other / "sails.txt").touch()
    first = home.start("--workspace", str(home.project))
    window = wait_for("the window", lambda: window_of(first))

    # Minimised, and another folder.
    xdotool("windowminimize", window)
    wait_for("the minimised window", lambda: is_minimized(window))
    home.later_start("--workspace", str(other))
    wait_for("the window in front", lambda: not is_minimized(window) and active_window() == window)
    first.press("Files & runner")
    first.find("list item", "sails.txt")
    first.picture("second-start-1-restored")

    # Behind another window, and with what the desktop hands to a start.
    cover = subprocess.Popen(["xterm", "-geometry", "200x60+0+0"], stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)
    try:
        wait_for("the other window in front", lambda: active_window() not in ("", window))
        os.environ["XDG_ACTIVATION_TOKEN"] = "token-of-the-desktop"
        home.later_start("--new-terminal")
        wait_for("the window in front", lambda: active_window() == window)
    finally:
        del os.environ["XDG_ACTIVATION_TOKEN"]
        cover.kill()
        cover.wait()
    first.find("terminal")

    # Only one of two that start at the same time stays.
    first.process.kill()
    first.process.wait()
    both = [subprocess.Popen([BINARY], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for _ in range(2)]
    try:
        gone = wait_for("one of two to end", lambda: [p for p in both if p.poll() is not None])
        assert [p.returncode for p in gone] == [0], gone
        (stays,) = [p for p in both if p not in gone]
        time.sleep(1)
        assert stays.poll() is None
    finally:
        for process in both:
            process.kill()
            process.wait()


def menus(home):
    program = home.start("--workspace", str(home.project))
    window = wait_for("the window", lambda: window_of(program))
    xdotool("windowactivate", "--sync", window)
    press_key("ctrl+comma")
    program.find(name="Settings", role="label")
    press_key("ctrl+n")
    terminal = program.find("terminal")

    # In a terminal plain Ctrl keys are the program's, and those with Shift are the menus'.
    wait_for("the prompt", lambda: text_of(terminal).strip())
    program.click(terminal)
    type_text("cat -v")
    press_key("Return")
    for key in ("ctrl+n", "ctrl+q", "ctrl+o", "Return"):
        press_key(key)
    # ^Q is start, which the line discipline takes; that the program still runs says where it went.
    wait_for("the program's keys", lambda: "^N^O" in text_of(terminal).replace("^Q", ""))
    press_key("ctrl+shift+n")
    wait_for("the second terminal", lambda: len(program.all("terminal")) == 2)
    program.picture("menus-1-keys")

    press_key("ctrl+shift+m")
    wait_for("the minimised window", lambda: is_minimized(window))
    home.later_start()
    wait_for("the window in front", lambda: not is_minimized(window) and active_window() == window)



def files_below(folder):
    return {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def capture_beside_a_window(home):
    first = home.start("--workspace", str(home.project))
    # Until the window has stored what its start has found out.
    kept = None
    while kept != (kept := files_below(home.root / "config")):
        time.sleep(1)
    pictures = home.root / "pictures"
    # It neither goes to the open window nor disturbs it.
    done = subprocess.run([BINARY, "--capture", str(pictures)], stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=60)
    assert (done.returncode, done.stdout, done.stderr) == (0, b"", b""), done
    assert sorted(path.name for path in pictures.iterdir()) == [
        "Appearance.png", "Assistants.png", "Files & runner.png", "Mac actions.png", "Settings.png", "Workspace.png"]
    for path in pictures.iterdir():
        assert path.read_bytes().startswith(b"\x89PNG"), path
        shutil.copy(path, PICTURES)
    assert kept == files_below(home.root / "config")
    assert first.process.poll() is None
    first.press("Settings")
    home.later_start()


def children_environment(home):
    seen = home.root / "environment"
    (home.root / "home/.zshrc").write_text(f'env -0 > "{seen}.part" && mv "{seen}.part" "{seen}"\n')
    del os.environ["QT_QPA_PLATFORM"]
    program = home.start("--workspace", str(home.project), "--new-terminal", environment={
        "DESKTOP_STARTUP_ID": "orvo-1_TIME0", "XDG_ACTIVATION_TOKEN": "token-of-the-desktop"})
    program.find("terminal")
    wait_for("the environment", seen.exists)
    names = {entry.split(b"=")[0].decode() for entry in seen.read_bytes().split(b"\0") if entry}
    inherited = set(os.environ) | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"}
    of_shell = {"TERM", "COLORTERM", "PWD", "OLDPWD", "SHLVL", "LOGNAME", "_"}
    assert names - inherited - of_shell == set(), names - inherited - of_shell
    assert "DISPLAY" in names


# The first ten terminals hold a program that does not listen, each with a child that does not listen either.
DEAF = r"""
print -r -- $$ >> ~/sessions
for number in {1..10}; do
  if mkdir ~/deaf.$number 2>/dev/null; then
    exec /bin/sh -c "trap '' TERM HUP; (trap '' TERM HUP; while :; do sleep 5; done) & echo deaf; while :; do sleep 5; done"
  fi
done
"""


def quit_with_sessions(home):
    count = 50
    (home.root / "home/.zshrc").write_text(DEAF)
    program = home.start("--workspace", str(home.project))
    for _ in range(count):
        home.later_start("--new-terminal")
    started = home.root / "home/sessions"
    wait_for("all sessions", lambda: len(started.read_text().split()) == count, limit=120)
    pids = {int(pid) for pid in started.read_text().split()}
    # The shells of the terminals' own command lines lead the sessions.
    sessions = {os.getsid(pid) for pid in pids}
    wait_for("the deaf programs", lambda: len(list((home.root / "home").glob("deaf.*"))) == 10)
    assert len(sessions) == count
    program.picture("quit-1-running")

    xdotool("windowactivate", "--sync", window_of(program))
    # A terminal keeps the control keys to itself.
    program.press("Files & runner")
    press_key("ctrl+q")
    program.find(name="Quit and stop running sessions?")
    program.picture("quit-2-question")
    program.press("Cancel")
    wait_for("the answer", lambda: not program.all(name="Quit and stop running sessions?"))
    assert living(sessions) == sessions, "nothing is stopped before the answer"

    press_key("ctrl+q")
    program.find(name="Quit and stop running sessions?")
    button = program.find("push button", "Quit & stop")
    begin = time.monotonic()
    program.do(button)
    # Five times what is promised, for a machine that does other things as well.
    wait_for("all sessions to be gone", lambda: not living(sessions), limit=7.5)
    print(f"{count} sessions, 10 of them deaf, were gone after {time.monotonic() - begin:.2f} s")
    assert wait_until_ended(program) == 0
    assert living(sessions) == set()


def escaped_program(home):
    started = home.root / "home/escaped"
    (home.root / "home/.zshrc").write_text("setsid sh -c 'echo $$ > ~/escaped; exec sleep 600' &!\n")
    for answer in ("Leave running", "Stop them"):
        started.unlink(missing_ok=True)
        program = home.start("--workspace", str(home.project), "--new-terminal")
        pid = int(wait_for("the program", lambda: started.exists() and started.read_text()))
        program.press("Files & runner")
        press_key("ctrl+q")
        program.press("Quit & stop")
        program.find(name="Some programs are still running.")
        program.picture("escaped-1-named")
        assert any(f"sleep ({pid})" in node.get_name() for node in program.all("label")), "it is not named"
        program.press(answer)
        assert wait_until_ended(program) == 0
        if answer == "Leave running":
            os.kill(pid, signal.SIGKILL)  # fails when it is gone
        else:
            wait_for("its end", lambda pid=pid: not pathlib.Path(f"/proc/{pid}").exists()
                     or " Z " in pathlib.Path(f"/proc/{pid}/stat").read_text())


def living(sessions):
    """Those of the sessions in which some process still runs."""
    found = set()
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            state, _, _, session = stat.read_text().rpartition(")")[2].split()[:4]
        except OSError:  # it has just ended
            continue
        if state not in "ZX" and int(session) in sessions:
            found.add(int(session))
    return found


def type_into_the_notes(program):
    editor = program.edit("README.md", "# Harbor notes\n")
    type_text("half a thought")
    wait_for("the text", lambda: text_of(editor).endswith("thought"))


def unsaved_text(home):
    kept = home.root / "data/Orvo AI/Recovery"
    program = home.start("--workspace", str(home.project))
    type_into_the_notes(program)
    wait_for("the text to be kept", lambda: kept.exists() and any("half a thought" in file.read_text()
                                                                  for file in kept.glob("*.json")))
    program.process.send_signal(signal.SIGSEGV)
    assert wait_until_ended(program) == -signal.SIGSEGV

    # The next start says what has happened, and gives the text back.
    program = home.start("--workspace", str(home.project))
    program.find(name="Orvo AI ended unexpectedly.")
    program.picture("unsaved-1-told")
    program.press("OK")
    restore(program)
    editor = program.find("text", "Code editor")
    assert text_of(editor) == "# Harbor notes\nhalf a thought"
    program.click(editor)
    press_key("ctrl+End")
    type_text(" more")
    wait_for("the text", lambda: text_of(editor).endswith("thought more"))
    # Before the next time that it would be kept by itself.
    program.process.terminate()
    assert wait_until_ended(program) == 0
    assert program.standard_error() == ""

    program = home.start("--workspace", str(home.project))
    assert not program.all(name="Orvo AI ended unexpectedly."), "it was told of already"
    restore(program)
    editor = program.find("text", "Code editor")
    assert text_of(editor) == "# Harbor notes\nhalf a thought more"
    assert (home.project / "README.md").read_text() == "# Harbor notes\n"

    # Quitting asks; what is discarded is not offered again.
    xdotool("windowactivate", "--sync", window_of(program))
    press_key("ctrl+q")
    program.find(name="Save your changes?")
    program.picture("unsaved-3-discard")
    program.press("Discard")
    assert wait_until_ended(program) == 0
    assert list(kept.glob("*.json")) == []


def restore(program):
    program.find(name="Restore your unsaved changes?")
    program.picture("unsaved-2-offered")
    program.press("Restore")
    wait_for("the answer", lambda: not program.all(name="Restore your unsaved changes?"))


def log_out(home):
    manager = subprocess.Popen([SESSION_MANAGER], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        word, address = manager.stdout.readline().split()
        assert word == "address"
        program = home.start("--workspace", str(home.project), "--new-terminal",
                             environment={"SESSION_MANAGER": address})
        assert manager.stdout.readline() == "client registered\n"
        program.find("terminal")
        type_into_the_notes(program)

        # Neither the session nor the unsaved text holds up a log-out.
        manager.stdin.write("log out\n")
        manager.stdin.flush()
        assert wait_until_ended(program) == 0
        said = manager.stdout.read().splitlines()
        assert said[-2:] == ["saved yes", "client gone"], said
        # The next log-in starts it again, in words that it understands.
        restart = [line.removeprefix("restart ") for line in said if line.startswith("restart ")]
        assert restart == [BINARY], restart
        assert manager.wait(30) == 0
    finally:
        manager.kill()
        manager.wait()

    program = home.start("--workspace", str(home.project))
    restore(program)
    assert text_of(program.find("text", "Code editor")) == "# Harbor notes\nhalf a thought"


ONE_FONT = """<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig><dir>/usr/share/fonts/truetype/jetbrains-mono</dir></fontconfig>"""


def poor_surroundings(home):
    """The window opens and works all the same."""
    # No locks in the home: the second start still finds the first.
    first = home.start("--workspace", str(home.project), environment={"LD_PRELOAD": NO_LOCKS})
    done = subprocess.run([BINARY], stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                          env={**os.environ, "LD_PRELOAD": NO_LOCKS})
    assert (done.returncode, done.stdout, done.stderr) == (0, b"", b""), done
    first.process.kill()
    first.process.wait()
    (home.root / "fonts.conf").write_text(ONE_FONT)
    for environment in ({"LD_PRELOAD": NO_LOCKS},
                        {"FONTCONFIG_FILE": str(home.root / "fonts.conf")},
                        {"XDG_RUNTIME_DIR": "/nonexistent"}):
        program = home.start("--workspace", str(home.project), "--new-terminal", environment=environment)
        terminal = program.find("terminal")
        wait_for("the prompt", lambda: text_of(terminal).strip())
        program.process.terminate()
        assert wait_until_ended(program) == 0
        assert program.standard_error() == "", program.standard_error()


SCENARIOS = [menus, second_start, capture_beside_a_window, children_environment, quit_with_sessions, escaped_program, log_out, unsaved_text, poor_surroundings]


if __name__ == "__main__":
    BINARY, pictures, name, SESSION_MANAGER, NO_LOCKS = sys.argv[1:]
    PICTURES = pathlib.Path(pictures)
    shutil.rmtree(PICTURES, ignore_errors=True)
    (scenario,) = [scenario for scenario in SCENARIOS if scenario.__name__ == name]
    home = Home()
    try:
        scenario(home)
    except BaseException:
        for program in home.programs:
            if program.process.poll() is None:
                program.picture("failed")
        raise
    finally:
        home.end()
