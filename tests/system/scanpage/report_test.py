# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The report, the exit status and the help of scanpage, and what it writes."""

import math
import os
import pathlib
import re
import subprocess
import time
import unittest

from images import jpeg_of
from support import HOLD, SCANPAGE, PageTest, open_files, pagegen, parse, rescan, scanpage, wait_until


class Report(PageTest):
    def test_a_line_a_page(self):
        run = scanpage("-v", *self.pages, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual([str(page) for page in self.pages], [line.file for line in run.lines])
        for page, line in zip(self.pages, run.lines):
            self.assertEqual("done", line.status)
            self.assertGreater(float(line.milliseconds), 0)
            self.assertEqual((self.out / page.name).stat().st_size, int(line.bytes))
        self.assertIn("6 done, 0 kept, 0 failed", run.stderr)
        stages = float(re.search(r"^all +(\d+\.\d)$", run.stderr, re.M)[1])
        self.assertGreater(stages, 0.35 * sum(float(line.milliseconds) for line in run.lines))    # the last page's: 0.17

    def test_the_summary(self):
        page = self.folder / "grey.jpg"
        pagegen("--dpi", "60", "--grey", page)
        options = ["--denoise", "1", "--median", "cross", "--dpi", "50", "-o", self.out]
        scanpage(*options, *self.pages[:2])
        command = [SCANPAGE, "-v", "--resume", *options, *self.pages[:4], page, self.folder / "missing.jpg"]
        start = time.monotonic()
        scan = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        report, summary = (stream.read().decode() for stream in (scan.stdout, scan.stderr))
        _, status, usage = os.wait4(scan.pid, 0)
        wall = time.monotonic() - start
        scan.returncode = os.waitstatus_to_exitcode(status)
        scan.stdout.close()
        scan.stderr.close()
        self.assertEqual(1, scan.returncode)
        lines = parse(report)

        counts = re.search(r"^(\d+) done, (\d+) kept, (\d+) failed in (\d+\.\d) s: (\d+\.\d) pages/s$", summary, re.M)
        self.assertEqual(("3", "2", "1"), counts.groups()[:3])
        seconds, rate = float(counts[4]), float(counts[5])
        self.assertLessEqual(seconds, wall + 0.05)
        self.assertGreaterEqual(rate, 4 / (seconds + 0.05) - 0.05)
        self.assertLessEqual(rate, 4 / max(seconds - 0.05, 1e-9) + 0.05)

        stages = re.findall(r"^(\w[\w ]*?) +(\d+\.\d) +(\d+\.\d\d)$", summary, re.M)
        self.assertEqual(["open", "read", "blank score", "find skew", "deskew", "reduce noise", "median", "scale", "write JPEG"],
                         [name for name, _, _ in stages])    # fmt: skip
        total = float(re.search(r"^all +(\d+\.\d)$", summary, re.M)[1])
        self.assertAlmostEqual(total, sum(float(milliseconds) for _, milliseconds, _ in stages), delta=0.5)
        self.assertLessEqual(total, sum(float(line.milliseconds) for line in lines) + 0.5)
        self.assertLessEqual(sum(float(line.milliseconds) for line in lines), 1000 * wall)
        megabytes = {name: float(size) for name, _, size in stages}
        sources = [*self.pages[2:4], page]
        for name, size in {
            "open": sum(source.stat().st_size for source in sources),
            "read": 496 * 702 * 7,
            "find skew": 0,
            "write JPEG": sum((self.out / source.name).stat().st_size for source in sources),
        }.items():
            self.assertAlmostEqual(size / 2**20, megabytes[name], delta=0.02)

        peak, times = map(float, re.search(r"^peak memory (\S+) MB, (\S+) times", summary, re.M).groups())
        self.assertAlmostEqual(usage.ru_maxrss / 1024, peak, delta=0.1 * peak)
        self.assertAlmostEqual(peak * 2**20 / (496 * 702 * 3), times, delta=0.1 * times)

    def test_a_run_without_work_has_no_stages(self):
        scanpage(*self.pages, "-o", self.out)
        run = scanpage("-v", "--resume", *self.pages, "-o", self.out)
        self.assertRegex(run.stderr, r"\n0 done, 6 kept, 0 failed in [^\n]*: 0\.0 pages/s\n\Z")

    def test_verbose_says_what_a_page_is(self):
        blank = self.folder / "blank.jpg"
        pagegen("--dpi", "60", "--grey", blank)
        scanpage(self.pages[0], "-o", self.out)
        quiet = scanpage("--resume", *self.pages[:2], "-o", self.out)
        self.assertNotIn("page-", quiet.stderr)
        (self.out / self.pages[1].name).unlink()
        run = scanpage("-v", "--resume", *self.pages[:2], blank, "-o", self.out)
        said = run.stderr.split("\n3 done")[0].split("\n2 done")[0].splitlines()
        self.assertEqual(
            [
                f"{self.pages[0]}: its results are complete",
                f"{self.pages[1]}: 496 x 702, 24 bits, 60 x 60 dpi, skew {run.lines[1].skew} degrees",
                f"{blank}: 496 x 702, 8 bits, 60 x 60 dpi, skew {run.lines[2].skew} degrees",
            ],
            said,
        )

    def test_a_page_without_text_has_no_skew(self):
        drawn = {"white": lambda x, y: 255, "round": lambda x, y: 40 if (x - 200) ** 2 + (y - 200) ** 2 < 9000 else 230}
        for name, level in drawn.items():
            page = jpeg_of(self.folder / f"{name}.jpg", [[level(x, y) for x in range(400)] for y in range(400)])
            run = scanpage("-v", page, "-o", self.out)
            self.assertEqual(("done", "-"), (run.lines[0].status, run.lines[0].skew))
            self.assertEqual(f"{page}: 400 x 400, 8 bits, 300 x 300 dpi, no skew found: {run.lines[0].reason}",
                             run.stderr.splitlines()[0])    # fmt: skip
            self.assertTrue(run.stderr.splitlines()[1].startswith("1 done"), run.stderr)
        dot = jpeg_of(self.folder / "dot.jpg", [[255]])
        self.assertRegex(scanpage(dot, "-o", self.out).stderr, "\\A1 done")    # Leptonica keeps still

    def test_the_skew_is_the_one_that_was_drawn(self):
        for skew in (-3.1, 0.0, 2.3):
            page = self.folder / "drawn.jpg"
            pagegen("--dpi", "150", "--skew", str(skew), page)
            run = rescan(page, "-o", self.out)
            self.assertAlmostEqual(skew, float(run.lines[0].skew), delta=0.2)
            again = self.root / "again"
            again.mkdir(exist_ok=True)
            straight = rescan(self.out / "drawn.jpg", "-o", again)
            self.assertAlmostEqual(0, float(straight.lines[0].skew), delta=0.2)

    def test_thin_lines_are_lines(self):
        rows = [[255] * 600 for _ in range(600)]
        for x in range(20, 580):
            for y in range(40, 560, 24):
                rows[y + round((x - 300) * math.tan(math.radians(1.5)))][x] = 0
        run = scanpage(jpeg_of(self.folder / "thin.jpg", rows), "-o", self.out)
        self.assertAlmostEqual(1.5, float(run.lines[0].skew), delta=0.1)

    def test_a_given_angle_is_reported(self):
        for angle, skew in (("-0.5", "-0.50"), ("0", "0.00")):
            run = rescan("--angle", angle, self.pages[0], "-o", self.out)
            self.assertEqual(skew, run.lines[0].skew)

    def test_bytes_are_those_of_all_results(self):
        run = scanpage("--format", "jpeg,pbm,g4", self.pages[0], "-o", self.out)
        self.assertEqual(["page-000000.jpg", "page-000000.pbm", "page-000000.tif"], self.results())
        self.assertEqual(sum(path.stat().st_size for path in self.out.iterdir()), int(run.lines[0].bytes))

    def test_names_stay_on_their_line(self):
        page = self.folder / "a\tb\nc\\d\re\x01f\x7fg\x1b\x1f \xe9.jpg"
        os.link(self.pages[0], page)
        run = scanpage(page, self.folder / "not\nthere", "-o", self.out)
        self.assertEqual(1, run.status)
        self.assertEqual(f"{self.folder}/a\\tb\\nc\\\\d\\re\\x01f\\x7fg\\x1b\\x1f \xe9.jpg", run.lines[0].file)
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
        run = rescan("--jobs", "3", *self.pages, "-o", self.out)
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
        bad = [empty, text, cut, missing]
        mixed = [page for pair in zip(bad, self.pages) for page in pair]
        for jobs in ("1", "2"):
            run = rescan("-j", jobs, *mixed, "-o", self.out)
            self.assertEqual(1, run.status)
            self.assertEqual({str(page) for page in bad}, {line.file for line in run.lines if line.status == "failed"})
            self.assertEqual([page.name for page in self.pages[:4]], self.results())
            for line in run.lines:
                if line.status == "failed":
                    self.assertEqual(("-", "0"), (line.skew, line.bytes))
                    self.assertIn(f"scanpage: {line.file}: ", run.stderr)

    def test_a_file_that_is_longer_than_a_page_can_be(self):
        with open(self.folder / "long.jpg", "wb") as long:
            long.truncate(1 << 32)
        run = scanpage("-v", self.folder / "long.jpg", "-o", self.out)
        self.assertEqual(1, run.status)
        self.assertIn("is too large to be a page", run.stderr)
        self.assertRegex(run.stderr, r"\npeak memory \d+\.\d MB\n\Z")    # no page to compare it with

    def test_standard_streams_that_are_closed(self):
        command = 'exec "$0" "$@" <&- >&- 2>&-'
        scan = subprocess.Popen(["bash", "-c", command, SCANPAGE, self.held_page(), "-o", self.out], env=HOLD)
        self.addCleanup(scan.kill)
        self.wait_for_held_page(scan)
        self.assertEqual(["/dev/null"] * 3, [open_files(scan)[number] for number in range(3)])
        self.let_go()
        self.assertEqual(3, scan.wait(timeout=20))
        command = 'exec "$0" --from - -o "$1" <&-'
        done = subprocess.run(["bash", "-c", command, SCANPAGE, self.out], capture_output=True)
        self.assertEqual((2, b"scanpage: the list of pages cannot be read\n"), (done.returncode, done.stderr))

    def test_wrong_usage(self):
        for arguments in (
            [],
            [self.pages[0]],
            ["-o", self.out],
            [self.pages[0], "-o", self.pages[1]],
            [self.pages[0], "-o", ""],
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

    def test_a_reader_of_the_messages_that_goes_away(self):
        scan = subprocess.Popen([SCANPAGE, *self.pages, "-o", self.out], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        scan.stderr.close()
        self.assertEqual(6, len(parse(scan.stdout.read().decode())))
        scan.stdout.close()
        self.assertEqual(0, scan.wait())


class Help(unittest.TestCase):
    def test_the_manual_names_what_the_help_names(self):
        lines = []
        for command in ([], ["manifest"]):
            done = subprocess.run([SCANPAGE, *command, "--help"], capture_output=True, text=True)
            self.assertEqual((0, ""), (done.returncode, done.stderr))
            lines += done.stdout.splitlines()
        manual = pathlib.Path(os.environ["MANUAL"]).read_text().replace("\\-", "-")
        options = [word.rstrip(",") for line in lines for word in line.split()[:1]]
        options = [option for word in options for option in word.split(",") if option.startswith("-")]
        self.assertIn("--resume", options)
        self.assertIn("-0", options)
        for option in options:
            self.assertRegex(manual, rf"(?m)^\.B[IR]? .*{option}\b", option)
        described = re.findall(r"^\.TP\n\.B[IR]? (-.*)", manual, re.M)
        for option in (word for line in described for word in re.findall(r"(?<!\S)\"?(?:\\f.,\\f.)?(--?\w[\w-]*)", line)):
            self.assertIn(option, options)


if __name__ == "__main__":
    unittest.main()
