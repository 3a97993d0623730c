# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Pages and JPEG."""

import gc
import mmap
import resource
import tempfile
import weakref

import numpy as np
import opcv_dlib
import pytest
from support import image, padded

MODES = (0, 286, 389, 450, 788)


def smooth(height, width, channels=1):
    y, x = np.mgrid[:height, :width]
    planes = [(x * (2 + i) + y * (3 - i)) % 256 for i in range(channels)]
    level = 128 + 100 * np.sin(np.stack(planes, axis=2) / 255 * 2 * np.pi)
    return level.astype(np.uint8).reshape(height, width, *([channels] if channels > 1 else []))


@pytest.mark.parametrize("channels", [1, 3, 4])
def test_a_page_copies_its_pixels(rng, channels):
    src = image(rng, 7, 21, channels)
    page = opcv_dlib.Page(padded(src), 200, 100)
    assert (page.width, page.height, page.depth, page.dpi_x, page.dpi_y) == (21, 7, 8 * channels, 200, 100)
    assert np.array_equal(page.pixels, src)
    page.pixels[0, 0] = 0
    assert not page.pixels[0, 0].any()
    assert repr(page) == f"<opcv_dlib.Page of 21 x 7 pixels, depth {8 * channels}, 200 x 100 dots per inch>"


@pytest.mark.parametrize(
    ("depth", "unite", "shape", "row_bytes"),
    [
        (1, False, (5, 3), 16),
        (8, False, (5, 21), 32),
        (24, False, (5, 21, 3), 63),
        (24, True, (5, 21, 3), 64),
        (32, False, (5, 21, 4), 96),
        (40, False, (5, 21), 32),
    ],
)
def test_the_layout_of_records(depth, unite, shape, row_bytes):
    page = opcv_dlib.Page.empty(21, 5, depth, for_unite=unite)
    assert page.pixels.shape == shape
    assert page.row_bytes == page.pixels.strides[0] == row_bytes
    assert (page.dpi_x, page.dpi_y) == (300, 300)
    page.pixels[...] = 3
    assert (page.pixels == 3).all()


def test_pages_that_cannot_be_are_refused():
    with pytest.raises(ValueError, match="Page.empty: depth must be 1, 8, 24, 32 or 40"):
        opcv_dlib.Page.empty(3, 3, 16)
    with pytest.raises(ValueError, match="Page.empty: size must have two sides above 0"):
        opcv_dlib.Page.empty(3, 0)
    for dpi in (0, 65536):
        with pytest.raises(ValueError, match="dpi_x must be 1 to 65535"):
            opcv_dlib.Page.empty(3, 3, 8, dpi)
    page = opcv_dlib.Page.empty(3, 3)
    with pytest.raises(ValueError, match="Page: dpi_y must be 1 to 65535"):
        page.dpi_y = 0
    page.dpi_x = 600
    assert (page.dpi_x, page.dpi_y) == (600, 300)


def test_the_pixels_keep_the_page_alive():
    page = opcv_dlib.read_jpeg(opcv_dlib.compress_gray(np.full((50, 70), 90, np.uint8), 95))
    alive = weakref.ref(page)
    pixels = page.pixels[3:]
    del page
    gc.collect()
    assert alive() is not None and (pixels == 90).all()
    del pixels
    gc.collect()
    assert alive() is None


def test_records_planes_and_streams_are_released():
    pixels = np.zeros((1000, 1000), np.uint8)

    def work():
        page = opcv_dlib.deskew(opcv_dlib.Page(pixels), 1)
        opcv_dlib.read_jpeg(opcv_dlib.compress_jpeg(opcv_dlib.rotate90(page), 389))
        opcv_dlib.new_plane_16s(1000, 1000)[...] = 1
        opcv_dlib.new_image_8u_c3(1000, 1000)[...] = 1
        with pytest.raises(opcv_dlib.Error):
            opcv_dlib.rotate_page(page, 45)

    def peak():
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss

    for _ in range(3):
        work()
    before = peak()
    for _ in range(20):    # 9 MB each
        work()
    assert peak() - before < 40_000
    page = opcv_dlib.Page(np.random.default_rng(1).integers(0, 256, (1000, 1000)).astype(np.uint8))
    for _ in range(60):    # streams of 1 MB
        opcv_dlib.compress_jpeg(page, 788)
    assert peak() - before < 40_000


