# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Rotation and resize of regions."""

import numpy as np
import opcv_dlib
import pytest
from hypothesis import given
from hypothesis import strategies as st
from support import image, padded

seeds = st.integers(0, 2**32 - 1)


def moved(src, shift, size, border):
    """The image moved by whole pixels onto a canvas."""
    result = np.full((size[1], size[0]) + src.shape[2:], border, src.dtype)
    for y in range(size[1]):
        for x in range(size[0]):
            column, row = x - shift[0], y - shift[1]
            if 0 <= column < src.shape[1] and 0 <= row < src.shape[0]:
                result[y, x] = src[row, column]
    return result


@given(seeds, st.sampled_from([1, 3, 4]), st.integers(-9, 9), st.integers(-9, 9), st.integers(0, 255))
def test_rotation_by_0_moves(seed, channels, dx, dy, border):
    src = image(np.random.default_rng(seed), 12, 17, channels)
    expected = moved(src, (dx, dy), (20, 10), border)
    assert np.array_equal(opcv_dlib.rotate(src, 0, (dx, dy), border=border, size=(20, 10)), expected)
    assert np.array_equal(opcv_dlib.rotate(padded(src), 0, (dx, dy), border=border, size=(20, 10)), expected)


def test_the_border_may_differ_by_channel(rng):
    src = image(rng, 9, 9, 3)
    found = opcv_dlib.rotate(src, 0, (9, 9), border=(1, 2, 3))
    assert (found == (1, 2, 3)).all()
    assert (opcv_dlib.rotate_center(src, 45, border=[7, 8, 9])[0, 0] == (7, 8, 9)).all()
    with pytest.raises(ValueError, match="rotate: border must be a number or 1 to 4 numbers"):
        opcv_dlib.rotate(src, 0, border=[])
    with pytest.raises(ValueError, match="rotate: border must be a number or 1 to 4 numbers"):
        opcv_dlib.rotate(src, 0, border=[1, 2, 3, 4, 5])
    assert (opcv_dlib.rotate(src, 0, (9, 9), border=[1, 2, 3, 4]) == (1, 2, 3)).all()


def test_a_region_takes_what_lies_around_it_in_the_array_and_not_in_the_array_behind_it(rng):
    src = image(rng, 20, 30)
    found = opcv_dlib.rotate(padded(src), 0, (3, 2), region=(8, 6, 10, 7), border=9)
    assert np.array_equal(found, src[4:11, 5:15])
    found = opcv_dlib.rotate(padded(src), 0, (-6, 0), region=(20, 0, 10, 7), border=9)
    assert (found[:, 4:] == 9).all() and np.array_equal(found[:, :4], src[:7, 26:])


def test_rotation_about_the_centre(rng):
    src = image(rng, 15, 21, 3)
    half = opcv_dlib.rotate_center(src, 180)
    assert np.array_equal(half, src[::-1, ::-1])
    square = image(rng, 15, 15)
    assert np.array_equal(opcv_dlib.rotate_center(square, 90), np.rot90(square))
    assert np.array_equal(opcv_dlib.rotate_center(padded(square), 90), np.rot90(square))


def test_rotation_about_a_point_is_rotation_and_shift(rng):
    src = image(rng, 40, 40)
    x, y = opcv_dlib.get_rotate_shift(19.5, 19.5, 90)
    assert (round(x), round(y)) == (0, 39)
    assert np.array_equal(opcv_dlib.rotate(src, 90, (x, y)), np.rot90(src))
    assert np.array_equal(opcv_dlib.rotate_on_black(src, 90, (x, y)), np.rot90(src))
    colour = image(rng, 40, 40, 3)
    assert np.array_equal(
        opcv_dlib.rotate_on_black(colour, 7, (3, 4)), opcv_dlib.rotate(colour, 7, (3, 4), border=0)
    )


def test_rotation_into_a_larger_array(rng):
    src = image(rng, 9, 9)
    out = np.full((12, 13), 5, np.uint8)
    opcv_dlib.rotate_center(src, 180, out=out)
    assert np.array_equal(out[:9, :9], src[::-1, ::-1])
    assert (out[9:] == 5).all() and (out[:, 9:] == 5).all()
    with pytest.raises(ValueError, match="rotate: out must be uint8 of shape .*, not uint8 of shape"):
        opcv_dlib.rotate(src, 0, out=np.zeros((9, 9, 3), np.uint8))
    with pytest.raises(ValueError, match="rotate: out and size are not both allowed"):
        opcv_dlib.rotate(src, 0, size=(2, 2), out=out)


