# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""scanpage --tar: the files of a shard, which are kept, replaced, complete or not there, and its memory."""

import itertools
import os
import pathlib
import re
import signal
import subprocess
import time
import unittest

from shards import ShardTest, members_of, sha256, tar_of
from support import SCANPAGE, pagegen, scanpage


class Kept(ShardTest):
    def setUp(self):
        super().setUp()
        self.input.write_bytes(tar_of([*self.few_pages(), ("x", b"x")]))
        self.assertEqual(0, self.tar().status)
        self.before = self.state()

    def state(self):
        return {path.name: (path.stat().st_mtime_ns, path.read_bytes()) for path in self.out.iterdir()}

    def assert_kept(self, *options, status=0):
        run = self.tar(*options)
        self.assertEqual((status, []), (run.status, run.lines))
        self.assertRegex(run.stderr, r"^scanpage: .*out\.tar is kept: its manifest is whole\n$")

    def assert_made(self, *options):
        run = self.tar(*options)
        self.assertEqual((0, 2), (run.status, len(run.lines)), run.stderr)
        self.assertNotEqual(self.before["out.tar"][0], self.output.stat().st_mtime_ns)
        self.assertEqual(sha256(self.output.read_bytes()), self.lines()[2]["output_sha256"])

    def test_a_shard_whose_manifest_is_whole(self):
        self.assert_kept()
        self.assert_kept("--jobs", "3", "--overwrite", "-v")
        self.assertEqual(self.before, self.state())

    def test_its_status_stays(self):
        self.input.write_bytes(tar_of([("1.jpg", self.bytes[0]), ("2.jpg", b"")]))
        self.assertEqual(1, self.tar().status)
        self.assert_kept(status=1)

    def test_other_options(self):
        for options in (["--mode", "0"], ["--other", "drop"], ["--damaged", "refuse"], ["--compress", "gzip"], ["--orient"],
                        ["--format", "g4"], ["--format", "pbm"]):    # fmt: skip
            self.assert_made(*options)
            self.assert_kept(*options)
            self.before = self.state()

    def test_another_version(self):
        self.manifest.write_text(self.manifest.read_text().replace('"scanpage 1', '"scanpage 0', 1))
        self.assert_made()

    def test_another_input(self):
        os.utime(self.input, ns=(5, 5))
        self.assert_kept()
        data = bytearray(self.input.read_bytes())
        data[data.rindex(b"x")] = ord("y")    # the size stays
        self.input.write_bytes(data)
        self.assert_made()
        self.assert_kept()
        self.before = self.state()
        self.input.write_bytes(bytes(data) + bytes(512))
        self.assert_made()

    def test_an_output_that_is_not_there_or_has_another_size(self):
        self.output.unlink()
        self.assert_made()
        with open(self.output, "ab") as file:
            file.write(b"x")
        self.assert_made()

    def test_a_manifest_that_is_not_whole(self):
        text = self.manifest.read_text()
        lines = text.splitlines(keepends=True)
        for part in (lines[0], "".join(lines[:-1]), text[:-1], text[:-20]):
            self.manifest.write_text(part)
            self.assert_made()
            self.before = self.state()


class Replaced(ShardTest):
    def setUp(self):
        super().setUp()
        self.input.write_bytes(tar_of(self.few_pages()))

    def assert_refused(self, text, *options):
        before = {path: path.read_bytes() for path in self.root.rglob("*") if path.is_file()}
        run = self.tar(*options)
        self.assertEqual(2, run.status)
        self.assertIn(text, run.stderr)
        self.assertEqual(before, {path: path.read_bytes() for path in self.root.rglob("*") if path.is_file()})

    def test_an_output_without_a_manifest(self):
        self.output.write_bytes(b"theirs")
        self.assert_refused("out.tar exists; --overwrite replaces it")
        self.assertEqual(0, self.tar("--overwrite").status)
        self.assertEqual(2, len(members_of(self.output.read_bytes())))

    def test_an_empty_output(self):
        self.output.touch()
        self.assertEqual(0, self.tar().status)

    def test_another_file_in_the_place_of_the_manifest(self):
        for text in ("theirs\n", '{"manifest": 2}\n', "{}\n", "[]", '{"a": 1'):
            self.manifest.write_text(text)
            self.assert_refused("out.tar.manifest.jsonl exists; --overwrite replaces it")
        self.assertEqual(0, self.tar("--overwrite").status)

    def test_the_input(self):
        self.assert_refused("is an input and is not replaced", "--overwrite", "-o", self.input, self.input)
        link = self.root / "link.tar"
        os.link(self.input, link)
        self.assert_refused("is an input and is not replaced", "--overwrite", "-o", link, self.input)
        self.assert_refused("is an input and is not replaced", "--overwrite", "--manifest", link, "-o", self.output,
                            self.input)    # fmt: skip

    def test_folders(self):
        self.assert_refused("Is a directory", "-o", self.folder, self.input)
        self.assert_refused("cannot be opened", "-o", self.root / "none" / "out.tar", self.input)
        self.assert_refused("none.tar cannot be opened: No such file", "-o", self.output, self.root / "none.tar")

    def test_usage(self):
        for options in (["--resume"], ["--pdf", "x.pdf"], ["--tiff", "x.tif"], ["--contact-sheet", "x.png"],
                        ["--from", "list"], ["--format", "jpeg,g4"], [self.input], ["--manifest", ""],
                        ["--manifest", self.output], ["--other", "keep"], ["--compress", "xz"]):    # fmt: skip
            self.assert_refused("--help prints the options", *options, "-o", self.output, self.input)
        self.assert_refused("--help prints the options", "-o", "", self.input)
        for options in (["--manifest", "m"], ["--other", "drop"], ["--compress", "none"]):
            self.assertEqual(2, scanpage(*options, *self.pages, "-o", self.out).status)
        self.assert_nothing_is_there()


