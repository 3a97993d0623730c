// What the markers of a JPEG stream say about it, before a decoder sees a byte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct StreamSurvey {
    struct Sampling {
        int horizontal = 1;
        int vertical = 1;
    };

    // From the first frame header; 0 components where there is none.
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

    // From the last JFIF header in front of the first scan.
    int densityUnit = 0;    // 1: dots per inch, 2: per centimetre
    int densityX = 0;
    int densityY = 0;

    // The payload of the first APP1 segment in front of the first scan, where EXIF blocks stand.
    const unsigned char* exif = nullptr;
    size_t exifLength = 0;
};

// One walk from marker to marker, in the decoder's sense of what a marker is. The stream begins with a start of image.
StreamSurvey surveyStream(const unsigned char* stream, size_t length);
