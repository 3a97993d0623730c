// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* A 3 x 3 median of a whole image. The windows at its edges include one more pixel on each side, so the image is first
   copied into a larger one, whose margin repeats the edges. */
#include <OPCV_dlib.h>
#include <string.h>

enum { kWidth = 6, kHeight = 4, kMargin = 1, kStep = kWidth + 2 * kMargin };

static void repeatEdges(const unsigned char* image, unsigned char* framed) {
    for (int y = -kMargin; y < kHeight + kMargin; ++y) {
        const int from = y < 0 ? 0 : y >= kHeight ? kHeight - 1 : y;
        unsigned char* row = framed + (y + kMargin) * kStep;
        memset(row, image[from * kWidth], kMargin);
        memcpy(row + kMargin, image + from * kWidth, kWidth);
        memset(row + kMargin + kWidth, image[from * kWidth + kWidth - 1], kMargin);
    }
}

int main(void) {
    unsigned char image[kHeight * kWidth], framed[(kHeight + 2 * kMargin) * kStep], result[kHeight * kWidth];
    memset(image, 200, sizeof image);
    image[0] = 0; /* a dark speck in the corner */
    repeatEdges(image, framed);

    const unsigned char* region = framed + kMargin * kStep + kMargin; /* the first pixel inside the margin */
    const IppiSize size = {kWidth, kHeight}, mask = {3, 3};
    const IppiPoint anchor = {1, 1}; /* the middle cell of the mask */
    if (IPPShare_ippiFilterMedian_8u_C1R(region, kStep, result, kWidth, size, mask, anchor) != ippStsNoErr) return 1;
    return result[1] == 200 && result[kWidth] == 200 ? 0 : 2;
}
