#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Draws bar charts of benchmark results, for light and dark screens, and writes the table of the README.

    charts.py beside RESULTS.tsv README.md CHART.svg    operations of several libraries

The results have lines of operation, library and milliseconds.
"""
import csv
import io
import pathlib
import re
import sys

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot    # noqa: E402  (the backend comes first)

LIBRARIES = ["OPCV_dlib", "OpenCV", "Leptonica", "libvips", "Pillow"]
# Colours that Matplotlib writes, and what they are on a light and on a dark screen.
INK, PAPER, GRID = "#010101", "#fefefe", "#c0c0c1"
SCREENS = {INK: ("#222", "#ddd"), PAPER: ("#fff", "#16181c"), GRID: ("#ccc", "#444")}
COLOURS = ["#2b6cb0", "#7d8b99", "#b7791f", "#4d8f5b", "#a05195"]


def figure(width, height):
    pyplot.rcParams.update({
        "svg.fonttype": "none", "svg.hashsalt": "OPCV_dlib", "font.family": "sans-serif", "font.size": 10,
        "text.color": INK, "axes.labelcolor": INK, "axes.edgecolor": GRID, "xtick.color": INK, "ytick.color": INK,
        "figure.facecolor": PAPER, "axes.facecolor": PAPER, "legend.frameon": False, "grid.color": GRID})
    return pyplot.subplots(figsize=(width, height), layout="constrained")


def save(drawing, path, title):
    """Writes an SVG whose colours follow the screen. It has no date, so that the same results give the same file."""
    buffer = io.StringIO()
    drawing.savefig(buffer, format="svg", metadata={"Date": None})
    text = buffer.getvalue()
    text = text[text.index("<svg"):]
    for number, colour in enumerate(SCREENS):
        text = text.replace(colour, f"var(--c{number})")
    light, dark = ("".join(f"--c{number}:{pair[screen]};" for number, pair in enumerate(SCREENS.values()))
                   for screen in (0, 1))
    style = (f"<title>{title}</title>\n <style>svg{{{light}}}"
             f"@media (prefers-color-scheme: dark){{svg{{{dark}}}}}</style>\n")
    at = text.index(">") + 1
    path.write_text(text[:at] + "\n " + style + text[at:].lstrip("\n"))


def read(path):
    """Returns operation -> library -> milliseconds, in the order of the file."""
    times = {}
    with open(path, newline="") as file:
        for operation, library, milliseconds in csv.reader(file, delimiter="\t"):
            times.setdefault(operation, {})[library] = float(milliseconds)
    return times


def replace_between(document, name, text):
    """Replaces what stands between the two markers of this name."""
    pattern = re.compile(f"(<!-- {name} -->\n).*?(<!-- /{name} -->)", re.DOTALL)
    new, count = pattern.subn(lambda match: match.group(1) + text + match.group(2), document.read_text())
    if count != 1:
        sys.exit(f"{document} has no place for {name}")
    document.write_text(new)


def table(times):
    lines = ["| | " + " | ".join(LIBRARIES) + " |", "|---|" + "---|" * len(LIBRARIES)]
    for operation, row in times.items():
        cells = [f"{row[library]:.1f}" if library in row else "" for library in LIBRARIES]
        lines.append(f"| {operation} | " + " | ".join(cells) + " |")
    return "\n".join(lines) + "\n"


def draw_beside(times, path):
    """Groups of bars, one for each operation: how many times the time of this library."""
    drawing, axes = figure(8, 0.28 * len(times) * len(LIBRARIES) / 2 + 1.2)
    height = 0.8 / len(LIBRARIES)
    for index, library in enumerate(LIBRARIES):
        rows = [(place, row[library] / row[LIBRARIES[0]]) for place, row in enumerate(times.values()) if library in row]
        bars = axes.barh([place + (index - 2) * height for place, _ in rows], [ratio for _, ratio in rows], height,
                         color=COLOURS[index], label=library)
        axes.bar_label(bars, [f"{ratio:.1f}" for _, ratio in rows], padding=2, fontsize=7)
    axes.set_xscale("log")
    axes.set_xticks([1, 2, 5, 10, 20, 50, 100, 200, 500], labels=["1", "2", "5", "10", "20", "50", "100", "200", "500"])
    axes.minorticks_off()
    axes.set_yticks(range(len(times)), labels=list(times))
    axes.invert_yaxis()
    axes.set_xlabel(f"processor time, as a multiple of {LIBRARIES[0]}'s (shorter is better)")
    axes.grid(axis="x", linewidth=0.5)
    axes.set_axisbelow(True)
    for side in ("top", "right", "left"):
        axes.spines[side].set_visible(False)
    axes.tick_params(axis="y", length=0)
    axes.legend(ncols=len(LIBRARIES), loc="lower center", bbox_to_anchor=(0.5, 1), fontsize=9)
    save(drawing, path, "Processor time of ten operations by five libraries")


def main(what, results, document, chart):
    if what != "beside":
        sys.exit(__doc__)
    times = read(results)
    replace_between(pathlib.Path(document), "beside", table(times))
    draw_beside(times, pathlib.Path(chart))


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    main(*sys.argv[1:])
