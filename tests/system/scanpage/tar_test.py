# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""scanpage --tar: which members become what."""

import subprocess
import tarfile
import unittest

from images import ppm
from shards import Member, ShardTest, members_of, sha256, tar_of
from support import scanpage


class Pages(ShardTest):
    def of_files(self, *options):
        """The results of `self.pages` as files, by name."""
        folder = self.root / "files"
        folder.mkdir(exist_ok=True)
        self.assertEqual(0, scanpage(*options, "--overwrite", *self.pages, "-o", folder).status)
        return {path.name: path.read_bytes() for path in folder.iterdir()}

    def test_results_have_the_bytes_of_files(self):
        for options, ending in (([], "jpg"), (["--format", "g4"], "tif"), (["--format", "pbm", "--angle", "3"], "pbm")):
            right = {name: data for name, data in self.of_files(*options).items() if name.endswith(ending)}
            for jobs in ("1", "4"):
                self.output.unlink(missing_ok=True)
                self.manifest.unlink(missing_ok=True)
                pages = [(f"a/b/{page.name}", page.read_bytes()) for page in self.pages]
                found = self.straighten(pages, *options, "--jobs", jobs)
                self.assertEqual([f"a/b/{page.stem}.{ending}" for page in self.pages], [member.name for member in found])
                self.assertEqual(right, {member.name[4:]: member.data for member in found})

    def test_a_pipe_gives_the_bytes_of_a_file(self):
        self.straighten(self.few_pages())
        run = self.piped(self.input.read_bytes(), "--jobs", "2")
        self.assertEqual((0, self.output.read_bytes()), (run.status, run.lines))

    def test_owner_permissions_and_time_are_kept(self):
        for mtime in (1, 1234567890.25, 2**33):
            page, other = self.straighten([Member("1.jpg", self.bytes[0], mtime, 0o604), Member("x", b"x", mtime, 0o755)])
            self.assertEqual((mtime, 0o604), (page.mtime, page.mode))
            self.assertEqual((mtime, 0o755), (other.mtime, other.mode))
            with tarfile.open(self.output) as tar:
                for info in tar:
                    self.assertEqual((1234, 2345, "anna", "scans"), (info.uid, info.gid, info.uname, info.gname))
            self.manifest.unlink()
            self.output.unlink()

    def test_a_tar_of_whole_seconds_and_short_names_has_no_extended_headers(self):
        self.straighten(self.few_pages())
        self.assertEqual(b"0", self.output.read_bytes()[156:157])

    def test_a_tiff_of_two_pages_becomes_two_members(self):
        book = self.root / "book.tif"
        scanpage("--tiff", book, *self.pages[:2])
        scanpage(book, "-o", self.out)
        right = self.contents()
        found = self.straighten([("x/book.tif", book.read_bytes())])
        self.assertEqual(right, {member.name[2:]: member.data for member in found})
        self.assertEqual(["x/book-001.jpg", "x/book-002.jpg"], [member.name for member in found])
        self.assertEqual(["x/book.tif#001", "x/book.tif#002"], [line["name"] for line in self.lines()[1]])

    def test_report_lines_are_in_the_order_of_the_input(self):
        members = [(f"{i % 7}/{i}.jpg", self.bytes[i % 6]) for i in range(40)]
        self.input.write_bytes(tar_of(members))
        run = self.tar("--jobs", "4")
        self.assertEqual([name for name, _ in members], [line.file for line in run.lines])
        self.assertEqual([name for name, _ in members], [member.name for member in members_of(self.output.read_bytes())])


