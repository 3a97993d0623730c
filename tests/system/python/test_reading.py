# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Reading with limits and a report, and into arrays of the caller."""

import subprocess
import sys
import textwrap

import numpy as np
import opcv_dlib
import pytest
from opcv_dlib import ReadLimits, ReadReport
from support import image, padded


@pytest.fixture
def grey(rng):
    return opcv_dlib.compress_gray(image(rng, 24, 40), 90, dpi_x=200, dpi_y=100)


@pytest.fixture
def colour(rng):
    return opcv_dlib.compress_rgb_444(image(rng, 24, 40, 3), 90)


def test_the_page_is_the_same_with_limits_and_a_report(grey, colour):
    for stream in (grey, colour):
        expected = opcv_dlib.read_jpeg(stream)
        for options in ({"limits": ReadLimits()}, {"report": ReadReport()}, {"limits": ReadLimits(10**9, bytes=10**30)}):
            page = opcv_dlib.read_jpeg(stream, **options)
            assert np.array_equal(page.pixels, expected.pixels)
            assert (page.depth, page.dpi_x, page.dpi_y) == (expected.depth, expected.dpi_x, expected.dpi_y)
    bare = grey[:2] + grey[20:]
    assert opcv_dlib.read_jpeg(bare, limits=ReadLimits(), default_dpi=96).dpi_x == 96


def test_the_report_of_a_whole_stream(grey, colour):
    report = ReadReport()
    opcv_dlib.read_jpeg(grey, report=report)
    assert report == ReadReport(
        width=40,
        height=24,
        channels=1,
        components=1,
        scans=1,
        dpi_x=200.0,
        dpi_y=100.0,
        memory=report.memory,
        rows=24,
        rows_decoded=24,
        end_marker_seen=True,
    )
    assert report.memory > 40 * 24
    opcv_dlib.read_jpeg(colour, report=report)
    assert (report.channels, report.components, report.dpi_x) == (3, 3, 300.0)


