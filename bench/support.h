// Comparisons in one run: an exported function beside the plain way to the same bytes (views, the OpenCV call, the copy
// back; where OpenCV has no such call, memcpy) and beside memcpy of the bytes read and written once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"

namespace bench {

constexpr IppiSize kPage = {2480, 3508};    // A4 at 300 dpi
constexpr IppiSize kTile = {256, 256};
constexpr int kMargin = 16;

// Bytes in huge pages where the kernel gives them, as the pixels of the library's records are; in small ones the time
// would depend on how they happened to be handed out.
PixelBlock pixelBlock(size_t bytes);

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
    PixelBlock bytes_;
};

// Pages made once and shared: one to read and two to write for each size and pixel size.
const Page& source(IppiSize size, int pixelSize);
Page& target(IppiSize size, int pixelSize);
Page& otherTarget(IppiSize size, int pixelSize);

size_t bytesOf(IppiSize size, int pixelSize);

// One exported function on one shape.
struct Subject {
    std::string function;
    std::string variant;    // window, angle, depth, ...; may be empty
    IppiSize size;
    size_t bytesRead;
    size_t bytesWritten;

    Subject(std::string name, std::string shape, IppiSize region, size_t read, size_t written);
    // As many bytes written as read.
    Subject(std::string name, std::string shape, IppiSize region, int pixelSize);
};

using Action = std::function<void()>;

struct Plain {
    std::string name;
    Action run;
};

// Plain is memcpy of the same traffic.
Plain memcpyOnly();
Plain openCV(const Action& run);

struct Comparison {
    std::string heading;
    Subject subject;
    Action ours;
    Plain plain;
    std::function<bool()> same;
};

// Copies half of the bytes that are read and written, in blocks of its own.
Action memcpyOf(const Subject& subject);

// Registers a comparison. `same` is asked once both have run; a false ends the program.
void compare(const Subject& subject, const Action& ours, const Plain& plain,
             const std::function<bool()>& same = nullptr);

// Each file of comparisons registers the function that makes them, under the heading of their table:
//     const bench::Registration registration("Bit packing", compareBitPacking);
struct Registration {
    Registration(const char* heading, void (*make)());
};

// Runs what has been registered, once, for images of these sizes; the comparisons are there after it.
void makeComparisons(const std::vector<IppiSize>& wanted);
const std::vector<IppiSize>& sizes();
const std::vector<Comparison>& comparisons();

}    // namespace bench
