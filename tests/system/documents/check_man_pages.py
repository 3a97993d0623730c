# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Checks that every exported function has a complete manual page.

    check_man_pages.py NM MAN_FOLDER LIBRARY...

`man FUNCTION` shows the page of a family. That page lists the function in its name line, so that `apropos` finds it,
declares it, and has a section about it. The section describes each parameter and, unless the function returns nothing or
takes no argument, its result. No function that is not exported has a page.
"""
import pathlib
import re
import subprocess
import sys

nm, folder, *libraries = sys.argv[1], pathlib.Path(sys.argv[2]), *filter(None, sys.argv[3:])
names = set()
for library in libraries:
    symbols = subprocess.run([nm, "-D", "-C", "--defined-only", "--format=posix", library], check=True,
                             capture_output=True, text=True).stdout
    exported = {re.match(r"\w+", line).group() for line in symbols.splitlines()
                if not re.match(r"OPCV_(SKEW_)?1\.", line)}    # the symbol version
    if not exported:
        sys.exit(f"{library} exports nothing")
    names |= exported


def incomplete(section, name):
    """The parameters of a function, and "Returns:", that its section does not describe."""
    prototype, _, description = section.partition("\n.PP\n")
    parameters = re.findall(r"\\fI(\w+)\\fP", prototype)
    missing = [p for p in parameters if f"\n.I {p}\n" not in description]
    returns_nothing = prototype.split(name)[0].strip() == "\\fBvoid"
    if parameters and not returns_nothing and "\nReturns:\n" not in description:
        missing.append("Returns:")
    return missing


faults = []
for name in sorted(names):
    link = folder / "man3" / f"{name}.3"
    match = re.fullmatch(r"\.so (man3/\w+\.3)\n", link.read_text()) if link.exists() else None
    family = folder / match.group(1) if match else None
    if not family or not family.exists():
        faults.append(f"man {name} finds no page")
        continue
    text = family.read_text()
    head = text[text.index(".SH NAME\n"):text.index(".SH SYNOPSIS\n")]
    synopsis = text[text.index(".SH SYNOPSIS\n"):]
    for what, found in (("name line", re.search(rf"\b{name}\b", head)),
                        ("synopsis", f" {name}(\\fP" in synopsis),
                        ("section", f".SS {name}\n.HP\n" in text)):
        if not found:
            faults.append(f"{family.name}: no {what} for {name}")
    section = re.search(rf"^\.SS {name}\n\.HP\n(.*?)(?=^\.S[SH] |\Z)", text, re.S | re.M)
    if section:
        faults += [f"{family.name}: {name} does not describe {part}" for part in incomplete(section.group(1), name)]
pages = {path.stem for path in (folder / "man3").glob("*.3") if path.read_text().startswith(".so ")}
faults += [f"{name} has a manual page but is not exported" for name in sorted(pages - names)]
if faults:
    sys.exit("\n".join(faults))
