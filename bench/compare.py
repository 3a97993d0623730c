#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Compares the calls of two runs of the benchmarks and prints what changed by more than the noise.

Usage: compare.py RESULTS EARLIER_RESULTS

A call has changed if its time and its ratio to the plain way moved in the same direction, both beyond the noise: 5 %
for calls above one millisecond, 15 % below, or the spread within a run if that is more. If only the time moved, the
machine was faster or slower; if only the ratio moved, the plain way was.
"""
import csv
import sys

LONG_CALL, LONG_LIMIT, SHORT_LIMIT = 1e-3, 0.05, 0.15


def rows_of(path):
    with open(path, newline="") as file:
        return {row["name"]: row for row in csv.DictReader(file, delimiter="\t")}


class Pair:
    """One call in both runs."""

    def __init__(self, now, before):
        self.name = now["name"]
        self.seconds = float(before["ours"]), float(now["ours"])
        self.ratios = float(before["ratio"]), float(now["ratio"])
        self.is_long = max(self.seconds) > LONG_CALL
        self.limit = LONG_LIMIT if self.is_long else SHORT_LIMIT
        self.noise = max(self.limit, *(float(row["spread"]) for row in (now, before)))
        self.ratio_noise = max(self.limit, *(float(row["ratio_spread"]) for row in (now, before)))
        self.is_quiet = all(int(row["quiet_rounds"]) > 0 for row in (now, before))

    @property
    def moved(self):
        """Negative if faster, positive if slower, 0 if within the noise."""
        time, ratio = direction(self.seconds, self.noise), direction(self.ratios, self.ratio_noise)
        return time if time == ratio else 0

    def line(self):
        return "| {} | {:.4g} | {:.4g} | {} | {:.3g} | {:.3g} | {} |".format(
            self.name, 1000 * self.seconds[0], 1000 * self.seconds[1], percent(self.seconds), *self.ratios,
            percent(self.ratios))


def direction(values, noise):
    before, now = values
    if max(values) <= (1 + noise) * min(values):
        return 0
    return 1 if now > before else -1


def percent(values):
    return f"{100 * (values[1] / values[0] - 1):+.1f} %"


def agreement(pairs, limit, field):
    """How many pairs agree within the limit, and the limit within which 95 % of them agree."""
    differences = sorted(max(values) / min(values) - 1 for values in (getattr(pair, field) for pair in pairs))
    within = sum(difference <= limit for difference in differences)
    return f"{within} of {len(pairs)}; 95 % of them within {100 * differences[(len(pairs) - 1) * 95 // 100]:.1f} %"


def report(now, before):
    lines = []
    pairs = [Pair(now[name], before[name]) for name in now if name in before]
    if not pairs:
        return ["The runs have no call in common."]
    for field, what in (("processor", "processor"), ("target", "vector target")):
        kinds = [{row[field] for row in run.values()} for run in (before, now)]
        if kinds[0] != kinds[1]:
            lines.append(f"The {what} differs: {', '.join(sorted(kinds[0]))}, now {', '.join(sorted(kinds[1]))}.")
    loops = [min(float(row["reference"]) for row in run.values()) for run in (before, now)]
    if max(loops) > 1.05 * min(loops):
        lines.append(f"The reference loop took {1e6 * loops[1]:.1f} us, before {1e6 * loops[0]:.1f} us: trust the ratios.")
    unquiet = [pair for pair in pairs if not pair.is_quiet]
    if unquiet:
        lines.append(f"{len(unquiet)} of {len(pairs)} calls found no quiet moment in one of the runs.")
    for what, sign in (("slower", 1), ("faster", -1)):
        moved = [pair for pair in pairs if pair.moved == sign]
        lines += ["", f"{len(moved)} calls are {what} than before."]
        if moved:
            lines += ["", "| call | before, ms | now, ms | change | before / plain | now / plain | change |",
                      "|---|---|---|---|---|---|---|"]
            lines += [pair.line() for pair in sorted(moved, key=lambda pair: -max(pair.ratios) / min(pair.ratios))]
    for what, is_long, limit in (("above", True, LONG_LIMIT), ("below", False, SHORT_LIMIT)):
        group = [pair for pair in pairs if pair.is_long == is_long]
        if group:
            lines += ["", f"Calls {what} 1 ms that agree within {100 * limit:.0f} %:",
                      f"  time {agreement(group, limit, 'seconds')}",
                      f"  time / plain {agreement(group, limit, 'ratios')}"]
    return lines


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    print("\n".join(report(rows_of(sys.argv[1]), rows_of(sys.argv[2]))).strip("\n"))


if __name__ == "__main__":
    main()
