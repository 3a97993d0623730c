// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg/survey.h"

#include <algorithm>
#include <cstring>

#include "jpeg/marker_search.h"

namespace {

enum Marker : int {
    kNoMarker = 0,
    kSOF0 = 0xC0,
    kDHT = 0xC4,
    kJPG = 0xC8,
    kDAC = 0xCC,
    kSOF15 = 0xCF,
    kRST0 = 0xD0,
    kSOI = 0xD8,    // the code after RST7
    kEOI = 0xD9,
    kSOS = 0xDA,
    kAPP0 = 0xE0,
    kAPP1 = 0xE1
};

struct Segment {
    const unsigned char* payload;
    size_t length;
};

class MarkerWalk {
public:
    MarkerWalk(const unsigned char* stream, size_t length) : at_(stream), end_(stream + length) {}

    // Skips everything that is not a marker, including coded data, in which a byte of 255 is followed by 0.
    int nextMarker() {
        while (at_ < end_) {
            at_ = std::find_if(findMarker(at_, end_), end_, [](int byte) { return byte != 0xFF; });
            if (at_ < end_ && *at_++ != 0) return at_[-1];
        }
        return kNoMarker;
    }

    // False if the stream ends within the segment. A segment whose length is too small to include the length field
    // itself is treated as empty.
    bool readSegment(Segment& segment) {
        if (remaining() < 2) return false;
        const size_t stated = size_t{at_[0]} << 8 | at_[1];
        at_ += 2;
        segment = stated < 2 ? Segment{nullptr, 0} : Segment{at_, stated - 2};
        if (segment.length > remaining()) return false;
        at_ += segment.length;
        return true;
    }

private:
    size_t remaining() const { return static_cast<size_t>(end_ - at_); }

    const unsigned char* at_;
    const unsigned char* end_;
};

bool hasNoSegment(int marker) { return marker < kSOF0 || (marker >= kRST0 && marker <= kSOI); }

bool isFrameHeader(int marker) {
    return marker >= kSOF0 && marker <= kSOF15 && marker != kDHT && marker != kJPG && marker != kDAC;
}

int wordAt(const unsigned char* bytes) { return bytes[0] << 8 | bytes[1]; }

void noteFrame(int marker, const Segment& segment, StreamSurvey& survey) {
    constexpr size_t kFixedPart = 6;    // precision, height, width, number of components
    if (segment.length < kFixedPart || survey.components != 0) return;
    const unsigned char* frame = segment.payload;
    survey.height = wordAt(frame + 1);
    survey.width = wordAt(frame + 3);
    survey.components = frame[5];
    survey.progressive = (marker & 3) == 2;
    survey.arithmetic = marker >= kJPG;
    constexpr size_t kEach = 3;    // identifier, sampling factors, quantisation table
    for (size_t i = 0; i < survey.sampling.size() && kFixedPart + kEach * (i + 1) <= segment.length; ++i) {
        const int factors = frame[kFixedPart + kEach * i + 1];
        survey.sampling[i] = {factors >> 4, factors & 15};
    }
}

// A scan has one to four components; the decoder stops at any other number.
void noteScan(const Segment& segment, StreamSurvey& survey) {
    const int components = segment.length > 0 ? std::clamp<int>(segment.payload[0], 1, 4) : 1;
    if (survey.scans++ == 0) survey.componentsOfFirstScan = components;
    survey.scannedComponents += components;
}

void noteDensity(const Segment& segment, StreamSurvey& survey) {
    constexpr size_t kFixedPart = 14;    // "JFIF" and a zero, version, unit, densities, size of the thumbnail
    if (segment.length < kFixedPart || std::memcmp(segment.payload, "JFIF", 5) != 0) return;
    survey.densityUnit = segment.payload[7];
    survey.densityX = wordAt(segment.payload + 8);
    survey.densityY = wordAt(segment.payload + 10);
}

}    // namespace

StreamSurvey surveyStream(const unsigned char* stream, size_t length) {
    StreamSurvey survey;
    MarkerWalk walk(stream, length);
    for (int marker = walk.nextMarker(); marker != kNoMarker && marker != kEOI; marker = walk.nextMarker()) {
        if (hasNoSegment(marker)) continue;
        Segment segment{};
        if (!walk.readSegment(segment)) break;
        if (isFrameHeader(marker)) noteFrame(marker, segment, survey);
        if (marker == kSOS) noteScan(segment, survey);
        if (marker == kAPP0 && survey.scans == 0) noteDensity(segment, survey);
        if (marker == kAPP1 && survey.scans == 0 && !survey.exif) {
            survey.exif = segment.payload;
            survey.exifLength = segment.length;
        }
    }
    return survey;
}
