"""A home with two installed assistants and a project, thrown away afterwards."""
import os
import pathlib
import shutil
import tempfile

from desktop import Program, press_key, wait_for


def on_a_project(binary, pictures, assistant, road, prepare=lambda root: None, leave=lambda _: press_key("ctrl+q")):
    """Opens the program on a project, walks `road(program, project)`, and quits it as a person does.

    `assistant` is the script that both assistants are, with NAME for the name of the tool. `prepare(root)` adds to
    the folder in which home and project lie, `leave(program)` asks the program to quit.
    """
    root = pathlib.Path(tempfile.mkdtemp())
    project = make_home(root, assistant)
    prepare(root)
    shutil.rmtree(pictures, ignore_errors=True)

    program = Program(binary, pictures, ["--workspace", str(project)])
    try:
        road(program, project)
        quit_program(program, leave)
    except BaseException:
        program.picture("failed")
        tell_of_faults(root)
        raise
    finally:
        program.end()
        shutil.rmtree(root)


def tell_of_faults(root):
    for report in (root / "data").rglob("crash-*.txt"):
        print(report.read_text(errors="replace"))


def make_home(root, assistant):
    """The home that programs started from now on have; gives the project."""
    for variable in ("CONFIG", "DATA", "CACHE"):
        os.environ[f"XDG_{variable}_HOME"] = str(root / variable.lower())
    os.environ["HOME"] = str(root / "home")
    os.environ["PATH"] = "/usr/bin:/bin"
    os.environ["ORVO_TOOL_FOLDERS"] = ""
    tools = root / "home/.local/bin"
    tools.mkdir(parents=True)
    for name in ("claude", "codex"):
        script = tools / name
        script.write_text(assistant.replace("NAME", name))
        script.chmod(0o755)
    (root / "home/.zshrc").touch()
    project = root / "harbor notes"
    project.mkdir()
    (project / "README.md").write_text("# Harbor notes\n")
    return project


def quit_program(program, leave):
    leave(program)
    status = wait_for("the end of the program", lambda: program.process.poll() is not None and [program.process.poll()])
    assert status == [0], f"exit status {status}"
    assert program.standard_error() == "", "said on standard error:\n" + program.standard_error()
