# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The manifest of scanpage --tar, and scanpage manifest, which sums up many of them."""

import gzip
import json
import os
import pathlib
import re
import subprocess
import unittest

from shards import ShardTest, members_of, sha256, tar_of
from support import SCANPAGE, Run


def manifest(*arguments, stdin=b""):
    done = subprocess.run([SCANPAGE, "manifest", *map(os.fspath, arguments)], input=stdin, capture_output=True, timeout=60)
    return Run(done.returncode, done.stdout.decode(), done.stderr.decode())


class Lines(ShardTest):
    def test_the_lines(self):
        members = [("dir/0.jpg", self.bytes[0]), ("x.txt", b"text"), ("1.jpg", b""), ("2.jpg", self.bytes[2])]
        self.input.write_bytes(tar_of(members))
        run = self.tar("--mode", "286", "--other", "drop", "--angle", "1.5")
        first, lines, last = self.lines()
        self.assertEqual({"manifest": 1, "program": "scanpage 1.0.0", "input": str(self.input),
                          "options": "--format jpeg --angle 1.5 --mode 286 --other drop"}, first)    # fmt: skip
        self.assertEqual([name for name, _ in members], [line["name"] for line in lines])
        self.assertEqual(["done", "dropped", "failed", "done"], [line["status"] for line in lines])
        for line, (_, data) in zip(lines, members):
            self.assertEqual((sha256(data), len(data)), (line["input_sha256"], line["input_size"]))
        written = members_of(self.output.read_bytes())
        made = [line for line in lines if line["result"]]
        self.assertEqual([(member.name, sha256(member.data), len(member.data)) for member in written],
                         [(line["result"], line["sha256"], line["size"]) for line in made])    # fmt: skip
        self.assertEqual([1.5, None, None, 1.5], [line["skew"] for line in lines])
        self.assertEqual([None, None, "is empty", None], [line["reason"] for line in lines])
        reported = {line.file: float(line.milliseconds) for line in run.lines}
        self.assertEqual(reported, {line["name"]: line["milliseconds"] for line in lines if line["name"] in reported})
        data, output = self.input.read_bytes(), self.output.read_bytes()
        seconds = last.pop("seconds")
        self.assertLess(0, seconds)
        self.assertEqual({"end": True, "pages": 3, "done": 2, "damaged": 0, "failed": 1, "passed": 0, "dropped": 1,
                          "without_skew": 0, "out_of_memory": 0, "input_sha256": sha256(data), "input_size": len(data),
                          "input_time": self.input.stat().st_mtime_ns, "output_sha256": sha256(output),
                          "output_size": len(output)}, last)    # fmt: skip

    def test_the_sums_are_those_of_the_streams_as_they_are(self):
        plain = tar_of(self.few_pages())
        packed = self.piped(plain, "--compress", "zstd").lines
        run = self.piped(packed, "--compress", "gzip", "--manifest", self.manifest)
        last = self.lines()[2]
        self.assertEqual((sha256(packed), len(packed), sha256(run.lines), len(run.lines)), tuple(
            last[key] for key in ("input_sha256", "input_size", "output_sha256", "output_size")))    # fmt: skip

    def test_the_sum_includes_what_follows_a_compressed_stream(self):
        self.input.write_bytes(gzip.compress(tar_of(self.few_pages())) + os.urandom(1_000_000))
        self.assertEqual(0, self.tar().status)
        data, last = self.input.read_bytes(), self.lines()[2]
        self.assertEqual((sha256(data), len(data)), (last["input_sha256"], last["input_size"]))

    def test_why_there_is_no_skew(self):
        blank = self.root / "blank.ppm"
        blank.write_bytes(b"P5 400 600 255\n" + b"\xff" * 240000)
        self.input.write_bytes(tar_of([("blank.pgm", blank.read_bytes())]))
        self.assertEqual(0, self.tar().status)
        _, (line,), last = self.lines()
        self.assertEqual((None, "blank", 1), (line["skew"], line["reason"], last["without_skew"]))


