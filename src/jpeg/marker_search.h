// The search for markers in a JPEG stream's coded data.
#pragma once

// The first byte of 255 in [begin, end) that no 0 follows, or `end`.
const unsigned char* findMarker(const unsigned char* begin, const unsigned char* end);
