#!/usr/bin/env python3
"""Compares what a shared library exports with a committed list.

usage: check_exports.py NM LIBRARY LIST

The list names classes and functions, not single symbols: which members a compiler leaves out of
line differs from one to the next, which classes are open does not. One name a line; functions end
in "()", C functions in "() C".
"""

import re
import subprocess
import sys
from pathlib import Path

# Itanium names: a special prefix (vtable, typeinfo, guard, thunk ...), then either a nested name
# N [qualifiers] <length><name>... or a plain function <length><name>.
SPECIAL = re.compile(r"_Z(T[VITS]|GV|GR|T[hv]n?\d+_(?:n?\d+_)?|Tc.*?_)?(N?)[rVKPRO]*(?=\d|S|[a-z])(.*)")
# Sanitizers and profilers add their own: markers, and typeinfo of plain function types.
INSTRUMENTATION = re.compile(r"__(odr_asan|gcov|llvm)[._]|_ZT[IS]F")


def exported_name(symbol):
    """The line of the list that a mangled symbol belongs to; None for a compiler's own additions."""
    if INSTRUMENTATION.match(symbol) or symbol in ("_init", "_fini"):
        return None
    match = SPECIAL.fullmatch(symbol)
    if not match:
        return f"{symbol}() C"
    special, nested, rest = match.groups()
    length = re.match(r"\d+", rest)
    if not length:
        return "std"  # St..., Sa..., Ss...: entities of the standard library
    start = length.end()
    name = rest[start:start + int(length.group())]
    return name if nested or special else f"{name}()"


def exported_names(nm, library):
    output = subprocess.run([nm, "--dynamic", "--defined-only", "--format=posix", library],
                            check=True, capture_output=True, text=True).stdout
    names = {exported_name(line.split()[0].split("@")[0]) for line in output.splitlines()}
    return names - {None}


def read_list(path):
    lines = Path(path).read_text("utf-8").splitlines()
    return {line for line in lines if line and not line.startswith("#")}


def compare(exported, listed):
    return ([f"exported, not listed: {name}" for name in sorted(exported - listed)]
            + [f"listed, not exported: {name}" for name in sorted(listed - exported)])


def main():
    nm, library, list_path = sys.argv[1:]
    exported = exported_names(nm, library)
    if not exported:
        print(f"{library} exports nothing")
        return 1
    faults = compare(exported, read_list(list_path))
    for fault in faults:
        print(fault)
    print(f"{Path(library).name}: {len(exported)} names exported, {len(faults)} unlike"
          f" {Path(list_path).name}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
