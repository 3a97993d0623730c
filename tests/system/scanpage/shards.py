# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Tars of pages, made and read by Python's tarfile, and their manifests."""

import collections
import hashlib
import io
import json
import os
import subprocess
import tarfile

from support import SCANPAGE, PageTest, Run, parse

Member = collections.namedtuple("Member", "name data mtime mode type linkname", defaults=(1000, 0o640, tarfile.REGTYPE, ""))


def sha256(data):
    return hashlib.sha256(data).hexdigest()


def tar_of(members, format=tarfile.PAX_FORMAT, encoding="utf-8"):
    """The bytes of a tar. A member is a Member or a pair of name and contents."""
    stream = io.BytesIO()
    with tarfile.open(fileobj=stream, mode="w", format=format, encoding=encoding, errors="surrogateescape") as tar:
        for member in members:
            member = member if isinstance(member, Member) else Member(*member)
            info = tarfile.TarInfo(member.name)
            info.size, info.mtime, info.mode = len(member.data), member.mtime, member.mode
            info.type, info.linkname = member.type, member.linkname
            info.uid, info.gid, info.uname, info.gname = 1234, 2345, "anna", "scans"
            tar.addfile(info, io.BytesIO(member.data))
    return stream.getvalue()


def members_of(data):
    """What a tar holds; fails if its end marker is missing."""
    assert data[-1024:] == bytes(1024), "no end marker"
    with tarfile.open(fileobj=io.BytesIO(data), encoding="utf-8", errors="surrogateescape") as tar:
        return [Member(info.name, tar.extractfile(info).read() if info.isreg() else b"", info.mtime, info.mode, info.type,
                       info.linkname) for info in tar]    # fmt: skip


class ShardTest(PageTest):
    """Small pages in `self.pages`, with their bytes in `self.bytes`."""

    def setUp(self):
        super().setUp()
        self.bytes = [page.read_bytes() for page in self.pages]
        self.input = self.root / "in.tar"
        self.output = self.out / "out.tar"
        self.manifest = self.out / "out.tar.manifest.jsonl"

    def few_pages(self):
        return [(f"{i}.jpg", stream) for i, stream in enumerate(self.bytes[:2])]

    def tar(self, *options, stdin=b"", environment=None):
        """scanpage --tar with these options; from `self.input` to `self.output` if there are no others."""
        command = [SCANPAGE, "--tar", *map(os.fspath, options)]
        if "-o" not in options:
            command += ["-o", self.output, self.input]
        done = subprocess.run(command, input=stdin, capture_output=True, timeout=110, env={**os.environ, **(environment or {})})
        if "-" in options:
            return Run(done.returncode, done.stdout, done.stderr.decode())
        return Run(done.returncode, parse(done.stdout.decode()), done.stderr.decode())

    def straighten(self, members, *options):
        """The members of the output, after a run without failures."""
        self.input.write_bytes(tar_of(members))
        run = self.tar(*options)
        self.assertEqual(0, run.status, run.stderr)
        return members_of(self.output.read_bytes())

    def piped(self, data, *options):
        return self.tar(*options, "-", "-o", "-", stdin=data)

    def lines(self, manifest=None):
        """The lines of the manifest: the first, those of members, the last."""
        first, *members, last = map(json.loads, (manifest or self.manifest).read_text().splitlines())
        return first, members, last

    def assert_nothing_is_there(self):
        self.assertEqual([], self.results())
