# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Writes the section of the gallery about the recognition of text, and its chart.

    section.py ERRORS.tsv OCRMYPDF.tsv SECTION.md CHART.svg
"""

import csv
import pathlib
import sys

import matplotlib.ticker

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "bench"))
import charts    # noqa: E402

GREY = "256"    # stands for no threshold
OURS = ("scanpage", "flattened", "1 bit")
HEADINGS = {"scanpage": "`scanpage`", "flattened": "`--background flatten`", "1 bit": "`--format pbm`"}
# Title of the first column, and the unit of its values.
SERIES = {
    "skew": ("skew", "degrees"),
    "noise": ("noise, 1 degree", "levels"),
    "shading": ("shading, 1 degree", "%"),
    "threshold": ("1-bit scan, 1 degree", "is the last black level"),
    "lid": ("dark lid", ""),
}
STYLES = {"Tesseract alone": "-", "scanpage": "-", "flattened": "--", "1 bit": ":", "unpaper": "-.", "Leptonica": "--"}
COLOURS = dict(zip(STYLES, ["#c0504d", "#2b6cb0", "#2b6cb0", "#2b6cb0", "#b7791f", "#4d8f5b"]))

INTRODUCTION = """
## Recognition of text

The share of characters that Tesseract gets wrong, in percent: the edit distance to the text of the page, as a mean of three
drawn pages (prose in a serif and in a sans-serif type, a letter with numbers; A5, 300 dots per inch, noise of 5 levels).
Each page goes to Tesseract as it is, after `scanpage` (grey; grey with `--background flatten`; 1 bit), after unpaper with
its own settings, and after Leptonica's `pixDeskew`. Shading means darker to the right edge; half of the light is lost there
at 50 %. 1-bit scans are of pages with 50 % shading and noise of 10 levels. `./dev recognition` measures all of this.

![Characters that Tesseract gets wrong, over skew, noise, shading and the threshold of 1-bit scans](images/recognition.svg)

"""

OCRMYPDF = """
[OCRmyPDF](../README.md#ocrmypdf) on three such pages, skewed by 1.4, -1.4 and 3.4 degrees, one page after the other in one
thread:

| options | seconds a page | characters wrong, % |
|---|---|---|
"""


def read(path):
    """Returns series -> value -> program -> mean error in percent, in the order of the file."""
    errors = {}
    with open(path, newline="") as file:
        for series, value, program, error in csv.reader(file, delimiter="\t"):
            errors.setdefault(series, {}).setdefault(value, {}).setdefault(program, []).append(100 * float(error))
    return {series: {value: {program: sum(e) / len(e) for program, e in row.items()} for value, row in rows.items()}
            for series, rows in errors.items()}    # fmt: skip


def label(series, value):
    if series == "lid":
        return "3 degrees"
    return "grey instead" if value == GREY else f"{value} {SERIES[series][1]}".rstrip()


def table(series, rows):
    lines = [f"| {SERIES[series][0]} | " + " | ".join(HEADINGS.get(name, name) for name in STYLES) + " |",
             "|---" * (len(STYLES) + 1) + "|"]    # fmt: skip
    for value, row in rows.items():
        lines.append(f"| {label(series, value)} | " + " | ".join(f"{row[name]:.1f}" for name in STYLES) + " |")
    return "\n".join(lines) + "\n\n"


def worse(errors):
    """Where another program, or none, leaves fewer wrong characters than each way to call scanpage."""
    lines = []
    for ours in OURS:
        places = [f"{SERIES[series][0]} {label(series, value)}" for series, rows in errors.items()
                  for value, row in rows.items()
                  if round(min(e for name, e in row.items() if name not in OURS), 1) < round(row[ours], 1)]    # fmt: skip
        if places:
            lines.append(f"- {HEADINGS[ours]}: {'; '.join(places)}.\n")
    return "Where `scanpage` is not the best, because another program or none leaves fewer wrong characters:\n\n" + "".join(lines)


def draw(errors, path):
    drawing, all_axes = charts.figure(8, 5.5, 2, 2)
    for axes, series in zip(all_axes.flat, errors):
        rows = {value: row for value, row in errors[series].items() if value != GREY}
        for name in STYLES:
            axes.plot([float(value) for value in rows], [row[name] for row in rows.values()], STYLES[name], marker="o",
                      markersize=3, color=COLOURS[name], label={"flattened": "scanpage, flattened", "1 bit": "scanpage, 1 bit"}.get(name, name))
        title, unit = SERIES[series]
        axes.set_xlabel(f"{title}, {unit}" if series != "threshold" else "last black level of a 1-bit scan")
        axes.set_ylim(-4, 104)
        axes.yaxis.set_major_formatter(matplotlib.ticker.PercentFormatter())
        axes.grid(linewidth=0.5)
        for side in ("top", "right"):
            axes.spines[side].set_visible(False)
    handles, labels = all_axes.flat[0].get_legend_handles_labels()
    drawing.legend(handles, labels, loc="outside upper center", ncols=3, fontsize=9)
    charts.save(drawing, path, "Characters that Tesseract gets wrong after several programs")


def ocrmypdf_rows(path):
    with open(path, newline="") as file:
        return "".join(f"| {f'`{options}`' if options else 'none'} | {float(seconds):.1f} | {100 * float(error):.1f} |\n"
                       for options, seconds, error in csv.reader(file, delimiter="\t"))    # fmt: skip


def main(errors, ocrmypdf, document, chart):
    errors = read(errors)
    tables = "".join(table(series, rows) for series, rows in errors.items())
    pathlib.Path(document).write_text(INTRODUCTION + tables + worse(errors) + OCRMYPDF + ocrmypdf_rows(ocrmypdf))
    draw(errors, pathlib.Path(chart))


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    main(*sys.argv[1:])
