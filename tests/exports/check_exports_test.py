#!/usr/bin/env python3
"""Symbols as compilers write them, and the names that the check makes of them."""

import unittest

import check_exports


class CheckExports(unittest.TestCase):
    def test_brings_members_and_tables_of_a_class_to_the_name_of_the_class(self):
        for symbol in ("_ZN17VUKSimRpm_Locator4ReadEmPc", "_ZNK17VUKSimRpm_Locator4NullEv",
                       "_ZN17VUKSimRpm_LocatorC1Ev", "_ZTV17VUKSimRpm_Locator",
                       "_ZTI17VUKSimRpm_Locator", "_ZTS17VUKSimRpm_Locator",
                       "_ZThn8_N17VUKSimRpm_LocatorD0Ev", "_ZGVN17VUKSimRpm_Locator5mLastE",
                       "_ZN17VUKSimRpm_Locator4CopyILi4EEEvPc"):
            self.assertEqual("VUKSimRpm_Locator", check_exports.exported_name(symbol), symbol)

    def test_keeps_functions_apart_from_classes_and_c_from_cpp(self):
        self.assertEqual("VUKSimRpm_initialize()",
                         check_exports.exported_name("_Z20VUKSimRpm_initializeRi"))
        self.assertEqual("VUKSimPoolManager_initializeC() C",
                         check_exports.exported_name("VUKSimPoolManager_initializeC"))

    def test_sees_entities_of_the_standard_library(self):
        for symbol in ("_ZNSt6vectorIiSaIiEED1Ev", "_ZSt4moveIRiEONSt16remove_referenceIT_E4typeEOS2_",
                       "_ZNKSt5ctypeIcE8do_widenEc", "_ZTISt9exception"):
            self.assertEqual("std", check_exports.exported_name(symbol), symbol)

    def test_leaves_out_what_instrumentation_adds(self):
        for symbol in ("__odr_asan._ZTV1A", "__odr_asan_gen__ZTV1A", "__llvm_profile_runtime", "__gcov_reset",
                       "_ZTIFvRiE", "_fini"):
            self.assertIsNone(check_exports.exported_name(symbol), symbol)

    def test_names_what_is_new_and_what_is_missing(self):
        self.assertEqual(["exported, not listed: C", "listed, not exported: A"],
                         check_exports.compare({"B", "C"}, {"A", "B"}))
        self.assertEqual([], check_exports.compare({"A"}, {"A"}))


if __name__ == "__main__":
    unittest.main()
