"""Every page of the window, through the accessibility tree: each text is there, each control does its own thing.

Whatever the window shows that can be used must be used: a control that the walk has seen and not used fails it.

Usage: pages_walk.py PROGRAM PICTURES TYPING_TARGET
"""
import functools
import json
import os
import pathlib
import subprocess
import sys

from desktop import Atspi, activate_window, checked, press_key, set_text, showing, text_of, type_text, wait_for, xdotool
from companion_road import draft, pet
from home import on_a_project
from walking import Control, Walk, children

# Both assistants. Asked for a plan, they copy the one beside the project, slowly if the task says so; in a copy of
# the project they change it; at a terminal they say what they were asked and end.
ASSISTANT = r"""#!/bin/sh
case "$*" in 'login status'*) echo 'Logged in using ChatGPT'; exit 0 ;; 'auth status'*) echo '{"loggedIn": true}'; exit 0 ;; esac
for word; do task=$word; [ "$before" = --output-last-message ] && answer=$word; before=$word; done
if [ -n "$answer" ]; then
  case "$task" in *slowly*) sleep 60 ;; esac
  cp "$HOME/plan.json" "$answer"
fi
case "$PWD" in */Runs/*)
  echo 'Tide table by NAME' >> README.md
  [ NAME = claude ] && echo 'low 06:12' > tides.txt ;;
esac
echo "NAME: $*"
"""

TOOLS = {"Claude Code": "claude", "Codex": "codex", "Kimi Code": "kimi", "Antigravity": "agy"}

LINE = "Low water at 6:12. " * 100
PLAN = {
    "explanation": "Writes into the notes.",
    "steps": [
        {"id": 1, "title": "Open the notes", "action": "open_app", "app": "org.example.Notes", "value": ""},
        {"id": 2, "title": "Write the tides", "action": "type_text", "app": "org.example.Notes", "value": LINE},
    ],
}

# What the pages say of their own accord, before anything has been done.
SAID = json.loads((pathlib.Path(__file__).parent.parent / "data/pages.json").read_text())


class PagesWalk(Walk):
    def __init__(self, program, project):
        super().__init__(program)
        self.project = project
        self.root = project.parent

    def opened(self, address):
        """The desktop was asked to open that."""
        file = self.root / "opened"
        wait_for(f"{address} to be opened", lambda: address in file.read_text())
        file.write_text("")

    def answer_panel(self, path=None):
        """The toolkit's panel for files: takes `path`, or goes away."""
        panel = wait_for("the panel", self.panels)[0]
        if path:
            field = wait_for("its field", lambda: [
                node for name in ("Directory:", "File name:") for node in self.program.all("text", name, panel)])[0]
            set_text(field, str(path))
        press_key("Return" if path else "Escape")
        wait_for("the panel to go", lambda: not self.panels())

    def panels(self):
        application = self.program.application()
        windows = [application.get_child_at_index(i) for i in range(application.get_child_count())]
        return [w for w in windows if w.get_role_name() in ("dialog", "file chooser", "color chooser")]

    def close_session(self, title, said=None):
        """A session of that title has come to the front. It is looked at and closed, stopped if need be."""
        self.press(title, role="page tab")
        for terminal in self.program.all("terminal", title):
            self.used.add(Control(terminal, "Workspace").key)
        if said:
            wait_for(f"{said!r} in the terminal", lambda: any(
                said in text_of(terminal) for terminal in self.program.all("terminal", title)))
            wait_for("its end", lambda: self.program.all("label", "Exit 0"))
        before = len(self.program.all("page tab"))
        self.press("Session menu", about=title)
        self.choose("Close pane")

        def closed():
            return len(self.program.all("page tab")) < before
        if wait_for("an answer", lambda: closed() or self.asks("Stop this session?")) is not True:
            self.press("Stop session")
        wait_for("the pane to go", closed)

    def asks(self, question):
        return [alert for alert in self.overlays("alert") if alert.get_name() == question]

    def overlays(self, role):
        """Sheets or alerts: they lie directly in the window."""
        window = self.program.application().get_child_at_index(0)
        return [part for part in children(window) if part.get_role_name() == role and showing(part)]

    def catch(self, node):
        """Presses what shows for a moment only."""
        self.used.add(Control(node, self.page).key)
        self.program.do(node)

    def hidden(self, name):
        """A push button that does not show yet."""
        def below(node):
            for child in children(node):
                yield child
                yield from below(child)
        return next(node for node in below(self.program.application())
                    if node.get_role_name() == "push button" and node.get_name() == name and not showing(node))

    def dismiss_sheet(self, title):
        (sheet,) = wait_for("a sheet", lambda: self.overlays("dialog"))
        self.program.find("label", title, sheet)
        press_key("Escape")
        wait_for("the sheet to go", lambda: not self.overlays("dialog"))


