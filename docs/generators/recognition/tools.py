# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Programs that improve a page, the one that reads it, and how much of the text it got wrong."""

import ctypes
import ctypes.util
import os
import subprocess

import numpy as np

lept = ctypes.CDLL(ctypes.util.find_library("leptonica") or ctypes.util.find_library("lept"))    # by distribution
lept.pixRead.restype = lept.pixDeskew.restype = ctypes.c_void_p
lept.pixDeskew.argtypes = [ctypes.c_void_p, ctypes.c_int]
lept.pixWrite.argtypes = [ctypes.c_char_p, ctypes.c_void_p, ctypes.c_int]
lept.pixDestroy.argtypes = [ctypes.POINTER(ctypes.c_void_p)]
PNM = 11    # Leptonica's number of the format


def run(*command):
    done = subprocess.run([os.fspath(part) for part in command], capture_output=True, check=True,
                          env={**os.environ, "OMP_THREAD_LIMIT": "1"})    # fmt: skip
    return done.stdout.decode()


def by_scanpage(page, folder, *options):
    """The page has no resolution: it is 300 dots per inch, as scanpage assumes."""
    run(os.environ["SCANPAGE"], "--overwrite", *options, page, "-o", folder)
    return folder / (page.stem + (".pbm" if "pbm" in options else ".jpg"))


def by_unpaper(page, folder):
    result = folder / page.name
    run("unpaper", "--overwrite", "--dpi", "300", page, result)
    return result


def by_leptonica(page, folder):
    result = folder / page.name
    pix = ctypes.c_void_p(lept.pixRead(os.fspath(page).encode()))
    straight = ctypes.c_void_p(lept.pixDeskew(pix, 0))
    assert lept.pixWrite(os.fspath(result).encode(), straight, PNM) == 0
    lept.pixDestroy(pix)
    lept.pixDestroy(straight)
    return result


def text_of(page):
    """What Tesseract reads."""
    return " ".join(run("tesseract", page, "-", "--dpi", "300", "-l", "eng").split())


def character_error(text, found):
    """The least number of characters to insert, remove or replace, as a share of the text; at most 1."""
    found = np.array(list(found), "U1")
    places = np.arange(len(found) + 1)
    row = places
    for number, character in enumerate(text, 1):
        following = np.minimum(row + 1, np.concatenate(([number], row[:-1] + (found != character))))
        row = np.minimum.accumulate(following - places) + places    # insertions
    return min(1, row[-1] / len(text))
