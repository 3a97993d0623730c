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
    print(f"{operation}\tPillow\t{statistics.median(times[1:]):.2f}")    # the first round warms up


def read(stream):
    image = Image.open(io.BytesIO(stream))
    image.load()
    return image


streams = [pathlib.Path(name).read_bytes() for name in sys.argv[1:3]]
grey, colour = (read(stream) for stream in streams)
print("Pillow", PIL.__version__, file=sys.stderr)
measure("read JPEG, grey", lambda: read(streams[0]))
measure("read JPEG, colour", lambda: read(streams[1]))
sharpen = ImageFilter.Kernel((3, 3), [-1, -1, -1, -1, 16, -1, -1, -1, -1], 8)
three_quarters = (round(grey.width * 3 / 4), round(grey.height * 3 / 4))
black_or_white = [0] * 128 + [255] * 128
measure("write JPEG, grey", lambda: grey.save(io.BytesIO(), "JPEG", quality=70))
measure("median 3 x 3, grey", lambda: grey.filter(ImageFilter.MedianFilter(3)))
measure("sharpen 3 x 3, grey", lambda: grey.filter(sharpen))
measure("deskew by 2.3 degrees, grey", lambda: grey.rotate(DEGREES, Image.BILINEAR, fillcolor=255))
measure("deskew by 2.3 degrees, colour", lambda: colour.rotate(DEGREES, Image.BILINEAR, fillcolor=(255, 255, 255)))
measure("quarter turn, colour", lambda: colour.transpose(Image.ROTATE_270))
measure("scale to 3/4, grey", lambda: grey.resize(three_quarters, Image.BILINEAR, reducing_gap=None))
measure("reduce to 1 bit, grey", lambda: grey.point(black_or_white, "1"))
