#!/usr/bin/env python3
"""Small documents, and what code_blocks.py makes of them."""

import tempfile
import unittest
from pathlib import Path

import code_blocks

DOCUMENT = """text
```cpp
int main()
{
}
```
```sh
int main() is no C++ here
```
```cpp
return
    slot;
```
"""


class CodeBlocks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "VUKSim").mkdir()
        (self.root / "A-b.md").write_text(DOCUMENT, "utf-8")

    def test_finds_cpp_blocks_with_the_line_they_begin_on(self):
        self.assertEqual([(3, "int main()\n{\n}\n"), (11, "return\n    slot;\n")],
                         code_blocks.cpp_blocks(DOCUMENT))

    def test_refuses_a_block_without_end(self):
        with self.assertRaisesRegex(ValueError, "line 2: the block has no end"):
            code_blocks.cpp_blocks("text\n```cpp\nint a;\n")

    def test_makes_a_program_of_a_block_with_a_main_function(self):
        self.assertEqual(
            [(Path("out/a_b_line_3.cpp"), f'#line 3 "{self.root}/A-b.md"\nint main()\n{{\n}}\n')],
            list(code_blocks.programs(self.root, "out", ["A-b.md"])))

    def test_wants_every_other_block_in_a_source(self):
        self.assertEqual(["A-b.md:11: this code stands in no source of the tree"],
                         list(code_blocks.strange_fragments(self.root, ["A-b.md"])))
        (self.root / "VUKSim" / "a.cpp").write_text("{\n  return\n      slot;\n}\n", "utf-8")
        self.assertEqual([], list(code_blocks.strange_fragments(self.root, ["A-b.md"])))


if __name__ == "__main__":
    unittest.main()
