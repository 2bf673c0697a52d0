"""Small wrong changes to C++ source, one at a time.

A mutant changes one operator, constant or statement. Comments, strings, includes, declarations of
names and preprocessor lines are left alone: what changes there is no behaviour, or no longer C++.
"""
import dataclasses
import re


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str  # path inside the tree
    line: int  # counted from 1
    before: str  # the whole line, without its indentation
    after: str  # the same; empty when the statement is dropped

    def applied(self, text):
        lines = text.split("\n")
        old = lines[self.line - 1]
        if old.strip() != self.before:
            raise ValueError(f"{self.file}:{self.line} is no longer '{self.before}'")
        indentation = old[: len(old) - len(old.lstrip())]
        lines[self.line - 1] = indentation + (self.after or ";")
        return "\n".join(lines)

    def key(self):
        return f"{self.file}: {self.before} -> {self.after or '(dropped)'}"


# Spaces around an operator, which the layout guarantees, tell it from a template's bracket, a
# pointer, a reference or a sign.
OPERATORS = [
    (r" < ", (" <= ",)),
    (r" <= ", (" < ",)),
    (r" > ", (" >= ",)),
    (r" >= ", (" > ",)),
    (r" == ", (" != ",)),
    (r" != ", (" == ",)),
    (r" && ", (" || ",)),
    (r" \|\| ", (" && ",)),
    (r" \+ ", (" - ",)),
    (r" - ", (" + ",)),
    (r" \* ", (" + ",)),
    (r" \+= ", (" -= ", " = ")),
    (r" -= ", (" += ", " = ")),
    (r"\+\+", ("--",)),
    (r"(?<=[(\s])!(?=[\w(])", ("",)),
    (r"\bstd::min\b", ("std::max",)),
    (r"\bstd::max\b", ("std::min",)),
    (r"\btrue\b", ("false",)),
    (r"\bfalse\b", ("true",)),
]
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d+)(?:ULL|U|L|UL|LL)?(?![\w.'])")

# One call, assignment or step on a line of its own.
STATEMENT = re.compile(r"^(?!return\b|throw\b|using\b|case\b|break\b|const\b|auto\b|static_assert)"
                       r"(\+\+|--)?[\w:\[\]().>*-]+(\(.*\)| [-+|&]?= [^=].*|)(\+\+|--)?;$")
DECLARATION = re.compile(r"^(?:static |constexpr |const |unsigned |long |int |char |bool |auto |struct )")

SKIPPED = re.compile(r"^(#|//|\*|/\*|namespace\b|class\b|struct\b|using\b|template\b|static_assert|friend\b"
                     r"|public:|private:|protected:|case\b.*:$|default:)")


def code_of(line):
    """The line with its strings and comments blanked out, as long as before."""
    line = re.sub(r'"(?:\\.|[^"\\])*"', lambda text: " " * len(text.group()), line)
    line = re.sub(r"'(?:\\.|[^'\\])*'", lambda text: " " * len(text.group()), line)
    return re.sub(r"//.*", lambda text: " " * len(text.group()), line)


def mutants_of_line(file, number, line):
    stripped = line.strip()
    if not stripped or SKIPPED.match(stripped):
        return
    code = code_of(stripped)
    for pattern, replacements in OPERATORS:
        for found in re.finditer(pattern, code):
            for replacement in replacements:
                yield Mutant(file, number, stripped,
                             stripped[: found.start()] + replacement + stripped[found.end():])
    for found in NUMBER.finditer(code):
        value = found.group(1)
        changed = f"{int(value, 0) + 1:#x}" if value.startswith("0x") else str(int(value) + 1)
        yield Mutant(file, number, stripped,
                     stripped[: found.start(1)] + changed + stripped[found.end(1):])
    if STATEMENT.match(code.strip()) and not DECLARATION.match(code):
        yield Mutant(file, number, stripped, "")


def mutants_of(file, text):
    whole = True  # whether the line begins a statement, so that it can be dropped alone
    for number, line in enumerate(text.split("\n"), 1):
        for mutant in mutants_of_line(file, number, line):
            if mutant.after or whole:
                yield mutant
        code = code_of(line).strip()
        if code:
            whole = code.endswith((";", "{", "}", ":"))
