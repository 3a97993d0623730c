// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* The header alone, as C11. */
#include "OPCV_dlib.h"

int turnInC(void);

_Static_assert(sizeof(OSErr) == 2 && sizeof(IppStatus) == 4, "status types");
_Static_assert(sizeof(KVImageHeader) == 32 && sizeof(KVIMG) == 32, "records");

int turnInC(void) {
    unsigned char pixels[40 * 30];
    unsigned char turned[40 * 30] = {0};
    for (int i = 0; i < 40 * 30; ++i) pixels[i] = 200;
    const IppiSize size = {40, 30};
    const IppiRect all = {0, 0, 40, 30};
    const OSErr err = KVMac_ippiRotate_8u_C1R(pixels, size, 40, all, turned, 40, all, 1.0, 0, 0, 0);
    return err == noErr && turned[15 * 40 + 20] == 200 ? 0 : 1;
}
