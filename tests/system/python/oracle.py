# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What the functions compute, written from their definitions."""

import numpy as np
from numpy.lib.stride_tricks import sliding_window_view


def windows(src, width, height):
    """Returns every window inside a grey image, as [row, column, cell]."""
    found = sliding_window_view(src, (height, width))
    return found.reshape(found.shape[0], found.shape[1], width * height)


def median(src, size):
    if src.ndim == 3:
        return np.stack([median(src[..., c], size) for c in range(src.shape[2])], axis=2)
    return np.sort(windows(src, size, size), axis=2)[..., size * size // 2]


def weighted_median(src, cells, weights):
    """Median of the cells of a 3 x 3 or 5 x 5 window, each counted as often as its weight says."""
    side = int(len(weights) ** 0.5)
    found = np.repeat(windows(src, side, side), weights, axis=2)
    assert found.shape[2] == cells
    return np.sort(found, axis=2)[..., cells // 2]


def cross_median(src, side):
    cross = np.zeros((side, side), int)
    cross[side // 2, :] = cross[:, side // 2] = 1
    return weighted_median(src, 2 * side - 1, cross.ravel())


def centre_median(src, weight):
    return weighted_median(src, 8 + weight, [1, 1, 1, 1, weight, 1, 1, 1, 1])


def vector_median(src):
    height, width = src.shape[0] - 2, src.shape[1] - 2
    result = np.empty((height, width, 3), np.uint8)
    for y in range(height):
        for x in range(width):
            cells = src[y : y + 3, x : x + 3].reshape(9, 3).astype(int)
            sums = np.abs(cells[:, None] - cells[None]).sum(axis=(1, 2))
            result[y, x] = cells[np.argmin(sums)]
    return result


def under_mask(src, mask, choose):
    found = windows(src, mask.shape[1], mask.shape[0])[..., mask.ravel() != 0]
    return choose(found, axis=2)


def saturated(values, dtype):
    info = np.iinfo(dtype)
    return np.clip(np.rint(values), info.min, info.max).astype(dtype)


def convolved(src, kernel, divisor=1):
    """Sums of a kernel with odd sides and its centre as the anchor."""
    if src.ndim == 3:
        return np.stack([convolved(src[..., c], kernel, divisor) for c in range(src.shape[2])], axis=2)
    height, width = kernel.shape
    cells = windows(src.astype(np.float64), width, height)
    return saturated((cells * kernel[::-1, ::-1].ravel()).sum(axis=2) / divisor, src.dtype)


def box(src, width, height):
    return np.stack(
        [saturated(windows(src[..., c], width, height).mean(axis=2), np.uint8) for c in range(3)], axis=2
    )


def bilateral(src, size, color_square_sigma, space_square_sigma):
    radius = size // 2
    found = windows(src, size, size).astype(np.float64)
    centre = found[..., size * size // 2][..., None]
    y, x = np.mgrid[-radius : radius + 1, -radius : radius + 1].reshape(2, -1)
    inside = x * x + y * y <= radius * radius
    weights = np.exp(-((found - centre) ** 2) / (2 * color_square_sigma))
    weights *= np.where(inside, np.exp(-(x * x + y * y) / (2 * space_square_sigma)), 0)
    return (found * weights).sum(axis=2) / weights.sum(axis=2)


def cosine_transform(table):
    """Orthonormal, of type II, over all values one behind the other."""
    length = table.size
    k, i = np.mgrid[:length, :length]
    basis = np.sqrt(2 / length) * np.cos(np.pi * (2 * i + 1) * k / (2 * length))
    basis[0] /= np.sqrt(2)
    return (basis @ table.ravel()).reshape(table.shape)
