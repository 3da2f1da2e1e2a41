#!/usr/bin/env python3
"""Records what everyday programs write to a terminal, for the tests of the interpreter.

usage: record_terminal.py OUTPUT_FOLDER [NAME...]

Each program runs in a pseudo-terminal of 24 × 80 and of 50 × 160 cells, in an empty home folder, and is sent the keys
of its list; only what it writes is kept, as NAME-ROWSxCOLUMNS.bytes. Needs vim, htop, less, dialog, mc, tmux, fzf, man
and git, and the right to make a process namespace (htop shows every process of its namespace).
"""
import fcntl
import os
import pathlib
import pty
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import time

SIZES = [(24, 80), (50, 160)]
QUIET_SECONDS = 0.6
LONGEST_SECONDS = 4

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
}
FINISHING = {"htop": "q", "tmux": "\x02:kill-server\r"}


def prepare(home):
    (home / "squares.c").write_text(SOURCE, encoding="utf-8")
    (home / "long.txt").write_text(
        "".join(f"\x1b[3{n % 8}mline {n}\x1b[m of a long text, {'x' * (n % 120)}\n" for n in range(1, 200)),
        encoding="utf-8")
    (home / "names.txt").write_text("\n".join(["anchor", "banana", "orange", "plum", "grün", "世界"]), encoding="utf-8")
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
        os.chdir(home)
        environment = {"HOME": str(home), "PATH": os.environ["PATH"], "TERM": "xterm-256color", "LANG": "C.UTF-8",
                       "PS1": "$ ", "SHELL": "/bin/sh", "LESSHISTFILE": "-", "TMUX_TMPDIR": str(home), "USER": "person"}
        fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
        os.execvpe(command[0], command, environment)
    recorded = b""

    def listen():
        nonlocal recorded
        end = time.monotonic() + LONGEST_SECONDS
        while time.monotonic() < end:
            ready, _, _ = select.select([master], [], [], QUIET_SECONDS)
            if not ready:
                return
            try:
                recorded += os.read(master, 65536)
            except OSError:
                return

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
    return kept


def main():
    output = pathlib.Path(sys.argv[1])
    output.mkdir(parents=True, exist_ok=True)
    for name in sys.argv[2:] or PROGRAMS:
        for rows, columns in SIZES:
            home = pathlib.Path(tempfile.mkdtemp(prefix="recording"))
            try:
                prepare(home)
                (output / f"{name}-{rows}x{columns}.bytes").write_bytes(record(name, home, rows, columns))
            finally:
                shutil.rmtree(home, ignore_errors=True)


if __name__ == "__main__":
    main()
