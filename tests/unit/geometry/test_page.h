// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A page of random pixels with its description, and the expected results of the page functions.
#pragma once

#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "oracle/rotation.h"
#include "support/guarded_image.h"
#include "support/random.h"

class TestPage {
public:
    // `rowRemainder` bytes make the row length not a multiple of the pixel size.
    TestPage(Random& random, IppiSize size, int depth, int rowRemainder = 0)
        : pixels_(random, size, layoutOf(random, depth, rowRemainder), random.anyValues()),
          // Fields that the functions must not use are wrong.
          record_{pixels_.data(), 77, size.width + 3, size.height - 2, pixels_.step(), 1},
          recordBefore_(record_),
          description_{size.width, size.height, 300, 301, 302, static_cast<int16_t>(depth)},
          descriptionBefore_(description_) {}
    TestPage(const TestPage&) = delete;
    TestPage& operator=(const TestPage&) = delete;

    const KVIMG* record() const { return &record_; }
    KVImageDescriptionHandle description() { return &pointer_; }
    KVImageDescription& described() { return description_; }
    KVIMG& mutableRecord() { return record_; }

    int depth() const { return descriptionBefore_.depth; }
    int pixelSize() const { return depth() / 8; }
    int type() const { return CV_MAKETYPE(CV_8U, pixelSize()); }
    IppiSize size() const { return pixels_.size(); }
    GuardedImage& pixels() { return pixels_; }

    bool untouched() const {
        return pixels_.untouched() && sameRecord() && description_.width == descriptionBefore_.width &&
               description_.height == descriptionBefore_.height && description_.horizontalResolution == 300 &&
               description_.verticalResolution == 301 && description_.reserved == 302 &&
               description_.depth == descriptionBefore_.depth;
    }

    // The corners' colour: white never reaches a grey page, nor the first byte of a four-byte pixel.
    cv::Scalar fill(bool white) const {
        if (!white || depth() == 8) return {0, 0, 0, 0};
        return depth() == 24 ? cv::Scalar(255, 255, 255, 0) : cv::Scalar(0, 255, 255, 255);
    }

    oracle::Rotation onto(std::vector<uint8_t>& bytes, int rowBytes, IppiSize target, double angle, bool white) {
        return {pixels_.data(), pixels_.step(), {0, 0, size().width, size().height},
                bytes.data(),   rowBytes,       {0, 0, target.width, target.height},
                angle,          type(),         fill(white)};
    }

private:
    static GuardedImage::Layout layoutOf(Random& random, int depth, int rowRemainder) {
        GuardedImage::Layout layout = GuardedImage::anyLayout(random, depth / 8);
        layout.padding += rowRemainder;
        return layout;
    }

    bool sameRecord() const {
        return record_.data == recordBefore_.data && record_.depth == recordBefore_.depth &&
               record_.width == recordBefore_.width && record_.height == recordBefore_.height &&
               record_.rowBytes == recordBefore_.rowBytes && record_.size == recordBefore_.size;
    }

    GuardedImage pixels_;
    KVIMG record_;
    KVIMG recordBefore_;
    KVImageDescription description_;
    KVImageDescription descriptionBefore_;
    KVImageDescription* pointer_ = &description_;
};

constexpr int kDepths[] = {8, 24, 32};

inline int rowBytesOf(int width, int depth) {
    const int bytes = width * depth / 8;
    return depth == 24 ? bytes : (bytes + 15) / 16 * 16;
}

inline std::vector<uint8_t> rowOf(const uint8_t* pixels, int rowBytes, int y, int bytes) {
    const uint8_t* row = pixels + ptrdiff_t{rowBytes} * y;
    return {row, row + bytes};
}

inline opcv::RecordPtr makeRecord(IppiSize size, int depth) {
    opcv::RecordPtr record;
    opcv::createRecord({0, 0, size.height, size.width}, static_cast<unsigned char>(depth), record);
    return record;
}
