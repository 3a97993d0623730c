// Comparisons in one run: each is our call beside others that do the same work (the plain OpenCV call, the scalar
// definition, memcpy of the bytes read and written once), interleaved at random; the report gives medians and ratios.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OPCV_dlib.h"

namespace bench {

constexpr IppiSize kPage = {2480, 3508};    // A4 at 300 dpi
constexpr IppiSize kTile = {256, 256};
constexpr int kMargin = 16;

// A page with margins on all sides: text-like blocks, shading and noise.
class Page {
public:
    Page(IppiSize size, int pixelSize);

    IppiSize size() const { return size_; }
    int step() const { return step_; }
    uint8_t* data() { return bytes_.data() + kMargin * step_ + kMargin * pixelSize_; }
    const uint8_t* data() const { return bytes_.data() + kMargin * step_ + kMargin * pixelSize_; }
    size_t regionBytes() const {
        return static_cast<size_t>(size_.width) * static_cast<size_t>(size_.height) * static_cast<size_t>(pixelSize_);
    }
    bool sameRegion(const Page& other) const;

private:
    IppiSize size_;
    int pixelSize_;
    int step_;
    std::vector<uint8_t> bytes_;
};

// Pages made once and shared: one to read and two to write for each size and pixel size.
const Page& source(IppiSize size, int pixelSize);
Page& target(IppiSize size, int pixelSize);
Page& otherTarget(IppiSize size, int pixelSize);

struct Contender {
    std::string name;
    std::function<void()> run;
};

// Registers a comparison. `verify`, if given, runs after each contender has run once; a false ends the program.
void compare(const std::string& name, const std::function<void()>& ours, const std::vector<Contender>& others,
             const std::function<bool()>& verify = nullptr);

// Each file of comparisons registers its function that makes them:
//     const bench::Registration registration(compareBitPacking);
struct Registration {
    explicit Registration(void (*makeComparisons)());
};

// memcpy of as many bytes as a call reads and writes once: half of them are copied, in a block of its own.
Contender memcpyOf(size_t bytesReadAndWritten);

std::string withSize(const std::string& name, IppiSize size);

}    // namespace bench