class Others(ShardTest):
    others = [
        Member("dir", b"", 5, 0o700, tarfile.DIRTYPE),
        Member("dir/notes.txt", b"P1 is the first letter and the first digit"),
        Member("dir/link.jpg", b"", 5, 0o777, tarfile.SYMTYPE, "notes.txt"),
        Member("dir/hard.jpg", b"", 5, 0o640, tarfile.LNKTYPE, "dir/notes.txt"),
        Member("pipe", b"", 5, 0o600, tarfile.FIFOTYPE),
        Member("empty", b""),
        Member("large", bytes(range(256)) * 20000),
    ]

    def test_they_are_passed_on(self):
        page = Member("7.jpg", self.bytes[0])
        found = self.straighten([*self.others[:4], page, *self.others[4:]])
        self.assertEqual(self.others, found[:4] + found[5:])
        self.assertEqual("7.jpg", found[4].name)
        _, lines, last = self.lines()
        self.assertEqual(7, last["passed"])
        large = sha256(self.others[-1].data)
        self.assertEqual((large, large, 5120000), tuple(lines[-1][key] for key in ("input_sha256", "sha256", "size")))

    def test_they_are_dropped(self):
        found = self.straighten([*self.others, ("7.jpg", self.bytes[0])], "--other", "drop")
        self.assertEqual(["7.jpg"], [member.name for member in found])
        _, lines, last = self.lines()
        self.assertEqual((7, 1), (last["dropped"], last["done"]))
        self.assertEqual(("dropped", None, sha256(self.others[-1].data)),
                         tuple(lines[6][key] for key in ("status", "result", "input_sha256")))    # fmt: skip

    def test_two_of_a_name_stay_two(self):
        found = self.straighten([("x", b"1"), ("x", b"2"), ("x", b"2")])
        self.assertEqual([b"1", b"2", b"2"], [member.data for member in found])

    def test_the_content_or_the_name_makes_a_page(self):
        ppm(self.root / "x.ppm", [[200] * 80] * 60)
        drawn = (self.root / "x.ppm").read_bytes()
        found = self.straighten([("scan", self.bytes[0]), ("x.ORIG", self.bytes[1]), ("y.PGM", drawn), ("a.pgm/x", drawn)])
        self.assertEqual(["scan.jpg", "x.jpg", "y.jpg", "a.pgm/x"], [member.name for member in found])


class Failures(ShardTest):
    def failed(self, members, *options):
        """The members of the output and the error of the only page that fails. The input may be there already."""
        if members != self.input:
            self.input.write_bytes(members if isinstance(members, bytes) else tar_of(members))
        run = self.tar(*options)
        self.assertEqual(1, run.status, run.stderr)
        found = members_of(self.output.read_bytes())
        texts = [member for member in found if member.name.endswith(".error.txt")]
        self.assertEqual(1, len(texts))
        line = next(line for line in self.lines()[1] if line["status"] == "failed")
        self.assertEqual((texts[0].name, sha256(texts[0].data)), (line["result"], line["sha256"]))
        self.assertEqual(line["reason"] + "\n", texts[0].data.decode())
        self.assertEqual(1, self.lines()[2]["failed"])
        failed = [line for line in run.lines if line.status == "failed"]
        self.assertEqual([line["name"]], [line.file for line in failed])
        return found, texts[0]

    def test_a_bad_page_becomes_a_text_in_its_place(self):
        for stream, text in ((b"no page", "is not a JPEG, PNG, TIFF or PNM file"), (b"", "is empty"),
                             (self.bytes[0][:300], "cannot be decoded")):    # fmt: skip
            found, error = self.failed([("1.jpg", self.bytes[0]), ("a/bad.jpg", stream), ("3.jpg", self.bytes[1])])
            self.assertEqual(["1.jpg", "a/bad.jpg.error.txt", "3.jpg"], [member.name for member in found])
            self.assertIn(text, error.data.decode())
            self.assertEqual((1000, 0o640), (error.mtime, error.mode))

    def test_the_second_page_of_a_result_fails(self):
        for second in ("a/1.png", "a/1.jpg", "a/1"):
            found, error = self.failed([("a/1.jpg", self.bytes[0]), ("b/1.jpg", self.bytes[0]), (second, self.bytes[1])])
            self.assertEqual(["a/1.jpg", "b/1.jpg", second + ".error.txt"], [member.name for member in found])
            self.assertIn("another page has already used the name a/1.jpg", error.data.decode())
            self.assertEqual(2, len({line["result"] for line in self.lines()[1][:2]}))
            self.manifest.write_text(self.manifest.read_text().splitlines()[0] + "\n")

    def test_a_damaged_page_is_kept_or_refused(self):
        cut = self.bytes[0][:-20000]
        self.input.write_bytes(tar_of([("1.jpg", cut)]))
        run = self.tar()
        self.assertEqual((1, "damaged"), (run.status, run.lines[0].status))
        self.assertEqual(["1.jpg"], [member.name for member in members_of(self.output.read_bytes())])
        _, lines, last = self.lines()
        self.assertEqual(("damaged", 1, 0), (lines[0]["status"], last["damaged"], last["failed"]))
        self.failed([("1.jpg", cut)], "--damaged", "refuse")

    def test_a_sparse_member_fails(self):
        page = self.root / "1.jpg"
        page.write_bytes(self.bytes[0])
        with open(page, "r+b") as file:
            file.truncate(3 << 30)
        for format in ("gnu", "pax"):
            tar = subprocess.run(["tar", "-C", self.root, f"--format={format}", "-cS", "1.jpg"], check=True, capture_output=True)
            self.assertLess(len(tar.stdout), 1_000_000)
            _, error = self.failed(tar.stdout)
            self.assertEqual(b"is sparse\n", error.data)

    def test_a_member_that_is_too_large_to_be_a_page(self):
        """2 GB and a byte of zeros behind the start of a page, in a file that takes no room on disk."""
        info = tarfile.TarInfo("1.jpg")
        info.size = 2**31
        with open(self.input, "wb") as file:
            file.write(info.tobuf() + self.bytes[0])
            file.truncate(512 + 2**31 + 1024)
        _, error = self.failed(self.input)
        self.assertEqual(b"is too large to be a page\n", error.data)


