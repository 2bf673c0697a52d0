"""Reads what gcov says about lines and branches, and leaves out what only exceptions decide.

An exception may leave any call, and on its way out it runs code that the compiler made: which of
the objects of this line were there already? Nobody wrote these branches. gcov tells their blocks
from others, but only as long as they have not run. So it is asked twice: with counters, and without
any, where everything is yet to run.
"""
import collections
import dataclasses
import re

LINE = re.compile(r"^\s*(-|#####|=====|\d+\*?):\s*(\d+):(.*)$")
BLOCK = re.compile(r"^\s*(%%%%%|\$\$\$\$\$|\d+\*?):\s*\d+-block\s+\d+$")
BRANCH = re.compile(r"^branch\s+\d+ (?:never executed|taken (\d+)(?: \((fallthrough|throw)\))?)$")

ONLY_BY_EXCEPTION = {"line": "=====", "block": "$$$$$"}


@dataclasses.dataclass
class Branch:
    count: int = 0
    mark: str = ""  # fallthrough, throw or none; gcov tells it of branches that ran


@dataclasses.dataclass
class Line:
    """How often a line of source and the branches on it ran.

    Templates and constructors are compiled more than once. Copies with the same number of branches
    are taken as the same code, and count together.
    """
    count: int = 0
    copies: dict = dataclasses.field(default_factory=dict)  # number of branches: the branches

    def add(self, count, branches=()):
        self.count += count
        if branches:
            known = self.copies.setdefault(len(branches), [Branch() for _ in branches])
            for one, other in zip(known, branches):
                one.count += other.count
                one.mark = one.mark or other.mark

    def add_line(self, other):
        self.add(other.count)
        for branches in other.copies.values():
            self.add(0, branches)

    def branches(self):
        """How often each was taken; without the two ways out of a call that may throw."""
        counts = []
        for copy in self.copies.values():
            before = None
            for branch in copy:
                if branch.mark != "throw":
                    counts.append(branch.count)
                elif before is not None and before.mark == "fallthrough":
                    counts.pop()
                before = branch
        return counts


class _Copy:
    """One line of one copy of a function, as it is being read."""

    def __init__(self, count, in_handler):
        self.count = count
        self.branches = []
        self._in_handler = in_handler  # the line as a whole is reached by exceptions only
        self._left_out = False  # the block that is being read

    def enter_block(self, only_by_exception):
        self._left_out = only_by_exception and not self._in_handler

    def add_branch(self, count, mark):
        if not self._left_out:
            self.branches.append(Branch(count, mark))


def read(text, text_without_counters, wanted):
    """The lines of all files of which `wanted(path)` makes a name: {name: {number: Line}}."""
    files = collections.defaultdict(lambda: collections.defaultdict(Line))
    name, number, copy = None, 0, None

    def finish():
        if name is not None and copy is not None:
            files[name][number].add(copy.count, copy.branches)

    rows = text.splitlines()
    fresh_rows = text_without_counters.splitlines()
    if len(rows) != len(fresh_rows):
        raise ValueError("gcov describes the same code twice, but not in the same number of lines")
    for row, fresh in zip(rows, fresh_rows):
        if found := LINE.match(row):
            finish()
            copy = None
            count, number = found.group(1), int(found.group(2))
            if number == 0:
                if found.group(3).startswith("Source:"):
                    name = wanted(found.group(3).removeprefix("Source:"))
            elif count != "-":
                in_handler = LINE.match(fresh).group(1) == ONLY_BY_EXCEPTION["line"]
                if in_handler and found.group(3).strip() == "}":
                    continue  # objects that go out of scope
                copy = _Copy(int(count.rstrip("*")) if count[0].isdigit() else 0, in_handler)
        elif copy is not None and BLOCK.match(row):
            copy.enter_block(BLOCK.match(fresh).group(1) == ONLY_BY_EXCEPTION["block"])
        elif copy is not None and (found := BRANCH.match(row)):
            copy.add_branch(int(found.group(1) or 0), found.group(2) or "")
    finish()
    return files
