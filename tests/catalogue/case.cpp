// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "catalogue/case.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <map>

#include "support/drawn_page.h"

namespace {

void append(Bytes& bytes, const void* more, size_t count) {
    const auto* first = static_cast<const uint8_t*>(more);
    bytes.insert(bytes.end(), first, first + count);
}

// The fields and the pixels. What pads a row is nobody's. Pixels of 3 bytes are written in rows that lie whole pixels
// apart, also where the record's own step is none.
void append(Bytes& bytes, const KVIMG& record) {
    for (const int32_t field : {record.depth, record.width, record.height, record.rowBytes, record.size})
        append(bytes, &field, sizeof(field));
    const int bits = record.depth == 40 ? 8 : record.depth;    // laid out alike
    const auto rowBytes = static_cast<size_t>((int64_t{record.width} * bits + 7) / 8);
    const int pitch = record.depth == 24 ? record.rowBytes / 3 * 3 : record.rowBytes;
    for (int y = 0; y < record.height; ++y) append(bytes, record.data + ptrdiff_t{y} * pitch, rowBytes);
}

void fillWithFloats(Random& random, uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count; i += sizeof(float)) {
        const auto value = static_cast<float>(random.real(-2, 2));
        std::memcpy(bytes + i, &value, sizeof(value));
    }
}

// Pages are drawn once.
void copyPage(uint8_t* bytes, size_t count, int step, int pixelSize) {
    static std::map<std::array<int, 2>, Bytes> pages;
    Bytes& page = pages[{step, pixelSize}];
    if (page.size() < count) {
        page.resize(count);
        drawPage(page.data(), count, step, pixelSize);
    }
    std::copy_n(page.begin(), count, bytes);
}

void flip(uint8_t* bytes, int count) {
    for (int i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(~bytes[i]);
}

}    // namespace

Case::Case(const Setting& setting, Memory& memory)
    : variant(setting.variant),
      size(setting.size),
      random(setting.seed),
      memory_(memory),
      otherPadding_(setting.otherPadding),
      page_(setting.page) {}

void Case::fill(uint8_t* bytes, size_t count, int step, int pixelSize) {
    if (page_)
        copyPage(bytes, count, step, pixelSize);
    else
        random.fill(bytes, count, random.anyValues());
}

Image Case::image(const Layout& wanted, Use use) {
    const int padding =
        wanted.padding == Layout::kAnyPadding ? wanted.pixelSize * random.between(0, 3) : wanted.padding;
    const ImageLayout layout = {wanted.region, wanted.pixelSize, wanted.margin, padding};
    const size_t bytes = layout.bytes();
    uint8_t* first = memory_.take(bytes);
    if (wanted.content == Layout::Content::kFloats)
        fillWithFloats(random, first, bytes);
    else
        fill(first, bytes, layout.step(), layout.pixelSize);
    if (otherPadding_)
        for (int y = 0; y < layout.rows() - 1; ++y)
            flip(first + ptrdiff_t{y} * layout.step() + layout.usedRow(), padding);
    add({first, Bytes(first, first + bytes), use, layout});
    return {first + layout.offsetOf(0, 0), layout.step()};
}

uint8_t* Case::block(const void* bytes, size_t count, Use use) {
    uint8_t* first = memory_.take(count);
    std::memcpy(first, bytes, count);
    add({first, Bytes(first, first + count), use, {{static_cast<int>(count), 1}}});
    return first;
}

void Case::add(Block block) {
    if (block.use == Use::kRead) memory_.makeLastReadOnly();
    blocks_.push_back(std::move(block));
}

void Case::restore() {
    releaseResults();
    for (const Block& block : blocks_)
        if (block.use != Use::kRead) std::memcpy(block.bytes, block.before.data(), block.before.size());
    if (before) before();
}

void Case::releaseResults() {
    const opcv::RecordPtr released(record);
    const opcv::PixelBlock releasedPlane(static_cast<unsigned char*>(plane));
    std::free(stream);
    record = nullptr;
    plane = nullptr;
    stream = nullptr;
    streamSize = 0;
    std::vector<unsigned char>().swap(vector);
}

Bytes Case::takeOutput() {
    Bytes output;
    for (const Block& block : blocks_)
        if (block.use == Use::kWritten || block.use == Use::kWrittenEvenOnFailure) {
            const Bytes region = block.layout.regionOf(block.bytes);
            append(output, region.data(), region.size());
        }
    if (record) append(output, *record);
    if (stream) append(output, stream, streamSize);
    append(output, vector.data(), vector.size());
    releaseResults();
    return output;
}

std::string Case::strayWrites() const {
    for (size_t i = 0; i < blocks_.size(); ++i) {
        const Block& block = blocks_[i];
        if (block.use == Use::kRead ? !block.untouched() : !block.untouchedOutsideRegion())
            return "bytes outside the output have changed in block " + std::to_string(i);
    }
    return {};
}

std::string Case::tracesOfFailure() const {
    for (size_t i = 0; i < blocks_.size(); ++i) {
        const Block& block = blocks_[i];
        if (block.use != Use::kWrittenEvenOnFailure && block.use != Use::kIncomparable && !block.untouched())
            return "block " + std::to_string(i) + " has changed";
    }
    if (record || plane || stream) return "something has been handed over";
    return afterFailure ? afterFailure() : std::string();
}

namespace {

int marginOn(Case::Side side, const Margin& margin) {
    switch (side) {
        case Case::Side::kLeft: return margin.left;
        case Case::Side::kAbove: return margin.top;
        case Case::Side::kRight: return margin.right;
        default: return margin.bottom;
    }
}

}    // namespace

int Case::widestMargin(Side side) const {
    int widest = 0;
    for (const Block& block : blocks_) widest = std::max(widest, marginOn(side, block.layout.margin));
    return widest;
}

void Case::disturb(Side side, int distance, Change change) {
    for (const Block& block : blocks_) {
        const ImageLayout& layout = block.layout;
        const Margin& m = layout.margin;
        if (marginOn(side, m) < distance) continue;
        const bool column = side == Side::kLeft || side == Side::kRight;
        const int x = side == Side::kLeft ? -distance : column ? layout.region.width - 1 + distance : -m.left;
        const int y = column ? -m.top : side == Side::kAbove ? -distance : layout.region.height - 1 + distance;
        const int rows = column ? layout.rows() : 1;
        const int bytes = column ? layout.pixelSize : layout.usedRow();
        for (int row = y; row < y + rows; ++row)
            for (int i = 0; i < bytes; ++i) {
                uint8_t& b = block.bytes[layout.offsetOf(x, row) + i];
                b = change == Change::kBlack ? 0 : change == Change::kWhite ? 255 : static_cast<uint8_t>(~b);
            }
    }
}

bool Case::Block::untouched() const { return std::memcmp(bytes, before.data(), before.size()) == 0; }
