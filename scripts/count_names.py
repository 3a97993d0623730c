#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Counts the files in which each exported name appears.

Usage: count_names.py

Fails if one name is in more than MOST files, or if all of them are in more than AVERAGE on average.

Documents, examples, tools and golden files do not count, and neither do the mangled names in the lists of symbols.
"""
import collections
import pathlib
import re
import subprocess
import sys

MOST = 12
AVERAGE = 8.1
ROOT = pathlib.Path(__file__).resolve().parent.parent
NOT_COUNTED = re.compile(r"(docs|examples|tools)/|.*\.(md|abi)$|tests/catalogue/hashes\.txt$")


def exported_names():
    mangled = (ROOT / "cmake" / "exports.txt").read_text()
    plain = subprocess.run(["c++filt"], input=mangled, capture_output=True, text=True, check=True).stdout
    return [line.split("(")[0] for line in plain.splitlines() if line]


def files_of(names):
    files = collections.defaultdict(list)
    listed = subprocess.run(["git", "ls-files"], cwd=ROOT, capture_output=True, text=True, check=True).stdout
    for name in listed.splitlines():
        path = ROOT / name
        if NOT_COUNTED.match(name) or not path.is_file():
            continue
        words = set(re.findall(r"\w+", path.read_text(errors="ignore")))
        for exported in words.intersection(names):
            files[exported].append(name)
    return files


def main():
    names = exported_names()
    files = files_of(set(names))
    for name in sorted(names, key=lambda n: (-len(files[n]), n)):
        print(f"{len(files[name]):3} {name}")
    counts = [len(files[name]) for name in names]
    average = sum(counts) / len(counts)
    print(f"{len(names)} names in {average:.2f} files on average, in {max(counts)} at most")
    return 0 if max(counts) <= MOST and average <= AVERAGE else 1


if __name__ == "__main__":
    sys.exit(main())
