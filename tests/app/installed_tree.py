"""What an installation puts on a desktop. Usage: installed_tree.py CMAKE BUILD"""
import configparser
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

CMAKE = BUILD = ""


class InstalledTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.root = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.root, ignore_errors=True)
        cls.prefix = cls.root / "usr"
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", cls.prefix], check=True, capture_output=True)
        (cls.root / "home").mkdir()
        cls.environment = {"HOME": str(cls.root / "home"), "PATH": f"{cls.prefix}/bin:/usr/bin:/bin", "LANG": "C.UTF-8",
                           "TMPDIR": str(cls.root)}
        desktop = configparser.RawConfigParser()
        desktop.optionxform = str
        desktop.read(cls.prefix / "share/applications/orvo.desktop")
        cls.desktop = desktop
        cls.about = xml.etree.ElementTree.parse(cls.prefix / "share/metainfo/ai.orvo.workspace.metainfo.xml").getroot()

    def output(self, *command):
        done = subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=100)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def options(self, program):
        return set(re.findall(r"^  (--[a-z-]+)", self.output(program, "--help"), re.MULTILINE))

    def test_the_programs_are_complete_where_they_are_installed(self):
        self.assertIn("PASS The example project is prepared and edits in it are kept\n",
                      self.output("orvo", "--self-test", "--test-output", str(self.root / "report")))
        self.assertIn("orvoctl", self.output("orvoctl", "--help"))

    def test_nothing_of_the_build_is_installed(self):
        self.assertEqual(sorted(path.name for path in self.prefix.iterdir()), ["bin", "lib", "share"])
        self.assertEqual(sorted(str(path.relative_to(self.prefix)) for path in (self.prefix / "lib").rglob("*.so")),
                         [f"lib/orvo-ai/orvo_{name}.so" for name in ("desktop", "hashes", "pictures", "sleep", "voice")])
        self.assertEqual(sorted(path.name for path in (self.prefix / "bin").iterdir()), ["orvo", "orvoctl"])
        for path in self.prefix.rglob("*"):
            self.assertFalse(path.is_symlink(), f"{path} points out of the tree")

    def test_the_menu_entry_starts_what_it_says(self):
        actions = self.desktop["Desktop Entry"]["Actions"].rstrip(";").split(";")
        self.assertEqual([self.desktop[f"Desktop Action {action}"]["Name"] for action in actions],
                         ["New terminal", "Quick draft"])
        known = self.options("orvo")
        for section in self.desktop.sections():
            program, *arguments = shlex.split(self.desktop[section]["Exec"])
            self.assertTrue(os.access(self.prefix / "bin" / program, os.X_OK), program)
            self.assertLessEqual(set(arguments) - {"%f"}, known)

    def test_icons_have_the_size_that_their_folder_says(self):
        name = self.desktop["Desktop Entry"]["Icon"]
        icons = self.prefix / "share/icons/hicolor"
        self.assertTrue((icons / f"scalable/apps/{name}.svg").is_file())
        for size in (16, 22, 24, 32, 48, 64, 96, 128, 256, 512):
            data = (icons / f"{size}x{size}/apps/{name}.png").read_bytes()
            self.assertEqual((data[1:4], data[16:24]), (b"PNG", size.to_bytes(4, "big") * 2))

    def test_the_description_is_of_this_version_and_menu_entry(self):
        self.assertEqual(self.about.findtext("launchable"), "orvo.desktop")
        version = self.about.find("releases/release").get("version")
        self.assertEqual(self.output("orvo", "--version"), f"Orvo AI {version}\n")
        for binary in self.about.findall("provides/binary"):
            self.assertTrue((self.prefix / "bin" / binary.text).exists())
        self.assertGreaterEqual(len(self.about.findall("screenshots/screenshot/image")), 2)

    def test_manual_and_completion_know_every_option(self):
        for program in ("orvo", "orvoctl"):
            page = self.prefix / f"share/man/man1/{program}.1.gz"
            rendered = subprocess.run(["man", "--warnings", "-l", str(page)], capture_output=True, text=True,
                                      env={**self.environment, "MANWIDTH": "100", "PAGER": "cat"})
            self.assertEqual(rendered.stderr, "")
            manual = rendered.stdout
            bash = (self.prefix / f"share/bash-completion/completions/{program}").read_text()
            zsh = (self.prefix / f"share/zsh/site-functions/_{program}").read_text()
            self.assertTrue(zsh.startswith(f"#compdef {program}\n"))
            for option in self.options(program):
                for where, text in (("manual", manual), ("bash", bash), ("zsh", zsh)):
                    self.assertRegex(text, rf"(?<![\w-]){option}(?![\w-])", f"{where} of {program}")

    def test_bash_completes_options_and_folders(self):
        (self.root / "tides").mkdir(exist_ok=True)
        script = f"""source {self.prefix}/share/bash-completion/completions/orvo
            COMP_WORDS=(orvo "$1" "$2"); COMP_CWORD=2; _orvo; printf '%s\\n' "${{COMPREPLY[@]}}"; """
        def complete(previous, current):
            done = subprocess.run(["bash", "-c", "compopt() { :; }\n" + script, "bash", previous, current],
                                  capture_output=True, text=True, cwd=self.root)
            self.assertEqual(done.stderr, "")
            return done.stdout.split()
        self.assertEqual(complete("--workspace", "ti"), ["tides"])
        self.assertEqual(complete("notes", "--se"), ["--self-test"])

    def test_zsh_completes_options(self):
        # Asks the shell's own completion in a terminal of its own, as a person would by pressing Tab.
        done = subprocess.run(["zsh", "-f", "-c", f"""
            zmodload zsh/zpty
            zpty shell zsh -f -i
            zpty -w shell 'fpath=({self.prefix}/share/zsh/site-functions $fpath); autoload -U compinit; compinit -u -D; PS1=; print rea""dy'
            zpty -r shell answer '*ready*'
            zpty -w -n shell $'orvo --self\\t'
            zpty -r shell answer '*--self-test*' && print found
            zpty -d shell"""], capture_output=True, text=True, timeout=60, env={**self.environment, "TERM": "xterm"})
        self.assertIn("found", done.stdout, done.stderr)


if __name__ == "__main__":
    CMAKE, BUILD = sys.argv[1:3]
    del sys.argv[1:3]
    unittest.main()
