// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <OPCV_dlib_read.h>

#include "decode.h"
#include "record.h"

namespace {

void refuse(opcv_read_status status) {
    switch (status) {
        case OPCV_READ_OK: return;
        case OPCV_READ_NO_MEMORY: throw std::bad_alloc();
        case OPCV_READ_OVER_LIMIT: throw std::runtime_error("is too large to be a page");
        default: throw std::runtime_error("cannot be decoded");
    }
}

std::string damageOf(const opcv_read_report& report) {
    if (report.damaged == 0) return "";
    if (report.rows_decoded < report.rows) return rowsMissing(report.rows_decoded, report.rows);
    if (report.end_marker_seen == 0) return "is damaged: its end is missing";
    return "is damaged: its data contain errors";
}

}    // namespace

DecodedPage decodeJpeg(const std::vector<uint8_t>& stream, int assumedDpi) {
    opcv_read_report report{};
    report.struct_size = sizeof(report);
    KVIMG* record = nullptr;
    refuse(opcv_read_page(stream.data(), stream.size(), nullptr, &record, &report));
    DecodedPage page{};
    page.record.reset(record);
    page.description = describe(*record, {report.dpi_x, report.dpi_y}, assumedDpi);
    page.damage = damageOf(report);
    return page;
}
