// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg_header.h"

namespace {

constexpr size_t kMostGarbage = 65536;    // bytes between segments that a decoder would skip

bool begins(const std::vector<uint8_t>& bytes) {
    return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
}

}    // namespace

bool JpegHeader::accept(const std::vector<uint8_t>& bytes) {
    if (!begins(bytes)) return false;
    while (!scanFound_ && next_ + 4 <= bytes.size())
        if (!step(bytes)) return false;
    return garbage_ <= kMostGarbage;
}

bool JpegHeader::step(const std::vector<uint8_t>& bytes) {
    const uint8_t marker = bytes[next_ + 1];
    const size_t length = static_cast<size_t>(bytes[next_ + 2]) << 8 | bytes[next_ + 3];
    if (bytes[next_] != 0xFF || marker == 0xFF || marker == 0) {
        ++next_;
        return ++garbage_ <= kMostGarbage;
    }
    const bool alone = (marker >= 0xD0 && marker <= 0xD7) || marker == 0x01;    // without a length
    const bool end = marker == 0xD8 || marker == 0xD9;
    scanFound_ = marker == 0xDA;
    next_ += alone ? 2 : 2 + length;
    return !end && (alone || length >= 2);
}
