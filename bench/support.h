// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Comparisons, measured in one run: an exported function with the plain way to the same bytes (views, the OpenCV call,
// one copy back; memcpy where OpenCV has no such call) and with memcpy of as many bytes as are read and written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"

namespace bench {

constexpr IppiSize kPage = {2480, 3508};    // A4 at 300 dpi
constexpr IppiSize kTile = {256, 256};
constexpr int kMargin = 16;

// A block in huge pages if the kernel grants them, as for the pixels of the library's records. With small pages the
// time would depend on their physical addresses.
opcv::PixelBlock pixelBlock(size_t bytes);

// A page with margins on all sides: text-like blocks, shading and noise.
class Page {
public:
    Page(IppiSize size, int pixelSize);

    IppiSize size() const { return size_; }
    int step() const { return step_; }
    uint8_t* data() { return bytes_.get() + kMargin * step_ + kMargin * pixelSize_; }
    const uint8_t* data() const { return bytes_.get() + kMargin * step_ + kMargin * pixelSize_; }
    bool sameRegion(const Page& other) const;

private:
    IppiSize size_;
    int pixelSize_;
    int step_;
    opcv::PixelBlock bytes_;
};

// Pages that are created once and shared: for each size and pixel size, one to read and two to write.
const Page& source(IppiSize size, int pixelSize);
Page& target(IppiSize size, int pixelSize);
Page& otherTarget(IppiSize size, int pixelSize);

size_t bytesOf(IppiSize size, int pixelSize);

// One exported function with one shape.
struct Subject {
    std::string function;
    std::string variant;    // window, angle, depth, ...; may be empty
    IppiSize size;
    size_t bytesRead;
    size_t bytesWritten;

    Subject(std::string name, std::string shape, IppiSize region, size_t read, size_t written);
    // The call writes as many bytes as it reads.
    Subject(std::string name, std::string shape, IppiSize region, int pixelSize);
};

using Action = std::function<void()>;

struct Plain {
    std::string name;
    Action run;
};

// The plain way is memcpy of the same number of bytes.
Plain memcpyOnly();
Plain openCV(const Action& run);

struct Comparison {
    std::string heading;
    Subject subject;
    Action ours;
    Plain plain;
    std::function<bool()> same;
};

// Copies half as many bytes as the call reads and writes, between separate blocks.
Action memcpyOf(const Subject& subject);

// Registers a comparison. `same` is called once after both have run; if it returns false, the program exits.
void compare(const Subject& subject, const Action& ours, const Plain& plain,
             const std::function<bool()>& same = nullptr);

// Each file registers the function that creates its comparisons, with the heading of their table:
//     const bench::Registration registration("Bit packing", compareBitPacking);
struct Registration {
    Registration(const char* heading, void (*make)());
};

// The most that a call may cost: its time in one thread on the page, divided by that of the plain way or of memcpy.
struct Goal {
    enum Beside { kPlain, kMemcpy };

    std::string function;
    std::string variant;
    double ratio;
    Beside beside = kPlain;
};

// Each file of comparisons keeps the goals of its functions:
//     const bench::Goals goals({{"Function", "2.3 deg", 0.2}});
struct Goals {
    Goals(std::initializer_list<Goal> list);
};

// Null if there is none.
const Goal* goalOf(const Subject& subject);

// Runs the registered functions once for images of these sizes, after which comparisons() returns the result.
void makeComparisons(const std::vector<IppiSize>& wanted);
const std::vector<IppiSize>& sizes();
const std::vector<Comparison>& comparisons();

}    // namespace bench
