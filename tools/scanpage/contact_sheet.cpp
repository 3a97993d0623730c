// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "contact_sheet.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "result_mark.h"

namespace {

constexpr int kPageHeight = 900;
constexpr int kGap = 24;

// A colour thumbnail of a page; null if out of memory. Area averaging renders small print evenly.
PixPtr thumbnail(const KVIMG& page) {
    const PixPtr full(pixCreate(page.width, page.height, 32));
    if (!full) return nullptr;
    for (int y = 0; y < page.height; ++y) {
        const uint8_t* from = page.data + ptrdiff_t{y} * page.rowBytes;
        uint32_t* to = pixGetData(full.get()) + ptrdiff_t{y} * pixGetWpl(full.get());
        for (int x = 0; x < page.width; ++x) {
            const uint8_t* p = page.depth == 24 ? from + 3 * x : from + x;
            const int colour = page.depth == 24 ? 1 : 0;
            composeRGBPixel(p[0], p[colour], p[2 * colour], to + x);
        }
    }
    const float scale = static_cast<float>(kPageHeight) / static_cast<float>(page.height);
    return PixPtr(pixScaleAreaMap(full.get(), scale, scale));
}

PixPtr drawn(const std::map<size_t, std::pair<PixPtr, PixPtr>>& rows) {
    int width = 0;
    for (const auto& [index, row] : rows)
        width = std::max(width, pixGetWidth(row.first.get()) + pixGetWidth(row.second.get()) + 3 * kGap);
    const int count = static_cast<int>(rows.size());
    PixPtr sheet(pixCreate(width, count * (kPageHeight + kGap) + kGap, 32));
    if (!sheet) throw std::bad_alloc();
    pixSetAllArbitrary(sheet.get(), 0x40484800);
    int y = kGap;
    for (const auto& [index, row] : rows) {
        int x = kGap;
        for (PIX* page : {row.first.get(), row.second.get()}) {
            pixRasterop(sheet.get(), x, y, pixGetWidth(page), pixGetHeight(page), PIX_SRC, page, 0, 0);
            x += pixGetWidth(page) + kGap;
        }
        y += kPageHeight + kGap;
    }
    return sheet;
}

std::vector<uint8_t> pngOf(PIX* sheet) {
    l_uint8* data = nullptr;
    size_t size = 0;
    const bool good = pixWriteMemPng(&data, &size, sheet, 0) == 0;
    const std::unique_ptr<l_uint8, void (*)(void*)> owner(data, std::free);
    if (!good) throw std::bad_alloc();
    return {data, data + size};
}

// The CRC-32 of a PNG chunk covers its type and its data.
uint32_t crcOf(const uint8_t* bytes, size_t size) {
    uint32_t crc = 0xFFFFFFFF;
    for (size_t i = 0; i < size; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

void putBigEndian(uint8_t* to, size_t value) {
    for (int i = 0; i < 4; ++i) to[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

// Puts a sealed comment behind the header chunk.
void addMark(std::vector<uint8_t>& png, const std::string& name) {
    constexpr size_t kHeaderEnd = 33;
    constexpr size_t kAround = 12;    // length, type and checksum of a chunk
    const std::string content = std::string("tEXtComment") + '\0' + resultMark(0, "contact sheet");
    const size_t length = content.size() - 4;
    std::vector<uint8_t> chunk(length + kAround);
    putBigEndian(chunk.data(), length);
    std::copy(content.begin(), content.end(), chunk.begin() + 4);
    png.insert(png.begin() + kHeaderEnd, chunk.begin(), chunk.end());
    seal(png, name);
    uint8_t* const type = png.data() + kHeaderEnd + 4;
    putBigEndian(type + content.size(), crcOf(type, content.size()));
}

std::string folderOf(const std::string& file) {
    const std::string folder = std::filesystem::path(file).parent_path().string();
    return folder.empty() ? "." : folder;
}

}    // namespace

ContactSheet::ContactSheet(const std::string& file, const Rules& rules)
    : folder_(folderOf(file)), name_(std::filesystem::path(file).filename().string()), rules_(rules) {
    requireReplaceable(examine(folder_, name_), folder_.pathOf(name_), rules_);
}

void ContactSheet::add(size_t index, const KVIMG& before, const KVIMG& after) {
    std::pair<PixPtr, PixPtr> row(thumbnail(before), thumbnail(after));
    if (!row.first || !row.second) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    rows_.emplace(index, std::move(row));
}

void ContactSheet::write() const {
    if (rows_.empty()) return;
    const Existing existing = examine(folder_, name_);
    requireReplaceable(existing, folder_.pathOf(name_), rules_);
    std::vector<uint8_t> png = pngOf(drawn(rows_).get());
    addMark(png, name_);
    folder_.write(name_, png, existing.id);
}
