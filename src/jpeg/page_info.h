// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Examines the headers of a JPEG stream: properties of the page, and whether decoding it stays within limits.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

#include "jpeg/exif.h"
#include "jpeg/survey.h"

// Result of reading. kOverLimit: decoding would exceed the limits.
enum class Outcome { kDone, kUnreadable, kOverLimit, kNoMemory, kCancelled, kWrongSize };

// The library's own limits, unless the caller sets tighter ones.
struct ReadLimits {
    int64_t pixels = int64_t{1} << 30;    // OpenCV's
    int64_t memory = INT64_MAX;
    int scans = 100;    // each may visit every pixel; real streams have about ten
    size_t bytes = INT_MAX;
};

struct PageInfo {
    StreamSurvey stored;
    int orientationTag = 1;
    Orientation orientation;
    // Of the page, after its orientation is applied.
    int width = 0;
    int height = 0;
    int channels = 0;
    Resolution resolution;
    int64_t decoderBytes = 0;    // an upper bound of what libjpeg allocates to decode the page

    int64_t pixels() const { return int64_t{width} * height; }
};

// Walks over the markers once. Fills in the properties even if the stream cannot be decoded or exceeds a limit. Does
// not check the memory limit, which depends on the destination of the pixels.
Outcome inspectStream(const unsigned char* stream, size_t length, const ReadLimits& limits, PageInfo& page);
