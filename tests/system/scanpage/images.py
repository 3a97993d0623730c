# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Images in files, drawn and read by Leptonica, which scanpage is linked with."""

import ctypes
import ctypes.util
import os

lept = ctypes.CDLL(ctypes.util.find_library("leptonica") or ctypes.util.find_library("lept"))    # by distribution
lept.pixRead.restype = ctypes.c_void_p
lept.pixRead.argtypes = [ctypes.c_char_p]
lept.pixGetPixel.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int, ctypes.POINTER(ctypes.c_uint32)]
for name in ("pixGetWidth", "pixGetHeight", "pixGetDepth"):
    getattr(lept, name).argtypes = [ctypes.c_void_p]
for name in ("pixCreate", "bmfCreate"):
    getattr(lept, name).restype = ctypes.c_void_p
lept.bmfCreate.argtypes = [ctypes.c_char_p, ctypes.c_int]
lept.pixSetTextline.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32, ctypes.c_int,
                                ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p]    # fmt: skip


class Image:
    """The pixels of a file: levels of grey, triples of colour, or bits of which a set one is black."""

    def __init__(self, file):
        self.pix = lept.pixRead(os.fspath(file).encode())
        assert self.pix, file
        self.width, self.height = lept.pixGetWidth(self.pix), lept.pixGetHeight(self.pix)
        self.depth = lept.pixGetDepth(self.pix)

    def at(self, x, y):
        value = ctypes.c_uint32()
        assert lept.pixGetPixel(self.pix, x, y, ctypes.byref(value)) == 0
        v = value.value
        return (v >> 24, v >> 16 & 255, v >> 8 & 255) if self.depth == 32 else v

    def rows(self):
        return [[self.at(x, y) for x in range(self.width)] for y in range(self.height)]


def ppm(file, rows):
    """A drawing, as grey or colour by its pixels."""
    colour = isinstance(rows[0][0], tuple)
    data = bytes(v for row in rows for p in row for v in (p if colour else (p,)))
    file.write_bytes(b"P%d\n%d %d\n255\n" % (6 if colour else 5, len(rows[0]), len(rows)) + data)


def jpeg_of(file, rows, progressive=False):
    """The drawing as a JPEG file of the best quality, without subsampling."""
    drawn = file.with_suffix(".pnm")
    ppm(drawn, rows)
    pix = lept.pixRead(os.fspath(drawn).encode())
    lept.pixSetChromaSampling(ctypes.c_void_p(pix), 0)
    assert lept.pixWriteJpeg(os.fspath(file).encode(), ctypes.c_void_p(pix), 100, int(progressive)) == 0
    return file


def written(text):
    """The pixels of a line of text in the smallest letters, from the first column and row that have some."""
    width, height = 12 * len(text), 30
    pix = lept.pixCreate(width, height, 1)
    assert lept.pixSetTextline(pix, lept.bmfCreate(None, 4), text.encode(), 1, 2, 20, None, None) == 0
    value = ctypes.c_uint32()
    ink = []
    for y in range(height):
        for x in range(width):
            assert lept.pixGetPixel(pix, x, y, ctypes.byref(value)) == 0
            if value.value:
                ink.append((x, y))
    left, top = min(x for x, _ in ink), min(y for _, y in ink)
    return {(x - left, y - top) for x, y in ink}
