# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The tables of docs/performance.md: which calls are listed, and what is marked as missed."""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop(1))
import report  # noqa: E402

PAGE_PIXELS, TILE_PIXELS = 2480 * 3508, 256 * 256


def call(function, page, tile, *, narrower=2.0, goal="", plain_name="OpenCV"):
    """Rows of one call; times are given per pixel, and the plain way takes 2."""
    rows = []
    for size, pixels, cost in ((report.PAGE, PAGE_PIXELS, page), (report.TILE, TILE_PIXELS, tile)):
        rows.append({"function": function, "variant": "", "heading": "Family", "size": size, "threads": "1",
                     "ours": cost * pixels, "plain": 2 * pixels, "ratio": cost / 2, "ratio_memcpy": 10 * cost,
                     "ratio_spread": 0.02, "narrower": narrower * pixels, "target": "AVX3_DL",
                     "narrower_target": "AVX2" if narrower else "", "plain_name": plain_name, "goal": goal,
                     "goal_beside": ""})
    return rows


class Lists(unittest.TestCase):
    def test_calls_that_are_dear_on_small_images(self):
        lines = report.small_image_table(call("Dear", 1, 1.4) + call("Dearer", 1, 1.5) + call("Cheap", 1, 1.2))
        self.assertEqual(["| `Dearer` | 1.50 |", "| `Dear` | 1.40 |"], lines[-2:])
        self.assertEqual("No call is above 1.3.", report.small_image_table(call("Cheap", 1, 1.29))[-1])

    def test_calls_that_are_slower_on_wider_vectors(self):
        results = call("Slower", 1, 0.99, narrower=0.95) + call("Same", 1, 1, narrower=0.98)
        lines = report.vector_width_table(results)
        self.assertEqual(["| `Slower`, 2480 x 3508 | 1.05 |", "| `Slower`, 256 x 256 | 1.04 |"], lines[-2:])
        self.assertEqual([], report.vector_width_table(call("Alone", 1, 1, narrower=0)))


class Tables(unittest.TestCase):
    def test_a_missed_goal_is_marked(self):
        for goal, text in (("0.4", "0.4 **missed**"), ("0.6", "0.6")):
            row = report.time_row(report.calls_of(call("Name", 1, 1, goal=goal))[0])
            self.assertEqual(["`Name`", "0.50", "2 %", text, "1.00"], [row[0], *row[3:7]])

    def test_the_summary_counts_calls_of_opencv(self):
        rows = call("Best", 0.2, 1) + call("Middle", 1, 1) + call("Worst", 1.8, 1) + call("Other", 9, 1, plain_name="loop")
        self.assertEqual("| Family | 3 | 0.50 | 0.10: `Best` | 0.90: `Worst` |", report.summary_table(rows)[-1])

    def test_arm_lists_kernels_and_not_plain_calls(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "arm.tsv"
            file.write_text("function\tvariant\tplain_name\tpixels\tours\tplain\tours_a72\tplain_a72\tlimit_a72\tours_n1\t"
                            "plain_n1\tlimit_n1\n"
                            "Kernel\t\tOpenCV\t100\t400\t800\t200\t400\t20\t100\t400\t10\n"
                            "Same\t\tOpenCV\t100\t800\t800\t900\t900\t20\t900\t900\t10\n")
            lines = report.arm_table(file)
        self.assertIn("| `Kernel` | OpenCV | 4 | 0.50 | 2 | 0.50 | 10 | 1 | 0.25 | 10 |", lines)
        self.assertEqual("The kernels farthest from the limit of the N1: `Kernel` (10).", lines[-1])


if __name__ == "__main__":
    unittest.main()