def test_a_buffer_is_free_again_after_reading():
    data = bytearray(opcv_dlib.compress_gray(smooth(9, 9), 90))
    opcv_dlib.read_jpeg(data)
    data.append(0)
    data[0] = 0
    with pytest.raises(opcv_dlib.Error):
        opcv_dlib.read_jpeg(data)
    data.clear()
    with pytest.raises(ValueError, match="read_jpeg: data is empty"):
        opcv_dlib.read_jpeg(data)
    data.append(0)


def test_streams_of_4_gigabytes_are_refused():
    with tempfile.TemporaryFile() as file:
        file.truncate(2**32)
        with mmap.mmap(file.fileno(), 2**32, prot=mmap.PROT_READ) as data:
            with pytest.raises(ValueError, match="read_jpeg: data is empty or has 2\\^32 bytes or more"):
                opcv_dlib.read_jpeg(data)


@pytest.mark.parametrize("channels", [1, 3, 4])
def test_deskew(rng, channels):
    src = image(rng, 30, 48, channels)    # rows without padding, which would count as image
    page = opcv_dlib.Page(src, 200, 100)
    turned = opcv_dlib.deskew(page, 3.5)
    assert (turned.dpi_x, turned.dpi_y, turned.depth) == (200, 100, 8 * channels)
    assert np.array_equal(turned.pixels, opcv_dlib.rotate_center(src, 3.5))
    white = {1: 0, 3: 255, 4: (0, 255, 255, 255)}[channels]
    filled = opcv_dlib.deskew(page, 3.5, white_fill=True)
    assert np.array_equal(filled.pixels, opcv_dlib.rotate_center(src, 3.5, border=white))

    x, y = opcv_dlib.get_rotate_shift(23.5, 14.5, 3.5)
    cropped = opcv_dlib.deskew_crop(page, 3.5, (-5, 4, 60, 20))
    assert (cropped.width, cropped.height, cropped.dpi_x, cropped.dpi_y) == (60, 20, 200, 100)
    assert np.array_equal(cropped.pixels, opcv_dlib.rotate(src, 3.5, (x + 5, y - 4), size=(60, 20)))

    x, y = opcv_dlib.get_rotate_shift(7, 9, 3.5)
    about = opcv_dlib.deskew_about(page, 3.5, (7, 9), (25, 15), white_fill=True)
    assert (about.dpi_x, about.dpi_y) == (200, 100)
    expected = opcv_dlib.rotate(src, 3.5, (x - 7, y - 9), size=(25, 15), border=white)
    assert np.array_equal(about.pixels, expected)


def page_functions():
    o = opcv_dlib
    return {
        "deskew": lambda p: o.deskew(p, 3.5),
        "deskew_crop": lambda p: o.deskew_crop(p, 3.5, (-5, 4, 60, 20)),
        "deskew_about": lambda p: o.deskew_about(p, 3.5, (7, 9), (25, 15)),
        "rotate_page": lambda p: o.rotate_page(p, -90),
        "rotate90": o.rotate90,
        "rotate180": o.rotate180,
        "rotate270": o.rotate270,
        "resize": lambda p: o.resize(p, 2, 3),
    }


