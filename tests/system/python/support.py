# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Images for the tests: random ones, views with awkward strides, and memory that ends where reading must end."""

import ctypes
import mmap

import numpy as np

libc = ctypes.CDLL(None, use_errno=True)
libc.mprotect.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int]


def image(rng, height, width, channels=1, dtype=np.uint8):
    shape = (height, width) if channels == 1 else (height, width, channels)
    info = np.iinfo(dtype)
    return rng.integers(info.min, info.max, size=shape, dtype=dtype, endpoint=True)


def padded(array, columns=5, rows=2):
    """The same image as a view into a larger array, all around which lie other pixels."""
    shape = (array.shape[0] + 2 * rows, array.shape[1] + 2 * columns) + array.shape[2:]
    whole = np.full(shape, 77, array.dtype)
    view = whole[rows:-rows, columns:-columns]
    view[...] = array
    return view


class Fence:
    """A copy of an array between two pages that can be neither read nor written, flush with one of them."""

    def __init__(self, array, flush):
        page = mmap.PAGESIZE
        room = -(-array.nbytes // page) * page
        self.memory = mmap.mmap(-1, room + 2 * page)
        base = ctypes.addressof(ctypes.c_char.from_buffer(self.memory))
        start = page if flush == "head" else page + room - array.nbytes
        flat = np.frombuffer(self.memory, array.dtype, array.size, start)
        self.array = flat.reshape(array.shape)
        self.array[...] = array
        for wall in (base, base + page + room):
            if libc.mprotect(wall, page, 0) != 0:
                raise OSError(ctypes.get_errno(), "mprotect")
