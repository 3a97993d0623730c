# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""A user's program, which mypy --strict checks; it is not run. A line that must be an error says so."""

from typing import assert_type

import numpy as np
import opcv_dlib
from numpy.typing import NDArray

Pixels = NDArray[np.uint8]

array: Pixels = np.zeros((3508, 2480), np.uint8)
page = opcv_dlib.Page(array, 200)

assert_type(opcv_dlib.deskew(page, 1.5), opcv_dlib.Page)
assert_type(opcv_dlib.deskew(array, 1.5, white_fill=True), Pixels)
assert_type(opcv_dlib.rotate90(array), Pixels)
assert_type(opcv_dlib.read_jpeg(b""), opcv_dlib.Page)
assert_type(opcv_dlib.read_jpeg(b"", out=array), Pixels)
assert_type(opcv_dlib.reduce_bits(page.pixels, 127), Pixels)

opcv_dlib.deskew([1], 1.5)    # type: ignore[call-overload]
floats = np.zeros((3508, 2480), np.float64)
opcv_dlib.filter_median_cross(floats)    # type: ignore[arg-type]
opcv_dlib.fill(array, "white")    # type: ignore[arg-type]
