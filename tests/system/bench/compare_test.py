# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The comparison of two runs: what counts as faster, slower or noise."""

import csv
import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)) / "compare.py"
COLUMNS = ["name", "ours", "ratio", "spread", "ratio_spread", "quiet_rounds", "reference", "target", "processor"]


def call(name, milliseconds, ratio, **other):
    row = {"name": name, "ours": milliseconds / 1000, "ratio": ratio, "spread": 0.01, "ratio_spread": 0.01,
           "quiet_rounds": 6, "reference": 3e-5, "target": "AVX2", "processor": "one"}
    return {**row, **other}


class Compare(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, rows):
        with open(self.folder / name, "w", newline="") as file:
            table = csv.DictWriter(file, COLUMNS, delimiter="\t")
            table.writeheader()
            table.writerows(rows)
        return self.folder / name

    def compare(self, before, now):
        files = [self.write("now.tsv", now), self.write("before.tsv", before)]
        return subprocess.run([sys.executable, PROGRAM, *files], capture_output=True, text=True, check=True).stdout

    def test_what_moved(self):
        before = [call("slow", 2, 0.5), call("fast", 2, 0.5), call("noise", 2, 0.5), call("short", 0.5, 0.5)]
        now = [call("slow", 2.2, 0.55), call("fast", 1.8, 0.45), call("noise", 2.08, 0.52), call("short", 0.55, 0.55)]
        out = self.compare(before, now)
        self.assertIn("1 calls are slower than before.", out)
        self.assertIn("| slow | 2 | 2.2 | +10.0 % | 0.5 | 0.55 | +10.0 % |", out)
        self.assertLess(out.index("1 calls are slower"), out.index("| slow |"))
        self.assertLess(out.index("| slow |"), out.index("1 calls are faster"))
        self.assertLess(out.index("1 calls are faster"), out.index("| fast | 2 | 1.8 | -10.0 % | 0.5 | 0.45 | -10.0 % |"))
        self.assertNotIn("| noise", out)
        self.assertNotIn("| short", out)
        self.assertIn("above 1 ms that agree within 5 %:\n  time 1 of 3; 95 % of them within", out)
        self.assertIn("below 1 ms that agree within 15 %:\n  time 1 of 1; 95 % of them within 10.0 %", out)

    def test_both_time_and_ratio_must_move(self):
        before = [call("machine", 2, 0.5), call("plain", 2, 0.5), call("opposite", 2, 0.5)]
        now = [call("machine", 3, 0.5), call("plain", 2, 0.7), call("opposite", 3, 0.4)]
        out = self.compare(before, now)
        self.assertIn("0 calls are slower", out)
        self.assertIn("0 calls are faster", out)

    def test_a_wide_spread_is_noise(self):
        out = self.compare([call("call", 2, 0.5, spread=0.3)], [call("call", 2.5, 0.625)])
        self.assertIn("0 calls are slower", out)
        out = self.compare([call("call", 2, 0.5)], [call("call", 2.5, 0.625, ratio_spread=0.3)])
        self.assertIn("0 calls are slower", out)

    def test_other_circumstances_are_named(self):
        before = [call("call", 2, 0.5, reference=4e-5)]
        now = [call("call", 2, 0.5, target="SSSE3", processor="two", quiet_rounds=0)]
        out = self.compare(before, now)
        self.assertIn("The processor differs: one, now two.", out)
        self.assertIn("The vector target differs: AVX2, now SSSE3.", out)
        self.assertIn("The reference loop took 30.0 us, before 40.0 us", out)
        self.assertIn("1 of 1 calls found no quiet moment", out)

    def test_calls_of_one_run_only_are_left_out(self):
        self.assertEqual("The runs have no call in common.\n", self.compare([call("a", 2, 1)], [call("b", 2, 1)]))


if __name__ == "__main__":
    unittest.main()
