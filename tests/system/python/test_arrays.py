# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What every function says of the arrays that it is given, and that it touches nothing else."""

import numpy as np
import opcv_dlib
import pytest
from support import Fence, image, padded

BOX = np.ones((3, 3), int)
WIDE = np.ones((9, 9), int)

# Each function with what it reads and, if it takes one, what it writes; arrays are made by the tests. "near": it reads
# beside the pixel it writes; "apart": source and result must not overlap.
GREY, COLOUR, SAMPLES = ((24, 40), np.uint8), ((24, 40, 3), np.uint8), ((24, 40), np.int16)


def functions():
    o = opcv_dlib
    return {
        "filter_median": (lambda a, **k: o.filter_median(a, 5, **k), GREY, "near"),
        "filter_median colour": (lambda a, **k: o.filter_median(a, 5, **k), COLOUR, "near"),
        "filter_median large": (lambda a, **k: o.filter_median(a, 11, **k), GREY, "near"),
        "filter_median 16 bit": (lambda a, **k: o.filter_median(a, 3, **k), SAMPLES, "near"),
        "filter_median_cross": (lambda a, **k: o.filter_median_cross(a, 33, **k), GREY, "near apart"),
        "filter_median_cross 55": (lambda a, **k: o.filter_median_cross(a, 55, **k), GREY, "near apart"),
        "filter_median_weighted_center": (o.filter_median_weighted_center, GREY, "near apart"),
        "filter_median_color": (o.filter_median_color, COLOUR, "near apart"),
        "dilate": (lambda a, **k: o.dilate(a, BOX, **k), GREY, "near"),
        "dilate even": (lambda a, **k: o.dilate(a, np.eye(4), **k), GREY, "near"),
        "erode": (lambda a, **k: o.erode(a, WIDE, **k), GREY, "near"),
        "filter_max": (lambda a, **k: o.filter_max(a, (3, 5), **k), GREY, "near"),
        "filter_min": (lambda a, **k: o.filter_min(a, (4, 2), **k), GREY, "near"),
        "convolve": (lambda a, **k: o.convolve(a, BOX, 9, **k), GREY, "near"),
        "convolve even": (lambda a, **k: o.convolve(a, BOX[:2, :2], 9, **k), GREY, "near"),
        "convolve wide": (lambda a, **k: o.convolve(a, WIDE, 81, **k), GREY, "near"),
        "convolve wide even": (lambda a, **k: o.convolve(a, WIDE[:6, :8], 48, **k), GREY, "near"),
        "convolve tall": (lambda a, **k: o.convolve(a, np.ones((51, 1), int)[:17], 17, **k), GREY, "near"),
        "convolve colour": (lambda a, **k: o.convolve(a, WIDE, 81, **k), COLOUR, "near"),
        "convolve 16 bit": (lambda a, **k: o.convolve(a, BOX, 9, **k), SAMPLES, "near"),
        "convolve_float": (lambda a, **k: o.convolve_float(a, BOX / 9, **k), GREY, "near"),
        "convolve_float colour": (lambda a, **k: o.convolve_float(a, WIDE / 81, **k), COLOUR, "near"),
        "filter_bilateral": (lambda a, **k: o.filter_bilateral(a, 5, 400, 400, **k), GREY, "near"),
        "filter_bilateral 1": (lambda a, **k: o.filter_bilateral(a, 1, 400, 400, **k), GREY, "region"),
        "rotate": (lambda a, **k: o.rotate(a, 5, (3, -2), **k), COLOUR, "region apart"),
        "rotate 16 bit": (lambda a, **k: o.rotate(a, 5, (3, -2), **k), SAMPLES, "region apart"),
        "rotate_on_black": (lambda a, **k: o.rotate_on_black(a, 5, (3, -2), **k), GREY, "region apart"),
        "rotate_center": (lambda a, **k: o.rotate_center(a, 5, **k), COLOUR, "region apart"),
        "resize_sqr_pixel": (lambda a, **k: o.resize_sqr_pixel(a, 1.3, 0.8, **k), GREY, "region"),
        "resize_color": (
            lambda a, **k: o.resize_color(a, None if "out" in k else (50, 20), **k),
            COLOUR,
            "region apart",
        ),
        "reduce_noise": (lambda a, **k: o.reduce_noise(a, 2, **k), GREY, "whole"),
        "reduce_noise_rgb": (lambda a, **k: o.reduce_noise_rgb(a, 2, **k), COLOUR, "whole"),
        "convolution24_mono": (lambda a, **k: o.convolution24_mono(a, WIDE / 81, **k), COLOUR, "whole"),
        "convolution24": (lambda a, **k: o.convolution24(a, [WIDE / 81] * 3, **k), COLOUR, "whole"),
        "expand_bits": (lambda a, **k: o.expand_bits(a, 315, bit_offset=5, **k), GREY, "apart"),
        "reduce_bits": (lambda a, **k: o.reduce_bits(a, 99, bit_offset=3, **k), GREY, "apart"),
        "convert_8u16s": (o.convert_8u16s, GREY, "apart"),
        "convert_16s8u": (o.convert_16s8u, SAMPLES, "apart"),
        "rgb_to_yuv": (o.rgb_to_yuv, COLOUR, "aligned"),
        "yuv_to_rgb": (o.yuv_to_rgb, COLOUR, "aligned"),
        "rgb_to_yuv_planes": (o.rgb_to_yuv_planes, COLOUR, ""),
        "split_planes": (o.split_planes, COLOUR, "apart"),
        "yuv_planes_to_rgb": (o.yuv_planes_to_rgb, ((3, 24, 40), np.uint8), "planes"),
        "merge_planes": (o.merge_planes, ((3, 24, 40), np.uint8), "planes apart"),
    }


