// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// One call of an exported function: its buffers, which have exactly the documented extent and are filled from a seed,
// the call and its results. A case can be run repeatedly, with the same results each time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "catalogue/memory.h"
#include "support/image_layout.h"
#include "support/random.h"

using Bytes = std::vector<uint8_t>;

// The image that an entry requests.
struct Layout {
    IppiSize region;
    int pixelSize = 1;    // bytes
    Margin margin = {};
    int padding = kAnyPadding;    // bytes
    enum class Content { kBytes, kFloats } content = Content::kBytes;

    static constexpr int kAnyPadding = -1;    // some whole pixels
    static constexpr int kPacked = 0;
};

// An image as it is passed to a function.
struct Image {
    uint8_t* data = nullptr;    // first pixel of the region
    int step = 0;               // bytes

    template <class T>
    T* as() const {
        return reinterpret_cast<T*>(data);
    }
};

// Source and destination of most functions. Without a source: in place.
struct Regions {
    Image src;
    Image dst;
    IppiSize size;
};

// The checks of a function that takes regions.
struct Checks {
    int srcStep;    // the shortest step that it accepts; 0: not checked
    int dstStep;
    int status = ippStsBadArgErr;
    int statusOfEmptyRegion = ippStsBadArgErr;
};

// A call with a wrong argument: it must return the status and write nothing.
struct Refusal {
    std::string what;
    int status;
    std::function<int()> call;
};

class Case {
public:
    struct Setting {
        unsigned seed = 1;
        int variant = 0;    // which mask, anchor, depth, ... of those that the entry knows
        IppiSize size = {52, 40};
        bool otherPadding = false;    // other padding bytes, which must not affect the result
        bool page = false;            // images are pages, and no call works in place by chance
    };

    Case(const Setting& setting, Memory& memory);
    Case(const Case&) = delete;
    Case& operator=(const Case&) = delete;
    ~Case() { releaseResults(); }

    // Functions with which an entry of the catalogue builds the call.

    const int variant;
    const IppiSize size;
    Random random;

    // Whether the images are pages. Then the call is one that docs/functions.md shows.
    bool isPage() const { return page_; }

    // True for one call in eight, for functions that may work in place.
    bool worksInPlace() { return random.between(1, 8) == 1 && !page_; }

    // Pixels as those of the images, for what is made of them.
    void fill(uint8_t* bytes, size_t count, int step, int pixelSize);

    // Must not change, padding included.
    Image source(const Layout& layout) { return image(layout, Use::kRead); }

    // Only the region may change; it is the output.
    Image target(const Layout& layout) { return image(layout, Use::kWritten); }

    // Both at once, for calls in place: margin and padding must not change.
    Image sourceAndTarget(const Layout& layout) { return image(layout, Use::kWritten); }

    // Arrays and single values, placed like images.
    template <class T>
    const T* sourceOf(const std::vector<T>& values) {
        return reinterpret_cast<const T*>(block(values.data(), values.size() * kSizeOf<T>, Use::kRead));
    }
    template <class T>
    T* sourceOf(const T& value) {
        return reinterpret_cast<T*>(block(&value, kSizeOf<T>, Use::kRead));
    }
    template <class T>
    T* targetOf(const std::vector<T>& values) {
        return reinterpret_cast<T*>(block(values.data(), values.size() * kSizeOf<T>, Use::kWritten));
    }
    template <class T>
    T* targetOf(const T& value) {
        return reinterpret_cast<T*>(block(&value, kSizeOf<T>, Use::kWritten));
    }
    // Output that a failed call may have written, as documented.
    template <class T>
    T* targetEvenOnFailure(const T& value) {
        return reinterpret_cast<T*>(block(&value, kSizeOf<T>, Use::kWrittenEvenOnFailure));
    }
    // Written, but different each time: addresses.
    template <class T>
    T* addressesIn(const T& value) {
        return reinterpret_cast<T*>(block(&value, kSizeOf<T>, Use::kIncomparable));
    }

    // Results that the caller owns; released after each run.
    KVIMG* record = nullptr;
    void* plane = nullptr;
    void* stream = nullptr;
    unsigned streamSize = 0;
    std::vector<unsigned char> vector;

    std::function<void()> before;                 // prepares each run
    std::function<int()> call;                    // 0 for success
    std::function<std::string()> afterFailure;    // describes a wrong state after a failed call; empty if correct
    std::vector<Refusal> refusals;

    void refuse(const std::string& what, int status, const std::function<int()>& wrongCall) {
        refusals.push_back({what, status, wrongCall});
    }

    // Sets the call for a `function(regions)` without checks.
    template <class Function>
    void callOn(const Regions& regions, Function function) {
        takesRegions = true;
        call = [function, regions] { return function(regions); };
    }

    // Sets the call for a function that checks its pointers, size and steps.
    template <class Function>
    void callOn(const Regions& regions, const Checks& checks, Function function) {
        callOn(regions, function);
        const auto refuseAfter = [&](const std::string& what, int status, auto change) {
            Regions wrong = regions;
            change(wrong);
            refuse(what, status, [function, wrong] { return function(wrong); });
        };
        if (regions.src.data) refuseAfter("a null source", checks.status, [](Regions& r) { r.src.data = nullptr; });
        refuseAfter("a null target", checks.status, [](Regions& r) { r.dst.data = nullptr; });
        for (const int side : {0, -1}) {
            refuseAfter("a width of " + std::to_string(side), checks.statusOfEmptyRegion,
                        [side](Regions& r) { r.size.width = side; });
            refuseAfter("a height of " + std::to_string(side), checks.statusOfEmptyRegion,
                        [side](Regions& r) { r.size.height = side; });
        }
        if (checks.srcStep > 0)
            refuseAfter("a short step of the source", checks.status,
                        [&checks](Regions& r) { r.src.step = checks.srcStep - 1; });
        if (checks.dstStep > 0)
            refuseAfter("a short step of the target", checks.status,
                        [&checks](Regions& r) { r.dst.step = checks.dstStep - 1; });
    }

    bool takesRegions = false;

    // Blocks that OpenCV leaks in this call if it is out of memory.
    size_t lostByOpenCV = 0;

    // Functions for the tests.

    // Restores the initial state.
    void restore();

    int run() { return call(); }

    // Changes a row or column of pixels at this distance from the regions that have so wide a margin.
    enum class Side { kLeft, kAbove, kRight, kBelow };
    enum class Change { kBlack, kWhite, kInverted };
    int widestMargin(Side side) const;
    void disturb(Side side, int distance, Change change);

    // All result bytes; releases the results that the caller owns.
    Bytes takeOutput();

    // Describes an unexpected change, or returns an empty string.
    std::string strayWrites() const;

    // The same after a failure: the output must be unchanged too, and nothing returned.
    std::string tracesOfFailure() const;

private:
    enum class Use { kRead, kWritten, kWrittenEvenOnFailure, kIncomparable };

    // Of pointers as well.
    template <class T>
    static constexpr size_t kSizeOf = sizeof(std::array<T, 1>);

    struct Block {
        uint8_t* bytes;
        Bytes before;
        Use use;
        ImageLayout layout;

        bool untouchedOutsideRegion() const { return layout.sameAroundRegion(bytes, before); }
        bool untouched() const;
    };

    Image image(const Layout& wanted, Use use);
    uint8_t* block(const void* bytes, size_t count, Use use);
    void add(Block block);
    void releaseResults();

    Memory& memory_;
    bool otherPadding_;
    bool page_;
    std::vector<Block> blocks_;
};
