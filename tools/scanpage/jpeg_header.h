// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Follows the segments of a JPEG header through bytes that arrive in pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class JpegHeader {
public:
    // False if these bytes, the whole file so far, are not the beginning of a JPEG file.
    bool accept(const std::vector<uint8_t>& bytes);

    // The header is complete; everything from here on is pixels.
    bool scanFound() const { return scanFound_; }

private:
    bool step(const std::vector<uint8_t>& bytes);

    size_t next_ = 2;
    size_t garbage_ = 0;
    bool scanFound_ = false;
};
