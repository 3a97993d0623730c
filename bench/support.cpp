// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "support.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <tuple>

#include "core/pixel_memory.h"
#include "support/drawn_page.h"

namespace bench {
namespace {

Page& pageOf(int which, IppiSize size, int pixelSize) {
    static std::map<std::tuple<int, int, int, int>, std::unique_ptr<Page>> pages;
    auto& page = pages[{which, size.width, size.height, pixelSize}];
    if (!page) page = std::make_unique<Page>(size, pixelSize);
    return *page;
}

struct Heading {
    const char* text;
    void (*makeComparisons)();
};

std::vector<Heading>& headings() {
    static std::vector<Heading> all;
    return all;
}

std::vector<Comparison>& allComparisons() {
    static std::vector<Comparison> all;
    return all;
}

std::vector<Goal>& allGoals() {
    static std::vector<Goal> all;
    return all;
}

const char* headingBeingMade = "";

std::vector<IppiSize>& sizesBeingMade() {
    static std::vector<IppiSize> all;
    return all;
}

}    // namespace

opcv::PixelBlock pixelBlock(size_t bytes) {
    opcv::PixelBlock block(static_cast<unsigned char*>(opcv::allocatePixels(bytes)));
    if (!block) throw std::bad_alloc();
    return block;
}

Page::Page(IppiSize size, int pixelSize)
    : size_(size),
      pixelSize_(pixelSize),
      step_((size.width + 2 * kMargin) * pixelSize),
      bytes_(pixelBlock(static_cast<size_t>(step_) * static_cast<size_t>(size.height + 2 * kMargin))) {
    drawPage(bytes_.get(), static_cast<size_t>(step_) * static_cast<size_t>(size.height + 2 * kMargin), step_,
             pixelSize);
}

bool Page::sameRegion(const Page& other) const {
    for (int y = 0; y < size_.height; ++y)
        if (std::memcmp(data() + ptrdiff_t{y} * step_, other.data() + ptrdiff_t{y} * other.step_,
                        static_cast<size_t>(size_.width) * static_cast<size_t>(pixelSize_)) != 0)
            return false;
    return true;
}

const Page& source(IppiSize size, int pixelSize) { return pageOf(0, size, pixelSize); }
Page& target(IppiSize size, int pixelSize) { return pageOf(1, size, pixelSize); }
Page& otherTarget(IppiSize size, int pixelSize) { return pageOf(2, size, pixelSize); }

size_t bytesOf(IppiSize size, int pixelSize) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * static_cast<size_t>(pixelSize);
}

Subject::Subject(std::string name, std::string shape, IppiSize region, size_t read, size_t written)
    : function(std::move(name)), variant(std::move(shape)), size(region), bytesRead(read), bytesWritten(written) {}

Subject::Subject(std::string name, std::string shape, IppiSize region, int pixelSize)
    : Subject(std::move(name), std::move(shape), region, bytesOf(region, pixelSize), bytesOf(region, pixelSize)) {}

Plain memcpyOnly() { return {"memcpy", nullptr}; }
Plain openCV(const Action& run) { return {"OpenCV", run}; }

// The blocks are large enough that both start at the same offset in a memory page: some processors copy many times
// slower if the target starts shortly after the source modulo the page size.
Action memcpyOf(const Subject& subject) {
    constexpr size_t kLargest = size_t{1} << 26;
    const auto touched = [](int value) {
        opcv::PixelBlock block = pixelBlock(kLargest);
        std::memset(block.get(), value, kLargest);
        return block;
    };
    static const opcv::PixelBlock from = touched(1);
    static const opcv::PixelBlock to = touched(0);
    const size_t half = std::min((subject.bytesRead + subject.bytesWritten) / 2, kLargest);
    return [half] {
        std::memcpy(to.get(), from.get(), half);
        asm volatile("" : : "r"(to.get()) : "memory");
    };
}

void compare(const Subject& subject, const Action& ours, const Plain& plain, const std::function<bool()>& same) {
    allComparisons().push_back({headingBeingMade, subject, ours, plain, same});
}

Registration::Registration(const char* heading, void (*make)()) { headings().push_back({heading, make}); }

Goals::Goals(std::initializer_list<Goal> list) { allGoals().insert(allGoals().end(), list); }

const Goal* goalOf(const Subject& subject) {
    const auto found = std::find_if(allGoals().begin(), allGoals().end(), [&subject](const Goal& goal) {
        return goal.function == subject.function && goal.variant == subject.variant;
    });
    return found == allGoals().end() ? nullptr : &*found;
}

void makeComparisons(const std::vector<IppiSize>& wanted) {
    sizesBeingMade() = wanted;
    for (const Heading& heading : headings()) {
        headingBeingMade = heading.text;
        heading.makeComparisons();
    }
}

const std::vector<IppiSize>& sizes() { return sizesBeingMade(); }

const std::vector<Comparison>& comparisons() { return allComparisons(); }

}    // namespace bench