def in_place():
    o = opcv_dlib
    return {
        "filter_box": (lambda a: o.filter_box(a, (3, 5)), COLOUR),
        "filter_box wide": (lambda a: o.filter_box(a, (17, 2)), COLOUR),
        "threshold_lt": (lambda a: o.threshold_lt(a, 90, 3), GREY),
        "threshold_lt 16 bit": (lambda a: o.threshold_lt(a, 90, 3), SAMPLES),
        "fill": (lambda a: o.fill(a, 3), GREY),
    }


def made(rng, kind):
    shape, dtype = kind
    return rng.integers(0, 256, shape).astype(dtype)


ALL = [pytest.param(name, *row, id=name) for name, row in functions().items()]
IN_PLACE = [pytest.param(name, *row, id=name) for name, row in in_place().items()]
REGIONS = [p for p in ALL if {"near", "region"} & set(p.values[3].split())]
STRIDED = [p for p in ALL if "whole" not in p.values[3]]


@pytest.mark.parametrize("flush", ["head", "tail"])
@pytest.mark.parametrize(("name", "call", "kind", "how"), ALL)
def test_nothing_outside_the_arrays_is_touched(rng, name, call, kind, how, flush):
    src = made(rng, kind)
    expected = call(src)
    source, out = Fence(src, flush), Fence(np.zeros_like(expected), flush)
    if name.startswith(("reduce_noise", "convolution24")):
        out.array[...] = expected    # holds the ring, which is not written
    call(source.array, out=out.array)
    assert np.array_equal(out.array, expected)
    assert np.array_equal(source.array, src)


@pytest.mark.parametrize("flush", ["head", "tail"])
@pytest.mark.parametrize(("name", "call", "kind"), IN_PLACE)
def test_nothing_outside_the_array_is_touched_in_place(rng, name, call, kind, flush):
    src = made(rng, kind)
    fence = Fence(src, flush)
    assert np.array_equal(call(fence.array), call(src))


@pytest.mark.parametrize(("name", "call", "kind", "how"), STRIDED)
def test_views_are_taken_where_they_are(rng, name, call, kind, how):
    src = made(rng, kind)
    expected = call(src)
    if "planes" in how:
        whole = np.zeros((24 * 3, 50), np.uint8)
        view = [whole[24 * i : 24 * i + 24, 4:44] for i in range(3)]
        for plane, pixels in zip(view, src):
            plane[...] = pixels
    else:
        view = padded(src)
    if name in ("rgb_to_yuv_planes", "split_planes"):
        assert np.array_equal(call(view), expected)
        return
    out = padded(np.zeros_like(expected))
    before = out.base.copy()
    call(view, out=out)
    assert np.array_equal(out, expected)
    before[2:-2, 5:-5] = expected
    assert np.array_equal(out.base, before)


