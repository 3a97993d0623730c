// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// In-place thresholds: pixels at or below the threshold become the value.
#pragma once

namespace opcv {

void thresholdBytes(unsigned char* p, int step, int width, int height, unsigned char threshold, unsigned char value);

// The step may leave rows unaligned.
void thresholdSamples(short* p, int step, int width, int height, short threshold, short value);

}    // namespace opcv
