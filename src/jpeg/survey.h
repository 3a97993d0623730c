// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Information from the markers of a JPEG stream, before any decoding.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct StreamSurvey {
    struct Sampling {
        int horizontal = 1;
        int vertical = 1;
    };

    // From the first frame header; 0 components if there is none.
    int width = 0;
    int height = 0;
    int components = 0;
    bool progressive = false;
    bool arithmetic = false;
    std::array<Sampling, 4> sampling{};

    // From the scan headers up to the end of the image.
    int scans = 0;
    int64_t scannedComponents = 0;    // the sum over all scans
    int componentsOfFirstScan = 0;

    // From the last JFIF header before the first scan.
    int densityUnit = 0;    // 1: dots per inch, 2: per centimetre
    int densityX = 0;
    int densityY = 0;

    // The payload of the first APP1 segment before the first scan, which may be an EXIF block.
    const unsigned char* exif = nullptr;
    size_t exifLength = 0;
};

// Walks from marker to marker, with the decoder's rules for markers. The stream must begin with a start of image.
StreamSurvey surveyStream(const unsigned char* stream, size_t length);