def test_other_pixel_types_rotate_as_well(rng):
    samples = image(rng, 15, 15, dtype=np.uint16)
    assert np.array_equal(opcv_dlib.rotate_center(samples, 90), np.rot90(samples))


@pytest.mark.parametrize("angle", [np.nan, np.inf])
def test_angles_must_be_numbers(rng, angle):
    src = image(rng, 9, 9)
    for function in (opcv_dlib.rotate, opcv_dlib.rotate_center, opcv_dlib.rotate_on_black):
        with pytest.raises(ValueError, match="angle is not a finite number"):
            function(src, angle)
    with pytest.raises(ValueError, match="rotate_center: center is not a finite number"):
        opcv_dlib.rotate_center(src, 1, (angle, 0))


def halved(src):
    quads = src.reshape(src.shape[0] // 2, 2, src.shape[1] // 2, 2, -1).astype(int).sum(axis=(1, 3))
    return ((quads + 2) >> 2).astype(np.uint8).reshape(src.shape[0] // 2, src.shape[1] // 2, *src.shape[2:])


def test_half_the_size_is_the_mean_of_four(rng):
    grey, colour = image(rng, 20, 30), image(rng, 20, 30, 3)
    assert np.array_equal(opcv_dlib.resize_sqr_pixel(grey, 0.5, 0.5), halved(grey))
    assert np.array_equal(opcv_dlib.resize_color(colour, (15, 10)), halved(colour))
    part = opcv_dlib.resize_color(padded(colour), (4, 3), region=(6, 4, 8, 6))
    assert np.array_equal(part, halved(colour[4:10, 6:14]))
    part = opcv_dlib.resize_sqr_pixel(padded(grey), 0.5, 0.5, region=(6, 4, 8, 6))
    assert np.array_equal(part, halved(grey[4:10, 6:14]))


def bilinear(src, width, height):
    def weights(count, size):
        at = np.clip((np.arange(size) + 0.5) * count / size - 0.5, 0, count - 1)
        low = np.minimum(at.astype(int), count - 1)
        return low, np.minimum(low + 1, count - 1), at - low

    top, bottom, down = weights(src.shape[0], height)
    left, right, across = weights(src.shape[1], width)
    src = src.astype(float)
    rows = src[top] * (1 - down)[:, None] + src[bottom] * down[:, None]
    return rows[:, left] * (1 - across) + rows[:, right] * across


@given(seeds, st.integers(2, 20), st.integers(2, 20), st.integers(1, 40), st.integers(1, 40))
def test_resize_is_bilinear(seed, height, width, new_height, new_width):
    rng = np.random.default_rng(seed)
    colour = image(rng, height, width, 3)
    found = opcv_dlib.resize_color(colour, (new_width, new_height))
    for channel in range(3):
        assert np.abs(found[..., channel] - bilinear(colour[..., channel], new_width, new_height)).max() <= 1


def test_what_the_scaled_image_does_not_reach_is_left_alone(rng):
    src = image(rng, 10, 10)
    out = np.full((12, 14), 7, np.uint8)
    assert opcv_dlib.resize_sqr_pixel(src, 1, 1, (2, 1), out=out) is out
    assert np.array_equal(out, moved(src, (2, 1), (14, 12), 7))
    fresh = opcv_dlib.resize_sqr_pixel(src, 1, 1, (-2, 0), size=(14, 12))
    assert np.array_equal(fresh, moved(src, (-2, 0), (14, 12), 0))


def test_scaled_sides_are_rounded(rng):
    grey = image(rng, 10, 15)
    assert opcv_dlib.resize_sqr_pixel(grey, 0.45, 0.27).shape == (3, 7)
    assert opcv_dlib.resize_sqr_pixel(grey, 0.1, 0.07).shape == (1, 2)


def test_sizes_that_make_no_sense_are_refused(rng):
    grey, colour = image(rng, 10, 10), image(rng, 10, 10, 3)
    with pytest.raises(ValueError, match="resize_color: size or out must be given"):
        opcv_dlib.resize_color(colour)
    with pytest.raises(ValueError, match="resize_color: size must have two sides above 0, not 0 x 4"):
        opcv_dlib.resize_color(colour, (0, 4))
    for factor in (0, -1, np.nan):
        with pytest.raises(ValueError, match="x_factor must be above 0"):
            opcv_dlib.resize_sqr_pixel(grey, factor, 1)
    with pytest.raises(ValueError, match="y_factor gives a side above"):
        opcv_dlib.resize_sqr_pixel(grey, 1, 1e9)
    with pytest.raises(ValueError, match="rotate: size does not fit in 32 bits"):
        opcv_dlib.rotate(grey, 0, size=(2**40, 1))
