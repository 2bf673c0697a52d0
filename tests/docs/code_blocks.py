#!/usr/bin/env python3
"""Finds the ```cpp blocks of Markdown documents.

usage: code_blocks.py programs ROOT FOLDER DOCUMENT...
           writes each block with a main function to FOLDER and prints the files, separated by ";"
       code_blocks.py fragments ROOT DOCUMENT...
           fails when a block without a main function does not stand in one of the tree's sources
"""

import re
import sys
from pathlib import Path

MAIN = re.compile(r"^int main\(", re.MULTILINE)
SOURCE_FOLDERS = ("VUKSim", "platform", "examples", "tests")


def cpp_blocks(text):
    """(first line number, code) of each block fenced as cpp."""
    blocks, lines, start = [], [], None
    for number, line in enumerate(text.splitlines(), 1):
        if start is None and line.strip() == "```cpp":
            start, lines = number + 1, []
        elif start is not None and line.strip() == "```":
            blocks.append((start, "\n".join(lines) + "\n"))
            start = None
        elif start is not None:
            lines.append(line)
    if start is not None:
        raise ValueError(f"line {start - 1}: the block has no end")
    return blocks


def unindented(text):
    return "\n".join(line.strip() for line in text.strip().splitlines())


def programs(root, folder, documents):
    """Each block with a main function, as (file to be written, text)."""
    for document in documents:
        path = Path(root, document)
        for number, code in cpp_blocks(path.read_text("utf-8")):
            if MAIN.search(code):
                name = f"{path.stem.lower().replace('-', '_')}_line_{number}"
                yield Path(folder, name + ".cpp"), f'#line {number} "{path}"\n{code}'


def strange_fragments(root, documents):
    """Blocks that are neither programs nor found, but for indentation, in a source of the tree."""
    sources = [unindented(path.read_text("utf-8"))
               for folder in SOURCE_FOLDERS
               for path in sorted(Path(root, folder).rglob("*"))
               if path.suffix in (".h", ".cpp")]
    for document in documents:
        for number, code in cpp_blocks(Path(root, document).read_text("utf-8")):
            if not MAIN.search(code) and not any(unindented(code) in text for text in sources):
                yield f"{document}:{number}: this code stands in no source of the tree"


def main():
    command, root, *rest = sys.argv[1:]
    if command == "programs":
        folder, *documents = rest
        found = list(programs(root, folder, documents))
        for path, text in found:
            if not path.exists() or path.read_text("utf-8") != text:
                path.write_text(text, "utf-8")
        print(";".join(str(path) for path, _ in found))
        return 0
    faults = list(strange_fragments(root, rest))
    print("\n".join(faults) if faults else f"{len(rest)} documents quote the sources")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
