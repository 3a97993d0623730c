# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""scanpage --tar: streams that are compressed, cut, damaged or no tar, and standard output."""

import bz2
import gzip
import lzma
import os
import re
import resource
import subprocess
import tarfile
import unittest

from shards import ShardTest, members_of, tar_of
from support import SCANPAGE

GZIP, ZSTD = b"\x1f\x8b", b"\x28\xb5\x2f\xfd"


class Compression(ShardTest):
    def test_input(self):
        plain = tar_of(self.few_pages())
        right = self.piped(plain).lines
        self.assertEqual(2, len(members_of(right)))
        zstd = subprocess.run([SCANPAGE, "--tar", "--other", "drop", "--compress", "zstd", "-", "-o", "-"], input=plain,
                              check=True, capture_output=True).stdout    # fmt: skip
        self.assertEqual(ZSTD, zstd[:4])
        for packed in (gzip.compress(plain), bz2.compress(plain), lzma.compress(plain), gzip.compress(plain[:700]) +
                       gzip.compress(plain[700:])):    # fmt: skip
            self.assertEqual((0, right), self.piped(packed)[:2])
        self.assertEqual((0, self.piped(right).lines), self.piped(zstd)[:2])

    def test_output_by_name(self):
        self.input.write_bytes(tar_of(self.few_pages()))
        plain = self.piped(self.input.read_bytes()).lines
        for ending, magic in ((".tar", plain[:4]), (".tar.gz", GZIP), (".tgz", GZIP), (".tar.zst", ZSTD), (".tzst", ZSTD)):
            output = self.out / f"x{ending}"
            self.assertEqual(0, self.tar(self.input, "-o", output).status)
            data = output.read_bytes()
            self.assertEqual(magic, data[: len(magic)], ending)
            if magic == GZIP:
                self.assertEqual(plain, gzip.decompress(data))
            self.assertEqual(self.piped(plain).lines, self.piped(data).lines)
            self.assertEqual(0, self.tar(self.input, "-o", self.root / "other", "--overwrite", "--compress", "gzip").status)
            self.assertEqual(GZIP, (self.root / "other").read_bytes()[:2])

    def test_equal_runs_give_equal_bytes(self):
        plain = tar_of(self.few_pages())
        for compression in ("none", "gzip", "zstd"):
            one, two = (self.piped(plain, "--compress", compression, "--jobs", jobs).lines for jobs in ("1", "3"))
            self.assertEqual(one, two)
            if compression == "gzip":
                self.assertEqual(bytes(4), one[4:8])    # no time


