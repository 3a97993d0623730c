// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The page that a stream holds, by libjpeg driven directly: the rows that it decodes before the data ends, the last of
// them repeated to the bottom.
#pragma once

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include <jpeglib.h>

namespace oracle {

struct DecodedStream {
    int width = 0;
    int height = 0;
    int channels = 0;    // 1 or 3: red, green, blue
    int rows = 0;        // that the stream held
    long warnings = 0;
    bool whole = false;    // decoded to its end marker
    bool empty = false;    // of a component that no scan holds
    std::vector<uint8_t> pixels;

    bool isDamaged() const { return !whole || warnings > 0 || empty; }
    const uint8_t* at(int x, int y) const {
        return &pixels[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) *
                       static_cast<size_t>(channels)];
    }
};

struct ErrorJump {
    jpeg_error_mgr manager;    // first, so that libjpeg's pointer is one to this
    jmp_buf target;
};

// Without value: an error, or no row.
inline std::optional<DecodedStream> decodeStream(const std::vector<uint8_t>& stream) {
    DecodedStream page;
    jpeg_decompress_struct cinfo;
    ErrorJump errors;
    cinfo.err = jpeg_std_error(&errors.manager);
    errors.manager.error_exit = [](j_common_ptr c) { std::longjmp(reinterpret_cast<ErrorJump*>(c->err)->target, 1); };
    errors.manager.output_message = [](j_common_ptr) {};
    jpeg_create_decompress(&cinfo);
    // Volatile: read after a jump.
    volatile bool rowsAreDone = false;
    if (setjmp(errors.target) == 0) {
        jpeg_mem_src(&cinfo, stream.data(), stream.size());
        cinfo.src->fill_input_buffer = [](j_decompress_ptr) -> boolean { return FALSE; };
        cinfo.src->skip_input_data = [](j_decompress_ptr c, long bytes) {
            const size_t skipped = bytes < 0 ? 0 : std::min(static_cast<size_t>(bytes), c->src->bytes_in_buffer);
            c->src->next_input_byte += skipped;
            c->src->bytes_in_buffer -= skipped;
        };
        if (jpeg_read_header(&cinfo, TRUE) == JPEG_HEADER_OK) {
            if (cinfo.num_components == 4) cinfo.out_color_space = JCS_CMYK;
            if (jpeg_start_decompress(&cinfo)) {
                page.width = static_cast<int>(cinfo.output_width);
                page.height = static_cast<int>(cinfo.output_height);
                page.channels = cinfo.output_components == 1 ? 1 : 3;
                for (int i = 0; i < cinfo.num_components; ++i)
                    page.empty = page.empty ||
                                 (cinfo.progressive_mode ? cinfo.coef_bits[i][0] < 0 : !cinfo.comp_info[i].quant_table);
                std::vector<uint8_t>& pixels = page.pixels;
                const size_t rowBytes = static_cast<size_t>(page.width) * static_cast<size_t>(page.channels);
                pixels.resize(rowBytes * static_cast<size_t>(page.height));
                static thread_local uint8_t inks[4 * 65500];
                while (page.rows < page.height) {
                    uint8_t* const to = pixels.data() + rowBytes * static_cast<size_t>(page.rows);
                    JSAMPROW row = cinfo.output_components == 4 ? inks : to;
                    if (jpeg_read_scanlines(&cinfo, &row, 1) != 1) break;
                    ++page.rows;
                    if (row == to) continue;
                    for (int x = 0; x < page.width; ++x)
                        for (int c = 0; c < 3; ++c)
                            to[3 * x + c] = static_cast<uint8_t>(inks[4 * x + 3] -
                                                                 ((255 - inks[4 * x + c]) * inks[4 * x + 3] >> 8));
                }
                for (size_t i = rowBytes * static_cast<size_t>(page.rows); page.rows > 0 && i < pixels.size(); ++i)
                    pixels[i] = pixels[i - rowBytes];
                rowsAreDone = page.rows > 0;
                page.whole = page.rows == page.height && jpeg_finish_decompress(&cinfo);
            }
        }
    }
    page.warnings = errors.manager.num_warnings;
    jpeg_destroy_decompress(&cinfo);
    return rowsAreDone ? std::optional(page) : std::nullopt;
}

// The page as an EXIF orientation of 1 to 8 shows it.
inline DecodedStream turned(const DecodedStream& stored, int orientation) {
    DecodedStream page = stored;
    const bool transposed = orientation >= 5;
    if (transposed) std::swap(page.width, page.height);
    size_t at = 0;
    for (int y = 0; y < page.height; ++y)
        for (int x = 0; x < page.width; ++x) {
            int fromX = transposed ? y : x;
            int fromY = transposed ? x : y;
            if (orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8)
                fromX = stored.width - 1 - fromX;
            if (orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7)
                fromY = stored.height - 1 - fromY;
            for (int c = 0; c < page.channels; ++c) page.pixels[at++] = stored.at(fromX, fromY)[c];
        }
    return page;
}

}    // namespace oracle