class Names(ShardTest):
    names = ["a" * 150 + "/" + "b" * 200 + ".jpg", "Zürich/Straße 7.jpg", "\udcfcber.jpg", "../up.jpg", "/etc/root.jpg",
             "back\\slash.jpg", "line\nfeed.jpg", ".jpg", "-o.jpg"]    # fmt: skip

    def test_names_are_passed_on_byte_for_byte(self):
        members = [(name, self.bytes[0]) for name in self.names] + [(name[:-4] + ".txt", b"x") for name in self.names]
        right = [name if name != ".jpg" else ".jpg.jpg" for name in self.names] + [name for name, _ in members[9:]]
        for format in (tarfile.PAX_FORMAT, tarfile.GNU_FORMAT):
            run = self.piped(tar_of(members, format))
            self.assertEqual(0, run.status, run.stderr)
            self.assertEqual(right, [member.name for member in members_of(run.lines)])
        self.assertEqual(["in", "out"], sorted(path.name for path in self.root.iterdir()))

    def test_a_name_in_utf_8_is_written_as_such(self):
        run = self.piped(tar_of([(self.names[1], self.bytes[0])]))
        self.assertIn("path=Zürich/Straße 7.jpg\n".encode(), run.lines)
        self.assertNotIn(b"hdrcharset", run.lines)    # no other character set

    def test_the_locale_does_not_matter(self):
        data = tar_of([(name, self.bytes[0]) for name in self.names])
        runs = [self.tar("-", "-o", "-", stdin=data, environment={"LC_ALL": name}) for name in ("C", "C.UTF-8", "de_DE")]
        self.assertEqual({0}, {run.status for run in runs})
        self.assertEqual(1, len({run.lines for run in runs}))

    def test_names_are_escaped_in_the_manifest_as_in_the_report(self):
        self.input.write_bytes(tar_of([(name, self.bytes[0]) for name in self.names]))
        run = self.tar()
        self.assertEqual([line.file for line in run.lines], [line["name"] for line in self.lines()[1]])
        self.assertIn("\\xfcber.jpg", [line.file for line in run.lines])


if __name__ == "__main__":
    unittest.main()
