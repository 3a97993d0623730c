#include "catalogue/case.h"

#include <cstdlib>
#include <cstring>

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

void fill(Random& random, uint8_t* bytes, size_t count, Layout::Content content) {
    if (content == Layout::Content::kBytes) return random.fill(bytes, count, random.anyValues());
    for (size_t i = 0; i < count; i += sizeof(float)) {
        const auto value = static_cast<float>(random.real(-2, 2));
        std::memcpy(bytes + i, &value, sizeof(value));
    }
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
      otherPadding_(setting.otherPadding) {}

Image Case::image(const Layout& layout, Use use) {
    const Margin& m = layout.margin;
    const int columns = m.left + layout.region.width + m.right;
    const int rows = m.top + layout.region.height + m.bottom;
    const int padding =
        layout.padding == Layout::kAnyPadding ? layout.pixelSize * random.between(0, 3) : layout.padding;
    const int step = columns * layout.pixelSize + padding;
    const auto bytes = static_cast<size_t>(step) * static_cast<size_t>(rows) - static_cast<size_t>(padding);

    uint8_t* first = memory_.take(bytes);
    fill(random, first, bytes, layout.content);
    if (otherPadding_)
        for (int y = 0; y < rows - 1; ++y) flip(first + ptrdiff_t{y} * step + columns * layout.pixelSize, padding);
    const ptrdiff_t offset = ptrdiff_t{m.top} * step + ptrdiff_t{m.left} * layout.pixelSize;
    add({first, Bytes(first, first + bytes), use, static_cast<size_t>(offset), static_cast<size_t>(step),
         static_cast<size_t>(layout.region.width) * static_cast<size_t>(layout.pixelSize),
         static_cast<size_t>(layout.region.height)});
    return {first + offset, step};
}

uint8_t* Case::block(const void* bytes, size_t count, Use use) {
    uint8_t* first = memory_.take(count);
    std::memcpy(first, bytes, count);
    add({first, Bytes(first, first + count), use, 0, count, count, 1});
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
    DisposeKVIMG(record);
    IPPMini_ippiFree(plane);
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
            const Bytes region = block.region();
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
    return {};
}

Bytes Case::Block::region() const {
    Bytes pixels;
    for (size_t y = 0; y < rows; ++y) append(pixels, bytes + offset + y * step, rowBytes);
    return pixels;
}

bool Case::Block::untouchedOutsideRegion() const {
    Bytes expected = before;
    for (size_t y = 0; y < rows; ++y)
        std::memcpy(expected.data() + offset + y * step, bytes + offset + y * step, rowBytes);
    return std::memcmp(bytes, expected.data(), expected.size()) == 0;
}

bool Case::Block::untouched() const { return std::memcmp(bytes, before.data(), before.size()) == 0; }
