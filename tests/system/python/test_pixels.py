# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Bits, depth, thresholds, colour and planes."""

import numpy as np
import opcv_dlib
import pytest
from hypothesis import given
from hypothesis import strategies as st
from support import image, padded

seeds = st.integers(0, 2**32 - 1)


@given(seeds, st.integers(1, 5), st.integers(1, 70), st.integers(0, 7))
def test_bits_become_grey(seed, height, width, offset):
    rng = np.random.default_rng(seed)
    src = image(rng, height, (offset + width + 7) // 8)
    bits = np.unpackbits(src, axis=1)[:, offset : offset + width]
    assert np.array_equal(opcv_dlib.expand_bits(src, width, bit_offset=offset), bits * 255)
    assert np.array_equal(opcv_dlib.expand_bits(padded(src), width, bit_offset=offset), bits * 255)


@given(seeds, st.integers(1, 5), st.integers(1, 70), st.integers(0, 7), st.integers(0, 254))
def test_grey_becomes_bits(seed, height, width, offset, threshold):
    rng = np.random.default_rng(seed)
    src = image(rng, height, width)
    bytes_a_row = (offset + width + 7) // 8
    out = image(rng, height, bytes_a_row + 2)
    expected = np.unpackbits(out, axis=1)
    expected[:, offset : offset + width] = src > threshold
    assert opcv_dlib.reduce_bits(padded(src), threshold, bit_offset=offset, out=out) is out
    assert np.array_equal(np.unpackbits(out, axis=1), expected)
    fresh = opcv_dlib.reduce_bits(src, threshold, bit_offset=offset)
    assert fresh.shape == (height, bytes_a_row)
    whole = np.zeros((height, 8 * bytes_a_row), np.uint8)
    whole[:, offset : offset + width] = src > threshold
    assert np.array_equal(np.unpackbits(fresh, axis=1), whole)


def test_rows_that_hold_too_few_bits_are_refused(rng):
    src = image(rng, 3, 4)
    assert opcv_dlib.expand_bits(src, 29, bit_offset=3).shape == (3, 29)
    with pytest.raises(ValueError, match="expand_bits: src has rows of 32 bits"):
        opcv_dlib.expand_bits(src, 30, bit_offset=3)
    with pytest.raises(ValueError, match="expand_bits: src has rows of 32 bits"):
        opcv_dlib.expand_bits(np.zeros((3, 40), np.uint8)[:, :4], 30, bit_offset=3)
    with pytest.raises(ValueError, match="reduce_bits: out has rows of 8 bits"):
        opcv_dlib.reduce_bits(src, bit_offset=5, out=np.zeros((3, 1), np.uint8))
    with pytest.raises(ValueError, match="reduce_bits: out has 4 rows"):
        opcv_dlib.reduce_bits(src, out=np.zeros((4, 1), np.uint8))
    for offset in (-1, 8, 2**62):
        with pytest.raises(ValueError, match="bit_offset must be 0 to 7"):
            opcv_dlib.expand_bits(src, 2, bit_offset=offset)
        with pytest.raises(ValueError, match="bit_offset must be 0 to 7"):
            opcv_dlib.reduce_bits(src, bit_offset=offset)
    with pytest.raises(ValueError, match="width must be above 0"):
        opcv_dlib.expand_bits(src, 0)
    with pytest.raises(ValueError, match="threshold is out of range"):
        opcv_dlib.reduce_bits(src, 256)


@given(seeds, st.integers(1, 20), st.integers(1, 70))
def test_depth(seed, height, width):
    rng = np.random.default_rng(seed)
    grey, samples = image(rng, height, width), image(rng, height, width, dtype=np.int16)
    samples[0, 0] = 255
    wide = opcv_dlib.convert_8u16s(padded(grey))
    assert wide.dtype == np.int16 and np.array_equal(wide, grey)
    assert np.array_equal(opcv_dlib.convert_16s8u(padded(samples)), np.clip(samples, 0, 255))


@given(seeds, st.sampled_from([np.uint8, np.int16]), st.integers(0, 255), st.integers(0, 255))
def test_threshold(seed, dtype, threshold, value):
    src = padded(image(np.random.default_rng(seed), 9, 37, dtype=dtype))
    expected = src.base.copy()
    inside = expected[2:-2, 5:-5]
    inside[inside <= threshold] = value
    assert opcv_dlib.threshold_lt(src, threshold, value) is src
    assert np.array_equal(src.base, expected)


def test_threshold_takes_the_range_of_the_pixels():
    samples = np.array([[-5, 5]], np.int16)
    assert opcv_dlib.threshold_lt(samples, -5, -32768).tolist() == [[-32768, 5]]
    with pytest.raises(ValueError, match="threshold_lt: value is out of range: 40000"):
        opcv_dlib.threshold_lt(samples, 0, 40000)
    with pytest.raises(ValueError, match="threshold_lt: threshold is out of range: -1"):
        opcv_dlib.threshold_lt(samples.astype(np.uint8), -1, 0)


def test_fill(rng):
    src = padded(image(rng, 9, 37))
    expected = src.base.copy()
    expected[2:-2, 5:-5] = 200
    assert opcv_dlib.fill(src, 200) is src
    assert np.array_equal(src.base, expected)
    for value in (-1, 256):
        with pytest.raises(ValueError, match="fill: value is out of range"):
            opcv_dlib.fill(src, value)


def yuv_of(rgb):
    r, g, b = (rgb[..., i].astype(float) for i in range(3))
    y = 0.299 * r + 0.587 * g + 0.114 * b
    return np.clip(np.stack([y, 0.492 * (b - y) + 128, 0.877 * (r - y) + 128], axis=2), 0, 255)


def test_colour_space(rng):
    rgb = image(rng, 16, 40, 3)
    yuv = opcv_dlib.rgb_to_yuv(rgb)
    assert np.abs(yuv - yuv_of(rgb)).max() <= 1
    planes = opcv_dlib.rgb_to_yuv_planes(rgb)
    assert np.array_equal(planes, np.moveaxis(yuv, 2, 0))
    mild = (rgb // 4 + 96).astype(np.uint8)
    back = opcv_dlib.yuv_to_rgb(opcv_dlib.rgb_to_yuv(mild))
    assert np.abs(back.astype(int) - mild).max() <= 3
    assert np.array_equal(opcv_dlib.yuv_planes_to_rgb(opcv_dlib.rgb_to_yuv_planes(mild)), back)
    assert np.array_equal(opcv_dlib.rgb_to_yuv(rgb, out=rgb), yuv)


def test_planes(rng):
    rgb = image(rng, 16, 40, 3)
    planes = opcv_dlib.split_planes(padded(rgb))
    assert np.array_equal(planes, np.moveaxis(rgb, 2, 0))
    assert np.array_equal(opcv_dlib.merge_planes(planes), rgb)
    assert np.array_equal(opcv_dlib.merge_planes([planes[0], planes[1], planes[2]]), rgb)
    whole = np.zeros((48, 60), np.uint8)
    thirds = [whole[16 * i : 16 * i + 16, 3:43] for i in range(3)]
    assert opcv_dlib.split_planes(rgb, out=thirds) is thirds
    assert np.array_equal(opcv_dlib.merge_planes(thirds), rgb)
    assert not whole[:, :3].any() and not whole[:, 43:].any()


def test_planes_that_do_not_match_are_refused(rng):
    plane = image(rng, 6, 8)
    with pytest.raises(ValueError, match="merge_planes: src must be three planes"):
        opcv_dlib.merge_planes([plane, plane])
    with pytest.raises(ValueError, match="merge_planes: src has planes of different sizes"):
        opcv_dlib.merge_planes([plane, plane, plane[:5]])
    with pytest.raises(ValueError, match="merge_planes: src has planes of different row strides"):
        opcv_dlib.merge_planes([plane, plane, padded(plane)])
    with pytest.raises(ValueError, match="merge_planes: src must be three arrays"):
        opcv_dlib.merge_planes([plane, plane, 3])
    other = plane.copy()
    for planes in ([plane, plane, other], [other, plane, plane], [plane, other, plane]):
        with pytest.raises(ValueError, match="split_planes: out has planes that overlap"):
            opcv_dlib.split_planes(image(rng, 6, 8, 3), out=planes)
    memory = np.zeros(6 * 8 * 5, np.uint8)
    colour = memory[: 6 * 8 * 3].reshape(6, 8, 3)
    for start in (0, 1, 2):    # the plane that lies in the source
        planes = [memory[6 * 8 * 3 :].reshape(2, 6, 8)[0], memory[6 * 8 * 4 :].reshape(6, 8)]
        planes.insert(start, memory[: 6 * 8].reshape(6, 8))
        with pytest.raises(ValueError, match="split_planes: out overlaps the source"):
            opcv_dlib.split_planes(colour, out=planes)
        with pytest.raises(ValueError, match="merge_planes: out overlaps the source"):
            opcv_dlib.merge_planes(planes, out=colour)
    with pytest.raises(ValueError, match="split_planes: out must have planes of 6 rows and 9 columns"):
        opcv_dlib.split_planes(image(rng, 6, 9, 3), out=[plane, plane.copy(), plane.copy()])


def test_planes_of_the_library(rng):
    samples = opcv_dlib.new_plane_16s(33, 5)
    assert samples.shape == (5, 33) and samples.dtype == np.int16 and samples.strides == (128, 2)
    samples[...] = -3
    assert not opcv_dlib.convert_16s8u(samples).any()
    colour = opcv_dlib.new_image_8u_c3(64, 5)
    assert colour.shape == (5, 64, 3) and colour.strides == (192, 3, 1)
    colour[...] = rgb = image(rng, 5, 64, 3)
    assert np.array_equal(opcv_dlib.split_planes(colour), np.moveaxis(rgb, 2, 0))
    with pytest.raises(ValueError, match="not a multiple of the pixel size"):
        opcv_dlib.split_planes(opcv_dlib.new_image_8u_c3(20, 5))
    with pytest.raises(ValueError, match="new_plane_16s: size must have two sides above 0"):
        opcv_dlib.new_plane_16s(0, 5)


def test_nothing_has_to_be_initialised():
    assert opcv_dlib.init() == 0
