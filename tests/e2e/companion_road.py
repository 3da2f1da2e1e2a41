"""The companion on a desktop: clicked, written with, dragged from screen to screen, hidden and found again.

Usage: companion_road.py PROGRAM PICTURES
"""
import subprocess
import sys
import time

from desktop import activate_window, press_key, text_of, type_text, wait_for, xdotool
from home import on_a_project

SCREEN = (1600, 1000)
CENTER = (800, 300)
PET = (176, 186)
RIGHT, BOTTOM = 28, 30  # the pet's first distance from the corner


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def panel(title):
    """Where the panel of that title stands; nothing while it is hidden."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], capture_output=True,
                           text=True).stdout.split()
    if not found:
        return None
    place = dict(line.split("=") for line in output("xdotool", "getwindowgeometry", "--shell", found[-1]).split())
    return int(place["X"]), int(place["Y"]), int(place["WIDTH"]), int(place["HEIGHT"])


def pet():
    return panel("Orvo desktop companion")


def draft():
    return panel("Orvo companion controls")


def color_at(x, y):
    pixel = subprocess.run(["import", "-silent", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "rgb:-"],
                           capture_output=True, check=True).stdout
    return tuple(pixel[:3])


def shines_through():
    """The corner of the pet's window shows what lies around it."""
    x, y, _, _ = pet()
    return color_at(x + 2, y + 2) == color_at(x - 3, y + 2) != (0, 0, 0)


def drag_pet(way):
    x, y, _, _ = pet()
    xdotool("mousemove", str(x + 80), str(y + 80), "mousedown", "1")
    for step in (1, 2, 3, 4):
        xdotool("mousemove", str(x + 80 + way[0] * step // 4), str(y + 80 + way[1] * step // 4))
        time.sleep(0.05)
    xdotool("mouseup", "1")


def click_pet():
    x, y, _, _ = pet()
    xdotool("mousemove", str(x + 80), str(y + 80), "click", "1")


def walk(program, project):
    subprocess.run(["xsetroot", "-solid", "#354a2f"], check=True)
    program.find("push button", "New terminal")
    # Out of the way of the pet's corner.
    xdotool("search", "--onlyvisible", "--name", "^Orvo AI$", "windowsize", "1180", "740", "windowmove", "0", "0")
    place = wait_for("the pet", pet)
    assert place == (SCREEN[0] - RIGHT - PET[0], SCREEN[1] - BOTTOM - PET[1], *PET), place
    wait_for("the desktop around the pet", shines_through)
    assert "= 4294967295" in output("xprop", "-name", "Orvo desktop companion", "_NET_WM_DESKTOP"), "not on all desktops"

    # A click opens the draft; the keyboard goes into it.
    click_pet()
    wait_for("the draft", draft)
    assert draft()[0] + draft()[2] <= pet()[0] + 60, "the draft opens to the left of a pet at the right edge"
    time.sleep(0.3)
    type_text("Sort the moorings")
    wait_for("the typed draft", lambda: text_of(program.find("text", "Companion draft")) == "Sort the moorings")
    program.picture("1-draft")
    program.press("Use draft in workspace")
    wait_for("the draft to close", lambda: not draft())
    assert text_of(program.find("text", "Task for selected assistants")) == "Sort the moorings"
    program.find(name="Companion draft added. Choose your assistants and run it when ready.")

    # Two screens side by side; the pet goes where it is dragged and never off a screen.
    for name, monitor in (("left", "800/210x1000/260+0+0"), ("right", "800/210x1000/260+800+0")):
        subprocess.run(["xrandr", "--setmonitor", name, monitor, "none"], check=True)
    time.sleep(0.5)
    before = pet()
    drag_pet((-1100, -500))
    wait_for("the dragged pet", lambda: pet()[:2] == (before[0] - 1100, before[1] - 500))
    click_pet()
    wait_for("the draft at the right of the pet", lambda: draft() and draft()[0] + 60 > pet()[0] + PET[0])
    program.picture("2-two-screens")
    press_key("Escape")
    wait_for("the draft to close", lambda: not draft())
    drag_pet((-370, -360))
    wait_for("the pet in the corner", lambda: pet()[:2] == (0, 0))
    for name in ("left", "right"):
        subprocess.run(["xrandr", "--delmonitor", name], check=True)

    # Hidden and found again, now with real translucency.
    program.press("Companion")
    program.press("Show desktop companion", role="check box")
    wait_for("the pet to go", lambda: not pet())
    compositor = subprocess.Popen(["xcompmgr"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        time.sleep(0.5)
        program.press("Find pet on desktop")
        wait_for("the pet in its first place", lambda: pet() == place)
        wait_for("the desktop around the pet", shines_through)
        program.press("Open quick draft")
        wait_for("the draft", draft)
        program.picture("3-composited")
        program.press("Close quick draft")
        wait_for("the draft to close", lambda: not draft())
        compositor.kill()
        wait_for("the shape instead of translucency", shines_through)
    finally:
        compositor.kill()
        compositor.wait()

    # Over a window that fills the screen, from the desktop's menu.
    film = subprocess.Popen(["xterm", "-fullscreen", "-bg", "white"], stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL)
    try:
        wait_for("the full screen", lambda: color_at(*CENTER) == (255, 255, 255))
        subprocess.run([program.process.args[0], "--quick-draft"], check=True, timeout=30)
        x, y, _, _ = wait_for("the draft", draft)
        wait_for("the draft in front", lambda: color_at(x + 170, y + 200) != (255, 255, 255))
        assert color_at(*CENTER) == (255, 255, 255), "only the draft came"
        program.picture("4-over-a-full-screen")
        press_key("Escape")
        wait_for("the draft to close", lambda: not draft())
    finally:
        film.kill()
        film.wait()

    # The window hides while the pet is there, and comes back.
    activate_window()
    press_key("alt+F4")
    wait_for("the window to hide", lambda: not program.all("push button", "Back to Settings"))
    assert program.process.poll() is None
    click_pet()
    program.press("Customize pet")
    program.find("push button", "Back to Settings")
    activate_window()


if __name__ == "__main__":
    on_a_project(*sys.argv[1:], "#!/bin/sh\nexit 1\n", walk)
