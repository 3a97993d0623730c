"""The report, the exit status and the help of scanpage, and what it writes."""

import os
import pathlib
import subprocess
import unittest

from support import SCANPAGE, PageTest, pagegen, scanpage


class Report(PageTest):
    def test_a_line_a_page(self):
        run = scanpage(*self.pages, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual([str(page) for page in self.pages], [line.file for line in run.lines])
        for page, line in zip(self.pages, run.lines):
            self.assertEqual("done", line.status)
            self.assertGreater(float(line.milliseconds), 0)
            self.assertEqual((self.out / page.name).stat().st_size, int(line.bytes))
        self.assertIn("6 done, 0 kept, 0 failed", run.stderr)

    def test_the_skew_is_the_one_that_was_drawn(self):
        for skew in (-3.1, 0.0, 2.3):
            page = self.folder / "drawn.jpg"
            pagegen("--dpi", "150", "--skew", str(skew), page)
            run = scanpage(page, "-o", self.out)
            self.assertAlmostEqual(skew, float(run.lines[0].skew), delta=0.2)
            straight = scanpage(self.out / "drawn.jpg", "-o", self.folder)
            self.assertAlmostEqual(0, float(straight.lines[0].skew), delta=0.2)

    def test_a_given_angle_is_reported(self):
        run = scanpage("--angle", "-0.5", self.pages[0], "-o", self.out)
        self.assertEqual("-0.50", run.lines[0].skew)

    def test_bytes_are_those_of_all_results(self):
        run = scanpage("--format", "jpeg,pbm,g4", self.pages[0], "-o", self.out)
        self.assertEqual(["page-000000.jpg", "page-000000.pbm", "page-000000.tif"], self.results())
        self.assertEqual(sum(path.stat().st_size for path in self.out.iterdir()), int(run.lines[0].bytes))

    def test_names_stay_on_their_line(self):
        page = self.folder / "a\tb\nc\\d\re\x01f\x7fg.jpg"
        os.link(self.pages[0], page)
        run = scanpage(page, self.folder / "not\nthere", "-o", self.out)
        self.assertEqual(1, run.status)
        self.assertEqual(f"{self.folder}/a\\tb\\nc\\\\d\\re\\x01f\\x7fg.jpg", run.lines[0].file)
        self.assertIn("not\\nthere: cannot be opened", run.stderr)
        self.assertEqual([page.name], self.results())

    def test_names_in_a_fault_stay_on_their_line(self):
        page = self.folder / "two\nlines.jpg"
        os.link(self.pages[0], page)
        (self.out / page.name).mkdir()
        run = scanpage(page, "-o", self.out)
        self.assertIn(f"{self.out}/two\\nlines.jpg cannot be written", run.stderr)

    def test_jobs_do_not_change_the_results(self):
        scanpage(*self.pages, "-o", self.out)
        alone = {path.name: path.read_bytes() for path in self.out.iterdir()}
        run = scanpage("--jobs", "3", *self.pages, "-o", self.out)
        self.assertEqual({str(page) for page in self.pages}, {line.file for line in run.lines})
        self.assertEqual(alone, {path.name: path.read_bytes() for path in self.out.iterdir()})

    def test_the_contact_sheet_is_a_picture(self):
        sheet = self.root / "sheet.png"
        run = scanpage(*self.pages, self.folder / "missing.jpg", "-j", "2", "-o", self.out, "--contact-sheet", sheet)
        self.assertEqual(1, run.status, run.stderr)
        self.assertEqual(b"\x89PNG", sheet.read_bytes()[:4])


class ExitStatus(PageTest):
    def test_bad_pages_do_not_stop_the_others(self):
        empty, text, cut, missing = (self.folder / name for name in ("empty.jpg", "text.jpg", "cut.jpg", "missing.jpg"))
        empty.touch()
        text.write_text("This is no page.\n" * 50)
        cut.write_bytes(self.pages[0].read_bytes()[:100])
        bad = [empty, text, cut, missing, self.folder]
        mixed = [page for pair in zip(bad, self.pages) for page in pair]
        for jobs in ("1", "2"):
            run = scanpage("-j", jobs, *mixed, "-o", self.out)
            self.assertEqual(1, run.status)
            self.assertEqual({str(page) for page in bad}, {line.file for line in run.lines if line.status == "failed"})
            self.assertEqual([page.name for page in self.pages[:5]], self.results())
            for line in run.lines:
                if line.status == "failed":
                    self.assertEqual(("-", "0"), (line.skew, line.bytes))
                    self.assertIn(f"scanpage: {line.file}: ", run.stderr)

    def test_a_file_that_is_longer_than_a_page_can_be(self):
        with open(self.folder / "long.jpg", "wb") as long:
            long.truncate(1 << 32)
        run = scanpage(self.folder / "long.jpg", "-o", self.out)
        self.assertEqual(1, run.status)
        self.assertIn("is no file of a page's size", run.stderr)

    def test_wrong_usage(self):
        for arguments in (
            [],
            [self.pages[0]],
            ["-o", self.out],
            [self.pages[0], "-o", self.root / "nowhere"],
            [self.pages[0], "-o", self.out, "--format", "gif"],
            [self.pages[0], "-o", self.out, "--jobs", "0"],
            [self.pages[0], "-o", self.out, "--no-such-option"],
            ["--from", self.root / "nowhere", "-o", self.out],
            ["--from", self.root, "-o", self.out],
        ):
            run = scanpage(*arguments)
            self.assertEqual((2, []), (run.status, run.lines), arguments)
            self.assertNotEqual("", run.stderr)
        self.assertEqual([], self.results())

    def test_a_report_that_cannot_be_written(self):
        with open("/dev/full", "w") as full:
            done = subprocess.run([SCANPAGE, *self.pages, "-o", self.out], stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(3, done.returncode)
        self.assertIn(b"standard output cannot be written", done.stderr)
        self.assertLess(len(self.results()), 6)
        with open("/dev/full", "w") as full:
            done = subprocess.run([SCANPAGE, self.pages[0], "-o", self.out], stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(3, done.returncode)

    def test_a_reader_that_goes_away(self):
        scan = subprocess.Popen([SCANPAGE, *self.pages, "-o", self.out], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        scan.stdout.close()
        scan.stderr.read()
        scan.stderr.close()
        self.assertEqual(3, scan.wait())
        self.assert_no_parts()


class Help(unittest.TestCase):
    def test_the_manual_names_what_the_help_names(self):
        done = subprocess.run([SCANPAGE, "--help"], capture_output=True, text=True)
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        manual = pathlib.Path(os.environ["MANUAL"]).read_text().replace("\\-", "-")
        options = [word.rstrip(",") for line in done.stdout.splitlines() for word in line.split()[:1]]
        options = [option for word in options for option in word.split(",") if option.startswith("-")]
        self.assertIn("--resume", options)
        self.assertIn("-0", options)
        for option in options:
            self.assertRegex(manual, rf"(?m)^\.B[IR]? .*{option}\b", option)


if __name__ == "__main__":
    unittest.main()
