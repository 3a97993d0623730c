// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Twelve small streams, of every coding.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "oracle/jpeg.h"
#include "support/jpeg_compression.h"
#include "support/jpeg_drawing.h"
#include "support/random.h"

struct NamedStream {
    std::string name;
    int components = 3;
    bool progressive = false;
    bool arithmetic = false;
    bool severalScans = false;
    int orientation = 1;
    int restartInterval = 0;    // units
    int lumaSampling = 1;
    std::vector<uint8_t> stream{};
};

namespace corpus {

constexpr int kWidth = 29;
constexpr int kHeight = 27;

inline std::vector<uint8_t> encode(const NamedStream& s) {
    Random random(51);
    const std::vector<uint8_t> pixels = drawing(random, kWidth, kHeight, s.components);
    const J_COLOR_SPACE space = s.components == 1 ? JCS_GRAYSCALE : s.components == 3 ? JCS_RGB : JCS_CMYK;
    // A scan for each component.
    std::vector<jpeg_scan_info> scans;
    for (int i = 0; i < s.components; ++i) {
        jpeg_scan_info scan{};
        scan.comps_in_scan = 1;
        scan.component_index[0] = i;
        scan.Se = 63;
        scans.push_back(scan);
    }
    std::vector<uint8_t> stream =
        compressJpeg({pixels.data(), ptrdiff_t{kWidth} * s.components, kWidth, kHeight, s.components, space},
                     [&](jpeg_compress_struct& cinfo) {
                         jpeg_set_quality(&cinfo, 60, TRUE);
                         cinfo.density_unit = 1;
                         cinfo.X_density = 300;
                         cinfo.Y_density = 200;
                         cinfo.arith_code = s.arithmetic ? TRUE : FALSE;
                         cinfo.restart_interval = static_cast<unsigned>(s.restartInterval);
                         cinfo.comp_info[0].h_samp_factor = s.lumaSampling;
                         cinfo.comp_info[0].v_samp_factor = s.lumaSampling;
                         if (s.progressive) {
                             jpeg_simple_progression(&cinfo);
                         } else if (s.severalScans) {
                             cinfo.scan_info = scans.data();
                             cinfo.num_scans = static_cast<int>(scans.size());
                         }
                     });
    if (s.orientation != 1) stream = withOrientation(stream, static_cast<uint8_t>(s.orientation));
    return stream;
}

}    // namespace corpus

inline std::vector<NamedStream> jpegCorpus() {
    std::vector<NamedStream> all = {
        {"grey", 1},
        {"colour", 3},
        {"colour, 4:2:0", 3, false, false, false, 1, 0, 2},
        {"four components", 4},
        {"colour, a scan each", 3, false, false, true},
        {"grey, restart markers", 1, false, false, false, 1, 2},
        {"colour, 4:2:0, restart markers, turned", 3, false, false, false, 6, 1, 2},
        {"grey, progressive", 1, true, false, true},
        {"colour, 4:2:0, progressive, upside down", 3, true, false, true, 3, 0, 2},
        {"grey, arithmetic", 1, false, true},
        {"colour, 4:2:0, arithmetic, restart markers", 3, false, true, false, 1, 1, 2},
        {"colour, progressive, arithmetic", 3, true, true, true},
    };
    for (NamedStream& s : all) s.stream = corpus::encode(s);
    return all;
}
