# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The formats that scanpage reads, by their content: pixels, resolution, several pages, damage, hostile sizes."""

import ctypes
import os
import re
import struct
import subprocess
import unittest

from encoders import CMYK, MIN_IS_BLACK, MIN_IS_WHITE, PALETTE, RGB, chunk, png, pnm, tiff, tiff_page
from images import Image, jpeg_of, lept
from support import SCANPAGE, PageTest, rescan

WIDTH, HEIGHT = 45, 37
GREY = [[(7 * x + 5 * y) % 256 for x in range(WIDTH)] for y in range(HEIGHT)]
COLOUR = [[(v, 255 - v, (3 * v) % 256) for v in row] for row in GREY]
BITS = [[int((x // 3 + y // 2) % 3 == 0) for x in range(WIDTH)] for y in range(HEIGHT)]    # ones
BLACK_ONES = [[255 * (1 - b) for b in row] for row in BITS]
WHITE_ONES = [[255 * b for b in row] for row in BITS]


def each(rows, change):
    return [[tuple(map(change, p)) if isinstance(p, tuple) else change(p) for p in row] for row in rows]


def scaled(rows, most):
    """From 0..255 to 0..most, and what should be made of it again."""
    down = each(rows, lambda v: (v * most + 127) // 255)
    return down, each(down, lambda v: (v * 255 + most // 2) // most)


class Formats(PageTest):
    def read(self, *streams, status="done"):
        """The results of pages of these bytes, without their marks."""
        return self.read_with((), *streams, status=status)

    def read_with(self, options, *streams, status="done"):
        pages = [self.folder / f"page-{i}" for i in range(len(streams))]    # their names tell nothing
        for page, stream in zip(pages, streams):
            page.write_bytes(stream)
        run = rescan("-v", "--angle", "0", "--mode", "788", *options, *pages, "-o", self.out)
        self.assertEqual([status] * len(pages), [line.status for line in run.lines], run.stderr)
        self.stderr = run.stderr
        mark = re.compile(rb"\xff\xfe..scanpage: page [0-9a-f]{16}, options [^,]*, (page damaged, )?sum [0-9a-f]{16}", re.S)
        return [mark.sub(b"", (self.out / f"{page.name}.jpg").read_bytes()) for page in pages]

    def assert_pixels(self, expected, *streams):
        """Each stream is read as these rows."""
        right, *found = self.read(pnm(expected, 6 if isinstance(expected[0][0], tuple) else 5), *streams)
        self.assertEqual([True] * len(streams), [right == result for result in found])

    def assert_fails(self, stream, reason):
        page = self.folder / "page"
        page.write_bytes(stream)
        run = rescan(page, "-o", self.out)
        self.assertEqual((1, ["failed"]), (run.status, [line.status for line in run.lines]), run.stderr)
        self.assertIn(f"scanpage: {page}: {reason}\n", run.stderr)
        self.assertEqual([], self.results())


class Pixels(Formats):
    def test_the_yardstick(self):
        for rows, kind in ((GREY, 5), (COLOUR, 6)):
            self.read(pnm(rows, kind))
            image = Image(self.out / "page-0.jpg")
            self.assertEqual((WIDTH, HEIGHT), (image.width, image.height))
            self.assertEqual(isinstance(rows[0][0], tuple), image.depth == 32)
        smooth = [[(4 * x, 6 * y, 99) for x in range(WIDTH)] for y in range(HEIGHT)]
        self.read(pnm(smooth, 6))
        image = Image(self.out / "page-0.jpg")
        for x, y in ((2, 3), (40, 5), (20, 30)):
            for found, expected in zip(image.at(x, y), smooth[y][x]):
                self.assertAlmostEqual(expected, found, delta=12)

    def test_pnm(self):
        self.assert_pixels(BLACK_ONES, pnm(BITS, 1), pnm(BITS, 4), pnm(BITS, 4, comment=b"# by a scanner 9 9\n"))
        self.assert_pixels(GREY, pnm(GREY, 2), pnm(each(GREY, lambda v: 257 * v), 5, 65535))
        self.assert_pixels(COLOUR, pnm(COLOUR, 3), pnm(each(COLOUR, lambda v: 257 * v), 6, 65535),
                           pnm(each(COLOUR, lambda v: 257 * v), 3, 65535))    # fmt: skip
        for most in (1, 100, 1000):
            down, up = scaled(GREY, most)
            self.assert_pixels(up, pnm(down, 5, most), pnm(down, 2, most))
        self.assert_pixels([[255, 0]], b"P5 2 1 9\n\xff\0")    # a value above the largest is white
        self.assert_pixels([[255, 0, 0]], b"P1#x\n3#y\n 1\n0#z\n 1 1", b"P1 3 1 011")

    def test_png(self):
        self.assert_pixels(WHITE_ONES, png(BITS, 1, 0))
        for bits in (2, 4):
            down, up = scaled(GREY, 2**bits - 1)
            self.assert_pixels(up, png(down, bits, 0))
        self.assert_pixels(GREY, png(GREY, 8, 0), png(each(GREY, lambda v: 257 * v), 16, 0), png(GREY, 8, 0, interlaced=True))
        self.assert_pixels(COLOUR, png(COLOUR, 8, 2), png(each(COLOUR, lambda v: 257 * v), 16, 2),
                           png(COLOUR, 8, 2, interlaced=True))    # fmt: skip

    def test_a_png_with_a_palette(self):
        palette = bytes(range(30, 42))
        rows = [[(x + y) % 4 for x in range(WIDTH)] for y in range(HEIGHT)]
        shown = [[tuple(palette[3 * v : 3 * v + 3]) for v in row] for row in rows]
        self.assert_pixels(shown, *(png(rows, bits, 3, palette=palette) for bits in (2, 4, 8)))
        shown = [[(255, 255, 255) if v == 1 else p for v, p in zip(*pair)] for pair in zip(rows, shown)]
        self.assert_pixels(shown, png(rows, 8, 3, palette=palette, transparent=b"\xff\0"))

    def test_opacity_is_put_on_white(self):
        opacity = (0, 51, 128, 255)
        over = lambda v, a: 255 - ((255 - v) * a + 127) // 255
        turn = lambda rows, f: [[f(v, opacity[(x + y) % 4]) for x, v in enumerate(row)] for y, row in enumerate(rows)]
        grey, colour = turn(GREY, over), turn(COLOUR, lambda p, a: tuple(over(v, a) for v in p))
        grey_a, colour_a = turn(GREY, lambda v, a: (v, a)), turn(COLOUR, lambda p, a: (*p, a))
        unassociated = {"t338": (3, 2)}
        self.assert_pixels(grey, png(grey_a, 8, 4), png(each(grey_a, lambda v: 257 * v), 16, 4),
                           tiff(tiff_page(grey_a, **unassociated)))    # fmt: skip
        self.assert_pixels(colour, png(colour_a, 8, 6), tiff(tiff_page(colour_a, kind=RGB, **unassociated)))
        # Multiplied beforehand, and a fourth channel of unknown meaning.
        times = turn(COLOUR, lambda p, a: (*((v * a + 127) // 255 for v in p), a))
        shown = [[tuple(min(255, v + 255 - p[3]) for v in p[:3]) for p in row] for row in times]
        self.assert_pixels(shown, tiff(tiff_page(times, kind=RGB, t338=(3, 1))))
        self.assert_pixels(COLOUR, tiff(tiff_page(colour_a, kind=RGB, t338=(3, 0))))

    def test_tiff(self):
        for order in "<>":
            page = lambda *args, **kwargs: tiff(tiff_page(*args, order=order, **kwargs), order=order)
            inverse = each(GREY, lambda v: 255 - v)
            self.assert_pixels(WHITE_ONES, page(BITS, 1))
            self.assert_pixels(BLACK_ONES, page(BITS, 1, MIN_IS_WHITE))
            self.assert_pixels(GREY, page(GREY), page(inverse, 8, MIN_IS_WHITE), page(each(GREY, lambda v: 257 * v), 16))
            self.assert_pixels(COLOUR, page(COLOUR, 8, RGB), page(each(COLOUR, lambda v: 257 * v), 16, RGB),
                               page(COLOUR, 8, RGB, planar=True), page(COLOUR, 8, RGB, tile=32))    # fmt: skip
            self.assert_pixels(GREY, page(GREY, tile=32), page(GREY, tile=64))
            for bits in (2, 4):
                down, up = scaled(GREY, 2**bits - 1)
                self.assert_pixels(up, page(down, bits))
        dark = [[(0, 0, 0, v) for v in row] for row in GREY]
        self.assert_pixels([[(255 - v,) * 3 for v in row] for row in GREY], tiff(tiff_page(dark, kind=CMYK)))
        self.assert_pixels([[(255 - v, 255, 255) for v in row] for row in GREY],
                           tiff(tiff_page([[(v, 0, 0, 0) for v in row] for row in GREY], kind=CMYK)))    # fmt: skip

    def test_a_tiff_with_a_palette(self):
        colours = [[10, 90, 200, 250], [0, 70, 140, 255], [33, 11, 222, 7]]
        rows = [[(x + y) % 4 for x in range(WIDTH)] for y in range(HEIGHT)]
        shown = [[tuple(c[v] for c in colours) for v in row] for row in rows]
        for scale in (1, 257):    # old files have 8 bits
            for bits in (2, 4, 8):
                table = [v * scale for c in colours for v in c + [0] * (2**bits - 4)]
                self.assert_pixels(shown, tiff(tiff_page(rows, bits, PALETTE, t320=(3, *table))))

    def test_a_compressed_tiff(self):
        packbits, rle, g3, g4, lzw, deflate = 5, 6, 7, 8, 9, 10
        for rows, kind, codes in ((BITS, 4, (packbits, rle, g3, g4, lzw, deflate)), (GREY, 5, (lzw, deflate)), (COLOUR, 6, (lzw, deflate))):
            streams = [leptonica_tiff(self.root, pnm(rows, kind), code) for code in codes]
            self.assert_pixels(BLACK_ONES if kind == 4 else rows, *streams)

    def test_the_orientation_of_a_tiff(self):
        """Row 0 and column 0 of the stored page, as the standard names them."""
        flipped = [row[::-1] for row in COLOUR]
        transposed = [list(column) for column in zip(*COLOUR)]
        shown = {1: COLOUR, 2: flipped, 3: flipped[::-1], 4: COLOUR[::-1], 5: transposed,
                 6: [row[::-1] for row in transposed], 7: [row[::-1] for row in transposed][::-1], 8: transposed[::-1]}    # fmt: skip
        for orientation, rows in shown.items():
            with self.subTest(orientation):
                self.assert_pixels(rows, tiff(tiff_page(COLOUR, 8, RGB, t274=(3, orientation))),
                                   tiff(tiff_page(COLOUR, 8, RGB, t274=(3, orientation), tile=32)))    # fmt: skip
        self.read(tiff(tiff_page(COLOUR, 8, RGB, t274=(3, 6), density=(200, 100, 2))))
        self.assertIn("100 x 200 dpi", self.stderr)


def leptonica_tiff(folder, drawn, compression):
    """By Leptonica's codes."""
    (folder / "drawn.pnm").write_bytes(drawn)
    pix = ctypes.c_void_p(lept.pixRead(os.fspath(folder / "drawn.pnm").encode()))
    target = folder / "drawn.tif"
    assert lept.pixWriteTiff(os.fspath(target).encode(), pix, compression, b"w") == 0
    return target.read_bytes()


class Resolution(Formats):
    def test_png(self):
        for density, dpi in (((11811, 5906, 1), "300 x 150"), ((3, 2, 0), "300 x 300"), (None, "300 x 300"),
                             ((2**31 - 1, 7874, 1), "200 x 200")):    # fmt: skip
            self.read(png(GREY, 8, 0, density))
            self.assertIn(f", {dpi} dpi", self.stderr)

    def test_tiff(self):
        none, inch, centimetre = 1, 2, 3
        for density, dpi in (((600, 150, inch), "600 x 150"), ((118, 79, centimetre), "300 x 201"),
                             ((3, 2, none), "300 x 300"), (None, "300 x 300"), ((0, 200, inch), "200 x 200")):    # fmt: skip
            self.read(tiff(tiff_page(GREY, density=density)))
            self.assertIn(f", {dpi} dpi", self.stderr)
        result = (self.out / "page-0.jpg").read_bytes()
        self.assertEqual((1, 200, 200), struct.unpack(">BHH", result[13:18]))

    def test_a_page_without_one_has_the_assumed_one(self):
        for stream in (pnm(GREY, 5), png(GREY, 8, 0), tiff(tiff_page(GREY))):
            self.read_with(["--assume-dpi", "75"], stream)
            self.assertIn(", 75 x 75 dpi", self.stderr)
        self.read_with(["--assume-dpi", "75"], png(GREY, 8, 0, (11811, 11811, 1)))
        self.assertIn(", 300 x 300 dpi", self.stderr)
        options = ["--resume", "--angle", "0", "--mode", "788", self.folder / "page-0", "-o", self.out]
        self.assertEqual("kept", rescan("--assume-dpi", "75", *options).lines[0].status)
        self.assertEqual("done", rescan(*options).lines[0].status)


class SeveralPages(Formats):
    def pages_of(self, stream, *options, name="book.tif"):
        page = self.folder / name
        page.write_bytes(stream)
        return rescan("--angle", "0", *options, page, "-o", self.out)

    def test_all_are_read(self):
        thumbnail, mask = {"t254": (4, 1)}, {"t254": (4, 4)}
        second = [[9] * 12] * 7
        stream = tiff(tiff_page(GREY, density=(200, 200, 2)), tiff_page(second, **thumbnail), tiff_page(second),
                      tiff_page([[1]], **mask), tiff_page(COLOUR, kind=RGB))    # fmt: skip
        run = self.pages_of(stream)
        self.assertEqual((0, [f"{self.folder}/book.tif#00{i}" for i in (1, 2, 3)]), (run.status, [l.file for l in run.lines]))
        self.assertEqual([f"book-00{i}.jpg" for i in (1, 2, 3)], self.results())
        sizes = [(Image(self.out / name).width, Image(self.out / name).depth) for name in self.results()]
        self.assertEqual([(WIDTH, 8), (12, 8), (WIDTH, 32)], sizes)
        before = {path: path.stat() for path in self.out.iterdir()}
        run = self.pages_of(stream, "--resume")
        self.assertEqual(["kept"] * 3, [line.status for line in run.lines])
        self.assertEqual(before, {path: path.stat() for path in self.out.iterdir()})
        one = rescan("--angle", "0", self.folder / "book.tif", "-o", self.out)
        self.assertEqual(["done"] * 3, [line.status for line in one.lines])

    def test_one_page_has_the_name_of_its_file(self):
        run = self.pages_of(tiff(tiff_page(GREY)))
        self.assertEqual(([f"{self.folder}/book.tif"], ["book.jpg"]), ([line.file for line in run.lines], self.results()))

    def test_equal_pages_are_told_apart(self):
        stream = tiff(*[tiff_page(GREY)] * 2)
        self.assertEqual(0, self.pages_of(stream).status)
        marks = {re.search(rb"page [0-9a-f]{16}", path.read_bytes())[0] for path in self.out.iterdir()}
        self.assertEqual(2, len(marks))

    def test_numbers_have_the_same_width(self):
        run = self.pages_of(tiff(*[tiff_page([[9] * 3] * 3)] * 1001))
        self.assertEqual((0, 1001), (run.status, len(run.lines)))
        self.assertEqual(["book-0001.jpg", "book-1001.jpg"], [self.results()[0], self.results()[-1]])

    def test_a_name_is_used_once(self):
        taken = jpeg_of(self.folder / "book-002.jpg", GREY)
        (self.folder / "book.tif").write_bytes(tiff(*[tiff_page(GREY)] * 3))
        run = rescan("--angle", "0", taken, self.folder / "book.tif", "-o", self.out)
        self.assertEqual(["done", "done", "failed", "done"], [line.status for line in run.lines])
        self.assertIn("another page has already used the name book-002 for its results", run.stderr)

    def test_a_broken_chain(self):
        """The place of the third directory leads nowhere, then back to the first."""
        pages = [tiff_page(GREY)] * 3
        stream = bytearray(tiff(*pages))
        link = len(tiff(*pages[:2])) - 4
        for target in (len(stream) + 1000, struct.unpack_from("<I", stream, 4)[0]):
            struct.pack_into("<I", stream, link, target)
            run = self.pages_of(bytes(stream))
            self.assertEqual((1, ["done", "damaged"]), (run.status, [line.status for line in run.lines]))
            self.assertIn("book.tif#002: is damaged: the pages behind this one cannot be found\n", run.stderr)

    def test_a_bad_page_does_not_stop_the_others(self):
        run = self.pages_of(tiff(tiff_page(GREY), tiff_page(GREY, size=(70000, 5)), tiff_page(GREY)))
        self.assertEqual((1, ["done", "failed", "done"]), (run.status, [line.status for line in run.lines]))
        self.assertIn("book.tif#002: is too large to be a page\n", run.stderr)


class Damage(Formats):
    def cut(self, stream, share):
        return stream[: int(len(stream) * share)]

    def assert_damaged(self, expected, stream, reason):
        """Rows that are there are as they were, the others are white."""
        result = self.read(stream, status="damaged")
        found = re.search(r"^scanpage: .*/page-0: (is damaged: .*)$", self.stderr, re.M)[1]
        self.assertRegex(found, reason)
        rows = int(re.search(r"only (\d+) of", found)[1])
        colour = isinstance(expected[0][0], tuple)
        white = [(255, 255, 255) if colour else 255] * WIDTH
        self.assertTrue(result == self.read(pnm(expected[:rows] + [white] * (HEIGHT - rows), 6 if colour else 5)))

    def test_rows_are_missing(self):
        noise = [[(x * x + 31 * y * x + y * y * 7) % 256 for x in range(WIDTH)] for y in range(HEIGHT)]
        rows = f"only (1[0-9]|2[0-9]) of {HEIGHT} rows are there"
        for expected, stream in (
            (noise, pnm(noise, 5)),
            (noise, pnm(noise, 2)),
            (COLOUR, pnm(COLOUR, 6)),
            (BLACK_ONES, pnm(BITS, 4)),
            (BLACK_ONES, pnm(BITS, 1)),
            (noise, png(noise, 8, 0)),
            (noise, png([[(v, 255) for v in row] for row in noise], 8, 4)),
        ):
            self.assert_damaged(expected, self.cut(stream, 0.6), rows)

    def test_a_tiff_with_its_directory_in_front_may_be_cut(self):
        """As scanners write it."""
        page, pieces, where, lengths = tiff_page([[(x + y) % 251 for x in range(500)] for y in range(100)])
        stream = tiff((page, pieces, where, lengths))
        start = struct.unpack_from("<I", stream, 4)[0]
        front = stream[:4] + struct.pack("<I", 8) + stream[start:]
        front = front.replace(struct.pack("<HHII", where, 4, 1, 8), struct.pack("<HHII", where, 4, 1, len(front)))
        self.assertEqual(self.read(stream), self.read(front + pieces[0]))
        self.read(front + pieces[0][: 500 * 70], status="damaged")
        self.assertRegex(self.stderr, r"is damaged: only [5-7]\d of 100 rows are there\n")

    def test_the_end_of_a_png(self):
        stream = png(GREY, 8, 0)
        result = self.read(stream)
        self.assertTrue(result == self.read(stream[:-12], status="damaged"))
        self.assertIn("is damaged: its end is missing\n", self.stderr)

    def test_errors_in_the_data(self):
        stream = png(GREY, 8, 0)
        place = stream.index(b"IDAT") + 200
        self.read(stream[:place] + b"\x55" * 8 + stream[place + 8 :], status="damaged")
        fax = bytearray(leptonica_tiff(self.root, pnm(BITS, 4), 8))
        fax[100:140] = b"\0" * 40
        self.read(bytes(fax), status="damaged")
        self.assertRegex(self.stderr, "is damaged: (its data contain errors|only)")

    def test_damaged_pages_may_be_refused(self):
        page = self.folder / "page"
        page.write_bytes(self.cut(pnm(GREY, 5), 0.5))
        run = rescan("--damaged", "refuse", page, "-o", self.out)
        self.assertEqual((1, "failed", []), (run.status, run.lines[0].status, self.results()))
        self.assertIn("is damaged: only", run.stderr)
        rescan(page, "-o", self.out)
        self.assertEqual("damaged", rescan("--resume", page, "-o", self.out).lines[0].status)

    def test_nothing_of_the_page_is_there(self):
        decoded = "cannot be decoded"
        for stream in (b"P5\n4 4\n255\n", b"P5 4 4", b"P4\n0 9\n", b"P5 4 4 0\n" + b"1" * 16, b"P5 4 4 65536\n" + b"1" * 32,
                       b"P2 4 4 255\nx", b"P5 9999999999 1 255\n", png(GREY, 8, 0)[:40], png([[]], 8, 0, size=(0, 5)),
                       b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", bytes(13)), tiff(tiff_page(GREY))[:60], b"II*\0\x08\0\0\0"):    # fmt: skip
            self.assert_fails(stream, decoded)
        for stream in (b"P7\nWIDTH 1\n", b"P5x4 4 255\n", b"GIF89a", b"BM" + bytes(60), b"\x89PNG\r\n\x1a\nnonsense", b"P", b"%PDF-1.5"):
            self.assert_fails(stream, "is not a JPEG, PNG, TIFF or PNM file")

    def test_what_libtiff_cannot_convert(self):
        floats = {"t339": (3, 3)}
        page = self.folder / "page"
        page.write_bytes(tiff(tiff_page(each(GREY, lambda v: 257 * v), 16, **floats, tile=16)))
        run = rescan(page, "-o", self.out)
        self.assertEqual("failed", run.lines[0].status)
        self.assertRegex(run.stderr, "cannot be decoded")


class HostileSizes(Formats):
    def peak(self, stream):
        page = self.folder / "page"
        page.write_bytes(stream)
        scan = subprocess.Popen([SCANPAGE, page, "-o", self.out], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        printed = scan.stderr.read().decode()
        scan.stderr.close()
        _, status, usage = os.wait4(scan.pid, 0)
        scan.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(1, scan.returncode, printed)
        return printed, usage.ru_maxrss / 1024

    def test_they_cost_no_memory(self):
        too_short = "cannot be decoded: it is too short for a page of its size\n"
        too_large = "is too large to be a page\n"
        for stream, reason in (
            (b"P5\n30000 30000\n255\n" + bytes(9999), too_short),
            (b"P1\n30000 30000\n" + b"0" * 9999, too_short),
            (b"P6\n60000 60000\n255\n" + bytes(9999), too_large),
            (b"P4\n70000 1\n" + bytes(9999), too_large),
            (png([[0] * 9] * 9, 8, 2, size=(30000, 30000)), too_short),
            (png([[0] * 9] * 9, 8, 2, size=(100000, 1)), "cannot be decoded\n"),
            (tiff(tiff_page(GREY, size=(30000, 30000))), too_short),
            (tiff(tiff_page(COLOUR, kind=RGB, size=(30000, 30000), tile=32)), too_short),
            (tiff(tiff_page(GREY, size=(30000, 30000), t259=(3, 5))), too_short),
            (tiff(tiff_page(BITS, 1, size=(60000, 17000), t259=(3, 4))), too_short),
            (tiff(tiff_page(GREY, size=(2**31, 2**31))), "cannot be decoded\n"),
        ):
            printed, megabytes = self.peak(stream)
            self.assertIn(f"{self.folder}/page: {reason}", printed)
            self.assertLess(megabytes, 60)


if __name__ == "__main__":
    unittest.main()
