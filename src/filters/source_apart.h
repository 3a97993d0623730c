// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A source that does not overlap its destination.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/ownership.h"
#include "core/region.h"

namespace filters {

// The rows of a view, or of a copy if the destination overlaps the view.
class SourceApart {
public:
    SourceApart(const cv::Mat& view, const cv::Mat& destination)
        : rows_(view.data), step_(static_cast<ptrdiff_t>(view.step)) {
        if (!opcv::overlap(view, destination)) return;
        const size_t row = static_cast<size_t>(view.cols) * view.elemSize();
        copy_.reset(static_cast<uint8_t*>(std::malloc(row * static_cast<size_t>(view.rows))));
        rows_ = copy_.get();
        step_ = static_cast<ptrdiff_t>(row);
        if (!copy_) return;
        for (int y = 0; y < view.rows; ++y) std::memcpy(copy_.get() + static_cast<size_t>(y) * row, view.ptr(y), row);
    }

    const uint8_t* rows() const { return rows_; }    // null if allocating the copy failed
    ptrdiff_t step() const { return step_; }

private:
    const uint8_t* rows_;
    ptrdiff_t step_;
    opcv::PixelBlock copy_;
};

}    // namespace filters
