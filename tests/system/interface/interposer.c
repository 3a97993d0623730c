// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

/* Stands before the library in the search order, takes over three exported names and counts the calls. */
#include <stdlib.h>

#include "OPCV_dlib.h"
#include "interposer.h"

int takenCalls = 0;

IppStatus IPPMini_ippStaticInit(void) {
    ++takenCalls;
    return TAKEN;
}

void IPPMini_ippiFree(void* ptr) {
    ++takenCalls;
    free(ptr);
}

IppStatus IPPShare_ippiFilterMedian_8u_C1R(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                                           IppiSize roi, IppiSize mask, IppiPoint anchor) {
    (void)src, (void)srcStep, (void)dst, (void)dstStep, (void)roi, (void)mask, (void)anchor;
    ++takenCalls;
    return TAKEN;
}
