// One call of an exported function with all that it needs: buffers of exactly the documented extent, filled from a seed,
// the call itself, and what it gave back. A case can be run any number of times and gives the same each time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "catalogue/memory.h"
#include "support/random.h"

using Bytes = std::vector<uint8_t>;

// Pixels around a region that belong to what a function reads. Negative: the function does not even read all of the
// region, as with an anchor outside its mask.
struct Margin {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    static Margin all(int pixels) { return {pixels, pixels, pixels, pixels}; }
};

// How an image lies in memory. Padding is what is behind each row but the last.
struct Layout {
    IppiSize region;
    int pixelSize = 1;    // bytes
    Margin margin = {};
    int padding = kAnyPadding;    // bytes
    enum class Content { kBytes, kFloats } content = Content::kBytes;

    static constexpr int kAnyPadding = -1;    // some whole pixels
    static constexpr int kPacked = 0;
};

// An image as a function takes it.
struct Image {
    uint8_t* data;    // first pixel of the region
    int step;         // bytes

    template <class T>
    T* as() const {
        return reinterpret_cast<T*>(data);
    }
};

class Case {
public:
    struct Setting {
        unsigned seed = 1;
        int variant = 0;    // which mask, anchor, depth, ... of those that the entry knows
        IppiSize size = {52, 40};
        bool otherPadding = false;    // other bytes behind the rows, of which no function knows
    };

    Case(const Setting& setting, Memory& memory);
    Case(const Case&) = delete;
    Case& operator=(const Case&) = delete;
    ~Case() { releaseResults(); }

    // What an entry of the catalogue builds the call with.

    const int variant;
    const IppiSize size;
    Random random;

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
    // Output that a failed call may have written, as its description says.
    template <class T>
    T* targetEvenOnFailure(const T& value) {
        return reinterpret_cast<T*>(block(&value, kSizeOf<T>, Use::kWrittenEvenOnFailure));
    }
    // Written, but different each time: addresses.
    template <class T>
    T* addressesIn(const T& value) {
        return reinterpret_cast<T*>(block(&value, kSizeOf<T>, Use::kIncomparable));
    }

    // What the call hands over, released after each run.
    KVIMG* record = nullptr;
    void* plane = nullptr;
    void* stream = nullptr;
    unsigned streamSize = 0;
    std::vector<unsigned char> vector;

    std::function<void()> before;    // what each run needs anew
    std::function<int()> call;       // 0 for success

    // Blocks that OpenCV loses in this call if memory runs out.
    size_t lostByOpenCV = 0;

    // What the tests do with it.

    // Puts all back as it was prepared.
    void restore();

    int run() { return call(); }

    // Every byte that the call gave back; releases what it handed over.
    Bytes takeOutput();

    // What has changed that must not, or an empty string.
    std::string strayWrites() const;

    // The same after a failure: then the output must not have changed either, nor anything have been handed over.
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
        // The region.
        size_t offset;
        size_t step;
        size_t rowBytes;
        size_t rows;

        Bytes region() const;
        bool untouchedOutsideRegion() const;
        bool untouched() const;
    };

    Image image(const Layout& layout, Use use);
    uint8_t* block(const void* bytes, size_t count, Use use);
    void add(Block block);
    void releaseResults();

    Memory& memory_;
    bool otherPadding_;
    std::vector<Block> blocks_;
};
