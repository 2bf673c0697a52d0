import collections
import unittest

from gcov_text import Branch, Line
from measure import complaints, figures, for_gcovr

TEXT = "int One(bool yes)\n{\n    if (yes) {\n        return 1;\n    }\n"


def reached(branches, last_line):
    of_file = {number: Line(count=9) for number in range(1, 101)}
    of_file[3].add(0, [Branch(count) for count in branches])
    of_file[4].count = last_line
    return {"VUKSim/a.cpp": collections.defaultdict(Line, of_file)}


def said(total, named, readme):
    text = TEXT + "\n" * 100
    return list(complaints(total, lambda name: text, named, readme))


ALL = "The tests reach 100 % of the lines and\n100 % of the branches."


class Measure(unittest.TestCase):
    def test_nothing_left_and_nothing_named_is_right(self):
        self.assertEqual([], said(reached([5, 4], 1), "No line is left.\n", ALL))

    def test_a_line_that_is_not_reached_must_be_named(self):
        readme = "99 % of the lines and 100 % of the branches"
        self.assertEqual(["not reached, and docs/coverage.md does not say why: "
                          "a.cpp:4: the line: return 1;"],
                         said(reached([5, 4], 0), "", readme))
        self.assertEqual([], said(reached([5, 4], 0),
                                  "- `a.cpp`: `return 1;`\n  Why.\n", readme))

    def test_a_line_that_is_reached_must_not_be_named(self):
        self.assertEqual(["named in docs/coverage.md, but reached or gone: a.cpp: return 1;"],
                         said(reached([5, 4], 1), "- `a.cpp`: `return 1;`\n", ALL))

    def test_a_way_that_is_not_taken_must_be_named_and_two_per_cent_are_the_most(self):
        most = reached([1] * 98 + [0] * 2, 1)
        self.assertEqual([], said(most, "- `a.cpp`: `if (yes) {`\n",
                                  "100 % of the lines and 98 % of the branches"))
        more = reached([1] * 97 + [0] * 3, 1)
        self.assertEqual(["97.0 % of the branches are reached; at least 98.0 % must be"],
                         said(more, "- `a.cpp`: `if (yes) {`\n",
                              "100 % of the lines and 97 % of the branches"))

    def test_readme_must_say_the_figures(self):
        self.assertEqual(["README.md does not say "
                          "'100 % of the lines and 100 % of the branches'"],
                         said(reached([5, 4], 1), "", "99 % of the lines"))

    def test_readme_may_say_a_little_less_than_is_reached_and_never_more(self):
        self.assertEqual([], said(reached([5, 4], 1), "",
                                  "99.5 % of the lines and 99.9 % of the\nbranches"))
        self.assertEqual(1, len(said(reached([5, 4], 1), "",
                                     "99.4 % of the lines and 100 % of the branches")))
        named = "- `a.cpp`: `return 1;`\n"
        self.assertEqual(1, len(said(reached([5, 4], 0), named,
                                     "99.1 % of the lines and 100 % of the branches")))

    def test_figures_are_never_rounded_up_to_all(self):
        self.assertEqual((99.0, 99.9, 100, 3000), figures(reached([1] * 2999 + [0], 0)))

    def test_what_gcovr_gets_has_each_line_and_branch(self):
        lines = for_gcovr(reached([5, 4], 1))["files"][0]["lines"]
        self.assertEqual(100, len(lines))
        self.assertEqual([5, 4], [branch["count"] for branch in lines[2]["branches"]])


if __name__ == "__main__":
    unittest.main()
