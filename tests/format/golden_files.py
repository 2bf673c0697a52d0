"""Writes golden/NAME.sim from the bytes in golden/NAME.hex, or checks (--check) that they agree."""

import pathlib
import re
import sys

FOLDER = pathlib.Path(__file__).resolve().parent / "golden"
TOKEN = re.compile(r'([0-9A-F]{2})(?![^\s"#])|"([ !#-~]+)"|#.*')


def stored(text):
    """The bytes that a .hex text stands for: hex pairs, ASCII in quotes, comments from # on."""
    result = bytearray()
    for number, line in enumerate(text.splitlines(), 1):
        position = 0
        while position < len(line):
            if line[position].isspace():
                position += 1
                continue
            token = TOKEN.match(line, position)
            if not token:
                raise ValueError(f"line {number}: neither hex pairs nor quoted text: {line[position:]}")
            if token[1]:
                result.append(int(token[1], 16))
            elif token[2]:
                result += token[2].encode("ascii")
            position = token.end()
    return bytes(result)


def main(arguments):
    if arguments not in ([], ["--check"]):
        print("usage: golden_files.py [--check]", file=sys.stderr)
        return 2
    texts = {path.stem: path for path in sorted(FOLDER.glob("*.hex"))}
    wrong = 0
    for name, path in texts.items():
        try:
            content = stored(path.read_text(encoding="ascii"))
        except ValueError as error:
            print(f"{path}: {error}", file=sys.stderr)
            wrong += 1
            continue
        file = path.with_suffix(".sim")
        if not arguments:
            file.write_bytes(content)
        elif not file.is_file() or file.read_bytes() != content:
            print(f"{file}: differs from {path.name}", file=sys.stderr)
            wrong += 1
    for file in sorted(FOLDER.glob("*.sim")):
        if file.stem not in texts:
            print(f"{file}: no {file.stem}.hex says what is in it", file=sys.stderr)
            wrong += 1
    print(f"{len(texts)} golden files, {wrong} wrong")
    return 1 if wrong or not texts else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
