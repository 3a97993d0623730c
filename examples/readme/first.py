# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Straightens a JPEG page by 1.5 degrees and reduces it to one bit per pixel.
import numpy as np
import opcv_dlib

grey = np.full((64, 64), 200, np.uint8)
page = opcv_dlib.read_jpeg(opcv_dlib.compress_gray(grey, 80, dpi_x=200))
straight = opcv_dlib.deskew(page, 1.5)
bits = opcv_dlib.reduce_bits(straight.pixels, 127)
stream = opcv_dlib.compress_jpeg(straight, 389)
assert straight.dpi_x == 200 and bits.shape == (64, 8) and stream[:3] == b"\xff\xd8\xff"
