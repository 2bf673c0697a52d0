"""Draws files and reads the pictures back: well-formed, and all that is there is drawn.

usage: pictures_test.py [--write]     with --write the pictures in docs/ are drawn anew
"""
import os
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import run_simpool
from run_simpool import GOLDEN, ROOT, run

SVG = "{http://www.w3.org/2000/svg}"


def uuid(number):
    return f"{number:032x}"


def pool(own, names, data, frozen=True):
    """A pool whose UUID is a number, as are those in its directory."""
    length = 48 + 32 * (1 + len(names)) + len(data) if frozen else 0
    return run_simpool.pool([uuid(n) for n in (own, *names)], data, length=length)


def drawn(*arguments, expected=0, env=None):
    """The root of the picture that was drawn to standard output."""
    ran = run(*arguments, env=env)
    if ran.code != expected:
        raise AssertionError(f"{arguments}: {ran.code}, {ran.err}")
    return ElementTree.fromstring(ran.out)


def draw_examples(folder):
    """The pictures of the documentation: a model, and results that refer to it and to each other."""
    model, results = folder / "model.sim", folder / "results.sim"
    names = [f"{n * 0x9e3779b97f4a7c15f39cc0605cedc835 % 2**128:032x}" for n in range(1, 20)]
    names = [name[:12] + "4" + name[13:16] + "8" + name[17:] for name in names]

    def one(own, named, size):
        entries = [names[n] for n in (own, *named)]
        return run_simpool.pool(entries, bytes([own]) * size, length=48 + 32 * len(entries) + size)

    model.write_bytes(one(0, [], 9000) + one(1, [], 700) + one(2, [0, 1], 2600))
    steps = [one(3 + i, [0, 2, 2 + i] if i else [0, 2], 5000 + 400 * (i * i % 7)) for i in range(8)]
    steps[5] = one(8, [0, 18, 7], 1200)
    results.write_bytes(b"".join(steps[:-1]) + run_simpool.pool(
        [names[10], names[0], names[2], names[9]], bytes(3500)))
    return {"simpool-graph.svg": run("graph", model, results).out,
            "simpool-map.svg": run("map", results).out}


def of_class(root, tag, name):
    return [e for e in root.iter(SVG + tag) if name in e.get("class", "").split()]


