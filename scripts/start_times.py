# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""start_times.py SHARED SELF_CONTAINED DOCUMENT: how fast the programs of two build folders start, as a table.

Writes the table between two marks of the document. The runs alternate; the fastest of each counts.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

RUNS = 25
LIBC = ("linux-vdso", "libc.so", "libm.so", "ld-linux", "/lib64/ld-linux", "/lib/ld-linux")
IMPORT = """
import time, numpy
def libraries(): return {line.split()[-1] for line in open("/proc/self/maps") if ".so" in line}
before = libraries()
start = time.perf_counter()
import opcv_dlib
print(time.perf_counter() - start, len(libraries() - before))
"""


def seconds_of(command):
    start = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.perf_counter() - start


def libraries_of(program):
    """Those that the loader maps, without the C library."""
    environment = {**os.environ, "LD_TRACE_LOADED_OBJECTS": "1"}
    lines = subprocess.run([program], check=True, capture_output=True, text=True, env=environment).stdout.splitlines()
    return sum(not line.strip().startswith(LIBC) for line in lines)


def import_of(package):
    environment = {**os.environ, "PYTHONPATH": str(package), "PYTHONDONTWRITEBYTECODE": "1"}
    done = subprocess.run(["/usr/bin/python3", "-c", IMPORT], check=True, capture_output=True, text=True, env=environment)
    seconds, libraries = done.stdout.split()
    return float(seconds), int(libraries)


def fastest(measures):
    """The least of each of some measures, which take turns."""
    runs = [[measure() for measure in measures] for _ in range(RUNS)]
    return map(min, zip(*runs))


def table(folders, work):
    programs = [str(folder / "bin/scanpage") for folder in folders]
    page = work / "page.jpg"
    subprocess.run([folders[0] / "bin/pagegen", "--dpi", "60", page], check=True, stdout=subprocess.DEVNULL)
    jobs = [[program, "--overwrite", "-o", str(work / "out"), str(page)] for program in programs]
    (work / "out").mkdir()
    helps = [[program, "--help"] for program in programs]
    milliseconds = [f"{1000 * s:.1f} ms" for s in fastest([lambda c=c: seconds_of(c) for c in helps + jobs])]
    imports = [import_of(folder / "python") for folder in folders]
    import_times = [f"{1000 * s:.1f} ms" for s, _ in fastest([lambda f=f: import_of(f / "python") for f in folders])]
    rows = (
        ("`scanpage --help`", milliseconds[:2]),
        ("its libraries besides the C library", [libraries_of(program) for program in programs]),
        ("`scanpage` on a page of 496 x 702 pixels", milliseconds[2:]),
        ("`import opcv_dlib` after NumPy", import_times),
        ("libraries that the import maps", [libraries for _, libraries in imports]),
    )
    lines = ["| | Debian's libraries | self-contained |", "|---|---|---|"]
    return "\n".join(lines + [f"| {name} | {shared} | {own} |" for name, (shared, own) in rows])


def main():
    folders = [pathlib.Path(name) for name in sys.argv[1:3]]
    document = pathlib.Path(sys.argv[3])
    with tempfile.TemporaryDirectory() as work:
        rows = table(folders, pathlib.Path(work))
    print(rows)
    begin, end = "<!-- start: begin -->\n", "<!-- start: end -->"
    text, count = re.subn(f"{begin}.*?{end}", lambda _: f"{begin}{rows}\n{end}", document.read_text(), flags=re.DOTALL)
    if count != 1:
        sys.exit(f"{document} has no place for the table")
    document.write_text(text)


if __name__ == "__main__":
    main()
