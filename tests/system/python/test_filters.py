# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Medians, minimum and maximum, convolution, noise reduction, matrix product and cosine transform."""

import numpy as np
import opcv_dlib
import oracle
import pytest
from hypothesis import given
from hypothesis import strategies as st
from support import image, padded

seeds = st.integers(0, 2**32 - 1)
sides = st.integers(7, 40)


def random_image(seed, *shape, **options):
    return image(np.random.default_rng(seed), *shape, **options)


@given(seeds, sides, sides, st.sampled_from([1, 3]), st.sampled_from([1, 3, 5, 7]))
def test_median(seed, height, width, channels, size):
    src = random_image(seed, height, width, channels)
    assert np.array_equal(opcv_dlib.filter_median(src, size), oracle.median(src, size))
    assert np.array_equal(opcv_dlib.filter_median(padded(src), size), oracle.median(src, size))


def test_median_of_16_bits_and_large_squares(rng):
    samples = image(rng, 20, 30, dtype=np.int16)
    assert np.array_equal(opcv_dlib.filter_median(samples, 3), oracle.median(samples, 3))
    src = image(rng, 40, 50)
    assert np.array_equal(opcv_dlib.filter_median(src, 11), oracle.median(src, 11))


def test_median_with_an_anchor_in_the_corner_moves_the_windows(rng):
    src = image(rng, 20, 30)
    whole = oracle.median(src, 3)
    assert np.array_equal(opcv_dlib.filter_median(src, 3, anchor=(0, 0)), whole)
    region = opcv_dlib.filter_median(src, 3, anchor=(2, 0), region=(5, 4, 7, 6))
    assert np.array_equal(region, whole[4:10, 3:10])
    outside = opcv_dlib.filter_median(src, 3, anchor=(-4, 5), region=(5, 6, 7, 6))
    assert np.array_equal(outside, whole[1:7, 9:16])


def test_an_anchor_outside_the_mask_keeps_the_region_in_the_image(rng):
    src = image(rng, 20, 30)
    whole = oracle.median(src, 3)
    assert np.array_equal(opcv_dlib.filter_median(src, 3, anchor=(-4, 1)), whole[:, 4:])
    assert np.array_equal(opcv_dlib.filter_median(src, 3, anchor=(1, 7)), whole[:13])
    for anchor, region in (((-4, 1), (-1, 5, 7, 6)), ((7, 1), (24, 5, 7, 6)), ((1, 7), (5, 15, 7, 6))):
        with pytest.raises(ValueError, match="filter_median: region .* does not lie in the image"):
            opcv_dlib.filter_median(src, 3, anchor=anchor, region=region)


def test_median_in_place(rng):
    src = image(rng, 20, 30)
    expected = oracle.median(src, 3)
    inside = src[1:-1, 1:-1]
    assert opcv_dlib.filter_median(src, out=inside) is inside
    assert np.array_equal(inside, expected)


@given(seeds, sides, sides)
def test_medians_with_a_fixed_window(seed, height, width):
    src = random_image(seed, height, width)
    assert np.array_equal(opcv_dlib.filter_median_cross(src), oracle.cross_median(src, 3))
    assert np.array_equal(opcv_dlib.filter_median_cross(src, 55), oracle.cross_median(src, 5))
    for weight in (3, 5):
        expected = oracle.centre_median(src, weight)
        assert np.array_equal(opcv_dlib.filter_median_weighted_center(padded(src), weight), expected)


def test_vector_median(rng):
    src = image(rng, 12, 25, 3) // 64    # many equal distances
    assert np.array_equal(opcv_dlib.filter_median_color(src), oracle.vector_median(src))


@given(seeds, st.integers(9, 30), st.integers(9, 30), st.sampled_from([1, 3, 5]), st.sampled_from([1, 3, 5]))
def test_dilation_and_erosion(seed, height, width, mask_width, mask_height):
    rng = np.random.default_rng(seed)
    src = image(rng, height, width)
    mask = rng.integers(0, 2, (mask_height, mask_width))
    mask[0, 0] = 1
    assert np.array_equal(opcv_dlib.dilate(src, mask), oracle.under_mask(src, mask, np.max))
    assert np.array_equal(opcv_dlib.erode(src, mask), oracle.under_mask(src, mask, np.min))
    full = np.ones_like(mask)
    size = (mask_width, mask_height)
    assert np.array_equal(opcv_dlib.filter_max(src, size), oracle.under_mask(src, full, np.max))
    assert np.array_equal(opcv_dlib.filter_min(src, size), oracle.under_mask(src, full, np.min))


