// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Image records: one block for the record, one for its pixels.
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "OPCV_dlib.h"
#include "core/pixel_memory.h"

namespace opcv {
namespace {

constexpr int64_t roundUpTo16(int64_t bytes) { return (bytes + 15) & ~int64_t{15}; }

int64_t packedRow24(int64_t width) { return 3 * width; }

// Records of CreateNewKVIMGPtrForUnite have 24-bit rows of a multiple of four bytes.
int64_t paddedRow24(int64_t width) { return (24 * width + 31) / 32 * 4; }

// Nothing for a depth that has no row rule.
std::optional<int64_t> bytesOfRow(int64_t width, unsigned char depth, int64_t (*row24)(int64_t)) {
    switch (depth) {
        case 1: return roundUpTo16((width + 7) >> 3);
        case 8:
        case 40: return roundUpTo16(width);
        case 24: return row24(width);
        case 32: return roundUpTo16(4 * width);
        default: return std::nullopt;
    }
}

bool fitsInt32(int64_t value) { return value >= INT32_MIN && value <= INT32_MAX; }

OSErr createInSlot(KVIMG** out, const KVRect* r, unsigned char depth, int64_t (*row24)(int64_t)) {
    if (!r || !out) return noErr;
    const int64_t width = int64_t{r->right} - r->left;
    const int64_t height = int64_t{r->bottom} - r->top;
    const std::optional<int64_t> bytes = bytesOfRow(width, depth, row24);
    if (!bytes) return noErr;
    const int64_t rowBytes = *bytes;

    // Width, height and row are below 2^35 each, so only the last product needs the guard of the tests before it. A
    // negative size counts as too large.
    void* pixels = nullptr;
    if (fitsInt32(width) && fitsInt32(height) && fitsInt32(rowBytes) && rowBytes * height >= 0 &&
        rowBytes * height <= INT32_MAX)
        pixels = allocatePixels(static_cast<size_t>(rowBytes * height));
    if (!pixels) {
        std::free(*out);
        return memFullErr;
    }
    *out = static_cast<KVIMG*>(std::malloc(sizeof(KVIMG)));
    if (!*out) {
        std::free(pixels);
        return memFullErr;
    }
    **out = {static_cast<unsigned char*>(pixels), depth,
             static_cast<int32_t>(width),         static_cast<int32_t>(height),
             static_cast<int32_t>(rowBytes),      static_cast<int32_t>(rowBytes * height)};
    return noErr;
}

}    // namespace
}    // namespace opcv

using namespace opcv;

void KVSetRect(KVRect* r, int left, int top, int right, int bottom) { *r = {top, left, bottom, right}; }

OSErr CreateNewKVIMGPtr(KVIMG** out, const KVRect* r, unsigned char depth) {
    return createInSlot(out, r, depth, packedRow24);
}

OSErr CreateNewKVIMGPtrForUnite(KVIMG** out, const KVRect* r, unsigned char depth) {
    return createInSlot(out, r, depth, paddedRow24);
}

void DisposeKVIMG(KVIMG* img) {
    if (!img) return;
    std::free(img->data);
    std::free(img);
}
