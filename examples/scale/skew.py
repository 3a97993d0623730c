# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Measures the skew of a page from its row profile."""

import numpy

EVERY = 4    # uses every 4th column, which is enough to measure the slope of a line


def find_skew(pixels, steepest=5.0):
    """Returns the degrees, counter-clockwise, that straighten the page: the angle of highest contrast between rows."""
    height, width = pixels.shape[:2]
    grain = max(1, width // 600)
    inner = pixels[height // 10 : -height // 10 : grain, width // 10 : -width // 10 : grain * EVERY]
    grey = inner if inner.ndim == 2 else inner[..., 1]
    dark, bright = numpy.percentile(grey, (2, 90))
    ys, xs = numpy.nonzero(grey < (dark + bright) / 2)
    if len(ys) == 0:
        return 0.0

    def contrast(angle):
        rows = (ys - xs * (EVERY * numpy.tan(numpy.radians(angle))) + len(grey)).astype(int)
        return numpy.sum(numpy.diff(numpy.bincount(rows)).astype(float) ** 2)

    best = max(numpy.arange(-steepest, steepest + 0.1, 0.2), key=contrast)
    return float(max(numpy.arange(best - 0.2, best + 0.21, 0.05), key=contrast))
