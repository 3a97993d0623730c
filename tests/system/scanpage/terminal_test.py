# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The progress bar: on a terminal and nowhere else."""

import os
import pty
import re
import subprocess
import time
import unittest

from support import HOLD, SCANPAGE, PageTest, link_pages, names, scanpage


class Bar(PageTest):
    def on_terminal(self, *arguments, stdin=b"", status=0, lines_too=False, until=None, then=None):
        """What is shown. Once it holds `until`, does `then`, or stops the program."""
        ours, theirs = pty.openpty()
        scan = subprocess.Popen(
            [SCANPAGE, "--overwrite", *map(str, arguments), "-o", str(self.out)],
            stdin=subprocess.PIPE,
            stdout=theirs if lines_too else subprocess.DEVNULL,
            stderr=theirs,
            env=HOLD,
        )
        self.addCleanup(scan.kill)
        os.close(theirs)
        scan.stdin.write(stdin)
        if until:
            scan.stdin.flush()
        else:
            scan.stdin.close()
        shown = b""
        try:
            while block := os.read(ours, 4096):
                shown += block
                if until and until in shown:
                    until = None
                    (then or subprocess.Popen.terminate)(scan)
                    scan.stdin.close()
        except OSError:
            pass    # the other end is closed
        os.close(ours)
        self.assertEqual(status, scan.wait())
        return shown.decode()

    def test_a_terminal_shows_it(self):
        shown = self.on_terminal(*self.pages)
        first = re.search(r"\r\[=* *\] 1/6, (\d+\.\d) pages/s, (\d+):([0-5]\d):([0-5]\d) left\033\[K", shown)
        self.assertTrue(first, shown)
        hours, minutes, seconds = map(int, first.groups()[1:])
        left = 5 / float(first[1])
        self.assertAlmostEqual(left, 3600 * hours + 60 * minutes + seconds, delta=0.6 + 0.2 * left)
        self.assertRegex(shown, r"\r\[={30}\] 6/6, ")
        kept = self.on_terminal("--resume", *self.pages)
        self.assertRegex(kept, r"\r\[={30}\] 6/6, 0\.0 pages/s\033\[K")    # no work, no speed
        self.assertNotIn("left", kept)

    def test_it_stands_until_there_is_something_to_say(self):
        more = self.root / "more"
        more.mkdir()
        start = time.monotonic()
        shown = self.on_terminal(*link_pages(self.drawn, more, 60), "-j", "2")
        self.assertLessEqual(shown.count("\r["), 2 + 10 * (time.monotonic() - start))
        self.assertEqual(1, shown.count("\r\033[K"))
        self.assertIn("left\033[K\r\033[K60 done, ", shown)

    def test_it_moves(self):
        def go_on(scan):
            time.sleep(0.15)
            scan.stdin.write(names(self.pages[1:2]))

        shown = self.on_terminal("--from", "-", stdin=names(self.pages[:1]), until=b"pages/s", then=go_on)
        self.assertRegex(shown, r"\A\r1 pages, \d+\.\d pages/s\033\[K\r2 pages, ")

    def test_a_fault_takes_its_place(self):
        shown = self.on_terminal(self.pages[0], self.folder / "missing.jpg", self.pages[1], status=1)
        self.assertRegex(shown, r"1/3.*\r\033\[Kscanpage: .*missing.jpg: cannot be opened: No such file or directory\r\n\r\[=* *\] 2/3")

    def test_so_do_the_lines_about_pages(self):
        shown = self.on_terminal("-v", *self.pages)
        for number in range(1, 6):
            self.assertRegex(shown, rf" {number}/6.*\r\033\[K.*page-{number:06}.jpg: 496 x 702")
        shown = self.on_terminal(*self.pages, lines_too=True)
        for number in range(1, 6):
            self.assertRegex(shown, rf" {number}/6.*\r\033\[K.*page-{number:06}.jpg\tdone\t")

    def test_a_list_in_a_file_has_an_end(self):
        listed = self.root / "list"
        listed.write_bytes(names(self.pages[:1]) + b"no page\n" * 999_999)
        shown = self.on_terminal("--from", listed, status=3, until=b"left")
        first = re.search(r"\r\[ {30}\] 1/1000000, (\d+\.\d) pages/s, (\d+):([0-5]\d):([0-5]\d) left", shown)
        self.assertTrue(first, shown)
        rate = float(first[1])
        hours, minutes, seconds = map(int, first.groups()[1:])
        self.assertLessEqual(999_999 / (rate + 0.05) - 1, 3600 * hours + 60 * minutes + seconds)
        self.assertGreaterEqual(999_999 / (rate - 0.05) + 1, 3600 * hours + 60 * minutes + seconds)

    def test_a_list_that_grows(self):
        slow = self.held_page()
        listed = self.root / "list"
        listed.write_bytes(names([self.pages[0], slow, self.pages[1]]))

        def grow(_):
            with open(listed, "ab") as more:
                more.write(names([*self.pages[2:], self.folder / "missing.jpg"]))
            self.let_go()

        shown = self.on_terminal("--from", listed, status=1, until=b"1/3", then=grow)
        self.assertRegex(shown, r"\r\[={30}\] 8/3, \d+\.\d pages/s, 0:00:00 left")
        self.assertEqual(6, len(self.results()))

    def test_a_pipe_has_no_end_to_wait_for(self):
        shown = self.on_terminal("--from", "-", stdin=names(self.pages))
        self.assertRegex(shown, r"\r1 pages, \d+\.\d pages/s")
        self.assertNotIn("left", shown)
        self.assertNotIn("/2", self.on_terminal(*self.pages[:2], "--from", "-", stdin=names(self.pages[2:])))

    def test_a_single_page_needs_none(self):
        self.assertNotIn("\033", self.on_terminal(self.pages[0]))

    def test_elsewhere_there_is_none(self):
        run = scanpage(*self.pages, "-o", self.out)
        self.assertNotIn("\r", run.stderr)
        self.assertNotIn("\033", run.stderr)


if __name__ == "__main__":
    unittest.main()