# The pages, one after the other.

def look_at_all(walk):
    for page, texts in SAID["pages"].items():
        walk.go(page)
        walk.show_texts(page, *SAID["everywhere"], *texts)


def assistants(walk):
    walk.go("Assistants")
    walk.press("Check connections", shows="Signed in")

    walk.press("Add connector", shows="Add an assistant")
    walk.show_texts("Connect a local CLI. Sign in inside its terminal using your provider’s normal login flow.",
                    "Display name", "Executable name or absolute path", "Launch command", SAID["connector"],
                    "Documentation URL (optional)")
    walk.press("Cancel", shows=lambda: not walk.overlays("dialog"))
    walk.press("Add connector", shows="Add an assistant")
    walk.fill("Display name", "Helm")
    walk.fill("Executable name or absolute path", "helm-that-is-not-there")
    walk.fill("Launch command", "helm '{prompt}'")
    wait_for("the objection", lambda: (walk.look(), any(text.startswith("Place {prompt} outside quotes")
                                                        for text in walk.texts))[1])
    walk.fill("Launch command", "helm {prompt}")
    walk.fill("Documentation URL (optional)", "https://helm.example/")
    walk.press("Provider documentation ↗")
    walk.opened("https://helm.example/")
    walk.press("Save connector", shows="Helm configuration saved.")
    walk.show_texts("Install this tool to connect it")

    for name in ("Claude Code", "Codex", "Kimi Code", "Antigravity", "Z.ai", "Terminal", "Helm"):
        walk.press("Configure", about=name)
        walk.dismiss_sheet(f"Configure {name}")
    walk.press("Configure", about="Z.ai", shows="Keep a separate Z.ai profile")
    walk.dismiss_sheet("Configure Z.ai")
    for name in ("Z.ai", "Helm"):
        walk.press("Set up", about=name)
        walk.dismiss_sheet(f"Configure {name}")
    for name in ("Claude Code", "Codex", "Kimi Code", "Antigravity", "Z.ai", "Helm"):
        walk.press(f"{name} documentation")
        walk.opened("https://")
    for name, tool in TOOLS.items():
        walk.press("Open", about=name)
        walk.close_session(f"{name} session", said=f"{tool}:")
        walk.go("Assistants")
    walk.press("Open", about="Terminal", shows="Running")
    stop_and_close(walk, "Terminal session")
    for verb, name, said in (("Sign in", "Claude Code", "claude: auth login"),
                             ("Sign in", "Codex", "codex: login"),
                             ("Sign in", "Kimi Code", "kimi: login"),
                             ("Resume", "Claude Code", "claude: --continue"),
                             ("Resume", "Kimi Code", "kimi: --continue"),
                             ("Resume", "Antigravity", "agy: --continue"),
                             ("Resume", "Codex", "codex: resume --last --sandbox workspace-write")):
        walk.go("Assistants")
        walk.press(verb, about=name)
        walk.close_session(f"{verb} · {name}", said=said)

