// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* In the packed rows of a PBM file a set bit is black. In the library it is white, so the bits are inverted before and
   after the calls. Inverting the unused bits at the end of a row is harmless: no function reads beyond the width. */
#include <OPCV_dlib.h>

static void invert(unsigned char* bits, int count) {
    for (int i = 0; i < count; ++i) bits[i] = (unsigned char)~bits[i];
}

int main(void) {
    unsigned char pbm[2] = {0xC0, 0x00}; /* a row of 10 pixels: two black ones, then white */
    unsigned char grey[10];
    const IppiSize size = {10, 1};

    invert(pbm, 2);
    if (IPPShare_ippiConvert_1u8u_C1R(pbm, 2, 0, grey, 10, size) != ippStsNoErr) return 1;
    if (grey[0] != 0 || grey[1] != 0 || grey[2] != 255 || grey[9] != 255) return 2;

    unsigned char back[2] = {0xFF, 0xFF}; /* the bits after the width are kept: white here */
    if (IPPShare_ippiReduceBits_8u1u_C1R(grey, 10, back, 2, 0, size, 0, 0, 0, 127) != ippStsNoErr) return 3;
    invert(back, 2);
    return back[0] == 0xC0 && back[1] == 0x00 ? 0 : 4;
}
