#!/usr/bin/env python3
"""Records what everyday programs write to a terminal, for the tests of the interpreter.

usage: record_terminal.py OUTPUT_FOLDER [NAME...]

Each program runs in a pseudo-terminal of 24 × 80 and of 50 × 160 cells, in a new home folder, and is sent the keys of
its list; only what it writes is kept, as NAME-ROWSxCOLUMNS.bytes. Needs vim, htop, less, dialog, mc, tmux, fzf, man, git
and npm, and the right to make a process namespace (htop shows every process of its namespace). The assistants (claude,
codex, gemini) are recorded signed out; they are found on the path, for example in the node_modules/.bin of a temporary
folder that npm installed them into.
"""
import fcntl
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import termios
import time

SIZES = [(24, 80), (50, 160)]
# Some show the path of their home, so it has one name on every machine.
HOME = pathlib.Path("/tmp/home")
QUIET_SECONDS = 0.6
LONGEST_SECONDS = 4
# For those that load for a while before they draw, and those with something that moves.
SLOW = {"claude", "codex", "gemini", "npm"}
SLOW_QUIET_SECONDS = 4
SLOW_LONGEST_SECONDS = 12
# An animation says nothing new after some pictures; what is kept ends with a whole one.
LARGEST_BYTES = 48_000
PICTURE_END = b"\x1b[?2026l"

SOURCE = """#include <stdio.h>

/* Prints a table of squares, 世界 and ✅ in a comment. */
int main(void) {
    for (int i = 0; i < 10; ++i) {
        printf("%d\\t%d\\n", i, i * i);
    }
    return 0;
}
"""

# The command line, and the keys that are sent one after the other, each when the program has become quiet.
PROGRAMS = {
    "vim": (["vim", "-u", "NONE", "-N", "+syntax on", "+set number hlsearch background=dark", "squares.c"],
            ["/printf\r", "Onew line é世\x1b", ":split\r", "\x06", "dd", "u"]),
    "less": (["less", "-R", "long.txt"], [" ", " ", "/line 77\r", "b", "G", "k"]),
    "dialog": (["dialog", "--title", "Choose", "--menu", "One of these:", "14", "40", "4", "a", "First entry", "b",
                "Second entry", "c", "Third entry"], ["\x1b[B", "\t", "\t"]),
    "mc": (["mc", "-u", "-d", "folder", "folder"], ["\x1b[B", "\t", "\x1b[21~"]),
    "htop": (["unshare", "--fork", "--pid", "--mount-proc", "htop", "-d", "50"], ["\x1b[B", "\x1b[15~"]),
    "tmux": (["tmux", "-f", "/dev/null", "-L", "recording", "new-session", "sh", ";", "set", "status-right", ""],
             ["echo one\r", "\x02%", "echo two\r", "\x02\"", "printf '\\033[41mred\\033[K\\033[m\\n'\r"]),
    "fzf": (["sh", "-c", "cat names.txt | fzf --no-mouse"], ["an", "\x1b[A", "\x7f"]),
    "man": (["man", "-P", "less -R", "true"], [" ", "b"]),
    "git": (["git", "-c", "color.ui=always", "log", "--graph", "--stat", "--no-decorate"], [" "]),
    "npm": (["sh", "-c", "npm help | head -n 32; npm install ../dependency; npm ls"], []),
    "claude": (["claude"], ["\r", "hello é世", "\x7f", "/"]),
    "codex": (["codex", "--no-daemon"], ["\x1b[B", "\x1b[B"]),
    "gemini": (["gemini"], ["\x1b[B"]),
}
# What the recorder answers in the terminal's place: some wait for it before they draw.
ANSWERS = {
    rb"\x1b\[c": b"\x1b[?1;2c",
    rb"\x1b\[6n": b"\x1b[1;1R",
    rb"\x1b\]10;\?(\x07|\x1b\\)": b"\x1b]10;rgb:d0d0/dede/ebeb\x1b\\",
    rb"\x1b\]11;\?(\x07|\x1b\\)": b"\x1b]11;rgb:0f0f/1717/2424\x1b\\",
}
FINISHING = {"htop": "q", "tmux": "\x02:kill-server\r"}


