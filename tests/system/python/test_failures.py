# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""How failures of the library arrive, and calls on many threads."""

import copy
import pickle
import re
import subprocess
import sys
import textwrap
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import opcv_dlib
import pytest
from support import image

GREY = np.zeros((20, 30), np.uint8)
COLOUR = np.zeros((20, 30, 3), np.uint8)
PAGE = opcv_dlib.Page(GREY)
PAGE32 = opcv_dlib.Page(np.zeros((20, 30, 4), np.uint8))
BITS = opcv_dlib.Page.empty(9, 9, 1)


def documented(name):
    """The library's functions that a function of the module calls, as its text names them."""
    text = getattr(opcv_dlib, name).__doc__
    return re.findall(r"`(\w+)`", text.split("Calls")[-1])


@pytest.mark.parametrize(
    ("name", "which", "status", "arguments"),
    [
        ("filter_median", 0, -5, (GREY, 4)),
        ("filter_median", 2, -5, (COLOUR, 2)),
        ("filter_median", 3, None, (GREY.astype(float), 3)),
        ("filter_median_cross", 0, -5, (GREY, 44)),
        ("filter_median_weighted_center", 0, -5, (GREY, 4)),
        ("filter_median_color", 0, -5, (COLOUR, 55)),
        ("convolve", 0, -5, (GREY, [[1]], 0)),
        ("filter_bilateral", 0, -5, (GREY, 4, 1, 1)),
        ("reduce_noise_rgb", 0, 1, (COLOUR, 3)),
        ("reduce_noise_rgb", 0, 2, (COLOUR, 1, 11)),
        ("reduce_noise_rgb", 0, 3, (COLOUR, 1)),
        ("rotate", 0, -5, (GREY, 0, (1e12, 0))),
        ("rotate_on_black", 0, -50, (GREY, 0, (np.nan, 0))),
        ("resize_sqr_pixel", 0, None, (GREY, 1e-9, 1)),
        ("resize_sqr_pixel", 0, -5, (GREY, 1, 1, (99, 0))),
        ("deskew", 0, -2, (BITS, 1)),
        ("deskew_crop", 0, -2, (BITS, 1, (0, 0, 9, 9))),
        ("deskew_about", 0, -2, (BITS, 1, (0, 0), (9, 9))),
        ("rotate_page", 0, -3, (PAGE, 89.9)),
        ("rotate90", 0, -2, (BITS,)),
        ("resize", 0, -50, (PAGE, 1, 100)),
        ("resize", 0, -2, (BITS, 1, 2)),
        ("compress_jpeg", 0, -50, (PAGE, 100)),
        ("compress_jpeg", 0, -50, (PAGE32, 389)),
        ("compress_jpeg_ex", 0, -50, (PAGE, 100)),
        ("compress_jpeg_with_ipp", 0, -50, (PAGE32, 389)),
        ("read_jpeg", 0, -50, (b"\xff\xd8\xff",)),
    ],
)
def test_a_refusal_names_the_function_and_its_status(name, which, status, arguments):
    with pytest.raises(opcv_dlib.Error) as caught:
        getattr(opcv_dlib, name)(*arguments)
    error = caught.value
    assert (error.function, error.status) == (documented(name)[which], status)
    assert str(error).startswith(f"{error.function}: ") and len(error.message) > 5
    assert not isinstance(error, MemoryError)


@pytest.mark.parametrize(
    ("name", "status", "arguments"),
    [
        ("rotate_page", "badAngleErr (-3)", (PAGE, 1)),
        ("filter_median", "ippStsBadArgErr (-5)", (GREY, 2)),
        ("compress_jpeg", "paramErr (-50)", (PAGE, 100)),
        ("deskew", "rotateFailedErr (-2)", (BITS, 1)),
        ("reduce_noise_rgb", "status (3)", (COLOUR,)),
        ("new_plane_16s", "ippStsNoMemErr (-4)", (40000, 40000)),
        ("resize", "memFullErr (-108)", (PAGE, 1e7, 1)),
    ],
)
def test_statuses_have_names(name, status, arguments):
    with pytest.raises(opcv_dlib.Error) as caught:
        getattr(opcv_dlib, name)(*arguments)
    assert str(caught.value) == f"{documented(name)[0]}: {status}"


@pytest.mark.parametrize(
    ("function", "status", "call"),
    [
        ("CreateNewKVIMGPtr", -108, lambda: opcv_dlib.Page.empty(40000, 40000, 24)),
        ("CreateNewKVIMGPtrForUnite", -108, lambda: opcv_dlib.Page.empty(40000, 40000, 24, for_unite=True)),
        (documented("new_plane_16s")[0], -4, lambda: opcv_dlib.new_plane_16s(40000, 40000)),
        (documented("new_image_8u_c3")[0], -4, lambda: opcv_dlib.new_image_8u_c3(40000, 40000)),
        (documented("resize")[0], -108, lambda: opcv_dlib.resize(PAGE, 1e7, 1)),
    ],
)
def test_what_does_not_fit_is_a_memory_error(function, status, call):
    with pytest.raises(MemoryError) as caught:
        call()
    assert isinstance(caught.value, opcv_dlib.OutOfMemoryError) and isinstance(caught.value, opcv_dlib.Error)
    assert (caught.value.function, caught.value.status) == (function, status)