class Sums(ShardTest):
    """Three shards: 0 is good, 1 has a failed page, 2 is good."""

    def setUp(self):
        super().setUp()
        self.manifests = []
        for i in range(3):
            source = self.root / f"{i}.tar"
            source.write_bytes(tar_of([*self.few_pages(), ("x", b"x")] + [("bad.jpg", b"")] * (i == 1)))
            self.assertEqual(i == 1, self.tar(source, "-o", self.out / f"{i}.tar.zst").status)
            self.manifests.append(self.out / f"{i}.tar.zst.manifest.jsonl")
        self.good = [self.manifests[0], self.manifests[2]]

    def summary(self, *options, stdin=b""):
        run = manifest("--json", *options, stdin=stdin)
        return run.status, json.loads(run.lines)

    def name(self, i):
        return str(self.root / f"{i}.tar")

    def test_totals(self):
        status, sums = self.summary(*self.manifests)
        seconds = sums.pop("seconds")
        self.assertAlmostEqual(sum(self.lines(m)[2]["seconds"] for m in self.manifests), seconds)
        sizes = [sum((folder / f"{i}.tar{ending}").stat().st_size for i in range(3))
                 for folder, ending in ((self.root, ""), (self.out, ".zst"))]    # fmt: skip
        self.assertEqual({"shards": 3, "pages": 7, "done": 6, "damaged": 0, "failed": 1, "without_skew": 0, "passed": 3,
                          "dropped": 0, "input_size": sizes[0], "output_size": sizes[1], "missing": [], "not_whole": [],
                          "with_failures": [self.name(1)], "changed": []}, sums)    # fmt: skip
        self.assertEqual(1, status)
        self.assertEqual(0, self.summary(*self.good)[0])

    def test_a_table(self):
        run = manifest(*self.manifests)
        for line in ("shards +3", "pages +7", "  done +6", "  failed +1", re.escape(f"{self.name(1)}: has failed pages")):
            self.assertRegex(run.lines, f"(?m)^{line}$")

    def test_names_from_a_list(self):
        listed = "".join(f"{file}\n" for file in self.good).encode()
        self.assertEqual(self.summary(*self.good), self.summary("--from", "-", stdin=listed))
        (self.root / "list").write_bytes(listed)
        self.assertEqual(self.summary(*self.manifests), self.summary("--from", self.root / "list", self.manifests[1]))

    def test_what_is_missing(self):
        expected, again = self.root / "expected", self.root / "again"
        expected.write_text("in/0.tar.gz\nin/1.tar\nin/2.tgz\nin/3.tar\nin/4.tar.xz\n")
        for _ in range(2):
            status, sums = self.summary("--expected", expected, "--retry", again, *self.good)
            self.assertEqual((1, 5, ["in/1.tar", "in/3.tar", "in/4.tar.xz"]), (status, sums["shards"], sums["missing"]))
            self.assertEqual("in/1.tar\nin/3.tar\nin/4.tar.xz\n", again.read_text())
        status, sums = self.summary("--expected", expected, "--retry", again, *self.manifests)
        self.assertEqual((["in/3.tar", "in/4.tar.xz"], [self.name(1)]), (sums["missing"], sums["with_failures"]))
        self.assertEqual("in/1.tar\nin/3.tar\nin/4.tar.xz\n", again.read_text())
        expected.write_text("0.tar\n2.tar\n")
        self.assertEqual(0, self.summary("--expected", expected, "--retry", again, *self.good)[0])
        self.assertEqual("", again.read_text())

    def test_a_shard_that_was_piped_has_the_name_of_its_manifest(self):
        self.piped(b"", "--manifest", self.out / "7.tar.manifest.jsonl")
        file = self.out / "7.tar.zst.manifest.jsonl"
        self.assertEqual(0, self.piped(tar_of(self.few_pages()), "--manifest", file).status)
        (self.root / "expected").write_text("far/7.tar\nfar/8.tar\n")
        self.assertEqual(["far/8.tar"], self.summary("--expected", self.root / "expected", file)[1]["missing"])
        self.assertEqual([str(self.out / "7.tar.zst")], self.summary("--verify", file)[1]["changed"])    # it is elsewhere

    def test_a_manifest_that_is_not_whole(self):
        again = self.root / "again"
        text = self.manifests[0].read_text()
        lines = text.splitlines(keepends=True)
        for part in (lines[0], "".join(lines[:-1]), text[:-1], text[:-30], text + "\n", "", "text\n", "{}\n", "[1]\n",
                     text.replace('"failed":0', '"failed":"0"'), text + '{"a":1}\n', "x" * 100000):    # fmt: skip
            self.manifests[0].write_text(part)
            status, sums = self.summary("--retry", again, *self.good)
            self.assertEqual((1, 1), (status, len(sums["not_whole"])), part[-50:])
            self.assertIn("0.tar", again.read_text())
            self.assertEqual(1, manifest("--whole", self.manifests[0]).status)
        self.manifests[0].unlink()
        self.assertEqual(1, len(self.summary(*self.good)[1]["not_whole"]))

    def test_outputs_are_verified(self):
        self.assertEqual(0, self.summary("--verify", *self.good)[0])
        output = self.out / "2.tar.zst"
        data = output.read_bytes()
        middle = len(data) // 2
        for changed in (data[:middle] + bytes([data[middle] ^ 1]) + data[middle + 1 :], data[:-1], data + b"x", b""):
            output.write_bytes(changed)
            status, sums = self.summary("--verify", "--retry", self.root / "again", *self.good)
            self.assertEqual((1, [self.name(2)]), (status, sums["changed"]))
            self.assertEqual(f"{self.name(2)}\n", (self.root / "again").read_text())
            self.assertEqual(0, self.summary(*self.good)[0])
        output.unlink()
        self.assertEqual([self.name(2)], self.summary("--verify", *self.good)[1]["changed"])

    def test_whether_one_is_whole(self):
        file = self.manifests[1]
        for options in ([], ["--"], ["--", "--mode", "450"], ["--", "--jobs", "7"]):
            self.assertEqual((0, "", ""), manifest("--whole", file, *options))
        for options in (["--mode", "0"], ["--other", "drop"], ["--format", "g4"], ["--compress", "zstd"]):
            self.assertEqual((1, "", ""), manifest("--whole", file, "--", *options))
        self.assertEqual(1, manifest("--whole", self.root / "none").status)
        self.assertEqual(2, manifest("--whole", file, "--", "--mode", "7").status)
        file.write_text(file.read_text().replace("scanpage 1", "scanpage 2", 1))
        self.assertEqual(1, manifest("--whole", file).status)

    def test_usage(self):
        for options in ([], ["--no-such-option"], ["--expected", self.root / "none", self.manifests[0]]):
            run = manifest(*options)
            self.assertEqual(2, run.status)
            self.assertRegex(run.stderr, "\nscanpage manifest --help prints the options.\n$")
        self.assertEqual(2, manifest("--retry", self.out, self.manifests[0]).status)
        self.assertEqual(0, manifest("--help").status)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([SCANPAGE, "manifest", self.manifests[0]], stdout=full, stderr=subprocess.DEVNULL, timeout=60)
        self.assertEqual(2, done.returncode)

    def test_bash_completes_its_options(self):
        text = manifest("--help").lines
        options = {name for names in re.findall(r"(?m)^ {2}(-\S+)", text) for name in names.split(",")}
        script = f"{os.path.dirname(os.environ['MANUAL'])}/completion/scanpage.bash"
        command = f'. "{script}"; COMP_WORDS=(scanpage manifest -); COMP_CWORD=2; _scanpage; echo "${{COMPREPLY[@]}}"'
        done = subprocess.run(["bash", "-c", command], check=True, capture_output=True, text=True)
        self.assertEqual(options, set(done.stdout.split()))
        manual = pathlib.Path(os.environ["MANUAL"]).read_text().replace("\\-", "-")
        for option in options:
            self.assertRegex(manual, rf"(?m)^\.B[IR]? .*{option}\b")


if __name__ == "__main__":
    unittest.main()
