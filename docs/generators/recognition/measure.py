# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Measures how much of the text of drawn pages Tesseract gets wrong, before and after several programs.

    measure.py > RESULTS.tsv

The lines are series, value, program and the share of wrong characters, one for each sheet. The environment variable
SCANPAGE is the path of scanpage.
"""

import multiprocessing
import pathlib
import tempfile

import pages
import tools

PROGRAMS = {
    "Tesseract alone": lambda page, folder: page,
    "scanpage": tools.by_scanpage,
    "flattened": lambda page, folder: tools.by_scanpage(page, folder, "--background", "flatten"),
    "1 bit": lambda page, folder: tools.by_scanpage(page, folder, "--format", "pbm"),
    "unpaper": tools.by_unpaper,
    "Leptonica": tools.by_leptonica,
}
GREY = 256    # stands for no threshold

# For each series: what its value changes on a page, and the values.
SERIES = {
    "skew": (lambda v: dict(skew=v), (0, 0.5, 1, 1.5, 2, 2.5, 3, 4, 5)),
    "noise": (lambda v: dict(skew=1, noise=v), (0, 20, 40)),
    "shading": (lambda v: dict(skew=1, shading=v / 100), (0, 25, 50, 75, 85)),
    "threshold": (lambda v: dict(skew=1, noise=10, shading=0.5), (64, 96, 128, 192, GREY)),
    "lid": (lambda v: dict(skew=3, lid=v), (pages.DARK,)),
}


def drawn(series, value, number):
    """The page and its text. Sheets are turned to either side."""
    image, text = pages.sheet(number)
    settings = SERIES[series][0](value)
    settings["skew"] *= (-1) ** number
    image = pages.scanned(image, **settings)
    return pages.at_one_bit(image, value) if series == "threshold" and value != GREY else image, text


def measured(case):
    series, value, number = case
    image, text = drawn(*case)
    rows = []
    with tempfile.TemporaryDirectory(prefix="recognition-") as name:
        folder = pathlib.Path(name)
        page = folder / ("page.pbm" if image.mode == "1" else "page.pgm")
        image.save(page)
        for program, improve in PROGRAMS.items():
            results = folder / program
            results.mkdir()
            error = tools.character_error(text, tools.text_of(improve(page, results)))
            rows.append(f"{series}\t{value}\t{program}\t{error:.5f}")
    return "\n".join(rows)


def main():
    cases = [(series, value, number) for series, (_, values) in SERIES.items() for value in values
             for number in range(len(pages.SHEETS))]    # fmt: skip
    with multiprocessing.Pool() as pool:
        for rows in pool.imap(measured, cases):
            print(rows, flush=True)


if __name__ == "__main__":
    main()
