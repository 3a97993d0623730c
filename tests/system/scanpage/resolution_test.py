# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Dots per inch from the JFIF header of the page to that of the result."""

import struct
import unittest

from support import PageTest, rescan


def with_density(stream, unit, x, y):
    assert stream[6:11] == b"JFIF\0"
    return stream[:13] + struct.pack(">BHH", unit, x, y) + stream[18:]


def with_orientation(stream, orientation):
    exif = b"Exif\0\0MM\0*" + struct.pack(">IHHHIHHI", 8, 1, 0x0112, 3, 1, orientation, 0, 0)
    return stream[:20] + b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif + stream[20:]


def density(file):
    stream = file.read_bytes()
    assert stream[6:11] == b"JFIF\0"
    return struct.unpack(">BHH", stream[13:18])


class Resolution(PageTest):
    def result_of(self, stream, *arguments):
        page = self.folder / "density.jpg"
        page.write_bytes(stream)
        run = rescan("-v", *arguments, page, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        self.stderr = run.stderr
        return density(self.out / "density.jpg")

    def setUp(self):
        super().setUp()
        self.stream = self.pages[0].read_bytes()

    def test_dots_per_inch(self):
        self.assertEqual((1, 400, 200), self.result_of(with_density(self.stream, 1, 400, 200)))
        self.assertIn("400 x 200 dpi", self.stderr)

    def test_dots_per_centimetre(self):
        self.assertEqual((1, 300, 201), self.result_of(with_density(self.stream, 2, 118, 79)))

    def test_no_resolution_is_300(self):
        self.assertEqual((1, 300, 300), self.result_of(with_density(self.stream, 0, 1, 1)))

    def test_one_dot_an_inch_is_no_resolution(self):
        self.assertEqual((1, 300, 300), self.result_of(with_density(self.stream, 1, 1, 1)))
        self.assertEqual((1, 400, 400), self.result_of(with_density(self.stream, 1, 400, 1)))

    def test_a_page_on_its_side(self):
        turned = with_orientation(with_density(self.stream, 1, 400, 200), 6)
        self.assertEqual((1, 200, 400), self.result_of(turned, "--angle", "0"))
        upside_down = with_orientation(with_density(self.stream, 1, 400, 200), 3)
        self.assertEqual((1, 400, 200), self.result_of(upside_down, "--angle", "0"))

    def test_scaling_says_so(self):
        self.assertEqual((1, 200, 100), self.result_of(with_density(self.stream, 1, 400, 200), "--dpi", "200"))
        self.assertEqual((1, 200, 135), self.result_of(with_density(self.stream, 1, 300, 202), "--dpi", "200"))


if __name__ == "__main__":
    unittest.main()
