# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What scanpage is given: files that are no pages, damaged and very large pages, odd names, the environment."""

import os
import re
import socket
import subprocess
import time
import unittest

from images import Image, jpeg_of
from support import SCANPAGE, PageTest, parse, rescan


class NoPages(PageTest):
    def peak_and_time(self, page):
        start = time.monotonic()
        scan = subprocess.Popen([SCANPAGE, page, "-o", self.out], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        printed = scan.stderr.read().decode()
        scan.stderr.close()
        _, status, usage = os.wait4(scan.pid, 0)
        scan.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(1, scan.returncode)
        return printed, usage.ru_maxrss / 1024, time.monotonic() - start

    def test_only_regular_files_are_read(self):
        os.mkfifo(self.folder / "pipe")
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(self.folder / "socket"))
        for page, reason in (
            (self.folder / "pipe", "is not a regular file"),
            ("/dev/zero", "is not a regular file"),
            (self.folder / "socket", "cannot be opened: No such device or address"),
        ):
            run = rescan(page, "-o", self.out)
            self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
            self.assertIn(f"scanpage: {page}: {reason}\n", run.stderr)

    def test_a_large_file_of_another_kind_is_refused_at_once(self):
        page = self.folder / "large"
        jpeg = self.pages[0].read_bytes()
        segment = jpeg[2 : 4 + int.from_bytes(jpeg[4:6], "big")]
        unknown, wrong = "is not a JPEG, PNG, TIFF or PNM file", "is not a JPEG file"
        for start, reason in ((b"", unknown), (b"This is no page.", unknown), (b"\xff\xd8\xff", wrong),
                              (b"\xff\xd8" + segment, wrong), (b"\xff\xd8" + 9000 * segment, wrong),
                              (b"P5 x", "cannot be decoded")):    # fmt: skip
            with open(page, "wb") as file:
                file.write(start)
                file.truncate(1 << 30)
            printed, megabytes, seconds = self.peak_and_time(page)
            self.assertIn(f"large: {reason}\n", printed)
            self.assertLess(megabytes, 60)
            self.assertLess(seconds, 5)

    def test_short_files(self):
        jpeg = self.pages[0].read_bytes()
        for stream, reason in ((b"", "is empty"), (b"\xff\xd8", "is not a JPEG file"), (jpeg[:3], "cannot be decoded"),
                               (jpeg[:200], "cannot be decoded")):    # fmt: skip
            page = self.folder / "short.jpg"
            page.write_bytes(stream)
            run = rescan(page, "-o", self.out)
            self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
            self.assertIn(f"short.jpg: {reason}\n", run.stderr)


