// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Initialisation functions, which do nothing.
#include "OPCV_dlib.h"

int IppInit() { return 0; }

IppStatus IPPMini_ippStaticInit() { return ippStsNoErr; }

IppStatus IPPShare_ippStaticInit() { return IPPMini_ippStaticInit(); }
