// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "catalogue/catalogue.h"

#include <algorithm>
#include <cstring>
#include <iterator>

const Entries& catalogue() {
    static const Entries all = [] {
        Entries entries;
        for (const auto part : {coreEntries, rankEntries, geometryEntries, jpegEntries, pixelEntries, filterEntries,
                                limitedReadingEntries}) {
            Entries more = part();
            std::move(more.begin(), more.end(), std::back_inserter(entries));
        }
        return entries;
    }();
    return all;
}

std::vector<Window> windowsOf(const std::vector<IppiSize>& small, const std::vector<IppiSize>& large) {
    std::vector<Window> windows;
    for (const IppiSize& mask : small)
        for (int y = -1; y <= mask.height; ++y)
            for (int x = -1; x <= mask.width; ++x) windows.push_back({mask, {x, y}});
    for (const IppiSize& mask : large)
        for (const IppiPoint anchor : {IppiPoint{mask.width / 2, mask.height / 2}, IppiPoint{0, 0},
                                       IppiPoint{mask.width - 1, mask.height - 1}, IppiPoint{mask.width + 1, -2}})
            windows.push_back({mask, anchor});
    return windows;
}

std::vector<Shape> shapesOf(const std::vector<Window>& windows, const std::vector<IppiSize>& masks,
                            const std::string& suffix, int firstVariant) {
    std::vector<Shape> shapes;
    for (const IppiSize& mask : masks) {
        const auto found = std::find_if(windows.begin(), windows.end(), [&mask](const Window& w) {
            const IppiPoint centre = centreOf(mask);
            return w.mask.width == mask.width && w.mask.height == mask.height && w.anchor.x == centre.x &&
                   w.anchor.y == centre.y;
        });
        shapes.push_back({std::to_string(mask.width) + " x " + std::to_string(mask.height) + suffix,
                          firstVariant + static_cast<int>(found - windows.begin())});
    }
    return shapes;
}

KVImageDescription descriptionOf(IppiSize size, int depth) {
    KVImageDescription description;
    std::memset(&description, 0, sizeof(description));
    description.width = size.width;
    description.height = size.height;
    description.horizontalResolution = 300;
    description.verticalResolution = 200;
    description.depth = static_cast<int16_t>(depth);
    return description;
}

Page pageOf(Case& c, int depth, Rows rows) {
    const Margin right = {0, 0, c.random.between(0, 3), 0};
    const Image image =
        rows == Rows::kWhole ? c.source({c.size, depth / 8, right, Layout::kPacked}) : c.source({c.size, depth / 8});
    KVIMG record;
    std::memset(&record, 0, sizeof(record));
    record.data = image.data;
    record.depth = depth;
    record.width = c.size.width;
    record.height = c.size.height;
    record.rowBytes = image.step;
    record.size = image.step * c.size.height;
    KVImageDescription* where = c.sourceOf(descriptionOf(c.size, depth));
    return {c.sourceOf(record), c.sourceOf(where)};
}
