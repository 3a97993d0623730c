# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Shaded paper, pages on their side or head, and blank pages."""

import ctypes
import re
import tempfile
import unittest

from encoders import pnm
from images import Image, lept, ppm
from support import PageTest, rescan

PAPER, INK = 240, 30
TEXT = (
    "It was the best of times, it was the worst of times, it was the age of wisdom, it was the age of foolishness, "
    "it was the epoch of belief, it was the epoch of incredulity, it was the season of Light, it was the season of "
    "Darkness, it was the spring of hope, it was the winter of despair, we had everything before us, we had nothing "
    "before us, we were all going direct to Heaven, we were all going direct the other way. "
)


def blank(width=600, height=480, level=PAPER):
    return [[level] * width for _ in range(height)]


def printed(text=TEXT * 4, width=600, height=480):
    """A page of text at 100 dots per inch, as rows of grey levels."""
    lept.pixCreate.restype = lept.bmfCreate.restype = lept.pixAddTextlines.restype = ctypes.c_void_p
    lept.bmfCreate.argtypes = [ctypes.c_char_p, ctypes.c_int]
    lept.pixSetTextline.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32, ctypes.c_int,
                                    ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p]    # fmt: skip
    pix = lept.pixCreate(width, height, 1)
    font = lept.bmfCreate(None, 6)
    words, y = text.split(), 60
    while words and y < height - 70:
        line = []
        while words and len(" ".join(line + words[:1])) < 44:
            line.append(words.pop(0))
        lept.pixSetTextline(pix, font, " ".join(line).encode(), 1, 60, y, None, None)
        y += 26
    with tempfile.NamedTemporaryFile(suffix=".pbm") as file:
        assert lept.pixWrite(file.name.encode(), ctypes.c_void_p(pix), 11) == 0    # as PNM
        return [[INK if bit else PAPER for bit in row] for row in pbm_rows(file.read())]


def pbm_rows(stream):
    """Of a binary PBM."""
    fields = re.match(rb"P4\s+(?:#.*\n)?(\d+)\s+(\d+)\s", stream)
    width, height = int(fields[1]), int(fields[2])
    step = (width + 7) // 8
    rows = (stream[fields.end() + y * step :][:step] for y in range(height))
    return [[int(bit) for bit in "".join(f"{byte:08b}" for byte in row)[:width]] for row in rows]


def shaded(rows):
    """Three quarters darker at the right edge."""
    return [[round(v * (1 - 0.75 * x / len(row))) for x, v in enumerate(row)] for row in rows]


def turned(rows):
    """A quarter turn counter-clockwise."""
    return [list(column) for column in zip(*rows)][::-1]


