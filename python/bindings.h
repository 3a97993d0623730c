// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The parts of the module; each adds its functions.
#pragma once

#include <pybind11/pybind11.h>

namespace binding {

void addRankFilters(pybind11::module_& module);
void addConvolutions(pybind11::module_& module);
void addFilters(pybind11::module_& module);
void addPixelFunctions(pybind11::module_& module);
void addGeometry(pybind11::module_& module);
void addPages(pybind11::module_& module);
void addJpeg(pybind11::module_& module);
void addJpegReading(pybind11::module_& module);

}    // namespace binding
