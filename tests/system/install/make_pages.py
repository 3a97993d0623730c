# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""make_pages.py COUNT FOLDER: draws small pages with lines of ink, each with a different skew.
make_pages.py --check FOLDER: fails unless each page in the folder can be read and has kept its size and resolution."""

import pathlib
import sys

import numpy as np
import opcv_dlib

WIDTH, HEIGHT, DPI = 400, 560, 50


def sheet_and_skew(number):
    rng = np.random.default_rng(number)
    sheet = np.full((HEIGHT, WIDTH), 240, np.uint8)
    for top in range(60, HEIGHT - 60, 14):
        for left in range(50, WIDTH - 70, 20):
            sheet[top : top + 7, left : left + rng.integers(4, 18)] = 30
    return sheet, rng.uniform(-3, 3)


def check(path):
    page = opcv_dlib.read_jpeg(path.read_bytes())
    assert (page.width, page.height, page.dpi_x, page.dpi_y) == (WIDTH, HEIGHT, DPI, DPI), path


folder = pathlib.Path(sys.argv[2])
if sys.argv[1] == "--check":
    for path in folder.glob("*.jpg"):
        check(path)
else:
    for number in range(int(sys.argv[1])):
        sheet, skew = sheet_and_skew(number)
        page = opcv_dlib.rotate_center(sheet, skew, border=240)
        (folder / f"{number:04}.jpg").write_bytes(opcv_dlib.compress_gray(page, 80, dpi_x=DPI))
