"""What comes of results when the system fails scanpage, or another program comes between."""

import os
import random
import unittest

from images import jpeg_of
from support import PageTest, scanpage


class Faults(PageTest):
    def run_with(self, fault, *arguments):
        return scanpage(*arguments, "-o", self.out, LD_PRELOAD=os.environ["FAULTS"], FAULT=fault)

    def contents(self):
        return {path.name: path.read_bytes() for path in self.out.iterdir()}

    def assert_nothing_is_written(self, run, reason):
        self.assertEqual((1, "failed", "0"), (run.status, run.lines[0].status, run.lines[0].bytes))
        self.assertIn(reason, run.stderr)
        self.assertEqual({}, self.contents())

    def test_a_file_takes_a_few_bytes_at_a_time(self):
        options = ["--format", "jpeg,pbm,g4", self.pages[0]]
        scanpage(*options, "-o", self.out)
        right = self.contents()
        self.assertEqual(0, self.run_with("short writes", *options).status)
        self.assertTrue(right == self.contents())

    def test_no_write_that_fails_goes_unseen(self):
        noise = random.Random(1)
        rows = [[noise.choice((0, 255)) for _ in range(200)] for _ in range(200)]
        page = jpeg_of(self.folder / "noise.jpg", rows)    # more than libtiff writes at a time
        for chosen in ("jpeg", "pbm", "g4"):
            writes = 0
            while (run := self.run_with(f"write {writes + 1}", "--angle", "0", "--format", chosen, page)).status == 1:
                self.assert_nothing_is_written(run, "cannot be written")
                self.assertEqual(2, len(run.stderr.split("\n\n")[0].splitlines()), run.stderr)    # libtiff keeps still
                writes += 1
            self.assertEqual("done", run.lines[0].status)
            self.assertLessEqual(1, writes)
            for path in self.out.iterdir():
                path.unlink()

    def test_jobs_are_fewer_where_threads_are_few(self):
        run = self.run_with("few threads", "--jobs", "256", *self.pages)
        self.assertEqual((0, 6), (run.status, len(run.lines)), run.stderr)

    def test_a_close_that_fails_takes_the_result_back(self):
        for chosen in ("jpeg", "pbm", "g4"):
            self.assert_nothing_is_written(self.run_with("close", "--format", chosen, self.pages[0]), "quota exceeded")

    def test_a_page_that_cannot_be_read_to_its_end(self):
        self.assert_nothing_is_written(self.run_with("read", self.pages[0]), "page-000000.jpg: cannot be read")

    def test_a_file_system_without_locks(self):
        run = self.run_with("no locks", self.pages[0])
        self.assertEqual((0, ["page-000000.jpg"]), (run.status, self.results()))

    def test_a_result_that_another_program_ends_meanwhile_is_theirs(self):
        run = self.run_with("renamed before the lock", self.pages[0])
        self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
        self.assertIn("page-000000.jpg.part is being written by another program", run.stderr)
        self.assertEqual({"page-000000.jpg": b"theirs", "page-000000.jpg.part": b"the next"}, self.contents())

    def test_a_page_that_another_program_begins_next_is_theirs(self):
        run = self.run_with("begun after the name", self.pages[0])
        self.assertEqual(0, run.status)
        self.assertEqual(b"theirs", self.contents()["page-000000.jpg.part"])
        self.assertEqual(b"\xff\xd8", self.contents()["page-000000.jpg"][:2])


if __name__ == "__main__":
    unittest.main()
