# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Times the operations of beside.cpp with Pillow: beside.py GREY.jpg COLOUR.jpg"""
import io
import pathlib
import statistics
import sys
import time

import PIL
from PIL import Image, ImageFilter

ROUNDS = 9
DEGREES = 2.3


def measure(operation, run):
    times = []
    for _ in range(ROUNDS + 1):
        start = time.process_time()
        run()
        times.append((time.process_time() - start) * 1000)
    print(f"{operation:24s} {'Pillow':10s} {statistics.median(times[1:]):8.1f}")    # the first round warms up


def read(stream):
    image = Image.open(io.BytesIO(stream))
    image.load()
    return image


streams = [pathlib.Path(name).read_bytes() for name in sys.argv[1:3]]
grey, colour = (read(stream) for stream in streams)
print("Pillow", PIL.__version__)
measure("read JPEG, grey", lambda: read(streams[0]))
measure("read JPEG, colour", lambda: read(streams[1]))
measure("median 3 x 3, grey", lambda: grey.filter(ImageFilter.MedianFilter(3)))
measure("deskew 2.3, grey", lambda: grey.rotate(DEGREES, Image.BILINEAR, fillcolor=255))
measure("deskew 2.3, colour", lambda: colour.rotate(DEGREES, Image.BILINEAR, fillcolor=(255, 255, 255)))
