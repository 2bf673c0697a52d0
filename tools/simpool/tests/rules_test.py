"""What holds for every command: exit codes, help, documents, names that a terminal would obey,
outputs that fail, and inputs that stay as they are."""

import json
import os
import pty
import resource
import subprocess
import tempfile
import unittest
from pathlib import Path

from run_simpool import COMMANDS, PROGRAM, pool, run, uuid

A, B = uuid("a"), uuid("b")


class Folder(unittest.TestCase):
    """A folder with a sound file of two pools and a damaged one."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        sound = pool([A], b"hello", length=85) + pool([B, A], bytes(8) + b"\1\0\0\0")
        self.file("a.sim", sound)
        self.file("bad.sim", sound[:85] + b"X" * 20 + sound[105:])

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def run_here(self, *arguments, **options):
        return run(*arguments, folder=self.folder, **options)

    def expect(self, code, *arguments, **options):
        ran = self.run_here(*arguments, **options)
        self.assertEqual(ran.code, code, (arguments, ran.err))
        return ran


# A run of each command that ends with 0, and writes to standard output.
RUNS = {
    "ls": ["ls", "a.sim"],
    "verify": ["verify", "a.sim"],
    "salvage": ["salvage", "a.sim", "--dry-run"],
    "stat": ["stat", "a.sim"],
    "dump": ["dump", "a.sim"],
    "build": ["build", "dump.json", "-o", "built.sim"],
    "hexdump": ["hexdump", "a.sim", "0"],
    "extract": ["extract", "a.sim", "0"],
    "copy": ["copy", "a.sim", "0", "-o", "b.sim"],
    "new": ["new", "-o", "new.sim", "--signature", "DEMO"],
    "merge": ["merge", "a.sim", "-o", "merged.sim"],
    "repack": ["repack", "a.sim", "-o", "repacked.sim"],
    "diff": ["diff", "a.sim", "a.sim"],
    "graph": ["graph", "a.sim"],
    "map": ["map", "a.sim"],
}
READING = ("ls", "verify", "salvage", "stat", "dump", "hexdump", "graph", "map")
COPYING = ("copy", "merge", "repack")


class EveryCommand(Folder):
    def test_explains_itself_with_an_example(self):
        for command in COMMANDS:
            ran = self.expect(0, command, "--help")
            text = ran.out.decode()
            self.assertIn("Example:\n  simpool " + command, text)
            self.assertIn("--json", text)
            self.assertEqual(ran.err, b"")
            for line in text.split("\n\n", 1)[1].splitlines():
                self.assertLessEqual(len(line), 100, line)

    def test_stands_in_the_list(self):
        text = self.expect(0, "--help").out.decode()
        for command in COMMANDS:
            self.assertRegex(text, rf"(?m)^  {command} +[A-Z]")

    def test_ends_with_2_when_it_is_used_wrongly(self):
        self.expect(2)
        self.expect(2, "nonsense")
        for command in COMMANDS:
            ran = self.expect(2, command, "--no-such-option")
            self.assertTrue(ran.err.startswith(b"simpool: "), ran.err)
            self.assertEqual(ran.out, b"")
        self.assertIn(b"\\x1b[31m", self.expect(2, "ls", "a.sim", "--\x1b[31m").err)
        for command in ("ls", "verify", "salvage", "stat", "dump", "build", "hexdump"):
            self.expect(2, command)

    def test_ends_with_2_when_a_file_cannot_be_read(self):
        os.mkfifo(self.folder / "pipe")
        (self.folder / "folder").mkdir()
        for command in READING:
            rest = {"hexdump": ["0"], "salvage": ["-n"]}.get(command, [])
            for name in ("none.sim", "folder", "pipe", "/dev/zero"):
                ran = self.expect(2, command, name, *rest)
                self.assertTrue(ran.err.startswith(b"simpool: cannot "), ran.err)
                self.assertIn(name.encode(), ran.err)
                self.assertEqual(ran.out, b"")

    def test_prints_one_document_of_the_schema(self):
        (self.folder / "dump.json").write_bytes(self.expect(0, "dump", "--data", "a.sim").out)
        for command in READING + ("build", "diff"):
            document = json.loads(self.expect(0, *RUNS[command], "--json").out)
            self.assertEqual(list(document)[:2], ["schema", "command"])
            self.assertEqual(document["schema"], "simpool/1")
            self.assertEqual(document["command"], command)

    def test_tells_of_damage_by_its_exit_code(self):
        for command in ("ls", "verify", "stat", "dump"):
            self.expect(1, command, "bad.sim")
            self.expect(1, command, "--json", "bad.sim")
        self.expect(1, "salvage", "--dry-run", "bad.sim")
        self.expect(0, "salvage", "--dry-run", "a.sim")

    def test_fails_when_nobody_can_take_its_output(self):
        (self.folder / "dump.json").write_bytes(self.expect(0, "dump", "--data", "a.sim").out)
        for command in READING + ("build",):
            with open("/dev/full", "wb") as full:
                ran = run(*RUNS[command], *(["--force"] if command == "build" else []),
                          folder=self.folder, stdout=full)
            self.assertEqual(ran.code, 2, command)
            self.assertIn(b"No space left on device", ran.err)
            reader, writer = os.pipe()
            os.close(reader)
            ran = run(*RUNS[command], *(["--force"] if command == "build" else []),
                      folder=self.folder, stdout=writer)
            os.close(writer)
            self.assertEqual((ran.code, b"Broken pipe" in ran.err), (2, True), command)
            closed = subprocess.run(["/bin/sh", "-c", '"$0" "$@" >&-', PROGRAM, *RUNS[command],
                                     *(["--force"] if command == "build" else [])],
                                    cwd=self.folder, capture_output=True, check=False)
            self.assertEqual(closed.returncode, 2, command)
        with open("/dev/full", "wb") as full:
            self.assertEqual(run("--help", stdout=full).code, 2)

    def test_leaves_its_input_as_it_is(self):
        for name in ("a.sim", "bad.sim"):
            path = self.folder / name
            content = path.read_bytes()
            path.chmod(0o400)
            os.utime(path, ns=(10**18, 10**18))
            for command in READING:
                run(*[name if word == "a.sim" else word for word in RUNS[command]],
                    folder=self.folder)
            self.run_here("salvage", name, "-o", "new.sim", "--force")
            self.assertEqual(path.read_bytes(), content)
            self.assertEqual(path.stat().st_mtime_ns, 10**18)

    def test_disarms_names_and_uuids(self):
        evil = "\x1b]0;owned\x07.sim"
        strange = b"\x1b[2J\xff\xfe" + b"\xe2\x80\xae" + b"x" * 23
        self.file(evil, pool([strange], b"", length=80) + pool([B, strange]))
        for command in READING:
            for form in ([], ["--json"]):
                words = [evil if word == "a.sim" else word for word in RUNS[command]]
                out = self.run_here(*words, *form).out
                self.assertNotIn(b"\x1b", out, command)
                self.assertNotIn(b"\x07", out, command)
                self.assertNotIn(b"\xe2\x80\xae", out, command)
                out.decode("utf-8")
                if form:
                    json.loads(out)
                if command != "build":
                    self.assertIn(b"x1b]0;owned", out, command)
        self.assertIn(b"\\x1b", self.expect(2, "ls", "\x1b[31m").err)


class Copying(Folder):
    """The commands that put pools into new files."""

    def test_prints_one_document_of_the_schema(self):
        for command in COPYING + ("new",):
            document = json.loads(self.expect(0, *RUNS[command], "--json").out)
            self.assertEqual(list(document)[:2], ["schema", "command"])
            self.assertEqual((document["schema"], document["command"]), ("simpool/1", command))

    def test_leaves_no_half_file_when_the_disk_is_full(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        big = self.file("big.sim", pool([A], bytes(range(256)) * 9))
        for arguments in (["copy", big, "-o", "out"], ["merge", big, "-o", "out"],
                          ["repack", big, "-o", "out"], ["extract", big, "0", "-o", "out"],
                          ["new", "-o", "out", "--signature", "DEMO", "--data", big],
                          ["graph", big, "-o", "out"], ["map", big, "-o", "out"]):
            ran = self.run_here(*arguments, preexec_fn=limit)
            self.assertEqual((ran.code, b"File too large" in ran.err), (2, True), ran.err)
            self.assertEqual(sorted(os.listdir(self.folder)), ["a.sim", "bad.sim", "big.sim"])

    def test_ends_with_2_when_a_file_cannot_be_read(self):
        os.mkfifo(self.folder / "pipe")
        for command in COPYING + ("extract", "diff"):
            for name in ("none.sim", "pipe", "/dev/zero"):
                words = [name if word == "a.sim" else word for word in RUNS[command]]
                self.assertTrue(self.expect(2, *words).err.startswith(b"simpool: cannot "))
        self.expect(2, "new", "-o", "new.sim", "--signature", "DEMO", "--data", "none.bin")

    def test_leaves_its_input_as_it_is(self):
        content = (self.folder / "a.sim").read_bytes()
        os.link(self.folder / "a.sim", self.folder / "other_name.sim")
        for command in COPYING + ("extract", "graph", "map"):
            words = RUNS[command][:RUNS[command].index("-o")] if "-o" in RUNS[command] \
                else RUNS[command]
            for name in ("a.sim", "other_name.sim"):
                force = [] if command == "copy" else ["--force"]
                self.expect(2, *words, "-o", name, *force)
        self.assertEqual((self.folder / "a.sim").read_bytes(), content)
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.sim", "bad.sim", "other_name.sim"])

    def test_fails_when_nobody_can_take_its_output(self):
        with open("/dev/full", "wb") as full:
            for words in (RUNS["extract"], RUNS["new"], RUNS["merge"], ["diff", "a.sim", "bad.sim"]):
                ran = self.run_here(*words, stdout=full)
                self.assertEqual((ran.code, b"No space left" in ran.err), (2, True), words)

    def test_disarms_names_and_uuids(self):
        evil = "\x1b]0;owned\x07.sim"
        strange = b"\x1b[2J\xff\xfe" + b"\xe2\x80\xae" + b"x" * 23
        self.file(evil, pool([strange], b"", length=80) + pool([B]))
        for words in (["copy", evil, "-o", "1\x1b"], ["merge", evil, "-o", "2\x1b"],
                      ["repack", evil, "--root", "1", "-o", "3\x1b"], ["diff", "a.sim", evil],
                      ["new", "-o", "4\x1b", "--signature", "A\x1bBC"],
                      ["graph", evil, "--format", "dot"], ["graph", evil, "--format", "mermaid"]):
            ran = self.run_here(*words)
            self.assertIn(ran.code, (0, 1), ran.err)
            self.assertNotIn(b"\x1b", ran.out, words)
            self.assertNotIn(b"\x07", ran.out, words)
            self.assertIn(b"x1b", ran.out, words)


class OnATerminal(Folder):
    def run_on_terminal(self, *arguments, env=None):
        try:
            master, terminal = pty.openpty()
        except OSError as reason:
            self.skipTest(f"this system gives no terminals: {reason}")
        done = subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, stdout=terminal,
                                stderr=terminal, env={**os.environ, **(env or {})})
        os.close(terminal)
        out = b""
        while True:
            try:
                piece = os.read(master, 65536)
            except OSError:
                break
            if not piece:
                break
            out += piece
        done.wait()
        os.close(master)
        return out

    def test_has_colours_there_alone(self):
        self.assertIn(b"\x1b[1m", self.run_on_terminal("ls", "a.sim", env={"NO_COLOR": ""}))
        self.assertNotIn(b"\x1b[", self.run_on_terminal("ls", "a.sim", env={"NO_COLOR": "1"}))
        self.assertNotIn(b"\x1b[", self.expect(1, "ls", "bad.sim").out)

    def test_shows_progress_there_alone(self):
        # Enough bytes to be searched for longer than half a second.
        path = self.file("large.sim", pool([A]))
        with path.open("ab") as file:
            for _ in range(300):
                file.write(b"\x89SIM\r\n\x1a\n" * (1 << 13))
        self.assertRegex(self.run_on_terminal("verify", "large.sim"), rb"verifying \d+ %")
        self.assertEqual(self.expect(0, "verify", "large.sim").err, b"")


if __name__ == "__main__":
    unittest.main()
