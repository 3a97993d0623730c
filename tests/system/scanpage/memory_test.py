# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The memory of a run goes by the pages in hand, not by the pages of the run."""

import os
import subprocess
import unittest

from support import SCANPAGE, PageTest, link_pages, names, pagegen


class Memory(PageTest):
    dpi = 40

    def usage(self, *arguments):
        scan = subprocess.Popen([SCANPAGE, *arguments], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(scan.pid, 0)
        scan.returncode = status
        self.assertEqual(0, status)
        return usage

    def peak(self, *arguments):
        """Peak resident memory in kilobytes."""
        return self.usage(*arguments).ru_maxrss

    def peak_of(self, count):
        folder = self.root / str(count)
        folder.mkdir()
        pages = link_pages(self.drawn, folder, count)
        listed = self.root / f"{count}.list"
        listed.write_bytes(names(pages))
        out = folder / "out"
        out.mkdir()
        peak = self.peak("--jobs", "2", "--from", listed, "-o", out)
        self.assertEqual(count, len(list(out.iterdir())))
        return peak

    def test_many_pages_take_no_more_than_some(self):
        some = self.peak_of(100)
        self.assertLess(self.peak_of(2000), some + 4096)    # 2 kB a page would show
        self.assertLess(some, self.peak_of(10) + 16384)

    def test_a_page_takes_three_times_its_pixels_at_most(self):
        page = self.root / "large.jpg"
        pagegen("--dpi", "200", page)
        for median in ("none", "cross"):
            small, large = (self.peak("--overwrite", "--median", median, "-o", self.out, file) for file in (self.pages[0], page))
            self.assertLess(large - small, 3.3 * 1654 * 2339 * 3 / 1024)

    def test_a_contact_sheet_of_80_pages_takes_20_megabytes_and_2_seconds_at_most(self):
        page = self.root / "drawn.jpg"
        pagegen("--dpi", "100", page)
        folder = self.root / "80"
        folder.mkdir()
        pages = link_pages([page], folder, 80)
        run = ["--jobs", "2", "--overwrite", "-o", self.out, *pages]
        without, with_sheet = self.usage(*run), self.usage(*run, "--contact-sheet", self.root / "sheet.png")
        self.assertLess(with_sheet.ru_maxrss - without.ru_maxrss, 20_000)
        self.assertLess(with_sheet.ru_utime - without.ru_utime, 2)


if __name__ == "__main__":
    unittest.main()
