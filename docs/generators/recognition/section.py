# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Writes the section of the gallery about the recognition of text, its chart, and a sentence of the README.

    section.py ERRORS.tsv OCRMYPDF.tsv SECTION.md CHART.svg README.md
"""

import csv
import pathlib
import sys

import matplotlib.ticker

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "bench"))
import charts    # noqa: E402

GREY = "256"    # stands for no threshold
SAME = 0.15
OURS = ("scanpage", "flattened", "1 bit")
HEADINGS = {"scanpage": "`scanpage`", "flattened": "`--background flatten`", "1 bit": "`--format pbm`"}
LEGEND = {"flattened": "scanpage --background flatten", "1 bit": "scanpage --format pbm"}
# The title of a series, the unit of its values, and the label of its axis.
SERIES = {
    "skew": ("skew", "°", "skew, degrees"),
    "noise": ("noise, at 1°", "", "noise, levels; skew 1°"),
    "shading": ("shading, at 1°", " %", "light lost at the right edge, %; skew 1°"),
    "threshold": ("last black level of a 1-bit scan, at 1°", "", "last black level of a 1-bit scan; skew 1°"),
    "lid": ("skew on a dark lid", "°", ""),
}
STYLES = {"Tesseract alone": "-", "scanpage": "-", "flattened": "--", "1 bit": ":", "unpaper": "-.", "Leptonica": "--"}
COLOURS = dict(zip(STYLES, ["#c0504d", "#2b6cb0", "#2b6cb0", "#2b6cb0", "#b7791f", "#4d8f5b"]))

INTRODUCTION = """
## Recognition of text

The share of characters that Tesseract gets wrong, in percent: the edit distance to the text of the page, as a mean of three
drawn pages (prose in a serif and in a sans-serif type, a letter with numbers; A5, 300 dots per inch, noise of 5 levels).
Each page goes to Tesseract as it is, after `scanpage` (grey; grey with `--background flatten`; 1 bit), after unpaper with
its own settings, and after Leptonica's `pixDeskew`. Shading means darker to the right edge; half of the light is lost there
at 50 %. 1-bit scans are of pages with 50 % shading and noise of 10 levels. The lid of the scanner is as light as the paper,
except in the last table. `./dev recognition` measures all of this.

![Characters that Tesseract gets wrong, over skew, noise, shading and the threshold of 1-bit scans](images/recognition.svg)

"""

OCRMYPDF = """
OCRmyPDF on three such pages, skewed by 1.4, -1.4 and 3.4 degrees, one page after the other in one thread:

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
        return "3°"
    return "grey scan" if value == GREY else value + SERIES[series][1]


def table(series, rows):
    lines = [f"| {SERIES[series][0]} | " + " | ".join(HEADINGS.get(name, name) for name in STYLES) + " |",
             "|---" * (len(STYLES) + 1) + "|"]    # fmt: skip
    for value, row in rows.items():
        lines.append(f"| {label(series, value)} | " + " | ".join(f"{row[name]:.1f}" for name in STYLES) + " |")
    return "\n".join(lines) + "\n\n"


def places(errors, holds):
    """The pages of whose row something holds, in words."""
    found = []
    for series, rows in errors.items():
        labels = [label(series, value) for value, row in rows.items() if holds(row)]
        if labels:
            found.append(f"{SERIES[series][0]}: " + ", ".join(labels))
    return "; ".join(found) or "nowhere"


def limits(errors):
    """Where scanpage is not the best. The errors are compared as the tables show them."""
    shown = lambda row: {name: round(error, 1) for name, error in row.items()}
    behind = lambda row, ours: shown(row)[ours] - min(e for name, e in shown(row).items() if name not in OURS)
    ahead = lambda row, other: min(shown(row)[ours] for ours in OURS) < shown(row)[other] - SAME
    lines = ["Where `scanpage` is not the best (differences of 0.1, about two characters, do not count):\n\n"]
    for ours in OURS:
        most = max(behind(row, ours) for rows in errors.values() for row in rows.values())
        lines.append(f"- {HEADINGS[ours]} is behind another program or none: "
                     f"{places(errors, lambda row: behind(row, ours) > SAME)} (by {max(0, most):.1f} at most).\n")
    for other in ("Leptonica", "Tesseract alone"):
        lines.append(f"- {other} is as good as the best of the three: "
                     f"{places(errors, lambda row: not ahead(row, other))}.\n")    # fmt: skip
    return "".join(lines)


def draw(errors, path):
    drawing, all_axes = charts.figure(8, 5.5, 2, 2)
    for axes, series in zip(all_axes.flat, errors):
        rows = {value: row for value, row in errors[series].items() if value != GREY}
        for name in STYLES:
            axes.plot([float(value) for value in rows], [row[name] for row in rows.values()], STYLES[name], marker="o",
                      markersize=3, linewidth=1.5, color=COLOURS[name], label=LEGEND.get(name, name))
        axes.set_xlabel(SERIES[series][2])
        axes.set_ylim(-4, 104)
        axes.yaxis.set_major_formatter(matplotlib.ticker.PercentFormatter())
        axes.grid(linewidth=0.5)
        for side in ("top", "right"):
            axes.spines[side].set_visible(False)
    drawing.get_layout_engine().set(rect=(0, 0, 1, 0.9))
    drawing.legend(*all_axes.flat[0].get_legend_handles_labels(), loc="upper center", ncols=3, fontsize=9)
    charts.save(drawing, path, "Characters that Tesseract gets wrong after several programs")


def ocrmypdf_rows(path):
    with open(path, newline="") as file:
        return "".join(f"| {f'`{options}`' if options else 'none'} | {float(seconds):.1f} | {100 * float(error):.1f} |\n"
                       for options, seconds, error in csv.reader(file, delimiter="\t"))    # fmt: skip


def sentence(errors):
    skew, shading = errors["skew"]["5"], errors["shading"]["75"]
    return (f"On drawn pages that are skewed by 5 degrees, Tesseract gets {skew['Tesseract alone']:.0f} % of the "
            f"characters wrong, and {skew['scanpage']:.1f} % after `scanpage`;\non pages that lose 75 % of the light "
            f"towards one edge {shading['Tesseract alone']:.0f} %, and {shading['1 bit']:.1f} % after "
            "`scanpage --format pbm`.\n[The gallery](docs/gallery.md#recognition-of-text) compares more.\n")


def main(errors, ocrmypdf, document, chart, readme):
    errors = read(errors)
    tables = "".join(table(series, rows) for series, rows in errors.items())
    pathlib.Path(document).write_text(INTRODUCTION + tables + limits(errors) + OCRMYPDF + ocrmypdf_rows(ocrmypdf))
    draw(errors, pathlib.Path(chart))
    charts.replace_between(pathlib.Path(readme), "recognition", sentence(errors))


if __name__ == "__main__":
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    main(*sys.argv[1:])
