// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What the page functions share of a turn.
#pragma once

#include "OPCV_dlib.h"

namespace opcv {

struct Shift {
    double x = 0;
    double y = 0;
};

// The shift after which a turn about the first pixel is one about the centre.
inline Shift shiftAbout(double xCentre, double yCentre, double angle) {
    Shift shift;
    KVMac_ippiGetRotateShift(xCentre, yCentre, angle, &shift.x, &shift.y);
    return shift;
}

}    // namespace opcv
