#include "jpeg/survey.h"

#include <algorithm>

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
    kSOI = 0xD8,    // behind RST7
    kEOI = 0xD9,
    kSOS = 0xDA,
    kAPP1 = 0xE1
};

struct Segment {
    const unsigned char* payload;
    size_t length;
};

class MarkerWalk {
public:
    MarkerWalk(const unsigned char* stream, size_t length) : at_(stream), end_(stream + length) {}

    // Steps over anything that is no marker, coded data included: a byte of 255 in it is followed by 0.
    int nextMarker() {
        while (at_ < end_) {
            at_ = std::find_if(findMarker(at_, end_), end_, [](int byte) { return byte != 0xFF; });
            if (at_ < end_ && *at_++ != 0) return at_[-1];
        }
        return kNoMarker;
    }

    // False where the stream ends within the segment. A length that does not even count itself says nothing about what
    // follows: such a segment is empty and has no payload.
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

void noteFrame(const Segment& segment, StreamSurvey& survey) {
    constexpr size_t kFixedPart = 6;    // precision, height, width, number of components
    if (segment.length < kFixedPart || survey.components != 0) return;
    const unsigned char* frame = segment.payload;
    survey.height = frame[1] << 8 | frame[2];
    survey.width = frame[3] << 8 | frame[4];
    survey.components = frame[5];
}

}    // namespace

StreamSurvey surveyStream(const unsigned char* stream, size_t length) {
    StreamSurvey survey;
    MarkerWalk walk(stream, length);
    for (int marker = walk.nextMarker(); marker != kNoMarker && marker != kEOI; marker = walk.nextMarker()) {
        if (hasNoSegment(marker)) continue;
        Segment segment{};
        if (!walk.readSegment(segment)) break;
        if (isFrameHeader(marker)) noteFrame(segment, survey);
        if (marker == kSOS) ++survey.scans;
        if (marker == kAPP1 && survey.scans == 0 && !survey.exif) {
            survey.exif = segment.payload;
            survey.exifLength = segment.length;
        }
    }
    return survey;
}
