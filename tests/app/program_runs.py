"""Runs of the real program that need no window. Usage: program_runs.py PROGRAM [TEST...]"""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = ""
MARKERS = ("PELK_TESTS_PASSED", "PELK_TESTS_FAILED")


class ProgramRun(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.home = self.root / "home"
        self.home.mkdir()
        (self.home / ".zshrc").touch()
        self.temporary = self.root / "tmp"
        self.temporary.mkdir()
        self.environment = {
            "HOME": str(self.home), "PATH": "/usr/bin:/bin", "LANG": "C.UTF-8", "TMPDIR": str(self.temporary),
            "XDG_CONFIG_HOME": str(self.root / "config"), "XDG_DATA_HOME": str(self.root / "data"),
            "XDG_RUNTIME_DIR": str(self.root / "run"),
        }
        (self.root / "run").mkdir(mode=0o700)

    def run_program(self, *arguments, **more):
        return subprocess.run([PROGRAM, *arguments], env={**self.environment, **more}, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=100, cwd=self.root)

    def files_below(self, folder):
        return sorted(str(path.relative_to(folder)) for path in folder.rglob("*")) if folder.exists() else []


class SelfTest(ProgramRun):
    def assert_outcome(self, done, marker, status):
        lines = done.stdout.splitlines()
        self.assertEqual([line for line in lines if line in MARKERS], [marker], done.stdout + done.stderr)
        self.assertEqual(lines[-1], marker)
        for line in lines[:-1]:
            self.assertRegex(line, "^(PASS|FAIL) .", "one line a check and nothing else")
        self.assertEqual(done.returncode, status)
        return lines[:-1]

    def test_passes_and_leaves_only_its_report(self):
        start = time.monotonic()
        done = self.run_program("--self-test", "--test-output", "report")
        self.assertLess(time.monotonic() - start, 60)
        lines = self.assert_outcome(done, "PELK_TESTS_PASSED", 0)
        report = (self.root / "report/Verification.md").read_text()
        self.assertTrue(report.startswith("# Orvo verification\n\n"))
        self.assertTrue(report.rstrip("\n").split("\n\n")[-1].startswith("No model requests were made."))
        for line in lines[:-1]:
            self.assertIn(line, report)
        self.assertNotIn(str(self.home), report)
        self.assertEqual(self.files_below(self.root / "report"), ["Verification.md"])
        self.assertEqual(self.files_below(self.temporary), [], "working folders are removed")
        for folder in ("config", "data", "run"):
            self.assertEqual(self.files_below(self.root / folder), [], "nothing is kept")

    def test_reports_below_the_temporary_folder_without_another(self):
        self.assert_outcome(self.run_program("--self-test"), "PELK_TESTS_PASSED", 0)
        self.assertEqual(self.files_below(self.temporary), ["Orvo-tests", "Orvo-tests/Verification.md"])

    def test_fails_when_no_temporary_folder_can_be_made(self):
        self.temporary.rmdir()
        self.temporary.touch()
        done = self.run_program("--self-test", "--test-output", "report")
        lines = self.assert_outcome(done, "PELK_TESTS_FAILED", 1)
        self.assertIn("FAIL A login shell starts in a pseudo-terminal", lines)
        self.assertIn("orvo: A login shell starts in a pseudo-terminal: ", done.stderr)

    def test_fails_when_the_shell_does_not_come_up(self):
        # Start-up files that end the shell, as a broken set-up does.
        (self.home / ".zshenv").write_text("exit 3\n")
        lines = self.assert_outcome(self.run_program("--self-test", "--test-output", "report"), "PELK_TESTS_FAILED", 1)
        self.assertIn("FAIL A login shell starts in a pseudo-terminal", lines)
        self.assertIn("PASS Preferences survive a restart", lines, "the other checks are made all the same")
        self.assertIn("(exit status 3", (self.root / "report/Verification.md").read_text())

    def test_tidies_up_when_it_is_interrupted(self):
        running = subprocess.Popen([PROGRAM, "--self-test", "--test-output", "report"], env=self.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   text=True, cwd=self.root)
        self.addCleanup(running.kill)
        first = running.stdout.readline()
        running.send_signal(signal.SIGINT)
        rest, errors = running.communicate(timeout=30)
        done = subprocess.CompletedProcess([], running.returncode, first + rest, errors)
        lines = self.assert_outcome(done, "PELK_TESTS_FAILED", 1)
        self.assertIn("FAIL A team run works in copies and leaves the project alone", lines)
        self.assertEqual(self.files_below(self.temporary), [])

    def test_fails_when_the_report_cannot_be_written(self):
        (self.root / "report").touch()
        done = self.run_program("--self-test", "--test-output", "report")
        lines = self.assert_outcome(done, "PELK_TESTS_FAILED", 1)
        self.assertEqual([line for line in lines if line.startswith("FAIL")], ["FAIL The report is written"])


class Arguments(ProgramRun):
    def test_wrong_ones_are_refused_with_a_sentence(self):
        for arguments, sentence in (
                (["--frobnicate"], "There is no option --frobnicate."),
                (["--workspace"], "Name a folder after --workspace."),
                (["one", "two"], "Name only one project folder.")):
            with self.subTest(arguments):
                done = self.run_program(*arguments)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertEqual(done.stderr, f'orvo: {sentence} Try "orvo --help".\n')

    def test_help_and_version_need_no_display(self):
        version = self.run_program("--version")
        self.assertEqual((version.returncode, version.stderr), (0, ""))
        self.assertRegex(version.stdout, r"^Orvo AI \d+\.\d+\.\d+\n$")
        usage = self.run_program("--help")
        self.assertEqual((usage.returncode, usage.stderr), (0, ""))
        for option in ("--self-test", "--test-output", "--capture", "--workspace", "--help", "--version"):
            self.assertIn(f"  {option} ", usage.stdout)
        self.assertEqual(self.files_below(self.root / "config"), [])

    def test_without_a_display_a_window_is_refused(self):
        done = self.run_program()
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(done.stderr, "orvo: There is no display to open a window on. Try orvoctl.\n")
        # One that is gone, as in a shell that outlived its desktop session.
        done = self.run_program(DISPLAY=":6543")
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(done.stderr, "orvo: The display :6543 does not answer. Try orvoctl.\n")


class Capture(ProgramRun):
    PAGES = ["Appearance.png", "Assistants.png", "Files & runner.png", "Mac actions.png", "Settings.png",
             "Workspace.png"]

    def test_writes_six_pictures_and_keeps_nothing(self):
        pictures = self.root / "deep/pictures"
        done = self.run_program("--capture", str(pictures), QT_QPA_PLATFORM="offscreen")
        self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)
        self.assertEqual(self.files_below(pictures), self.PAGES)
        contents = [(pictures / page).read_bytes() for page in self.PAGES]
        for content in contents:
            self.assertEqual(content[:8], b"\x89PNG\r\n\x1a\n")
            self.assertGreaterEqual(int.from_bytes(content[16:20], "big"), 1180, "width of the window's content")
        self.assertEqual(len(set(contents)), len(contents), "each page has a picture of its own")
        for folder in ("config", "data", "run", "tmp"):
            self.assertEqual(self.files_below(self.root / folder), [])

    def test_says_what_cannot_be_written_and_goes_on(self):
        (self.root / "file").touch()
        done = self.run_program("--capture", "file", QT_QPA_PLATFORM="offscreen")
        self.assertEqual(done.returncode, 0)
        lines = done.stdout.splitlines()
        self.assertEqual(len(lines), 6)
        for line in lines:
            self.assertTrue(line.startswith("Capture error: "), line)


