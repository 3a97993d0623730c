# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

__all__ = [
    "Error",
    "OutOfMemoryError",
    "Page",
    "ReadLimits",
    "ReadReport",
    "Skew",
    "compress_gray",
    "compress_jpeg",
    "compress_jpeg_ex",
    "compress_jpeg_with_ipp",
    "compress_rgb_411",
    "compress_rgb_444",
    "convert_16s8u",
    "convert_8u16s",
    "convolution24",
    "convolution24_mono",
    "convolve",
    "convolve_float",
    "ddct",
    "deskew",
    "deskew_about",
    "deskew_crop",
    "dilate",
    "erode",
    "expand_bits",
    "fill",
    "filter_bilateral",
    "filter_box",
    "filter_max",
    "filter_median",
    "filter_median_color",
    "filter_median_cross",
    "filter_median_weighted_center",
    "filter_min",
    "find_skew",
    "get_rotate_shift",
    "init",
    "merge_planes",
    "new_image_8u_c3",
    "new_plane_16s",
    "read_jpeg",
    "read_jpeg_info",
    "read_split_jpeg",
    "reduce_bits",
    "reduce_noise",
    "reduce_noise_rgb",
    "resize",
    "resize_color",
    "resize_sqr_pixel",
    "rgb_to_yuv",
    "rgb_to_yuv_planes",
    "rotate",
    "rotate180",
    "rotate270",
    "rotate90",
    "rotate_center",
    "rotate_on_black",
    "rotate_page",
    "sgemm",
    "split_planes",
    "threshold_lt",
    "unite_rotate",
    "yuv_planes_to_rgb",
    "yuv_to_rgb",
]

_Pixels = NDArray[np.uint8]
_Samples = NDArray[np.int16]
_Floats = NDArray[np.float32]
_Image = NDArray[Any]
_Planes = Union[_Pixels, Sequence[_Pixels]]
_Pair = tuple[int, int]
_Region = tuple[int, int, int, int]
_Shift = tuple[float, float]
_Border = Union[float, Sequence[float]]
_Buffer = Union[bytes, bytearray, memoryview, _Pixels]

class Error(Exception):
    function: str
    status: int | None
    message: str
    def __init__(self, function: str, status: int | None, message: str) -> None: ...

class OutOfMemoryError(Error, MemoryError): ...

@dataclass(frozen=True)
class ReadLimits:
    pixels: int | None = None
    memory: int | None = None
    scans: int | None = None
    bytes: int | None = None

@dataclass
class ReadReport:
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

class Page:
    def __init__(self, pixels: _Pixels, dpi_x: int = 300, dpi_y: int | None = None) -> None: ...
    @staticmethod
    def empty(
        width: int,
        height: int,
        depth: int = 8,
        dpi_x: int = 300,
        dpi_y: int | None = None,
        *,
        for_unite: bool = False,
    ) -> Page: ...
    @property
    def pixels(self) -> _Pixels: ...
    @property
    def width(self) -> int: ...
    @property
    def height(self) -> int: ...
    @property
    def depth(self) -> int: ...
    @property
    def row_bytes(self) -> int: ...
    @property
    def dpi_x(self) -> int: ...
    @dpi_x.setter
    def dpi_x(self, value: int) -> None: ...
    @property
    def dpi_y(self) -> int: ...
    @dpi_y.setter
    def dpi_y(self, value: int) -> None: ...

@dataclass(frozen=True)
class Skew:
    angle: float | None
    confidence: float
    reason: str | None

def init() -> int: ...

