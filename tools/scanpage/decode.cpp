// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "decode.h"

#include <OPCV_dlib_read.h>

#include <cmath>

namespace {

constexpr int kUsualDpi = 300;    // for streams without a resolution

void refuse(opcv_read_status status) {
    switch (status) {
        case OPCV_READ_OK: return;
        case OPCV_READ_NO_MEMORY: throw std::bad_alloc();
        case OPCV_READ_OVER_LIMIT: throw std::runtime_error("is too large to be a page");
        default: throw std::runtime_error("cannot be decoded");
    }
}

// Some programs write one dot per inch if they know no resolution.
int resolutionOr(double dpi, int otherwise) {
    return std::lround(dpi) > 1 ? static_cast<int>(std::lround(dpi)) : otherwise;
}

KVImageDescription describe(const KVIMG& page, const opcv_read_report& report) {
    KVImageDescription description{};
    description.width = page.width;
    description.height = page.height;
    description.depth = static_cast<int16_t>(page.depth);
    description.horizontalResolution = resolutionOr(report.dpi_x, kUsualDpi);
    description.verticalResolution = resolutionOr(report.dpi_y, description.horizontalResolution);
    return description;
}

std::string damageOf(const opcv_read_report& report) {
    if (report.damaged == 0) return "";
    if (report.rows_decoded < report.rows)
        return "is damaged: only " + std::to_string(report.rows_decoded) + " of " + std::to_string(report.rows) +
               " rows are there";
    if (report.end_marker_seen == 0) return "is damaged: its end is missing";
    return "is damaged: its data contain errors";
}

}    // namespace

DecodedPage decode(const std::vector<uint8_t>& stream) {
    opcv_read_report report{};
    report.struct_size = sizeof(report);
    KVIMG* record = nullptr;
    refuse(opcv_read_page(stream.data(), stream.size(), nullptr, &record, &report));
    DecodedPage page{};
    page.record.reset(record);
    page.description = describe(*record, report);
    page.damage = damageOf(report);
    return page;
}
