# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""scanpage --tar when something fails, at every step."""

import itertools
import json
import os
import unittest

from shards import ShardTest, sha256, tar_of


class Faults(ShardTest):
    """Whatever fails: a manifest that is whole tells the truth about the output, and the status about both."""

    def setUp(self):
        super().setUp()
        self.input.write_bytes(tar_of([("1.jpg", self.bytes[0]), ("x", b"x")]))
        self.assertEqual(0, self.tar("--angle", "1").status)
        self.earlier = self.contents()
        for path in self.out.iterdir():
            path.unlink()
        self.assertEqual(0, self.tar().status)
        self.right = sha256(self.output.read_bytes())

    def fill(self, contents):
        for path in self.out.iterdir():
            path.unlink()
        for name, data in contents.items():
            (self.out / name).write_bytes(data)

    def check(self, run, before, fault):
        output = sha256(self.output.read_bytes()) if self.output.exists() else None
        text = self.manifest.read_text() if self.manifest.exists() else "{}"
        last = json.loads(text.splitlines()[-1])
        if run.status != 1:
            self.assertIn(output, (self.right, sha256(before["out.tar"]) if before else None), fault)
        if "end" in last:
            self.assertEqual(output, last["output_sha256"], fault)
            self.assertEqual(output != self.right, "--angle" in text or last["failed"] > 0, fault)
        if 0 <= run.status <= 1:
            self.assertEqual((run.status, run.status == 0), (last["failed"], output == self.right), fault)
        self.assertNotIn("terminate called", run.stderr, fault)

    def every(self, call, before, statuses, lasting=("", " lasting")):
        """Fails the first call of a kind, then the second ..., until none is left. The number of calls."""
        fired = self.root / "fired"
        for manner in lasting:
            for number in itertools.count(1):
                self.fill(before)
                fired.unlink(missing_ok=True)
                fault = f"{call} {number}{manner}"
                environment = {"LD_PRELOAD": os.environ["FAULTS"], "FAULT": fault, "FOLDER": str(self.root)}
                run = self.tar(environment=environment)
                self.assertIn(run.status, statuses, (fault, run.stderr))
                self.check(run, before, fault)
                if not fired.exists():
                    self.assertEqual(0, run.status, (fault, run.stderr))
                    break
                if number % 3 != 0:
                    continue
                again = self.tar()
                self.assertEqual((0, self.right), (again.status, sha256(self.output.read_bytes())), (fault, again.stderr))
        return number - 1

    def test_open(self):
        self.assertLessEqual(4, self.every("open", {}, (0, 2)))

    def test_read(self):
        self.assertLessEqual(1, self.every("read", self.earlier, (0, 2)))

    def test_write(self):
        self.assertLessEqual(4, self.every("write", {}, (2, 0)))

    def test_short_write(self):
        self.assertLessEqual(4, self.every("short", {}, (0,)))

    def test_fsync(self):
        self.assertLessEqual(6, self.every("fsync", {}, (0, 2)))

    def test_name(self):
        self.assertLessEqual(3, self.every("name", {}, (0, 2)))
        self.assertLessEqual(5, self.every("name", self.earlier, (0, 2)))

    def test_files_that_need_a_name(self):
        self.assertLessEqual(2, self.every("unnameable", self.earlier, (0,)))

    def test_thread(self):
        self.assertLessEqual(1, self.every("thread", {}, (0,)))

    def test_memory(self):
        self.assertLessEqual(4, self.every("memory", {}, (0, 1, 2), lasting=("",)))

    def test_a_stop_at_every_step(self):
        self.assertLessEqual(15, self.every("stop", self.earlier, (0, 3), lasting=("",)))

    def test_a_kill_at_every_step(self):
        self.assertLessEqual(15, self.every("kill", self.earlier, (0, 3, -15), lasting=("",)))


if __name__ == "__main__":
    unittest.main()