def test_rows_that_cannot_be_made_longer_are_a_memory_error():
    row = np.zeros((1, 2**31 - 8), np.uint8)    # takes no memory until it is looked at
    with pytest.raises(opcv_dlib.OutOfMemoryError, match=f"^{documented('convolve')[0]}: out of memory") as caught:
        opcv_dlib.convolve(row, np.ones((1, 51), int))
    assert caught.value.status is None


def test_shortage_of_memory_in_opencv_and_in_the_module_is_a_memory_error():
    program = """
        import resource
        import numpy as np
        import opcv_dlib

        src = np.random.default_rng(1).integers(0, 256, (6000, 6000), np.uint8)
        out = np.empty((5990, 5990), np.uint8)
        opcv_dlib.filter_median(src[:60, :60], 33)
        opcv_dlib.convolve(src[:30, :30], np.ones((9, 9), int))
        used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
        resource.setrlimit(resource.RLIMIT_AS, (used + (16 << 20), resource.RLIM_INFINITY))
        for call in (
            lambda: opcv_dlib.filter_median(src, 33, out=out[:5968, :5968]),
            lambda: opcv_dlib.convolve(src, np.ones((9, 9), int), 81, region=(5, 5, 5990, 5990), out=out),
        ):
            try:
                call()
            except MemoryError as error:
                print(error.function, error.status)
        try:
            opcv_dlib.compress_gray(src, 100)
        except opcv_dlib.Error as error:
            print(error)
    """
    done = subprocess.run([sys.executable, "-c", textwrap.dedent(program)], capture_output=True, text=True, check=True)
    assert done.stdout.split("\n")[:3] == [
        f"{documented('filter_median')[0]} None",
        f"{documented('convolve')[0]} None",
        f"{documented('compress_gray')[0]}: the encoder failed",
    ]


def test_errors_can_be_copied_and_pickled():
    error = opcv_dlib.Error("AnyFunction", -50, "paramErr (-50)")
    for again in (copy.copy(error), pickle.loads(pickle.dumps(error))):
        assert (type(again), again.function, again.status, str(again)) == (
            opcv_dlib.Error,
            "AnyFunction",
            -50,
            "AnyFunction: paramErr (-50)",
        )


def long_calls(rng):
    src = image(rng, 2000, 2000)
    stream = opcv_dlib.compress_gray(src, 90)
    page = opcv_dlib.Page(src)
    out = np.empty_like(src)
    table = rng.standard_normal((900, 900)).astype(np.float32)
    return {
        "filter_median": lambda: opcv_dlib.filter_median(src, 15),
        "read_jpeg": lambda: opcv_dlib.read_jpeg(stream),
        "read_jpeg into an array": lambda: opcv_dlib.read_jpeg(stream, out=out),
        "compress_jpeg": lambda: opcv_dlib.compress_jpeg(page, 788),
        "sgemm": lambda: opcv_dlib.sgemm(table, table),
    }


@pytest.mark.parametrize("name", ["filter_median", "read_jpeg", "read_jpeg into an array", "compress_jpeg", "sgemm"])
def test_other_threads_run_while_the_library_works(rng, name):
    call = long_calls(rng)[name]
    ticks = []
    done = threading.Event()

    def tick():
        while not done.is_set():
            ticks.append(time.monotonic())
            time.sleep(0.0005)

    def ran_meanwhile():
        start = time.monotonic()
        call()
        end = time.monotonic()
        quarter = (end - start) / 4    # at its ends a call holds the lock
        return sum(start + quarter < at < end - quarter for at in list(ticks)) >= 2

    thread = threading.Thread(target=tick)
    thread.start()
    try:
        # On a busy machine the other thread may not get a processor during a call, but with the lock held it never does.
        assert any(ran_meanwhile() for _ in range(50))
    finally:
        done.set()
        thread.join()


def test_threads_get_the_results_of_a_single_one(rng):
    grey, colour = image(rng, 150, 200), image(rng, 150, 200, 3)
    page = opcv_dlib.Page(colour)
    stream = opcv_dlib.compress_rgb_444(colour, 90)

    def work(_):
        return (
            opcv_dlib.filter_median_cross(grey).tobytes()
            + opcv_dlib.convolve(colour, np.ones((3, 3), int), 9).tobytes()
            + opcv_dlib.deskew(page, 2.5).pixels.tobytes()
            + opcv_dlib.read_jpeg(stream).pixels.tobytes()
            + opcv_dlib.compress_jpeg(page, 389)
            + opcv_dlib.rotate(grey, 10, (3, 4)).tobytes()
            + opcv_dlib.reduce_bits(grey).tobytes()
        )

    expected = work(0)
    with ThreadPoolExecutor(4) as pool:
        assert all(result == expected for result in pool.map(work, range(16)))
