// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "skew.h"

#include <OPCV_dlib_skew.h>

namespace {

const char* reasonOf(int outcome) {
    switch (outcome) {
        case OPCV_SKEW_FOUND: return "";
        case OPCV_SKEW_BLANK: return "blank";
        case OPCV_SKEW_PICTURE: return "picture";
        default: return "unsure";
    }
}

}    // namespace

Skew findSkew(const KVIMG& page) {
    opcv_skew skew{};
    skew.struct_size = sizeof(skew);
    require(opcv_find_skew(&page, &skew), "finding the skew");
    return {skew.outcome == OPCV_SKEW_FOUND, skew.angle, skew.confidence, reasonOf(skew.outcome)};
}
