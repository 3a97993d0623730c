// What the module consists of; each of these adds its functions to it.
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

}    // namespace binding