class Damage(ShardTest):
    def refused(self, data, message="is cut, damaged or no tar"):
        """Neither a file nor a complete stream comes of it."""
        self.input.write_bytes(data)
        run = self.tar()
        self.assertEqual(2, run.status)
        self.assertIn(f"{self.input} {message}", run.stderr)
        self.assert_nothing_is_there()
        run = self.piped(data)
        self.assertEqual(2, run.status)
        self.assertIn(f"standard input {message}", run.stderr)
        with self.assertRaises(AssertionError):
            members_of(run.lines)
        return run.lines

    def test_a_stream_that_is_cut(self):
        whole = tar_of([*self.few_pages(), ("x", b"1")])
        end = len(whole.rstrip(b"\0"))
        end += -end % 512
        first = 512 + -(-len(self.bytes[0]) // 512) * 512
        for size in (1, 511, 512, 513, 70000, first - 1, first + 1, end - 512, end - 1, end + 1):
            self.refused(whole[:size])
        for size in (first, end):
            self.refused(whole[:size], "is cut: tar's end marker is missing")
        self.assertEqual(0, self.piped(whole[: end + 512]).status)    # some programs write one block of zeros
        self.refused(b"")

    def test_a_compressed_stream_that_is_cut(self):
        whole = tar_of(self.few_pages())
        for packed in (gzip.compress(whole), bz2.compress(whole), lzma.compress(whole),
                       self.piped(whole, "--compress", "zstd").lines):    # fmt: skip
            for size in (3, len(packed) // 2, len(packed) - 1):
                self.refused(packed[:size])

    def test_our_own_output_that_was_cut(self):
        """The result of a cut stream has no end either, so the next program in the pipe rejects it."""
        large = ("x", os.urandom(3_000_000))
        cut = tar_of([self.few_pages()[0], large, self.few_pages()[1]])[:3_200_000]
        for compression in ("none", "gzip", "zstd"):
            out = self.piped(cut, "--compress", compression)
            self.assertEqual(2, out.status)
            self.assertLess(1000, len(out.lines))
            self.assertEqual(2, self.piped(out.lines).status, compression)

    def test_a_damaged_header(self):
        whole = tar_of(self.few_pages())
        for place in (10, 130, 150, 512 + -(-len(self.bytes[0]) // 512) * 512 + 3):
            self.refused(whole[:place] + bytes([whole[place] ^ 4]) + whole[place + 1 :])

    def test_what_is_no_tar(self):
        for data in (self.bytes[0], b"text\n" * 1000, gzip.compress(self.bytes[0])):
            self.refused(data)
        self.refused(tar_of(self.few_pages()) + b"x" * 512)

    def test_tars_behind_each_other_are_one(self):
        data = b"".join(tar_of([page]) for page in self.few_pages())
        run = self.piped(data)
        self.assertEqual(0, run.status)
        self.assertEqual(["0.jpg", "1.jpg"], [member.name for member in members_of(run.lines)])

    def test_a_size_that_is_claimed_takes_no_memory(self):
        info = tarfile.TarInfo("1.jpg")
        info.size = 2**31 - 1
        data = info.tobuf() + self.bytes[0]
        before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
        self.refused(data)
        self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, max(before, 200_000))


class StandardOutput(ShardTest):
    def test_it_is_the_tar_and_nothing_else(self):
        self.input.write_bytes(tar_of([*self.few_pages(), ("bad.jpg", b"")]))
        run = self.tar(self.input, "-o", "-", "-v")
        self.assertEqual(1, run.status)
        self.assertEqual(["0.jpg", "1.jpg", "bad.jpg.error.txt"], [member.name for member in members_of(run.lines)])
        self.assertRegex(run.stderr, r"bad.jpg: is empty\n")
        self.assertEqual(["in", "in.tar", "out"], sorted(path.name for path in self.root.iterdir()))

    def test_a_manifest_on_request(self):
        data = tar_of(self.few_pages())
        for _ in range(2):    # the stream is made even if the manifest is whole
            run = self.piped(data, "--manifest", self.manifest)
            self.assertEqual((0, 2), (run.status, len(members_of(run.lines))))
            first, lines, last = self.lines()
            self.assertEqual(("-", 2, len(run.lines), None),
                             (first["input"], len(lines), last["output_size"], last["input_time"]))    # fmt: skip

    def test_no_manifest_of_a_stream_that_fails(self):
        data = tar_of(self.few_pages())
        self.assertEqual(2, self.piped(data[:90000], "--manifest", self.manifest).status)
        self.assert_nothing_is_there()
        command = [SCANPAGE, "--tar", "-", "-o", "-", "--manifest", self.manifest]
        with open("/dev/full", "wb") as full:
            done = subprocess.run(command, input=data, stdout=full, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual(2, done.returncode)
        self.assertRegex(done.stderr.decode(), "standard output cannot be written: No space left")
        self.assert_nothing_is_there()

    def test_a_reader_that_goes_away(self):
        scan = subprocess.Popen([SCANPAGE, "--tar", "-", "-o", "-", "--manifest", self.manifest], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)    # fmt: skip
        scan.stdout.close()
        _, error = scan.communicate(tar_of(self.few_pages()), timeout=60)
        self.assertEqual(2, scan.returncode)
        self.assertTrue(re.search(b"standard output cannot be written: Broken pipe", error), error)
        self.assert_nothing_is_there()


if __name__ == "__main__":
    unittest.main()