@pytest.mark.parametrize("channels", [1, 3, 4])
@pytest.mark.parametrize("name", page_functions())
def test_arrays_are_pages_too(rng, name, channels):
    call = page_functions()[name]
    src = image(rng, 30, 48, channels)
    before = src.copy()
    found = call(src)
    assert isinstance(found, np.ndarray)
    assert np.array_equal(found, call(opcv_dlib.Page(src)).pixels)
    assert np.array_equal(call(padded(src)), found)
    assert np.array_equal(src, before)
    for other in (src.tolist(), None, "page.jpg", src.astype(np.float64)):
        with pytest.raises(TypeError, match=f"^{name}: page must be a Page or an array of uint8 with .*, not "):
            call(other)
    for other in (src[::-1], src[:, ::2], src[:0], src[..., None, None]):
        with pytest.raises(ValueError, match=f"^{name}: page "):
            call(other)


@pytest.mark.parametrize("width", [1, 15, 16, 17, 33])
def test_nothing_beside_an_array_is_part_of_its_page(rng, width):
    src = image(rng, 20, width, 3)
    assert np.array_equal(opcv_dlib.deskew(padded(src), 5), opcv_dlib.rotate_center(src, 5))
    assert np.array_equal(opcv_dlib.rotate90(padded(src)), np.rot90(src, -1))


def test_arrays_beyond_2_gigabytes_are_refused():
    row = np.zeros(8, np.uint8)
    large = np.lib.stride_tricks.as_strided(row, (2**29, 4), (4, 1))
    with pytest.raises(ValueError, match="deskew: page has more than 2147483647 bytes"):
        opcv_dlib.deskew(large, 1)


def test_the_pixels_of_a_new_page_keep_it_alive():
    turned = opcv_dlib.rotate90(np.full((50, 70), 90, np.uint8))
    gc.collect()
    assert isinstance(turned.base, opcv_dlib.Page) and (turned == 90).all()


def test_corners_are_black_unless_white_is_asked_for():
    page = opcv_dlib.Page(np.full((30, 48, 3), 90, np.uint8))
    for white in (False, True):
        options = {"white_fill": True} if white else {}
        for turned in (
            opcv_dlib.deskew(page, 30, **options),
            opcv_dlib.deskew_crop(page, 30, (-20, -20, 88, 70), **options),
            opcv_dlib.deskew_about(page, 30, (-9, -9), (60, 40), **options),
        ):
            assert (turned.pixels[0, 0] == (255 if white else 0)).all()
            assert (turned.pixels == 90).any()


@pytest.mark.parametrize("angle", [np.nan, np.inf])
def test_angles_must_be_numbers(angle):
    page = opcv_dlib.Page.empty(9, 9)
    for name, call in (
        ("deskew", lambda: opcv_dlib.deskew(page, angle)),
        ("deskew_crop", lambda: opcv_dlib.deskew_crop(page, angle, (0, 0, 9, 9))),
        ("deskew_about", lambda: opcv_dlib.deskew_about(page, angle, (0, 0), (9, 9))),
        ("rotate_page", lambda: opcv_dlib.rotate_page(page, angle)),
        ("unite_rotate", lambda: opcv_dlib.unite_rotate(page.pixels, (9, 9), angle)),
    ):
        with pytest.raises(ValueError, match=f"^{name}: angle is not a finite number"):
            call()


def test_rectangles_must_lie_within_32_bits():
    page = opcv_dlib.Page.empty(9, 9)
    for crop in ((2**31 - 5, 0, 9, 9), (0, 2**31 - 5, 9, 9), (-(2**31) - 1, 0, 9, 9)):
        with pytest.raises(ValueError, match="deskew_crop: crop does not fit in 32 bits"):
            opcv_dlib.deskew_crop(page, 1, crop)
    for sides in ((0, 9), (9, -1)):
        with pytest.raises(ValueError, match="deskew_crop: crop must have two sides above 0"):
            opcv_dlib.deskew_crop(page, 1, (0, 0, *sides))
        with pytest.raises(ValueError, match="deskew_about: size must have two sides above 0"):
            opcv_dlib.deskew_about(page, 1, (0, 0), sides)