def stop_and_close(walk, title):
    """A session whose program runs is closed only when the person means it."""
    walk.press(title, role="page tab")
    walk.press("Session menu", about=title)
    walk.choose("Close pane", shows="Stop this session?")
    walk.show_texts("The assistant and processes launched in this terminal will stop.")
    walk.press("Cancel", shows=lambda: not walk.program.all(name="Stop this session?"))
    walk.press("Session menu", about=title)
    walk.choose("Close pane", shows="Stop this session?")
    walk.press("Stop session", shows=lambda: not walk.program.all("page tab", title))


def task_of(walk):
    return text_of(walk.program.find("text", "Task for selected assistants"))


def welcome(walk):
    walk.go("Workspace")
    for card, task in SAID["ideas"].items():
        walk.press(card, shows=lambda task=task: task_of(walk) == task)
    walk.press("View all  ↗", shows="Your best minds, together.")
    walk.go("Workspace")
    for name in ("Z.ai", "Helm"):
        walk.press("Set up", about=name)
        walk.dismiss_sheet(f"Configure {name}")
        box = walk.toggle(name)
        walk.dismiss_sheet(f"Configure {name}")
        assert not checked(box), "what cannot take a task must not look chosen"
    for name, tool in TOOLS.items():
        walk.press("Open", about=name)
        walk.close_session(f"{name} session", said=f"{tool}:")
        chosen = name in ("Claude Code", "Codex")
        walk.toggle(name, shows="1 selected" if chosen else "3 selected")
        walk.toggle(name, shows="2 selected")
    walk.press("Open", about="Terminal", shows="Running")
    stop_and_close(walk, "Terminal session")
    walk.toggle("Shared folder", role="radio button",
                shows="Assistants edit this same folder. Give them different tasks to avoid overlapping edits.")
    walk.toggle("Separate copies", role="radio button", shows=SAID["pages"]["Workspace"][11])
    walk.press("Refresh installed tools and files", shows="Workspace refreshed.")


def projects(walk):
    """Two of them, by the buttons and by the sidebar's rows."""
    archive = walk.root / "tide archive"
    walk.press("Open project")
    walk.answer_panel()
    walk.press("Change folder  ↗")
    walk.answer_panel(archive)
    walk.shows("Workspace opened: tide archive")
    walk.press("Open project")
    walk.answer_panel(walk.project)
    walk.shows("Workspace opened: harbor notes")
    walk.press("harbor notes")
    walk.press("tide archive", shows=lambda: len(walk.program.all("label", "tide archive")) == 2)

    # Stopped before the copies are there. They do not take long, so the button is found beforehand.
    walk.fill("Task for selected assistants", "Count the tides")
    cancel = walk.hidden("Cancel")
    walk.press("Run task")
    walk.catch(cancel)
    walk.shows("Run preparation cancelled. No assistants were started.")
    wait_for("the button to go", lambda: not showing(cancel))
    assert not walk.program.all("page tab")
    walk.press("harbor notes", shows="Workspace opened: harbor notes")


def terminal_that_asks_for_the_clipboard(walk):
    walk.press("New terminal")
    (terminal,) = wait_for("the terminal", lambda: walk.program.all("terminal"))
    walk.program.click(terminal)
    type_text("printf 'low\\nhigh\\nlow\\n'; printf '\\033]52;c;bW9vbg==\\a'")
    press_key("Return")
    return terminal


