// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The skew finder as a C program calls it, on a page of lines that fall by 3 rows in 100 columns.
#include <OPCV_dlib_skew.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

enum { kWidth = 900, kHeight = 1200, kLeading = 30, kLetter = 14 };

static unsigned char pixels[kWidth * kHeight];

static int isInk(int x, int y) {
    const int down = y - x * 3 / 100;
    return x > 100 && x < kWidth - 100 && y > 100 && y < kHeight - 100 && down % kLeading < kLetter &&
           (x / 9 + down / kLeading) % 3 != 0;
}

int main(void) {
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) pixels[y * kWidth + x] = isInk(x, y) ? 40 : 230;
    const KVIMG page = {pixels, 8, kWidth, kHeight, kWidth, kWidth * kHeight};
    opcv_skew skew;
    memset(&skew, 0, sizeof(skew));
    skew.struct_size = sizeof(skew);
    const OSErr status = opcv_find_skew(&page, &skew);
    printf("status %d, outcome %d, angle %.3f, confidence %.2f\n", status, (int)skew.outcome, skew.angle,
           skew.confidence);
    const double drawn = atan(0.03) * 180 / 3.14159265358979323846;
    return status == noErr && skew.outcome == OPCV_SKEW_FOUND && fabs(skew.angle - drawn) < 0.05 ? 0 : 1;
}
