# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Limits and reports of JPEG reading."""

from __future__ import annotations

from dataclasses import dataclass


@dataclass(frozen=True)
class ReadLimits:
    """Limits for reading a JPEG stream. None leaves only the library's own limit.

    pixels: width times height.
    memory: bytes that the call may allocate at the same time; the array `out` does not count.
    scans: scans of the stream.
    bytes: length of the stream.
    """

    __module__ = "opcv_dlib"

    pixels: int | None = None
    memory: int | None = None
    scans: int | None = None
    bytes: int | None = None


@dataclass
class ReadReport:
    """What a JPEG stream contained. `read_jpeg(..., report=)` fills it in.

    width, height, channels: the page, after its EXIF orientation is applied; channels is 1 (grey) or 3.
    components, progressive, arithmetic, scans: the coding of the stream.
    orientation: the EXIF orientation, 1 to 8.
    dpi_x, dpi_y: dots per inch of the page, from JFIF, else from EXIF, else 0.
    memory: upper bound of the bytes that the call allocates at the same time.
    warnings: the decoder's warnings about the data.
    rows, rows_decoded: rows of the stored image, and how many of them the stream contained.
    end_marker_seen: whether the stream ends with its end marker.
    damaged: whether anything is missing, the decoder warned, or decoding failed.
    """

    __module__ = "opcv_dlib"

    width: int = 0
    height: int = 0
    channels: int = 0
    components: int = 0
    progressive: bool = False
    arithmetic: bool = False
    scans: int = 0
    orientation: int = 1
    dpi_x: float = 0.0
    dpi_y: float = 0.0
    memory: int = 0
    warnings: int = 0
    rows: int = 0
    rows_decoded: int = 0
    end_marker_seen: bool = False
    damaged: bool = False
