// libjpeg driven directly, with its own memory destination: what the encoder's streams must be, byte for byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <jpeglib.h>

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
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char* block = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&cinfo, &block, &size);
    cinfo.image_width = static_cast<JDIMENSION>(width);
    cinfo.image_height = static_cast<JDIMENSION>(height);
    cinfo.input_components = settings.components;
    cinfo.in_color_space = settings.components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&cinfo);
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
    jpeg_start_compress(&cinfo, TRUE);
    if (!settings.comment.empty())
        jpeg_write_marker(&cinfo, JPEG_COM, reinterpret_cast<const JOCTET*>(settings.comment.data()),
                          static_cast<unsigned>(settings.comment.size()));
    for (int y = 0; y < height; ++y) {
        auto* row = const_cast<JSAMPROW>(pixels + std::ptrdiff_t{step} * y);
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::vector<uint8_t> stream(block, block + size);
    std::free(block);
    return stream;
}

}    // namespace oracle
