# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The families of functions: one manual page and one topic of the site each."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Family:
    page: str        # the manual page
    about: str       # completes "OPCV_dlib: ..."
    picture: str     # in docs/images
    picture_text: str
    groups: tuple    # of the header, in order


FAMILIES = [
    Family("opcv_records", "status codes, records, planes and initialisation", "record.svg",
           "A record: rows of pixels, each followed by bytes that fill it up to a multiple of four", (
               "Status codes", "Value types", "Records", "Initialisation", "Image records", "Planes")),
    Family("opcv_rank", "medians, dilation, erosion, maximum and minimum", "cross_median.png",
           "A page with specks, and the same page after two medians", (
               "Square medians", "Square median, any pixel type", "Medians with a fixed window",
               "Medians without checks", "Dilation, erosion, maximum and minimum")),
    Family("opcv_geometry", "rotation, deskew, quarter turns and resize", "deskew.png",
           "A skewed page and the same page straightened", (
               "Rotation of regions", "Rotation of regions, any pixel type", "Deskew and rotation of pages", "Resize")),
    Family("opcv_jpeg", "JPEG compression and reading", "jpeg_modes.png",
           "Letters of a page, compressed in several modes", (
               "JPEG compression", "JPEG compression of buffers", "JPEG reading")),
    Family("opcv_pixel", "bit packing, depth, thresholds, colour space and planes", "one_bit.png",
           "A grey page and the same page with one bit per pixel", (
               "Bit packing", "Bit packing without checks", "Depth conversion", "Thresholds and fill",
               "Thresholds without checks", "Colour space", "Plane layout")),
    Family("opcv_filters", "convolution, noise reduction, matrix product and cosine transform", "noise_reduction.png",
           "A noisy page, and the page after noise reduction at three strengths", (
               "Convolution and box filter", "Convolution of any pixel type", "Noise reduction",
               "Matrix product and cosine transform")),
    Family("opcv_read", "JPEG reading with limits, cancellation and a report", "rows.svg",
           "A decoder that hands over the rows of a page in blocks, and stops when it is told to", (
               "JPEG reading with limits",)),
    Family("opcv_skew", "skew of a page", "deskew.png", "A skewed page and the same page straightened", (
        "Skew of a page",)),
]
