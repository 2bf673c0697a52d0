"""The commands as users run them: what they print and write, to the letter where it matters."""

import json
import os
import resource
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from run_simpool import CORPUS, GOLDEN, PROGRAM, SLOW, pool, run, uuid

A, B, C = uuid("a"), uuid("b"), uuid("c")
WORKED = GOLDEN / "worked_example.sim"


class InFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def file(self, name, content):
        (self.folder / name).write_bytes(content)
        return name

    def expect(self, code, *arguments, **options):
        ran = run(*arguments, folder=self.folder, **options)
        self.assertEqual(ran.code, code, (arguments, ran.err))
        return ran.out.decode()


class Ls(InFolder):
    def test_lists_a_file(self):
        self.file("a.sim", WORKED.read_bytes())
        self.assertEqual(self.expect(0, "ls", "a.sim").splitlines(), [
            "a.sim: version 6, signature 'DEMO', 2 pools, 228 bytes",
            "  #  UUID                              position  header  refs  data        state",
            "  0  00112233445546778899aabbccddeeff         0      80     0    12  12 B  frozen",
            "  1  f0e1d2c3b4a54697b8798a9bacbdcedf        92     112     1    24  24 B  current",
        ])

    def test_lists_directories_and_looks_references_up_in_all_files(self):
        self.file("a.sim", pool([A], b"12345", length=85) + pool([B, A, C, A]))
        self.file("b.sim", pool([C]))
        lines = self.expect(0, "ls", "-l", "a.sim", "b.sim").splitlines()
        self.assertEqual(lines[4:9], [
            "  pool 0: 5 bytes of data, reserved words 2 and 0",
            "  pool 1: 0 bytes of data, reserved words 2 and 0",
            f"    entry 1 refers to {A}, pool 0",
            f"    entry 2 refers to {C}, pool 0 of b.sim",
            f"    entry 3 refers to {A}, pool 0"])
        self.assertIn(f"refers to {C}, not in these files", self.expect(0, "ls", "-l", "a.sim"))

    def test_lists_up_to_the_damage(self):
        self.file("a.sim", pool([A], b"12345", length=85) + bytes(48))
        self.assertIn("  stopped at position 85: there is no pool signature; 48 bytes from there on\n",
                      self.expect(1, "ls", "a.sim"))
        document = json.loads(self.expect(1, "ls", "--json", "a.sim"))
        self.assertEqual(document["files"][0]["stop"],
                         {"position": 85, "reason": "there is no pool signature"})

    def test_follows_a_file_that_is_being_written(self):
        path = self.folder / "a.sim"
        path.write_bytes(pool([A]))
        with subprocess.Popen([PROGRAM, "ls", "-f", "--interval", "0.02", "--count", "3", "a.sim"],
                              cwd=self.folder, stdout=subprocess.PIPE, text=True) as follow:
            first = [follow.stdout.readline() for _ in range(3)]
            self.assertIn("1 pool, 80 bytes", first[0])
            with path.open("ab") as file:
                file.write(b"12345")
            second = [follow.stdout.readline() for _ in range(4)]
            self.assertIn("1 pool, 85 bytes", second[1])
            (self.folder / "next").write_bytes(pool([A], length=80) + pool([B]))
            os.rename(self.folder / "next", path)
            self.assertIn("2 pools, 160 bytes", follow.stdout.read())
            self.assertEqual(follow.wait(timeout=30), 0)
        self.expect(2, "ls", "--follow", "--json", "a.sim")
        self.expect(2, "ls", "--count", "3", "a.sim")


