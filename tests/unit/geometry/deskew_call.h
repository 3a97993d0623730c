// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The three deskew functions with one signature.
#pragma once

#include "OPCV_dlib.h"

enum class DeskewFunction { kWhole, kCrop, kPoint };
constexpr DeskewFunction kDeskewFunctions[] = {DeskewFunction::kWhole, DeskewFunction::kCrop, DeskewFunction::kPoint};

struct DeskewArguments {
    const KVIMG* src = nullptr;
    KVImageDescriptionHandle description = nullptr;
    KVIMG** dst = nullptr;
    KVRect* crop = nullptr;
    double angle = 2;
    int interpolation = 2;    // ignored
};

inline OSErr deskew(DeskewFunction function, const DeskewArguments& a, unsigned char white = 0, int64_t xPoint = 5,
                    int64_t yPoint = 6) {
    switch (function) {
        case DeskewFunction::kWhole:
            return DeskewImageWithIPP(a.src, a.description, a.dst, a.interpolation, white, a.angle);
        case DeskewFunction::kCrop:
            return DeskewImageWithIPPEx(a.src, a.description, a.dst, a.interpolation, white, a.crop, a.angle);
        default:
            return DeskewImageWithIPPExWithShirftPoint(a.src, a.description, a.dst, a.interpolation, white, a.crop,
                                                       xPoint, yPoint, a.angle);
    }
}
