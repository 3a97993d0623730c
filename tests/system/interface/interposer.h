// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#pragma once

enum { TAKEN = 4711 };

/* How often a name that was taken over has been called. */
#ifdef __cplusplus
extern "C"
#else
extern
#endif
    int takenCalls;
