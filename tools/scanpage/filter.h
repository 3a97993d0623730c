// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Filters of whole pages, in place. Pixels too close to the edge for a window are unchanged.
#pragma once

#include "page.h"

enum class Median { kNone, kCross, kWeighted, kColour };

// The colour median filters colour pages as a whole; the others filter one channel at a time. On a grey page the colour
// median is the weighted median.
void filterMedian(KVIMG& page, Median median);

// Strength 0 to 10.
void reduceNoise(KVIMG& page, int strength);
