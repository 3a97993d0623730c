# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The skew of pages and of arrays."""

import importlib.util
import os
import pathlib
import subprocess
import sys

import numpy as np
import opcv_dlib
import pytest


def drawn(slope, channels=None):
    """A page whose lines of words fall by `slope` rows in a column, with `channels` equal channels."""
    rng = np.random.default_rng(4)
    page = np.full((1200, 900), 230, np.uint8)
    for top in range(120, 1080, 28):
        left = 80
        while left < 800:
            letter = int(rng.integers(5, 10))
            for x in range(left, left + letter):
                row = top + round(slope * (x - 450))
                page[row : row + 13, x] = 40
            left += letter + (11 if rng.integers(6) == 0 else 3)
    return page if channels is None else np.repeat(page[:, :, None], channels, axis=2)


@pytest.mark.parametrize("slope", (-0.2, -0.03, 0.0, 0.01, 0.1))
def test_the_angle_straightens_the_page(slope):
    found = opcv_dlib.find_skew(drawn(slope))
    assert found.reason is None
    assert 0.5 <= found.confidence <= 1
    assert found.angle == pytest.approx(np.degrees(np.arctan(slope)), abs=0.03)
    page = opcv_dlib.deskew(opcv_dlib.Page(drawn(slope)), found.angle, white_fill=True)
    assert abs(opcv_dlib.find_skew(page).angle) < 0.03


@pytest.mark.parametrize("channels", (3, 4))
def test_colour_and_pages_have_the_skew_of_the_grey_page(channels):
    expected = opcv_dlib.find_skew(drawn(0.04))
    colour = drawn(0.04, channels)
    assert opcv_dlib.find_skew(colour) == expected
    assert opcv_dlib.find_skew(opcv_dlib.Page(colour)) == expected


def test_views_are_taken_as_they_are():
    wide = np.zeros((1200, 1000), np.uint8)
    wide[:, 60:960] = drawn(0.04)
    assert opcv_dlib.find_skew(wide[:, 60:960]) == opcv_dlib.find_skew(drawn(0.04))


def test_the_function_of_the_recipes_straightens_a_stream():
    file = pathlib.Path(os.environ["OPCV_DLIB_SOURCE"]) / "examples" / "recipes" / "straighten.py"
    recipe = importlib.util.module_from_spec(importlib.util.spec_from_file_location("straighten", file))
    recipe.__spec__.loader.exec_module(recipe)
    stream = recipe.straighten(opcv_dlib.compress_gray(drawn(0.04), 80))
    assert abs(opcv_dlib.find_skew(opcv_dlib.read_jpeg(stream)).angle) < 0.1


def test_a_page_without_lines_has_a_reason():
    blank = np.full((1000, 700), 240, np.uint8)
    assert opcv_dlib.find_skew(blank) == opcv_dlib.Skew(None, 0.0, "blank")
    noise = np.random.default_rng(1).integers(0, 256, (1000, 700), np.uint8)
    found = opcv_dlib.find_skew(noise)
    assert (found.angle, found.reason) == (None, "picture")
    assert found.confidence < 0.5


@pytest.mark.parametrize("page", (np.zeros((9, 9), np.uint16), np.zeros((9, 9, 2), np.uint8), np.zeros(9, np.uint8)))
def test_other_arrays_are_rejected(page):
    with pytest.raises((TypeError, ValueError), match="find_skew: page"):
        opcv_dlib.find_skew(page)


@pytest.mark.parametrize("page", (None, "page.jpg", [[0, 1]]))
def test_what_is_no_array_is_rejected(page):
    with pytest.raises(TypeError):
        opcv_dlib.find_skew(page)


def test_the_finder_is_loaded_on_its_first_use():
    program = """
import numpy, opcv_dlib
def loaded():
    return "_skew" in open("/proc/self/maps").read()
assert not loaded()
opcv_dlib.find_skew(numpy.zeros((100, 100), numpy.uint8))
assert loaded()
"""
    subprocess.run([sys.executable, "-c", program], check=True)
