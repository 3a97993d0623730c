// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// opcv_dlib._skew: the skew finder, a module of its own that is imported on the first use.
#include <OPCV_dlib_skew.h>

#include "arrays.h"

namespace binding {

namespace {

// (angle, confidence, outcome) of an array.
std::tuple<double, double, int> findSkew(const py::array& pixels) {
    const Image image = imageOf({"find_skew", "page"}, pixels, kPagePixels);
    const KVIMG page = {image.data, image.channels * 8, image.width, image.height, image.step, 0};
    opcv_skew skew{};
    skew.struct_size = sizeof(skew);
    run("opcv_find_skew", [&] { return opcv_find_skew(&page, &skew); });
    return {skew.angle, skew.confidence, skew.outcome};
}

}    // namespace

}    // namespace binding

PYBIND11_MODULE(_skew, module) {
    using namespace pybind11::literals;
    module.doc() = "Implementation of opcv_dlib.find_skew.";
    module.def("find_skew", &binding::findSkew, "page"_a);
}
