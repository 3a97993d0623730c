#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Draws charts of benchmark results, for light and dark screens, and writes the table of the README.

    charts.py beside RESULTS.tsv README.md CHART.svg    operations of several libraries
    charts.py performance RESULTS_FOLDER IMAGES         the charts of docs/performance.md

The first results have lines of operation, library and milliseconds.
"""
import csv
import io
import pathlib
import re
import sys

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot    # noqa: E402  (the backend comes first)

PAGE = "2480x3508"
LIBRARIES = ["OPCV_dlib", "OpenCV", "Leptonica", "libvips", "Pillow"]
# Colours that Matplotlib writes, and what they are on a light and on a dark screen.
INK, PAPER, GRID = "#010101", "#fefefe", "#c0c0c1"
SCREENS = {INK: ("#222", "#ddd"), PAPER: ("#fff", "#16181c"), GRID: ("#ccc", "#444")}
COLOURS = ["#2b6cb0", "#7d8b99", "#b7791f", "#4d8f5b", "#a05195"]


def figure(width, height, rows=1, columns=1):
    pyplot.rcParams.update({
        "svg.fonttype": "none", "svg.hashsalt": "OPCV_dlib", "font.family": "sans-serif", "font.size": 10,
        "text.color": INK, "axes.labelcolor": INK, "axes.edgecolor": GRID, "xtick.color": INK, "ytick.color": INK,
        "figure.facecolor": PAPER, "axes.facecolor": PAPER, "legend.frameon": False, "grid.color": GRID})
    return pyplot.subplots(rows, columns, figsize=(width, height), layout="constrained", squeeze=rows * columns == 1)


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


def plain_frame(axes, horizontal=True):
    axes.grid(axis="x" if horizontal else "y", linewidth=0.5)
    axes.set_axisbelow(True)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def rows_of(path):
    with open(path, newline="") as file:
        return list(csv.DictReader(file, delimiter="\t"))


def draw_pipeline(rows, path):
    """Time and memory of the page pipeline, one bar for each library."""
    works = list(dict.fromkeys(row["work"] for row in rows))
    drawing, axes = figure(8, 1.7 * len(works) + 0.4, len(works), 2)
    for line, work in enumerate(works):
        of_work = [row for row in rows if row["work"] == work]
        for column, (field, unit) in enumerate((("ms", "ms"), ("peak_mb", "MB at the peak"))):
            chart = axes[line, column]
            values = [float(row[field]) for row in of_work]
            colours = [COLOURS[0]] + [COLOURS[1]] * (len(values) - 1)
            bars = chart.barh([row["tool"] for row in of_work], values, 0.7, color=colours)
            chart.bar_label(bars, [f"{value:,.0f}" for value in values], padding=2, fontsize=8)
            chart.set_xlim(0, max(values) * 1.15)
            chart.invert_yaxis()
            chart.set_title(f"{work}: {unit}", fontsize=10)
            chart.tick_params(axis="y", length=0)
            plain_frame(chart)
    save(drawing, path, "The page pipeline: time and peak memory of five libraries")


def first_calls(rows):
    """Heading -> its rows of the first call, of the headings whose plain way is OpenCV and that work on pages."""
    by_heading = {}
    for row in rows:
        by_heading.setdefault(row["heading"], []).append(row)
    first = {}
    for heading, of_heading in by_heading.items():
        calls = [row for row in of_heading if row["plain_name"] == "OpenCV"]
        if calls and not heading.startswith("Matrix"):
            key = calls[0]["function"], calls[0]["variant"]
            first[heading] = [row for row in calls if (row["function"], row["variant"]) == key]
    return first


def label(row):
    return f"{row['function'].split('_ippi')[-1]}\n{row['variant']}".strip()


def draw_sizes(rows, path):
    """Nanoseconds per pixel against the size of the image, a panel for the first call of each family."""
    calls = first_calls(rows)
    columns = 3
    lines = -(-len(calls) // columns)
    drawing, axes = figure(8, 2.1 * lines + 0.3, lines, columns)
    panels = list(axes.flat)
    for panel in panels[len(calls):]:
        panel.set_visible(False)
    for panel, of_call in zip(panels, calls.values()):
        points = []
        for row in of_call:
            width, height = map(int, row["size"].split("x"))
            pixels = width * height
            points.append((pixels / 1e6, float(row["ours"]) / pixels * 1e9, float(row["plain"]) / pixels * 1e9))
        points.sort()
        size, ours, plain = zip(*points)
        panel.plot(size, ours, "o-", color=COLOURS[0], label=LIBRARIES[0], markersize=4)
        panel.plot(size, plain, "s--", color=COLOURS[1], label="OpenCV", markersize=4)
        panel.set_xscale("log")
        panel.set_ylim(0)
        panel.set_xticks([0.1, 1, 10], labels=["0.1", "1", "10"])
        panel.minorticks_off()
        panel.set_title(label(of_call[0]), fontsize=8)
        plain_frame(panel, horizontal=False)
    drawing.supxlabel("megapixels", fontsize=9)
    drawing.supylabel("ns per pixel", fontsize=9)
    panels[0].legend(fontsize=8)
    save(drawing, path, "Time per pixel against the size of the page")


def draw_threads(rows, path):
    """One and several threads, ours and OpenCV's, for the first call of each family on the page."""
    page = [row for row in rows if row["size"] == PAGE]
    calls = first_calls(page)
    several = max(int(row["threads"]) for row in page)
    drawing, axes = figure(8, 0.55 * len(calls) + 1)

    def seconds(call, field, threads):
        return next(float(row[field]) for row in call if int(row["threads"]) == threads)

    variants = [(LIBRARIES[0], "ours", 1, COLOURS[0]), (LIBRARIES[0], "ours", several, "#7fb0e0"),
                ("OpenCV", "plain", several, COLOURS[1])]
    for index, (name, field, threads, colour) in enumerate(variants):
        shares = [seconds(call, field, threads) / seconds(call, "plain", 1) for call in calls.values()]
        bars = axes.barh([place + (index - 1) * 0.27 for place in range(len(calls))], shares, 0.27, color=colour,
                         label=f"{name}, {threads} thread{'s' if threads > 1 else ''}")
        axes.bar_label(bars, [f"{share:.2f}" for share in shares], padding=2, fontsize=7)
    axes.axvline(1, color=INK, linewidth=0.8)
    axes.set_yticks(range(len(calls)), labels=[label(call[0]) for call in calls.values()], fontsize=8)
    axes.invert_yaxis()
    axes.set_xlabel("time for a page of 2480 x 3508, as a share of OpenCV's in one thread (shorter is better)")
    plain_frame(axes)
    axes.tick_params(axis="y", length=0)
    axes.legend(ncols=len(variants), loc="lower center", bbox_to_anchor=(0.5, 1), fontsize=8)
    save(drawing, path, "One thread and several threads")


def beside(results, document, chart):
    times = read(results)
    replace_between(pathlib.Path(document), "beside", table(times))
    draw_beside(times, pathlib.Path(chart))


def performance(folder, images):
    folder, images = pathlib.Path(folder), pathlib.Path(images)
    draw_pipeline(rows_of(folder / "pipeline.tsv"), images / "pipeline.svg")
    draw_sizes(rows_of(folder / "sizes.tsv"), images / "page_sizes.svg")
    draw_threads(rows_of(folder / "calls.tsv"), images / "threads.svg")


if __name__ == "__main__":
    commands = {"beside": (beside, 3), "performance": (performance, 2)}
    command, count = commands.get(sys.argv[1] if len(sys.argv) > 1 else "", (None, 0))
    if not command or len(sys.argv) != count + 2:
        sys.exit(__doc__)
    command(*sys.argv[2:])
