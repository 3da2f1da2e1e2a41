"""A person at the desktop: finds controls by what they are called, uses them, and takes pictures.

Everything goes through the accessibility tree and the X server, so the program needs no hook for tests.
"""
import os
import pathlib
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

LIMIT = 30  # seconds to wait for anything; slow machines need them, fast ones do not notice


def wait_for(what, condition, limit=LIMIT):
    """The first true value of `condition`, or a failure that says what was waited for."""
    end = time.monotonic() + limit
    while True:
        trouble = None
        try:
            value = condition()
        except Exception as error:  # a control that went away while it was asked: ask again
            value, trouble = None, error
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited {limit} s in vain for {what}") from trouble
        time.sleep(0.05)


def tree(node, depth=0):
    """`node` and everything below it that shows."""
    if node is None or depth > 40:
        return
    yield node
    if depth > 0 and not showing(node):  # most pages, most of the time
        return
    for index in range(node.get_child_count()):
        yield from tree(node.get_child_at_index(index), depth + 1)


def showing(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


def checked(node):
    return node.get_state_set().contains(Atspi.StateType.CHECKED)


def text_of(node):
    return Atspi.Text.get_text(node, 0, Atspi.Text.get_character_count(node))


def set_text(field, text):
    return Atspi.EditableText.set_text_contents(field, text)


class Program:
    """A running `orvo` with a home of its own."""

    def __init__(self, binary, pictures, arguments=(), environment=None):
        self.pictures = pathlib.Path(pictures)
        self.pictures.mkdir(parents=True, exist_ok=True)
        self.errors = open(self.pictures / "stderr.txt", "w+b")
        self.process = subprocess.Popen(
            [binary, *arguments], stdin=subprocess.DEVNULL, stderr=self.errors,
            env={**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", **(environment or {})})

    def application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child is not None and child.get_process_id() == self.process.pid:
                return child
        return None

    def all(self, role=None, name=None, inside=None):
        """Every showing control of that role (as Atspi names it) and name."""
        return list(self.matching(role, name, inside))

    def matching(self, role, name, inside):
        for node in tree(inside or self.application()):
            if role is not None and node.get_role_name() != role:
                continue
            if name is not None and node.get_name() != name:
                continue
            if showing(node):
                yield node

    def find(self, role=None, name=None, inside=None):
        return wait_for(f"{role or 'a control'} {name!r}",
                        lambda: next(self.matching(role, name, inside), None))

    def press(self, name, role="push button"):
        self.do(self.find(role, name))

    def send(self, task):
        """Gives both assistants the task, once they are ready."""
        for name in ("Claude Code", "Codex"):
            box = self.find("check box", name)
            wait_for(f"{name} to be ready and chosen", lambda box=box: checked(box))
        set_text(self.find("text", "Task for selected assistants"), task)
        self.press("Run task")

    def close_panes(self):
        while count := len(self.all("terminal")):
            self.press("Session menu")
            self.do(self.find("menu item", "Close pane"))
            wait_for("one pane less", lambda count=count: len(self.all("terminal")) < count)

    def review(self, assistant):
        """The changes that it made in the newest run."""
        self.press("Team runs")
        buttons = wait_for(f"the copy of {assistant}", lambda: [
            button for button in self.all("push button", "Review files") if button.get_description() == assistant])
        self.do(buttons[0])

    def edit(self, name, text):
        """The editor with that file, which says `text`, and the caret at its end."""
        self.press("Files & runner")
        self.click(self.find("list item", name))
        editor = self.find("text", "Code editor")
        wait_for("the file", lambda: text_of(editor) == text)
        self.click(editor)
        press_key("ctrl+End")
        return editor

    @staticmethod
    def do(node, action="Press"):
        """The named action, or the first when the control calls it differently."""
        names = [Atspi.Action.get_action_name(node, i) for i in range(Atspi.Action.get_n_actions(node))]
        Atspi.Action.do_action(node, names.index(action) if action in names else 0)

    def click(self, node):
        box = Atspi.Component.get_extents(node, Atspi.CoordType.SCREEN)
        xdotool("mousemove", str(box.x + box.width // 2), str(box.y + box.height // 2), "click", "1")

    def picture(self, name):
        """What the screen shows, after the window has had time to paint."""
        time.sleep(0.4)
        subprocess.run(["import", "-window", "root", str(self.pictures / f"{name}.png")], check=True)

    def standard_error(self):
        self.errors.flush()
        self.errors.seek(0)
        return self.errors.read().decode(errors="replace")

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()


def xdotool(*arguments):
    subprocess.run(["xdotool", *arguments], check=True)


def activate_window():
    xdotool("search", "--onlyvisible", "--name", "^Orvo AI$", "windowactivate", "--sync")


def type_text(text):
    xdotool("type", "--delay", "20", "--", text)


def press_key(key):
    xdotool("key", key)
