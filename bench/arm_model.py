#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Counts the arm64 instructions of every comparison, models their cycles on two cores, and prints both as a table.

Usage: arm_model.py PROGRAM SYSROOT > arm.tsv

Both are work, not time. Instructions are counted by arm_trace.py. For the cycles, llvm-mca models the blocks of
instructions that make up nearly all of a call, each as if it repeated itself; a block's cycles are weighted by its
executions, and the rest of the call is taken to have as many cycles per instruction. The model knows the core's units
and latencies, but neither cache misses nor mispredicted branches.

The limit of a core is what the same model gives for loading and storing the image once, 16 bytes at a time.
"""
import collections
import re
import subprocess
import sys

import arm_trace

TOOLS = "-19"    # the suffix of LLVM's programs; older versions model every core as a Cortex-A57
CORES = {"a72": "cortex-a72", "n1": "neoverse-n1"}
COVERED = 0.97    # of the instructions of a call
FOLLOWS = 0.9    # blocks that follow one another in this part of their executions are modelled as one
FEATURES = "+v8a,+crc,+lse"
WINDOW = 4000    # instructions that a block is repeated for


def paths(work, code):
    """Joins blocks that nearly always follow one another. Yields (words, executions), the most costly first."""
    after = collections.defaultdict(list)
    for (block, following), count in work.pairs.items():
        if block is not None and count >= FOLLOWS * max(work.blocks[block], work.blocks[following]):
            after[block].append(following)
    successor = {block: following[0] for block, following in after.items()}
    has_predecessor = set(successor.values())
    taken, found = set(), []
    by_cost = sorted(work.blocks, key=lambda block: -work.blocks[block] * len(code[block]))
    for start in [block for block in by_cost if block not in has_predecessor] + by_cost:    # then closed loops
        block, path = start, []
        while block is not None and block not in taken:
            taken.add(block)
            path.append(block)
            block = successor.get(block)
        if path:
            words = [word for block in path for word in code[block]]
            cost = sum(work.blocks[block] * len(code[block]) for block in path)
            found.append((tuple(words), cost / len(words)))
    return sorted(found, key=lambda path: -path[1] * len(path[0]))


def hot_paths(work, code):
    total, covered, hot = instructions(work, code), 0, []
    for words, executions in paths(work, code):
        if covered >= COVERED * total:
            break
        covered += len(words) * executions
        hot.append((words, executions))
    return hot


def instructions(work, code):
    return sum(len(code[block]) * count for block, count in work.blocks.items())


def run(*command, text):
    done = subprocess.run(command, input=text, capture_output=True, text=True, check=False)
    if not done.stdout:
        sys.exit(f"{command[0]} failed: {done.stderr}")
    return done


def disassembled(words):
    """Returns the assembly of each instruction word that exists on both cores."""
    words = sorted(words)
    lines = [" ".join(f"0x{byte:02x}" for byte in int(word, 16).to_bytes(4, "little")) for word in words]
    done = run(f"llvm-mc{TOOLS}", "--disassemble", "-triple=aarch64", f"-mattr={FEATURES}", text="\n".join(lines) + "\n")
    unknown = {int(line) - 1 for line in re.findall(r"^<stdin>:(\d+):\d+: warning: invalid", done.stderr, re.M)}
    known = [word for i, word in enumerate(words) if i not in unknown]
    texts = [line.strip() for line in done.stdout.splitlines() if line.startswith("\t") and not line.startswith("\t.")]
    if len(texts) != len(known):
        sys.exit(f"{len(texts)} of {len(known)} instructions were disassembled")
    return {word: as_modelled(text) for word, text in zip(known, texts)}


def as_modelled(text):
    """Returns the lines of assembly by which an instruction is modelled.

    llvm-mca takes a call to last 100 cycles; what is called is a block of its own, so a call is only a jump here. It
    also lets the address that a store updates wait for the data; cores update it in an operation of its own.
    """
    store = re.fullmatch(r"(st\w+\s.*), \[(\w+)(?:\], |, )(#?-?\w+)(?:\]!)?", text)
    if store and (text.endswith("!") or "], " in text):
        return [f"{store[1]}, [{store[2]}]", f"add {store[2]}, {store[2]}, {store[3]}"]
    return [re.sub(r"^bl(r?)\b", r"b\1", text)]


def cycles(blocks, core):
    """Returns the cycles of one execution of each block: a tuple of lines of assembly."""
    result = {}
    by_repeats = collections.defaultdict(list)
    for block in blocks:
        by_repeats[max(8, WINDOW // len(block))].append(block)
    for repeats, group in by_repeats.items():
        text = "".join(f"# LLVM-MCA-BEGIN {i}\n" + "\n".join(block) + f"\n# LLVM-MCA-END {i}\n"
                       for i, block in enumerate(group))
        out = run(f"llvm-mca{TOOLS}", "-mtriple=aarch64", f"-mcpu={core}", f"-mattr={FEATURES}",
                  f"-iterations={repeats}", "-instruction-info=0", "-resource-pressure=0",
                  "-skip-unsupported-instructions=lack-sched", text=text).stdout
        totals = [int(total) for total in re.findall(r"^Total Cycles: +(\d+)", out, re.M)]
        if len(totals) != len(group):
            sys.exit(f"llvm-mca modelled {len(totals)} of {len(group)} blocks")
        result.update((block, total / repeats) for block, total in zip(group, totals))
    return result


def image_traffic(pixels, read, written):
    """Loads and stores of the bytes of 128 pixels."""
    loads, stores = (max(round(8 * size / pixels), 1 if size else 0) for size in (read, written))
    return tuple([f"ldr q{i % 8}, [x0, #{16 * i}]" for i in range(loads)]
                 + [f"str q{8 + i % 8}, [x1, #{16 * i}]" for i in range(stores)])


def main():
    code, works, output = arm_trace.run(*sys.argv[1:])
    calls = [line.split("\t") for line in output if line.count("\t") == 5]
    if len(works) != 2 * len(calls):
        sys.exit(f"{len(works)} counts for {len(calls)} comparisons")
    hot = [hot_paths(work, code) for work in works]
    assembly = disassembled({word for paths_of_work in hot for words, _ in paths_of_work for word in words})
    hot = [[(tuple(line for word in words for line in assembly.get(word, ())), count, len(words))
            for words, count in paths_of_work] for paths_of_work in hot]
    traffic = [image_traffic(*map(int, call[3:])) for call in calls]
    blocks = {block for paths_of_work in hot for block, *_ in paths_of_work if block} | set(traffic)
    model = {core: cycles(sorted(blocks), name) for core, name in CORES.items()}

    def cycles_of(i, core):
        covered = sum(length * count for block, count, length in hot[i] if block)
        modelled = sum(model[core][block] * count for block, count, _ in hot[i] if block)
        return modelled * instructions(works[i], code) / covered

    head = ["function", "variant", "plain_name", "pixels", "ours", "plain"]
    print(*head, *(f"{what}_{core}" for core in CORES for what in ("ours", "plain", "limit")), sep="\t")
    for i, call in enumerate(calls):
        pixels = int(call[3])
        cells = call[:4] + [instructions(works[2 * i], code), instructions(works[2 * i + 1], code)]
        for core in CORES:
            cells += [f"{cycles_of(2 * i, core):.0f}", f"{cycles_of(2 * i + 1, core):.0f}",
                      f"{model[core][traffic[i]] * pixels / 128:.0f}"]
        print(*cells, sep="\t")


if __name__ == "__main__":
    main()
