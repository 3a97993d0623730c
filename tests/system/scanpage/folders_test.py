# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Folders: of pages, with the folders below them, and of results, which are made."""

import os
import subprocess
import unittest

from support import SCANPAGE, PageTest, rescan, scanpage


class Pages(PageTest):
    def setUp(self):
        super().setUp()
        for page in self.pages:
            page.unlink()

    def put(self, *paths):
        """Pages of these names in the folder."""
        for i, path in enumerate(paths):
            (self.folder / path).parent.mkdir(parents=True, exist_ok=True)
            os.link(self.drawn[i % len(self.drawn)], self.folder / path)

    def files(self, run):
        self.assertEqual(0, run.status, run.stderr)
        return [os.path.relpath(line.file, self.folder) for line in run.lines]

    def results_below(self):
        return sorted(str(path.relative_to(self.out)) for path in self.out.rglob("*") if path.is_file())

    def test_a_folder_means_its_pages(self):
        self.put("b.jpg", "a.JPG", "c.jpeg", "below/d.jpg", ".hidden.jpg")
        (self.folder / "notes.txt").write_text("no page")
        (self.folder / "folder.jpg").mkdir()
        for folder in (self.folder, f"{self.folder}/"):
            self.assertEqual(["a.JPG", "b.jpg", "c.jpeg"], self.files(rescan(folder, "-o", self.out)))
        self.assertEqual(["a.jpg", "b.jpg", "c.jpg"], self.results_below())

    def test_all_endings_of_pages(self):
        endings = ("jpg", "jpeg", "png", "tif", "tiff", "pnm", "pbm", "pgm", "ppm")
        self.put(*(f"{ending}.{ending}" for ending in endings), "x.pdf", "jpg")
        self.assertEqual(sorted(f"{ending}.{ending}" for ending in endings), self.files(scanpage(self.folder, "-o", self.out)))

    def test_numbers_in_names_count(self):
        self.put(*(f"out{i}.jpg" for i in (10, 9, 1, 100, 2)), "out003.jpg", "out.jpg")
        self.assertEqual(["out.jpg", "out003.jpg", "out1.jpg", "out2.jpg", "out9.jpg", "out10.jpg", "out100.jpg"],
                         self.files(scanpage(self.folder, "-o", self.out)))    # fmt: skip

    def test_folders_stand_where_they_are_named(self):
        self.put("one/z.jpg", "two/a.jpg", "m.jpg")
        run = scanpage(self.folder / "one", self.folder / "m.jpg", self.folder / "two", "-o", self.out)
        self.assertEqual(["one/z.jpg", "m.jpg", "two/a.jpg"], self.files(run))
        self.assertEqual(["a.jpg", "m.jpg", "z.jpg"], self.results_below())

    def test_folders_below(self):
        paths = ["1.jpg", "box 1/1.jpg", "box 1/map/1.jpg", "box 2/1.jpg", "box 10/1.jpg"]
        self.put(*paths, ".cache/1.jpg")
        for jobs in ("1", "3"):
            run = rescan("--recursive", "-j", jobs, self.folder, "-o", self.out)
            self.assertEqual(sorted(paths), sorted(self.files(run)))
        self.assertEqual(paths, self.files(rescan("-r", self.folder, "-o", self.out)))
        self.assertEqual(sorted(paths), self.results_below())
        self.assertEqual(["kept"] * 5, [line.status for line in scanpage("-r", "--resume", self.folder, "-o", self.out).lines])
        run = scanpage("-r", self.folder / "box 1", "-o", self.root / "other")
        self.assertEqual(["box 1/1.jpg", "box 1/map/1.jpg"], self.files(run))
        self.assertTrue((self.root / "other" / "map" / "1.jpg").exists())

    def test_pages_of_a_file_below(self):
        from encoders import tiff, tiff_page

        for folder in ("a", "b"):
            (self.folder / folder).mkdir()
            (self.folder / folder / "book.tif").write_bytes(tiff(*[tiff_page([[90] * 30] * 20)] * 2))
        self.files(scanpage("-r", self.folder, "-o", self.out))
        self.assertEqual([f"{folder}/book-00{page}.jpg" for folder in "ab" for page in (1, 2)], self.results_below())

    def test_links_to_folders_are_not_followed(self):
        self.put("a.jpg", "below/b.jpg")
        os.symlink(self.folder, self.folder / "below" / "circle")
        os.symlink(self.drawn[2], self.folder / "link.jpg")
        self.assertEqual(["a.jpg", "below/b.jpg", "link.jpg"], self.files(scanpage("-r", self.folder, "-o", self.out)))

    def test_the_folder_of_the_results_is_left_out(self):
        self.put("a.jpg", "below/b.jpg")
        for _ in range(2):
            run = rescan("-r", self.folder, "-o", self.folder / "straight")
            self.assertEqual(["a.jpg", "below/b.jpg"], self.files(run))

    def test_pages_of_the_same_name_in_two_folders(self):
        self.put("one/a.jpg", "two/a.jpg")
        run = scanpage(self.folder / "one", self.folder / "two", "-o", self.out)
        self.assertEqual((1, ["done", "failed"]), (run.status, [line.status for line in run.lines]))
        self.assertIn("another page has already used the name a for its results", run.stderr)

    def test_pages_of_the_same_name_below(self):
        self.put("box/a.jpg", "box/a.jpeg")
        run = scanpage("-r", self.folder, "-o", self.out)
        self.assertEqual((1, ["done", "failed"]), (run.status, [line.status for line in run.lines]))
        self.assertIn("another page has already used the name box/a for its results", run.stderr)

    def test_a_page_is_not_replaced_by_its_result(self):
        self.put("box/a.jpg")
        before = (self.folder / "box" / "a.jpg").read_bytes()
        run = rescan("-r", self.folder, "-o", self.folder)
        self.assertEqual((1, ["failed"]), (run.status, [line.status for line in run.lines]))
        self.assertIn("box/a.jpg is an input and is not replaced", run.stderr)
        self.assertEqual(before, (self.folder / "box" / "a.jpg").read_bytes())

    def test_no_pages(self):
        self.put("below/b.jpg")
        run = scanpage(self.folder, "-o", self.out)
        self.assertEqual((2, []), (run.status, run.lines))
        self.assertEqual(f"scanpage: no pages in the folder {self.folder}: none ends in .jpg, .png, .tif or .pnm; "
                         "--recursive reads its subfolders\n", run.stderr)    # fmt: skip
        (self.folder / "below" / "b.jpg").unlink()
        run = scanpage("-r", self.folder, "-o", self.out)
        self.assertEqual(f"scanpage: no pages in the folder {self.folder}: none ends in .jpg, .png, .tif or .pnm\n", run.stderr)

    def test_a_folder_that_cannot_be_read(self):
        (self.folder / "below").mkdir()
        for number in (1, 2):
            run = scanpage("-r", self.folder, "-o", self.out, LD_PRELOAD=os.environ["FAULTS"], FAULT=f"open {number}",
                           FOLDER=str(self.root))    # fmt: skip
            self.assertEqual((2, []), (run.status, run.lines))
            self.assertEqual(f"scanpage: the folder {self.folder} cannot be read: Too many open files\n", run.stderr)

    def test_a_folder_in_a_list_is_no_page(self):
        run = scanpage("--from", "-", "-o", self.out, stdin=f"{self.folder}\n".encode())
        self.assertEqual((1, ["failed"]), (run.status, [line.status for line in run.lines]))
        self.assertIn(f"{self.folder}: is a folder; name it on the command line", run.stderr)