def test_quarter_turns(rng):
    src = image(rng, 7, 21, 3)
    page = opcv_dlib.Page(src, 200, 100)
    for angle, turns, turned in (
        (90, -1, opcv_dlib.rotate90(page)),
        (180, 2, opcv_dlib.rotate180(page)),
        (270, 1, opcv_dlib.rotate270(page)),
        (-90.9, 1, opcv_dlib.rotate_page(page, -90.9)),
    ):
        assert np.array_equal(turned.pixels, np.rot90(src, turns))
        assert (turned.dpi_x, turned.dpi_y) == ((200, 100) if angle == 180 else (100, 200))


def test_uniting_centres_the_image_on_a_canvas(rng):
    src = image(rng, 8, 20, 3)
    for width, row_bytes in ((30, 92), (32, 96)):    # rows that end in padding, and rows that do not
        page = opcv_dlib.unite_rotate(padded(src), (width, 12), 0, dpi_x=400)
        expected = np.full((12, width, 3), 255, np.uint8)
        left = (width - 20) // 2
        expected[2:10, left : left + 20] = src
        assert np.array_equal(page.pixels, expected)
        assert (page.row_bytes, page.dpi_x, page.dpi_y) == (row_bytes, 400, 400)
    for channels, row_bytes in ((1, 32), (4, 80)):
        square = image(rng, 20, 20, channels)
        page = opcv_dlib.unite_rotate(square, (20, 20), 0)
        assert (page.depth, page.row_bytes) == (8 * channels, row_bytes)
        assert np.array_equal(page.pixels, square)
    corner = np.zeros((20, 20), np.uint8)
    corner[3:7, 2:6] = 255
    y, x = np.argwhere(opcv_dlib.unite_rotate(corner, (20, 20), 90).pixels).mean(axis=0)    # clockwise: top right
    assert y < 6 and x > 13
    with pytest.raises(ValueError, match="unite_rotate: size has rows of 2\\^31 bytes or more"):
        opcv_dlib.unite_rotate(src, (2**30, 1), 0)


def test_resize_keeps_the_size_in_inches(rng):
    page = opcv_dlib.Page(image(rng, 51, 101), 300, 150)
    half = opcv_dlib.resize(page, 1, 2)
    assert (half.width, half.height, half.dpi_x, half.dpi_y) == (50, 25, 150, 75)
    same = opcv_dlib.resize(page, 7, 7)
    assert np.array_equal(same.pixels, page.pixels)
    odd = opcv_dlib.resize(opcv_dlib.Page(image(rng, 9, 9), 75, 65535), 5, 2)
    assert (odd.dpi_x, odd.dpi_y) == (188, 65535)
    assert opcv_dlib.resize(opcv_dlib.Page(image(rng, 90, 90), 1, 2), 1, 4).dpi_x == 1
    for numerator, denominator in ((0, 1), (-1, 1), (np.inf, 1), (np.nan, 1), (1, 0), (1, -1), (1, np.inf), (1, np.nan)):
        with pytest.raises(ValueError, match="must be above 0"):
            opcv_dlib.resize(page, numerator, denominator)


def density(stream):
    assert stream[:4] == b"\xff\xd8\xff\xe0" and stream[6:11] == b"JFIF\0"
    return stream[13], int.from_bytes(stream[14:16], "big"), int.from_bytes(stream[16:18], "big")


@pytest.mark.parametrize("channels", [1, 3])
@pytest.mark.parametrize("mode", MODES)
def test_compression_keeps_pixels_and_resolution(channels, mode):
    src = smooth(64, 96, channels)
    page = opcv_dlib.Page(src, 200, 100)
    for compress in (opcv_dlib.compress_jpeg_ex, opcv_dlib.compress_jpeg_with_ipp):
        stream = compress(page, mode)
        assert density(stream) == (1, 200, 100) and b"KORVELIN" in stream
        back = opcv_dlib.read_jpeg(stream)
        assert (back.depth, back.dpi_x, back.dpi_y) == (8 * channels, 200, 100)
        assert np.abs(back.pixels.astype(int) - src).mean() < 20
    page.dpi_y = 200
    stream = opcv_dlib.compress_jpeg(page, mode)
    assert density(stream) == (1, 200, 200)
    assert np.abs(opcv_dlib.read_jpeg(stream).pixels.astype(int) - src).mean() < 12


