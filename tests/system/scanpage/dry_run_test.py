# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""--dry-run: names the files that the same command would write, and writes nothing."""

import os
import subprocess
import unittest

from encoders import tiff, tiff_page
from support import SCANPAGE, PageTest, scanpage


class DryRun(PageTest):
    def tree(self):
        return {str(path): path.stat().st_mtime_ns for path in sorted(self.root.rglob("*"))}

    def plan(self, *arguments, stdin=b""):
        """Names, exit status and messages of a dry run, which changes nothing."""
        before = self.tree()
        done = subprocess.run([SCANPAGE, "--dry-run", *map(os.fspath, arguments)], input=stdin, capture_output=True)
        self.assertEqual(before, self.tree())
        return done.stdout.decode().splitlines(), done.returncode, done.stderr.decode()

    def files_below(self, *folders):
        return sorted(str(path) for folder in folders for path in folder.rglob("*") if path.is_file())

    def test_it_names_what_a_run_writes(self):
        (self.folder / "below").mkdir()
        (self.folder / "below" / "book.tif").write_bytes(tiff(*[tiff_page([[90] * 30] * 20)] * 2))
        new = self.root / "new"
        new.mkdir()
        products = ["--pdf", new / "book.pdf", "--tiff", new / "book.tif", "--contact-sheet", new / "sheet.png"]
        for options in ([], ["--format", "jpeg,pbm,g4", "-j", "2"], ["-r", *products]):
            out = self.root / "to" / str(len(options))
            command = [*options, self.folder, "-o", out]
            planned, status, printed = self.plan(*command)
            self.assertEqual(0, status, printed)
            self.assertRegex(printed, r"\A\d would be done, 0 kept, 0 failed in ")
            self.assertEqual(0, scanpage(*command).status)
            self.assertEqual(self.files_below(out, new), sorted(planned))

    def test_it_names_no_page_without_a_folder(self):
        self.assertEqual(([f"{self.root}/book.pdf"], 0), self.plan(*self.pages, "--pdf", self.root / "book.pdf")[:2])

    def test_it_knows_what_exists(self):
        scanpage(*self.pages[:2], "-o", self.out)
        (self.out / self.pages[2].name).write_bytes(b"theirs")
        planned, status, printed = self.plan(*self.pages, "-o", self.out)
        self.assertEqual(([str(self.out / page.name) for page in self.pages[3:]], 1), (planned, status))
        self.assertEqual(3, printed.count("exists; --overwrite replaces it"))
        self.assertIn("3 would be done, 0 kept, 3 failed in ", printed)
        planned, status, printed = self.plan(*self.pages, "--resume", "--overwrite", "-o", self.out)
        self.assertEqual(([str(self.out / page.name) for page in self.pages[2:]], 0), (planned, status))
        self.assertIn("4 would be done, 2 kept, 0 failed in ", printed)

    def test_a_file_of_all_pages_exists(self):
        (self.root / "book.pdf").write_bytes(b"theirs")
        planned, status, printed = self.plan(*self.pages, "--pdf", self.root / "book.pdf")
        self.assertEqual(([], 2), (planned, status))
        self.assertIn("book.pdf exists and is not a whole result of scanpage", printed)

    def test_it_knows_files_that_are_no_pages(self):
        text = self.folder / "text.jpg"
        text.write_text("This is no page.")
        planned, status, printed = self.plan(text, self.folder / "missing.jpg", self.pages[0], "-o", self.root / "new")
        self.assertEqual(([f"{self.root}/new/page-000000.jpg"], 1), (planned, status))
        self.assertIn("text.jpg: is not a JPEG, PNG, TIFF or PNM file", printed)
        self.assertIn("missing.jpg: cannot be opened", printed)

    def test_a_file_in_the_place_of_the_folder(self):
        planned, status, printed = self.plan(self.pages[0], "-o", self.pages[1])
        self.assertEqual(([], 2), (planned, status))
        self.assertIn(f"the folder {self.pages[1]} cannot be opened: Not a directory", printed)

    def test_names_stay_on_their_line(self):
        page = self.folder / "two\nlines.jpg"
        os.link(self.drawn[0], page)
        self.assertEqual([f"{self.out}/two\\nlines.jpg"], self.plan(page, "-o", self.out)[0])

    def test_verbose_and_quiet(self):
        scanpage(self.pages[0], "-o", self.out)
        options = ["--resume", *self.pages[:2], "-o", self.out]
        self.assertIn(f"{self.pages[0]}: its results are complete\n", self.plan("-v", *options)[2])
        self.assertNotIn("0 x 0", self.plan("-v", *options)[2])
        self.assertEqual("", self.plan("-q", *options)[2])


if __name__ == "__main__":
    unittest.main()