def deck(walk):
    walk.go("Workspace")
    terminal = terminal_that_asks_for_the_clipboard(walk)
    walk.show_texts("Live sessions", "Layout", "1", "Running")
    walk.use(terminal.get_name(), "terminal")
    walk.press("Don't allow", shows=lambda: not walk.program.all("push button", "Don't allow"))
    stop_and_close(walk, "Terminal session")
    terminal = terminal_that_asks_for_the_clipboard(walk)
    walk.press("Allow in this session", shows=lambda: clipboard() == "moon")

    walk.program.click(terminal)
    press_key("ctrl+shift+f")
    walk.fill("Find in terminal", "high")
    walk.press("Previous match")
    walk.press("Next match")
    walk.show_texts("2 of 2")
    walk.press("Close find", shows=lambda: not walk.program.all("text", "Find in terminal"))

    walk.toggle("Focus", role="radio button")
    for name in (*TOOLS, "Terminal"):
        walk.press("New session")
        walk.choose(name, shows=lambda name=name: len(walk.program.all("page tab", f"{name} session")) >= 1)
    wait_for("one pane alone", lambda: len(walk.program.all("terminal")) == 1)
    walk.toggle("Grid", role="radio button", shows=lambda: len(walk.program.all("terminal")) == 6)
    walk.program.picture("deck")
    for name in TOOLS:
        walk.use(f"{name} session", "terminal")
        walk.close_session(f"{name} session")
    walk.press("Terminal session", about=None, role="page tab")
    (terminal, *_) = walk.program.all("terminal")
    box = Atspi.Component.get_extents(terminal, Atspi.CoordType.SCREEN)
    # A menu under the pointer is in no tree: "Copy terminal output", "Paste".
    xdotool("mousemove", str(box.x + 40), str(box.y + 40), "click", "3", "key", "Down", "key", "Return")
    wait_for("the copy", lambda: "high" in clipboard())

    # What is in a pane's menu.
    walk.press("Session menu", about="Terminal session")
    walk.choose("Copy output")
    walk.press("Session menu", about="Terminal session")
    walk.choose("Export output")
    walk.answer_panel(walk.root / "exported.txt")
    assert "high" in wait_for("the export", (walk.root / "exported.txt").read_text)
    walk.press("Session menu", about="Terminal session")
    walk.choose("Stop session", shows=lambda: [label for label in walk.program.all("label")
                                               if label.get_name().startswith("Exit ")])
    walk.close_session("Terminal session")
    while walk.program.all("page tab"):
        walk.close_session("Terminal session")


def history_cleared(walk):
    walk.go("History")
    walk.press("Clear history", shows="Clear Orvo’s saved history?")
    walk.show_texts("Provider session files will remain in their original tools.")
    walk.press("Cancel")
    wait_for("the answer", lambda: not walk.asks("Clear Orvo’s saved history?"))
    walk.press("Clear history")
    walk.press("Clear", shows="Orvo history cleared.")
    walk.show_texts("Your next session starts the story.")
    # Rows like those that are gone are pressed later.
    walk.seen = {key: control for key, control in walk.seen.items() if ", Exit " not in control.about}


def team_runs(walk):
    for task in ("Add a tide table", "Add it again"):
        walk.go("Workspace")
        walk.fill("Task for selected assistants", task)
        walk.press("Run task")
        wait_for("both to end", lambda: len(walk.program.all("page tab", task)) == 2 and
                 len(walk.program.all(name="Exit 0")) == 2)
        walk.program.picture(f"run-{task}")
        walk.go("Team runs")
        if task == "Add a tide table":
            copies(walk, task)
        while walk.program.all("page tab") or walk.page != "Workspace":
            walk.go("Workspace")
            if walk.program.all("page tab"):
                walk.close_session(task)

    walk.go("Team runs")
    assert walk.use("Run", "combo box").get_description() == "Add it again"
    walk.press("Run", role="combo box")
    walk.use("Add a tide table", "list item")
    walk.use("Add it again", "list item")
    press_key("Down")
    press_key("Return")
    wait_for("the older run", lambda: walk.program.find("combo box", "Run").get_description() == "Add a tide table")
    # Without its session, the output is what was recorded.
    walk.press("Output", about="Claude Code", shows="Assistant output")
    walk.press("Done", shows=lambda: not walk.overlays("dialog"))
    review(walk)
    walk.press("Compare with AI")
    walk.close_session("Compare team results")


def copies(walk, task):
    walk.show_texts("Claude Code", "Codex", "Finished")
    for name in ("Claude Code", "Codex"):
        walk.press("Open working copy", about=name)
        walk.opened("/Runs/")
        walk.press("Output", about=name, shows=lambda: walk.program.all("page tab", task))
        walk.toggle("Grid", role="radio button")
        walk.go("Team runs")


