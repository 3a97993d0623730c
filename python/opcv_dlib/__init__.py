# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Image primitives for document scanners, on NumPy arrays.

Images are arrays of the shape (height, width) or (height, width, channels); colour is in the order red, green, blue.
The following holds for all functions:

- Arrays and views are accepted without a copy if pixels are contiguous within a row and the row stride is a multiple of
  the pixel size. Nothing is converted: arrays of another dtype and objects that are not arrays are rejected with
  TypeError, other shapes and strides with ValueError. Both say what the argument is and what it must be.
- Functions of pages take a Page or an array of uint8 and return the same kind. A Page also has a resolution.
- A function that uses neighbouring pixels reads them from the array, so the array must contain a margin around the
  region. Pass the whole array and `region=(x, y, width, height)`; the result has the size of the region. Without
  `region`, the function filters the largest region whose margin lies in the array. Nothing outside an array is read or
  written.
- `out=` is the array that receives the result; it is also returned. Without it, a new array is created. It must be
  writable and have the shape and type of the result. If it must not overlap the source but does, the call is rejected.
- If the library rejects a call or fails, Error is raised with the name and status of the function. If it is out of
  memory, OutOfMemoryError is raised, which is also a MemoryError.
- The interpreter's lock (GIL) is released during a call, so threads run in parallel. No two of them may write to the
  same array.

The examples of the functions begin with `import numpy as np` and `import opcv_dlib`.
"""

from ._errors import Error, OutOfMemoryError
from ._finding import Skew, find_skew
from ._native import (
    Page,
    compress_gray,
    compress_jpeg,
    compress_jpeg_ex,
    compress_jpeg_with_ipp,
    compress_rgb_411,
    compress_rgb_444,
    convert_16s8u,
    convert_8u16s,
    convolution24,
    convolution24_mono,
    convolve,
    convolve_float,
    ddct,
    deskew,
    deskew_about,
    deskew_crop,
    dilate,
    erode,
    expand_bits,
    fill,
    filter_bilateral,
    filter_box,
    filter_max,
    filter_median,
    filter_median_color,
    filter_median_cross,
    filter_median_weighted_center,
    filter_min,
    get_rotate_shift,
    init,
    merge_planes,
    new_image_8u_c3,
    new_plane_16s,
    read_jpeg,
    read_jpeg_info,
    read_split_jpeg,
    reduce_bits,
    reduce_noise,
    reduce_noise_rgb,
    resize,
    resize_color,
    resize_sqr_pixel,
    rgb_to_yuv,
    rgb_to_yuv_planes,
    rotate,
    rotate180,
    rotate270,
    rotate90,
    rotate_center,
    rotate_on_black,
    rotate_page,
    sgemm,
    split_planes,
    threshold_lt,
    unite_rotate,
    yuv_planes_to_rgb,
    yuv_to_rgb,
)
from ._reading import ReadLimits, ReadReport

__all__ = [name for name in dir() if not name.startswith("_")]