class Window(ProgramRun):
    def start(self):
        return subprocess.Popen([PROGRAM], env={**self.environment, "QT_QPA_PLATFORM": "offscreen"},
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def reports(self):
        return sorted((self.root / "data/Orvo AI/Crash reports").glob("*"))

    def wait_for(self, what, condition):
        end = time.monotonic() + 30
        while not condition():
            self.assertLess(time.monotonic(), end, f"waited in vain for {what}")
            time.sleep(0.05)

    def test_starts_where_the_folder_of_the_session_is_somebody_elses(self):
        if os.getuid() != 0:
            self.skipTest("only root can give a folder away")
        os.chown(self.root / "run", 65534, 65534)
        first = self.start()
        self.addCleanup(first.wait)
        self.addCleanup(first.kill)
        self.wait_for("the window", (self.root / "data/Orvo AI/Example Project/README.md").exists)
        later = self.run_program(QT_QPA_PLATFORM="offscreen")
        self.assertEqual((later.returncode, later.stdout), (0, ""), "it is still one window")
        self.assertIsNone(first.poll())

    def test_a_fault_leaves_a_report_that_the_next_start_tells_of(self):
        first = self.start()
        self.addCleanup(first.wait)
        self.addCleanup(first.kill)
        # The samples are prepared by the window, after the handler is in place.
        self.wait_for("the window", (self.root / "data/Orvo AI/Example Project/README.md").exists)
        first.send_signal(signal.SIGSEGV)
        self.assertEqual(first.wait(30), -signal.SIGSEGV)
        (report,) = self.reports()
        text = report.read_text()
        self.assertRegex(text, r"\AOrvo AI \d+\.\d+\.\d+ ended unexpectedly\.\nQt: 6\.")
        self.assertIn("\nSignal: 11 (SIGSEGV)\n", text)
        self.assertGreater(len(text.split("\nStack:\n")[1].splitlines()), 5)
        self.assertEqual(report.stat().st_mode & 0o777, 0o600)

        second = self.start()
        self.addCleanup(second.wait)
        self.addCleanup(second.kill)
        told = report.with_name(report.name.replace(".new", ""))
        self.wait_for("the report to be told of", lambda: self.reports() == [told])
        second.terminate()
        self.assertEqual(second.wait(30), 0, "the alert about it does not hold up the end")
        self.assertEqual(self.reports(), [told])


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
