"""The companion hears and speaks: a sentence said into the microphone stands in the draft and is read aloud.

Usage: voice_road.py PROGRAM PICTURES
"""
import contextlib
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

from desktop import activate_window, press_key, text_of, wait_for, xdotool
from home import on_a_project
from companion_road import click_pet, draft, pet

PROGRAMS = ("pulseaudio", "pactl", "paplay", "parec", "flite", "speech-dispatcher")
SKIPPED = 77
STOP_LIMIT = 5 * 0.15  # seconds; 0.15 are promised, a busy machine gets five times that


@contextlib.contextmanager
def sound_server():
    """A sound server of its own, whose microphone hears what is played."""
    folder = pathlib.Path(tempfile.mkdtemp())
    socket = folder / "sound"
    os.environ["PULSE_SERVER"] = f"unix:{socket}"
    server = subprocess.Popen(
        ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
         "-L", f"module-native-protocol-unix auth-anonymous=1 socket={socket}",
         "-L", "module-null-sink sink_name=speakers",
         "-L", "module-remap-source master=speakers.monitor source_name=microphone"],
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        wait_for("the microphone", lambda: "\tmicrophone\t" in subprocess.run(
            ["pactl", "list", "short", "sources"], capture_output=True, text=True).stdout)
        yield folder
    finally:
        server.terminate()
        server.wait(10)
        shutil.rmtree(folder)


class Ear:
    """Listens to what is played, and knows when it last heard something."""

    def __init__(self):
        self.last = 0.0
        self.recorder = subprocess.Popen(
            ["parec", "--device=speakers.monitor", "--rate=16000", "--channels=1", "--format=s16le",
             "--latency-msec=20"], stdout=subprocess.PIPE)
        self.thread = threading.Thread(target=self.listen, daemon=True)
        self.thread.start()

    def listen(self):
        while piece := self.recorder.stdout.read(640):
            samples = struct.unpack(f"<{len(piece) // 2}h", piece[:len(piece) // 2 * 2])
            if max(map(abs, samples)) > 300:
                self.last = time.monotonic()

    def end(self):
        self.recorder.terminate()
        self.recorder.wait(10)
        self.thread.join(10)


def say(sentence, folder):
    subprocess.run(["flite", "-voice", "slt", "-t", sentence, "-o", folder / "sentence.wav"], check=True)
    subprocess.run(["paplay", "--device=speakers", folder / "sentence.wav"], check=True)


def walk_with(folder):
    def walk(program, project):
        program.find("push button", "New terminal")
        xdotool("search", "--onlyvisible", "--name", "^Orvo AI$", "windowsize", "1180", "740", "windowmove", "0", "0")
        wait_for("the pet", pet)
        click_pet()
        wait_for("the draft", draft)

        def draft_text():
            return text_of(program.find("text", "Companion draft"))

        # Said, and stopped by hand while the words stand there.
        program.press("Microphone")
        program.find(name="Listening… tap the microphone to stop.")
        program.picture("1-listening")
        say("Please make a new plan before you change any files.", folder)
        wait_for("the words", lambda: {"new", "plan", "files"} <= set(draft_text().split()))
        program.press("Stop mic")
        program.find(name="Microphone off. Your draft is ready to review.")
        heard = draft_text()

        # Read aloud, and silenced.
        ear = Ear()
        try:
            asked = time.monotonic()
            program.click(program.find("push button", "Read aloud options"))
            program.find("menu item", "Read draft aloud")
            press_key("Down")
            press_key("Return")
            wait_for("the voice", lambda: ear.last > asked)
            program.find(name="Reading aloud… Stop Orvo audio ends playback.")
            program.press("Microphone")
            stopped = time.monotonic()
            program.find(name="Listening… tap the microphone to stop.")
            wait_for("silence", lambda: time.monotonic() - ear.last > 1)
            assert ear.last - stopped < STOP_LIMIT, f"heard for {ear.last - stopped:.2f} s after the stop"
            program.press("Stop mic")
            assert draft_text().startswith(heard), "what was dictated before is kept"
        finally:
            ear.end()
        press_key("Escape")
        wait_for("the draft to close", lambda: not draft())
        activate_window()

    return walk


def main(binary, pictures):
    for name in PROGRAMS:
        if not shutil.which(name):
            print(f"{name} is not installed")
            return SKIPPED
    with sound_server() as folder:
        on_a_project(binary, pictures, "#!/bin/sh\nexit 1\n", walk_with(folder))
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
