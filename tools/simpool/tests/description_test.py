"""Man page and completions, which the build makes from the description that --help prints."""

import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

from run_simpool import COMMANDS, run

DESCRIBED = Path(os.environ["SIMPOOL_DESCRIBED"])


def described(name):
    return (DESCRIBED / name).read_text("utf-8")


def options_of(command):
    """All names of a command's options, as its help has them."""
    text = run(command, "--help").out.decode()
    heads = re.findall(r"(?m)^  (-\S+)", text)
    return {name for head in heads for name in head.split(",") if name.startswith("-")}


def shell(program, *arguments):
    return subprocess.run([program, *arguments], capture_output=True, text=True, check=False,
                          timeout=60)


def complete_in_bash(*words):
    script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _simpool; '
              'printf "%s\\n" "${COMPREPLY[@]}"')
    ran = shell("bash", "--norc", "-c", script, "bash", str(DESCRIBED / "simpool"), *words)
    assert ran.returncode == 0 and not ran.stderr, ran.stderr
    return set(ran.stdout.split())


class ManPage(unittest.TestCase):
    def test_has_every_command_and_option(self):
        page = described("simpool.1").replace("\\-", "-")
        parts = {part.split(" ", 1)[0]: part for part in page.split('.SS "simpool ')[1:]}
        self.assertEqual(list(parts), list(COMMANDS))
        for command in COMMANDS:
            for name in options_of(command):
                self.assertIn(f"\\fB{name}\\fR", parts[command])
            self.assertIn(f"Example:\n.PP\n.nf\n.RS\nsimpool {command}", parts[command])

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not there")
    def test_is_read_without_complaint(self):
        ran = shell("mandoc", "-T", "lint", "-W", "warning", str(DESCRIBED / "simpool.1"))
        # It has no date, so that the same sources make the same page.
        self.assertEqual([line for line in ran.stdout.splitlines() if "missing date" not in line], [])

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not there")
    def test_shows_text_as_it_was_written(self):
        text = shell("mandoc", "-T", "utf8", "-O", "width=200", str(DESCRIBED / "simpool.1")).stdout
        plain = " ".join(re.sub(r".\x08", "", text).split())
        self.assertIn("simpool ls --follow run.sim", plain)
        self.assertIn("-l, --long", plain)


class Completion(unittest.TestCase):
    def test_of_bash_knows_every_command_and_option(self):
        self.assertEqual(complete_in_bash("simpool", ""), {*COMMANDS, "--help", "--version"})
        self.assertEqual(complete_in_bash("simpool", "sa"), {"salvage"})
        for command in COMMANDS:
            self.assertEqual(complete_in_bash("simpool", command, "-"), options_of(command))
        self.assertEqual(complete_in_bash("simpool", "ls", "--fol"), {"--follow"})
        self.assertEqual(complete_in_bash("simpool", "ls", "/et"), {"/etc"})

    def test_of_zsh_and_fish_name_every_command_and_option(self):
        zsh, fish = described("_simpool"), described("simpool.fish")
        for command in COMMANDS:
            self.assertRegex(zsh, rf"(?m)^        '{command}:[A-Z]")
            part = zsh.split(f"\n    {command})\n")[1].split(";;")[0]
            self.assertRegex(fish, rf"(?m)^complete .* -a {command} -d '[A-Z]")
            lines = [line for line in fish.splitlines()
                     if f"__fish_seen_subcommand_from {command}'" in line]
            for name in options_of(command):
                self.assertIn(f"){name}[", part)
                flag = f" -l {name[2:]} " if name.startswith("--") else f" -s {name[1:]} "
                self.assertTrue(any(flag in line + " " for line in lines), (command, name))

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not there")
    def test_of_zsh_is_one(self):
        ran = shell("zsh", "-f", "-n", str(DESCRIBED / "_simpool"))
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        script = ("autoload -U compinit; compinit -D -u; fpath=($1 $fpath); autoload -U _simpool; "
                  "compdef _simpool simpool; print $_comps[simpool]")
        ran = shell("zsh", "-f", "-c", script, "zsh", str(DESCRIBED))
        self.assertEqual((ran.returncode, ran.stdout), (0, "_simpool\n"), ran.stderr)

    @unittest.skipUnless(shutil.which("fish"), "fish is not there")
    def test_of_fish_completes(self):
        def complete(line):
            ran = shell("fish", "--no-config", "-c",
                        f"source {DESCRIBED}/simpool.fish; complete -C '{line}'")
            self.assertEqual((ran.returncode, ran.stderr), (0, ""))
            return {row.split("\t")[0] for row in ran.stdout.splitlines()}

        self.assertTrue(set(COMMANDS) <= complete("simpool "))
        self.assertIn("--follow", complete("simpool ls --"))
        self.assertNotIn("--follow", complete("simpool stat --"))


if __name__ == "__main__":
    unittest.main()
