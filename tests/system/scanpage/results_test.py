# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What is in the results: pixels, formats, filters, resolution, and the contact sheet."""

import random
import re
import struct
import subprocess
import unittest

from encoders import tiff, tiff_page
from images import Image, jpeg_of, written
from support import SCANPAGE, PageTest, link_pages, pagegen, rescan


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
        run = rescan("--angle", "0", "--format", "pbm,g4", page, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        expected = [[int(p == 20) for p in row] for row in rows]
        header, comment, size, bits = (self.out / "drawn.pbm").read_bytes().split(b"\n", 3)
        self.assertEqual((b"P4", b"# scanpage", b"37 20", 20 * 5), (header, comment[:10], size, len(bits)))
        self.assertEqual(expected, Image(self.out / "drawn.pbm").rows())
        self.assertEqual(expected, Image(self.out / "drawn.tif").rows())

    def test_rows_of_a_pbm_are_whole_bytes(self):
        for width, row in ((1, 1), (8, 1), (9, 2), (16, 2)):
            page = jpeg_of(self.folder / "drawn.jpg", plain(width, 7, 20))
            rescan("--angle", "0", "--format", "pbm", "--threshold", "99", page, "-o", self.out)
            stream = re.sub(rb"#.*\n", b"", (self.out / "drawn.pbm").read_bytes(), count=1)
            black = bytes([0xFF] * (width // 8) + [0x80] * (width % 8))
            self.assertEqual((row, b"P4\n%d 7\n" % width + black * 7), (len(black), stream))

    def test_a_tiff_in_several_pieces(self):
        noise = random.Random(1)
        rows = [[noise.choice((0, 255)) for _ in range(200)] for _ in range(200)]
        page = jpeg_of(self.folder / "noise.jpg", rows)
        rescan("--angle", "0", "--format", "pbm,g4", page, "-o", self.out)
        self.assertTrue(Image(self.out / "noise.pbm").rows() == Image(self.out / "noise.tif").rows())

    def test_the_tags_of_a_tiff(self):
        page = self.folder / "drawn.jpg"
        pagegen("--dpi", "60", page)
        stream = page.read_bytes()
        page.write_bytes(stream[:13] + struct.pack(">BHH", 1, 120, 60) + stream[18:])
        rescan("--format", "g4", page, "-o", self.out)
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
            rescan("--angle", "0", "--format", "pbm", "--threshold", str(threshold), page, "-o", self.out)
            self.assertEqual(black, Image(self.out / "drawn.pbm").at(8, 8), threshold)

    def test_the_histogram_chooses_a_threshold_between_ink_and_paper(self):
        rows = plain(40, 40, 90)
        for y in range(0, 40, 8):
            rows[y] = [60] * 40
        page = jpeg_of(self.folder / "drawn.jpg", rows)
        rescan("--angle", "0", "--format", "pbm", page, "-o", self.out)
        image = Image(self.out / "drawn.pbm")
        self.assertEqual([1, 0, 0], [image.at(20, y) for y in (8, 12, 20)])

    def test_colours_weigh_as_the_eye_sees_them(self):
        for colour, level in (((255, 0, 0), 76), ((0, 255, 0), 149), ((0, 0, 255), 29)):
            page = jpeg_of(self.folder / "drawn.jpg", plain(16, 16, colour))
            for threshold, black in ((level - 3, 0), (level + 3, 1)):
                rescan("--angle", "0", "--format", "pbm", "--threshold", str(threshold), page, "-o", self.out)
                self.assertEqual(black, Image(self.out / "drawn.pbm").at(8, 8), (colour, threshold))


class Pixels(PageTest):
    def result_of(self, rows, *options, angle="0"):
        page = jpeg_of(self.folder / "drawn.jpg", rows)
        run = rescan("--angle", angle, "--mode", "788", *options, page, "-o", self.out)
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
            rescan("--mode", mode, page, "-o", self.out)
            sizes[mode] = (self.out / page.name).stat().st_size
        self.assertEqual(sorted(sizes.values()), list(sizes.values()))
        self.assertEqual(5, len(set(sizes.values())))
        rescan(page, "-o", self.out)
        self.assertEqual(sizes["450"], (self.out / page.name).stat().st_size)

    def test_scaling_goes_by_the_resolution(self):
        page = self.pages[0]    # 60 dots per inch
        image = Image(page)
        run = rescan("-v", "--dpi", "30", page, "-o", self.out)
        half = Image(self.out / page.name)
        self.assertEqual((image.width // 2, image.height // 2), (half.width, half.height))
        self.assertIn("scale ", run.stderr)
        same = rescan("-v", "--dpi", "60", "--median", "none", page, "-o", self.out)
        self.assertNotRegex(same.stderr, "scale |median ")


def value_of(pixel):
    return pixel if isinstance(pixel, int) else pixel[0]


def spread(values):
    return max(values) - min(values)


GROUND, INK = (0x42, 0x4A, 0x4A), (255, 255, 255)


def spans(pixels, wanted):
    """The first and the last of neighbours that are wanted."""
    found = []
    for i, pixel in enumerate(pixels):
        if wanted(pixel) and found and found[-1][1] == i - 1:
            found[-1][1] = i
        elif wanted(pixel):
            found.append([i, i])
    return found


class Sheet(Image):
    """A contact sheet with pages that are light where their edges are looked at."""

    gap = 24    # around the first page

    def __init__(self, file):
        super().__init__(file)
        down = spans([self.at(self.gap, y) for y in range(self.height)], lambda pixel: pixel != GROUND)
        self.rows_of_pages = [(first, last) for first, last in down if last - first >= 20]    # not captions

    def pictures_of(self, row):
        """Left and right end of each picture."""
        y = self.rows_of_pages[row][0]
        return spans([self.at(x, y) for x in range(self.width)], lambda pixel: pixel != GROUND)

    def pages(self):
        """The corners of the picture before and of that after, page by page."""
        for row, (top, bottom) in enumerate(self.rows_of_pages):
            ends = self.pictures_of(row)
            for before, after in zip(ends[::2], ends[1::2]):
                yield (before[0], top, before[1], bottom), (after[0], top, after[1], bottom)

    def inked(self, left, top, right, bottom):
        """The white pixels of a part, from the first to the last of them."""
        white = [(x, y) for y in range(top, bottom) for x in range(left, right) if self.at(x, y) == INK]
        assert white, "nothing is written here"
        left, top = min(x for x, _ in white), min(y for _, y in white)
        return {(x - left, y - top) for x, y in white}, left, max(x for x, _ in white)


class ContactSheet(PageTest):
    def setUp(self):
        super().setUp()
        self.sheet = self.root / "sheet.png"

    def sheet_of(self, pages, *options, status=0):
        run = rescan(*options, *pages, "-o", self.out, "--contact-sheet", self.sheet)
        self.assertEqual(status, run.status, run.stderr)
        return Sheet(self.sheet)

    def plain_pages(self, count, pixel=lambda _: GREY, width=60, height=84):
        return [jpeg_of(self.folder / f"plain-{i:03}.jpg", plain(width, height, pixel(i))) for i in range(count)]

    def captions(self, sheet):
        """What is written under each page of a few, its first and last column, and the first of the page."""
        below = {top: sheet.rows_of_pages[i + 1][0] if i + 1 < len(sheet.rows_of_pages) else sheet.height
                 for i, (top, _) in enumerate(sheet.rows_of_pages)}    # fmt: skip
        for (left, top, _, bottom), _ in sheet.pages():
            yield (*sheet.inked(left - 8, bottom + 1, left + 2 * 300 + 8 + 12, below[top]), left)

    def test_pages_stand_before_and_after_in_their_order(self):
        pages = self.plain_pages(203, lambda i: (20 + 14 * (i % 15), 60 + 13 * (i // 15), 128))
        for given, count, jobs in ((pages, 200, "3"), (pages[:17], 17, "1")):
            sheet = self.sheet_of(given, "-j", jobs, "--angle", "180")
            found = list(sheet.pages())
            self.assertEqual(count, len(found))
            for i, page in enumerate(found):
                for left, top, right, bottom in page:
                    self.assertEqual((59, 83), (right - left, bottom - top))
                    red, green, _ = sheet.at(left + 30, top + 40)
                    self.assertAlmostEqual(20 + 14 * (i % 15), red, delta=6)
                    self.assertAlmostEqual(60 + 13 * (i // 15), green, delta=6)

    def test_of_a_long_file_the_first_pages_are_shown(self):
        levels = [60] * 2 + [140] * 198 + [220] * 2
        pages = {level: tiff_page(plain(60, 84, level)) for level in set(levels)}
        file = self.folder / "long.tif"
        file.write_bytes(tiff(*(pages[level] for level in levels)))
        sheet = self.sheet_of([file], "--angle", "1.5")
        found = [sheet.at(left + 30, top + 40)[0] for (left, top, _, _), _ in sheet.pages()]
        self.assertEqual(200, len(found))
        for expected, level in zip(levels, found):
            self.assertAlmostEqual(expected, level, delta=6)
        file.write_bytes(tiff(pages[60], pages[140]))
        found = [ink for ink, *_ in self.captions(self.sheet_of([file], "--angle", "1.5"))]
        self.assertEqual([written(f"long.tif#00{page}  1.50 deg") for page in (1, 2)], found)

    def test_the_left_picture_is_the_page_before(self):
        left, right = (250, 200, 10), (10, 60, 250)
        page = jpeg_of(self.folder / "halves.jpg", [[left] * 30 + [right] * 30] * 84)
        sheet = self.sheet_of([page], "--angle", "180")
        (before, after), = sheet.pages()
        for (x, y, _, _), colours in ((before, (left, right)), (after, (right, left))):
            for dx, colour in zip((10, 50), colours):
                for found, expected in zip(sheet.at(x + dx, y + 40), colour):
                    self.assertAlmostEqual(expected, found, delta=12)

    def test_pictures_are_at_most_300_by_420(self):
        a4 = self.root / "a4.jpg"
        pagegen("--dpi", "150", "--skew", "0", a4)    # 1240 x 1754
        wide, tall, long = (
            jpeg_of(self.root / f"{name}.jpg", plain(width, height, GREY))
            for name, width, height in (("wide", 900, 30), ("tall", 30, 1260), ("long", 1, 2000))
        )
        for page, expected in ((a4, (248, 350)), (wide, (300, 10)), (tall, (10, 420)), (long, (1, 400))):
            sheet = self.sheet_of([page], "--angle", "0")
            self.assertEqual((2 * 300 + 8 + 2 * 24), sheet.width)
            for x, width in ((24, expected[0]), (24 + 300 + 8, expected[0])):
                edge = [sheet.at(x + dx, 24) != GROUND for dx in (-1, 0, width - 1, width)]
                self.assertEqual([False, True, True, False], edge, page)
                edge = [sheet.at(x, 24 + dy) != GROUND for dy in (-1, 0, expected[1] - 1, expected[1])]
                self.assertEqual([False, True, True, False], edge, page)

    def test_many_pages_make_small_pictures(self):
        drawn = self.root / "drawn.jpg"
        pagegen("--dpi", "100", drawn)
        many = self.root / "many"
        many.mkdir()
        narrow = jpeg_of(self.root / "narrow.jpg", plain(1, 420, GREY))    # a column is left of it
        sheet = self.sheet_of([*link_pages([drawn], many, 80), narrow])
        self.assertLess(self.sheet.stat().st_size, 5_000_000)
        self.assertLess(max(sheet.width, sheet.height), 2800)
        pages = list(sheet.pages())
        self.assertEqual(81, len(pages))
        for before, after in pages:
            self.assertLess(before[2] - before[0], 150)
            self.assertLess(after[3] - after[1], 210)

    def test_the_sheet_is_about_square(self):
        pages = self.plain_pages(40)
        for count in (1, 2, 3, 5, 8, 13, 40):
            sheet = self.sheet_of(pages[:count])
            self.assertEqual(count, len(list(sheet.pages())))
            self.assertTrue(0.6 < sheet.width / sheet.height < 1.6, (count, sheet.width, sheet.height))

    def test_name_and_angle_stand_under_each_page(self):
        angles = {"2.5": "2.50 deg", "-1": "-1.00 deg"}
        pages = [self.pages[0].rename(self.folder / name) for name in ("a.jpg",)]
        pages += [page.rename(self.folder / f"{name}.jpg") for page, name in zip(self.pages[1:], ("Qy", "b" * 200, "\u00fc"))]
        for angle, shown in angles.items():
            found = list(self.captions(self.sheet_of(pages, "--angle", angle)))
            self.assertEqual(4, len(found))
            for (ink, first, last, left), name in zip(found, ("a.jpg", "Qy.jpg", None, "?.jpg")):
                self.assertLess(abs(first - left), 4)
                self.assertLess(last, left + 2 * 300 + 8)
                if name:
                    self.assertEqual(written(f"{name}  {shown}"), ink)
            long_name = found[2]
            self.assertGreater(long_name[2] - long_name[1], 0.9 * 608)

    def test_a_page_without_skew_says_why(self):
        (ink, *_), = self.captions(self.sheet_of(self.plain_pages(1)))
        self.assertEqual(written("plain-000.jpg  no skew: blank"), ink)

    def test_pages_that_fail_leave_no_gap(self):
        light, dark = self.plain_pages(2, lambda i: (240, 120)[i])
        text = self.folder / "text.jpg"
        text.write_text("This is no page.\n")
        pages = [text, light, self.folder / "missing.jpg", dark, text]
        sheet = self.sheet_of(pages, "--angle", "0", status=1)
        found = [sheet.at(left + 30, top + 40)[0] for (left, top, _, _), _ in sheet.pages()]
        self.assertEqual(2, len(found))
        self.assertAlmostEqual(240, found[0], delta=6)
        self.assertAlmostEqual(120, found[1], delta=6)
        self.sheet.unlink()
        run = rescan(text, "-o", self.out, "--contact-sheet", self.sheet)
        self.assertEqual((1, False), (run.status, self.sheet.exists()))

    def test_grey_pages_are_grey(self):
        page = jpeg_of(self.folder / "drawn.jpg", plain(20, 20, 77))
        for found in self.sheet_of([page], "--angle", "0").at(24 + 10, 24 + 10):
            self.assertAlmostEqual(77, found, delta=4)

    def test_a_sheet_that_cannot_be_written(self):
        run = rescan(self.pages[0], "-o", self.out, "--contact-sheet", self.root / "nowhere" / "sheet.png")
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
                run = rescan(f"{option}={value}", self.pages[0], "-o", self.out)
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
                run = rescan("-v", f"{option}={value}", page, "-o", self.out)
                self.assertEqual(0, run.status, (option, value, run.stderr))
                self.assertEqual(option == "--denoise", "reduce noise " in run.stderr, value)
        self.assertEqual(0, rescan("--dpi", "10", self.pages[0], "-o", self.out).status)

    def test_a_page_behind_the_formats_is_a_page(self):
        run = rescan("-o", self.out, "--format", "pbm", self.pages[0])
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual(["page-000000.pbm"], self.results())

    def test_results_get_the_rights_of_the_umask(self):
        command = 'umask 027; exec "$0" "$1" -o "$2"'
        subprocess.run(["bash", "-c", command, SCANPAGE, self.pages[0], self.out], check=True, capture_output=True)
        self.assertEqual(0o640, (self.out / "page-000000.jpg").stat().st_mode & 0o777)


if __name__ == "__main__":
    unittest.main()