@pytest.mark.parametrize(("name", "call", "kind", "how"), REGIONS)
def test_a_view_in_a_corner_reads_nothing_behind_its_own_end(rng, name, call, kind, how):
    src = made(rng, kind)
    whole = np.zeros((30, 51) + src.shape[2:], src.dtype)
    whole[6:, 11:] = src
    fence = Fence(whole, "tail")
    assert np.array_equal(call(fence.array[6:, 11:]), call(src))


@pytest.mark.parametrize(("name", "call", "kind", "how"), REGIONS)
def test_a_region_is_the_same_part_of_the_whole(rng, name, call, kind, how):
    src = made(rng, kind)
    whole = call(src)
    x, y = 12, 9
    if "near" not in how:
        part = np.ascontiguousarray(src[y : y + 4, x : x + 6])
        if name.startswith(("resize", "filter_bilateral", "rotate_center")):
            assert np.array_equal(call(src, region=(x, y, 6, 4)), call(part))
        return
    top, left = src.shape[0] - whole.shape[0], src.shape[1] - whole.shape[1]
    for y0 in (top - top // 2, top // 2):
        for x0 in (left - left // 2, left // 2):
            try:
                default = call(src, region=(x0, y0, whole.shape[1], whole.shape[0]))
            except ValueError:
                continue    # an even mask's margin is not the same on both sides
            assert np.array_equal(default, whole)
            part = call(src, region=(x0 + 3, y0 + 2, 5, 4))
            assert np.array_equal(part, whole[2:6, 3:8])
            return
    pytest.fail("no region of the size of the result was taken")


@pytest.mark.parametrize(("name", "call", "kind", "how"), REGIONS)
def test_regions_and_margins_outside_the_array_are_refused(rng, name, call, kind, how):
    src = made(rng, kind)
    height, width = src.shape[:2]
    rows, columns = call(src).shape[:2] if "near" in how else (height, width)
    message = f"{name.split()[0]}: region"
    for region in (
        (-1, 0, 5, 5),
        (0, -1, 5, 5),
        (width - 4, 0, 5, 5),
        (0, height - 4, 5, 5),
        (0, 0, 0, 5),
        (0, 0, 5, 0),
        (0, 0, columns + 1, 1),
        (0, 0, 1, rows + 1),
        (2**62, 0, 2**62, 5),
        (2**63 - 1, 0, 5, 5),
        (0, 2**40, 5, 5),
    ):
        with pytest.raises(ValueError, match=message):
            call(src, region=region)
    if "near" in how:
        x, y = (width - columns) // 2, (height - rows) // 2
        for region in ((x - 1, y, 5, 5), (x, y - 1, 5, 5), (x + 2, y, columns, 5), (x, y + 2, 5, rows)):
            with pytest.raises(ValueError, match=f"{message}.* does not lie in the image .* with a margin of"):
                call(src, region=region)
        for small in (src[: height - rows, : width - columns], src[: height - rows], src[:, : width - columns]):
            with pytest.raises(ValueError, match=f"{name.split()[0]}: (region does not fit|src is empty)"):
                call(np.ascontiguousarray(small))


@pytest.mark.parametrize(("name", "call", "kind", "how"), ALL)
def test_arrays_of_other_forms_are_refused(rng, name, call, kind, how):
    src = made(rng, kind)
    function = name.split()[0]
    if "planes" not in how:
        with pytest.raises(ValueError, match=f"{function}: src has gaps between the pixels"):
            call(np.repeat(src, 2, axis=1)[:, ::2])
        with pytest.raises(ValueError, match=f"{function}: src has a row stride of -[0-9]+ bytes"):
            call(src[::-1])
        with pytest.raises(ValueError, match=f"{function}: src has a row stride of 0 bytes"):
            call(np.broadcast_to(src[0], src.shape))
        pixel = src.strides[1]
        with pytest.raises(ValueError, match=f"{function}: src has a row stride of .* is shorter than a row of"):
            call(np.lib.stride_tricks.as_strided(src, src.shape, (src.strides[0] - pixel, *src.strides[1:])))
        with pytest.raises(ValueError, match=f"{function}: src is empty"):
            call(src[:0])
        with pytest.raises(TypeError, match=f"{function}: src must be .*, not complex128 of shape"):
            call(src.astype(complex))
        with pytest.raises(ValueError, match=f"{function}: src must be .* of shape"):
            call(src[0, ..., None, None, None])
        for channels in (1, 5):
            with pytest.raises(ValueError, match=f"{function}: src must be .* of shape"):
                call(np.zeros((24, 40, channels), src.dtype))
        with pytest.raises(TypeError, match=rf"^{function}: src must be .*, not list \(numpy.asarray converts it\)$"):
            call(src.tolist())
        for other in (None, "page.jpg", 3, opcv_dlib.Page.empty(40, 24)):
            with pytest.raises(TypeError, match=rf"^{function}: src must be .*, not {type(other).__name__}$"):
                call(other)
    if src.ndim == 3 and "planes" not in how:
        with pytest.raises(ValueError, match=f"{function}: src has gaps between the channels"):
            call(np.ascontiguousarray(np.moveaxis(src, 2, 0)).transpose(1, 2, 0)[:, ::1])
        odd = np.zeros((24, 121), np.uint8)
        view = np.lib.stride_tricks.as_strided(odd, src.shape, (121, 3, 1))
        with pytest.raises(ValueError, match="is not a multiple of the pixel size, 3"):
            call(view)


@pytest.mark.parametrize(("name", "call", "kind", "how"), ALL)
def test_results_must_fit_and_be_writable(rng, name, call, kind, how):
    src = made(rng, kind)
    expected = call(src)
    function = name.split()[0]
    locked = np.zeros_like(expected)
    locked.flags.writeable = False
    with pytest.raises(ValueError, match=f"{function}: out is read-only"):
        call(src, out=locked)
    assert not locked.any()
    with pytest.raises(TypeError, match=f"{function}: out must be .*, not float64 of shape"):
        call(src, out=expected.astype(np.float64))
    if expected.ndim == 2 or "planes" not in function:
        with pytest.raises(TypeError, match=f"^{function}: out must be .*, not str$"):
            call(src, out="page.jpg")
    takes_any_size = "rotate", "rotate_on_black", "rotate_center", "resize_sqr_pixel", "resize_color"
    if function not in takes_any_size and function != "reduce_bits":
        more = np.zeros(expected.shape[:2] + (4,), expected.dtype)
        with pytest.raises(ValueError, match=f"{function}: out must"):
            call(src, out=more)
        wrong = np.zeros(expected.shape[:-2] + (expected.shape[-2] + 1, expected.shape[-1]), expected.dtype)
        with pytest.raises(ValueError, match=f"{function}: out must"):
            call(src, out=wrong if expected.ndim == 2 or "split" in name or "planes" in name else expected[:-1])


@pytest.mark.parametrize(("name", "call", "kind", "how"), ALL)
def test_read_only_sources_are_taken(rng, name, call, kind, how):
    src = made(rng, kind)
    expected = call(src)
    src.flags.writeable = False
    assert np.array_equal(call(src), expected)


@pytest.mark.parametrize(("name", "call", "kind"), IN_PLACE)
def test_read_only_arrays_are_not_changed_in_place(rng, name, call, kind):
    src = made(rng, kind)
    src.flags.writeable = False
    with pytest.raises(ValueError, match=f"{name.split()[0]}: image is read-only"):
        call(src)


APART = [p for p in ALL if "apart" in p.values[3]]


@pytest.mark.parametrize(("name", "call", "kind", "how"), APART)
def test_overlap_is_refused_where_it_is_not_allowed(rng, name, call, kind, how):
    src = made(rng, kind)
    expected = call(src)
    memory = np.zeros(src.nbytes + expected.nbytes, np.uint8)
    for start in (0, src.nbytes - 2):
        source = memory[: src.nbytes].view(src.dtype).reshape(src.shape)
        out = memory[start : start + expected.nbytes].view(expected.dtype).reshape(expected.shape)
        before = memory.copy()
        with pytest.raises(ValueError, match=f"{name.split()[0]}: out overlaps the source"):
            call(source, out=out)
        assert np.array_equal(memory, before)
    source[...] = src
    out = memory[src.nbytes :].view(expected.dtype).reshape(expected.shape)
    call(source, out=out)
    assert np.array_equal(out, expected)


def test_overlap_where_it_is_allowed(rng):
    src = image(rng, 20, 30, 3)
    with pytest.raises(ValueError, match="rgb_to_yuv: out overlaps the source but is not the same array"):
        opcv_dlib.rgb_to_yuv(src[:-1], out=src[1:])
    for shift in range(3):
        memory = image(rng, 23, 30)
        expected = opcv_dlib.filter_median(memory[:20].copy())
        out = memory[shift : shift + 18, :28]
        assert np.array_equal(opcv_dlib.filter_median(memory[:20], out=out), expected)


def test_columns_side_by_side_do_not_overlap(rng):
    whole = image(rng, 20, 60)
    left, right = whole[:, :30], whole[:, 30:]
    expected = opcv_dlib.filter_median_cross(np.ascontiguousarray(left))
    opcv_dlib.filter_median_cross(left, out=right[1:-1, 1:-1])
    assert np.array_equal(right[1:-1, 1:-1], expected)
    with pytest.raises(ValueError, match="out overlaps the source"):
        opcv_dlib.filter_median_cross(left, out=whole[1:-1, 29:57])
    with pytest.raises(ValueError, match="out overlaps the source"):
        opcv_dlib.filter_median_cross(right, out=whole[2:, 3:31])


def test_overlap_is_told_to_the_byte(rng):
    whole = np.zeros(12 * 16, np.uint8)

    def rectangle(step):
        width, height = rng.integers(1, 9), rng.integers(2, 5)
        start = rng.integers(0, whole.size - step * (height - 1) - width + 1)
        return np.lib.stride_tricks.as_strided(whole[start:], (height, width), (step, 1))

    found = []
    for _ in range(3000):
        a, b = rectangle(16), rectangle(16)
        found.append(np.shares_memory(a, b))
        if found[-1]:
            with pytest.raises(ValueError, match="rotate: out overlaps the source"):
                opcv_dlib.rotate(a, 0, out=b)
        else:
            opcv_dlib.rotate(a, 0, out=b)
    assert 300 < sum(found) < 2700
    for _ in range(1000):    # of other steps only the ranges are compared
        a, b = rectangle(16), rectangle(13)
        if np.may_share_memory(a, b):
            with pytest.raises(ValueError, match="rotate: out overlaps the source"):
                opcv_dlib.rotate(a, 0, out=b)
        else:
            opcv_dlib.rotate(a, 0, out=b)


def test_neighbours_of_other_steps_do_not_overlap(rng):
    memory = image(rng, 1, 500)[0]
    source = np.lib.stride_tricks.as_strided(memory, (3, 10), (16, 1))    # 42 bytes
    for out in (memory[42:].reshape(-1)[:60].reshape(3, 20), memory[102:]):
        out = out[:60].reshape(3, 20)
        expected = opcv_dlib.rotate(source.copy(), 0, size=(20, 3))
        assert np.array_equal(opcv_dlib.rotate(source, 0, out=out), expected)
    before = memory[:60].reshape(3, 20)
    source = np.lib.stride_tricks.as_strided(memory[60:], (3, 10), (16, 1))
    opcv_dlib.rotate(source, 0, out=before)
    with pytest.raises(ValueError, match="rotate: out overlaps the source"):
        opcv_dlib.rotate(source, 0, out=memory[1:61].reshape(3, 20))
    with pytest.raises(ValueError, match="rotate: out overlaps the source"):
        opcv_dlib.rotate(source, 0, out=memory[101:161].reshape(3, 20))


def test_only_what_is_read_counts_as_source(rng):
    whole = image(rng, 40, 30)
    expected = opcv_dlib.filter_median_cross(whole[:20].copy())
    opcv_dlib.filter_median_cross(whole, region=(1, 1, 28, 18), out=whole[20:38, :28])
    assert np.array_equal(whole[20:38, :28], expected)
    with pytest.raises(ValueError, match="out overlaps the source"):
        opcv_dlib.filter_median_cross(whole, region=(1, 1, 28, 18), out=whole[19:37, :28])


def test_arrays_of_one_row_or_column_have_any_stride_there(rng):
    src = image(rng, 5, 9)
    row = np.lib.stride_tricks.as_strided(src, (1, 9), (-3, 1))
    assert np.array_equal(opcv_dlib.convert_8u16s(row), src[:1])
    column = np.lib.stride_tricks.as_strided(src, (5, 1), (9, 7))
    assert np.array_equal(opcv_dlib.convert_8u16s(column), src[:, :1])


def test_sides_and_strides_beyond_31_bits_are_refused():
    one = np.zeros(8, np.uint8)
    with pytest.raises(ValueError, match="convert_8u16s: src has rows of more than 2147483647 bytes"):
        opcv_dlib.convert_8u16s(np.lib.stride_tricks.as_strided(one, (2, 8), (2**31, 1)))
    for shape in ((1, 2**31), (2**31, 1)):
        with pytest.raises(ValueError, match="convert_8u16s: src has a side above 2147483647"):
            opcv_dlib.convert_8u16s(np.lib.stride_tricks.as_strided(one, shape, (1, 1)))


def test_other_byte_orders_and_misaligned_arrays_are_refused():
    samples = np.zeros((3, 4), ">i2")
    with pytest.raises(TypeError, match="convert_16s8u: src must be a 2-D array of int16, not >i2"):
        opcv_dlib.convert_16s8u(samples)
    misaligned = np.zeros(25, np.uint8)[1:].view(np.int16).reshape(3, 4)
    with pytest.raises(ValueError, match="convert_16s8u: src is not aligned"):
        opcv_dlib.convert_16s8u(misaligned)


@pytest.mark.parametrize("function", [opcv_dlib.reduce_noise, opcv_dlib.reduce_noise_rgb])
def test_whole_images_must_have_no_gaps(rng, function):
    src = image(rng, 9, 12, 3 if "rgb" in function.__name__ else 1)
    with pytest.raises(ValueError, match="src has gaps between its rows"):
        function(padded(src))
    with pytest.raises(ValueError, match="out has gaps between its rows"):
        function(src, out=padded(src))


def test_sizes_and_kernels_that_make_no_sense_are_refused(rng):
    grey, colour = image(rng, 9, 12), image(rng, 9, 12, 3)
    floats = np.ones((3, 4), np.float32)
    with pytest.raises(ValueError, match="filter_median: size must have two sides above 0"):
        opcv_dlib.filter_median(grey, -1)
    with pytest.raises(ValueError, match="dilate: mask must have two dimensions"):
        opcv_dlib.dilate(grey, [1, 1, 1])
    with pytest.raises(ValueError, match="convolve: kernel must have two dimensions"):
        opcv_dlib.convolve(grey, np.zeros((0, 3), int))
    for cell in (2**31, 2**32, -(2**31) - 1):
        with pytest.raises(ValueError, match=f"convolve: kernel does not fit in 32 bits: {cell}"):
            opcv_dlib.convolve(grey, [[cell]])
    for cells in ([[0.5]], np.ones((1, 1), np.uint64), [["a"]]):
        with pytest.raises(ValueError, match="convolve: kernel must hold integers"):
            opcv_dlib.convolve(grey, cells)
    with pytest.raises(ValueError, match="convolve: kernel is not an array"):
        opcv_dlib.convolve(grey, [[1, 2], [3]])
    with pytest.raises(ValueError, match="reduce_noise: src must have sides above 4"):
        opcv_dlib.reduce_noise(grey[:4], 2)
    with pytest.raises(ValueError, match="reduce_noise: src must have sides above 4"):
        opcv_dlib.reduce_noise(image(rng, 9, 4), 2)
    with pytest.raises(ValueError, match="reduce_noise: src must have sides above 2"):
        opcv_dlib.reduce_noise(image(rng, 9, 2), 1)
    for strength in (-1, 11):
        with pytest.raises(ValueError, match="reduce_noise: strength must be 0 to 10"):
            opcv_dlib.reduce_noise(grey, 1, strength)
    for shape in ((3, 5), (4, 4)):
        with pytest.raises(ValueError, match="convolution24_mono: kernel must be square with an odd side"):
            opcv_dlib.convolution24_mono(colour, np.ones(shape))
    with pytest.raises(ValueError, match="convolution24_mono: src must have sides above 10"):
        opcv_dlib.convolution24_mono(colour, np.ones((11, 11)))
    for shape in ((3, 3), (2, 3, 3), (4, 3, 3)):
        with pytest.raises(ValueError, match="convolution24: kernels must have the shape"):
            opcv_dlib.convolution24(colour, np.ones(shape))
    with pytest.raises(ValueError, match="convolution24: src must have sides above 10"):
        opcv_dlib.convolution24(colour, np.ones((3, 11, 11)))
    with pytest.raises(ValueError, match="sgemm: b does not match a: inner sizes 3 and 4"):
        opcv_dlib.sgemm(floats, floats)
    with pytest.raises(ValueError, match="sgemm: c must be given if beta is not 0"):
        opcv_dlib.sgemm(floats, floats.T.copy(), beta=1)
    square = np.ones((3, 3), np.float32)
    with pytest.raises(ValueError, match="sgemm: c overlaps the source"):
        opcv_dlib.sgemm(square, square.copy(), square)
    with pytest.raises(ValueError, match="sgemm: c overlaps the source"):
        opcv_dlib.sgemm(square.copy(), square, square)


def test_what_is_not_said(rng):
    grey, colour = image(rng, 12, 16), image(rng, 12, 16, 3)
    square = rng.standard_normal((3, 3)).astype(np.float32)
    for found, expected in (
        (opcv_dlib.filter_median(grey), opcv_dlib.filter_median(grey, 3)),
        (opcv_dlib.filter_median_cross(grey), opcv_dlib.filter_median_cross(grey, 33)),
        (opcv_dlib.filter_median_weighted_center(grey), opcv_dlib.filter_median_weighted_center(grey, 3)),
        (opcv_dlib.convolve(grey, [[1, -1]]), opcv_dlib.convolve(grey, [[1, -1]], 1)),
        (opcv_dlib.convolve(grey, [[True]]), grey),
        (opcv_dlib.reduce_noise(grey), opcv_dlib.reduce_noise(grey, 1, 5)),
        (opcv_dlib.reduce_noise_rgb(colour), opcv_dlib.reduce_noise_rgb(colour, 1, 5)),
        (opcv_dlib.reduce_bits(grey), opcv_dlib.reduce_bits(grey, 127, bit_offset=0)),
        (opcv_dlib.expand_bits(grey, 9), opcv_dlib.expand_bits(grey, 9, bit_offset=0)),
        (opcv_dlib.sgemm(square, square), opcv_dlib.sgemm(square, square, alpha=1, trans_a=False, trans_b=False)),
        (opcv_dlib.rotate(grey, 9), opcv_dlib.rotate(grey, 9, (0, 0), border=0)),
        (opcv_dlib.rotate_on_black(grey, 9), opcv_dlib.rotate(grey, 9, (0, 0), border=0)),
        (opcv_dlib.rotate_center(grey, 9), opcv_dlib.rotate_center(grey, 9, (7.5, 5.5), border=0)),
        (opcv_dlib.resize_sqr_pixel(grey, 2, 2), opcv_dlib.resize_sqr_pixel(grey, 2, 2, (0, 0), size=(32, 24))),
    ):
        assert np.array_equal(found, expected)
    read_only = grey.copy()
    read_only.flags.writeable = False
    with pytest.raises(ValueError, match="reduce_bits: out is read-only"):
        opcv_dlib.reduce_bits(grey, out=read_only)