def review(walk):
    walk.press("Review files", about="Codex", shows="1 changed files")
    walk.press("Review files", about="Claude Code", shows="2 changed files")
    walk.show_texts("Before", "After")
    assert {"Changed", "Added"} <= {control.about for control in walk.look()}, "the kinds of the changes"
    walk.press("Select all", shows="Apply selected (2)")
    walk.toggle("README.md", shows="Apply selected (1)")
    walk.press("README.md", role="check box", shows=lambda: "Tide table by claude" in text_of(
        walk.program.find("text", "After")) and text_of(walk.program.find("text", "Before")) == "# Harbor notes\n")
    walk.toggle("tides.txt", shows="Apply selected (0)")
    walk.toggle("tides.txt", shows="Apply selected (1)")
    walk.press("Apply selected (1)", shows="Apply 1 reviewed files?")
    walk.press("Cancel", shows=lambda: not walk.asks("Apply 1 reviewed files?"))
    assert not (walk.project / "tides.txt").exists()
    walk.press("Apply selected (1)", shows="Apply 1 reviewed files?")
    walk.press("Apply changes",
               shows="Applied 1 files. Originals are saved in the run’s backup folder.")
    assert (walk.project / "tides.txt").read_text() == "low 06:12\n"
    assert (walk.project / "README.md").read_text() == "# Harbor notes\n", "it was not chosen"


def history(walk):
    walk.go("History")
    # Another project is open, so that one sees the way back.
    walk.press("tide archive", shows="Workspace opened: tide archive")
    rows = [control for control in walk.look() if control.role == "list item" and control.about.endswith("Exit 0")]
    assert len(rows) >= 4, rows
    # The newest last: its folder is the project and no copy.
    for row in reversed(rows):
        walk.press(row.name, about=row.about, role="list item")
    walk.fill("Search completed sessions…", "no such title", shows="No session matches.")
    walk.fill("Search completed sessions…", "CODEX")
    wait_for("fewer rows", lambda: 0 < len([control for control in walk.look() if control.about.endswith("Exit 0")])
             < len(rows))
    walk.fill("Search completed sessions…", "")
    assert "Saved output" in walk.texts
    walk.press("Export")
    walk.answer_panel(walk.root / "session.txt")
    wait_for("the export", lambda: (walk.root / "session.txt").stat().st_size > 0)
    walk.press("Open folder", shows="Start with an idea")
    walk.shows("Workspace opened: harbor notes")


def files(walk):
    script = walk.project / "tides.sh"
    script.write_text("echo low $((6 * 2))\n")
    (walk.project / "logs").mkdir()
    (walk.project / "logs/monday.txt").write_text("calm\n")
    walk.go("Files & runner")
    walk.press("Reload", shows="tides.sh")
    walk.press("logs", role="list item", shows="monday.txt")
    walk.press("monday.txt", role="list item", shows="Code editor")
    walk.press("Go up", shows="tides.sh")
    walk.press("tides.txt", role="list item")
    walk.press("README.md", role="list item")
    walk.fill("Find a file…", "TIDES.S", shows=lambda: not walk.program.all("list item", "README.md"))
    walk.press("tides.sh", role="list item",
               shows=lambda: "low" in text_of(walk.program.find("text", "Code editor")))
    walk.fill("Find a file…", "")
    editor = walk.use("Code editor", "text")
    walk.program.click(editor)
    press_key("ctrl+End")
    type_text("# high")
    walk.show_texts("Unsaved changes", "tides.sh")
    walk.press("Save", shows="Saved tides.sh.")
    assert script.read_text().endswith("# high")
    script.write_text("echo low $((6 * 3))\n")
    walk.press("Reload file", shows=lambda: "* 3" in text_of(editor))

    walk.program.click(editor)
    press_key("ctrl+f")
    walk.fill("Find in file…", "low")
    walk.press("Next match")
    walk.press("Previous match")
    walk.press("Close search", shows=lambda: not walk.program.all("text", "Find in file…"))
    press_key("ctrl+g")
    walk.fill("Go to line…", "1")
    walk.press("Close", shows=lambda: not walk.program.all("text", "Go to line…"))

    walk.press("Run file")
    walk.close_session("Run · tides.sh", said="low 18")
    walk.go("Files & runner")
    walk.fill("Run a command in this project", "echo free $((6 * 7))")
    walk.press("Execute")
    walk.close_session("echo free $((6 * 7))", said="free 42")
    walk.go("Files & runner")
    walk.press("Open project")
    walk.answer_panel()
    walk.press("New file")
    walk.answer_panel(walk.project / "new.txt")
    walk.shows(lambda: (walk.project / "new.txt").exists())
    walk.press("new.txt", role="list item")


