"""The progress bar: on a terminal and nowhere else."""

import os
import pty
import re
import subprocess
import unittest

from support import SCANPAGE, PageTest, names, scanpage


class Bar(PageTest):
    def on_terminal(self, *arguments, stdin=b"", status=0):
        ours, theirs = pty.openpty()
        scan = subprocess.Popen(
            [SCANPAGE, *map(str, arguments), "-o", str(self.out)],
            stdin=subprocess.PIPE,
            stdout=subprocess.DEVNULL,
            stderr=theirs,
        )
        os.close(theirs)
        scan.stdin.write(stdin)
        scan.stdin.close()
        shown = b""
        try:
            while block := os.read(ours, 4096):
                shown += block
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
        self.assertRegex(self.on_terminal("--resume", *self.pages), r"\r\[={30}\] 6/6, ")

    def test_a_fault_takes_its_place(self):
        shown = self.on_terminal(self.pages[0], self.folder / "missing.jpg", self.pages[1], status=1)
        self.assertRegex(shown, r"\r\033\[Kscanpage: .*missing.jpg: cannot be opened")

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