class Damaged(PageTest):
    def setUp(self):
        super().setUp()
        self.page = self.folder / "damaged.jpg"
        self.stream = self.pages[0].read_bytes()

    def test_a_damaged_page_is_reported(self):
        half = len(self.stream) // 2
        wild = self.stream[:half] + bytes(range(256)) * 4 + self.stream[half + 1024 :]
        for stream, reason in (
            (self.stream[:half], r"is damaged: only \d+ of 702 rows are there"),
            (self.stream[:-2], r"is damaged: (its end is missing|only \d+ of 702 rows are there)"),
            (wild, "is damaged: "),
        ):
            self.page.write_bytes(stream)
            for chosen in ("jpeg", "pbm", "g4"):
                run = rescan("--format", chosen, self.page, self.pages[1], "-o", self.out)
                self.assertEqual((1, ["damaged", "done"]), (run.status, [line.status for line in run.lines]))
                self.assertRegex(run.stderr, f"(?m)^scanpage: .*damaged.jpg: {reason}")
                self.assertIn("1 done, 0 kept, 1 damaged, 0 failed in", run.stderr)
                result = self.out / ("damaged" + {"jpeg": ".jpg", "pbm": ".pbm", "g4": ".tif"}[chosen])
                self.assertEqual(result.stat().st_size, int(run.lines[0].bytes))
                self.assertEqual(496, Image(result).width)

    def test_a_damaged_page_stays_damaged(self):
        self.page.write_bytes(self.stream[: len(self.stream) // 2])
        rescan(self.page, "-o", self.out)
        before = (self.out / "damaged.jpg").stat()
        run = rescan("--resume", self.page, "-o", self.out)
        self.assertEqual((1, "damaged"), (run.status, run.lines[0].status))
        self.assertEqual(before, (self.out / "damaged.jpg").stat())
        self.page.write_bytes(self.stream)
        run = rescan("--resume", self.page, "-o", self.out)
        self.assertEqual((0, "done"), (run.status, run.lines[0].status))
        self.assertEqual("kept", rescan("--resume", self.page, "-o", self.out).lines[0].status)

    def test_damaged_pages_may_be_refused(self):
        self.page.write_bytes(self.stream[: len(self.stream) // 2])
        run = rescan("--damaged", "refuse", self.page, "-o", self.out)
        self.assertEqual((1, "failed", "0"), (run.status, run.lines[0].status, run.lines[0].bytes))
        self.assertIn("is damaged: only", run.stderr)
        self.assertEqual([], self.results())
        rescan("--damaged", "keep", self.page, "-o", self.out)
        run = rescan("--damaged", "refuse", "--resume", self.page, "-o", self.out)
        self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
        self.assertEqual(["damaged.jpg"], self.results())


class LargePages(PageTest):
    def setUp(self):
        super().setUp()
        rows = [[40] * 3 + [200] * 32797 for _ in range(8)]
        self.page = jpeg_of(self.folder / "long.jpg", rows)

    def test_they_cannot_be_deskewed(self):
        run = rescan("--angle", "1", self.page, "-o", self.out)
        self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
        self.assertIn("long.jpg: is too large to be deskewed: 32800 x 8 pixels, and the longest side is 32766\n", run.stderr)
        self.assertNotIn("OpenCV", run.stderr)

    def test_quarter_turns_are_possible(self):
        for angle, size, dark in (("90", (8, 32800), (4, 32799)), ("-270", (8, 32800), (4, 32799)),
                                  ("-90", (8, 32800), (4, 0)), ("180", (32800, 8), (32799, 4)),
                                  ("0", (32800, 8), (0, 4)), ("360", (32800, 8), (0, 4))):    # fmt: skip
            run = rescan("--angle", angle, self.page, "-o", self.out)
            self.assertEqual((0, "done"), (run.status, run.lines[0].status), run.stderr)
            image = Image(self.out / "long.jpg")
            self.assertEqual(size, (image.width, image.height), angle)
            self.assertLess(image.at(*dark), 90, angle)

    def test_a_page_without_text_stays_as_it_is(self):
        run = rescan(self.page, "-o", self.out)
        self.assertEqual((0, "done", "-"), (run.status, run.lines[0].status, run.lines[0].skew), run.stderr)


class OddNames(PageTest):
    odd = {b"a\x9bb": "a\\x9bb", b"a\xc2\x9bb": "a\\xc2\\x9bb", b"\xff\xc3": "\\xff\\xc3", b"\xe2\x82": "\\xe2\\x82",
           b"\xc0\x80": "\\xc0\\x80", b"\xed\xa0\x80": "\\xed\\xa0\\x80", b"\xf4\x90\x80\x80": "\\xf4\\x90\\x80\\x80",
           "\u00e9\u20ac\U0001f4c4\u00a0".encode(): "\u00e9\u20ac\U0001f4c4\u00a0", b"\x1b[31m": "\\x1b[31m"}    # fmt: skip

    def test_names_are_printable_everywhere(self):
        for name, text in self.odd.items():
            page = os.path.join(os.fsencode(self.folder), name + b".jpg")
            os.link(self.pages[0], page)
            shown = f"{self.folder}/{text}.jpg"
            run = rescan("-v", page, page + b"x", "-o", self.out)
            self.assertEqual([shown, shown + "x"], [line.file for line in run.lines])
            self.assertIn(f"\n{shown}: 496 x 702", "\n" + run.stderr)
            self.assertIn(f"scanpage: {shown}x: ", run.stderr)

    def test_usage_errors_are_printable(self):
        for name, text in self.odd.items():
            for arguments in ([b"--no-such-" + name, b"-o", self.out], [b"--from", name, b"-o", self.out], [b"--contact-sheet", name, b"-o", self.out],
                              [b"-o", b"/proc/" + name], [b"--mode", name, b"-o", self.out], [b"--median=" + name, b"-o", self.out],
                              [b"--angle", b"1" + name, b"-o", self.out]):    # fmt: skip
                done = subprocess.run([SCANPAGE, *arguments, self.pages[0]], capture_output=True)
                self.assertEqual((2, b""), (done.returncode, done.stdout), arguments)
                self.assertIn(text, done.stderr.decode(), arguments)
                self.assertNotRegex(done.stderr.decode(), "[\x00-\x09\x0b-\x1f\x7f-\x9f]")


class ReportFile(PageTest):
    def run_with_log(self, mode, before):
        log = self.root / "pages.tsv"
        log.write_text(before)
        with open(log, mode) as stream:
            subprocess.run([SCANPAGE, *self.pages[:2], "-o", self.out], stdout=stream, stderr=subprocess.DEVNULL)
        return log.read_text()

    def test_a_line_that_was_cut_is_ended_first(self):
        text = self.run_with_log("a", "whole\t\ncut\tdo")
        self.assertTrue(text.startswith("whole\t\ncut\tdo\n"), text)
        self.assertEqual(2, len(parse(text[len("whole\t\ncut\tdo\n") :])))

    def test_a_whole_line_is_left_alone(self):
        for mode, before in (("a", "whole\n"), ("a", ""), ("w", "gone")):
            text = self.run_with_log(mode, before)
            kept = before if mode == "a" else ""
            self.assertTrue(text.startswith(kept), text)
            self.assertEqual(2, len(parse(text[len(kept) :])))

    def test_lines_are_added_even_without_append(self):
        self.assertEqual(2, len(parse(self.run_with_log("r+", "whole\n")[len("whole\n") :])))


class Environment(PageTest):
    def test_it_does_not_change_results(self):
        page = jpeg_of(self.folder / "progressive.jpg", [[(x * y) % 251 for x in range(600)] for y in range(600)], True)
        trace = self.root / "trace"
        right = rescan(page, "-o", self.out)
        result = (self.out / page.name).read_bytes()
        for name, value in (("JPEGMEM", "1"), ("JSIMD_FORCENONE", "1"), ("OPENCV_DUMP_CONFIG", "1"),
                            ("OPENCV_TRACE", "1"), ("OPENCV_CPU_DISABLE", "AVX2,AVX512_SKX")):    # fmt: skip
            run = rescan(page, "-o", self.out, OPENCV_TRACE_LOCATION=str(trace), **{name: value})
            self.assertEqual((0, "done"), (run.status, run.lines[0].status), name)
            self.assertEqual(result, (self.out / page.name).read_bytes(), name)
            self.assertEqual(self.words(right.stderr), self.words(run.stderr), name)
        self.assertEqual(["in", "out"], sorted(path.name for path in self.root.iterdir()))

    def words(self, text):
        return re.sub(r"[\d.]+", "", text).split()


if __name__ == "__main__":
    unittest.main()
