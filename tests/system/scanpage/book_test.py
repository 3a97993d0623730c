# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""All pages in one PDF and one TIFF, from files and from a scanner that is still running."""

import calendar
import os
import re
import subprocess
import time
import unittest

from encoders import pnm, tiff, tiff_page
from images import Image
from support import HOLD, SCANPAGE, PageTest, parse, rescan, scanpage

SCAN = ["scanimage", "-d", "test", "--resolution", "100", "-x", "60", "-y", "40"]
WIDTH, HEIGHT = 236, 157    # of such a scan


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout


class Books(PageTest):
    def setUp(self):
        super().setUp()
        self.pdf, self.tiff = self.root / "Our book.pdf", self.root / "book.tif"
        self.options = ["--pdf", self.pdf, "--tiff", self.tiff]

    def images_in(self, pdf):
        """Width, height, colour, bits, encoding, dots per inch of each page's image; qpdf finds no fault."""
        self.assertIn("No syntax or stream encoding errors found", output_of("qpdf", "--check", pdf))
        rows = [line.split() for line in output_of("pdfimages", "-list", pdf).splitlines()[2:]]
        self.assertEqual(list(range(1, len(rows) + 1)), [int(row[0]) for row in rows])
        return [(int(row[3]), int(row[4]), row[5], int(row[7]), row[8], int(row[12]), int(row[13])) for row in rows]

    def flat(self, name, level, width=30):
        page = self.folder / name
        page.write_bytes(pnm([[level] * width for _ in range(20)], 5))
        return page


