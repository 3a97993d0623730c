# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Counts what a run of ctest passed and failed: the tests inside each GoogleTest program, and one for each other test.

Prints two numbers. A program that fails without a failed test (it crashed, or a sanitizer stopped it) counts as one
failure more, and so does a run that left no results.
"""
import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def gtest_counts(path):
    suites = ElementTree.parse(path).getroot()
    tests, failures = int(suites.get("tests")), int(suites.get("failures"))
    return tests - failures, failures


def tally(results):
    passed = failed = 0
    if not (results / "ctest.xml").exists():
        return 0, 1
    for case in ElementTree.parse(results / "ctest.xml").getroot().iter("testcase"):
        good = case.get("status") == "run"
        inner = results / f"{case.get('name')}.xml"
        if inner.exists():
            inner_passed, inner_failed = gtest_counts(inner)
            passed += inner_passed
            failed += inner_failed
            if not good and inner_failed == 0:
                failed += 1
        else:
            passed += good
            failed += not good
    return passed, failed


if __name__ == "__main__":
    print(*tally(pathlib.Path(sys.argv[1])))
