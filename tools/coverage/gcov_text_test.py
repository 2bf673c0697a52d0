import unittest

from gcov_text import read

# A function with a call that may throw, a decision, and the clean-up that an exception needs.
RAN = """\
        -:    0:Source:/tree/a.cpp
        -:    1:// text
        5*:    2:    if (Call(Text()) && wanted) {
        5:    2-block  0
call    0 returned 5
branch  1 taken 4 (fallthrough)
branch  2 taken 1 (throw)
        4:    2-block  1
branch  3 taken 4 (fallthrough)
branch  4 taken 0
    $$$$$:    2-block  2
branch  5 never executed
branch  6 never executed
    #####:    3:        Never();
        -:    0:Source:/elsewhere/b.h
        7:    2:    int other;
"""
FRESH = """\
        -:    0:Source:/tree/a.cpp
        -:    1:// text
    #####:    2:    if (Call(Text()) && wanted) {
    %%%%%:    2-block  0
call    0 never executed
branch  1 never executed
branch  2 never executed
    %%%%%:    2-block  1
branch  3 never executed
branch  4 never executed
    $$$$$:    2-block  2
branch  5 never executed
branch  6 never executed
    #####:    3:        Never();
        -:    0:Source:/elsewhere/b.h
    #####:    2:    int other;
"""


def name_of(path):
    return path.removeprefix("/tree/") if path.startswith("/tree/") else None


def lines(ran=RAN, fresh=FRESH):
    return read(ran, fresh, name_of)


class GcovText(unittest.TestCase):
    def test_lines_with_code_have_counts_and_others_are_left_out(self):
        self.assertEqual({2: 5, 3: 0},
                         {number: line.count for number, line in lines()["a.cpp"].items()})

    def test_files_that_are_not_wanted_are_left_out(self):
        self.assertEqual(["a.cpp"], list(lines()))

    def test_the_ways_out_of_a_call_and_the_cleaning_up_are_no_branches(self):
        self.assertEqual([4, 0], lines()["a.cpp"][2].branches())

    def test_cleaning_up_is_no_branch_when_it_has_run(self):
        ran = RAN.replace("$$$$$", "    1").replace("branch  5 never executed",
                                                    "branch  5 taken 1 (fallthrough)")
        self.assertEqual([4, 0], lines(ran)["a.cpp"][2].branches())

    def test_a_branch_in_a_handler_counts(self):
        ran = ("-:0:Source:/tree/a.cpp\n1:8:        if (own) {\n"
               "branch  0 taken 1\nbranch  1 taken 0\n")
        fresh = ("-:0:Source:/tree/a.cpp\n=====:8:        if (own) {\n"
                 "branch  0 never executed\nbranch  1 never executed\n")
        self.assertEqual([1, 0], lines(ran, fresh)["a.cpp"][8].branches())

    def test_copies_of_the_same_code_count_together_and_others_apart(self):
        line = lines()["a.cpp"][2]
        line.add_line(lines()["a.cpp"][2])
        self.assertEqual([8, 0], line.branches())
        line.add(1, lines(RAN.replace("branch  4 taken 0\n", ""),
                          FRESH.replace("branch  4 never executed\n", ""))["a.cpp"][2].copies[3])
        self.assertEqual([8, 0, 4], line.branches())

    def test_a_copy_that_never_ran_learns_from_another_which_calls_may_throw(self):
        line = lines(FRESH)["a.cpp"][2]
        self.assertEqual([0, 0, 0, 0], line.branches())
        line.add_line(lines()["a.cpp"][2])
        self.assertEqual([4, 0], line.branches())

    def test_two_descriptions_that_do_not_fit_are_refused(self):
        with self.assertRaisesRegex(ValueError, "not in the same number of lines"):
            lines(RAN, FRESH + "\n")


if __name__ == "__main__":
    unittest.main()