def mac_actions(walk):
    walk.go("Mac actions")
    walk.press("Use voice draft", shows="Use the companion microphone to make a draft first.")
    assert walk.look() and walk.page == "Companion"
    walk.go("Mac actions")
    walk.fill("Mac task to plan", "Note the tide slowly")
    walk.press("Make a plan")
    walk.go("Mac actions")
    walk.press("Stop planning",
               shows="Planning stopped or failed. Open the planner output to see the provider’s message.")
    walk.fill("Mac task to plan", "Note the tide")
    walk.press("Make a plan")
    walk.go("Mac actions")
    walk.show_texts("Writes into the notes.", "1. Open the notes", "org.example.Notes · open_app", "2. Write the tides",
                    "Review the steps below. Run next step performs one action only.")
    walk.press("Run next step", shows="Open the notes?")
    walk.press("Cancel", shows=lambda: not walk.asks("Open the notes?"))
    walk.press("Run next step", shows="Open the notes?")
    walk.press("Run this step", shows="Carried out")
    walk.press("Run next step")
    stop = walk.hidden("Stop typing")
    walk.press("Run this step")
    wait_for("the typing", lambda: showing(stop))
    walk.catch(stop)
    walk.shows(lambda: not showing(stop))
    assert len(walk.program.all(name="Carried out")) == 1, "stopped too late"
    activate_window()
    walk.press("Accessibility settings")
    walk.opened("settings")
    walk.press("Planner output", shows="Live sessions")
    while walk.program.all("page tab"):
        walk.close_session(walk.program.all("page tab")[0].get_name())

    walk.go("Mac actions")
    walk.press("Manual Mac tools", shows="Your Mac, within reach.")
    walk.show_texts(*SAID["manual tools"])
    walk.press("Open an application")
    walk.answer_panel()
    walk.press("Show your project")
    walk.opened("harbor%20notes")
    walk.press("Screen recording settings")
    walk.opened("settings")
    walk.press("Refresh permissions", shows="Allowed")
    script = walk.fill("AppleScript", "tell application \"Finder\" to beep")
    assert text_of(script).endswith("beep")
    walk.press("Run script")
    walk.close_session("Mac action · AppleScript")
    walk.go("Mac actions")
    walk.press("Open a Mac terminal")
    walk.close_session("Terminal session")