# Medians, minimum and maximum
def filter_median(
    src: _Image, size: int = 3, *, anchor: _Pair | None = None, region: _Region | None = None, out: _Image | None = None
) -> _Image: ...
def filter_median_cross(
    src: _Pixels, mask: int = 33, *, region: _Region | None = None, out: _Pixels | None = None
) -> _Pixels: ...
def filter_median_weighted_center(
    src: _Pixels, weight: int = 3, *, region: _Region | None = None, out: _Pixels | None = None
) -> _Pixels: ...
def filter_median_color(
    src: _Pixels, mask: int = 33, *, region: _Region | None = None, out: _Pixels | None = None
) -> _Pixels: ...
def dilate(
    src: _Pixels,
    mask: ArrayLike,
    *,
    anchor: _Pair | None = None,
    region: _Region | None = None,
    out: _Pixels | None = None,
) -> _Pixels: ...
def erode(
    src: _Pixels,
    mask: ArrayLike,
    *,
    anchor: _Pair | None = None,
    region: _Region | None = None,
    out: _Pixels | None = None,
) -> _Pixels: ...
def filter_max(
    src: _Pixels, size: _Pair, *, anchor: _Pair | None = None, region: _Region | None = None, out: _Pixels | None = None
) -> _Pixels: ...
def filter_min(
    src: _Pixels, size: _Pair, *, anchor: _Pair | None = None, region: _Region | None = None, out: _Pixels | None = None
) -> _Pixels: ...

# Convolution, noise reduction, matrices
def convolve(
    src: _Image,
    kernel: ArrayLike,
    divisor: int = 1,
    *,
    anchor: _Pair | None = None,
    region: _Region | None = None,
    out: _Image | None = None,
) -> _Image: ...
def convolve_float(
    src: _Image,
    kernel: ArrayLike,
    *,
    anchor: _Pair | None = None,
    region: _Region | None = None,
    out: _Image | None = None,
) -> _Image: ...
def filter_box(image: _Pixels, size: _Pair, *, anchor: _Pair | None = None, region: _Region | None = None) -> _Pixels: ...
def filter_bilateral(
    src: _Pixels,
    size: int,
    color_square_sigma: float,
    space_square_sigma: float,
    *,
    region: _Region | None = None,
    out: _Pixels | None = None,
) -> _Pixels: ...
def reduce_noise(src: _Pixels, mode: int = 1, strength: int = 5, *, out: _Pixels | None = None) -> _Pixels: ...
def reduce_noise_rgb(src: _Pixels, mode: int = 1, strength: int = 5, *, out: _Pixels | None = None) -> _Pixels: ...
def convolution24_mono(src: _Pixels, kernel: ArrayLike, *, out: _Pixels | None = None) -> _Pixels: ...
def convolution24(src: _Pixels, kernels: ArrayLike, *, out: _Pixels | None = None) -> _Pixels: ...
def sgemm(
    a: _Floats,
    b: _Floats,
    c: _Floats | None = None,
    *,
    alpha: float = 1.0,
    beta: float = 0.0,
    trans_a: bool = False,
    trans_b: bool = False,
) -> _Floats: ...
def ddct(table: NDArray[np.float64], *, inverse: bool = False) -> NDArray[np.float64]: ...

# Bit packing, depth, thresholds, colour, planes
def expand_bits(src: _Pixels, width: int, *, bit_offset: int = 0, out: _Pixels | None = None) -> _Pixels: ...
def reduce_bits(src: _Pixels, threshold: int = 127, *, bit_offset: int = 0, out: _Pixels | None = None) -> _Pixels: ...
def convert_8u16s(src: _Pixels, *, out: _Samples | None = None) -> _Samples: ...
def convert_16s8u(src: _Samples, *, out: _Pixels | None = None) -> _Pixels: ...
def threshold_lt(image: _Image, threshold: int, value: int) -> _Image: ...
def fill(image: _Pixels, value: int) -> _Pixels: ...
def rgb_to_yuv(src: _Pixels, *, out: _Pixels | None = None) -> _Pixels: ...
def yuv_to_rgb(src: _Pixels, *, out: _Pixels | None = None) -> _Pixels: ...
def rgb_to_yuv_planes(src: _Pixels, *, out: _Planes | None = None) -> Any: ...
def yuv_planes_to_rgb(src: _Planes, *, out: _Pixels | None = None) -> _Pixels: ...
def split_planes(src: _Pixels, *, out: _Planes | None = None) -> Any: ...
def merge_planes(src: _Planes, *, out: _Pixels | None = None) -> _Pixels: ...
def new_plane_16s(width: int, height: int) -> _Samples: ...
def new_image_8u_c3(width: int, height: int) -> _Pixels: ...

