// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A case for every exported function. The tests of this folder and of tests/catalogue/memory loop over it, so that
// every test covers all functions.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "catalogue/case.h"

// How a call ends if it is out of memory.
struct OutOfMemory {
    bool allocates = true;
    int status = ippStsNoMemErr;
    bool throws = false;    // OpenCV's cv::Exception or std::bad_alloc may propagate instead
    bool silent = false;    // without a status: the output is complete or unchanged
    std::string answer;     // the return value, as written in the header

    static OutOfMemory never() { return {false, 0, false, false, ""}; }
    static OutOfMemory answers(int status) { return {true, status, false, false, std::to_string(status)}; }
    static OutOfMemory answersOrThrows(int status) { return {true, status, true, false, std::to_string(status)}; }
    static OutOfMemory throwsOnly() { return {true, 0, true, false, ""}; }
    static OutOfMemory saysNothing() { return {true, 0, true, true, ""}; }

    // For a function whose failure the case's call turns into the status.
    OutOfMemory as(const char* returned) const { return {allocates, status, throws, silent, returned}; }
};

// A variant as docs/functions.md names it.
struct Shape {
    std::string text;
    int variant;
};

struct Entry {
    std::string name;    // without the parameter types
    int variants;        // masks, anchors, depths, ...
    OutOfMemory outOfMemory;
    std::function<void(Case&)> prepare;

    // Variants with a row in docs/functions.md.
    std::vector<Shape> shapes = {{"", 0}};

    // The function that is benchmarked instead because it shares the code; or a note that there is no image work.
    std::string measuredAs = {};

    // Whether the output has the same bytes on every machine, or numbers that differ in their last digits.
    enum class Output { kExact, kFloats, kDoubles } output = Output::kExact;
};

inline constexpr const char* kNoImageWork = "no image work";

using Entries = std::vector<Entry>;

Entries coreEntries();
Entries rankEntries();
Entries geometryEntries();
Entries jpegEntries();
Entries pixelEntries();
Entries filterEntries();
Entries limitedReadingEntries();    // of OPCV_dlib_read.h

// All of them.
const Entries& catalogue();

// Shapes that several subsystems share.

struct Window {
    IppiSize mask;
    IppiPoint anchor;
};

inline IppiPoint centreOf(IppiSize mask) { return {mask.width / 2, mask.height / 2}; }

// For docs/functions.md: these masks, with the centre as anchor, in a list of windows.
std::vector<Shape> shapesOf(const std::vector<Window>& windows, const std::vector<IppiSize>& masks,
                            const std::string& suffix = "", int firstVariant = 0);

// Small masks with every anchor in them and in a ring around them, others with a few.
std::vector<Window> windowsOf(const std::vector<IppiSize>& small, const std::vector<IppiSize>& large);

// A page record that is only read. What pads its rows is either no part of the page or counts as image.
struct Page {
    KVIMG* record;
    KVImageDescriptionHandle description;
};
enum class Rows { kPixelsOnly, kWhole };

Page pageOf(Case& c, int depth, Rows rows);

// Without an indeterminate byte in it.
KVImageDescription descriptionOf(IppiSize size, int depth);

template <class T>
const T& pick(const std::vector<T>& values, int index) {
    return values[static_cast<size_t>(index) % values.size()];
}