def companion(walk):
    walk.go("Companion")
    subprocess.run(["convert", "-size", "40x30", "xc:#30c060", str(walk.root / "frog.png")], check=True)
    walk.press("Choose your own image")
    walk.answer_panel(walk.root / "frog.png")
    walk.shows("Your custom companion")
    assert checked(walk.program.find("radio button", "Custom"))
    walk.toggle("Default pet", role="radio button", shows="Orvo’s pixel companion")
    walk.toggle("Custom", role="radio button", shows="Your custom companion")
    walk.press("Remove custom", shows="Orvo’s pixel companion")
    walk.toggle("Custom", role="radio button")
    walk.press("Restore default pet", shows=lambda: checked(walk.program.find("radio button", "Default pet")))
    walk.slide("Pet size", 0, shows="65%")
    walk.slide("Pet size", 30, shows="150%")
    assert pet()[2:] == (264, 279), pet()
    walk.slide("Pet size", 20, shows="100%")
    walk.toggle("Gentle floating motion")
    assert not checked(walk.toggle("Show desktop companion"))
    wait_for("the pet to go", lambda: not pet())
    walk.press("Find pet on desktop", shows=pet)
    walk.press("Reset desktop position")

    walk.press("Open quick draft", shows="Orvo, within reach.")
    walk.show_texts("Your desktop companion", "Review before sending")
    walk.press("Close quick draft", shows=lambda: not draft())
    walk.press("Orvo desktop companion. Click for quick draft, drag to move.", shows=draft)
    walk.press("Microphone", shows="Microphone")
    walk.press("Read aloud options")
    walk.choose("Read draft aloud", shows="There is no text to read yet.")
    walk.press("Read aloud options")
    walk.choose("Stop Orvo audio")
    walk.press("Read aloud options")
    walk.choose("Read latest session output")
    walk.press("Customize pet")
    walk.fill("Companion draft", "Sort the moorings")
    walk.press("Use draft in workspace",
               shows="Companion draft added. Choose your assistants and run it when ready.")
    assert task_of(walk).endswith("Sort the moorings")
    walk.go("Companion")
    walk.press("Back to Settings", shows="Simple on the surface.")


def appearance(walk):
    walk.go("Appearance")
    for name, background in (("Mirel charcoal", None), ("Deep ocean", "#081322"), ("Midnight", None),
                             ("Orvo charcoal", "#141413")):
        assert checked(walk.toggle(name, role="radio button"))
        if background:
            wait_for("its background", lambda color=background: walk.program.find(
                "push button", "Background").get_description() == color)
    for name in ("Background", "Accent color"):
        walk.press(name)
        field = wait_for("the panel", lambda: [node for node in walk.program.all("text", "HTML:", walk.panels()[0])])[0]
        walk.program.click(field)
        press_key("ctrl+a")
        type_text("#203040")
        press_key("Escape")
        wait_for("the color", lambda name=name: walk.program.find("push button", name).get_description() == "#203040")
    assert not [tile for tile in walk.program.all("radio button") if checked(tile)], "colours of one's own"
    walk.slide("Terminal text", 20, shows="20")
    walk.press("Restore charcoal & pelk", shows="12")
    assert checked(walk.program.find("radio button", "Orvo charcoal"))


def settings(walk):
    walk.go("Settings")
    assert any(text.startswith("Orvo AI ") and text.endswith(" · No web server required") for text in walk.texts)
    walk.press("Desktop companion & voice", shows="A familiar face, always close.")
    walk.go("Settings")
    walk.press("Open saved runs")
    walk.opened("Orvo%20AI/Runs")
    helm = walk.root / "home/.local/bin/helm-that-is-not-there"
    helm.write_text("#!/bin/sh\n")
    helm.chmod(0o755)
    walk.press("Refresh tools", shows="Installed tool list refreshed.")
    walk.show_texts("5 assistants detected")
    helm.unlink()
    walk.press("Refresh tools", shows="4 assistants detected")
    walk.press("Customize appearance", shows="A workspace in your colors.")
    walk.go("Settings")
    walk.press("Manage assistants", shows="Your best minds, together.")
    walk.go("Settings")
    switch = walk.toggle("Keep Mac awake while Orvo tasks run")
    wait_for("the switch", lambda: checked(switch))
    kept = walk.root / "config/orvo-ai/preferences.json"
    wait_for("the preference", lambda: json.loads(kept.read_text())["keepAwake"] is True)


