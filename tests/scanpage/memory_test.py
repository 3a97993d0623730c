"""The memory of a run goes by the pages in hand, not by the pages of the run."""

import os
import subprocess
import unittest

from support import SCANPAGE, PageTest, link_pages, names


class Memory(PageTest):
    dpi = 40

    def peak_of(self, count):
        """Peak resident memory in kilobytes."""
        folder = self.root / str(count)
        folder.mkdir()
        pages = link_pages(self.drawn, folder, count)
        listed = self.root / f"{count}.list"
        listed.write_bytes(names(pages))
        out = folder / "out"
        out.mkdir()
        scan = subprocess.Popen(
            [SCANPAGE, "--jobs", "2", "--from", listed, "-o", out], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
        )
        _, status, usage = os.wait4(scan.pid, 0)
        scan.returncode = status
        self.assertEqual(0, status)
        self.assertEqual(count, len(list(out.iterdir())))
        return usage.ru_maxrss

    def test_many_pages_take_no_more_than_some(self):
        some = self.peak_of(100)
        self.assertLess(self.peak_of(2000), some + 4096)    # 2 kB a page would show
        self.assertLess(some, self.peak_of(10) + 16384)    # the 50 small copies for a contact sheet would, too


if __name__ == "__main__":
    unittest.main()
