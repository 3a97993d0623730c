# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What scanpage is for: Tesseract reads a page that it could not read before."""

import os
import pathlib
import random
import sys
import tempfile
import unittest

sys.path.insert(0, os.environ["RECOGNITION"])
import pages
import tools


def edit_distance(a, b):
    """By its definition."""
    if not a or not b:
        return len(a) + len(b)
    return min(edit_distance(a[1:], b) + 1, edit_distance(a, b[1:]) + 1, edit_distance(a[1:], b[1:]) + (a[0] != b[0]))


class Recognition(unittest.TestCase):
    def test_a_skewed_and_shaded_page_becomes_readable(self):
        image, text = pages.sheet(0)
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            page = folder / "page.pgm"
            pages.scanned(image, skew=3, shading=0.75).save(page)
            error = lambda path: tools.character_error(text, tools.text_of(path))
            self.assertGreater(error(page), 0.5)
            self.assertLess(error(tools.by_scanpage(page, folder, "--format", "pbm")), 0.01)
            self.assertLess(error(tools.by_scanpage(page, folder, "--background", "flatten")), 0.01)

    def test_the_error_is_an_edit_distance(self):
        draw = random.Random(3)
        for _ in range(100):
            text, found = ("".join(draw.choices("ab c", k=draw.randint(least, 5))) for least in (1, 0))
            self.assertAlmostEqual(min(1, edit_distance(text, found) / len(text)), tools.character_error(text, found))


if __name__ == "__main__":
    unittest.main()
