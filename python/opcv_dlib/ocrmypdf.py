# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""A plug-in for OCRmyPDF: straightens and cleans each page before its text is recognised.

    ocrmypdf --plugin opcv_dlib.ocrmypdf scan.pdf readable.pdf

The pages of the result look as recognition saw them. Pages that OCRmyPDF leaves out (--pages, --skip-text) stay as
they are. A page without a clear skew is not turned.
"""
import logging

import numpy as np
import ocrmypdf
from ocrmypdf.exceptions import BadArgsError
from PIL import Image  # type: ignore[import]

import opcv_dlib

log = logging.getLogger(__name__)

_LEAST_TURN = 0.05    # degrees; less moves no pixel of a line by its own height


class _Settings:
    """Set before OCRmyPDF starts its workers, which inherit it."""

    straighten = True
    clean = True
    one_bit = False


@ocrmypdf.hookimpl
def add_options(parser):
    group = parser.add_argument_group("OPCV_dlib", "Straightening and cleaning of scanned pages")
    group.add_argument("--opcv-keep-skew", action="store_true", help="do not straighten pages")
    group.add_argument("--opcv-keep-specks", action="store_true", help="do not remove specks")
    group.add_argument("--opcv-1-bit", dest="opcv_one_bit", action="store_true",
                       help="reduce pages to black and white")


@ocrmypdf.hookimpl
def check_options(options):
    if options.redo_ocr:
        raise BadArgsError("--redo-ocr keeps the pages as they are: it cannot be used with this plug-in")
    if options.deskew and not options.opcv_keep_skew:
        raise BadArgsError("This plug-in straightens pages: use --opcv-keep-skew to leave that to --deskew")
    options.lossless_reconstruction = False    # pages are replaced by what is made of them
    _Settings.straighten = not options.opcv_keep_skew
    _Settings.clean = not options.opcv_keep_specks
    _Settings.one_bit = options.opcv_one_bit


@ocrmypdf.hookimpl(hookwrapper=True)
def rasterize_pdf_page(output_file, raster_device):
    """Works on what the built-in plug-in has drawn, but not on the small preview for its orientation."""
    yield
    if raster_device.startswith("png"):
        improve(output_file)


@ocrmypdf.hookimpl
def filter_page_image(image_filename):
    """OCRmyPDF makes a JPEG of a page that was one before. A page of black and white stays so."""
    if not _Settings.one_bit or image_filename.suffix == ".png":
        return image_filename
    path = image_filename.with_suffix(".png")
    with Image.open(image_filename) as image:
        image.convert("L").point([0] * 128 + [255] * 128, "1").save(path, dpi=image.info["dpi"])
    return path


def improve(path):
    """Straightens and cleans the page in this PNG file. Its size and resolution stay."""
    with Image.open(path) as image:
        dpi, was_one_bit = image.info.get("dpi"), image.mode == "1"
        pixels = np.asarray(image.convert("L" if image.mode in ("1", "L") else "RGB"))
    if _Settings.straighten:
        pixels = straightened(pixels)
    if _Settings.clean:
        pixels = without_specks(pixels)
    image = black_and_white(pixels) if _Settings.one_bit or was_one_bit else Image.fromarray(pixels)
    image.save(path, compress_level=4, **({"dpi": dpi} if dpi else {}))    # as small as by 6, in a third of the time


def straightened(pixels):
    skew = opcv_dlib.find_skew(pixels)
    if skew.angle is None or abs(skew.angle) < _LEAST_TURN:
        log.debug("not turned: %s", skew.reason or "straight")
        return pixels
    log.debug("turned by %.2f degrees", skew.angle)
    return opcv_dlib.deskew(pixels, skew.angle, white_fill=True)


def without_specks(pixels):
    """The pixels at the edges have no whole window and stay."""
    height, width = pixels.shape[:2]
    if min(height, width) < 3:
        return pixels
    clean = pixels.copy()
    inner = (1, 1, width - 2, height - 2)
    if pixels.ndim == 3:
        opcv_dlib.filter_median_color(pixels, region=inner, out=clean[1:-1, 1:-1])
    else:
        opcv_dlib.filter_median_weighted_center(pixels, 5, region=inner, out=clean[1:-1, 1:-1])
    return clean


def black_and_white(pixels):
    grey = np.asarray(Image.fromarray(pixels).convert("L"))
    bits = opcv_dlib.reduce_bits(np.ascontiguousarray(grey), otsu_threshold(grey))
    return Image.frombytes("1", (grey.shape[1], grey.shape[0]), bits.tobytes())


def otsu_threshold(grey):
    """The largest grey value that is black, so that black and white vary least within themselves."""
    counts = np.bincount(grey.ravel(), minlength=256).astype(float)
    black = np.cumsum(counts)
    white = black[-1] - black
    darkness = np.cumsum(counts * np.arange(256))
    with np.errstate(divide="ignore", invalid="ignore"):
        between = (darkness[-1] * black - darkness * black[-1]) ** 2 / (black * white)
    return int(np.argmax(np.nan_to_num(between, posinf=0)))
