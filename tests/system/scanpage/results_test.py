# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What is in the results: pixels, formats, filters, resolution, and the contact sheet."""

import random
import re
import struct
import subprocess
import unittest

from images import Image, jpeg_of
from support import SCANPAGE, PageTest, pagegen, scanpage


def tags_of(tiff):
    """Tag by tag of a TIFF's first directory, its first value; rationals as quotients."""
    data = tiff.read_bytes()
    order = "<" if data[:2] == b"II" else ">"
    start = struct.unpack_from(order + "I", data, 4)[0]
    tags = {}
    for i in range(struct.unpack_from(order + "H", data, start)[0]):
        tag, kind, _ = struct.unpack_from(order + "HHI", data, start + 2 + 12 * i)
        at = start + 10 + 12 * i
        if kind == 5:
            numerator, denominator = struct.unpack_from(order + "II", data, struct.unpack_from(order + "I", data, at)[0])
            tags[tag] = numerator / denominator
        else:
            tags[tag] = struct.unpack_from(order + {1: "B", 3: "H", 4: "I"}.get(kind, "I"), data, at)[0]
    return tags


GREY, RED = 200, (200, 60, 40)


def plain(width, height, pixel, specks=()):
    rows = [[pixel] * width for _ in range(height)]
    for x, y, value in specks:
        rows[y][x] = value
    return rows


