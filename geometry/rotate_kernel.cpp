// Bilinear rotation of 8-bit pixels, identical to OpenCV's affine warp of the whole image. A position has five bits of
// fraction on each axis, so that
//
//     value = ((32 - fy) * ((32 - fx) * p00 + fx * p01) + fy * ((32 - fx) * p10 + fx * p11) + 512) >> 10
//
// and a tap outside the source has the border colour. Nothing is computed but the target's own pixels, and nothing is
// read but the taps.
#include "geometry/rotate_kernel.h"

#include <algorithm>

namespace {

constexpr int kPixelsOfStrip = 512;

struct Taps {
    const uint8_t* p00;
    const uint8_t* p01;
    const uint8_t* p10;
    const uint8_t* p11;
};

const uint8_t* tapAt(const RotationJob& job, int x, int y) {
    const bool inside = x >= 0 && x < job.sourceWidth && y >= 0 && y < job.sourceHeight;
    return inside ? job.source + y * job.sourceStep + ptrdiff_t{x} * job.channels : job.border.data();
}

template <int kChannels>
void rotatePixel(const RotationJob& job, MapPosition at, uint8_t* out) {
    const int x = at.x >> kMapBits;
    const int y = at.y >> kMapBits;
    const int fx = at.x >> (kMapBits - 5) & 31;
    const int fy = at.y >> (kMapBits - 5) & 31;
    Taps taps;
    if (x >= 0 && x + 1 < job.sourceWidth && y >= 0 && y + 1 < job.sourceHeight) {
        taps.p00 = job.source + y * job.sourceStep + ptrdiff_t{x} * kChannels;
        taps.p01 = taps.p00 + kChannels;
        taps.p10 = taps.p00 + job.sourceStep;
        taps.p11 = taps.p10 + kChannels;
    } else {
        taps = {tapAt(job, x, y), tapAt(job, x + 1, y), tapAt(job, x, y + 1), tapAt(job, x + 1, y + 1)};
    }
    const int w11 = fx * fy;
    const int w10 = 32 * fy - w11;
    const int w01 = 32 * fx - w11;
    const int w00 = 1024 - w01 - 32 * fy;
    for (int k = 0; k < kChannels; ++k)
        out[k] = static_cast<uint8_t>(
            (w00 * taps.p00[k] + w01 * taps.p01[k] + w10 * taps.p10[k] + w11 * taps.p11[k] + 512) >> 10);
}

// In strips, whose column positions stay on the stack.
template <int kChannels>
void rotateByPixel(const RotationJob& job, int firstRow, int endRow) {
    std::array<MapPosition, kPixelsOfStrip> columns;
    for (int first = 0; first < job.targetWidth; first += kPixelsOfStrip) {
        const int count = std::min(kPixelsOfStrip, job.targetWidth - first);
        for (int i = 0; i < count; ++i) columns[static_cast<size_t>(i)] = job.map.column(first + i);
        for (int y = firstRow; y < endRow; ++y) {
            const MapPosition row = job.map.row(y);
            uint8_t* out = job.target + y * job.targetStep + ptrdiff_t{first} * kChannels;
            for (int i = 0; i < count; ++i, out += kChannels)
                rotatePixel<kChannels>(job, row + columns[static_cast<size_t>(i)], out);
        }
    }
}

}    // namespace

void rotateRows(const RotationJob& job, int firstRow, int endRow) {
    switch (job.channels) {
        case 1: return rotateByPixel<1>(job, firstRow, endRow);
        case 3: return rotateByPixel<3>(job, firstRow, endRow);
        default: return rotateByPixel<4>(job, firstRow, endRow);
    }
}
