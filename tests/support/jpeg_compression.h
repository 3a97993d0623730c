// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Direct calls of libjpeg's compressor, with its own memory destination.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>

struct JpegRaster {
    const uint8_t* pixels;
    ptrdiff_t step;
    int width;
    int height;
    int components;
    J_COLOR_SPACE space;
};

// `configure` changes libjpeg's defaults; `started` writes markers before the rows.
template <class Configure, class Started>
std::vector<uint8_t> compressJpeg(const JpegRaster& raster, Configure configure, Started started) {
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char* block = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&cinfo, &block, &size);
    cinfo.image_width = static_cast<JDIMENSION>(raster.width);
    cinfo.image_height = static_cast<JDIMENSION>(raster.height);
    cinfo.input_components = raster.components;
    cinfo.in_color_space = raster.space;
    jpeg_set_defaults(&cinfo);
    configure(cinfo);
    jpeg_start_compress(&cinfo, TRUE);
    started(cinfo);
    for (int y = 0; y < raster.height; ++y) {
        auto* row = const_cast<JSAMPROW>(raster.pixels + raster.step * y);
        jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::vector<uint8_t> stream(block, block + size);
    std::free(block);
    return stream;
}

template <class Configure>
std::vector<uint8_t> compressJpeg(const JpegRaster& raster, Configure configure) {
    return compressJpeg(raster, configure, [](jpeg_compress_struct&) {});
}