def menus(walk):
    def menu(name, item, shows=None):
        walk.program.do(walk.use(name, "menu item"), "ShowMenu")
        walk.choose(item, shows=shows)

    menu("Orvo AI", "About Orvo AI", shows="OK")
    walk.look()
    assert any("A native Mac workspace with a desktop companion." in text for text in walk.texts)
    walk.press("OK", shows=lambda: not walk.program.all("push button", "OK"))
    menu("Orvo AI", "Settings…", shows="Simple on the surface.")
    menu("Orvo AI", "Stop microphone & audio")
    menu("File", "Open Project…")
    walk.answer_panel()
    menu("File", "Export Interface Preview…")
    walk.answer_panel(walk.root / "preview.png")
    walk.shows("Interface preview exported.")
    menu("File", "New Terminal", shows="Running")
    walk.close_session("Terminal session")
    walk.go("Files & runner")
    walk.press("README.md", role="list item")
    menu("File", "Save File")

    walk.go("Workspace")
    task = walk.fill("Task for selected assistants", "low and high")
    walk.program.click(task)
    for item, after in (("Select All", "low and high"), ("Copy", "low and high"), ("Cut", ""), ("Paste", "low and high"),
                        ("Undo", ""), ("Redo", "low and high")):
        menu("Edit", item, shows=lambda after=after: text_of(task) == after)
    assert clipboard() == "low and high"

    menu("Window", "Zoom")
    menu("Window", "Zoom")
    for menu_name, item in (("Window", "Minimize"), ("Orvo AI", "Hide Orvo AI")):
        menu(menu_name, item)
        wait_for("the window to go", lambda: "Orvo AI" not in visible_windows())
        subprocess.run([walk.program.process.args[0]], check=True, timeout=30)
        wait_for("the window", lambda: "Orvo AI" in visible_windows())
    walk.use("Orvo AI", "menu item")
    walk.program.do(walk.use("Orvo AI", "menu item"), "ShowMenu")
    walk.use("Quit Orvo AI", "menu item")
    press_key("Escape")
    press_key("Escape")


def visible_windows():
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Orvo AI$", "getwindowname"],
                           capture_output=True, text=True).stdout
    return found.split("\n")


def quit_by_menu(program):
    program.do(program.find("menu item", "Orvo AI"), "ShowMenu")
    program.click(program.find("menu item", "Quit Orvo AI"))


PAGES = (look_at_all, assistants, welcome, projects, deck, history_cleared, team_runs, files, history, mac_actions, companion,
         appearance, settings, menus)


def clipboard():
    return subprocess.run(["xclip", "-o", "-selection", "clipboard"], capture_output=True, text=True).stdout


def walk_pages(program, project):
    walk = PagesWalk(program, project)
    for page in PAGES:
        page(walk)
    left = walk.unused()
    assert not left, "seen and not used:\n" + "\n".join(map(str, left))


def prepare(target, root):
    """What the program reaches outside of itself: a browser, applications, a plan, a second project."""
    programs = root / "programs"
    programs.mkdir()
    opener = programs / "xdg-open"
    opener.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >> '{root}/opened'\n")
    opener.chmod(0o755)
    (root / "opened").write_text("")
    archive = root / "tide archive"
    archive.mkdir()
    for day in range(365):
        (archive / f"{day}.txt").write_text("low 06:12\n" * 1000)
    os.environ["PATH"] = f"{programs}:{os.environ['PATH']}"
    entries = root / "data/applications"
    entries.mkdir(parents=True)
    for name in ("kimi", "agy"):
        tool = root / "home/.local/bin" / name
        tool.write_text(ASSISTANT.replace("NAME", name))
        tool.chmod(0o755)
    for name, command in (("org.example.Notes", f'"{target}" "{root}/saved.txt"'),
                          ("org.gnome.Settings", f'"{opener}" settings')):
        (entries / f"{name}.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName={name}\nExec={command}\n")
    (root / "home/plan.json").write_text(json.dumps(PLAN))


if __name__ == "__main__":
    binary, pictures, typing_target = sys.argv[1:]
    on_a_project(binary, pictures, ASSISTANT, walk_pages, functools.partial(prepare, typing_target), quit_by_menu)
