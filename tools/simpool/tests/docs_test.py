"""Runs what docs/simpool.md shows and holds the output against what stands there.

usage: docs_test.py [--write]     with --write the outputs are put into the document anew

A block fenced as console has lines that begin with "$ ", each followed by what it prints. All of them
run in one folder, in their order; what the document starts from is made in `prepare`.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from run_simpool import GOLDEN, PROGRAM, ROOT, pool

DOCUMENT = ROOT / "docs" / "simpool.md"
BLOCK = re.compile(r"(?ms)^```console\n(.*?)^```$")
MESH = "5d0b1c7ea2f94c3e8b6a90d1f2e3c4b5"
STEP_1 = "91c2f4e07b3d4a5f9c8e1d2b3a4f5e60"
STEP_2 = "c7e6a5d4b3f2410e8f9d0c1b2a394857"


def prepare(folder):
    """The files that the document tells of."""
    (folder / "example.sim").write_bytes((GOLDEN / "worked_example.sim").read_bytes())
    text = b"\x05\0\0\0plate\0\0\0"
    locator = bytes(8) + b"\1\0\0\0"
    mesh = text + b"".join(value.to_bytes(4, "little") for value in range(1, 301))
    step = locator + bytes(range(200)) * 10
    run = (pool([MESH], mesh, length=80 + len(mesh))
           + pool([STEP_1, MESH], step, length=112 + len(step))
           + pool([STEP_2, MESH], locator + step))
    (folder / "run.sim").write_bytes(run)
    second = 80 + len(mesh)
    (folder / "bad.sim").write_bytes(run[:second] + b"\0" * 512 + run[second + 512:])
    (folder / "torn.sim").write_bytes(run[:second + 60])


def run_block(block, folder):
    """The block again, with the outputs that its commands have now."""
    lines = []
    for line in block.splitlines():
        if line.startswith("$ "):
            done = subprocess.run(["bash", "-c", line[2:]], cwd=folder, check=False, timeout=60,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True,
                                  env={**os.environ,
                                       "PATH": f"{Path(PROGRAM).parent}:{os.environ['PATH']}"})
            lines += [line, *done.stdout.splitlines()]
    return "\n".join(lines) + "\n"


def run_document(text):
    with tempfile.TemporaryDirectory() as name:
        prepare(Path(name))
        return BLOCK.sub(lambda match: f"```console\n{run_block(match.group(1), name)}```", text)


class Document(unittest.TestCase):
    maxDiff = None

    def test_shows_what_the_program_prints(self):
        text = DOCUMENT.read_text("utf-8")
        self.assertGreaterEqual(len(BLOCK.findall(text)), 7)
        self.assertEqual(text, run_document(text))

    def test_has_every_code(self):
        text = DOCUMENT.read_text("utf-8")
        codes = subprocess.run([PROGRAM, "verify", "--codes"], capture_output=True, text=True,
                               check=True).stdout
        for line in codes.splitlines()[1:]:
            self.assertIn(line, text)


if __name__ == "__main__":
    if sys.argv[1:] == ["--write"]:
        DOCUMENT.write_text(run_document(DOCUMENT.read_text("utf-8")), "utf-8")
    else:
        unittest.main()
