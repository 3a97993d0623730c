// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "contact_sheet.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "result_mark.h"
#include "sheet_png.h"

namespace {

constexpr int kGap = 24;                 // around pages
constexpr int kInnerGap = 8;             // between a page's picture before, after and its caption
constexpr int kFontSize = 4;             // the smallest that Leptonica has
constexpr double kMostPixels = 4.5e6;    // of all pictures: many are smaller
constexpr uint32_t kGround = 0x424A4A00;
constexpr uint32_t kInk = 0xFFFFFF00;

struct BmfDeleter {
    void operator()(L_BMF* font) const { bmfDestroy(&font); }
};
using Font = std::unique_ptr<L_BMF, BmfDeleter>;

// Where the pages come.
struct Grid {
    int width, height;    // of a picture at most
    int stepX, stepY;     // from page to page
    int columns, rows;
};

int rowsFor(int count, int columns) { return (count + columns - 1) / columns; }

// The columns that fit into the smallest square.
Grid gridFor(int count, int caption) {
    constexpr double kFull = 2.0 * Thumbnail::kMostWidth * Thumbnail::kMostHeight;
    const double scale = std::min(1.0, std::sqrt(kMostPixels / (count * kFull)));
    const int width = static_cast<int>(Thumbnail::kMostWidth * scale);
    const int height = static_cast<int>(Thumbnail::kMostHeight * scale);
    Grid grid{width, height, 2 * width + kInnerGap + kGap, height + kInnerGap + caption + kGap, 1, count};
    const auto side = [&](int columns) { return std::max(columns * grid.stepX, rowsFor(count, columns) * grid.stepY); };
    for (int columns = 2; columns <= count; ++columns)
        if (side(columns) < side(grid.columns)) grid.columns = columns;
    grid.rows = rowsFor(count, grid.columns);
    return grid;
}

// The font has ASCII only.
std::string printable(const std::string& text) {
    std::string result;
    for (const char c : text)
        if ((c & 0xC0) != 0x80) result += c >= ' ' && c <= '~' ? c : '?';    // one sign for a character of UTF-8
    return result;
}

int widthOf(const std::string& text, L_BMF* font) {
    int width = 0;
    bmfGetStringWidth(font, text.c_str(), &width);
    return width;
}

// A long name loses its middle.
std::string captionOf(const std::string& name, const std::string& angle, L_BMF* font, int width) {
    std::string shown = printable(name);
    const std::string behind = "  " + angle;
    size_t cut = shown.size() / 2;
    for (std::string text = shown + behind;;
         text = shown.substr(0, cut) + ".." + shown.substr(shown.size() - cut) + behind) {
        if (widthOf(text, font) <= width || cut == 0) return text;
        --cut;
    }
}

void put(PIX* band, const Thumbnail& thumbnail, int x, const Grid& grid) {
    const PixPtr page = picture(thumbnail, grid.width, grid.height);
    pixRasterop(band, x, 0, pixGetWidth(page.get()), pixGetHeight(page.get()), PIX_SRC, page.get(), 0, 0);
}

void put(PIX* band, const SheetEntry& entry, L_BMF* font, int x, const Grid& grid) {
    const int right = x + grid.width + kInnerGap;
    put(band, entry.before, x, grid);
    put(band, entry.after, right, grid);
    const std::string caption = captionOf(entry.name, entry.angle, font, right + grid.width - x);
    const int baseline = grid.height + kInnerGap + font->baselinetab['0'];
    pixSetTextline(band, font, caption.c_str(), kInk, x, baseline, nullptr, nullptr);
}

PixPtr emptyBand(int width, int height) {
    PixPtr band = owned(pixCreate(width, height, 32));
    pixSetAllArbitrary(band.get(), kGround);
    return band;
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

}    // namespace

ContactSheet::ContactSheet(const std::string& file, const Rules& rules)
    : place_(placeOfBook(file, rules)), rules_(rules) {}

void ContactSheet::add(const PageOrder& order, SheetEntry entry) {
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_.emplace(order, std::move(entry));
    if (entries_.size() > kMostPages) entries_.erase(std::prev(entries_.end()));
}

// A row of pages is in memory at a time.
std::vector<uint8_t> ContactSheet::drawn() const {
    const Font font(bmfCreate(nullptr, kFontSize));
    if (!font) throw std::bad_alloc();
    const Grid grid = gridFor(static_cast<int>(entries_.size()), font->lineheight);
    const int width = grid.columns * grid.stepX + kGap;
    SheetPng png(width, grid.rows * grid.stepY + kGap);
    png.add(emptyBand(width, kGap).get());
    auto entry = entries_.begin();
    for (int row = 0; row < grid.rows; ++row) {
        const PixPtr band = emptyBand(width, grid.stepY);
        for (int column = 0; column < grid.columns && entry != entries_.end(); ++column, ++entry)
            put(band.get(), entry->second, font.get(), kGap + column * grid.stepX, grid);
        png.add(band.get());
    }
    return png.finish();
}

void ContactSheet::write() const {
    if (entries_.empty()) return;
    const Existing existing = examine(place_.folder, place_.name);
    requireEarlierBook(existing, place_.path(), rules_);
    std::vector<uint8_t> png = drawn();
    addMark(png, place_.name);
    place_.folder.write(place_.name, png, existing.id);
}