def test_compress_jpeg_stores_one_resolution():
    with pytest.raises(ValueError, match="compress_jpeg: page has different resolutions"):
        opcv_dlib.compress_jpeg(opcv_dlib.Page(smooth(9, 9), 200, 100), 389)


def test_compression_of_arrays():
    grey, colour = smooth(64, 96), smooth(64, 96, 3)
    streams = {
        "own": opcv_dlib.compress_gray(grey, 90, dpi_x=200, dpi_y=100),
        "libjpeg": opcv_dlib.compress_gray(padded(grey), 90, custom_tables=False),
        "444": opcv_dlib.compress_rgb_444(colour, 90),
        "444 libjpeg": opcv_dlib.compress_rgb_444(padded(colour), 90, custom_tables=False),
        "411": opcv_dlib.compress_rgb_411(padded(colour), 90, dpi_x=72),
    }
    assert len(set(streams.values())) == len(streams)
    assert density(streams["own"]) == (1, 200, 100)
    assert density(streams["411"]) == (1, 72, 72)
    for name, stream in streams.items():
        src = grey if name in ("own", "libjpeg") else colour
        assert np.abs(opcv_dlib.read_jpeg(stream).pixels.astype(int) - src).mean() < 5, name
    for quality in (0, 101):
        with pytest.raises(ValueError, match="compress_gray: quality must be 1 to 100"):
            opcv_dlib.compress_gray(grey, quality)
    with pytest.raises(ValueError, match="compress_rgb_411: pixels has a side above 65500"):
        opcv_dlib.compress_rgb_411(np.zeros((1, 65501, 3), np.uint8), 50)
    for size in ((65501, 1), (1, 65501)):
        page = opcv_dlib.Page.empty(*size)
        for name in ("compress_jpeg", "compress_jpeg_ex", "compress_jpeg_with_ipp"):
            with pytest.raises(ValueError, match=f"{name}: page has a side above 65500"):
                getattr(opcv_dlib, name)(page, 389)
    for size in ((65500, 1), (1, 65500)):
        page = opcv_dlib.read_jpeg(opcv_dlib.compress_jpeg(opcv_dlib.Page(np.zeros(size, np.uint8)), 389))
        assert (page.height, page.width) == size


def test_each_compressor_stores_both_resolutions_and_takes_300_by_itself():
    grey, colour = smooth(16, 16), smooth(16, 16, 3)
    for compress, pixels in (
        (opcv_dlib.compress_gray, grey),
        (opcv_dlib.compress_rgb_444, colour),
        (opcv_dlib.compress_rgb_411, colour),
    ):
        assert density(compress(pixels, 90, dpi_x=200, dpi_y=100)) == (1, 200, 100)
        assert density(compress(pixels, 90, dpi_x=200)) == (1, 200, 200)
        assert density(compress(pixels, 90)) == (1, 300, 300)
    for compress, pixels in ((opcv_dlib.compress_gray, grey), (opcv_dlib.compress_rgb_444, colour)):
        assert compress(pixels, 90) == compress(pixels, 90, custom_tables=True)
    for page in (opcv_dlib.Page(grey), opcv_dlib.unite_rotate(grey, (9, 9), 0)):
        assert (page.dpi_x, page.dpi_y) == (300, 300)
    assert opcv_dlib.Page.empty(3, 3).depth == 8


def with_density(stream, unit, x, y):
    return stream[:13] + bytes([unit]) + x.to_bytes(2, "big") + y.to_bytes(2, "big") + stream[18:]


def with_orientation(stream, orientation):
    tiff = b"MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01" + bytes([0, orientation, 0, 0]) + b"\0\0\0\0"
    exif = b"Exif\0\0" + tiff
    return stream[:20] + b"\xff\xe1" + (len(exif) + 2).to_bytes(2, "big") + exif + stream[20:]