class OneBit(PageTest):
    def test_black_is_a_set_bit_in_both_formats(self):
        rows = plain(37, 20, 200)
        for y in range(5, 9):
            for x in range(11, 30):
                rows[y][x] = 20
        page = jpeg_of(self.folder / "drawn.jpg", rows)
        run = scanpage("--angle", "0", "--format", "pbm,g4", page, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        expected = [[int(p == 20) for p in row] for row in rows]
        header, comment, size, bits = (self.out / "drawn.pbm").read_bytes().split(b"\n", 3)
        self.assertEqual((b"P4", b"# scanpage", b"37 20", 20 * 5), (header, comment[:10], size, len(bits)))
        self.assertEqual(expected, Image(self.out / "drawn.pbm").rows())
        self.assertEqual(expected, Image(self.out / "drawn.tif").rows())

    def test_rows_of_a_pbm_are_whole_bytes(self):
        for width, row in ((1, 1), (8, 1), (9, 2), (16, 2)):
            page = jpeg_of(self.folder / "drawn.jpg", plain(width, 7, 20))
            scanpage("--angle", "0", "--format", "pbm", "--threshold", "99", page, "-o", self.out)
            stream = re.sub(rb"#.*\n", b"", (self.out / "drawn.pbm").read_bytes(), count=1)
            black = bytes([0xFF] * (width // 8) + [0x80] * (width % 8))
            self.assertEqual((row, b"P4\n%d 7\n" % width + black * 7), (len(black), stream))

    def test_a_tiff_in_several_pieces(self):
        noise = random.Random(1)
        rows = [[noise.choice((0, 255)) for _ in range(200)] for _ in range(200)]
        page = jpeg_of(self.folder / "noise.jpg", rows)
        scanpage("--angle", "0", "--format", "pbm,g4", page, "-o", self.out)
        self.assertTrue(Image(self.out / "noise.pbm").rows() == Image(self.out / "noise.tif").rows())

    def test_the_tags_of_a_tiff(self):
        page = self.folder / "drawn.jpg"
        pagegen("--dpi", "60", page)
        stream = page.read_bytes()
        page.write_bytes(stream[:13] + struct.pack(">BHH", 1, 120, 60) + stream[18:])
        scanpage("--format", "g4", page, "-o", self.out)
        image = Image(page)
        tags = tags_of(self.out / "drawn.tif")
        self.assertEqual((image.width, image.height), (tags[256], tags[257]))
        compression, white_is_0, inch = 4, 0, 2
        self.assertEqual((1, compression, white_is_0), (tags[258], tags[259], tags[262]))
        self.assertEqual((1, image.height), (tags[277], tags[278]))    # one channel, one strip
        self.assertEqual((120, 60, inch), (tags[282], tags[283], tags[296]))

    def test_the_threshold_is_the_largest_black(self):
        page = jpeg_of(self.folder / "drawn.jpg", plain(16, 16, 100))
        for threshold, black in ((0, 0), (99, 0), (100, 1), (255, 1)):
            scanpage("--angle", "0", "--format", "pbm", "--threshold", str(threshold), page, "-o", self.out)
            self.assertEqual(black, Image(self.out / "drawn.pbm").at(8, 8), threshold)

    def test_the_histogram_chooses_a_threshold_between_ink_and_paper(self):
        rows = plain(40, 40, 90)
        for y in range(0, 40, 8):
            rows[y] = [60] * 40
        page = jpeg_of(self.folder / "drawn.jpg", rows)
        scanpage("--angle", "0", "--format", "pbm", page, "-o", self.out)
        image = Image(self.out / "drawn.pbm")
        self.assertEqual([1, 0, 0], [image.at(20, y) for y in (8, 12, 20)])

    def test_colours_weigh_as_the_eye_sees_them(self):
        for colour, level in (((255, 0, 0), 76), ((0, 255, 0), 149), ((0, 0, 255), 29)):
            page = jpeg_of(self.folder / "drawn.jpg", plain(16, 16, colour))
            for threshold, black in ((level - 3, 0), (level + 3, 1)):
                scanpage("--angle", "0", "--format", "pbm", "--threshold", str(threshold), page, "-o", self.out)
                self.assertEqual(black, Image(self.out / "drawn.pbm").at(8, 8), (colour, threshold))


class Pixels(PageTest):
    def result_of(self, rows, *options, angle="0"):
        page = jpeg_of(self.folder / "drawn.jpg", rows)
        run = scanpage("--angle", angle, "--mode", "788", *options, page, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        return Image(self.out / "drawn.jpg")

    def assert_near(self, expected, found):
        difference = [abs(a - b) for a, b in zip(expected, found)] if isinstance(found, tuple) else [abs(expected - found)]
        self.assertLess(max(difference), 12, (expected, found))

    def test_a_straight_page_stays_as_it_is(self):
        for pixel in (GREY, RED):
            image = self.result_of(plain(34, 21, pixel))
            self.assertEqual((34, 21), (image.width, image.height))
            for x, y in ((0, 0), (33, 0), (0, 20), (33, 20), (17, 10)):
                self.assert_near(pixel, image.at(x, y))

    def test_the_corners_are_white(self):
        image = self.result_of(plain(60, 60, RED), angle="20")
        for x, y in ((0, 0), (59, 0), (0, 59), (59, 59)):
            self.assert_near((255, 255, 255), image.at(x, y))
        self.assert_near(RED, image.at(30, 30))

    def test_positive_angles_turn_counter_clockwise(self):
        rows = plain(64, 64, GREY)
        for y in range(28, 36):
            rows[y][56:64] = [20] * 8    # at the right edge
        image = self.result_of(rows, angle="90")
        self.assert_near(20, image.at(32, 3))    # at the top
        self.assert_near(GREY, image.at(60, 32))

    def test_medians(self):
        for pixel, ink in ((220, 20), ((220, 220, 220), (20, 20, 20))):
            dot = plain(24, 24, pixel, [(12, 12, ink)])
            line = plain(24, 24, pixel, [(x, 12, ink) for x in range(24)])
            bar = plain(24, 24, pixel, [(x, y, ink) for x in range(24) for y in (12, 13)])
            for rows, name, kept in (
                (dot, "none", True),
                (dot, "cross", False),
                (dot, "weighted", False),
                (dot, "colour", False),
                (line, "cross", True),    # 3 cells of 5
                (line, "weighted", False),    # 5 of 11, as the centre counts 3 times
                (line, "colour", False),
                (bar, "weighted", True),
                (bar, "colour", True),
            ):
                image = self.result_of(rows, "--median", name)
                self.assertEqual(kept, value_of(image.at(12, 12)) < 120, (name, pixel))

    def test_medians_leave_the_rim_alone_and_move_nothing(self):
        for pixel, ink in ((220, 20), ((220, 220, 220), (20, 20, 20))):
            for name in ("cross", "weighted", "colour"):
                dots = plain(24, 24, pixel, [(x, 12, ink) for x in (0, 4, 22)])
                image = self.result_of(dots, "--median", name)
                dark = [x for x in range(24) if value_of(image.at(x, 12)) < 120]
                self.assertEqual([0], dark, (name, pixel))
                bar = plain(24, 24, pixel, [(x, y, ink) for x in (12, 13) for y in range(24)])
                image = self.result_of(bar, "--median", name)
                dark = [x for x in range(24) if value_of(image.at(x, 12)) < 120]
                self.assertEqual([12, 13], dark, (name, pixel))

    def test_the_colour_median_takes_whole_pixels(self):
        # Where three colours meet, medians of the channels would be a colour that is not there.
        rows = plain(24, 24, (230, 20, 20))
        for y in range(24):
            for x in range(24):
                rows[y][x] = ((230, 20, 20), (20, 230, 20), (20, 20, 230))[(x // 8 + y // 8) % 3]
        image = self.result_of(rows, "--median", "colour")
        self.assert_near((20, 230, 20), image.at(12, 4))
        self.assert_near((230, 20, 20), image.at(4, 4))

    def test_noise_goes_and_edges_stay(self):
        for light, dark in ((200, 40), ((200, 200, 200), (40, 40, 40))):
            for width in (29, 32):    # colour rows are worked on in steps of four pixels
                rows = []
                for y in range(24):
                    step = 8 if y % 2 else -8
                    row = [light if x < width - 9 else dark for x in range(width)]
                    rows.append([p + step if isinstance(p, int) else tuple(v + step for v in p) for p in row])
                before, after = self.result_of(rows), self.result_of(rows, "--denoise", "10")
                self.assertEqual((width, 24), (after.width, after.height))
                for x in (6, 8, width - 3):
                    unrest = [spread([value_of(image.at(x, y)) for y in range(10, 14)]) for image in (before, after)]
                    self.assertGreater(unrest[0], 10)
                    self.assertLess(unrest[1], 7)
                # The windows of 5 x 5 pixels do not reach the two outermost columns.
                self.assertGreater(spread([value_of(after.at(1, y)) for y in range(10, 14)]), 10)
                self.assertGreater(value_of(after.at(width - 12, 12)), 150)
                self.assertLess(value_of(after.at(width - 6, 12)), 80)

    def test_filters_leave_the_smallest_pages_alone(self):
        for pixel in (GREY, RED):
            for width, height in ((1, 1), (2, 9), (9, 2), (3, 3)):
                for options in (("--median", "cross"), ("--median", "colour"), ("--denoise", "3")):
                    if options[0] == "--denoise" and min(width, height) < 5:
                        continue
                    image = self.result_of(plain(width, height, pixel), *options)
                    self.assertEqual((width, height), (image.width, image.height))
                    self.assert_near(pixel, image.at(0, 0))

    def test_the_mode_is_the_quality(self):
        page = self.pages[0]
        sizes = {}
        for mode in ("0", "286", "389", "450", "788"):
            scanpage("--mode", mode, page, "-o", self.out)
            sizes[mode] = (self.out / page.name).stat().st_size
        self.assertEqual(sorted(sizes.values()), list(sizes.values()))
        self.assertEqual(5, len(set(sizes.values())))
        scanpage(page, "-o", self.out)
        self.assertEqual(sizes["450"], (self.out / page.name).stat().st_size)

    def test_scaling_goes_by_the_resolution(self):
        page = self.pages[0]    # 60 dots per inch
        image = Image(page)
        run = scanpage("--dpi", "30", page, "-o", self.out)
        half = Image(self.out / page.name)
        self.assertEqual((image.width // 2, image.height // 2), (half.width, half.height))
        self.assertIn("scale ", run.stderr)
        same = scanpage("--dpi", "60", "--median", "none", page, "-o", self.out)
        self.assertNotRegex(same.stderr, "scale |median ")


def value_of(pixel):
    return pixel if isinstance(pixel, int) else pixel[0]


def spread(values):
    return max(values) - min(values)


class ContactSheet(PageTest):
    def test_pages_stand_before_and_after_in_their_order(self):
        left, right = (250, 200, 10), (10, 60, 250)
        pages = []
        for i in range(52):
            page = self.folder / f"drawn-{i:02}.jpg"
            rows = [[left, right]] * 30 if i == 0 else plain(2, 30, (4 * i, 90, 90))
            pages.append(jpeg_of(page, rows))
        for given, count, jobs in ((pages, 50, "3"), (pages[:3], 3, "1")):
            sheet = self.root / "sheet.png"
            run = scanpage("-j", jobs, "--angle", "180", *given, "-o", self.out, "--contact-sheet", sheet)
            self.assertEqual(0, run.status, run.stderr)
            image = Image(sheet)
            gap, width, height = 24, 60, 900
            self.assertEqual((2 * width + 3 * gap, count * (height + gap) + gap), (image.width, image.height))
            self.assertEqual((0x40, 0x48, 0x48), image.at(5, 5))
            columns = [gap, gap + width - 1, 2 * gap + width, 2 * gap + 2 * width - 1]
            for x, colour in zip(columns, (left, right, right, left)):
                for found, expected in zip(image.at(x, gap + 400), colour):
                    self.assertAlmostEqual(expected, found, delta=12)
            for i in (1, 2, count - 1):
                for x in columns:
                    self.assertAlmostEqual(4 * i, image.at(x, gap + i * (height + gap) + 400)[0], delta=12)

    def test_grey_pages_are_grey(self):
        page = jpeg_of(self.folder / "drawn.jpg", plain(20, 20, 77))
        sheet = self.root / "sheet.png"
        scanpage("--angle", "0", page, "-o", self.out, "--contact-sheet", sheet)
        for found in Image(sheet).at(500, 500):
            self.assertAlmostEqual(77, found, delta=4)

    def test_a_sheet_that_cannot_be_written(self):
        run = scanpage(self.pages[0], "-o", self.out, "--contact-sheet", self.root / "nowhere" / "sheet.png")
        self.assertEqual((2, []), (run.status, run.lines))
        self.assertRegex(run.stderr, r"/nowhere cannot be opened: No such file or directory\n\Z")
        self.assertEqual([], self.results())


class CommandLine(PageTest):
    def test_values_out_of_range_are_refused(self):
        for option, values in {
            "--jobs": ("0", "257", "x"),
            "--denoise": ("-1", "11"),
            "--dpi": ("9", "4801"),
            "--mode": ("1", "100"),
            "--threshold": ("-1", "256"),
            "--median": ("square",),
            "--format": ("jpeg;pbm", ""),
            "--angle": ("360.1", "-361", "inf", "nan", "1e300", "x"),
        }.items():
            for value in values:
                run = scanpage(f"{option}={value}", self.pages[0], "-o", self.out)
                self.assertEqual((2, []), (run.status, run.lines), (option, value))
        self.assertEqual([], self.results())

    def test_values_at_the_ends_of_their_range(self):
        page = jpeg_of(self.folder / "drawn.jpg", plain(16, 16, 100))
        for option, values in {
            "--jobs": ("1", "256"),
            "--denoise": ("0", "10"),
            "--dpi": ("100", "4800"),
            "--threshold": ("0", "255"),
            "--angle": ("-360", "360"),
        }.items():
            for value in values:
                run = scanpage(f"{option}={value}", page, "-o", self.out)
                self.assertEqual(0, run.status, (option, value, run.stderr))
                self.assertEqual(option == "--denoise", "reduce noise " in run.stderr, value)
        self.assertEqual(0, scanpage("--dpi", "10", self.pages[0], "-o", self.out).status)

    def test_a_page_behind_the_formats_is_a_page(self):
        run = scanpage("-o", self.out, "--format", "pbm", self.pages[0])
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual(["page-000000.pbm"], self.results())

    def test_results_get_the_rights_of_the_umask(self):
        command = 'umask 027; exec "$0" "$1" -o "$2"'
        subprocess.run(["bash", "-c", command, SCANPAGE, self.pages[0], self.out], check=True, capture_output=True)
        self.assertEqual(0o640, (self.out / "page-000000.jpg").stat().st_mode & 0o777)


if __name__ == "__main__":
    unittest.main()
