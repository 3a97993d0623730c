// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bit packing of rows, for offsets from 0 to 7.
#pragma once

namespace opcv {

void expandBits(const unsigned char* src, int srcStep, int bitOffset, unsigned char* dst, int dstStep, int width,
                int height);

void packBits(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int bitOffset, int width,
              int height, unsigned char threshold);

}    // namespace opcv
