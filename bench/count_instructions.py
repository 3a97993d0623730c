#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Counts the arm64 instructions of every comparison under qemu's user emulation and prints them as a table.

Usage: count_instructions.py PROGRAM SYSROOT > instructions.tsv

qemu logs each block of instructions once, when it translates it, and the address of each block that it executes. The
count of a call is the sum over the blocks executed between the program's two marker functions. It measures work, not
time.
"""
import collections
import subprocess
import sys
import tempfile

QEMU = "qemu-aarch64-static"


def command(sysroot, *rest):
    libraries = ":".join(f"/usr/lib/aarch64-linux-gnu{part}" for part in ("/blas", "/lapack"))
    return [QEMU, "-L", sysroot, "-E", f"LD_LIBRARY_PATH={libraries}", *rest]


def code_ranges(program, sysroot):
    """Address ranges of code, except for the loader, which executes more instructions than all calls together."""
    maps = subprocess.run(command(sysroot, program, "--maps"), capture_output=True, text=True, check=True).stdout
    lines = [line.split() for line in maps.splitlines()]
    return ["0x{}..0x{}".format(*line[0].split("-")) for line in lines
            if "x" in line[1] and len(line) > 5 and "ld-linux" not in line[5]]


def count_blocks(log):
    """Returns the number of instructions between each pair of markers, in the order of the run."""
    lengths, counts, ran = collections.defaultdict(int), [], None
    block = None
    for line in log:
        if line.startswith("Trace"):
            if ran is None:
                if line.endswith("] startOfCount\n"):
                    ran = collections.Counter()
            elif line.endswith("] endOfCount\n"):
                counts.append(sum(lengths[at] * times for at, times in ran.items()))
                ran = None
            else:
                ran[int(line.split("/", 2)[1], 16)] += 1
        elif line.startswith("0x"):
            if block is None:
                block = int(line[:line.index(":")], 16)
                lengths[block] = 0
            lengths[block] += 1
        elif line.startswith("IN:"):
            block = None
    return counts


def main():
    program, sysroot = sys.argv[1:]
    with tempfile.TemporaryFile("w+") as names:
        trace = ["-d", "in_asm,exec,nochain", "-dfilter", ",".join(code_ranges(program, sysroot))]
        run = subprocess.Popen(command(sysroot, *trace, program), stdout=names, stderr=subprocess.PIPE, text=True,
                               errors="replace")
        counts = count_blocks(run.stderr)
        if run.wait() != 0:
            sys.exit("the program failed")
        names.seek(0)
        lines = [line.rstrip("\n").split("\t") for line in names]
    calls = [line for line in lines if len(line) == 4]
    if len(counts) != 2 * len(calls):
        sys.exit(f"{len(counts)} counts for {len(calls)} comparisons")
    print("function\tvariant\tplain_name\tpixels\tours\tplain")
    for i, (function, variant, plain, pixels) in enumerate(calls):
        print(function, variant, plain, pixels, counts[2 * i], counts[2 * i + 1], sep="\t")


if __name__ == "__main__":
    main()
