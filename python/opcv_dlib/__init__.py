"""Image primitives for document scanners, on NumPy arrays.

Images are arrays of the shape (height, width) or (height, width, channels), colour in the order red, green, blue. What
holds for all functions:

- Arrays are taken as they are, views of others too, if pixels lie next to each other and the row stride is a multiple
  of the pixel size. Anything else is refused with ValueError, never converted.
- A function that reads a neighbourhood reads it from the array, which must hold it: no border is invented. It takes the
  whole array and `region=(x, y, width, height)`, and its result is as large as the region. Without one, it filters the
  largest region whose margin lies in the array. Nothing outside an array is ever read or written.
- `out=` is the array that receives the result, and is returned; without it a new one is made. It must have the result's
  shape and type and be writable. Where it must not overlap the source, it is refused if it does.
- A call that the library refuses raises Error, with the function's name and status; shortage of memory raises
  OutOfMemoryError, which is a MemoryError as well.
- The interpreter's lock is released while the library works, so threads run in parallel. No two of them may write to
  the same array.
"""

from ._errors import Error, OutOfMemoryError
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

__all__ = [name for name in dir() if not name.startswith("_")]
