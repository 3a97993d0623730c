# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Lists of pages: from standard input, from files, and with names that clash."""

import os
import subprocess
import unittest

from support import SCANPAGE, PageTest, Run, names, parse, rescan, scanpage


class Lists(PageTest):
    def assert_all_done(self, run, count=6):
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual([str(page) for page in self.pages[:count]], [line.file for line in run.lines])
        self.assertEqual([page.name for page in self.pages[:count]], self.results())

    def test_lines_of_standard_input(self):
        self.assert_all_done(scanpage("--from", "-", "-o", self.out, stdin=names(self.pages)))

    def test_a_last_line_without_its_end_and_empty_lines(self):
        text = b"\n\n" + names(self.pages).replace(b"\n", b"\n\n").rstrip(b"\n")
        self.assert_all_done(scanpage("--from", "-", "-o", self.out, stdin=text))

    def test_names_that_end_with_nul(self):
        odd = self.folder / "two\nlines.jpg"
        os.link(self.pages[0], odd)
        run = scanpage("-0", "--from", "-", "-o", self.out, stdin=names([odd], "\0"))
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual([odd.name], self.results())
        odd.unlink()
        (self.out / odd.name).unlink()
        self.assert_all_done(scanpage("--null", "--from", "-", "-o", self.out, stdin=names(self.pages, "\0")))

    def test_a_list_in_a_file(self):
        listed = self.root / "list"
        listed.write_bytes(names(self.pages))
        self.assert_all_done(scanpage("--from", listed, "-o", self.out))

    def test_a_list_is_read_from_where_it_stands(self):
        listed = self.root / "list"
        listed.write_bytes(b"header\n" + names(self.pages))
        with open(listed, "rb") as stream:
            os.lseek(stream.fileno(), len(b"header\n"), os.SEEK_SET)
            done = subprocess.run([SCANPAGE, "--from", "-", "-o", self.out], stdin=stream, capture_output=True)
        self.assert_all_done(Run(done.returncode, parse(done.stdout.decode()), done.stderr.decode()))

    def test_a_list_behind_the_pages_of_the_command_line(self):
        self.assert_all_done(scanpage(*self.pages[:2], "--from", "-", "-o", self.out, stdin=names(self.pages[2:])))

    def test_names_that_end_with_nul_need_the_option(self):
        for source, stdin in (("-", names(self.pages, "\0")), (self.root / "list", b"")):
            (self.root / "list").write_bytes(names(self.pages, "\0"))
            run = scanpage("--from", source, "-o", self.out, stdin=stdin)
            self.assertEqual((2, []), (run.status, run.lines))
            self.assertIn("is --null missing?", run.stderr)
        self.assertEqual([], self.results())

    def test_lists_that_cannot_be_read(self):
        for name, fault in (
            ("nowhere", "nowhere cannot be opened"),
            ("no\nwhere", "no\\nwhere cannot be opened"),
            ("", "the list of pages cannot be read"),
        ):
            run = scanpage("--from", self.root / name, "-o", self.out)
            self.assertEqual((2, []), (run.status, run.lines))
            self.assertIn(fault, run.stderr)

    def test_a_list_without_a_name_is_no_list(self):
        for pages in ([], self.pages):
            self.assertEqual((2, []), scanpage(*pages, "--from", "", "-o", self.out)[:2])

    def test_an_empty_list(self):
        self.assert_all_done(scanpage("--from", "-", "-o", self.out), 0)


class SharedNames(PageTest):
    def setUp(self):
        super().setUp()
        self.other = self.root / "other"
        self.other.mkdir()
        self.twin = self.other / self.pages[0].name
        os.link(self.pages[1], self.twin)

    def test_the_second_page_of_a_name_is_refused(self):
        scanpage(self.pages[0], "-o", self.out)
        right = (self.out / self.pages[0].name).read_bytes()
        for options in ([], ["--resume"], ["--jobs", "2"]):
            run = rescan(*options, self.pages[0], self.twin, *self.pages[2:], "-o", self.out)
            self.assertEqual(1, run.status)
            self.assertEqual([str(self.twin)], [line.file for line in run.lines if line.status == "failed"])
            self.assertIn("another page has already used the name page-000000 for its results", run.stderr)
            self.assertEqual(right, (self.out / self.pages[0].name).read_bytes())

    def test_names_that_differ_only_in_their_ending(self):
        twin = self.folder / "page-000000.jpeg"
        os.link(self.pages[1], twin)
        run = scanpage(self.pages[0], twin, "-o", self.out)
        self.assertEqual(["done", "failed"], [line.status for line in run.lines])

    def test_a_page_is_not_replaced_by_its_result(self):
        before = self.pages[0].read_bytes()
        for options in ([], ["--resume"]):
            run = scanpage(*options, self.pages[0], "-o", self.folder)
            self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
            self.assertEqual(before, self.pages[0].read_bytes())
            self.assertIn("page-000000.jpg is an input and is not replaced", run.stderr)
        page = self.folder / "named.tif"
        os.link(self.pages[0], page)
        run = scanpage("--format", "jpeg,pbm,g4", page, "-o", self.folder)
        self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
        self.assertEqual(before, page.read_bytes())
        self.assertFalse((self.folder / "named.jpg").exists())


if __name__ == "__main__":
    unittest.main()