def test_even_masks_need_one_pixel_more(rng):
    src = image(rng, 20, 30)
    expected = oracle.under_mask(src, np.ones((4, 2)), np.max)
    found = opcv_dlib.filter_max(src, (2, 4))
    assert found.shape == (16, 28)
    assert np.array_equal(found, expected[:16, :28])
    with pytest.raises(ValueError, match="filter_max: region"):
        opcv_dlib.filter_max(src, (2, 4), region=(1, 2, 29, 16))


def test_mask_cells_that_are_not_0_select(rng):
    src = image(rng, 20, 30)
    mask = [[0, 2, 0], [256, 0, -1], [0, 0.5, 0]]
    expected = oracle.under_mask(src, np.array(mask), np.max)
    assert np.array_equal(opcv_dlib.dilate(src, mask), expected)


@given(
    seeds,
    st.sampled_from([(np.uint8, 1), (np.uint8, 3), (np.int16, 1), (np.uint16, 1), (np.float32, 1)]),
    st.sampled_from([(1, 1), (3, 3), (5, 3), (1, 7), (9, 7)]),
    st.sampled_from([1, -2, 16]),
)
def test_convolution(seed, kind, size, divisor):
    rng = np.random.default_rng(seed)
    dtype, channels = kind
    if dtype == np.float32:
        src = rng.integers(0, 100, (20, 30)).astype(np.float32)
    else:
        src = image(rng, 20, 30, channels, dtype) // 8
    kernel = rng.integers(-9, 10, (size[1], size[0]))
    found = opcv_dlib.convolve(src, kernel, divisor)
    if dtype == np.float32:
        cells = oracle.windows(src, *size)
        expected = (cells * kernel[::-1, ::-1].ravel()).sum(axis=2) / divisor
        assert np.allclose(found, expected, atol=1e-3)
    else:
        assert np.array_equal(found, oracle.convolved(src, kernel, divisor))
        assert np.array_equal(opcv_dlib.convolve_float(src, kernel / divisor), found)


def test_convolution_of_a_region_uses_its_surroundings(rng):
    src = image(rng, 40, 50, 3)
    for size in (3, 9):
        kernel = rng.integers(-3, 4, (size, size))
        whole = oracle.convolved(src, kernel, 8)
        found = opcv_dlib.convolve(padded(src), kernel, 8, region=(10, 8, 20, 12))
        half = size // 2
        assert np.array_equal(found, whole[8 - half : 20 - half, 10 - half : 30 - half])


def test_convolution_with_an_anchor_outside_the_kernel(rng):
    src = image(rng, 40, 50)
    for size in (3, 9):
        kernel = rng.integers(-3, 4, (size, size))
        whole = oracle.convolved(src, kernel, 8)
        found = opcv_dlib.convolve(src, kernel, 8, anchor=(size + 9, -1), region=(10, 12, 12, 10))
        # The first pixel's sum ends at source column 10 + size + 9 and row 12 - 1.
        column, row = 10 + size + 9 - (size - 1), 12 - 1 - (size - 1)
        assert np.array_equal(found, whole[row : row + 10, column : column + 12])


def test_convolution_in_place(rng):
    src = image(rng, 20, 30)
    expected = oracle.convolved(src, np.ones((3, 3), int), 16)
    inside = src[1:-1, 1:-1]
    opcv_dlib.convolve(src, np.ones((3, 3), int), 16, out=inside)
    assert np.array_equal(inside, expected)


@given(seeds, st.sampled_from([(1, 1), (3, 3), (5, 3), (3, 7), (17, 3)]))
def test_box(seed, size):
    src = random_image(seed, 20, 40, channels=3)
    expected = oracle.box(src, *size)
    before = src.copy()
    assert opcv_dlib.filter_box(src, size) is src
    top, left = size[1] // 2, size[0] // 2
    inside = src[top : top + expected.shape[0], left : left + expected.shape[1]]
    assert np.array_equal(inside, expected)
    inside[...] = before[top : top + expected.shape[0], left : left + expected.shape[1]]
    assert np.array_equal(src, before)


@given(seeds, st.sampled_from([3, 5, 7]), st.sampled_from([30.0, 400.0]), st.sampled_from([2.0, 400.0]))
def test_bilateral(seed, size, color, space):
    src = random_image(seed, 20, 30)
    found = opcv_dlib.filter_bilateral(src, size, color, space)
    assert np.abs(found - oracle.bilateral(src, size, color, space)).max() <= 0.51