class Results(PageTest):
    def test_the_folder_is_made(self):
        for folder in (self.root / "one", self.root / "two" / "three" / "four", f"{self.root}/five//six/", f"{self.root}/./seven"):
            run = scanpage(self.pages[0], "-o", folder)
            self.assertEqual(0, run.status, run.stderr)
            self.assertEqual(["page-000000.jpg"], os.listdir(folder))

    def test_a_relative_folder(self):
        done = subprocess.run([SCANPAGE, self.pages[0], "-o", "new/folder"], cwd=self.root, capture_output=True)
        self.assertEqual(0, done.returncode, done.stderr)
        self.assertEqual(["page-000000.jpg"], os.listdir(self.root / "new" / "folder"))

    def test_a_file_is_in_its_place(self):
        for folder in (self.pages[1], self.pages[1] / "below"):
            before = self.pages[1].read_bytes()
            run = scanpage(self.pages[0], "-o", folder)
            self.assertEqual((2, []), (run.status, run.lines))
            self.assertEqual(f"scanpage: {self.pages[1]} is a file, but the results need a folder; choose another name\n", run.stderr)
            self.assertEqual(before, self.pages[1].read_bytes())

    def test_a_file_is_in_the_place_of_a_folder_below(self):
        (self.folder / "box").mkdir()
        os.link(self.drawn[0], self.folder / "box" / "a.jpg")
        (self.out / "box").write_text("mine")
        run = scanpage("-r", self.folder, "-o", self.out)
        self.assertEqual(1, run.status)
        self.assertEqual([str(self.folder / "box" / "a.jpg")], [line.file for line in run.lines if line.status == "failed"])
        self.assertIn("box is a file, but the results need a folder", run.stderr)
        self.assertEqual("mine", (self.out / "box").read_text())

    def test_it_cannot_be_made(self):
        run = scanpage(self.pages[0], "-o", "/proc/nowhere/straight")
        self.assertEqual((2, []), (run.status, run.lines))
        self.assertEqual("scanpage: the folder /proc/nowhere cannot be made: No such file or directory\n", run.stderr)

    def test_an_empty_name(self):
        run = scanpage(self.pages[0], "-o", "")
        self.assertEqual((2, []), (run.status, run.lines))
        self.assertIn("--output: the name is empty; write . for this folder\n", run.stderr)

    def test_it_is_not_made_for_nothing(self):
        theirs = self.root / "sheet.png"
        theirs.write_bytes(b"theirs")
        for wrong in (["--contact-sheet", theirs], ["--from", self.root / "missing"], ["--jobs", "0"]):
            self.assertEqual(2, scanpage(self.pages[0], "-o", self.root / "new", *wrong).status)
            self.assertFalse((self.root / "new").exists(), wrong)


if __name__ == "__main__":
    unittest.main()
