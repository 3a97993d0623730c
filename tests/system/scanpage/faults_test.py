# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Whatever fails, and whenever: no page is changed, no result is partial, and report and exit status are true."""

import itertools
import os
import pathlib
import shutil
import subprocess
import unittest

from images import jpeg_of
from support import SCANPAGE, PageTest, Run, parse

FORMATS = ["--format", "jpeg,pbm,g4"]
ENDINGS = (".jpg", ".pbm", ".tif")


def whole(names):
    return {name: stream for name, stream in names.items() if not name.startswith(".scanpage-")}


class Faults(PageTest):
    """A page with three results. Standard output is a file, as a log is."""

    def setUp(self):
        super().setUp()
        for page in self.folder.iterdir():
            page.unlink()
        rows = [[255 if (x // 5 + y // 3) % 4 else 30 for x in range(300)] for y in range(300)]
        page = jpeg_of(self.root / "page.jpg", rows)
        self.pages = [self.folder / page.name]
        shutil.move(page, self.pages[0])
        self.originals = {page: page.read_bytes() for page in self.pages}
        self.names = [page.stem + ending for page in self.pages for ending in ENDINGS]
        self.assertEqual(0, self.run_with("none").status)
        self.right = self.contents()
        self.assertEqual(sorted(self.names), sorted(self.right))
        self.assertEqual(0, self.run_with("none", "--angle", "1").status)
        self.earlier = self.contents()
        self.assertNotEqual(self.right, self.earlier)

    def run_with(self, fault, *options, **environment):
        report = self.root / "report.tsv"
        report.unlink(missing_ok=True)
        (self.root / "fired").unlink(missing_ok=True)
        command = [SCANPAGE, "--overwrite", *options, *FORMATS, *map(str, self.pages), "-o", str(self.out)]
        environment = {"LD_PRELOAD": os.environ["FAULTS"], "FAULT": fault, "FOLDER": str(self.root), **environment}
        with open(report, "ab") as stream:
            done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=stream, stderr=subprocess.PIPE, timeout=60,
                                  env={**os.environ, **environment})    # fmt: skip
        text = report.read_text()
        lines = parse(text[: text.rfind("\n") + 1].lstrip("\n"))    # the last may be cut
        return Run(done.returncode, lines, done.stderr.decode())

    def fill(self, contents):
        for path in self.out.iterdir():
            path.unlink()
        for name, stream in contents.items():
            (self.out / name).write_bytes(stream)

    def fired(self):
        return (self.root / "fired").exists()

    def check(self, run, before, fault):
        """What holds after every run."""
        self.assertEqual(self.originals, {page: page.read_bytes() for page in self.pages}, fault)
        found = whole(self.contents())
        for name, stream in found.items():
            self.assertIn(stream, (self.right[name], before.get(name)), (fault, name))
        self.assertLessEqual(set(before), set(found), fault)
        for line in run.lines:
            page = pathlib.Path(line.file).stem
            if line.status == "done":
                self.assertEqual({page + e: self.right[page + e] for e in ENDINGS},
                                 {name: found.get(name) for name in self.names if name.startswith(page)}, fault)
            else:
                self.assertEqual(("failed", "0"), (line.status, line.bytes), fault)
                self.assertIn(f"{line.file}: ", run.stderr, fault)
        if run.status == 0:
            self.assertEqual((["done"], self.right), ([line.status for line in run.lines], found), fault)
        if run.status == 1:
            self.assertEqual(["failed"], [line.status for line in run.lines], fault)
        self.assertNotIn("terminate called", run.stderr, fault)

    def every(self, call, before, *options, statuses=(0, 1), lasting=("", " lasting"), **environment):
        """Fails the first call of a kind, then the second ..., until none is left. The number of calls."""
        for manner in lasting:
            for number in itertools.count(1):
                self.fill(before)
                fault = f"{call} {number}{manner}"
                run = self.run_with(fault, *options, **environment)
                self.assertIn(run.status, statuses, (fault, run.stderr))
                self.check(run, before, fault)
                if not self.fired():
                    self.assertEqual(0, run.status, (fault, run.stderr))
                    break
        return number - 1

    def test_open(self):
        self.assertLessEqual(5, self.every("open", {}, statuses=(0, 1, 2)))

    def test_read(self):
        self.assertLessEqual(1, self.every("read", {}))

    def test_read_of_earlier_results(self):
        self.assertLessEqual(4, self.every("read", self.earlier, lasting=("",)))

    def test_write(self):
        self.assertLessEqual(4, self.every("write", {}, statuses=(0, 1, 3)))

    def test_short_write(self):
        self.assertLessEqual(4, self.every("short", {}, statuses=(0,)))

    def test_fsync(self):
        self.assertLessEqual(6, self.every("fsync", {}))

    def test_name(self):
        self.assertLessEqual(3, self.every("name", {}))
        self.assertLessEqual(6, self.every("name", self.earlier))

    def test_files_that_need_a_name(self):
        """On a file system without O_TMPFILE."""
        self.fill({})
        run = self.run_with("unnameable 1 lasting")
        self.assertEqual((0, self.right), (run.status, self.contents()), run.stderr)
        self.fill(self.earlier)
        run = self.run_with("unnameable 1 lasting")
        self.assertEqual((0, self.right), (run.status, self.contents()), run.stderr)

    def test_close(self):
        self.assertLessEqual(4, self.every("close", {}, statuses=(0,)))

    def test_thread(self):
        self.assertLessEqual(2, self.every("thread", {}, "--jobs", "2", statuses=(0,)))

    def test_memory(self):
        self.assertLessEqual(4, self.every("memory", {}, "--jobs", "2"))

    def test_a_stop_at_every_step(self):
        self.assertLessEqual(25, self.every("stop", self.earlier, statuses=(0, 3), lasting=("",)))

    def test_a_kill_at_every_step(self):
        self.assertLessEqual(20, self.every("kill", {}, statuses=(0, 3, -15), lasting=("",)))

    def test_another_program_takes_a_name(self):
        for number in itertools.count(1):
            self.fill({})
            name = self.names[number % 3]
            run = self.run_with(f"taken {number}", THEIRS=str(self.out / name))
            self.assertIn(run.status, (0, 1))
            found = self.contents()
            if not self.fired():
                break
            if run.status == 1:
                self.assertEqual(b"theirs", found.pop(name), number)
            for name, stream in found.items():
                self.assertEqual(self.right[name], stream, (number, name))
        self.assertLess(15, number)


if __name__ == "__main__":
    unittest.main()
