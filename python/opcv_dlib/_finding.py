# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The skew of a page."""

from __future__ import annotations

import importlib
from dataclasses import dataclass

_REASONS = (None, "blank", "picture", "unsure")    # in the order of opcv_skew_outcome


@dataclass(frozen=True)
class Skew:
    """What `find_skew` found.

    angle: degrees; turning the page counter-clockwise by them straightens it. None if no skew was found.
    confidence: 0 to 1; how clearly the page shows lines at one angle. Found from 0.5 up.
    reason: why no skew was found. "blank": next to nothing is printed on the page; "picture": there is print, but not in
        lines; "unsure": something looks like lines, but not clearly enough to turn the page by it. None if it was found.
    """

    __module__ = "opcv_dlib"

    angle: float | None
    confidence: float
    reason: str | None


def find_skew(page):
    """find_skew(page: Page | numpy.ndarray[uint8]) -> Skew

    The angle that straightens the lines of text of a page, within 15 degrees to either side.

    `page` is a Page of depth 8, 24 or 32 or an array of its pixels. It does not change. The library of this function is
    loaded when the function is first called.

    Shapes of arrays: (height, width), (height, width, 3) or (height, width, 4); uint8.

    >>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
    >>> opcv_dlib.find_skew(page)
    Skew(angle=None, confidence=0.0, reason='blank')

    Calls `opcv_find_skew`.
    """
    finder = importlib.import_module("opcv_dlib._skew")
    angle, confidence, outcome = finder.find_skew(getattr(page, "pixels", page))
    reason = _REASONS[outcome]
    return Skew(angle if reason is None else None, confidence, reason)
