// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// JPEG streams that cost a decoder as much as their coding allows: every coefficient of every block is coded, in every
// scan, with values that no decoder can predict.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <jpeglib.h>

#include "support/random.h"

struct CostlyStream {
    bool progressive = false;
    bool arithmetic = false;
    int components = 1;
    bool data = true;    // otherwise the scans have headers only
    int width = 64;
    int height = 64;
    int scans = 1;    // a sequential stream of one component has one, others at least one more than components

    // What the coefficients hold, and what the scans behind the first ones repeat.
    int magnitude = 1;        // of coefficients, in bits
    bool random = true;       // otherwise all are the same, which takes an arithmetic coder next to no bytes
    bool refining = false;    // progressive: scans that refine all coefficients by a bit

    bool hasSeveralScans() const { return progressive || components > 1; }
    std::string name() const {
        return std::string(progressive ? "progressive" : "sequential") + ", " +
               (arithmetic ? "arithmetic" : "Huffman") + ", " + std::to_string(components) +
               (components == 1 ? " component" : " components") + (data ? "" : ", no data");
    }
};

namespace costly {

using Bytes = std::vector<uint8_t>;

// The stream by libjpeg's compressor, from coefficients, with these scans.
inline Bytes encode(const CostlyStream& wanted, const std::vector<jpeg_scan_info>& scans) {
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char* block = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&cinfo, &block, &size);
    cinfo.image_width = static_cast<JDIMENSION>(wanted.width);
    cinfo.image_height = static_cast<JDIMENSION>(wanted.height);
    cinfo.input_components = wanted.components;
    cinfo.in_color_space = wanted.components == 1 ? JCS_GRAYSCALE : wanted.components == 3 ? JCS_YCbCr : JCS_CMYK;
    jpeg_set_defaults(&cinfo);
    cinfo.arith_code = wanted.arithmetic ? TRUE : FALSE;
    cinfo.optimize_coding = wanted.arithmetic ? FALSE : TRUE;
    cinfo.scan_info = scans.data();
    cinfo.num_scans = static_cast<int>(scans.size());
    const auto blocksAcross = static_cast<JDIMENSION>((wanted.width + 7) / 8);
    const auto blocksDown = static_cast<JDIMENSION>((wanted.height + 7) / 8);
    jvirt_barray_ptr arrays[MAX_COMPONENTS] = {};
    for (int i = 0; i < wanted.components; ++i) {
        cinfo.comp_info[i].h_samp_factor = 1;
        cinfo.comp_info[i].v_samp_factor = 1;
        arrays[i] = cinfo.mem->request_virt_barray(reinterpret_cast<j_common_ptr>(&cinfo), JPOOL_IMAGE, TRUE,
                                                   blocksAcross, blocksDown, 1);
    }
    jpeg_write_coefficients(&cinfo, arrays);
    Random random(31);
    const int bits = wanted.magnitude;
    for (int i = 0; i < wanted.components; ++i)
        for (JDIMENSION y = 0; y < blocksDown; ++y) {
            JBLOCKARRAY rows =
                cinfo.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&cinfo), arrays[i], y, 1, TRUE);
            for (JDIMENSION x = 0; x < blocksAcross; ++x)
                for (int k = 0; k < DCTSIZE2; ++k) {
                    const int largest = (1 << bits) - 1;
                    const int size = random.between(1 << (bits - 1), largest);
                    const int value = random.chance(50) ? size : -size;
                    rows[0][x][k] = static_cast<JCOEF>(wanted.random ? value : largest);
                }
        }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    Bytes stream(block, block + size);
    std::free(block);
    return stream;
}

// Where each scan header stands, and at last the end marker.
inline std::vector<size_t> partsOf(const Bytes& stream) {
    std::vector<size_t> parts;
    size_t at = 2;
    while (stream.at(at + 1) != 0xD9) {
        if (stream[at + 1] == 0xDA) parts.push_back(at);
        at += 2 + (size_t{stream.at(at + 2)} << 8 | stream.at(at + 3));
        while (stream.at(at) != 0xFF || stream.at(at + 1) == 0 || (stream.at(at + 1) & 0xF8) == 0xD0) ++at;
    }
    parts.push_back(at);
    return parts;
}

inline jpeg_scan_info scanOf(int first, int count, int from, int to, int high, int low) {
    jpeg_scan_info scan{};
    scan.comps_in_scan = count;
    for (int i = 0; i < count; ++i) scan.component_index[i] = first + i;
    scan.Ss = from;
    scan.Se = to;
    scan.Ah = high;
    scan.Al = low;
    return scan;
}

// The scans that are coded; the last of them is the one to repeat.
inline std::vector<jpeg_scan_info> scansOf(const CostlyStream& wanted) {
    std::vector<jpeg_scan_info> scans;
    if (!wanted.progressive) {
        // One component alone in front makes a decoder keep all coefficients, and take any number of scans.
        if (wanted.components == 1) return {scanOf(0, 1, 0, 63, 0, 0)};
        for (int i = 0; i < wanted.components; ++i) scans.push_back(scanOf(i, 1, 0, 63, 0, 0));
        return scans;
    }
    const int low = wanted.refining ? 1 : 0;
    scans.push_back(scanOf(0, wanted.components, 0, 0, 0, low));
    for (int i = 0; i < wanted.components; ++i) scans.push_back(scanOf(i, 1, 1, 63, 0, low));
    if (wanted.refining) scans.push_back(scanOf(0, 1, 1, 63, 1, 0));
    return scans;
}

}    // namespace costly

// The headers, then the scans, the last one again and again.
inline std::vector<uint8_t> costlyStream(const CostlyStream& wanted) {
    using costly::Bytes;
    const Bytes once = costly::encode(wanted, costly::scansOf(wanted));
    const std::vector<size_t> parts = costly::partsOf(once);
    const auto cut = [&once](size_t from, size_t to) {
        return Bytes(once.begin() + static_cast<ptrdiff_t>(from), once.begin() + static_cast<ptrdiff_t>(to));
    };
    const auto append = [](Bytes& to, const Bytes& what) { to.insert(to.end(), what.begin(), what.end()); };
    // A scan's tables stand between the data of the scan before and its header.
    Bytes stream = cut(0, parts.front());
    const size_t kinds = parts.size() - 1;
    const size_t scans = wanted.hasSeveralScans() ? std::max(kinds, static_cast<size_t>(wanted.scans)) : 1;
    for (size_t i = 0; i < scans; ++i) {
        const size_t kind = std::min(i, kinds - 1);
        const size_t headerEnd = parts[kind] + 2 + (size_t{once[parts[kind] + 2]} << 8 | once[parts[kind] + 3]);
        append(stream, cut(parts[kind], wanted.data ? parts[kind + 1] : headerEnd));
    }
    append(stream, {0xFF, 0xD9});
    return stream;
}
