import unittest

from mutants import Mutant, mutants_of


def changes(text):
    return [mutant.after for mutant in mutants_of("a.cpp", text)]


class Mutants(unittest.TestCase):
    def test_an_operator_becomes_its_neighbour(self):
        self.assertEqual(["if (a <= b) {"], changes("if (a < b) {"))
        self.assertEqual(["return a - b;"], changes("return a + b;"))
        self.assertEqual(["return a || b;"], changes("return a && b;"))

    def test_a_constant_grows_by_one(self):
        self.assertEqual(["constexpr int kLine = 42;"], changes("constexpr int kLine = 41;"))
        self.assertEqual(["return 0x10;"], changes("return 0xF;"))

    def test_a_statement_is_dropped(self):
        self.assertEqual([""], changes("file.Flush();"))
        self.assertEqual(["mFill = 1;", ""], changes("mFill = 0;"))

    def test_a_part_of_a_statement_is_not_dropped(self):
        self.assertEqual([], changes("const auto size =\n    file.Size();"))

    def test_text_and_comments_are_left_alone(self):
        self.assertEqual([], changes('#include "a.h" // 1 + 1\n// 2 < 3'))
        self.assertEqual([], changes('return "1 < 2";'))

    def test_template_brackets_and_pointers_are_no_operators(self):
        self.assertEqual([], changes("std::vector<char>* bytes;"))

    def test_a_change_keeps_the_indentation_and_all_other_lines(self):
        text = "{\n    a += b;\n}"
        self.assertEqual("{\n    a -= b;\n}",
                         Mutant("a.cpp", 2, "a += b;", "a -= b;").applied(text))

    def test_a_line_that_has_moved_is_refused(self):
        with self.assertRaisesRegex(ValueError, "a.cpp:1 is no longer 'x;'"):
            Mutant("a.cpp", 1, "x;", "").applied("y;")


if __name__ == "__main__":
    unittest.main()
