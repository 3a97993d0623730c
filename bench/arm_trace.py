# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Runs a program for arm64 under qemu's user emulation and returns the blocks of instructions that it executes.

qemu logs each block of instructions once, when it translates it, and the address of each block that it executes. The
program calls two marker functions around each piece of work.
"""
import collections
import subprocess
import tempfile

QEMU = "qemu-aarch64-static"


class Work:
    """What was executed between two markers: how often each block, and how often each block after each other."""

    def __init__(self):
        self.blocks = collections.Counter()
        self.pairs = collections.Counter()


def command(sysroot, *rest):
    libraries = ":".join(f"/usr/lib/aarch64-linux-gnu{part}" for part in ("/blas", "/lapack"))
    return [QEMU, "-L", sysroot, "-E", f"LD_LIBRARY_PATH={libraries}", *rest]


def code_ranges(program, sysroot):
    """Address ranges of code, except for the loader, which executes more instructions than all calls together."""
    maps = subprocess.run(command(sysroot, program, "--maps"), capture_output=True, text=True, check=True).stdout
    lines = [line.split() for line in maps.splitlines()]
    return ["0x{}..0x{}".format(*line[0].split("-")) for line in lines
            if "x" in line[1] and len(line) > 5 and "ld-linux" not in line[5]]


def read_log(log):
    """Returns the code of each block as a list of instruction words, and the pieces of work in order."""
    code, works = {}, []
    work = block = last = None
    for line in log:
        if line.startswith("Trace"):
            if work is None:
                if line.endswith("] startOfCount\n"):
                    work, last = Work(), None
            elif line.endswith("] endOfCount\n"):
                works.append(work)
                work = None
            else:
                at = line.split("/", 2)[1]
                work.blocks[at] += 1
                work.pairs[last, at] += 1
                last = at
        elif line.startswith("0x"):
            address, word = line.split(None, 2)[:2]
            if block is None:
                block = code[f"{int(address[:-1], 16):016x}"] = []
            block.append(word)
        elif line.startswith("IN:"):
            block = None
    return code, works


def run(program, sysroot):
    """Returns what read_log returns, and the lines that the program prints."""
    with tempfile.TemporaryFile("w+") as output:
        trace = ["-d", "in_asm,exec,nochain", "-dfilter", ",".join(code_ranges(program, sysroot))]
        process = subprocess.Popen(command(sysroot, *trace, program), stdout=output, stderr=subprocess.PIPE, text=True,
                                   errors="replace")
        code, works = read_log(process.stderr)
        if process.wait() != 0:
            raise RuntimeError("the program failed")
        output.seek(0)
        return code, works, output.read().splitlines()