def test_the_report_of_a_damaged_stream(grey):
    report = ReadReport()
    page = opcv_dlib.read_jpeg(grey[: len(grey) * 3 // 4], report=report)
    assert report.damaged and not report.end_marker_seen
    assert 0 < report.rows_decoded < report.rows == page.height
    assert np.array_equal(page.pixels, opcv_dlib.read_jpeg(grey[: len(grey) * 3 // 4]).pixels)
    flipped = bytearray(grey)
    flipped[-9:-7] = b"\xff\x01"
    opcv_dlib.read_jpeg(flipped, report=report)
    assert report.damaged and report.warnings > 0


def test_the_coding_and_the_orientation_are_reported():
    flags = {0xC0: (False, False), 0xC2: (True, False), 0xC9: (False, True), 0xCA: (True, True)}
    for frame, expected in flags.items():
        tiff = b"MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0"
        exif = b"\xff\xe1" + (len(tiff) + 8).to_bytes(2, "big") + b"Exif\0\0" + tiff
        scan = b"\xff\xda\0\x08\x01\x01\0\0\0\0"
        frame_header = b"\xff" + bytes([frame]) + b"\0\x0b\x08\0\x18\0\x28\x01\x01\x11\0"
        info = opcv_dlib.read_jpeg_info(b"\xff\xd8" + exif + frame_header + 7 * scan + b"\xff\xd9")
        assert (info.progressive, info.arithmetic) == expected
        assert (info.orientation, info.width, info.height, info.rows, info.scans) == (6, 24, 40, 24, 7)


def test_the_headers_alone(colour):
    report = ReadReport()
    opcv_dlib.read_jpeg(colour, report=report)
    info = opcv_dlib.read_jpeg_info(colour)
    assert isinstance(info, ReadReport)
    assert (info.rows_decoded, info.end_marker_seen) == (0, False)
    info.rows_decoded, info.end_marker_seen = 24, True
    assert info == report
    assert opcv_dlib.read_jpeg_info(colour, limits=ReadLimits(pixels=960)).width == 40
    for stream, options, status in ((b"no stream", {}, -2), (colour, {"limits": ReadLimits(pixels=959)}, -3)):
        with pytest.raises(opcv_dlib.Error) as caught:
            opcv_dlib.read_jpeg_info(stream, **options)
        assert (caught.value.function, caught.value.status) == ("opcv_read_info", status)


def test_each_limit_is_inclusive(colour):
    info = opcv_dlib.read_jpeg_info(colour)
    exact = {"pixels": 960, "memory": info.memory, "scans": 1, "bytes": len(colour)}
    assert opcv_dlib.read_jpeg(colour, limits=ReadLimits(**exact)).width == 40
    out = np.empty((24, 40, 3), np.uint8)
    for name in ("pixels", "memory", "bytes"):
        limits = ReadLimits(**{name: exact[name] - 1})
        report = ReadReport()
        with pytest.raises(opcv_dlib.Error, match=r"opcv_read_page: OPCV_READ_OVER_LIMIT \(-3\)") as caught:
            opcv_dlib.read_jpeg(colour, limits=limits, report=report)
        assert not isinstance(caught.value, MemoryError)
        assert (report.width, report.damaged) == (0 if name == "bytes" else 40, False)
        if name != "memory":    # the array does not count
            with pytest.raises(opcv_dlib.Error, match=r"opcv_read_rows: OPCV_READ_OVER_LIMIT \(-3\)"):
                opcv_dlib.read_jpeg(colour, limits=limits, out=out)
    again = colour.index(b"\xff\xda")
    with pytest.raises(opcv_dlib.Error, match="OVER_LIMIT"):
        opcv_dlib.read_jpeg(colour[:-2] + colour[again:], limits=ReadLimits(scans=1))


def test_what_is_no_stream_is_reported():
    report = ReadReport()
    for options, function in (({}, "opcv_read_page"), ({"out": np.empty((2, 2), np.uint8)}, "opcv_read_rows")):
        with pytest.raises(opcv_dlib.Error, match=rf"{function}: OPCV_READ_UNREADABLE \(-2\)") as caught:
            opcv_dlib.read_jpeg(b"\xff\xd8\xff", report=report, **options)
        assert (caught.value.function, caught.value.status, report.damaged) == (function, -2, True)


def test_limits_are_counts(grey):
    for wrong in (0, -1, -(10**30)):
        with pytest.raises(ValueError, match="read_jpeg: limits.memory must be 1 or more, or None"):
            opcv_dlib.read_jpeg(grey, limits=ReadLimits(memory=wrong))
    for wrong in (1.5, "1"):
        with pytest.raises(TypeError):
            opcv_dlib.read_jpeg(grey, limits=ReadLimits(pixels=wrong))
    with pytest.raises(TypeError, match="read_jpeg_info: limits must be a ReadLimits or None"):
        opcv_dlib.read_jpeg_info(grey, limits={"pixels": 1})
    with pytest.raises(TypeError, match="read_jpeg: report must be a ReadReport or None"):
        opcv_dlib.read_jpeg(grey, report=True)
    assert opcv_dlib.read_jpeg(grey, limits=ReadLimits(pixels=np.int64(960), scans=2**40)).width == 40


def test_reading_into_an_array(grey, colour):
    for stream, shape in ((grey, (24, 40)), (colour, (24, 40, 3)), (grey, (24, 40, 3))):
        expected = opcv_dlib.read_jpeg(stream).pixels
        if expected.ndim < len(shape):
            expected = np.repeat(expected[..., None], 3, axis=2)
        view = padded(np.zeros(shape, np.uint8))
        report = ReadReport()
        assert opcv_dlib.read_jpeg(stream, out=view, report=report) is view
        assert np.array_equal(view, expected)
        assert report.rows_decoded == 24
        whole = view.base
        whole[2:-2, 5:-5] = 77
        assert (whole == 77).all()


def test_arrays_that_do_not_fit(grey, colour):
    for stream, shape, said in (
        (grey, (24, 41), r"\(24, 40\) or \(24, 40, 3\), not \(24, 41\)"),
        (colour, (24, 40), r"\(24, 40, 3\), not \(24, 40\)"),
        (colour, (40, 24, 3), r"\(24, 40, 3\), not \(40, 24, 3\)"),
    ):
        out = np.full(shape, 9, np.uint8)
        report = ReadReport()
        with pytest.raises(ValueError, match="read_jpeg: out must have the shape " + said):
            opcv_dlib.read_jpeg(stream, out=out, report=report)
        assert (out == 9).all() and (report.width, report.damaged) == (40, False)
    out = np.empty((24, 40), np.uint8)
    for wrong, error in (
        (out.astype(np.int16), TypeError),
        (np.empty((24, 40, 4), np.uint8), ValueError),
        (np.empty((24, 80), np.uint8)[:, ::2], ValueError),
    ):
        with pytest.raises(error, match="read_jpeg: out "):
            opcv_dlib.read_jpeg(grey, out=wrong)
    out.flags.writeable = False
    with pytest.raises(ValueError, match="read_jpeg: out is read-only"):
        opcv_dlib.read_jpeg(grey, out=out)


def test_an_array_must_not_meet_the_stream(grey):
    memory = np.zeros(960 + len(grey) + 960, np.uint8)
    data = memory[960:-960]
    data[:] = np.frombuffer(grey, np.uint8)
    for start in (1, 960, 960 + len(grey) - 1):
        with pytest.raises(ValueError, match="read_jpeg: out overlaps data"):
            opcv_dlib.read_jpeg(data, out=memory[start : start + 960].reshape(24, 40))
        assert data.tobytes() == grey
    for start in (0, 960 + len(grey)):
        opcv_dlib.read_jpeg(data, out=memory[start : start + 960].reshape(24, 40))
        assert data.tobytes() == grey


def test_shortage_of_memory():
    program = """
        import resource
        import numpy as np
        import opcv_dlib

        stream = opcv_dlib.compress_gray(np.zeros((6000, 6000), np.uint8), 90)
        small = opcv_dlib.compress_gray(np.zeros((60, 60), np.uint8), 90)
        out = np.ones((6000, 6000), np.uint8)
        opcv_dlib.read_jpeg(small, out=np.ones((60, 60), np.uint8), limits=opcv_dlib.ReadLimits())
        used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
        resource.setrlimit(resource.RLIMIT_AS, (used + (16 << 20), resource.RLIM_INFINITY))
        report = opcv_dlib.ReadReport()
        try:
            opcv_dlib.read_jpeg(stream, report=report)
        except MemoryError as error:
            print(type(error).__name__, error, report.width, report.damaged)
        opcv_dlib.read_jpeg(stream, out=out, report=report)
        print(out.max(), report.rows_decoded)
    """
    done = subprocess.run([sys.executable, "-c", textwrap.dedent(program)], capture_output=True, text=True, check=True)
    assert done.stdout.splitlines() == [
        "OutOfMemoryError opcv_read_page: OPCV_READ_NO_MEMORY (-4) 6000 False",
        "0 6000",
    ]
