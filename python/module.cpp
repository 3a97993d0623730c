// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// opcv_dlib._native: the library's functions on NumPy arrays. The package adds the exceptions and the types.
#include <OPCV_dlib.h>

#include "bindings.h"

PYBIND11_MODULE(_native, module) {
    module.doc() = "Implementation of opcv_dlib, which should be imported instead.";
    module.def(
        "init", [] { return IppInit() | IPPMini_ippStaticInit() | IPPShare_ippStaticInit(); },
        "Does nothing and returns 0; no initialisation is needed.\n\n"
        "Calls `IppInit`, `IPPMini_ippStaticInit` and `IPPShare_ippStaticInit`.");
    binding::addRankFilters(module);
    binding::addConvolutions(module);
    binding::addFilters(module);
    binding::addPixelFunctions(module);
    binding::addGeometry(module);
    binding::addPages(module);
    binding::addJpeg(module);
    binding::addJpegReading(module);
}
