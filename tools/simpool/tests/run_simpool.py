"""Runs the built program, and makes files by hand for it. The program's name stands in the
environment as SIMPOOL."""

import os
import subprocess
from dataclasses import dataclass
from pathlib import Path

PROGRAM = os.environ["SIMPOOL"]
ROOT = Path(__file__).resolve().parents[3]
GOLDEN = ROOT / "tests" / "format" / "golden"
CORPUS = ROOT / "fuzz" / "corpus"
# A build with sanitizers, whose programs take several times as long to start.
SLOW = os.environ.get("SIMPOOL_SLOW") == "1"
COMMANDS = ("ls", "verify", "salvage", "stat", "dump", "build", "hexdump", "extract", "copy", "new",
            "merge", "repack", "diff", "graph", "map")


@dataclass
class Ran:
    """Exit code (negative: the signal that ended it) and what was written."""
    code: int
    out: bytes
    err: bytes


def run(*arguments, folder=None, env=None, **options):
    """Runs the program without a terminal."""
    options.setdefault("stdout", subprocess.PIPE)
    done = subprocess.run([PROGRAM, *map(os.fspath, arguments)], cwd=folder, timeout=60, check=False,
                          stdin=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          env={**os.environ, **(env or {})}, **options)
    return Ran(done.returncode, done.stdout, done.stderr)


def uuid(letter):
    return letter * 12 + "4" + letter * 3 + "8" + letter * 15


def pool(directory, data=b"", *, length=0, user=b"DEMO", signature=b"\x89SIM\r\n\x1a\n", version=6):
    """One pool's bytes; `directory` are its UUIDs as text or bytes, its own first."""
    entries = b"".join(e if isinstance(e, bytes) else e.encode() for e in directory)
    return (signature + bytes([version]) + bytes(7) + user + b"%016d" % length
            + (2).to_bytes(4, "little") + bytes(4) + len(directory).to_bytes(4, "little")
            + entries + data)
