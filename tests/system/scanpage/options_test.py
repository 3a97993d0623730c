# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The options as users meet them: messages that say what to write, the help, the version, how much is printed."""

import random
import re
import subprocess
import unittest

from images import jpeg_of
from support import SCANPAGE, PageTest, scanpage


class Values(PageTest):
    def message(self, *arguments):
        run = scanpage(*self.pages, "-o", self.out, *arguments)
        self.assertEqual((2, [], []), (run.status, run.lines, self.results()))
        first, last = run.stderr.splitlines()
        self.assertEqual("scanpage --help prints the options.", last)
        return first.removeprefix("scanpage: ")

    def test_a_number_with_its_unit(self):
        for option, text, plain, range in (
            ("--dpi", "300dpi", "300", "10 to 4800"),
            ("--dpi", "300 dpi", "300", "10 to 4800"),
            ("--assume-dpi", "0600", None, "10 to 4800"),
            ("--jobs", "2x", "2", "1 to 256"),
            ("--quality", "90%", "90", "1 to 100"),
            ("--denoise", "3.", "3", "0 to 10"),
            ("--threshold", "127grey", "127", "0 to 255"),
        ):
            advice = f"; write {plain}" if plain else "; write 600"
            self.assertEqual(f'{option}: "{text}" is not a whole number from {range}{advice}', self.message(option, text))

    def test_what_may_be_several_numbers_is_not_guessed(self):
        for text in ("300x600", "0x10", "1e3", "many", "-10", "9", "4801", "99999999999"):
            self.assertEqual(f'--dpi: "{text}" is not a whole number from 10 to 4800', self.message(f"--dpi={text}"))

    def test_an_angle(self):
        for text, plain in (("1,5", "1.5"), ("1.5deg", "1.5"), ("-2,25 degrees", "-2.25"), ("1.5.2", None), ("x", None),
                            ("360.5", None), ("-361", None), ("nan", None)):    # fmt: skip
            advice = f"; write {plain}" if plain else ""
            self.assertEqual(f'--angle: "{text}" is not a number from -360 to 360{advice}', self.message(f"--angle={text}"))

    def test_words(self):
        for option, words in (
            ("--median", "none, cross, weighted, colour"),
            ("--background", "keep, flatten"),
            ("--damaged", "keep, refuse"),
            ("--mode", "0, 286, 389, 450, 788"),
            ("--format", "jpeg, pbm, g4"),
        ):
            self.assertEqual(f'{option}: "gif" is none of: {words}', self.message(option, "gif"))

    def test_options_that_exclude_each_other(self):
        for one, other in ((["--quality", "50"], ["--mode", "450"]), (["--quiet"], ["-v"]), (["--orient"], ["--angle", "0"])):
            self.assertIn(" excludes --", self.message(*one, *other))


class Quality(PageTest):
    def tables(self, *options, page=None):
        """The quantisation tables of the result, and the samples of its components."""
        run = scanpage(*options, "--overwrite", page or self.pages[0], "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        stream = (self.out / (page or self.pages[0]).name).read_bytes()
        tables = [stream[m.end() + 1 : m.end() + 65] for m in re.finditer(rb"\xff\xdb\x00\x43", stream)]
        frame = stream.index(b"\xff\xc0")
        return tables, [stream[frame + 11 + 3 * i] for i in range(stream[frame + 9])], stream

    def test_it_is_the_one_of_other_programs(self):
        """The first entry of the usual table is 16, of which a quality of 75 takes half, and so on."""
        for quality, first in (("1", 255), ("25", 32), ("50", 16), ("75", 8), ("90", 3), ("100", 1)):
            self.assertEqual(first, self.tables("--quality", quality)[0][0][0], quality)

    def test_it_differs_from_a_mode_by_its_tables_alone(self):
        grey = jpeg_of(self.folder / "grey.jpg", [[(x * y) % 251 for x in range(64)] for y in range(64)])
        for page, samples in ((self.pages[0], [0x22, 0x11, 0x11]), (grey, [0x11])):
            options = ["--angle", "0"]
            tables, sampling, stream = self.tables(*options, "--quality", "70", page=page)
            self.assertEqual(samples, sampling)
            by_mode = self.tables(*options, "--mode", "450", page=page)    # whose quality is 70
            self.assertEqual((tables, sampling), by_mode[:2])
            end = stream.index(b"\xff\xfe")
            self.assertEqual(stream[:end], by_mode[2][:end])    # the JFIF header with the resolution

    def test_another_quality_is_another_result(self):
        self.assertEqual("done", scanpage("--quality", "60", self.pages[0], "-o", self.out).lines[0].status)
        resumed = ["--resume", "--overwrite", self.pages[0], "-o", self.out]
        self.assertEqual("kept", scanpage("--quality", "60", *resumed).lines[0].status)
        self.assertEqual("done", scanpage("--quality", "61", *resumed).lines[0].status)
        self.assertEqual("done", scanpage(*resumed).lines[0].status)


class Printed(PageTest):
    def test_quiet_prints_errors_only(self):
        run = scanpage("--quiet", *self.pages, "-o", self.out)
        self.assertEqual((0, 6, ""), (run.status, len(run.lines), run.stderr))
        missing = self.folder / "missing.jpg"
        run = scanpage("-q", missing, "-o", self.out)
        self.assertEqual((1, f"scanpage: {missing}: cannot be opened: No such file or directory\n"), (run.status, run.stderr))

    def test_the_stages_need_verbose(self):
        run = scanpage(*self.pages, "-o", self.out)
        self.assertRegex(run.stderr, r"\A6 done, [^\n]*\n\Z")

    def test_pages_without_a_skew_are_counted(self):
        blank = jpeg_of(self.folder / "blank.jpg", [[255] * 200 for _ in range(200)])
        grain = random.Random(1)
        noise = jpeg_of(self.folder / "noise.jpg", [[grain.choice((0, 255)) for _ in range(300)] for _ in range(300)])
        twin = self.folder / "twin.jpg"
        twin.write_bytes(blank.read_bytes())
        run = scanpage(self.pages[0], blank, noise, twin, "-o", self.out)
        self.assertEqual(["-", "blank", "picture", "blank"], [line.reason for line in run.lines])
        self.assertEqual("no skew found on 3 (2 blank, 1 picture): field 7 of the report or -v shows which",
                         run.stderr.splitlines()[-1])    # fmt: skip
        run = scanpage("--angle", "0", blank, "--overwrite", "-o", self.out)
        self.assertNotIn("no skew", run.stderr)


class Help(unittest.TestCase):
    def printed(self, option):
        done = subprocess.run([SCANPAGE, option], capture_output=True, text=True)
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        return done.stdout

    def test_the_version(self):
        self.assertRegex(self.printed("--version"), r"\Ascanpage \d+\.\d+\.\d+\n\Z")

    def test_lines_fit_a_terminal(self):
        text = self.printed("--help")
        self.assertLessEqual(max(map(len, text.splitlines())), 80)
        self.assertTrue(text.endswith("last page.\n"), text)
        self.assertRegex(text, r"(?m)^ {30}instead of finding the skew$")    # the second line of a description

    def test_values_are_words(self):
        text = self.printed("--help")
        self.assertIn("--median {none,cross,weighted,colour}\n", text)
        self.assertNotRegex(text, r"ENUM|INT|FLOAT|TEXT|->| in \[")


if __name__ == "__main__":
    unittest.main()
