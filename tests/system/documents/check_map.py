# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""check_map.py SOURCES: CONTRIBUTING.md has every folder and script of the tree, and every file that it names exists.

The commands of ./dev, their help and what the documents call are compared as well.
"""
import pathlib
import re
import subprocess
import sys

root = pathlib.Path(sys.argv[1]).resolve()
document = (root / "CONTRIBUTING.md").read_text()
errors = []

# Folders whose own folders have a line each.
OPENED = ["src", "tests", "tests/system", "tools", "docs"]
NOT_OURS = {".git", ".cache", "build"}
PLACEHOLDERS = ("FOLDER", "OPERATION", "TARGET")


def folders(parent):
    return {path.relative_to(root).as_posix() + "/" for path in parent.iterdir() if any(path.rglob("*"))}


def expected_entries():
    top = {folder for folder in folders(root) if folder.rstrip("/") not in NOT_OURS}
    inner = set().union(*(folders(root / folder) for folder in OPENED))
    scripts = {f"scripts/{path.name}" for path in (root / "scripts").iterdir() if path.is_file()}
    return {entry for entry in top | inner | scripts | {"dev"} if "__pycache__" not in entry}


def map_entries():
    section = document.split("\n## Map\n")[1].split("\n## ")[0]
    return re.findall(r"^\| `([^`]+)` \|", section, re.M)


def check_map():
    entries, expected = map_entries(), expected_entries()
    errors.extend(f"not in the map: {entry}" for entry in sorted(expected - set(entries)))
    errors.extend(f"in the map, not in the tree: {entry}" for entry in sorted(set(entries) - expected))
    errors.extend(f"twice in the map: {entry}" for entry in sorted(set(entries)) if entries.count(entry) > 1)


def check_build_list():
    build = re.search(r"set\(opcv_dlib_folders ([^)]*)\)", (root / "CMakeLists.txt").read_text())[1].split()
    if {f"src/{folder}/" for folder in build} != folders(root / "src"):
        errors.append(f"opcv_dlib_folders is not the list of folders in src/: {build}")


def check_named_files():
    for name in re.findall(r"(?<![\w./])[\w.]+(?:/[\w.-]+)+/?", document):
        if name.startswith("./") or any(word in name for word in PLACEHOLDERS):
            continue
        if not (root / name).exists():
            errors.append(f"CONTRIBUTING.md names {name}, which does not exist")


def check_commands():
    text = "".join(path.read_text() for path in (root / "scripts").glob("*.sh"))
    defined = set(re.findall(r"^cmd_(\w+)\(\)", text + (root / "dev").read_text(), re.M)) - {"help"}
    listed = set(re.findall(r"^  (\w+) ", subprocess.check_output([root / "dev", "help"], text=True), re.M))
    mapped = [command for line in document.splitlines() if line.startswith("| `scripts/")
              for command in re.findall(r"`(\w+)`", line.split("|")[2])]    # fmt: skip
    errors.extend(f"./dev help does not list {name}" for name in sorted(defined - listed))
    errors.extend(f"./dev help lists {name}, which is no command" for name in sorted(listed - defined))
    if sorted(mapped) != sorted(defined):
        errors.append(f"the map's commands differ from those of ./dev: {sorted(set(mapped) ^ defined)}")
    for path in [*root.glob("*.md"), *root.glob("docs/*.md")]:
        for command in re.findall(r"\./dev (\w+)", path.read_text()):
            if command not in defined | {"help"}:
                errors.append(f"{path.name} calls ./dev {command}, which is no command")


check_map()
check_build_list()
check_named_files()
check_commands()
print(*errors, sep="\n")
sys.exit(bool(errors))
