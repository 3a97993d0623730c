#include "contact_sheet.h"

#include <algorithm>

#include "pix.h"

namespace {

constexpr int kPageHeight = 900;
constexpr int kGap = 24;

// A colour thumbnail of a page. Averaging over areas keeps small print even.
PixPtr thumbnail(const KVIMG& page) {
    const PixPtr full(pixCreate(page.width, page.height, 32));
    if (!full) throw std::bad_alloc();
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

void writeContactSheet(const std::vector<Report>& reports, const std::string& file) {
    std::vector<PixPtr> thumbnails;
    int width = 0;
    for (const Report& report : reports)
        for (const Record* page : {&report.before, &report.after})
            if (*page) thumbnails.push_back(thumbnail(**page));
    for (size_t i = 0; i + 1 < thumbnails.size(); i += 2)
        width = std::max(width, pixGetWidth(thumbnails[i].get()) + pixGetWidth(thumbnails[i + 1].get()) + 3 * kGap);
    if (thumbnails.empty()) return;

    const int rows = static_cast<int>(thumbnails.size() / 2);
    const PixPtr sheet(pixCreate(width, rows * (kPageHeight + kGap) + kGap, 32));
    if (!sheet) throw std::bad_alloc();
    pixSetAllArbitrary(sheet.get(), 0x40484800);
    int y = kGap;
    for (size_t i = 0; i + 1 < thumbnails.size(); i += 2, y += kPageHeight + kGap) {
        int x = kGap;
        for (const size_t k : {i, i + 1}) {
            PIX* page = thumbnails[k].get();
            pixRasterop(sheet.get(), x, y, pixGetWidth(page), pixGetHeight(page), PIX_SRC, page, 0, 0);
            x += pixGetWidth(page) + kGap;
        }
    }
    if (pixWrite(file.c_str(), sheet.get(), IFF_PNG) != 0) throw std::runtime_error(file + " cannot be written");
}
