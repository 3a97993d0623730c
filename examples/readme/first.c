// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* Reduces a grey row to one bit per pixel and expands it again. */
#include <OPCV_dlib.h>

int main(void) {
    const unsigned char grey[8] = {0, 50, 100, 127, 128, 150, 200, 255};
    const IppiSize size = {8, 1};
    unsigned char bits = 0, back[8];
    if (IPPShare_ippiReduceBits_8u1u_C1R(grey, 8, &bits, 1, 0, size, 0, 0, 0, 127) != ippStsNoErr) return 1;
    if (IPPShare_ippiConvert_1u8u_C1R(&bits, 1, 0, back, 8, size) != ippStsNoErr) return 1;
    return bits == 0x0F && back[3] == 0 && back[4] == 255 ? 0 : 1;
}