class Pictures(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.file = Path(self.folder.name, "a.sim")

    def write(self, *pools):
        self.file.write_bytes(b"".join(pools))

    def test_graph_has_each_pool_and_each_reference(self):
        self.write(pool(1, [], b"mesh"), pool(2, [1, 99], b""), pool(3, [1, 2], b"x", False))
        root = drawn("graph", self.file)
        self.assertEqual(len(of_class(root, "g", "pool")), 4)
        self.assertEqual(len(of_class(root, "g", "current")), 1)
        self.assertEqual(len(of_class(root, "g", "unresolved")), 1)
        self.assertEqual(len(of_class(root, "path", "arrow")), 4)
        self.assertEqual(len(of_class(root, "path", "unresolved")), 1)

    def test_graph_leaves_implied_arrows_out_when_there_are_many(self):
        self.write(*(pool(i, range(1, i), b"") for i in range(1, 41)))
        self.assertEqual(len(of_class(drawn("graph", self.file), "path", "arrow")), 39)
        everything = drawn("graph", self.file, "--arrows", "all")
        self.assertEqual(len(of_class(everything, "path", "arrow")), 40 * 39 // 2)

    def test_graph_draws_inside_the_picture(self):
        self.write(*(pool(i, range(max(1, i - 7), i), b"data") for i in range(1, 201)))
        root = drawn("graph", self.file, "--arrows", "all")
        width, height = float(root.get("width")), float(root.get("height"))
        for box in of_class(root, "rect", "box"):
            x, y = float(box.get("x")), float(box.get("y"))
            self.assertTrue(0 <= x and x + float(box.get("width")) <= width)
            self.assertTrue(0 <= y and y + float(box.get("height")) <= height)
        boxes = [float(box.get("y")) for box in of_class(root, "rect", "box")]
        self.assertEqual(len(boxes), 200)
        self.assertTrue(all(b - a >= 20 for a, b in zip(boxes, boxes[1:])))

    def test_graph_asks_graphviz_for_large_files_and_does_without_it(self):
        self.write(*(pool(i, [i - 1] if i > 1 else [], b"") for i in range(1, 402)))
        tools = Path(self.folder.name, "bin")
        tools.mkdir()
        environment = {"PATH": str(tools)}
        root = drawn("graph", self.file, env=environment)
        self.assertEqual(len(of_class(root, "g", "pool")), 401)
        self.assertEqual(
            run("graph", self.file, "--engine", "graphviz", env=environment).code, 2)

        dot = tools / "dot"
        dot.write_text('#!/bin/sh\nread first\n'
                       'echo "<svg xmlns=\'http://www.w3.org/2000/svg\'><desc>$first $1</desc></svg>"\n')
        dot.chmod(0o755)
        root = drawn("graph", self.file, env=environment)
        self.assertEqual(root.findtext(SVG + "desc"), "digraph simpool { -Tsvg")
        own = drawn("graph", self.file, "--engine", "own", env=environment)
        self.assertEqual(len(of_class(own, "g", "pool")), 401)

        dot.write_text("#!/bin/sh\nexit 1\n")
        root = drawn("graph", self.file, env=environment)
        self.assertEqual(len(of_class(root, "g", "pool")), 401)

    def test_map_fills_the_bar_from_end_to_end(self):
        self.write(pool(1, [], bytes(5000)), pool(2, [1], bytes(3000)), pool(3, [], b"x", False))
        root = drawn("map", self.file)
        parts = sorted((float(rect.get("x")), float(rect.get("width")))
                       for name in ("header", "directory", "data")
                       for rect in of_class(root, "rect", name)
                       if float(rect.get("height")) > 60)
        self.assertAlmostEqual(parts[0][0], 24, places=1)
        reached = parts[0][0]
        for x, width in parts:
            self.assertLessEqual(x, reached + 1.6)
            reached = max(reached, x + width)
        self.assertAlmostEqual(reached, 24 + 1192, places=1)

    def test_map_of_many_pools_stays_small(self):
        self.write(*(pool(i, [], bytes(40)) for i in range(1, 10001)))
        ran = run("map", self.file)
        self.assertEqual(ran.code, 0)
        ElementTree.fromstring(ran.out)
        self.assertLess(len(ran.out), 12_000_000)

    def test_both_are_well_formed_on_every_golden_file(self):
        files = sorted(GOLDEN.glob("*.sim"))
        self.assertGreaterEqual(len(files), 20)
        for file in files:
            for command in ("graph", "map"):
                ran = run(command, file)
                self.assertIn(ran.code, (0, 1), (file, ran.err))
                ElementTree.fromstring(ran.out)

    def test_both_escape_hostile_names(self):
        self.file = Path(self.folder.name, "<b>&\"\x1b[31m.sim")
        hostile = pool(1, [], b"", False).replace(uuid(1).encode(), b"<&>\x1b\xff\x00" + b"\"'" * 13)
        self.file.write_bytes(hostile)
        for command in ("graph", "map"):
            ran = run(command, self.file)
            self.assertEqual(ran.code, 0, ran.err)
            ElementTree.fromstring(ran.out)
            self.assertNotIn(b"\x1b", ran.out)

    def test_those_of_the_documentation_are_what_is_drawn_today(self):
        for name, picture in draw_examples(Path(self.folder.name)).items():
            self.assertEqual((ROOT / "docs" / name).read_bytes(), picture, name)


if __name__ == "__main__":
    if sys.argv[1:] == ["--write"]:
        with tempfile.TemporaryDirectory() as temporary:
            for file_name, content in draw_examples(Path(temporary)).items():
                (ROOT / "docs" / file_name).write_bytes(content)
    else:
        unittest.main()
