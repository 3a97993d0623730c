# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What the tests of scanpage share: running it, reading its report, pages to work on."""

import collections
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

# A shell lets its background jobs ignore SIGINT, which programs that they start inherit. What is caught, they do not.
signal.signal(signal.SIGINT, signal.default_int_handler)

SCANPAGE = os.environ["SCANPAGE"]
PAGEGEN = os.environ["PAGEGEN"]
HOLD = {**os.environ, "LD_PRELOAD": os.environ["FAULTS"], "FAULT": "hold"}    # for pages that are held up

Line = collections.namedtuple("Line", "file status skew milliseconds bytes confidence reason blank")
Run = collections.namedtuple("Run", "status lines stderr")

LINE = re.compile(r"([^\t]+)\t(done|kept|damaged|failed)\t(-|-?\d+\.\d\d)\t(\d+\.\d)\t(\d+)"
                  r"\t(-|[01]\.\d\d)\t(-|blank|picture|unsure)\t(-|[01]\.\d\d)")


def parse(stdout):
    """The report as Lines; fails on anything else, an unfinished line included."""
    lines = []
    for text in stdout.split("\n")[:-1]:
        match = LINE.fullmatch(text)
        assert match, f"not a line of the report: {text!r}"
        lines.append(Line(*match.groups()))
    assert stdout == "" or stdout.endswith("\n"), f"the report ends in the middle of a line: {stdout!r}"
    return lines


def scanpage(*arguments, stdin=b"", **environment):
    done = subprocess.run([SCANPAGE, *map(os.fspath, arguments)], input=stdin, capture_output=True, timeout=60,
                          env={**os.environ, **environment})    # fmt: skip
    return Run(done.returncode, parse(done.stdout.decode()), done.stderr.decode())


def rescan(*arguments, **environment):
    """The same in place of results that an earlier run has left."""
    return scanpage("--overwrite", *arguments, **environment)


def pagegen(*arguments):
    subprocess.run([PAGEGEN, *map(os.fspath, arguments)], check=True, stdout=subprocess.DEVNULL, timeout=60)


def link_pages(sources, folder, count):
    """Writes `count` pages with different names that share the bytes of a few."""
    pages = []
    for i in range(count):
        pages.append(folder / f"page-{i:06}.jpg")
        os.link(sources[i % len(sources)], pages[-1])
    return pages


def wait_until(condition, seconds=20):
    late = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < late, "it does not happen"
        time.sleep(0.005)


def open_files(process):
    """What the descriptors of a running program lead to."""
    folder = f"/proc/{process.pid}/fd"
    files = {}
    for number in os.listdir(folder):
        try:
            files[int(number)] = os.readlink(f"{folder}/{number}")
        except FileNotFoundError:
            pass    # it has just been closed
    return files


def names(pages, end="\n"):
    return "".join(f"{page}{end}" for page in pages).encode()


class PageTest(unittest.TestCase):
    """A folder with a few small pages in `self.pages`, and an empty folder `self.out`."""

    dpi = 60

    @classmethod
    def setUpClass(cls):
        cls.stock = pathlib.Path(tempfile.mkdtemp(prefix="scanpage-stock-"))
        cls.addClassCleanup(shutil.rmtree, cls.stock)
        pagegen("--dpi", str(cls.dpi), "--count", "6", cls.stock)
        cls.drawn = sorted(cls.stock.iterdir())

    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="scanpage-test-"))
        self.addCleanup(shutil.rmtree, self.root)
        self.folder = self.root / "in"
        self.out = self.root / "out"
        self.folder.mkdir()
        self.out.mkdir()
        self.pages = link_pages(self.drawn, self.folder, 6)

    def held_page(self):
        """A page that is no JPEG file, which scanpage finds out after `let_go`. It must run with HOLD."""
        page = self.folder / "slow.jpg"
        page.write_bytes(b"This is no page.")
        return page

    def let_go(self):
        (self.folder / "go").touch()

    def wait_for_held_page(self, process):
        wait_until(lambda: str(self.folder / "slow.jpg") in open_files(process).values())

    def results(self):
        return sorted(path.name for path in self.out.iterdir())

    def contents(self):
        return {path.name: path.read_bytes() for path in self.out.iterdir() if path.is_file()}

    def assert_whole(self, files):
        """Every file is a JPEG stream to its end, and can be read."""
        for file in files:
            stream = file.read_bytes()
            self.assertEqual((b"\xff\xd8", b"\xff\xd9"), (stream[:2], stream[-2:]), file)
        again = self.root / "again"
        again.mkdir(exist_ok=True)
        run = rescan("--angle", "0", "--from", "-", "-o", again, stdin=names(files))
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual(len(files), len(run.lines))