class Stopped(ShardTest):
    def start(self):
        """A run that waits for more input after a few pages."""
        scan = subprocess.Popen([SCANPAGE, "--tar", "--jobs", "2", "-", "-o", self.output], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)    # fmt: skip
        self.addCleanup(scan.stderr.close)
        self.addCleanup(scan.stdout.close)
        scan.stdin.write(tar_of([(f"{i}.jpg", self.bytes[i % 6]) for i in range(12)])[:-10240])
        scan.stdin.flush()
        self.assertEqual(b"0.jpg\tdone", scan.stdout.readline()[:10])
        return scan

    def test_on_request(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            scan = self.start()
            scan.send_signal(number)
            self.assertEqual(3, scan.wait(timeout=30))
            self.assertIn(b"stopped before the last page; no complete tar is written", scan.stderr.read())
            self.assert_nothing_is_there()
            scan.stdin.close()

    def test_killed(self):
        scan = self.start()
        scan.kill()
        scan.wait(timeout=30)
        self.assert_nothing_is_there()
        scan.stdin.close()

    def test_a_report_that_cannot_be_written(self):
        self.input.write_bytes(tar_of(self.few_pages()))
        with open("/dev/full", "wb") as full:
            done = subprocess.run([SCANPAGE, "--tar", self.input, "-o", self.output], stdout=full, stderr=subprocess.PIPE,
                                  timeout=60)    # fmt: skip
        self.assertEqual(3, done.returncode, done.stderr)
        self.assert_nothing_is_there()


class Memory(ShardTest):
    dpi = 40

    def peak(self, members, *options):
        """Peak resident memory in kilobytes of a run over a stream of these members."""
        scan = subprocess.Popen([SCANPAGE, "--tar", "--jobs", "2", *options, "-", "-o", "-"], stdin=subprocess.PIPE,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)    # fmt: skip
        def high_water(peak):
            status = pathlib.Path(f"/proc/{scan.pid}/status").read_text()
            return int((re.search(r"VmHWM:\s+(\d+)", status) or (0, peak))[1])    # a program that has ended has none

        with scan.stdin as pipe:
            for member in members:
                pipe.write(tar_of([member])[: 512 + -(-len(member[1]) // 512) * 512])
            pipe.flush()
            peak = high_water(0)
            pipe.write(bytes(1024))
        while scan.poll() is None:
            peak = high_water(peak)
            time.sleep(0.002)
        self.assertEqual(0, scan.returncode)
        return peak

    def stream(self, count):
        return ((f"{i}.jpg", self.bytes[i % 6]) for i in range(count))

    def test_many_pages_take_no_more_than_some(self):
        self.assertLess(self.peak(self.stream(600)), self.peak(self.stream(100)) + 4096)

    def test_members_that_are_passed_on_take_none(self):
        large, small = os.urandom(1 << 26), bytes(1 << 19)
        page = self.root / "page.jpg"
        pagegen("--dpi", "300", page)    # the others wait for it
        first = ("first.jpg", page.read_bytes())
        some = self.peak([first])
        for others in ([("x", large)], [(str(i), small) for i in range(200)], [(str(i), b"") for i in range(20000)]):
            for options in ([], ["--other", "drop"]):
                self.assertLess(self.peak([first, *others], *options), some + 30_000)


if __name__ == "__main__":
    unittest.main()