class Salvage(InFolder):
    def setUp(self):
        super().setUp()
        self.sound = pool([A], b"12345", length=85) + pool([B], b"678")
        self.file("bad.sim", self.sound[:85] + b"X" + self.sound[86:] + b"more")
        self.file("torn.sim", self.sound[:85] + self.sound[85:140])

    def test_writes_a_new_file_and_a_report(self):
        out = self.expect(1, "salvage", "bad.sim", "-o", "new.sim", "--report", "report.json")
        self.assertEqual(out.splitlines(), [
            "bad.sim: 172 bytes, 2 pools found",
            f"  pool 0 {A} from position 0: 85 bytes",
            f"  pool 1 {B} from position 85: 87 bytes; mended: signature",
            "kept: 172 bytes of pools and 0 of gaps; cut: 0; lost: 0",
            "written: new.sim"])
        self.assertEqual((self.folder / "new.sim").read_bytes(), self.sound + b"more")
        report = json.loads((self.folder / "report.json").read_text())
        self.assertEqual(report["bytesInPools"], 172)
        self.assertEqual(report["pools"][1]["repairs"], ["signature"])
        self.assertEqual(sorted(os.listdir(self.folder)),
                         ["bad.sim", "new.sim", "report.json", "torn.sim"])

    def test_writes_nothing_on_a_dry_run(self):
        self.assertIn("nothing was written", self.expect(1, "salvage", "bad.sim", "-n", "-o", "new.sim"))
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.sim", "torn.sim"])

    def test_replaces_nothing_unasked_and_never_its_input(self):
        self.file("new.sim", b"mine")
        self.expect(2, "salvage", "bad.sim", "-o", "new.sim")
        self.assertEqual((self.folder / "new.sim").read_bytes(), b"mine")
        self.expect(1, "salvage", "bad.sim", "-o", "new.sim", "--force")
        os.link(self.folder / "bad.sim", self.folder / "other_name.sim")
        for name in ("bad.sim", "other_name.sim"):
            self.expect(2, "salvage", "bad.sim", "-o", name, "--force")
            self.expect(2, "salvage", "bad.sim", "-n", "--report", name, "--force")
        self.expect(2, "salvage", "bad.sim")
        for name in ("/dev/null", self.folder, self.folder / "none" / "new.sim", ""):
            self.expect(2, "salvage", "bad.sim", "-o", name, "--force")
        self.assertTrue(Path("/dev/null").is_char_device())
        self.assertEqual((self.folder / "bad.sim").stat().st_size, 172)

    def test_leaves_no_half_file_when_the_disk_is_full(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        ran = run("salvage", "bad.sim", "-o", "new.sim", folder=self.folder, preexec_fn=limit)
        self.assertEqual((ran.code, b"File too large" in ran.err), (2, True), ran.err)
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.sim", "torn.sim"])

    def test_cuts_only_the_tail_and_saves_it(self):
        out = self.expect(1, "salvage", "--truncate-only", "torn.sim")
        self.assertEqual(out, "torn.sim: cut at 85, kept 85 bytes in 1 pool\n"
                              "55 bytes saved as torn.sim.tail\n")
        self.assertEqual((self.folder / "torn.sim").read_bytes(), self.sound[:85])
        self.assertEqual((self.folder / "torn.sim.tail").read_bytes(), self.sound[85:140])
        self.assertEqual(self.expect(0, "salvage", "--truncate-only", "torn.sim"),
                         "torn.sim: nothing to cut\n")

    def test_does_not_cut_off_pools_or_all_of_a_file(self):
        middle = self.sound[:85] + b"X" * 85 + pool([C], b"!")
        self.file("middle.sim", middle)
        self.expect(2, "salvage", "--truncate-only", "middle.sim")
        self.file("front.sim", b"X" + self.sound[1:])
        self.expect(2, "salvage", "--truncate-only", "front.sim", "--force")
        self.expect(1, "salvage", "--truncate-only", "--dry-run", "torn.sim")
        self.assertEqual((self.folder / "middle.sim").read_bytes(), middle)
        self.assertEqual((self.folder / "torn.sim").stat().st_size, 140)


class DumpAndBuild(InFolder):
    def test_make_every_golden_file_again(self):
        names = sorted(GOLDEN.glob("*.sim"))
        self.assertGreaterEqual(len(names), 28)
        self.check_all(names)

    def test_make_every_file_of_the_corpus_again(self):
        names = sorted(path for path in CORPUS.rglob("*") if path.is_file())
        self.assertGreaterEqual(len(names), 200)
        self.check_all(names[::5] if SLOW else names)

    def check_all(self, names):
        for path in names:
            ran = run("dump", "--data", path, folder=self.folder)
            self.assertIn(ran.code, (0, 1), path)
            self.file("dump.json", ran.out)
            self.expect(0, "build", "dump.json", "-o", "again.sim", "--force")
            self.assertEqual((self.folder / "again.sim").read_bytes(), path.read_bytes(), path)

    def test_tell_holes_from_data(self):
        with open(self.folder / "a.sim", "wb") as file:
            file.write(pool([A], b"begin"))
            file.seek(1 << 26)
            file.write(b"end")
        dump = run("dump", "--data", "a.sim", folder=self.folder).out
        self.assertLess(len(dump), 200000)
        self.file("dump.json", dump)
        self.expect(0, "build", "dump.json", "-o", "b.sim")
        self.assertLess((self.folder / "b.sim").stat().st_blocks * 512, 1 << 20)
        self.assertEqual(subprocess.run(["cmp", "a.sim", "b.sim"], cwd=self.folder,
                                        check=False).returncode, 0)

    def test_need_the_data(self):
        self.file("a.sim", pool([A], b"12345"))
        self.file("dump.json", self.expect(0, "dump", "a.sim").encode())
        ran = run("build", "dump.json", "-o", "b.sim", folder=self.folder)
        self.assertEqual((ran.code, b"dump with --data" in ran.err), (2, True), ran.err)
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.sim", "dump.json"])

    def test_refuse_what_is_no_dump(self):
        good = json.loads(run("dump", "--data", WORKED).out)
        for change in ({"schema": "simpool/2"}, {"command": "ls"}, {"size": "228"}, {"size": 2**63},
                       {"size": 100}, {"pools": [1]}, {"rest": [{"position": 0, "hex": "0"}]},
                       {"rest": [{"position": 228, "hex": "00"}]},
                       {"rest": [{"position": 2**64 - 1, "hex": "0000"}]}):
            self.file("dump.json", json.dumps(good | change).encode())
            self.expect(2, "build", "dump.json", "-o", "b.sim")
        for key, value in (("directory", ["short"]), ("userSignature", "\\x4"), ("reserved", "0")):
            document = json.loads(json.dumps(good))
            document["pools"][0][key] = value
            self.file("dump.json", json.dumps(document).encode())
            self.expect(2, "build", "dump.json", "-o", "b.sim")
        for text in (b"", b"{", b"[]", b"\xff"):
            self.file("dump.json", text)
            self.expect(2, "build", "dump.json", "-o", "b.sim")
        self.assertEqual(os.listdir(self.folder), ["dump.json"])


class Hexdump(InFolder):
    def lines(self, code, *arguments):
        return [line[12:] for line in self.expect(code, "hexdump", *arguments).splitlines()
                if line.startswith("   ")]

    def test_explains_header_and_directory(self):
        lines = self.lines(0, WORKED, "1", "--as", "header")
        self.assertEqual(len(lines), 8)
        self.assertTrue(lines[0].startswith("89 53 49 4d 0d 0a 1a 0a "))
        self.assertTrue(lines[0].endswith("  signature \\x89SIM\\x0d\\x0a\\x1a\\x0a"))
        self.assertIn("directory count 2", lines[7])
        lines = self.lines(0, WORKED, "1", "--as", "dir")
        self.assertIn("entry 1 00112233445546778899aabbccddeeff, pool 0 of", lines[2])

    def test_takes_data_for_records(self):
        data = (b"\x03\0\0\0abc\0" + b"\xff" * 4 + b"\0\0\x80\x3f" + b"\0" * 6 + b"\xf8\x3f"
                + b"hi\xff\n" + b"\xfe\xff" + b"??")
        self.file("a.sim", pool([A], data))
        lines = self.lines(0, "a.sim", "0:0", "--as", "string,i32,f32,f64,charx4,i16,skipx2")
        self.assertEqual([line[49:] for line in lines],
                         ['string "abc"', "i32 -1", "f32 1", "f64 1.5", 'char "hi\\xff\\x0a"',
                          "i16 -2"])
        document = json.loads(self.expect(0, "hexdump", "--json", "a.sim", "0:8+8", "--as", "u32"))
        self.assertEqual([line["value"] for line in document["lines"]], [4294967295, 1065353216])
        self.expect(0, "hexdump", "a.sim", "aaaa:0x8+4", "--as", "u8x3,u8")
        self.expect(1, "hexdump", "a.sim", "0:8+7", "--as", "u32")
        self.expect(1, "hexdump", "a.sim", "0:99")
        for layout in ("u31", "u32,", "u32x0", "u32x", "u32xx2", "charx99999999999"):
            self.expect(2, "hexdump", "a.sim", "0:0", "--as", layout)
        for place in ("1", "b", "bbbb", "0:x", "0:1+", "0:1+2+3", "aaaaa:-1"):
            self.expect(2, "hexdump", "a.sim", place)

    def test_takes_a_pool_by_number_or_by_what_only_its_uuid_begins_with(self):
        ones, twos = "1234" + uuid("e")[4:], "1234" + uuid("f")[4:]
        self.file("a.sim", pool([ones], b"1", length=81) + pool([twos], b"2"))
        for place, expected in (("0", "31"), ("1", "32"), ("1234f", "32"), (ones, "31")):
            document = json.loads(self.expect(0, "hexdump", "--json", "a.sim", place + ":0"))
            self.assertEqual(document["lines"][0]["hex"], expected)
        ran = run("hexdump", "a.sim", "1234", folder=self.folder)
        self.assertEqual((ran.code, b"has no pool 1234; it has 2 pools" in ran.err), (2, True))
        self.file("b.sim", pool([uuid("e")], length=80) + pool([uuid("e")[:-1] + "0"]))
        ran = run("hexdump", "b.sim", "eeee", folder=self.folder)
        self.assertEqual((ran.code, b"begins the UUIDs of several pools" in ran.err), (2, True))

    def test_resolves_locators_across_files(self):
        def locator(offset, entry):
            return offset.to_bytes(8, "little") + entry.to_bytes(4, "little", signed=True)

        self.file("a.sim", pool([A, B, C], locator(7, 0) + locator(2, 1) + locator(3, 2)
                                + locator(9, -1) + locator(1, 3) + locator(6, 1)))
        self.file("b.sim", pool([B], b"12345"))
        lines = self.lines(0, "a.sim", "0:0", "b.sim", "--as", "locator")
        self.assertEqual([line[49:] for line in lines], [
            "locator entry 0, offset 7 of pool 0 of a.sim",
            "locator entry 1, offset 2 of pool 0 of b.sim",
            f"locator entry 2, offset 3 of {C}, not in these files",
            "locator no pool",
            "locator entry 3, which the directory of 3 does not have",
            "locator entry 1, offset 6 of pool 0 of b.sim, behind its end"])

    def test_shows_the_first_4096_bytes_unless_told(self):
        self.file("a.sim", pool([A], bytes(5000)))
        out = self.expect(0, "hexdump", "a.sim", "0:0")
        self.assertEqual(len(out.splitlines()), 2 + 256 + 1)
        self.assertIn("904 more bytes not shown; +LENGTH shows them", out)
        self.assertEqual(len(self.expect(0, "hexdump", "a.sim", "0:0+5000").splitlines()), 2 + 313)


class Stat(InFolder):
    def test_adds_up_each_kind(self):
        self.file("a.sim", pool([A], b"12345", length=85) + pool([B, A, C], b"1234567"))
        document = json.loads(self.expect(0, "stat", "--json", "a.sim", "--largest", "1"))
        self.assertEqual(document["sum"], {
            "size": 236, "pools": 2, "headerBytes": 96, "directoryBytes": 128, "dataBytes": 12,
            "restBytes": 0, "references": 2})
        self.assertEqual((document["distinctReferences"], document["unresolvedReferences"]), (2, 1))
        self.assertEqual(document["opening"],
                         {"uuids": 3, "cacheBytes": 16896, "refused": False})
        self.assertEqual([p["uuid"] for p in document["largest"]], [B])


# MB. A build with sanitizers keeps books of its memory, in memory.
MOST_MEMORY = 256 if SLOW else 64


class LargeFiles(InFolder):
    def measured(self, *arguments):
        """Seconds of processor time, and the most memory in MB."""
        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (20, 20))

        with subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, stdout=subprocess.DEVNULL,
                              preexec_fn=limit) as process:
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024

    def test_lists_ten_thousand_pools_at_once(self):
        pools = [pool([f"{i:012x}4000{i:016x}"], b"x" * 64, length=144) for i in range(10000)]
        self.file("a.sim", b"".join(pools))
        seconds, memory = min(self.measured("ls", "a.sim") for _ in range(3))
        self.assertLess(seconds, 1.0)  # 0.12 s where nothing else runs; checked builds are slower
        self.assertLess(memory, MOST_MEMORY)

    def test_does_not_read_holes(self):
        with open(self.folder / "a.sim", "wb") as file:
            file.write(pool([A], b"12345"))
            file.truncate(4 << 30)
        for words in (["ls"], ["verify"], ["stat"], ["salvage", "-n"], ["dump", "--data"]):
            seconds, memory = self.measured(*words, "a.sim")
            self.assertLess(seconds, 5, words)  # reading 4 GiB and looking at each byte takes longer
            self.assertLess(memory, MOST_MEMORY, words)
        begin = time.monotonic()
        self.expect(0, "salvage", "a.sim", "-o", "b.sim")
        self.assertLess(time.monotonic() - begin, 30)
        self.assertLess((self.folder / "b.sim").stat().st_blocks * 512, 1 << 20)


class AnyFile(InFolder):
    def test_no_golden_or_corpus_file_is_too_much(self):
        names = sorted(GOLDEN.glob("*.sim")) + sorted(
            path for path in (CORPUS / "open_file").rglob("*") if path.is_file())
        self.assertGreater(len(names), 50)
        for path in names[::5] if SLOW else names:
            for words in (["ls", "-l"], ["verify"], ["stat"], ["salvage", "-n", "--split"]):
                code = run(*words, path).code
                self.assertIn(code, (0, 1), (words, path))
            for words in (["hexdump", path, "0"], ["hexdump", path, "0:0", "--as", "locator"]):
                self.assertIn(run(*words).code, (0, 1, 2), (words, path))


if __name__ == "__main__":
    unittest.main()