def test_bilateral_of_size_1_reads_the_region_only(rng):
    src = image(rng, 20, 30)
    found = opcv_dlib.filter_bilateral(src, 1, 400, 400, region=(3, 4, 20, 10))
    src[:4] = src[14:] = 0
    src[:, :3] = src[:, 23:] = 0
    assert np.array_equal(opcv_dlib.filter_bilateral(src, 1, 400, 400, region=(3, 4, 20, 10)), found)


@pytest.mark.parametrize("mode", [1, 2])
def test_noise_reduction_is_the_bilateral_filter_inside_a_ring(rng, mode):
    src = image(rng, 20, 32, 3)
    sigma = 96.0 * 4
    ring = mode
    found = opcv_dlib.reduce_noise_rgb(src, mode, 4)
    for channel in range(3):
        plane = np.ascontiguousarray(src[..., channel])
        expected = plane.copy()
        expected[ring:-ring, ring:-ring] = opcv_dlib.filter_bilateral(plane, 2 * ring + 1, sigma, sigma)
        assert np.array_equal(opcv_dlib.reduce_noise(plane, mode, 4), expected)
        assert np.array_equal(found[..., channel], expected)
    again = src.copy()
    assert opcv_dlib.reduce_noise_rgb(again, mode, 4, out=again) is again
    assert np.array_equal(again, found)


def test_noise_reduction_leaves_the_ring_of_the_callers_result_alone(rng):
    src, out = image(rng, 20, 32), np.full((20, 32), 9, np.uint8)
    opcv_dlib.reduce_noise(src, out=out)
    assert (out[0] == 9).all() and (out[:, -1] == 9).all()
    assert np.array_equal(out[1:-1, 1:-1], opcv_dlib.reduce_noise(src)[1:-1, 1:-1])


@pytest.mark.parametrize("side", [1, 3, 9])
def test_colour_convolutions(rng, side):
    src = image(rng, 20, 32, 3)
    kernels = rng.integers(-4, 5, (3, side, side)) / 16
    ring = side // 2
    inside = (slice(ring, 20 - ring), slice(ring, 32 - ring))
    mono = opcv_dlib.convolution24_mono(src, kernels[0])
    expected = src.copy()
    expected[inside] = oracle.convolved(src, kernels[0])
    assert np.array_equal(mono, expected)
    for channel in range(3):    # the kernels come in reverse order
        expected[inside][..., channel] = oracle.convolved(src[..., channel], kernels[2 - channel])
    assert np.array_equal(opcv_dlib.convolution24(src, kernels), expected)


@given(seeds, st.integers(1, 9), st.integers(1, 9), st.integers(1, 9), st.booleans(), st.booleans())
def test_matrix_product(seed, rows, inner, columns, trans_a, trans_b):
    rng = np.random.default_rng(seed)
    a = rng.standard_normal((inner, rows) if trans_a else (rows, inner)).astype(np.float32)
    b = rng.standard_normal((columns, inner) if trans_b else (inner, columns)).astype(np.float32)
    c = rng.standard_normal((rows, columns)).astype(np.float32)
    product = (a.T if trans_a else a) @ (b.T if trans_b else b)
    found = opcv_dlib.sgemm(padded(a), padded(b), trans_a=trans_a, trans_b=trans_b)
    assert np.allclose(found, product, atol=1e-4)
    expected = 0.5 * product - 2 * c
    assert opcv_dlib.sgemm(a, b, c, alpha=0.5, beta=-2, trans_a=trans_a, trans_b=trans_b) is c
    assert np.allclose(c, expected, atol=1e-4)


@pytest.mark.parametrize("side", [1, 2, 3, 6, 7])
def test_cosine_transform(rng, side):
    table = rng.standard_normal((side, side))
    found = padded(table)
    assert opcv_dlib.ddct(found) is found
    assert np.allclose(found, oracle.cosine_transform(table))
    opcv_dlib.ddct(found, inverse=True)
    assert np.allclose(found, table)
    assert np.array_equal(opcv_dlib.ddct(np.eye(side)), opcv_dlib.ddct(np.eye(side), inverse=False))


def test_cosine_transform_refuses_tables_that_are_not_square_or_too_large():
    with pytest.raises(ValueError, match="ddct: table must be square"):
        opcv_dlib.ddct(np.zeros((3, 4)))
    with pytest.raises(ValueError, match="ddct: table must be square with sides of at most 46340"):
        opcv_dlib.ddct(np.lib.stride_tricks.as_strided(np.zeros(8), (46341, 46341), (46341 * 8, 8)))