class Contents(Books):
    def test_pages_come_in_the_order_of_the_input(self):
        pages = [self.flat(f"p{i}.pgm", 90, 20 + i) for i in range(12)]
        pages.insert(3, self.folder / "several.tif")
        pages[3].write_bytes(tiff(*[tiff_page([[90] * width] * 20) for width in (101, 102, 103)]))
        widths = [20, 21, 22, 101, 102, 103, *range(23, 32)]
        for jobs in ("1", "4"):
            run = rescan("--angle", "0", "-j", jobs, *pages, *self.options)
            self.assertEqual((0, 15), (run.status, len(run.lines)), run.stderr)
            self.assertEqual(widths, [image[0] for image in self.images_in(self.pdf)])
            self.assertEqual(widths, self.tiff_widths())
        self.assertEqual(["Our book.pdf", "book.tif", "in", "out"], sorted(path.name for path in self.root.iterdir()))

    def tiff_widths(self):
        run = rescan("-v", "--angle", "0", self.tiff, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        return [int(width) for width in re.findall(r"^.*#\d+: (\d+) x 20, ", run.stderr, re.M)]

    def test_the_streams_are_those_of_the_results(self):
        colour, bits = self.pages[0], self.folder / "bits.pbm"
        bits.write_bytes(pnm([[int((x + y) % 5 == 0) for x in range(100)] for y in range(70)], 4))
        run = scanpage("--format", "jpeg,g4", "--angle", "0", colour, bits, *self.options, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        jpeg = (self.out / "page-000000.jpg").read_bytes()
        length = 2 + int.from_bytes(jpeg[22:24], "big")
        stream = jpeg[:20] + jpeg[20 + length :]    # without the comment behind the JFIF header
        fax = (self.out / "bits.tif").read_bytes()[8:]
        self.assertIn(stream, self.pdf.read_bytes())
        self.assertIn(stream, self.tiff.read_bytes())
        self.assertIn(fax[:60], self.pdf.read_bytes())
        self.assertEqual([("rgb", 8, "jpeg", 60), ("gray", 1, "ccitt", 300)],
                         [(colour, bits, kind, x) for _, _, colour, bits, kind, x, _ in self.images_in(self.pdf)])    # fmt: skip
        subprocess.run(["pdfimages", "-tiff", self.pdf, self.out / "x"], check=True)
        self.assertEqual(Image(self.out / "bits.tif").rows(), Image(self.out / "x-001.tif").rows())
        again = self.root / "again"
        again.mkdir()
        scanpage("--angle", "0", "--format", "jpeg,g4", self.tiff, "-o", again)
        self.assertEqual(Image(self.out / "bits.tif").rows(), Image(again / "book-002.tif").rows())
        first, second = Image(self.out / "page-000000.jpg"), Image(again / "book-001.jpg")
        for x, y in ((10, 10), (250, 300), (480, 690)):
            for a, b in zip(first.at(x, y), second.at(x, y)):
                self.assertAlmostEqual(a, b, delta=12)

    def test_grey_colour_and_one_bit(self):
        grey = self.flat("grey.pgm", 90)
        for chosen, kind in (("jpeg", "jpeg"), ("g4", "ccitt"), ("pbm", "ccitt"), ("jpeg,g4", "jpeg")):
            self.assertEqual(0, rescan("--format", chosen, grey, self.pages[0], *self.options).status)
            self.assertEqual([kind, kind], [image[4] for image in self.images_in(self.pdf)])

    def test_size_title_and_date(self):
        page = self.folder / "page.tif"
        page.write_bytes(tiff(tiff_page([[90] * 300] * 100, density=(150, 50, 2))))
        before = time.time()
        scanpage("--angle", "0", page, *self.options)
        about = dict(line.split(":", 1) for line in output_of("pdfinfo", "-rawdates", self.pdf).splitlines())
        self.assertEqual("144 x 144 pts", about["Page size"].strip()[:13])
        self.assertEqual("Our book", about["Title"].strip())
        made = time.strptime(about["CreationDate"].strip(), "D:%Y%m%d%H%M%SZ")
        self.assertLess(abs(calendar.timegm(made) - before), 60)
        self.assertEqual((150, 50), self.images_in(self.pdf)[0][5:])
        rescan("--angle", "90", page, *self.options)
        self.assertEqual((100, 300, 50, 150), (lambda i: (*i[:2], *i[5:]))(self.images_in(self.pdf)[0]))

    def test_failed_pages_are_named(self):
        missing = self.folder / "missing.jpg"
        run = scanpage(self.pages[0], missing, self.pages[1], *self.options)
        self.assertEqual((1, 2), (run.status, len(self.images_in(self.pdf))))
        self.assertIn("the PDF or TIFF lacks pages that failed: 1\n", run.stderr)
        run = scanpage(missing, "--pdf", self.root / "none.pdf")
        self.assertEqual(2, run.status)
        self.assertIn("there are no pages for the PDF or TIFF\n", run.stderr)
        self.assertFalse((self.root / "none.pdf").exists())

    def test_memory_does_not_go_by_the_pages(self):
        def peak(count):
            pages = [self.folder / f"{count}-{i}.pgm" for i in range(count)]
            noise = os.urandom(400 * 400)
            for page in pages:
                page.write_bytes(b"P5 400 400 255\n" + noise)
            scan = subprocess.Popen([SCANPAGE, "--overwrite", "--angle", "0", *pages, *self.options], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            _, status, usage = os.wait4(scan.pid, 0)
            scan.returncode = status
            self.assertEqual(0, status)
            return usage.ru_maxrss

        some = peak(60)
        self.assertGreater(self.pdf.stat().st_size, 4000000)
        self.assertLess(peak(200), some + 2048)    # a page is 84 kB


class Safety(Books):
    def test_wrong_usage(self):
        for options, reason in (
            ([], "the place of the results is missing: -o FOLDER, --pdf FILE.pdf or --tiff FILE.tif\n"),
            (["--pdf", self.root / "book.txt"], "does not end in .pdf"),
            (["--tiff", self.pages[1]], "does not end in .tif"),
            (["--pdf", self.pdf, "--resume"], "needs all of them worked on again"),
            (["--pdf", self.root / "nowhere" / "book.pdf"], "nowhere cannot be opened"),
        ):
            run = scanpage(self.pages[0], *options)
            self.assertEqual((2, []), (run.status, run.lines), options)
            self.assertIn(reason, run.stderr)
        self.assertEqual(["in", "out"], sorted(path.name for path in self.root.iterdir()))

    def test_only_an_earlier_book_is_replaced(self):
        self.assertEqual(0, scanpage(self.pages[0], *self.options).status)
        for option, book in (("--pdf", self.pdf), ("--tiff", self.tiff)):
            right = book.read_bytes()
            run = scanpage(self.pages[0], option, book)
            self.assertEqual((2, [], right), (run.status, run.lines, book.read_bytes()))
            self.assertIn(f"{book} exists; --overwrite replaces it\n", run.stderr)
            self.assertEqual(0, rescan(self.pages[0], option, book).status)
            right = book.read_bytes()
            for theirs in (b"theirs", right[:-1], right[:500] + b"x" + right[501:]):
                book.write_bytes(theirs)
                for options in ([], ["--overwrite"]):
                    run = scanpage(self.pages[0], *options, option, book)
                    self.assertEqual((2, []), (run.status, run.lines))
                    self.assertIn(f"{book} exists and is not a whole result of scanpage; remove it", run.stderr)
                    self.assertEqual(theirs, book.read_bytes())
            book.write_bytes(right)

    def test_a_page_is_not_replaced(self):
        page = self.folder / "page.tif"
        page.write_bytes(tiff(tiff_page([[90] * 30] * 20)))
        run = scanpage(page, "--tiff", page)
        self.assertEqual(2, run.status)
        self.assertIn("page.tif is an input and is not replaced", run.stderr)

    def test_a_book_that_was_stopped_is_not_written(self):
        slow = self.held_page()
        pages = [self.pages[0], slow, *self.pages[1:]]
        scan = subprocess.Popen([SCANPAGE, *pages, *self.options], stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=HOLD)
        self.addCleanup(scan.kill)
        self.wait_for_held_page(scan)
        scan.terminate()
        self.let_go()
        printed = scan.communicate(timeout=30)[1].decode()
        self.assertEqual(3, scan.returncode)
        self.assertIn("the PDF or TIFF is not written, because pages are missing\n", printed)
        self.assertEqual(["in", "out"], sorted(path.name for path in self.root.iterdir()))

    def test_the_name_comes_at_the_end(self):
        scan = subprocess.Popen([SCANPAGE, self.pages[0], self.held_page(), *self.options], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=HOLD)
        self.addCleanup(scan.kill)
        self.wait_for_held_page(scan)
        self.assertEqual(["in", "out"], sorted(path.name for path in self.root.iterdir()))
        self.let_go()
        scan.communicate(timeout=30)
        self.assertEqual(1, len(self.images_in(self.pdf)))

    def test_faults_leave_no_part_of_it(self):
        for call in ("write", "fsync", "name", "short"):
            for number in (1, 2, 3):
                environment = {"LD_PRELOAD": os.environ["FAULTS"], "FAULT": f"{call} {number}", "FOLDER": str(self.root)}
                done = subprocess.run([SCANPAGE, self.pages[0], "--pdf", self.pdf], capture_output=True, env={**os.environ, **environment})
                if done.returncode == 0 or self.pdf.exists():    # whole, but not known to be on disk
                    self.assertEqual(1, len(self.images_in(self.pdf)), (call, number))
                    self.pdf.unlink()
                if done.returncode != 0:
                    self.assertIn(f"scanpage: {self.pdf} cannot be written: ", done.stderr.decode()[-300:], (call, number))
                    self.assertEqual([], [name for name in os.listdir(self.root) if name.startswith(".scanpage")])
                (self.root / "fired").unlink(missing_ok=True)


    def test_faults_of_the_collected_pages(self):
        """A page that cannot be collected fails; the others are written if they can be read again."""
        for fault, status, images, message in (
            ("pwrite 1", 1, 1, "page-000000.jpg: the pages cannot be collected: No space left on device"),
            ("pwrite 1 lasting", 2, 0, "there are no pages for the PDF or TIFF"),
            ("pread 1", 2, 0, "the pages cannot be read again: Input/output error"),
        ):
            run = scanpage(*self.pages[:2], "--pdf", self.pdf, LD_PRELOAD=os.environ["FAULTS"], FAULT=fault,
                           FOLDER=str(self.root))    # fmt: skip
            self.assertEqual(status, run.status, (fault, run.stderr))
            self.assertIn(message, run.stderr, fault)
            self.assertEqual(images, len(self.images_in(self.pdf)) if self.pdf.exists() else 0, fault)
            self.pdf.unlink(missing_ok=True)
            (self.root / "fired").unlink()


class Scanner(Books):
    """SANE's test device."""

    def test_while_the_scanner_runs(self):
        batch = [*SCAN, "--format=pnm", "--mode", "Color", "--test-picture", "Color pattern", "--batch=%d.pnm", "--batch-count=4", "--batch-print"]
        scan = subprocess.Popen(batch, cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        done = subprocess.run([SCANPAGE, "--from", "-", "--assume-dpi", "100", "-j", "2", *self.options], cwd=self.folder,
                              stdin=scan.stdout, capture_output=True, timeout=60)    # fmt: skip
        scan.stdout.close()
        self.assertEqual((0, 0), (scan.wait(timeout=20), done.returncode), done.stderr)
        self.assertEqual({f"{i}.pnm" for i in range(1, 5)}, {line.file for line in parse(done.stdout.decode())})
        self.assertEqual([(WIDTH, HEIGHT, "rgb", 8, "jpeg", 100, 100)] * 4, self.images_in(self.pdf))

    def test_all_formats_and_depths(self):
        pages, expected = [], []
        for mode, depth in (("Gray", 1), ("Gray", 8), ("Gray", 16), ("Color", 8), ("Color", 16)):
            for kind in ("pnm", "tiff", "png", "jpeg"):
                page = self.folder / f"{mode}-{depth}-{kind}"
                with open(page, "wb") as file:
                    subprocess.run([*SCAN, f"--format={kind}", "--mode", mode, "--depth", str(depth), "--test-picture", "Color pattern"],
                                   stdout=file, stderr=subprocess.DEVNULL, check=True)    # fmt: skip
                pages.append(page)
                fax = depth == 1 and kind != "jpeg"
                expected.append((WIDTH, HEIGHT, "rgb" if mode == "Color" else "gray", 1 if fax else 8, "ccitt" if fax else "jpeg", 100, 100))
        run = scanpage("--assume-dpi", "100", "--angle", "0", *pages, *self.options)
        self.assertEqual((0, {"done"}), (run.status, {line.status for line in run.lines}), run.stderr)
        self.assertEqual(expected, self.images_in(self.pdf))
        self.assertEqual(20, len(scanpage("--angle", "0", self.tiff, "-o", self.out).lines))


if __name__ == "__main__":
    unittest.main()