def prepare(home):
    (home / "squares.c").write_text(SOURCE, encoding="utf-8")
    (home / "long.txt").write_text(
        "".join(f"\x1b[3{n % 8}mline {n}\x1b[m of a long text, {'x' * (n % 120)}\n" for n in range(1, 200)),
        encoding="utf-8")
    (home / "names.txt").write_text("\n".join(["anchor", "banana", "orange", "plum", "grün", "世界"]), encoding="utf-8")
    # Past the questions about the theme, which need the network.
    (home / ".claude.json").write_text('{ "hasCompletedOnboarding": true, "theme": "dark" }\n', encoding="utf-8")
    project = home / "project"
    project.mkdir()
    (project / "package.json").write_text('{ "name": "project", "version": "1.0.0" }\n', encoding="utf-8")
    (home / "dependency").mkdir()
    (home / "dependency" / "package.json").write_text('{ "name": "dependency", "version": "2.0.0" }\n', encoding="utf-8")
    folder = home / "folder"
    (folder / "sub").mkdir(parents=True)
    for name in ("alpha.txt", "beta.sh", "gamma"):
        (folder / name).write_text(name, encoding="utf-8")
    for path in [*folder.iterdir(), folder]:
        os.utime(path, (1_700_000_000, 1_700_000_000))
    date = {"GIT_AUTHOR_DATE": "2026-01-02T03:04:05Z", "GIT_COMMITTER_DATE": "2026-01-02T03:04:05Z"}
    identity = ["-c", "user.name=A Person", "-c", "user.email=person@example.org"]
    run = lambda *words: subprocess.run(["git", *identity, *words], cwd=home, check=True, capture_output=True,
                                        env=os.environ | date | {"HOME": str(home)})
    run("init", "-q", "-b", "main")
    run("add", "squares.c")
    run("commit", "-qm", "Print squares")
    run("checkout", "-qb", "side")
    run("add", "names.txt")
    run("commit", "-qm", "Add names: grün, 世界")
    run("checkout", "-q", "main")
    run("add", "long.txt")
    run("commit", "-qm", "Add a long text")
    run("merge", "-qm", "Merge side", "side")


def record(name, home, rows, columns):
    command, keys = PROGRAMS[name]
    child, master = pty.fork()
    if child == 0:
        os.chdir(home / "project" if name in SLOW else home)
        # Claude would otherwise bring itself up to date, for the whole machine when it may.
        environment = {"HOME": str(home), "PATH": os.environ["PATH"], "TERM": "xterm-256color",
                       "COLORTERM": "truecolor", "LANG": "C.UTF-8", "DISABLE_AUTOUPDATER": "1",
                       "PS1": "$ ", "SHELL": "/bin/sh", "LESSHISTFILE": "-", "TMUX_TMPDIR": str(home), "USER": "person"}
        fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
        os.execvpe(command[0], command, environment)
    recorded = b""

    def listen():
        nonlocal recorded
        end = time.monotonic() + (SLOW_LONGEST_SECONDS if name in SLOW else LONGEST_SECONDS)
        while time.monotonic() < end:
            ready, _, _ = select.select([master], [], [], SLOW_QUIET_SECONDS if name in SLOW else QUIET_SECONDS)
            if not ready:
                return
            try:
                read = os.read(master, 65536)
            except OSError:
                return
            recorded += read
            if name not in SLOW:
                continue
            for question, answer in ANSWERS.items():
                for _ in re.finditer(question, read):
                    os.write(master, answer)

    listen()
    for key in keys:
        os.write(master, key.encode())
        listen()
    # Some show where they run.
    kept = recorded.replace(socket.gethostname().encode(), b"host")
    if name in FINISHING:
        os.write(master, FINISHING[name].encode())
        listen()
    os.kill(child, signal.SIGKILL)
    os.waitpid(child, 0)
    os.close(master)
    if len(kept) > LARGEST_BYTES:
        kept = kept[:kept.rindex(PICTURE_END, 0, LARGEST_BYTES) + len(PICTURE_END)]
    return kept


def main():
    output = pathlib.Path(sys.argv[1])
    output.mkdir(parents=True, exist_ok=True)
    for name in sys.argv[2:] or PROGRAMS:
        for rows, columns in SIZES:
            HOME.mkdir()
            try:
                prepare(HOME)
                (output / f"{name}-{rows}x{columns}.bytes").write_bytes(record(name, HOME, rows, columns))
            finally:
                shutil.rmtree(HOME, ignore_errors=True)


if __name__ == "__main__":
    main()
