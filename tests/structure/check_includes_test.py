#!/usr/bin/env python3
"""Small trees, each with one broken arrow (or none), held against what the check says of them."""

import tempfile
import unittest
from pathlib import Path

import check_includes

LIBRARY = "VUKSim/VUKSimRpm.m"


class CheckIncludes(unittest.TestCase):
    def faults(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, "utf-8")
            return check_includes.check(Path(folder))[0]

    def test_accepts_the_arrows_that_the_tree_needs(self):
        self.assertEqual([], self.faults({
            "platform/VUKBasAlloc/include/mem.h": "",
            "platform/VUKSimUtt/include/VUKSimUttExceptionString.h": "",
            "platform/VUKSimUtt/src/utt.cpp": '#include "mem.h"\n',
            "platform/VUKSimExc/include/exc.h": '#include "VUKSimUttExceptionString.h"\n',
            f"{LIBRARY}/include/face.h": '#include "exc.h"\n',
            f"{LIBRARY}/src/impl.h": '#include "face.h"\n#include <vector>\n',
            f"{LIBRARY}/src/impl.cpp": '#include "impl.h"\n#include "mem.h"\n',
            "examples/one.cpp": '#include "face.h"\n#include "mem.h"\n',
            "tests/unit/impl_test.cpp": '#include "impl.h"\n',
        }))

    def test_refuses_a_public_header_that_includes_one_of_src(self):
        self.assertEqual(
            [f'{LIBRARY}/include/face.h:2: library/include may not look into library/src'
             ' ("impl.h")'],
            self.faults({
                f"{LIBRARY}/src/impl.h": "",
                f"{LIBRARY}/include/face.h": '#pragma once\n#include "impl.h"\n',
            }))

    def test_refuses_a_platform_that_knows_the_library(self):
        self.assertEqual(
            ['platform/VUKSimUtt/src/utt.cpp:1: platform/VUKSimUtt/src may not look into'
             ' library/include ("face.h")'],
            self.faults({
                f"{LIBRARY}/include/face.h": "",
                "platform/VUKSimUtt/src/utt.cpp": '#include "face.h"\n',
            }))

    def test_refuses_a_module_that_looks_upwards(self):
        self.assertEqual(
            ['platform/VUKBasAlloc/include/mem.h:1: platform/VUKBasAlloc/include may not look'
             ' into platform/VUKBasShared/include ("shared.h")'],
            self.faults({
                "platform/VUKBasShared/include/shared.h": "",
                "platform/VUKBasAlloc/include/mem.h": '#include "shared.h"\n',
            }))

    def test_refuses_any_other_header_of_a_room_of_which_one_is_open(self):
        self.assertEqual(
            ['platform/VUKSimExc/include/exc.h:1: platform/VUKSimExc/include may not look into'
             ' platform/VUKSimUtt/include ("utt.h")'],
            self.faults({
                "platform/VUKSimUtt/include/utt.h": "",
                "platform/VUKSimExc/include/exc.h": '#include "utt.h"\n',
            }))

    def test_refuses_an_example_and_a_scenario_that_reach_into_src(self):
        self.assertEqual(
            ['examples/heat/main.cpp:1: examples/heat may not look into library/src ("impl.h")',
             'tests/scenario/a_test.cpp:1: tests/scenario may not look into library/src'
             ' ("impl.h")'],
            sorted(self.faults({
                f"{LIBRARY}/src/impl.h": "",
                "examples/heat/main.cpp": '#include "impl.h"\n',
                "tests/scenario/a_test.cpp": '#include "impl.h"\n',
            })))

    def test_refuses_headers_that_include_each_other(self):
        self.assertEqual(
            [f"files include each other: {LIBRARY}/src/a.h -> {LIBRARY}/src/b.h"
             f" -> {LIBRARY}/src/a.h"],
            self.faults({
                f"{LIBRARY}/src/a.h": '#include "b.h"\n',
                f"{LIBRARY}/src/b.h": '#include "a.h"\n',
            }))

    def test_refuses_folders_that_include_each_other(self):
        self.assertIn(
            "folders include each other: platform/VUKSimContainers/include"
            " -> platform/VUKSimUtt/include -> platform/VUKSimContainers/include",
            self.faults({
                "platform/VUKSimContainers/include/a.h": '#include "b.h"\n',
                "platform/VUKSimUtt/include/b.h": "",
                "platform/VUKSimUtt/include/c.h": '#include "d.h"\n',
                "platform/VUKSimContainers/include/d.h": "",
            }))

    def test_takes_the_header_beside_the_file_first(self):
        self.assertEqual([], self.faults({
            f"{LIBRARY}/src/a.h": "",
            "examples/heat/tests/a.h": "",
            "examples/heat/tests/a_test.cpp": '#include "a.h"\n',
            "examples/heat/mesh.h": "",
            "examples/heat/tests/mesh_test.cpp": '#include "mesh.h"\n',
        }))

    def test_refuses_a_name_that_may_be_two_headers_and_one_that_is_none(self):
        self.assertEqual(
            ['tests/unit/a_test.cpp:1: "a.h" may be any of VUKSim/VUKSimRpm.m/include/a.h,'
             ' VUKSim/VUKSimRpm.m/src/a.h',
             'tests/unit/a_test.cpp:2: "gone.h" is no header of this tree'],
            self.faults({
                f"{LIBRARY}/include/a.h": "",
                f"{LIBRARY}/src/a.h": "",
                "tests/unit/a_test.cpp": '#include "a.h"\n#include "gone.h"\n',
            }))


if __name__ == "__main__":
    unittest.main()
