// What the markers of a JPEG stream say about it, before a decoder sees a byte.
#pragma once

#include <cstddef>

struct StreamSurvey {
    // From the first frame header; 0 components where there is none.
    int width = 0;
    int height = 0;
    int components = 0;

    int scans = 0;    // scan headers up to the end of the image

    // The payload of the first APP1 segment in front of the first scan, where EXIF blocks stand.
    const unsigned char* exif = nullptr;
    size_t exifLength = 0;
};

// One walk from marker to marker, in the decoder's sense of what a marker is. The stream begins with a start of image.
StreamSurvey surveyStream(const unsigned char* stream, size_t length);
