# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Looks at a finished library or program: what an attacker could use must not be in it."""
import argparse
import re
import subprocess
import sys

# The first instruction of a function that may be reached by an indirect call.
LANDING_PADS = {"x86-64": {"endbr64"}, "AArch64": {"paciasp", "bti"}}

# Written at link time by the compiler's start-up files and the exception tables.
TOOLCHAIN_DATA = re.compile(r"completed\.\d+|__dso_handle|__TMC_END__|__bss_start\w*|_?_?b?s?s?_?end\w*|_edata|DW\.ref\..*")


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def segment_flags(headers, name):
    return re.search(rf"^\s*{name}\s.*?\s([RWE ]{{3}})\s+0x\w+$", headers, re.MULTILINE).group(1)


def first_instructions(disassembly):
    """Name of each function -> its first mnemonic."""
    found = re.findall(r"^[0-9a-f]+ <([^>]+)>:\n\s*[0-9a-f]+:\s+(\S+)", disassembly, re.MULTILINE)
    return dict(found)


def has_tag(dynamic, tag):
    return re.search(rf"\b\(?{tag}\)?\b", dynamic)


def faults_of_any_file(file, readelf, nm):
    headers = output_of(readelf, "-lW", file)
    dynamic = output_of(readelf, "-dW", file)
    if not re.search(r"^Elf file type is DYN\b", headers, re.MULTILINE):
        yield "it has a fixed address"
    if "GNU_RELRO" not in headers:
        yield "no RELRO segment"
    if "BIND_NOW" not in dynamic:
        yield "symbols are bound lazily, so the jump table stays writable"
    if "E" in segment_flags(headers, "GNU_STACK"):
        yield "the stack is executable"
    for flags in re.findall(r"^\s*LOAD\s.*?\s([RWE ]{3})\s+0x\w+$", headers, re.MULTILINE):
        if "W" in flags and "E" in flags:
            yield "a segment is writable and executable"
    if has_tag(dynamic, "TEXTREL"):
        yield "its code is changed when it is loaded"

    symbols = output_of(nm, "-D", file)
    if "__stack_chk_fail" not in symbols:
        yield "no stack protector"
    if not re.search(r"\b__\w+_chk\b", symbols):
        yield "no call of the C library is fortified"


def faults_of_library(library, readelf, objdump, nm):
    machine = next(m for m in LANDING_PADS if m in output_of(readelf, "-h", library).replace("X86-64", "x86-64"))
    dynamic = output_of(readelf, "-dW", library)
    for tag in ("RPATH", "RUNPATH"):    # of a program the build tree's is taken out at the installation
        if has_tag(dynamic, tag):
            yield f"the dynamic section has {tag}"
    symbols = output_of(nm, "-D", library)
    entries = [line.split()[-1].split("@")[0] for line in symbols.splitlines() if " T " in line]
    if not entries:
        yield "no exported function was found"
    starts = first_instructions(output_of(objdump, "-d", "--no-show-raw-insn", library))
    for name in entries:
        if starts.get(name) not in LANDING_PADS[machine]:
            yield f"{name} begins with {starts.get(name)}, not with a landing pad"

    for line in output_of(nm, library).splitlines():
        kind, name = line.split()[-2:]
        if kind in "bB" and not TOOLCHAIN_DATA.fullmatch(name):
            yield f"{name} is writable data"
    sections = output_of(objdump, "-t", "-j", ".data", library)
    for line in sections.splitlines():
        fields = line.split()
        if ".data" in fields and not TOOLCHAIN_DATA.fullmatch(fields[-1]) and fields[-1] != ".data":
            yield f"{fields[-1]} is writable data"


def faults_of_self_contained_library(library, readelf):
    """It needs nothing but the C and C++ runtime."""
    for name in re.findall(r"\(NEEDED\).*\[(.+)\]", output_of(readelf, "-dW", library)):
        if not re.match(r"(libstdc\+\+|libgcc_s|libm|libc|libpthread|ld-linux-[\w-]+)\.so", name):
            yield f"it needs {name}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("kind", "file", "readelf", "objdump", "nm"):
        parser.add_argument(name, choices=("library", "arithmetic-library", "self-contained", "program") if name == "kind" else None)
    args = parser.parse_args()
    found = list(faults_of_any_file(args.file, args.readelf, args.nm))
    if args.kind == "arithmetic-library":    # it makes no call that the C library could check
        found = [fault for fault in found if "fortified" not in fault]
    if args.kind in ("library", "arithmetic-library"):
        found += faults_of_library(args.file, args.readelf, args.objdump, args.nm)
    if args.kind == "self-contained":
        found += faults_of_self_contained_library(args.file, args.readelf)
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
