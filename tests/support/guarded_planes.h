// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Three guarded planes that share one step, for the planar functions.
#pragma once

#include <array>
#include <opencv2/core.hpp>
#include <vector>

#include "support/cv_views.h"
#include "support/guarded_image.h"

class GuardedPlanes {
public:
    GuardedPlanes(Random& random, IppiSize size, Random::Values values = Random::Values::kAny) {
        const int padding = random.between(0, 5);
        for (size_t i = 0; i < pointers_.size(); ++i) {
            planes_.emplace_back(random, size, GuardedImage::Layout{1, 0, padding, random.between(0, 31)}, values);
            pointers_[i] = planes_[i].data();
        }
    }
    GuardedPlanes(const GuardedPlanes&) = delete;
    GuardedPlanes& operator=(const GuardedPlanes&) = delete;

    unsigned char* const* pointers() { return pointers_.data(); }
    int step() const { return planes_[0].step(); }
    GuardedImage& operator[](int i) { return planes_[static_cast<size_t>(i)]; }

    bool untouched() const {
        for (const GuardedImage& plane : planes_)
            if (!plane.untouched()) return false;
        return true;
    }
    bool untouchedOutsideRegion() const {
        for (const GuardedImage& plane : planes_)
            if (!plane.untouchedOutsideRegion()) return false;
        return true;
    }

    cv::Mat merged() const {
        std::vector<cv::Mat> views;
        for (const GuardedImage& plane : planes_) views.push_back(viewOf(plane, CV_8UC1));
        cv::Mat packed;
        cv::merge(views, packed);
        return packed;
    }

private:
    std::vector<GuardedImage> planes_;
    std::array<unsigned char*, 3> pointers_{};
};
