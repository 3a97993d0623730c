# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

import opcv_dlib


def straighten(file: bytes) -> bytes:
    page = opcv_dlib.read_jpeg(file)
    angle = opcv_dlib.find_skew(page).angle or 0.0    # none: the page stays as it is
    return opcv_dlib.compress_jpeg_ex(opcv_dlib.deskew(page, angle, white_fill=True), 450)
