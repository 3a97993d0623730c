// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What the readers with a report give back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "OPCV_dlib_read.h"
#include "core/ownership.h"

inline opcv_read_report newReport() {
    opcv_read_report report{};
    report.struct_size = sizeof report;
    return report;
}

inline opcv_read_options newOptions() {
    opcv_read_options options{};
    options.struct_size = sizeof options;
    return options;
}

struct PageReading {
    opcv_read_status status = OPCV_READ_OK;
    opcv_read_report report = newReport();
    opcv::RecordPtr image;

    std::vector<uint8_t> pixels() const { return {image->data, image->data + image->size}; }
};

inline PageReading readPage(const std::vector<uint8_t>& stream, const opcv_read_options* options = nullptr) {
    PageReading r;
    KVIMG* page = nullptr;
    r.status = opcv_read_page(stream.data(), stream.size(), options, &page, &r.report);
    r.image.reset(page);
    return r;
}
