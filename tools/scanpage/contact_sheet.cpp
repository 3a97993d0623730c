#include "contact_sheet.h"

#include <algorithm>

namespace {

constexpr int kPageHeight = 900;
constexpr int kGap = 24;

// A colour thumbnail of a page; null if there is no memory for it. Averaging over areas keeps small print even.
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

}    // namespace

void ContactSheet::add(size_t index, const KVIMG& before, const KVIMG& after) {
    std::pair<PixPtr, PixPtr> row(thumbnail(before), thumbnail(after));
    if (!row.first || !row.second) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    rows_.emplace(index, std::move(row));
}

void ContactSheet::write(const std::string& file) const {
    if (rows_.empty()) return;
    int width = 0;
    for (const auto& [index, row] : rows_)
        width = std::max(width, pixGetWidth(row.first.get()) + pixGetWidth(row.second.get()) + 3 * kGap);
    const int count = static_cast<int>(rows_.size());
    const PixPtr sheet(pixCreate(width, count * (kPageHeight + kGap) + kGap, 32));
    if (!sheet) throw std::bad_alloc();
    pixSetAllArbitrary(sheet.get(), 0x40484800);
    int y = kGap;
    for (const auto& [index, row] : rows_) {
        int x = kGap;
        for (PIX* page : {row.first.get(), row.second.get()}) {
            pixRasterop(sheet.get(), x, y, pixGetWidth(page), pixGetHeight(page), PIX_SRC, page, 0, 0);
            x += pixGetWidth(page) + kGap;
        }
        y += kPageHeight + kGap;
    }
    if (pixWrite(file.c_str(), sheet.get(), IFF_PNG) != 0) throw std::runtime_error(file + " cannot be written");
}
