// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The header alone, as C++17, before any other.
#include "OPCV_dlib.h"

int streamLengthInCpp();

int streamLengthInCpp() {
    const unsigned char pixels[3] = {1, 2, 3};
    std::vector<unsigned char> stream;
    return CompressRGB2YCbCr444(pixels, 3, 1, 1, stream, 50, 300, 300, true) ? static_cast<int>(stream.size()) : -1;
}
