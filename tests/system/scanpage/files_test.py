# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""No file is destroyed: neither pages, nor files of other programs, nor what links lead to."""

import os
import shutil
import unittest

from images import Image
from support import PageTest, scanpage


class Results(PageTest):
    def setUp(self):
        super().setUp()
        self.page = self.pages[0]
        self.original = self.page.read_bytes()
        self.result = self.out / self.page.name
        scanpage(self.page, "-o", self.out)
        self.right = self.result.read_bytes()
        self.result.unlink()

    def assert_refused(self, run, reason):
        self.assertEqual((1, "failed", "0"), (run.status, run.lines[0].status, run.lines[0].bytes))
        self.assertIn(reason, run.stderr)

    def test_a_file_of_another_program_needs_overwrite(self):
        for theirs in (b"theirs", self.original, self.pages[1].read_bytes()):
            self.result.write_bytes(theirs)
            for options in ([], ["--resume"]):
                run = scanpage(*options, self.page, "-o", self.out)
                self.assert_refused(run, f"{self.result} exists")
                self.assertEqual(theirs, self.result.read_bytes())
            self.assertEqual("done", scanpage("--overwrite", self.page, "-o", self.out).lines[0].status)
            self.assertEqual(self.right, self.result.read_bytes())

    def test_links_are_not_followed(self):
        other = self.root / "other"
        for target in (other, self.page, self.root / "nowhere"):
            other.write_bytes(b"other")
            os.symlink(target, self.result)
            self.assert_refused(scanpage("--resume", self.page, "-o", self.out), "exists, but is not a whole result of this page")
            self.assertTrue(self.result.is_symlink())
            self.assertEqual("done", scanpage("--overwrite", self.page, "-o", self.out).lines[0].status)
            self.assertFalse(self.result.is_symlink())
            self.assertEqual((self.right, b"other"), (self.result.read_bytes(), other.read_bytes()))
            self.assertEqual(self.original, self.page.read_bytes())
            self.assertFalse((self.root / "nowhere").exists())
            self.result.unlink()

    def test_the_other_name_of_a_file_keeps_its_contents(self):
        other = self.root / "other"
        other.write_bytes(b"other")
        os.link(other, self.result)
        self.assert_refused(scanpage(self.page, "-o", self.out), f"{self.result} exists; --overwrite replaces it")
        self.assertEqual("done", scanpage("--overwrite", self.page, "-o", self.out).lines[0].status)
        self.assertEqual((self.right, b"other"), (self.result.read_bytes(), other.read_bytes()))

    def test_a_link_where_a_part_would_be(self):
        for make in (os.symlink, os.link):
            part = self.out / f"{self.page.name}.part"
            make(self.page, part)
            self.assertEqual(0, scanpage(self.page, "-o", self.out).status)
            self.result.unlink()
            self.assertEqual((self.original, self.original), (self.page.read_bytes(), part.read_bytes()))
            part.unlink()

    def test_a_page_is_never_replaced(self):
        twin = self.root / "twin"
        twin.mkdir()
        os.link(self.pages[1], twin / self.page.name)
        run = scanpage("--overwrite", twin / self.page.name, self.page, "-o", self.folder)
        self.assertEqual((1, ["failed", "failed"]), (run.status, [line.status for line in run.lines]))
        self.assertIn(f"{self.page} is an input and is not replaced", run.stderr)
        self.assertEqual(self.original, self.page.read_bytes())
        link = self.folder / "link.jpg"
        os.symlink(self.pages[1], link)
        run = scanpage("--overwrite", link, "-o", self.folder)
        self.assert_refused(run, f"{link} is an input and is not replaced")
        self.assertTrue(link.is_symlink())

    def test_the_folder_may_change_its_name_meanwhile(self):
        link = self.root / "link"
        os.symlink(self.out, link)
        self.assertEqual(0, scanpage(self.page, "-o", link).status)
        self.assertEqual([self.page.name], self.results())

    def test_nothing_else_is_left_in_the_folder(self):
        for _ in range(2):
            scanpage(*self.pages, "--overwrite", "--format", "jpeg,pbm,g4", "-o", self.out)
            self.assertEqual(18, len(self.results()))


class ContactSheet(PageTest):
    def setUp(self):
        super().setUp()
        self.originals = {page: page.read_bytes() for page in self.pages}
        self.sheet = self.root / "sheet.png"

    def run_with(self, sheet, *options):
        run = scanpage(*options, *self.pages, "-o", self.out, "--contact-sheet", sheet)
        self.assertEqual(self.originals, {page: page.read_bytes() for page in self.pages})
        return run

    def assert_refused(self, run, reason):
        self.assertEqual((2, [], []), (run.status, run.lines, self.results()))
        self.assertIn(reason, run.stderr)

    def test_a_page_is_not_taken_for_the_name_of_the_sheet(self):
        run = scanpage("-o", self.out, "--contact-sheet", *self.pages)
        self.assert_refused(run, f"{self.pages[0]} does not end in .png; the option needs the name of its result")
        self.assert_refused(self.run_with(self.pages[0]), "does not end in .png")
        self.assert_refused(self.run_with("sheet"), "does not end in .png")
        self.assertEqual(self.originals, {page: page.read_bytes() for page in self.pages})

    def test_the_name_may_follow_an_equals_sign(self):
        self.assertEqual(0, scanpage(*self.pages, "-o", self.out, f"--contact-sheet={self.sheet}").status)
        Image(self.sheet)

    def test_a_page_with_the_name_of_a_sheet_stays(self):
        page = self.folder / "page.png"
        os.link(self.pages[0], page)
        for options in ([], ["--overwrite"]):
            self.assert_refused(self.run_with(page, page, *options), f"{page} is an input and is not replaced")
            self.assertEqual(self.originals[self.pages[0]], page.read_bytes())

    def test_a_file_of_another_program_stays(self):
        scanpage(self.pages[0], "-o", self.folder.parent, "--contact-sheet", self.sheet)
        theirs = self.sheet.read_bytes().replace(b"IEND", b"IENd")
        for contents in (b"theirs", theirs):
            self.sheet.write_bytes(contents)
            for options in ([], ["--overwrite"]):
                self.assert_refused(self.run_with(self.sheet, *options),
                                    f"{self.sheet} exists and is not a whole result of scanpage; remove it")    # fmt: skip
            self.assertEqual(contents, self.sheet.read_bytes())

    def test_an_earlier_sheet_needs_overwrite(self):
        self.assertEqual(0, scanpage(*self.pages, "-o", self.root / "other", "--contact-sheet", self.sheet).status)
        shutil.rmtree(self.root / "other")
        first = self.sheet.read_bytes()
        self.assert_refused(self.run_with(self.sheet), f"{self.sheet} exists; --overwrite replaces it")
        self.assertEqual(first, self.sheet.read_bytes())
        self.assertEqual(0, self.run_with(self.sheet, "--overwrite", "--angle", "90").status)
        self.assertNotEqual(first, self.sheet.read_bytes())
        self.assertEqual(["in", "out", "sheet.png"], sorted(path.name for path in self.root.iterdir()))

    def test_a_link_is_not_followed(self):
        os.symlink(self.pages[0], self.sheet)
        for options in ([], ["--overwrite"]):
            self.assert_refused(self.run_with(self.sheet, *options), f"{self.sheet} exists and is not a whole result of scanpage")
            self.assertTrue(self.sheet.is_symlink())


if __name__ == "__main__":
    unittest.main()