def test_the_resolution_comes_from_the_stream():
    stream = opcv_dlib.compress_gray(smooth(40, 60), 90)

    def dpi(data, **options):
        page = opcv_dlib.read_jpeg(data, **options)
        return page.dpi_x, page.dpi_y

    assert dpi(with_density(stream, 1, 240, 120)) == (240, 120)
    assert dpi(with_density(stream, 2, 100, 50)) == (254, 127)
    assert dpi(with_density(stream, 0, 1, 1)) == (300, 300)
    assert dpi(with_density(stream, 0, 1, 1), default_dpi=96) == (96, 96)
    assert dpi(with_density(stream, 1, 0, 100), default_dpi=96) == (96, 96)
    assert dpi(stream[:2] + stream[20:], default_dpi=96) == (96, 96)
    assert dpi(with_density(stream, 1, 100, 0), default_dpi=96) == (96, 96)
    assert dpi(with_density(stream, 3, 100, 100)) == (300, 300)
    turned = opcv_dlib.read_jpeg(with_orientation(with_density(stream, 1, 240, 120), 6))
    assert (turned.width, turned.height, turned.dpi_x, turned.dpi_y) == (40, 60, 120, 240)
    split = opcv_dlib.read_split_jpeg(with_density(stream, 0, 1, 1), (60, 40))
    assert (split.dpi_x, split.dpi_y) == (300, 300)
    square = opcv_dlib.compress_gray(smooth(40, 40), 90, dpi_x=240, dpi_y=120)
    assert dpi(square) == (240, 120)


def test_only_the_jfif_header_in_front_of_the_scan_counts():
    stream = opcv_dlib.compress_gray(smooth(40, 60), 90, dpi_x=240, dpi_y=120)
    head, jfif, rest = stream[:2], stream[2:20], stream[20:]

    def dpi(data):
        page = opcv_dlib.read_jpeg(data, default_dpi=96)
        return page.dpi_x, page.dpi_y

    def segment(marker, body):
        return bytes([0xFF, marker]) + (len(body) + 2).to_bytes(2, "big") + body

    assert dpi(head + b"\xff\xff" + jfif + rest) == (240, 120)    # fill bytes
    assert dpi(head + segment(0xFE, b"") + jfif + rest) == (240, 120)    # a comment without words
    assert dpi(head + segment(0xE1, jfif[4:]) + rest) == (96, 96)    # another application's
    assert dpi(head + segment(0xE0, b"JFXX" + jfif[8:]) + rest) == (96, 96)
    assert dpi(head + segment(0xE0, jfif[4:15]) + rest) == (96, 96)    # too short for densities
    assert dpi(head + rest[:-2] + jfif + rest[-2:]) == (96, 96)    # behind the scan


def test_reading_of_known_size():
    src = smooth(40, 60)
    stream = opcv_dlib.compress_gray(src, 95, dpi_x=150)
    page = opcv_dlib.read_split_jpeg(memoryview(bytearray(stream)), (60, 40))
    assert (page.depth, page.dpi_x) == (24, 150)
    grey = opcv_dlib.read_jpeg(np.frombuffer(stream, np.uint8)).pixels
    assert np.array_equal(page.pixels, np.repeat(grey[..., None], 3, axis=2))
    with pytest.raises(opcv_dlib.Error, match="ReadSplitJPEG: paramErr"):
        opcv_dlib.read_split_jpeg(stream, (60, 41))


def test_what_is_no_stream_is_refused():
    for function in (opcv_dlib.read_jpeg, lambda data: opcv_dlib.read_split_jpeg(data, (8, 8))):
        with pytest.raises(ValueError, match="data is empty"):
            function(b"")
        with pytest.raises(opcv_dlib.Error) as caught:
            function(b"no JPEG stream at all")
        assert caught.value.status == -50
        with pytest.raises(TypeError):
            function("text")
        with pytest.raises((BufferError, ValueError)):
            function(np.zeros(20, np.uint8)[::2])