# Rotation and resize of regions
def rotate(
    src: _Image,
    angle: float,
    shift: _Shift = (0.0, 0.0),
    *,
    border: _Border = 0.0,
    size: _Pair | None = None,
    region: _Region | None = None,
    out: _Image | None = None,
) -> _Image: ...
def rotate_on_black(
    src: _Pixels,
    angle: float,
    shift: _Shift = (0.0, 0.0),
    *,
    size: _Pair | None = None,
    region: _Region | None = None,
    out: _Pixels | None = None,
) -> _Pixels: ...
def rotate_center(
    src: _Image,
    angle: float,
    center: _Shift | None = None,
    *,
    border: _Border = 0.0,
    region: _Region | None = None,
    out: _Image | None = None,
) -> _Image: ...
def get_rotate_shift(x_center: float, y_center: float, angle: float) -> _Shift: ...
def resize_sqr_pixel(
    src: _Pixels,
    x_factor: float,
    y_factor: float,
    shift: _Shift = (0.0, 0.0),
    *,
    size: _Pair | None = None,
    region: _Region | None = None,
    out: _Pixels | None = None,
) -> _Pixels: ...
def resize_color(
    src: _Pixels, size: _Pair | None = None, *, region: _Region | None = None, out: _Pixels | None = None
) -> _Pixels: ...

# Pages
def find_skew(page: Page | _Pixels) -> Skew: ...
@overload
def deskew(page: Page, angle: float, *, white_fill: bool = False) -> Page: ...
@overload
def deskew(page: _Pixels, angle: float, *, white_fill: bool = False) -> _Pixels: ...
@overload
def deskew_crop(page: Page, angle: float, crop: _Region, *, white_fill: bool = False) -> Page: ...
@overload
def deskew_crop(page: _Pixels, angle: float, crop: _Region, *, white_fill: bool = False) -> _Pixels: ...
@overload
def deskew_about(page: Page, angle: float, point: _Pair, size: _Pair, *, white_fill: bool = False) -> Page: ...
@overload
def deskew_about(
    page: _Pixels, angle: float, point: _Pair, size: _Pair, *, white_fill: bool = False
) -> _Pixels: ...
@overload
def rotate_page(page: Page, angle: float) -> Page: ...
@overload
def rotate_page(page: _Pixels, angle: float) -> _Pixels: ...
@overload
def rotate90(page: Page) -> Page: ...
@overload
def rotate90(page: _Pixels) -> _Pixels: ...
@overload
def rotate180(page: Page) -> Page: ...
@overload
def rotate180(page: _Pixels) -> _Pixels: ...
@overload
def rotate270(page: Page) -> Page: ...
@overload
def rotate270(page: _Pixels) -> _Pixels: ...
def unite_rotate(
    src: _Pixels, size: _Pair, angle: float, *, dpi_x: int = 300, dpi_y: int | None = None
) -> Page: ...
@overload
def resize(page: Page, numerator: float, denominator: float) -> Page: ...
@overload
def resize(page: _Pixels, numerator: float, denominator: float) -> _Pixels: ...

# JPEG
@overload
def read_jpeg(
    data: _Buffer,
    *,
    default_dpi: int = 300,
    limits: ReadLimits | None = None,
    report: ReadReport | None = None,
    out: None = None,
) -> Page: ...
@overload
def read_jpeg(
    data: _Buffer,
    *,
    default_dpi: int = 300,
    limits: ReadLimits | None = None,
    report: ReadReport | None = None,
    out: _Pixels,
) -> _Pixels: ...
def read_jpeg_info(data: _Buffer, *, limits: ReadLimits | None = None) -> ReadReport: ...
def read_split_jpeg(data: _Buffer, size: _Pair, *, default_dpi: int = 300) -> Page: ...
def compress_jpeg(page: Page, mode: int) -> bytes: ...
def compress_jpeg_ex(page: Page, mode: int) -> bytes: ...
def compress_jpeg_with_ipp(page: Page, mode: int) -> bytes: ...
def compress_gray(
    pixels: _Pixels, quality: int, *, dpi_x: int = 300, dpi_y: int | None = None, custom_tables: bool = True
) -> bytes: ...
def compress_rgb_444(
    pixels: _Pixels, quality: int, *, dpi_x: int = 300, dpi_y: int | None = None, custom_tables: bool = True
) -> bytes: ...
def compress_rgb_411(pixels: _Pixels, quality: int, *, dpi_x: int = 300, dpi_y: int | None = None) -> bytes: ...
