# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Checks that the programs in the documents are files that the tests build and run.

Every fenced block of a programming language in README.md and docs/*.md must equal a file in examples/readme,
examples/guide or examples/recipes without its licence, and every file there must be shown in a document.
"""
import pathlib
import re
import sys

LANGUAGES = {"c": ".c", "cpp": ".cpp", "python": ".py"}

root = pathlib.Path(sys.argv[1])


def without_licence(text):
    return re.sub(r"\A(#!.*\n)?((//|#) SPDX-.*\n)+\n", r"\1", text)


programs = {path: without_licence(path.read_text(encoding="utf-8"))
            for folder in ("readme", "guide", "recipes") for path in sorted((root / "examples" / folder).iterdir())}
shown, faults = set(), []
for document in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
    for language, code in re.findall(r"^```(\w+)\n(.*?)^```$", document.read_text(encoding="utf-8"), re.S | re.M):
        if language == "sh":
            continue
        same = [p for p, text in programs.items() if p.suffix == LANGUAGES.get(language) and text == code]
        shown.update(same)
        if not same:
            faults.append(f"{document.name}: the block that begins '{code.splitlines()[0]}' is not a file in examples/")
faults += [f"no document shows {path.name}" for path in programs if path not in shown]
if faults:
    sys.exit("\n".join(faults))
