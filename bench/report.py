#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Writes the tables of docs/performance.md from the results of the benchmarks.

Usage: report.py RESULTS_FOLDER DOCUMENT
       report.py --check BENCH_PROGRAM

Replaces only the lines between a pair of markers; the text around them is written by hand. Fails if an exported
function is neither measured nor listed in docs/functions.md; --check makes only this check, on the program's list of
comparisons.
"""
import csv
import pathlib
import platform
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).parent
PAGE, TILE = "2480x3508", "256x256"
SMALL_IMAGE_LIMIT, VECTOR_WIDTH_LIMIT = 1.3, 1.03
FARTHEST = 5
CORES = {"a72": "A72", "n1": "N1"}    # as bench/arm_model.py names them


def rows_of(path):
    with open(path, newline="") as file:
        return list(csv.DictReader(file, delimiter="\t"))


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    return lines + ["| " + " | ".join(row) + " |" for row in rows]


def number(value, digits=2):
    return "" if value is None else f"{value:.{digits}f}"


def significant(value):
    return f"{value:.3g}" if value < 1000 else f"{value:.0f}"


def read_same_code():
    """From docs/functions.md: the functions that are not measured, and what is measured in place of each."""
    rows = re.findall(r"^\| `(\w+)` \| .* \| (`\w+`|none) \|$", (HERE.parent / "docs" / "functions.md").read_text(), re.M)
    return dict(rows)


def exported_functions():
    mangled = (HERE.parent / "cmake" / "exports.txt").read_text()
    plain = subprocess.run(["c++filt"], input=mangled, capture_output=True, text=True, check=True).stdout
    return {line.split("(")[0] for line in plain.split("\n") if line}


def check_completeness(functions):
    measured = {name.strip() for function in functions for name in function.split(",")}
    missing = exported_functions() - measured - set(read_same_code())
    if missing:
        sys.exit("neither measured nor listed in docs/functions.md: " + ", ".join(sorted(missing)))


def listed_functions(program):
    names = subprocess.run([program, "--benchmark_list_tests=true"], capture_output=True, text=True, check=True).stdout
    return re.findall(r"^(\w+(?:, \w+)*)", names, re.M)


class Call:
    """All results of one function with one shape."""

    def __init__(self, function, variant, heading):
        self.function, self.variant, self.heading = function, variant, heading
        self.rows = {}

    @property
    def name(self):
        return f"`{self.function}`" + (f" {self.variant}" if self.variant else "")

    def get(self, size, threads, field):
        row = self.rows.get((size, threads))
        return None if row is None else float(row[field])

    def first(self):
        return self.rows.get((PAGE, "1")) or next(iter(self.rows.values()))


def calls_of(results):
    calls = {}
    for row in results:
        key = row["function"], row["variant"]
        call = calls.setdefault(key, Call(*key, row["heading"]))
        call.rows[row["size"], "1" if row["threads"] == "1" else "all"] = row
    return list(calls.values())


def cost_per_pixel(call):
    page, tile = call.get(PAGE, "1", "ours"), call.get(TILE, "1", "ours")
    return None if page is None or tile is None else tile / page * (2480 * 3508) / (256 * 256)


def narrower_ratio(call, size):
    """Of the kernels of the next narrower vector target to the plain way, in the same rounds."""
    narrower, plain = call.get(size, "1", "narrower"), call.get(size, "1", "plain")
    return None if not narrower else narrower / plain


def time_row(call):
    row = call.first()
    goal = float(row["goal"]) if row.get("goal") else None
    beside_memcpy = row.get("goal_beside") == "memcpy"
    reached = call.get(PAGE, "1", "ratio_memcpy" if beside_memcpy else "ratio")
    goal_text = "" if goal is None else f"{goal:g}" + (" x memcpy" if beside_memcpy else "")
    if goal is not None and reached is not None and reached > goal:
        goal_text += " **missed**"
    milliseconds = call.get(PAGE, "1", "ours")
    tile = call.get(TILE, "1", "ours")
    spread = call.get(PAGE, "1", "ratio_spread")
    return [
        call.name,
        "" if milliseconds is None else significant(1000 * milliseconds),
        call.first()["plain_name"],
        number(call.get(PAGE, "1", "ratio")),
        "" if spread is None else f"{100 * spread:.0f} %",
        goal_text,
        number(narrower_ratio(call, PAGE)),
        number(call.get(PAGE, "1", "ratio_memcpy")),
        number(call.get(PAGE, "all", "ratio")),
        "" if tile is None else significant(1e6 * tile),
        number(call.get(TILE, "1", "ratio")),
        number(narrower_ratio(call, TILE)),
        number(cost_per_pixel(call)),
    ]


def time_head(results):
    narrower = f"/ plain, {results[0]['narrower_target'] or 'narrower vectors'}"
    return ["call", "page, ms", "plain is", "/ plain", "spread", "goal", narrower, "/ memcpy", "/ plain, two threads",
            "256 x 256, us", "/ plain", narrower, "cost per pixel / page's"]


def time_tables(results):
    lines = []
    calls = calls_of(results)
    for heading in dict.fromkeys(call.heading for call in calls):
        group = [time_row(call) for call in calls if call.heading == heading]
        lines += ["", f"### {heading}", ""] + table(time_head(results), group)
    return lines


def summary_table(results):
    rows = []
    calls = calls_of(results)
    for heading in dict.fromkeys(call.heading for call in calls):
        ratios = {call.get(PAGE, "1", "ratio"): call.name for call in calls
                  if call.heading == heading and call.get(PAGE, "1", "ratio") and call.first()["plain_name"] == "OpenCV"}
        if ratios:
            ordered = sorted(ratios)
            rows.append([heading, str(len(ratios)), number(ordered[len(ordered) // 2]),
                         f"{number(ordered[0])}: {ratios[ordered[0]]}", f"{number(ordered[-1])}: {ratios[ordered[-1]]}"])
    return table(["calls that OpenCV has", "number", "median", "best", "worst"], rows)


def above(limit, head, costs):
    """A table of the names whose cost is above the limit, the highest first; costs are pairs of name and cost."""
    high = sorted(((cost, name) for name, cost in costs if cost is not None and cost > limit), reverse=True)
    if not high:
        return [f"No call is above {limit:g}."]
    return table(head, [[name, number(cost)] for cost, name in high])


def small_image_table(results):
    costs = [(call.name, cost_per_pixel(call)) for call in calls_of(results)]
    return ["### Small images", "",
            f"Calls whose cost per pixel on 256 x 256 is above {SMALL_IMAGE_LIMIT:g} of the page's:",
            ""] + above(SMALL_IMAGE_LIMIT, ["call", "cost per pixel / page's"], costs)


def vector_width_table(results):
    wide, narrow = results[0]["target"], results[0]["narrower_target"]
    if not narrow:
        return []
    costs = []
    for call in calls_of(results):
        for size in (PAGE, TILE):
            ours, narrower = call.get(size, "1", "ours"), call.get(size, "1", "narrower")
            if narrower:
                costs.append((f"{call.name}, {size.replace('x', ' x ')}", ours / narrower))
    return ["", "### Vector width", "",
            f"Calls whose time on {wide} is above {VECTOR_WIDTH_LIMIT:g} of their time on {narrow}, in the same rounds:",
            ""] + above(VECTOR_WIDTH_LIMIT, ["call", f"{wide} / {narrow}"], costs)


def memory_table(results):
    rows = []
    for call in calls_of(results):
        row = call.first()
        image = max(float(row["read"]), float(row["written"]))
        rows.append([call.name, significant(float(row["heap"]) / image), significant(float(row["written"]) / image),
                     row["blocks"], significant(float(row["plain_heap"]) / image), row["plain_blocks"]])
    return table(
        ["call", "peak / image", "result / image", "blocks", "plain: peak / image", "plain: blocks"], rows)


def same_code_table():
    return table(
        ["function", "measured as"],
        [[f"`{name}`", what] for name, what in read_same_code().items() if what != "none"])


def version_of(command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip().splitlines()[0]


def package_version(name):
    return version_of(["dpkg-query", "-W", "-f", "${Version}", name])


def machine(results):
    processors = ", ".join(dict.fromkeys(row["processor"] for row in results))
    targets = ", ".join(dict.fromkeys(row["target"] for row in results))
    cpus = len(re.findall(r"^processor", pathlib.Path("/proc/cpuinfo").read_text(), re.M))
    return (f"{processors}, {cpus} processors, kernels of {targets}; Linux {platform.release().split('-')[0]}; "
            f"{version_of(['c++', '--version'])}; OpenCV {package_version('libopencv-core-dev')}, "
            f"Highway {package_version('libhwy-dev')}, libjpeg-turbo {package_version('libjpeg62-turbo-dev')}, "
            f"glibc {platform.libc_ver()[1]}.")


def pipeline_table(path):
    rows = []
    for row in rows_of(path):
        rows.append([row["work"], row["page"], row["tool"], significant(float(row["ms"])), number(float(row["ratio"])),
                     significant(float(row["peak_mb"])), row["steps"]])
    return table(["work", "page", "tool", "ms", "library / tool", "peak memory, MB", "steps"], rows)


class Modelled:
    """One line of arm.tsv, per pixel."""

    def __init__(self, row):
        self.name = f"`{row['function']}` {row['variant']}".strip()
        self.row = row

    def per_pixel(self, field):
        return float(self.row[field]) / float(self.row["pixels"])

    def of_limit(self, core):
        limit = self.per_pixel(f"limit_{core}")
        return self.per_pixel(f"ours_{core}") / limit if limit else None

    def is_plain(self):
        """Whether the call does nothing but the plain call."""
        return 0.99 < self.per_pixel("ours") / self.per_pixel("plain") < 1.01

    def cells(self):
        cells = [self.name, self.row["plain_name"], significant(self.per_pixel("ours")),
                 number(self.per_pixel("ours") / self.per_pixel("plain"))]
        for core in CORES:
            ours, limit = self.per_pixel(f"ours_{core}"), self.of_limit(core)
            cells += [significant(ours), number(ours / self.per_pixel(f"plain_{core}")),
                      "" if limit is None else significant(limit)]
        return cells


def arm_table(path):
    calls = [Modelled(row) for row in rows_of(path)]
    head = ["call", "plain is", "instructions", "/ plain"]
    for core in CORES.values():
        head += [f"{core}: cycles", "/ plain", "/ limit"]
    kernels = [call for call in calls if call.of_limit("n1") and not call.is_plain()]
    farthest = sorted(kernels, key=lambda call: -call.of_limit("n1"))[:FARTHEST]
    names = ", ".join(f"{call.name} ({significant(call.of_limit('n1'))})" for call in farthest)
    return table(head, [call.cells() for call in calls]) + ["", f"The kernels farthest from the limit of the N1: {names}."]


def replace_between(text, marker, lines):
    begin, end = f"<!-- {marker}: begin -->", f"<!-- {marker}: end -->"
    if begin not in text or end not in text:
        sys.exit(f"the document has no {marker} markers")
    head, rest = text.split(begin)
    return head + begin + "\n" + "\n".join(lines).strip("\n") + "\n" + end + rest.split(end)[1]


def main():
    if sys.argv[1] == "--check":
        check_completeness(listed_functions(sys.argv[2]))
        return
    folder, document = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    text = document.read_text()
    calls = rows_of(folder / "calls.tsv")
    check_completeness(row["function"] for row in calls)
    text = replace_between(text, "machine", [machine(calls)])
    for marker, lines in (("summary", summary_table(calls)), ("calls", time_tables(calls)),
                          ("lists", small_image_table(calls) + vector_width_table(calls)),
                          ("heap", memory_table(calls)), ("shared", same_code_table())):
        text = replace_between(text, marker, lines)
    for marker, file, make in (("pipeline", "pipeline.tsv", pipeline_table), ("arm64", "arm.tsv", arm_table)):
        if (folder / file).exists():
            text = replace_between(text, marker, make(folder / file))
    document.write_text(text)


if __name__ == "__main__":
    main()
