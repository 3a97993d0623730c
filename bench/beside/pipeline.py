#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The page pipeline with Pillow: pipeline.py idle|jpeg|bits GREY.jpg prints the seconds of the second run, and the steps."""
import io
import pathlib
import sys
import time

from PIL import Image, ImageFilter

DEGREES, THRESHOLD, QUALITY = 2.3, 128, 70
BLACK_OR_WHITE = [0] * THRESHOLD + [255] * (256 - THRESHOLD)


def straightened(stream):
    return Image.open(io.BytesIO(stream)).rotate(DEGREES, Image.BILINEAR, fillcolor=255)


def to_jpeg(stream):
    straightened(stream).filter(ImageFilter.MedianFilter(3)).save(io.BytesIO(), "JPEG", quality=QUALITY)


def to_bits(stream):
    straightened(stream).point(BLACK_OR_WHITE, "1").save(io.BytesIO(), "PPM")


def nothing(stream):
    pass


WORK = {"idle": (nothing, ""),
        "jpeg": (to_jpeg, "open, rotate, MedianFilter 3x3 (no weighted one), save"),
        "bits": (to_bits, "open, rotate, point, save to PBM")}

work, steps = WORK[sys.argv[1]]
page = pathlib.Path(sys.argv[2]).read_bytes()
work(page)
start = time.monotonic()
work(page)
print(f"{time.monotonic() - start:.9f}\t{steps}")
