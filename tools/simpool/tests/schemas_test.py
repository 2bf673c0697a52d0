"""Documents that --json prints, against the schemas kept beside the sources."""

import json
import tempfile
import unittest
from pathlib import Path

import jsonschema

from run_simpool import COMMANDS, GOLDEN, pool, run, uuid

SCHEMAS = Path(__file__).resolve().parents[1] / "schemas"


def schema_of(command):
    return json.loads((SCHEMAS / f"{command}.schema.json").read_text("utf-8"))


class Schemas(unittest.TestCase):
    def check(self, command, *arguments, codes=(0, 1), form=("--json",)):
        ran = run(command, *arguments, *form)
        self.assertIn(ran.code, codes, (command, arguments, ran.err))
        document = json.loads(ran.out)
        jsonschema.Draft7Validator(schema_of(command)).validate(document)
        return document

    def test_there_is_a_sound_one_for_each_command(self):
        for command in COMMANDS:
            with self.subTest(command):
                schema = schema_of(command)
                jsonschema.Draft7Validator.check_schema(schema)
                self.assertEqual(schema["properties"]["schema"], {"const": "simpool/1"})
                self.assertEqual(schema["properties"]["command"], {"const": command})
                with self.assertRaises(jsonschema.ValidationError):
                    jsonschema.Draft7Validator(schema).validate({"schema": "simpool/1"})

    def test_documents_about_every_golden_file_fit(self):
        for path in sorted(GOLDEN.glob("*.sim")):
            self.check("ls", path)
            self.check("ls", "-l", path)
            self.check("verify", path)
            self.check("verify", "--errors", path)
            self.check("stat", path)
            self.check("dump", path, form=())
            self.check("dump", "--data", path, form=())
            self.check("salvage", "--dry-run", path)
            if run("ls", path).out.count(b"\n") > 1 and b"\n  0  " in run("ls", path).out:
                self.check("hexdump", path, "0")
                for layout in ("header", "dir", "u32", "f64", "u8x3,i16"):
                    self.check("hexdump", path, "0", "--as", layout)

    def test_documents_about_changes_fit(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            bad = folder / "bad.sim"
            bad.write_bytes(pool([uuid("a")], b"1", length=81) + b"X" * 90 + pool([uuid("b")]))
            self.check("salvage", bad, "-o", folder / "new.sim")
            bad.write_bytes(bad.read_bytes()[:100])
            self.check("salvage", bad, "--truncate-only")
            dump = folder / "dump.json"
            dump.write_bytes(run("dump", "--data", bad).out)
            self.check("build", dump, "-o", folder / "built.sim")
            self.check("verify", "--codes")
            locators = folder / "locators.sim"
            locators.write_bytes(pool([uuid("a"), uuid("b")], bytes(8) + b"\1\0\0\0" + bytes(8)
                                      + b"\xff" * 4 + bytes(8) + b"\7\0\0\0\4\0\0\0text"))
            self.check("hexdump", locators, "0:0", "--as", "locatorx3,string")

    def test_documents_about_copies_fit(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            one, other = folder / "a.sim", folder / "b.sim"
            one.write_bytes(pool([uuid("a")], b"12345678", length=88) + pool([uuid("b"), uuid("c")]))
            other.write_bytes(pool([uuid("d")], b"12345678", length=88) + pool([uuid("a")], b"1"))
            self.check("extract", one, "0:2+4", "-o", folder / "data.bin")
            self.check("copy", one, "0", "-o", folder / "copy.sim")
            self.check("merge", one, "-o", folder / "merged.sim")
            self.check("repack", one, "--root", "0", "-o", folder / "small.sim")
            self.check("new", "-o", folder / "new.sim", "--signature", "DEMO")
            self.check("diff", one, one)
            self.check("diff", one, other)
            self.check("diff", one, other, "--by", "index", "--as", "f32")

    def test_documents_of_pictures_fit(self):
        for path in sorted(GOLDEN.glob("*.sim")):
            self.check("graph", path)
            self.check("map", path)
            self.check("diff", path, GOLDEN / "mesh.sim")


if __name__ == "__main__":
    unittest.main()
