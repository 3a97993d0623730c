// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The expected streams of the encoder, byte for byte.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/jpeg_compression.h"

namespace oracle {

struct JpegSettings {
    int components = 1;      // 1 grey, 3 red green blue
    int lumaSampling = 1;    // 1 or 2, both ways
    int quality = 75;
    const unsigned* luminance = nullptr;
    const unsigned* chrominance = nullptr;
    int xDensity = 1;
    int yDensity = 1;
    std::string comment = "KORVELIN";
    bool progressive = false;
};

inline std::vector<uint8_t> encodeJpeg(const uint8_t* pixels, int step, int width, int height,
                                       const JpegSettings& settings) {
    const auto configure = [&settings](jpeg_compress_struct& cinfo) {
        if (settings.luminance || settings.chrominance) {
            const int scale = settings.quality < 50 ? 5000 / settings.quality : 200 - 2 * settings.quality;
            if (settings.luminance) jpeg_add_quant_table(&cinfo, 0, settings.luminance, scale, TRUE);
            if (settings.chrominance) jpeg_add_quant_table(&cinfo, 1, settings.chrominance, scale, TRUE);
        } else {
            jpeg_set_quality(&cinfo, settings.quality, TRUE);
        }
        cinfo.JFIF_minor_version = 2;
        cinfo.density_unit = 1;
        cinfo.X_density = static_cast<UINT16>(settings.xDensity);
        cinfo.Y_density = static_cast<UINT16>(settings.yDensity);
        for (int i = 0; i < settings.components; ++i) {
            cinfo.comp_info[i].component_id = i;
            cinfo.comp_info[i].h_samp_factor = i == 0 ? settings.lumaSampling : 1;
            cinfo.comp_info[i].v_samp_factor = i == 0 ? settings.lumaSampling : 1;
        }
        if (settings.progressive) jpeg_simple_progression(&cinfo);
    };
    const auto started = [&settings](jpeg_compress_struct& cinfo) {
        if (!settings.comment.empty())
            jpeg_write_marker(&cinfo, JPEG_COM, reinterpret_cast<const JOCTET*>(settings.comment.data()),
                              static_cast<unsigned>(settings.comment.size()));
    };
    const J_COLOR_SPACE space = settings.components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    return compressJpeg({pixels, step, width, height, settings.components, space}, configure, started);
}

}    // namespace oracle