class Pages(PageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.text = printed()

    def run_on(self, rows, *options):
        page = self.folder / "page.pnm"
        page.write_bytes(pnm(rows, 6 if isinstance(rows[0][0], tuple) else 5))
        run = rescan("--assume-dpi", "100", *options, page, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        return run.lines[0]

    def bits_of(self, rows, *options):
        self.run_on(rows, "--angle", "0", "--format", "pbm", *options)
        return pbm_rows((self.out / "page.pbm").read_bytes())

    def ink_of(self, rows):
        return [[int(v == INK) for v in row] for row in rows]

    def share_of_difference(self, expected, found):
        differing = sum(a != b for pair in zip(expected, found) for a, b in zip(*pair))
        return differing / (len(expected) * len(expected[0]))


class Background(Pages):
    def test_one_bit_is_flattened(self):
        dark = shaded(self.text)
        right = self.ink_of(self.text)
        self.assertLess(self.share_of_difference(right, self.bits_of(dark)), 0.002)
        self.assertGreater(self.share_of_difference(right, self.bits_of(dark, "--background", "keep")), 0.1)
        self.assertLess(self.share_of_difference(right, self.bits_of(dark, "--background", "flatten")), 0.002)

    def test_a_threshold_that_is_given_is_one_of_the_page(self):
        dark = shaded(self.text)
        expected = [[int(v <= 100) for v in row] for row in dark]
        self.assertTrue(expected == self.bits_of(dark, "--threshold", "100"))
        flat = self.bits_of(dark, "--threshold", "100", "--background", "flatten")
        self.assertLess(self.share_of_difference(self.ink_of(self.text), flat), 0.002)

    def test_pages_of_one_bit_stay_as_they_are(self):
        ink = [[int(200 < x < 400 and 200 < y < 300) or b for x, b in enumerate(row)] for y, row in enumerate(self.ink_of(self.text))]
        page = self.folder / "bits.pbm"
        page.write_bytes(pnm(ink, 4))
        rescan("--angle", "0", "--format", "pbm", page, "-o", self.out)
        self.assertTrue(ink == pbm_rows((self.out / "bits.pbm").read_bytes()))

    def test_a_jpeg_is_flattened_on_request(self):
        for rows in (shaded(self.text), [[(v, v, v) for v in row] for row in shaded(self.text)]):
            found = {}
            for choice in ("keep", "flatten"):
                self.run_on(rows, "--angle", "0", "--mode", "788", "--background", choice)
                image = Image(self.out / "page.jpg")
                found[choice] = [image.at(x, 40) for x in (30, 300, 580)]
            level = lambda p: p if isinstance(p, int) else p[1]
            for x, kept, flat in zip((30, 300, 580), found["keep"], found["flatten"]):
                self.assertAlmostEqual(PAPER * (1 - 0.75 * x / 600), level(kept), delta=12)
                self.assertAlmostEqual(230, level(flat), delta=15)
        kept = self.run_on(shaded(self.text), "--angle", "0", "--mode", "788")
        self.assertAlmostEqual(PAPER * 0.275, Image(self.out / "page.jpg").at(580, 40), delta=12)
        self.assertEqual("done", kept.status)

    def test_small_pages_stay_as_they_are(self):
        rows = [[(10 * x) % 256 for x in range(20)] for _ in range(20)]
        self.run_on(rows, "--angle", "0", "--mode", "788", "--background", "flatten")
        self.assertAlmostEqual(100, Image(self.out / "page.jpg").at(10, 10), delta=15)

    def test_the_choice_belongs_to_the_result(self):
        self.bits_of(self.text)
        page = self.folder / "page.pnm"
        for options, status in (([], "kept"), (["--background", "keep"], "done"), (["--background", "flatten"], "done")):
            run = rescan("--resume", "--assume-dpi", "100", "--angle", "0", "--format", "pbm", *options, page, "-o", self.out)
            self.assertEqual(status, run.lines[0].status, options)

    def test_unknown_choices_are_refused(self):
        run = rescan("--background", "white", self.pages[0], "-o", self.out)
        self.assertEqual((2, []), (run.status, run.lines))
        self.assertIn("--background", run.stderr)


class Orientation(Pages):
    def test_text_is_put_upright(self):
        rows = self.text
        for angle in ("0.00", "-90.00", "180.00", "90.00"):
            line = self.run_on(rows, "--orient")
            self.assertLess(abs((float(line.skew) - float(angle) + 180) % 360 - 180), 0.3)
            image = Image(self.out / "page.jpg")
            self.assertEqual((600, 480), (image.width, image.height))
            dark = sum(image.at(x, y) < 120 for x in range(0, 600) for y in (70, 74, 78))
            self.assertGreater(dark, 50, angle)    # the first line is at the top
            rows = turned(rows)

    def test_only_on_request(self):
        self.assertLess(abs(float(self.run_on(turned(turned(self.text))).skew)), 0.3)

    def test_a_skewed_page_on_its_head(self):
        self.run_on(self.text, "--angle", "177", "--mode", "788")
        (self.out / "page.jpg").rename(self.folder / "head.jpg")
        line = rescan("--orient", self.folder / "head.jpg", "-o", self.out).lines[0]
        self.assertAlmostEqual(183, float(line.skew) % 360, delta=0.4)

    def test_pages_without_text_stay(self):
        line = self.run_on(blank(), "--orient")
        self.assertEqual(("-", "blank"), (line.skew, line.reason))

    def test_it_excludes_an_angle(self):
        run = rescan("--orient", "--angle", "90", self.pages[0], "-o", self.out)
        self.assertEqual((2, []), (run.status, run.lines))
        self.assertIn("--orient", run.stderr)


class Turning(Pages):
    def test_an_angle_near_a_quarter_turn(self):
        rows = [[200] * 60 for _ in range(90)]
        for y in range(40, 50):
            rows[y][55:] = [20] * 5    # at the right edge
        for angle, size, at in (("88", (90, 60), (45, 4)), ("-91.5", (90, 60), (44, 56)), ("178", (60, 90), (4, 45)),
                                ("44", (60, 90), None), ("46", (90, 60), None)):    # fmt: skip
            self.run_on(rows, "--angle", angle, "--mode", "788")
            image = Image(self.out / "page.jpg")
            self.assertEqual(size, (image.width, image.height), angle)
            if at:
                self.assertLess(image.at(*at), 130, angle)

    def test_corners_and_rim_are_white(self):
        for pixel in (200, (200, 60, 40)):
            self.run_on([[pixel] * 80 for _ in range(80)], "--angle", "20", "--mode", "788")
            image = Image(self.out / "page.jpg")
            value = lambda x, y: min(p) if isinstance(p := image.at(x, y), tuple) else p
            for x, y in ((0, 0), (79, 0), (0, 79), (79, 79)):
                self.assertGreater(value(x, y), 245)
            least = 170 if isinstance(pixel, int) else 20
            self.assertGreater(min(value(x, y) for x in range(80) for y in range(80)), least)


class BlankScore(Pages):
    def score(self, rows, *options):
        return float(self.run_on(rows, *options).blank)

    def test_paper_is_blank(self):
        specks = blank()
        for i in range(60):
            for d in range(4):
                specks[(i * 137) % 400 + 30 + d % 2][(i * 211) % 550 + 20 + d // 2] = INK
        framed = [[20 if x < 12 or y > 474 else v for x, v in enumerate(row)] for y, row in enumerate(blank())]
        faint = [[215 if v == INK else v for v in row] for row in self.text]
        for i, rows in enumerate((blank(), blank(level=120), shaded(blank()), specks, framed, faint)):
            self.assertGreaterEqual(self.score(rows), 0.95, i)

    def test_print_is_not(self):
        self.assertEqual(0, self.score(self.text))
        self.assertEqual(0, self.score(shaded(self.text)))
        self.assertLess(self.score(printed("- 17 -")), 0.5)
        letter = self.score(printed("a"))
        self.assertTrue(0.25 < letter < 0.8, letter)
        self.assertLess(self.score([[(x * y) % 200 for x in range(600)] for y in range(480)]), 0.01)

    def test_the_resolution_does_not_matter(self):
        double = [[v for v in row for _ in "ab"] for row in printed("letter") for _ in "ab"]
        ppm(self.folder / "double.pnm", double)
        run = rescan("--assume-dpi", "200", self.folder / "double.pnm", "-o", self.out)
        self.assertAlmostEqual(self.score(printed("letter")), float(run.lines[0].blank), delta=0.05)

    def test_unknown_for_pages_that_were_not_read(self):
        (self.folder / "no.pnm").write_text("no page")
        run = rescan(self.folder / "no.pnm", "-o", self.out)
        self.assertEqual("-", run.lines[0].blank)


if __name__ == "__main__":
    unittest.main()
